// The generator and the noise must repeat exactly and tile without seams.
#include "Noise.h"
#include "Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

TEST(RandomSequence, SameSeedSameNumbers)
{
    Random a(42);
    Random b(42);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(a.next(), b.next());
}

TEST(RandomSequence, DifferentSeedsDiffer)
{
    Random a(1);
    Random b(2);
    int same = 0;
    for (int i = 0; i < 100; ++i)
        same += a.next() == b.next();
    EXPECT_LT(same, 3);
}

TEST(RandomSequence, UniformStaysInHalfOpenRangeWithFairMean)
{
    Random r(7);
    double sum = 0.0;
    const int n = 100000;
    for (int i = 0; i < n; ++i) {
        const double u = r.uniform();
        ASSERT_GE(u, 0.0);
        ASSERT_LT(u, 1.0);
        sum += u;
    }
    EXPECT_NEAR(sum / n, 0.5, 0.01);
}

TEST(RandomSequence, BelowCoversEveryValueAndRejectsEmptyRanges)
{
    Random r(9);
    std::set<int> seen;
    for (int i = 0; i < 2000; ++i) {
        const int v = r.below(10);
        ASSERT_GE(v, 0);
        ASSERT_LT(v, 10);
        seen.insert(v);
    }
    EXPECT_EQ(seen.size(), 10u);
    EXPECT_EQ(r.below(0), 0);
    EXPECT_EQ(r.below(-5), 0);
}

TEST(RandomHash, SensitiveToEveryArgument)
{
    const uint32_t h = Random::hash(3, 4, 5);
    EXPECT_EQ(h, Random::hash(3, 4, 5));
    EXPECT_NE(h, Random::hash(4, 3, 5));
    EXPECT_NE(h, Random::hash(3, 4, 6));
    EXPECT_NE(Random::hash(-1, 0, 0), Random::hash(0, -1, 0));
}

TEST(NoiseTiling, GradientRepeatsAfterItsPeriodIncludingNegativeCoordinates)
{
    const Noise noise(11);
    for (double y = -3.3; y < 3.0; y += 0.37) {
        for (double x = -3.1; x < 3.0; x += 0.41) {
            ASSERT_NEAR(noise.gradient(x, y, 4), noise.gradient(x + 4.0, y, 4), 1e-9);
            ASSERT_NEAR(noise.gradient(x, y, 4), noise.gradient(x, y - 8.0, 4), 1e-9);
        }
    }
}

TEST(NoiseTiling, FractalSumAndCellsRepeatToo)
{
    const Noise noise(12);
    for (double x = 0.05; x < 3.0; x += 0.29) {
        const double y = x * 0.7;
        ASSERT_NEAR(noise.fbm(x, y, 3, 5), noise.fbm(x + 3.0, y + 3.0, 3, 5), 1e-9);
        const Noise::Cells a = noise.cellular(x, y, 5);
        const Noise::Cells b = noise.cellular(x + 5.0, y - 5.0, 5);
        ASSERT_NEAR(a.f1, b.f1, 1e-9);
        ASSERT_NEAR(a.f2, b.f2, 1e-9);
    }
}

TEST(NoiseValues, GradientVanishesOnTheLatticeAndStaysBounded)
{
    const Noise noise(13);
    EXPECT_NEAR(noise.gradient(2.0, 3.0, 8), 0.0, 1e-12);
    double lo = 0.0, hi = 0.0;
    for (double y = 0.0; y < 8.0; y += 0.07) {
        for (double x = 0.0; x < 8.0; x += 0.07) {
            const double n = noise.gradient(x, y, 8);
            lo = std::fmin(lo, n);
            hi = std::fmax(hi, n);
        }
    }
    EXPECT_GE(lo, -1.01);
    EXPECT_LE(hi, 1.01);
    // Not flat: the field uses a good part of its range.
    EXPECT_LT(lo, -0.4);
    EXPECT_GT(hi, 0.4);
}

TEST(NoiseValues, CellDistancesAreOrderedAndRidgedIsUnitRange)
{
    const Noise noise(14);
    for (double x = 0.1; x < 6.0; x += 0.23) {
        const Noise::Cells c = noise.cellular(x, 1.7 * x, 6);
        ASSERT_LE(c.f1, c.f2);
        ASSERT_GE(c.f1, 0.0);
        ASSERT_LT(c.f2, 2.0);
        const double r = noise.ridged(x, x * 0.5, 4, 4);
        ASSERT_GE(r, 0.0);
        ASSERT_LE(r, 1.0);
    }
}

TEST(NoiseValues, SeedsGiveDifferentFields)
{
    const Noise a(1);
    const Noise b(2);
    double diff = 0.0;
    for (double x = 0.3; x < 4.0; x += 0.5)
        diff += std::fabs(a.gradient(x, 0.4, 4) - b.gradient(x, 0.4, 4));
    EXPECT_GT(diff, 0.5);
}

} // namespace
