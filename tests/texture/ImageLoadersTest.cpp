// JPEG, TIFF, PCX, Targa and SGI loading: sizes, pixels per format code, kept quirks and bad files.
#include "TestImages.h"

#include "texture/Texture.h"
#include "texture/TextureLoaderBW.h"
#include "texture/TextureLoaderJPG.h"
#include "texture/TextureLoaderPCX.h"
#include "texture/TextureLoaderTGA.h"
#include "texture/TextureLoaderTIFF.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

namespace {

typedef std::unique_ptr<Texture> TexturePtr;

Bytes pixelsOf(const Texture* t)
{
    return Bytes(t->getDataPtr(), t->getDataPtr() + t->getDataSize());
}

// Every proper prefix of a valid file must be refused (the last `keep` lengths excepted).
void expectEveryTruncationFails(TextureLoader& loader, const Bytes& whole, const std::string& name, int format,
                                size_t keep = 0)
{
    std::string cut = scratchPath(name);
    for (size_t length = 0; length + keep < whole.size(); ++length) {
        ASSERT_TRUE(writeBytes(cut, Bytes(whole.begin(), whole.begin() + length)));
        Texture* t = loader.loadTexture(cut.c_str(), format);
        EXPECT_EQ(nullptr, t) << name << " cut at " << length;
        delete t;
    }
}

Bytes greyPalette()
{
    Bytes palette(768);
    for (int i = 0; i < 256; ++i) {
        palette[i * 3] = static_cast<unsigned char>(i);
        palette[i * 3 + 1] = static_cast<unsigned char>(255 - i);
        palette[i * 3 + 2] = static_cast<unsigned char>(i / 2);
    }
    return palette;
}

} // namespace

// ---- JPEG ----

class JpegLoad : public ::testing::Test {
protected:
    // 16 x 16, left half (200, 40, 90), right half (20, 180, 240): flat areas survive quality 100.
    std::string makeFile()
    {
        Bytes rgb;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) {
                const unsigned char left[3] = {200, 40, 90}, right[3] = {20, 180, 240};
                const unsigned char* c = x < 8 ? left : right;
                rgb.insert(rgb.end(), c, c + 3);
            }
        std::string path = scratchPath("image.jpg");
        EXPECT_TRUE(writeJpeg(path, 16, 16, rgb));
        return path;
    }

    static void expectNear(const Bytes& expected, const unsigned char* actual)
    {
        for (size_t i = 0; i < expected.size(); ++i)
            EXPECT_LE(std::abs(int(expected[i]) - int(actual[i])), 4) << "byte " << i;
    }

    TextureLoaderJPG loader;
};

TEST_F(JpegLoad, SizeAndPixelsPerFormatCode)
{
    std::string path = makeFile();
    const Bytes left[9] = {{}, {200}, {40}, {90}, {200}, {90}, {90, 200}, {200, 40, 90}, {200, 40, 90, 255}};
    for (int code = 1; code <= 8; ++code) {
        TexturePtr t(loader.loadTexture(path.c_str(), code));
        ASSERT_TRUE(t) << code;
        EXPECT_EQ(16, t->getWidth());
        EXPECT_EQ(16, t->getHeight());
        EXPECT_EQ(8, t->getBitsPerPixel());
        int c = Texture::componentsOf(code);
        // A pixel well inside the left half (row 4, column 2).
        expectNear(left[code], t->getDataPtr() + (4 * 16 + 2) * c);
    }
    TexturePtr rgba(loader.loadTexture(path.c_str(), 8));
    ASSERT_TRUE(rgba);
    expectNear({20, 180, 240, 255}, rgba->getDataPtr() + (4 * 16 + 13) * 4);
    EXPECT_EQ(255, rgba->getDataPtr()[(4 * 16 + 13) * 4 + 3]);
}

TEST_F(JpegLoad, GreyscaleFilesAreNotSupported)
{
    std::string path = scratchPath("grey.jpg");
    ASSERT_TRUE(writeJpeg(path, 8, 8, Bytes(64, 77), 1));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
}

TEST_F(JpegLoad, NeitherReloadsNorWrites)
{
    std::string path = makeFile();
    TexturePtr t(loader.loadTexture(path.c_str(), 7));
    ASSERT_TRUE(t);
    EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_FALSE(loader.saveTexture(path.c_str(), t.get()));
}

