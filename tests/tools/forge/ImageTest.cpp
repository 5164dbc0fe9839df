// The forge's float pictures: writes outside stay outside, resampling keeps the mean, bytes round and clamp.
#include "Image.h"
#include "Painter.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

double meanRed(const Image& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += image.at(x, y).r * image.at(x, y).a;
    return sum / (image.width() * image.height());
}

TEST(Image, WritesOutsideChangeNothingAndShapesAreClipped)
{
    const Rgba red{ 1.0f, 0.0f, 0.0f, 1.0f };
    Image image(8, 8, Rgba{ 0.0f, 0.0f, 0.0f, 0.0f });
    image.blend(-1, 0, red, 1.0);
    image.blend(8, 1, red, 1.0);
    image.add(8, 8, red, 1.0);
    EXPECT_EQ(meanRed(image), 0.0);
    Painter(image).polygon({ { -20, -20 }, { 30, -20 }, { 30, 30 } }, red);
    EXPECT_EQ(image.at(7, 0).a, 1.0f);
    EXPECT_TRUE(image.resized(0, 4).empty());
    EXPECT_TRUE(image.toBytes(2).empty());
}

TEST(Image, ShrinkAndWrappedBlurKeepTheMean)
{
    Image image(30, 21);
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 30; ++x)
            image.at(x, y) = Rgba{ (float)((x * 7 + y * 3) % 11) / 10.0f, 0.0f, 0.0f, 1.0f };
    EXPECT_NEAR(meanRed(image.resized(8, 16)), meanRed(image), 0.02);
    image.at(0, 0).r = 5.0f;
    const Image blurred = image.blurred(3.0, Image::Wrap);
    EXPECT_NEAR(meanRed(blurred), meanRed(image), 1e-6);
}

TEST(Image, BytesRoundAndClampIncludingNaN)
{
    const std::pair<float, int> cases[] = { { 0.0f, 0 }, { 1.0f, 255 }, { -0.2f, 0 }, { 7.0f, 255 }, { std::nanf(""), 0 },
        { 0.5f, 128 }, { 0.4f / 255.0f, 0 }, { 0.6f / 255.0f, 1 } };
    for (const auto& [value, byte] : cases)
        EXPECT_EQ(Image::toByte(value), byte) << value;
}

} // namespace
