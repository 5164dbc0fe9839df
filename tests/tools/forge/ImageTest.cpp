// The forge's float pictures: writes outside stay outside, bytes round and clamp.
#include "Image.h"
#include "Painter.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Image, WritesOutsideChangeNothingShapesAreClippedAndBytesRoundAndClampIncludingNaN)
{
    const Rgba red{1.0f, 0.0f, 0.0f, 1.0f};
    Image image(8, 8, Rgba{0.0f, 0.0f, 0.0f, 0.0f});
    image.blend(-1, 0, red, 1.0);
    image.blend(8, 1, red, 1.0);
    image.add(8, 8, red, 1.0);
    for (uint8_t byte : image.toBytes(4))
        ASSERT_EQ(byte, 0);
    Painter(image).polygon({{-20, -20}, {30, -20}, {30, 30}}, red);
    EXPECT_EQ(image.at(7, 0).a, 1.0f);
    EXPECT_TRUE(image.resized(0, 4).empty());
    EXPECT_TRUE(image.toBytes(2).empty());
    const std::pair<float, int> cases[] = {{0.0f, 0},          {1.0f, 255}, {-0.2f, 0},         {7.0f, 255},
                                           {std::nanf(""), 0}, {0.5f, 128}, {0.4f / 255.0f, 0}, {0.6f / 255.0f, 1}};
    for (const auto& [value, byte] : cases)
        EXPECT_EQ(Image::toByte(value), byte) << value;
}

}  // namespace
