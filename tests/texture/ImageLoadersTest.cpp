// JPEG, TIFF, PCX, Targa and SGI loading: sizes, pixels per format code, kept quirks and bad files.
#include "TestImages.h"

#include "texture/TextureLoaderBW.h"
#include "texture/TextureLoaderJPG.h"
#include "texture/TextureLoaderPCX.h"
#include "texture/TextureLoaderTGA.h"
#include "texture/TextureLoaderTIFF.h"

#include <gtest/gtest.h>

namespace {

// 16 x height, left half (200, 40, 90), right half (20, 180, 240): flat areas survive quality 100.
Bytes jpegFile(int height = 16)
{
    Bytes rgb;
    for (int i = 0; i < 16 * height; ++i) {
        const Bytes colour = i % 16 < 8 ? Bytes{200, 40, 90} : Bytes{20, 180, 240};
        rgb.insert(rgb.end(), colour.begin(), colour.end());
    }
    EXPECT_TRUE(writeJpeg(scratchPath("image.jpg"), 16, height, rgb));
    return readBytes(scratchPath("image.jpg"));
}

// Where the start-of-scan segment begins, the image data following it.
size_t startOfScan(const Bytes& jpeg)
{
    size_t at = 2;
    while (at + 4 <= jpeg.size() && jpeg[at + 1] != 0xda)
        at += 2 + (jpeg[at + 2] << 8 | jpeg[at + 3]);
    return at;
}

// 1 x 2: top (10, 20, 30, 40), bottom (50, 60, 70, 80).
Bytes tiffFile()
{
    EXPECT_TRUE(writeTiff(scratchPath("image.tif"), 1, 2, {10, 20, 30, 40, 50, 60, 70, 80}));
    return readBytes(scratchPath("image.tif"));
}

Bytes pcxPalette()
{
    Bytes palette;
    for (int i = 0; i < 256; ++i)
        palette.insert(palette.end(), {Bytes::value_type(i), Bytes::value_type(255 - i), Bytes::value_type(i / 2)});
    return palette;
}

// 3 x 2 with a run, a literal and an index above 191 that must be run-coded.
Bytes pcxFile()
{
    return makePcx(3, 2, 3, {7, 7, 7, 200, 1, 255}, pcxPalette());
}

Bytes tgaFile(int type, int depth, int mapType = 0, int mapLength = 0, int mapBits = 0)
{
    // A 4 x 2 picture: type, colour map, size and depth; the 32 bytes after the header are filler.
    Bytes file = patched(Bytes(18 + 32, 0x55), {{0, 0}, {1, mapType}, {2, type}, {3, 0}, {4, 0}, {7, mapBits}});
    put16(file, 5, mapLength);
    put16(file, 12, 4);
    put16(file, 14, 2);
    put16(file, 16, depth);
    return file;
}

// 5 x 2, bottom row first, with repeat and literal packets when run-length coded.
const Bytes sgiRows = {9, 9, 9, 9, 1, 2, 3, 4, 5, 5};

}  // namespace

TEST(ImageLoad, EachFormatCodeTakesItsChannels)
{
    TextureLoaderJPG jpg;
    // No alpha in a JPEG: red stands in for the alpha code, opaque for RGBA.
    expectEveryCode(jpg, jpegFile(), "image.jpg", {200, 40, 90, 200}, {20, 180, 240, 20}, false, 4);
    EXPECT_EQ(16, loadBytes(jpg, jpegFile(), "image.jpg", 8)->getWidth());
    TextureLoaderTIFF tif;
    // The raster starts with the bottom row.
    expectEveryCode(tif, tiffFile(), "image.tif", {50, 60, 70, 80}, {10, 20, 30, 40});
    TextureLoaderPCX pcx;
    TexturePtr rgb = loadBytes(pcx, pcxFile(), "image.pcx", 7);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(Bytes({7, 248, 3, 7, 248, 3, 7, 248, 3, 200, 55, 100, 1, 254, 0, 255, 0, 127}), pixelsOf(rgb.get()));
    EXPECT_EQ(Bytes({3, 7, 3, 7, 3, 7, 100, 200, 0, 1, 127, 255}),
              pixelsOf(loadBytes(pcx, pcxFile(), "image.pcx", 6).get()));
    // Runs may cross row ends.
    TexturePtr runs = loadBytes(pcx, makePcx(100, 3, 100, Bytes(300, 42), pcxPalette()), "runs.pcx", 1);
    ASSERT_TRUE(runs);
    EXPECT_EQ(Bytes(300, 42), pixelsOf(runs.get()));
}

