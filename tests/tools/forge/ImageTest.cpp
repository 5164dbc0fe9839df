// Compositing, resampling, blur and 8-bit conversion of the forge's float pictures.
#include "Image.h"
#include "Painter.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const Rgba red{ 1.0f, 0.0f, 0.0f, 1.0f };
const Rgba clear{ 0.0f, 0.0f, 0.0f, 0.0f };

double meanRed(const Image& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += image.at(x, y).r * image.at(x, y).a;
    return sum / (image.width() * image.height());
}

TEST(ImageBlend, HalfCoverageOverOpaqueMixesColours)
{
    Image image(1, 1, Rgba{ 0.0f, 0.0f, 1.0f, 1.0f });
    image.blend(0, 0, red, 0.5);
    EXPECT_FLOAT_EQ(image.at(0, 0).r, 0.5f);
    EXPECT_FLOAT_EQ(image.at(0, 0).b, 0.5f);
    EXPECT_FLOAT_EQ(image.at(0, 0).a, 1.0f);
}

TEST(ImageBlend, OverClearTakesTheColourUndiluted)
{
    Image image(1, 1, clear);
    image.blend(0, 0, red, 0.25);
    EXPECT_FLOAT_EQ(image.at(0, 0).r, 1.0f);
    EXPECT_FLOAT_EQ(image.at(0, 0).a, 0.25f);
    image.blend(0, 0, red, 0.25);
    EXPECT_FLOAT_EQ(image.at(0, 0).a, 0.4375f);
}

TEST(ImageBlend, OutsideOrZeroCoverageChangesNothing)
{
    Image image(2, 2, clear);
    image.blend(-1, 0, red, 1.0);
    image.blend(2, 1, red, 1.0);
    image.blend(0, 5, red, 1.0);
    image.blend(1, 1, red, 0.0);
    image.add(7, 7, red, 1.0);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(image.at(x, y).a, 0.0f);
}

TEST(ImageResize, HalvingAveragesEachBlock)
{
    Image image(4, 2, Rgba{ 0.0f, 0.0f, 0.0f, 1.0f });
    image.at(0, 0).r = 1.0f;
    image.at(1, 1).r = 1.0f;
    image.at(3, 0).r = 0.5f;
    const Image half = image.resized(2, 1);
    ASSERT_EQ(half.width(), 2);
    ASSERT_EQ(half.height(), 1);
    EXPECT_FLOAT_EQ(half.at(0, 0).r, 0.5f);
    EXPECT_FLOAT_EQ(half.at(1, 0).r, 0.125f);
}

TEST(ImageResize, FractionalShrinkKeepsTheMean)
{
    Image image(30, 21, clear);
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 30; ++x)
            image.at(x, y) = Rgba{ (float)((x * 7 + y * 3) % 11) / 10.0f, 0.0f, 0.0f, 1.0f };
    const Image small = image.resized(8, 16);
    EXPECT_NEAR(meanRed(small), meanRed(image), 0.02);
}

TEST(ImageResize, ConstantStaysConstantBothWays)
{
    const Image image(5, 3, Rgba{ 0.3f, 0.6f, 0.9f, 1.0f });
    for (const Image& r : { image.resized(13, 7), image.resized(2, 2), image.resized(5, 9) }) {
        for (int y = 0; y < r.height(); ++y)
            for (int x = 0; x < r.width(); ++x) {
                ASSERT_NEAR(r.at(x, y).g, 0.6f, 1e-6);
                ASSERT_NEAR(r.at(x, y).a, 1.0f, 1e-6);
            }
    }
}

TEST(ImageResize, RejectsEmptyTargets)
{
    const Image image(4, 4, red);
    EXPECT_TRUE(image.resized(0, 4).empty());
    EXPECT_TRUE(Image().resized(4, 4).empty());
}

