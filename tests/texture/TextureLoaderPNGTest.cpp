// PNG loading: every format code from RGB, RGBA, grey, palette with tRNS and 16-bit files; reload; bad files.
#include "TestImages.h"

#include "texture/Texture.h"
#include "texture/TextureLoaderPNG.h"

#include <gtest/gtest.h>
#include <memory>
#include <png.h>
#include <zlib.h>

namespace {

Bytes pixelsOf(const Texture* t)
{
    return Bytes(t->getDataPtr(), t->getDataPtr() + t->getDataSize());
}

class PngLoad : public ::testing::Test {
protected:
    std::unique_ptr<Texture> load(const PngSpec& shape, int format)
    {
        std::string path = scratchPath("image.png");
        EXPECT_TRUE(writePng(path, shape));
        return std::unique_ptr<Texture>(loader.loadTexture(path.c_str(), format));
    }

    static PngSpec rgba()
    {
        PngSpec shape;
        shape.width = 2;
        shape.height = 1;
        shape.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
        shape.samples = {10, 20, 30, 40, 50, 60, 70, 80};
        return shape;
    }

    static PngSpec rgb()
    {
        PngSpec shape;
        shape.width = 2;
        shape.height = 1;
        shape.colorType = PNG_COLOR_TYPE_RGB;
        shape.samples = {10, 20, 30, 50, 60, 70};
        return shape;
    }

    TextureLoaderPNG loader;
};

} // namespace

TEST_F(PngLoad, RgbaFileGivesEachCodeItsChannels)
{
    const Bytes expected[9] = {
        {}, {10, 50}, {20, 60}, {30, 70}, {40, 80}, {30, 70}, {30, 40, 70, 80},
        {10, 20, 30, 50, 60, 70}, {10, 20, 30, 40, 50, 60, 70, 80},
    };
    for (int code = 1; code <= 8; ++code) {
        auto t = load(rgba(), code);
        ASSERT_TRUE(t) << code;
        EXPECT_EQ(2, t->getWidth());
        EXPECT_EQ(1, t->getHeight());
        EXPECT_EQ(8, t->getBitsPerPixel());
        EXPECT_EQ(code, t->getFormat());
        EXPECT_EQ(expected[code], pixelsOf(t.get())) << code;
    }
}

TEST_F(PngLoad, MissingAlphaIsReplacedByRedOrOpaque)
{
    auto alpha = load(rgb(), 4);
    ASSERT_TRUE(alpha);
    EXPECT_EQ(Bytes({10, 50}), pixelsOf(alpha.get()));
    auto luminanceAlpha = load(rgb(), 6);
    ASSERT_TRUE(luminanceAlpha);
    EXPECT_EQ(Bytes({30, 10, 70, 50}), pixelsOf(luminanceAlpha.get()));
    auto full = load(rgb(), 8);
    ASSERT_TRUE(full);
    EXPECT_EQ(Bytes({10, 20, 30, 255, 50, 60, 70, 255}), pixelsOf(full.get()));
}

TEST_F(PngLoad, GreyBecomesEqualRgbWithOpaqueAlpha)
{
    PngSpec grey;
    grey.width = 2;
    grey.height = 1;
    grey.colorType = PNG_COLOR_TYPE_GRAY;
    grey.samples = {100, 200};
    auto asRgb = load(grey, 7);
    ASSERT_TRUE(asRgb);
    EXPECT_EQ(Bytes({100, 100, 100, 200, 200, 200}), pixelsOf(asRgb.get()));
    auto asRgba = load(grey, 8);
    ASSERT_TRUE(asRgba);
    EXPECT_EQ(Bytes({100, 100, 100, 255, 200, 200, 200, 255}), pixelsOf(asRgba.get()));
}

TEST_F(PngLoad, LowDepthGreyIsExpandedToEightBits)
{
    PngSpec grey;
    grey.width = 2;
    grey.height = 1;
    grey.colorType = PNG_COLOR_TYPE_GRAY;
    grey.bitDepth = 4;
    grey.samples = {0xf8};
    auto t = load(grey, 5);
    ASSERT_TRUE(t);
    EXPECT_EQ(Bytes({0xff, 0x88}), pixelsOf(t.get()));
}

TEST_F(PngLoad, GreyAlphaKeepsItsAlpha)
{
    PngSpec ga;
    ga.width = 1;
    ga.height = 1;
    ga.colorType = PNG_COLOR_TYPE_GRAY_ALPHA;
    ga.samples = {90, 33};
    auto t = load(ga, 8);
    ASSERT_TRUE(t);
    EXPECT_EQ(Bytes({90, 90, 90, 33}), pixelsOf(t.get()));
}