TEST_F(JpegLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.jpg").c_str(), 7));
    std::string path = scratchPath("bad.jpg");
    ASSERT_TRUE(writeBytes(path, {0x89, 'P', 'N', 'G', 0, 0, 0, 0}));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
    expectEveryTruncationFails(loader, readBytes(makeFile()), "cut.jpg", 7);
}

// ---- TIFF ----

class TiffLoad : public ::testing::Test {
protected:
    // 1 x 2: top (10, 20, 30, 40), bottom (50, 60, 70, 80).
    std::string makeFile(const char* name = "image.tif")
    {
        std::string path = scratchPath(name);
        EXPECT_TRUE(writeTiff(path, 1, 2, {10, 20, 30, 40, 50, 60, 70, 80}));
        return path;
    }

    TextureLoaderTIFF loader;
};

TEST_F(TiffLoad, RasterStartsWithTheBottomRowAndAlphaIsUsed)
{
    std::string path = makeFile();
    const Bytes expected[9] = {
        {}, {50, 10}, {60, 20}, {70, 30}, {80, 40}, {70, 30}, {70, 80, 30, 40},
        {50, 60, 70, 10, 20, 30}, {50, 60, 70, 80, 10, 20, 30, 40},
    };
    for (int code = 1; code <= 8; ++code) {
        TexturePtr t(loader.loadTexture(path.c_str(), code));
        ASSERT_TRUE(t) << code;
        EXPECT_EQ(1, t->getWidth());
        EXPECT_EQ(2, t->getHeight());
        EXPECT_EQ(expected[code], pixelsOf(t.get())) << code;
    }
}

TEST_F(TiffLoad, ReloadKeepsTheBufferAndRefusesOtherSizes)
{
    std::string path = makeFile("reload.tif");
    TexturePtr t(loader.loadTexture(path.c_str(), 7));
    ASSERT_TRUE(t);
    const unsigned char* buffer = t->getDataPtr();
    ASSERT_TRUE(writeTiff(path, 1, 2, {1, 2, 3, 255, 4, 5, 6, 255}));
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(buffer, t->getDataPtr());
    EXPECT_EQ(Bytes({4, 5, 6, 1, 2, 3}), pixelsOf(t.get()));
    ASSERT_TRUE(writeTiff(path, 2, 1, {9, 9, 9, 9, 9, 9, 9, 9}));
    EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(Bytes({4, 5, 6, 1, 2, 3}), pixelsOf(t.get()));
    EXPECT_FALSE(loader.saveTexture(path.c_str(), t.get()));
}

TEST_F(TiffLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.tif").c_str(), 7));
    std::string path = scratchPath("bad.tif");
    ASSERT_TRUE(writeBytes(path, {'I', 'I', 43, 0, 8, 0, 0, 0}));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
    expectEveryTruncationFails(loader, readBytes(makeFile()), "cut.tif", 7);
}

// ---- PCX ----

class PcxLoad : public ::testing::Test {
protected:
    TexturePtr load(const Bytes& file, int format)
    {
        std::string path = scratchPath("image.pcx");
        EXPECT_TRUE(writeBytes(path, file));
        return TexturePtr(loader.loadTexture(path.c_str(), format));
    }

    // 3 x 2 with a run, a literal and an index above 191 that must be run-coded.
    static Bytes indices() { return {7, 7, 7, 200, 1, 255}; }

    TextureLoaderPCX loader;
};

TEST_F(PcxLoad, IndicesGoThroughThePalette)
{
    Bytes file = makePcx(3, 2, 3, indices(), greyPalette());
    TexturePtr rgb = load(file, 7);
    ASSERT_TRUE(rgb);
    EXPECT_EQ(3, rgb->getWidth());
    EXPECT_EQ(2, rgb->getHeight());
    EXPECT_EQ(8, rgb->getBitsPerPixel());
    EXPECT_EQ(Bytes({7, 248, 3, 7, 248, 3, 7, 248, 3, 200, 55, 100, 1, 254, 0, 255, 0, 127}), pixelsOf(rgb.get()));
    TexturePtr la = load(file, 6);
    ASSERT_TRUE(la);
    EXPECT_EQ(Bytes({3, 7, 3, 7, 3, 7, 100, 200, 0, 1, 127, 255}), pixelsOf(la.get()));
    TexturePtr rgba = load(file, 8);
    ASSERT_TRUE(rgba);
    EXPECT_EQ(255, rgba->getDataPtr()[3]);
    TexturePtr alpha = load(file, 4);
    ASSERT_TRUE(alpha);
    EXPECT_EQ(Bytes({7, 7, 7, 200, 1, 255}), pixelsOf(alpha.get()));
}