TEST(ImageBlur, WrappedBlurKeepsTheMeanAndSpreadsEvenly)
{
    Image image(32, 16, Rgba{ 0.0f, 0.0f, 0.0f, 1.0f });
    image.at(0, 0).r = 1.0f;
    const Image blurred = image.blurred(3.0, Image::Wrap);
    EXPECT_NEAR(meanRed(blurred), meanRed(image), 1e-9);
    // The spot wraps round the corner: its four neighbours across the edges match.
    EXPECT_NEAR(blurred.at(1, 0).r, blurred.at(31, 0).r, 1e-6);
    EXPECT_NEAR(blurred.at(0, 1).r, blurred.at(0, 15).r, 1e-6);
    EXPECT_GT(blurred.at(2, 0).r, 0.0f);
}

TEST(ImageBlur, ClearPixelsLendNoColour)
{
    Image image(16, 1, Rgba{ 0.0f, 0.0f, 0.0f, 0.0f });
    for (int x = 0; x < 8; ++x)
        image.at(x, 0) = Rgba{ 1.0f, 1.0f, 1.0f, 1.0f };
    const Image blurred = image.blurred(2.0, Image::Clamp);
    // Alpha fades across the edge, but what colour there is stays white.
    EXPECT_LT(blurred.at(9, 0).a, 0.5f);
    EXPECT_GT(blurred.at(9, 0).a, 0.0f);
    EXPECT_NEAR(blurred.at(9, 0).r, 1.0f, 1e-5);
}

TEST(ImageBytes, RoundsAndClamps)
{
    EXPECT_EQ(Image::toByte(0.0f), 0);
    EXPECT_EQ(Image::toByte(1.0f), 255);
    EXPECT_EQ(Image::toByte(-0.2f), 0);
    EXPECT_EQ(Image::toByte(7.0f), 255);
    EXPECT_EQ(Image::toByte(std::nanf("")), 0);
    EXPECT_EQ(Image::toByte(0.5f), 128);
    EXPECT_EQ(Image::toByte(0.4f / 255.0f), 0);
    EXPECT_EQ(Image::toByte(0.6f / 255.0f), 1);
}

TEST(ImageBytes, LayoutIsRowMajorWithRequestedChannels)
{
    Image image(2, 2, clear);
    image.at(1, 0) = Rgba{ 1.0f, 0.0f, 0.0f, 1.0f };
    image.at(0, 1) = Rgba{ 0.0f, 0.0f, 1.0f, 0.5f };
    const auto rgba = image.toBytes(4);
    ASSERT_EQ(rgba.size(), 16u);
    EXPECT_EQ(rgba[4], 255); // second pixel of the first row, red
    EXPECT_EQ(rgba[7], 255);
    EXPECT_EQ(rgba[10], 255); // first pixel of the second row, blue
    EXPECT_EQ(rgba[11], 128);
    EXPECT_EQ(image.toBytes(3).size(), 12u);
    EXPECT_TRUE(image.toBytes(2).empty());
}

TEST(PainterShapes, DiscCoverageMatchesItsArea)
{
    Image image(64, 64, clear);
    Painter(image).disc(32.0, 32.0, 20.0, red);
    double area = 0.0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            area += image.at(x, y).a;
    EXPECT_NEAR(area, 3.14159265 * 400.0, 400.0 * 0.02);
    EXPECT_EQ(image.at(0, 0).a, 0.0f);
    EXPECT_EQ(image.at(32, 32).a, 1.0f);
}

TEST(PainterShapes, PolygonSignAndClipping)
{
    const std::vector<Point> square{ { 0, 0 }, { 10, 0 }, { 10, 10 }, { 0, 10 } };
    EXPECT_LT(Painter::polygonDistance(square, 5, 5), 0.0);
    EXPECT_NEAR(Painter::polygonDistance(square, 15, 5), 5.0, 1e-12);
    EXPECT_NEAR(Painter::polygonDistance(square, 5, 2), -2.0, 1e-12);
    // A shape hanging off the picture is clipped, not written out of bounds.
    Image image(8, 8, clear);
    Painter(image).polygon({ { -20, -20 }, { 30, -20 }, { 30, 30 } }, red);
    EXPECT_EQ(image.at(7, 0).a, 1.0f);
}

} // namespace
