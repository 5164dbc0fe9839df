// Color: clamping on assignment and on request, unclamped arithmetic, normalisation.
#include "math/Color.h"

#include <gtest/gtest.h>
#include <sstream>

TEST(ColorClamp, AssignKeepsChannelsInRange)
{
    Color c;
    c.assign(1.5f, -0.2f, 0.5f, 2.0f);
    EXPECT_EQ(c, Color(1, 0, 0.5f, 1));
    EXPECT_EQ(Color(-1, 3, 0.25f, -0.5f), Color(0, 1, 0.25f, 0));
    EXPECT_EQ(Color(), Color(0, 0, 0, 0));
    EXPECT_EQ(Color(0.1f, 0.2f, 0.3f).a, 1.0f);
}

TEST(ColorClamp, ArithmeticRunsFreeUntilClamped)
{
    Color c(0.8f, 0.5f, 0.1f, 1);
    Color sum = c + Color(0.5f, 0.5f, 0, 1);
    EXPECT_FLOAT_EQ(sum.r, 1.3f);
    EXPECT_FLOAT_EQ(sum.a, 2.0f);
    Color diff = c - Color(1, 0, 0, 0);
    EXPECT_FLOAT_EQ(diff.r, -0.2f);
    sum.clamp();
    diff.clamp();
    EXPECT_EQ(sum, Color(1, 1, 0.1f, 1));
    EXPECT_EQ(diff.r, 0.0f);
    Color bounds(0, 1, 0, 1);
    EXPECT_EQ(bounds.clamp(), Color(0, 1, 0, 1));
}

TEST(ColorArithmetic, AllFourChannels)
{
    Color c(0.5f, 0.25f, 1, 0.5f);
    EXPECT_EQ(c * 0.5f, Color(0.25f, 0.125f, 0.5f, 0.25f));
    EXPECT_EQ(c * Color(0.5f, 1, 0, 0.5f), Color(0.25f, 0.25f, 0, 0.25f));
    Color d = c / 2.0f;
    EXPECT_EQ(d.a, 0.25f);
    d += c;
    d -= c;
    d *= 2.0f;
    d /= 1.0f;
    EXPECT_EQ(d, c);
}

TEST(ColorNormalize, BrightestChannelBecomesOne)
{
    Color c(0.2f, 0.4f, 0.1f, 0.5f);
    c.normalize();
    EXPECT_FLOAT_EQ(c.g, 1.0f);
    EXPECT_FLOAT_EQ(c.r, 0.5f);
    EXPECT_FLOAT_EQ(c.a, 0.5f);
    Color black(0, 0, 0, 1);
    EXPECT_EQ(black.normalize(), Color(0, 0, 0, 1));
}

TEST(ColorText, RoundTrip)
{
    Color c(0.1f, 1.0f / 3.0f, 0.7f, 0.9f);
    std::stringstream text;
    text << c;
    Color back;
    text >> back;
    EXPECT_EQ(back, c);
}