TEST_F(PcxLoad, LongRunsAcrossRowsAreDecoded)
{
    Bytes many(100 * 3, 42);
    TexturePtr t = load(makePcx(100, 3, 100, many, greyPalette()), 1);
    ASSERT_TRUE(t);
    EXPECT_EQ(Bytes(300, 42), pixelsOf(t.get()));
}

TEST_F(PcxLoad, UnsupportedVariantsAreRefused)
{
    Bytes good = makePcx(3, 2, 3, indices(), greyPalette());
    Bytes v = good;
    v[1] = 4;
    EXPECT_FALSE(load(v, 7));
    v = good;
    v[2] = 0;
    EXPECT_FALSE(load(v, 7));
    v = good;
    v[3] = 4;
    EXPECT_FALSE(load(v, 7));
    v = good;
    v[65] = 3;
    EXPECT_FALSE(load(v, 7));
    // Lines padded beyond the width.
    EXPECT_FALSE(load(makePcx(3, 2, 4, {1, 1, 1, 0, 2, 2, 2, 0}, greyPalette()), 7));
}

TEST_F(PcxLoad, ReloadUsesTheTexturesFormat)
{
    std::string path = scratchPath("reload.pcx");
    ASSERT_TRUE(writeBytes(path, makePcx(3, 2, 3, indices(), greyPalette())));
    TexturePtr t(loader.loadTexture(path.c_str(), 1));
    ASSERT_TRUE(t);
    ASSERT_TRUE(writeBytes(path, makePcx(3, 2, 3, {1, 2, 3, 4, 5, 6}, greyPalette())));
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(Bytes({1, 2, 3, 4, 5, 6}), pixelsOf(t.get()));
    ASSERT_TRUE(writeBytes(path, makePcx(2, 3, 2, {1, 2, 3, 4, 5, 6}, greyPalette())));
    EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_FALSE(loader.saveTexture(path.c_str(), t.get()));
}

TEST_F(PcxLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.pcx").c_str(), 7));
    EXPECT_FALSE(load({}, 7));
    // Cutting one byte only shifts the palette window onto the marker byte; any more loses RLE data.
    expectEveryTruncationFails(loader, makePcx(3, 2, 3, indices(), greyPalette()), "cut.pcx", 7, 1);
}

TEST_F(PcxLoad, AbsurdSizeIsRefusedBeforeAllocating)
{
    Bytes file = makePcx(3, 2, 3, indices(), greyPalette());
    file[8] = 0xff;
    file[9] = 0x3f;
    file[10] = 0xff;
    file[11] = 0x0f;
    file[66] = 0xff;
    file[67] = 0x3f;
    EXPECT_FALSE(load(file, 8));
}

// ---- Targa ----

class TgaLoad : public ::testing::Test {
protected:
    static Bytes header(int type, int depth, int mapType = 0, int mapLength = 0, int mapBits = 0)
    {
        Bytes h(18, 0);
        h[1] = static_cast<unsigned char>(mapType);
        h[2] = static_cast<unsigned char>(type);
        h[5] = static_cast<unsigned char>(mapLength & 0xff);
        h[6] = static_cast<unsigned char>(mapLength >> 8);
        h[7] = static_cast<unsigned char>(mapBits);
        h[12] = 4;
        h[14] = 2;
        h[16] = static_cast<unsigned char>(depth);
        return h;
    }

    TexturePtr load(const Bytes& file, int format = 7)
    {
        std::string path = scratchPath("image.tga");
        EXPECT_TRUE(writeBytes(path, file));
        return TexturePtr(loader.loadTexture(path.c_str(), format));
    }

    TextureLoaderTGA loader;
};

TEST_F(TgaLoad, AcceptedFilesGiveADeliberatelyEmptyImage)
{
    for (int type : {1, 2, 3, 9, 10, 11})
        for (int depth : {8, 15, 16, 24, 32}) {
            Bytes file = header(type, depth);
            file.resize(file.size() + 4 * 2 * 4, 0x55);
            TexturePtr t = load(file, 8);
            ASSERT_TRUE(t) << type << "/" << depth;
            EXPECT_EQ(0, t->getWidth());
            EXPECT_EQ(0, t->getHeight());
            EXPECT_EQ(8, t->getBitsPerPixel());
            EXPECT_EQ(8, t->getFormat());
        }
}

