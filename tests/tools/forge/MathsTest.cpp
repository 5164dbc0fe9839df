// The forge's own elementary functions must agree with the C library to near double precision.
#include "Maths.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(MathsAccuracy, SineAndCosineOverManyTurns)
{
    for (double x = -40.0; x <= 40.0; x += 0.0137) {
        ASSERT_NEAR(Maths::sin(x), std::sin(x), 1e-13) << x;
        ASSERT_NEAR(Maths::cos(x), std::cos(x), 1e-13) << x;
    }
}

TEST(MathsAccuracy, SineAtQuadrantBoundaries)
{
    for (int k = -8; k <= 8; ++k) {
        const double x = k * Maths::pi / 4.0;
        EXPECT_NEAR(Maths::sin(x), std::sin(x), 1e-14) << k;
        EXPECT_NEAR(Maths::sin(std::nextafter(x, 1e9)), std::sin(std::nextafter(x, 1e9)), 1e-14) << k;
    }
}

TEST(MathsAccuracy, ExponentialRelativeError)
{
    for (double x = -50.0; x <= 50.0; x += 0.173)
        ASSERT_NEAR(Maths::exp(x) / std::exp(x), 1.0, 1e-13) << x;
    EXPECT_EQ(Maths::exp(0.0), 1.0);
}

TEST(MathsAccuracy, ExponentialSaturatesInsteadOfOverflowing)
{
    EXPECT_EQ(Maths::exp(-1000.0), 0.0);
    EXPECT_TRUE(std::isfinite(Maths::exp(1000.0)));
}

TEST(MathsAccuracy, LogarithmAndPower)
{
    for (double x = 1e-6; x < 1e6; x *= 1.37)
        ASSERT_NEAR(Maths::log(x), std::log(x), 1e-12 * std::fmax(1.0, std::fabs(std::log(x)))) << x;
    EXPECT_NEAR(Maths::pow(2.0, 10.0), 1024.0, 1e-9);
    EXPECT_NEAR(Maths::pow(0.3, 2.5), std::pow(0.3, 2.5), 1e-14);
}

TEST(MathsAccuracy, PowerAndLogOfNonPositiveAreSafe)
{
    EXPECT_EQ(Maths::pow(0.0, 2.0), 0.0);
    EXPECT_EQ(Maths::pow(-2.0, 2.0), 0.0);
    EXPECT_LT(Maths::log(0.0), -1e200);
}

TEST(MathsAccuracy, ArcTangentInEveryQuadrant)
{
    for (double a = -3.1; a <= 3.1; a += 0.05) {
        for (double r : { 1e-3, 1.0, 250.0 }) {
            const double y = r * std::sin(a);
            const double x = r * std::cos(a);
            ASSERT_NEAR(Maths::atan2(y, x), std::atan2(y, x), 1e-13) << a << " " << r;
        }
    }
    EXPECT_EQ(Maths::atan2(0.0, 0.0), 0.0);
    EXPECT_NEAR(Maths::atan2(1.0, 0.0), Maths::pi / 2.0, 1e-15);
    EXPECT_NEAR(Maths::atan2(0.0, -1.0), Maths::pi, 1e-15);
}

TEST(MathsHelpers, WrapAlwaysLandsInRange)
{
    EXPECT_DOUBLE_EQ(Maths::wrap(-0.25, 1.0), 0.75);
    EXPECT_DOUBLE_EQ(Maths::wrap(3.0, 1.0), 0.0);
    // A tiny negative value must not round up to exactly m.
    const double r = Maths::wrap(-1e-20, 1.0);
    EXPECT_GE(r, 0.0);
    EXPECT_LT(r, 1.0);
}

TEST(MathsHelpers, SmoothstepEdgesAndClamp)
{
    EXPECT_EQ(Maths::smoothstep(0.2, 0.4, 0.1), 0.0);
    EXPECT_EQ(Maths::smoothstep(0.2, 0.4, 0.5), 1.0);
    EXPECT_DOUBLE_EQ(Maths::smoothstep(0.2, 0.4, 0.3), 0.5);
    // Reversed edges fall instead of rising.
    EXPECT_EQ(Maths::smoothstep(0.4, 0.2, 0.1), 1.0);
    EXPECT_EQ(Maths::clamp(5.0, 0.0, 1.0), 1.0);
    EXPECT_EQ(Maths::clamp(-5.0, 0.0, 1.0), 0.0);
}

} // namespace