TEST_F(PngLoad, PaletteWithTransparencyGetsAlphaPerEntry)
{
    PngSpec pal;
    pal.width = 3;
    pal.height = 1;
    pal.colorType = PNG_COLOR_TYPE_PALETTE;
    pal.palette = {255, 0, 0, 0, 255, 0, 0, 0, 255};
    pal.trns = {0, 128};
    pal.samples = {0, 1, 2};
    auto t = load(pal, 8);
    ASSERT_TRUE(t);
    EXPECT_EQ(Bytes({255, 0, 0, 0, 0, 255, 0, 128, 0, 0, 255, 255}), pixelsOf(t.get()));
    auto alpha = load(pal, 4);
    ASSERT_TRUE(alpha);
    EXPECT_EQ(Bytes({0, 128, 255}), pixelsOf(alpha.get()));
}

TEST_F(PngLoad, SixteenBitChannelsKeepTheirHighByte)
{
    PngSpec deep;
    deep.width = 1;
    deep.height = 1;
    deep.colorType = PNG_COLOR_TYPE_RGB;
    deep.bitDepth = 16;
    deep.samples = {0x12, 0x34, 0xab, 0xcd, 0xfe, 0x01};
    auto t = load(deep, 7);
    ASSERT_TRUE(t);
    EXPECT_EQ(8, t->getBitsPerPixel());
    EXPECT_EQ(Bytes({0x12, 0xab, 0xfe}), pixelsOf(t.get()));
}

TEST_F(PngLoad, RowsComeTopFirst)
{
    PngSpec tall;
    tall.width = 1;
    tall.height = 2;
    tall.colorType = PNG_COLOR_TYPE_RGB;
    tall.samples = {255, 0, 0, 0, 0, 255};
    auto t = load(tall, 7);
    ASSERT_TRUE(t);
    EXPECT_EQ(Bytes({255, 0, 0, 0, 0, 255}), pixelsOf(t.get()));
}

TEST_F(PngLoad, ReloadDecodesIntoTheSameBufferWithItsOwnFormat)
{
    std::string path = scratchPath("reload.png");
    ASSERT_TRUE(writePng(path, rgb()));
    std::unique_ptr<Texture> t(loader.loadTexture(path.c_str(), 6));
    ASSERT_TRUE(t);
    const unsigned char* buffer = t->getDataPtr();
    PngSpec changed = rgb();
    changed.samples = {1, 2, 3, 4, 5, 6};
    ASSERT_TRUE(writePng(path, changed));
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(buffer, t->getDataPtr());
    EXPECT_EQ(Bytes({3, 1, 6, 4}), pixelsOf(t.get()));
}

TEST_F(PngLoad, ReloadRefusesADifferentSize)
{
    std::string path = scratchPath("resized.png");
    ASSERT_TRUE(writePng(path, rgb()));
    std::unique_ptr<Texture> t(loader.loadTexture(path.c_str(), 7));
    ASSERT_TRUE(t);
    PngSpec wider = rgba();
    wider.width = 1;
    wider.samples = {1, 2, 3, 4};
    ASSERT_TRUE(writePng(path, wider));
    EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(Bytes({10, 20, 30, 50, 60, 70}), pixelsOf(t.get()));
}

TEST_F(PngLoad, CannotWrite)
{
    Texture t;
    EXPECT_FALSE(loader.saveTexture(scratchPath("out.png").c_str(), &t));
}

TEST_F(PngLoad, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.png").c_str(), 7));
    std::string path = scratchPath("bad.png");
    ASSERT_TRUE(writeBytes(path, {}));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
    ASSERT_TRUE(writeBytes(path, {'G', 'I', 'F', '8', '9', 'a', 0, 0}));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
}

TEST_F(PngLoad, EveryTruncationFails)
{
    std::string good = scratchPath("whole.png");
    ASSERT_TRUE(writePng(good, rgba()));
    Bytes whole = readBytes(good);
    std::string cut = scratchPath("cut.png");
    for (size_t length = 0; length < whole.size(); ++length) {
        ASSERT_TRUE(writeBytes(cut, Bytes(whole.begin(), whole.begin() + length)));
        EXPECT_EQ(nullptr, loader.loadTexture(cut.c_str(), 8)) << "cut at " << length;
    }
}

TEST_F(PngLoad, AbsurdSizeInTheHeaderIsRefusedBeforeAllocating)
{
    std::string good = scratchPath("size.png");
    ASSERT_TRUE(writePng(good, rgba()));
    Bytes bytes = readBytes(good);
    // IHDR width and height (big-endian at 16 and 20), CRC fixed up so libpng accepts the header.
    const unsigned char huge[8] = {0x00, 0x00, 0x10, 0x00, 0x00, 0x00, 0x10, 0x00};
    for (int i = 0; i < 8; ++i)
        bytes[16 + i] = huge[i];
    uLong crc = crc32(0, bytes.data() + 12, 17);
    for (int i = 0; i < 4; ++i)
        bytes[29 + i] = static_cast<unsigned char>(crc >> (24 - 8 * i));
    ASSERT_TRUE(writeBytes(good, bytes));
    EXPECT_EQ(nullptr, loader.loadTexture(good.c_str(), 8));
}

TEST_F(PngLoad, FormatCodesOutsideTheTableAreRefused)
{
    std::string path = scratchPath("codes.png");
    ASSERT_TRUE(writePng(path, rgba()));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 0));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 9));
}