TEST_F(TgaLoad, OtherTypesAndDepthsAreRefused)
{
    EXPECT_FALSE(load(header(0, 24)));
    EXPECT_FALSE(load(header(4, 24)));
    EXPECT_FALSE(load(header(32, 24)));
    EXPECT_FALSE(load(header(2, 12)));
    EXPECT_FALSE(load(header(2, 0)));
}

TEST_F(TgaLoad, ColourMapMustBeThere)
{
    Bytes mapped = header(1, 8, 1, 4, 24);
    EXPECT_FALSE(load(mapped));
    mapped.resize(mapped.size() + 4 * 3, 1);
    EXPECT_TRUE(load(mapped));
    EXPECT_FALSE(load(header(1, 8, 1, 0xffff, 32)));
}

TEST_F(TgaLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.tga").c_str(), 7));
    EXPECT_FALSE(load({}));
    EXPECT_FALSE(load(Bytes(17, 0)));
    Texture t;
    EXPECT_FALSE(loader.reloadTexture("x.tga", &t));
    EXPECT_FALSE(loader.saveTexture("x.tga", &t));
}

// ---- SGI one-channel ----

class BwLoad : public ::testing::Test {
protected:
    TexturePtr load(const Bytes& file, int format)
    {
        std::string path = scratchPath("image.bw");
        EXPECT_TRUE(writeBytes(path, file));
        return TexturePtr(loader.loadTexture(path.c_str(), format));
    }

    // 5 x 2, stored bottom row first; long enough to exercise repeat and literal packets.
    static Bytes rows() { return {9, 9, 9, 9, 1, 2, 3, 4, 5, 5}; }

    TextureLoaderBW loader;
};

TEST_F(BwLoad, VerbatimAndRleGiveTheStoredBytes)
{
    for (bool rle : {false, true}) {
        Bytes file = makeSgi(5, 2, rows(), rle);
        for (int code = 1; code <= 5; ++code) {
            TexturePtr t = load(file, code);
            ASSERT_TRUE(t) << rle << "/" << code;
            EXPECT_EQ(5, t->getWidth());
            EXPECT_EQ(2, t->getHeight());
            EXPECT_EQ(8, t->getBitsPerPixel());
            EXPECT_EQ(rows(), pixelsOf(t.get()));
        }
    }
}

TEST_F(BwLoad, MultiChannelCodesAreRefused)
{
    Bytes file = makeSgi(5, 2, rows(), false);
    for (int code : {6, 7, 8})
        EXPECT_FALSE(load(file, code)) << code;
}

TEST_F(BwLoad, OnlyOneChannelByteImagesAreAccepted)
{
    Bytes file = makeSgi(5, 2, rows(), false);
    Bytes v = file;
    v[1] = 0xdb;
    EXPECT_FALSE(load(v, 5));
    v = file;
    v[5] = 3;
    v[11] = 3;
    EXPECT_FALSE(load(v, 5));
    v = file;
    v[3] = 2;
    EXPECT_FALSE(load(v, 5));
    v = file;
    v[2] = 2;
    EXPECT_FALSE(load(v, 5));
}

TEST_F(BwLoad, DamagedRleIsRefused)
{
    Bytes file = makeSgi(5, 2, rows(), true);
    Bytes v = file;
    v[512 + 3] = 0xff;  // first row's offset beyond the file
    EXPECT_FALSE(load(v, 5));
    v = file;
    v[512 + 8 + 3] = 1;  // first row one byte long: its packet runs out
    EXPECT_FALSE(load(v, 5));
}

TEST_F(BwLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.bw").c_str(), 5));
    EXPECT_FALSE(load({}, 5));
    expectEveryTruncationFails(loader, makeSgi(5, 2, rows(), false), "cut.bw", 5);
    expectEveryTruncationFails(loader, makeSgi(5, 2, rows(), true), "cutrle.bw", 5);
    Texture t;
    EXPECT_FALSE(loader.reloadTexture("x.bw", &t));
    EXPECT_FALSE(loader.saveTexture("x.bw", &t));
}
