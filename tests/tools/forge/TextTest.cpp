// FreeType text drawing and the console glyph atlas built on it.
#include "GlyphAtlas.h"
#include "TextRaster.h"

#include <gtest/gtest.h>

namespace {

const Rgba white{ 1.0f, 1.0f, 1.0f, 1.0f };

double ink(const Image& image, int x0, int y0, int w, int h)
{
    double sum = 0.0;
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x)
            sum += image.at(x, y).a;
    return sum;
}

TEST(TextRasterFont, MissingFontIsRefusedAndDrawsNothing)
{
    TextRaster text;
    EXPECT_FALSE(text.open("/nonexistent/font.ttf"));
    EXPECT_FALSE(text.isOpen());
    EXPECT_FALSE(text.setPixelSize(12, 12));
    Image image(32, 32);
    EXPECT_EQ(text.draw(image, "abc", 2, 20, white), 0.0);
    EXPECT_EQ(ink(image, 0, 0, 32, 32), 0.0);
}

TEST(TextRasterFont, WidthGrowsWithTextTrackingAndStretch)
{
    TextRaster text;
    ASSERT_TRUE(text.open(TextRaster::fontPath("DejaVuSans.ttf")));
    text.setHinting(false);
    ASSERT_TRUE(text.setPixelSize(20, 20));
    const double one = text.measure("AB");
    EXPECT_GT(text.measure("ABC"), one);
    EXPECT_NEAR(text.measure("AB", 5.0), one + 5.0, 1e-9);
    ASSERT_TRUE(text.setPixelSize(40, 20));
    EXPECT_NEAR(text.measure("AB"), 2.0 * one, 0.5);
}

TEST(TextRasterFont, InkLandsAboveTheBaselineWhereDrawn)
{
    TextRaster text;
    ASSERT_TRUE(text.open(TextRaster::fontPath("DejaVuSans-Bold.ttf")));
    text.setPixelSize(24, 24);
    Image image(100, 40);
    const double advance = text.draw(image, "HH", 10.0, 30.0, white);
    EXPECT_GT(advance, 20.0);
    EXPECT_GT(ink(image, 10, 10, (int)advance, 20), 50.0);
    // Capitals sit on the baseline: nothing below it, nothing left of the pen.
    EXPECT_EQ(ink(image, 0, 31, 100, 9), 0.0);
    EXPECT_EQ(ink(image, 0, 0, 10, 40), 0.0);
    EXPECT_NEAR(text.capHeight(), 18.0, 2.0);
}

TEST(GlyphAtlasCells, CellPositionsFollowTheConsoleLayout)
{
    int x = -1, y = -1;
    EXPECT_FALSE(GlyphAtlas::cellOf(32, x, y));
    EXPECT_FALSE(GlyphAtlas::cellOf(127, x, y));
    ASSERT_TRUE(GlyphAtlas::cellOf(33, x, y));
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    ASSERT_TRUE(GlyphAtlas::cellOf(48, x, y)); // the sixteenth character ends the first row
    EXPECT_EQ(x, 240);
    EXPECT_EQ(y, 0);
    ASSERT_TRUE(GlyphAtlas::cellOf(49, x, y));
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 24);
    ASSERT_TRUE(GlyphAtlas::cellOf(126, x, y));
    EXPECT_EQ(x, 208);
    EXPECT_EQ(y, 120);
}

TEST(GlyphAtlasBuild, EveryCharacterHasInkWithAClearBorder)
{
    GlyphAtlas atlas;
    ASSERT_TRUE(atlas.build(TextRaster::fontPath("DejaVuSansMono-Bold.ttf")));
    const Image& image = atlas.image();
    ASSERT_EQ(image.width(), 256);
    ASSERT_EQ(image.height(), 256);
    for (int c = GlyphAtlas::firstChar; c <= GlyphAtlas::lastChar; ++c) {
        int cx = 0, cy = 0;
        GlyphAtlas::cellOf(c, cx, cy);
        EXPECT_GT(ink(image, cx, cy, 16, 24), 3.0) << "character " << c;
        const double border = ink(image, cx, cy, 16, 1) + ink(image, cx, cy + 23, 16, 1)
            + ink(image, cx, cy, 1, 24) + ink(image, cx + 15, cy, 1, 24);
        EXPECT_EQ(border, 0.0) << "character " << c;
    }
}

TEST(GlyphAtlasBuild, UnusedCellsStayClearAndTexelsStayWhite)
{
    GlyphAtlas atlas;
    ASSERT_TRUE(atlas.build(TextRaster::fontPath("DejaVuSansMono-Bold.ttf")));
    const Image& image = atlas.image();
    // Past character 126: the rest of row 5 and everything below row 6's top.
    EXPECT_EQ(ink(image, 224, 120, 32, 24), 0.0);
    EXPECT_EQ(ink(image, 0, 144, 256, 112), 0.0);
    for (int y = 0; y < 256; y += 7)
        for (int x = 0; x < 256; x += 5)
            ASSERT_EQ(image.at(x, y).b, 1.0f);
}

TEST(GlyphAtlasBuild, ShapesDifferBetweenCharacters)
{
    GlyphAtlas atlas;
    ASSERT_TRUE(atlas.build(TextRaster::fontPath("DejaVuSansMono-Bold.ttf")));
    const Image& image = atlas.image();
    // "." is a small dot, "M" fills much of its cell.
    int dx = 0, dy = 0, mx = 0, my = 0;
    GlyphAtlas::cellOf('.', dx, dy);
    GlyphAtlas::cellOf('M', mx, my);
    EXPECT_GT(ink(image, mx, my, 16, 24), 4.0 * ink(image, dx, dy, 16, 24));
}

TEST(GlyphAtlasBuild, UnusableFontFails)
{
    GlyphAtlas atlas;
    EXPECT_FALSE(atlas.build("/nonexistent/mono.ttf"));
}

} // namespace
