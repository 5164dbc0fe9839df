// PNG loading: every format code from RGB, RGBA, grey, palette with tRNS and 16-bit files; reload; bad files.
#include "TestImages.h"

#include "texture/TextureLoaderPNG.h"

#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

namespace {

const PngShape rgba = {2, 1, PNG_COLOR_TYPE_RGB_ALPHA, 8, {10, 20, 30, 40, 50, 60, 70, 80}, {}, {}};
const PngShape rgb = {2, 1, PNG_COLOR_TYPE_RGB, 8, {10, 20, 30, 50, 60, 70}, {}, {}};

Bytes pngFile(const PngShape& shape)
{
    EXPECT_TRUE(writePng(scratchPath("image.png"), shape));
    return readBytes(scratchPath("image.png"));
}

}  // namespace

TEST(PngLoad, EachColourTypeGivesEachCodeItsChannels)
{
    TextureLoaderPNG loader;
    expectEveryCode(loader, pngFile(rgba), "rgba.png", {10, 20, 30, 40}, {50, 60, 70, 80});
    // No alpha: red stands in for the alpha code, opaque for RGBA.
    expectEveryCode(loader, pngFile(rgb), "rgb.png", {10, 20, 30, 10}, {50, 60, 70, 50}, false);
    const struct {
        PngShape shape;
        int code;
        Bytes expected;
    } cases[] = {
        {{2, 1, PNG_COLOR_TYPE_GRAY, 8, {100, 200}, {}, {}}, 7, {100, 100, 100, 200, 200, 200}},
        {{2, 1, PNG_COLOR_TYPE_GRAY, 8, {100, 200}, {}, {}}, 8, {100, 100, 100, 255, 200, 200, 200, 255}},
        {{2, 1, PNG_COLOR_TYPE_GRAY, 4, {0xf8}, {}, {}}, 5, {0xff, 0x88}},
        {{1, 1, PNG_COLOR_TYPE_GRAY_ALPHA, 8, {90, 33}, {}, {}}, 8, {90, 90, 90, 33}},
        {{3, 1, PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2}, {255, 0, 0, 0, 255, 0, 0, 0, 255}, {0, 128}},
         8,
         {255, 0, 0, 0, 0, 255, 0, 128, 0, 0, 255, 255}},
        {{1, 1, PNG_COLOR_TYPE_RGB, 16, {0x12, 0x34, 0xab, 0xcd, 0xfe, 0x01}, {}, {}}, 7, {0x12, 0xab, 0xfe}},
        {{1, 2, PNG_COLOR_TYPE_RGB, 8, {255, 0, 0, 0, 0, 255}, {}, {}}, 7, {255, 0, 0, 0, 0, 255}},
    };
    for (const auto& c : cases) {
        TexturePtr t = loadBytes(loader, pngFile(c.shape), "case.png", c.code);
        ASSERT_TRUE(t) << c.shape.colorType << "/" << c.shape.bitDepth;
        EXPECT_EQ(8, t->getBitsPerPixel());
        EXPECT_EQ(c.expected, pixelsOf(t.get())) << c.shape.colorType << "/" << c.shape.bitDepth;
    }
}

TEST(PngLoad, ReloadDecodesIntoTheSameBufferWithItsOwnFormat)
{
    TextureLoaderPNG loader;
    std::string path = scratchPath("reload.png");
    ASSERT_TRUE(writePng(path, rgb));
    TexturePtr t(loader.loadTexture(path.c_str(), 6));
    ASSERT_TRUE(t);
    const unsigned char* buffer = t->getDataPtr();
    ASSERT_TRUE(writePng(path, {2, 1, PNG_COLOR_TYPE_RGB, 8, {1, 2, 3, 4, 5, 6}, {}, {}}));
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(buffer, t->getDataPtr());
    EXPECT_EQ(Bytes({3, 1, 6, 4}), pixelsOf(t.get()));
    ASSERT_TRUE(writePng(path, {1, 1, PNG_COLOR_TYPE_RGB, 8, {7, 8, 9}, {}, {}}));
    EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(Bytes({3, 1, 6, 4}), pixelsOf(t.get()));
}

TEST(PngLoad, AnEightThousandByFourThousandPictureLoadsWithinTheSizeCaps)
{
    // One-bit grey keeps the file small; scrambled bits keep deflate from packing it past belief.
    const int w = 8192, h = 4096;
    PngShape big = {w, h, PNG_COLOR_TYPE_GRAY, 1, Bytes(static_cast<size_t>(w / 8) * h), {}, {}};
    unsigned seed = 1;
    for (unsigned char& b : big.samples)
        b = static_cast<unsigned char>((seed = seed * 1103515245u + 12345u) >> 24);
    TextureLoaderPNG loader;
    TexturePtr t = loadBytes(loader, pngFile(big), "big.png", 5);
    ASSERT_TRUE(t);
    EXPECT_EQ(w, t->getWidth());
    EXPECT_EQ(h, t->getHeight());
    // The first sample byte's top bit is the first pixel, the last byte's low bit the last.
    EXPECT_EQ(big.samples.front() & 0x80 ? 255 : 0, t->getDataPtr()[0]);
    EXPECT_EQ(big.samples.back() & 1 ? 255 : 0, t->getDataPtr()[t->getDataSize() - 1]);
    // The caps every loader shares: 2^26 pixels, 16384 a side.
    EXPECT_TRUE(TextureLoader::sizeUsable(8192, 8192));
    EXPECT_TRUE(TextureLoader::sizeUsable(16384, 4096));
    EXPECT_FALSE(TextureLoader::sizeUsable(8192, 8193));
    EXPECT_FALSE(TextureLoader::sizeUsable(16385, 1));
}

TEST(PngLoad, BadFilesGiveNull)
{
    TextureLoaderPNG loader;
    Bytes whole = pngFile(rgba);
    EXPECT_FALSE(loadBytes(loader, whole, "code0.png", 0));
    EXPECT_FALSE(loadBytes(loader, whole, "code9.png", 9));
    EXPECT_FALSE(loader.loadTexture(scratchPath("missing.png").c_str(), 7));
    EXPECT_FALSE(loadBytes(loader, {'G', 'I', 'F', '8', '9', 'a', 0, 0}, "gif.png", 7));
    expectEveryTruncationFails(loader, whole, "cut.png", 8);
    // IHDR 4096 x 4096 (big-endian at 16 and 20), CRC fixed up so libpng accepts the header.
    Bytes huge = patched(whole, {{18, 0x10}, {19, 0}, {22, 0x10}, {23, 0}});
    uLong crc = crc32(0, huge.data() + 12, 17);
    for (int i = 0; i < 4; ++i)
        huge[29 + i] = static_cast<unsigned char>(crc >> (24 - 8 * i));
    EXPECT_FALSE(loadBytes(loader, huge, "huge.png", 8));
}
