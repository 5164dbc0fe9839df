// Color: clamping on assignment and on request, unclamped arithmetic in between.
#include "math/Color.h"

#include <gtest/gtest.h>

TEST(Color, AssignClampsEachChannelButArithmeticRunsFreeUntilClamped)
{
    Color c;
    c.assign(1.5f, -0.2f, 0.5f, 2.0f);
    EXPECT_EQ(c, Color(1, 0, 0.5f, 1));
    Color sum = Color(0.8f, 0.5f, 0.1f, 1) + Color(0.5f, 0.5f, 0, 1);
    EXPECT_FLOAT_EQ(sum.r, 1.3f);
    EXPECT_FLOAT_EQ(sum.a, 2.0f);
    EXPECT_EQ(sum.clamp(), Color(1, 1, 0.1f, 1));
    Color diff = Color(0.8f, 0.5f, 0.1f, 1) - Color(1, 0, 0, 0);
    EXPECT_EQ(diff.clamp().r, 0.0f);
}