TEST(ImageLoad, JpegCutOffInItsImageDataStillLoadsWhateverIsMissing)
{
    const Bytes whole = jpegFile(64);
    const size_t sos = startOfScan(whole);
    ASSERT_LT(sos + 4, whole.size());
    const size_t start = sos + 2 + (whole[sos + 2] << 8 | whole[sos + 3]);
    TextureLoaderJPG jpg;
    // From no image data at all to all but the end-of-image marker: libjpeg warns and fills in the rest.
    for (size_t length : {start, (start + whole.size()) / 2, whole.size() - 2}) {
        TexturePtr cut = loadBytes(jpg, Bytes(whole.begin(), whole.begin() + static_cast<long>(length)), "cut.jpg", 7);
        ASSERT_TRUE(cut) << "cut at " << length << " of " << whole.size();
        EXPECT_EQ(64, cut->getHeight());
        if (length > start) {
            EXPECT_NEAR(200, cut->getDataPtr()[0], 4);
        }
    }
}

TEST(ImageLoad, TargaFilesGiveADeliberatelyEmptyImage)
{
    TextureLoaderTGA loader;
    for (int type : {1, 2, 3, 9, 10, 11})
        for (int depth : {8, 15, 16, 24, 32}) {
            TexturePtr t = loadBytes(loader, tgaFile(type, depth), "image.tga", 8);
            ASSERT_TRUE(t) << type << "/" << depth;
            EXPECT_EQ(0, t->getWidth());
            EXPECT_EQ(0, t->getHeight());
        }
}

TEST(ImageLoad, SgiGivesTheStoredBytesAndRefusesCodesSixToEight)
{
    TextureLoaderBW loader;
    for (bool rle : {false, true})
        for (int code = 1; code <= 8; ++code) {
            TexturePtr t = loadBytes(loader, makeSgi(5, 2, sgiRows, rle), "image.bw", code);
            EXPECT_EQ(code <= 5, t != nullptr) << code;
            EXPECT_EQ(code <= 5 ? sgiRows : Bytes(), t ? pixelsOf(t.get()) : Bytes()) << rle << "/" << code;
        }
}

TEST(ImageLoad, BadFilesGiveNull)
{
    TextureLoaderJPG jpg;
    TextureLoaderTIFF tif;
    TextureLoaderPCX pcx;
    TextureLoaderTGA tga;
    TextureLoaderBW bw;
    std::string grey = scratchPath("grey.jpg");
    ASSERT_TRUE(writeJpeg(grey, 8, 8, Bytes(64, 77), 1));
    const Bytes sgi = makeSgi(5, 2, sgiRows, false), sgiRle = makeSgi(5, 2, sgiRows, true);
    const struct {
        TextureLoader& loader;
        Bytes file;
    } cases[] = {
        {jpg, readBytes(grey)},
        {jpg, {0x89, 'P', 'N', 'G', 0, 0, 0, 0}},
        {tif, {'I', 'I', 43, 0, 8, 0, 0, 0}},
        // Version, encoding, bits per pixel, planes, padded lines, an absurd size.
        {pcx, patched(pcxFile(), {{1, 4}})},
        {pcx, patched(pcxFile(), {{2, 0}})},
        {pcx, patched(pcxFile(), {{3, 4}})},
        {pcx, patched(pcxFile(), {{65, 3}})},
        {pcx, makePcx(3, 2, 4, {1, 1, 1, 0, 2, 2, 2, 0}, pcxPalette())},
        {pcx, patched(pcxFile(), {{8, 0xff}, {9, 0x3f}, {10, 0xff}, {11, 0x0f}, {66, 0xff}, {67, 0x3f}})},
        {tga, tgaFile(0, 24)},
        {tga, tgaFile(4, 24)},
        {tga, tgaFile(2, 12)},
        {tga, tgaFile(1, 8, 1, 0xffff, 32)},
        {tga, Bytes(17, 0)},
        // Magic, two bytes per channel, three channels, a row offset past the end, a row cut short.
        {bw, patched(sgi, {{1, 0xdb}})},
        {bw, patched(sgi, {{3, 2}})},
        {bw, patched(sgi, {{5, 3}, {11, 3}})},
        {bw, patched(sgiRle, {{512 + 3, 0xff}})},
        {bw, patched(sgiRle, {{520 + 3, 1}})},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i)
        EXPECT_FALSE(loadBytes(cases[i].loader, cases[i].file, "bad", 5)) << "case " << i;
    for (TextureLoader* loader : std::initializer_list<TextureLoader*>{&jpg, &tif, &pcx, &tga, &bw})
        EXPECT_FALSE(loader->loadTexture(scratchPath("missing").c_str(), 5));
    const Bytes jpeg = jpegFile();
    // Only a file cut before its image data is refused: libjpeg makes up what a scan lacks.
    expectEveryTruncationFails(jpg, jpeg, "cut.jpg", 7, jpeg.size() - startOfScan(jpeg));
    expectEveryTruncationFails(tif, tiffFile(), "cut.tif", 7);
    // Cutting one byte only shifts the palette window onto the marker byte; any more loses data.
    expectEveryTruncationFails(pcx, pcxFile(), "cut.pcx", 7, 1);
    expectEveryTruncationFails(bw, sgi, "cut.bw", 5);
    expectEveryTruncationFails(bw, sgiRle, "cutrle.bw", 5);
}
