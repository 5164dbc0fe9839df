// Frame-time figures: empty groups, odd and even medians, nearest-rank percentiles, input order.
#include "FrameStats.h"

#include <gtest/gtest.h>
#include <limits>

TEST(FrameStatsFigures, EmptyGroupGivesZerosAndOneSampleIsEveryFigure)
{
    FrameStats stats;
    EXPECT_EQ(stats.getMinimum(), 0.0);
    EXPECT_EQ(stats.getMedian(), 0.0);
    EXPECT_EQ(stats.getPercentile(99.0), 0.0);
    stats.add(4.5);
    EXPECT_EQ(stats.getMinimum(), 4.5);
    EXPECT_EQ(stats.getMedian(), 4.5);
    EXPECT_EQ(stats.getPercentile(0.0), 4.5);
    EXPECT_EQ(stats.getPercentile(99.0), 4.5);
}

TEST(FrameStatsFigures, MedianOfOddAndEvenCountsFromUnsortedInput)
{
    FrameStats odd;
    for (double ms : {9.0, 1.0, 5.0})
        odd.add(ms);
    EXPECT_EQ(odd.getMedian(), 5.0);
    FrameStats even;
    for (double ms : {8.0, 2.0, 6.0, 4.0})
        even.add(ms);
    EXPECT_EQ(even.getMedian(), 5.0);
    EXPECT_EQ(even.getMinimum(), 2.0);
}

TEST(FrameStatsPercentiles, NearestRankOverAHundredSamples)
{
    FrameStats stats;
    for (int i = 100; i >= 1; --i)
        stats.add(i);
    EXPECT_EQ(stats.getPercentile(99.0), 99.0);
    EXPECT_EQ(stats.getPercentile(50.0), 50.0);
    EXPECT_EQ(stats.getPercentile(100.0), 100.0);
    EXPECT_EQ(stats.getPercentile(0.5), 1.0);
}

TEST(FrameStatsPercentiles, SmallGroupsReportTheirWorstFrame)
{
    // One slow frame in ten must show in the 99th percentile, not be averaged away.
    FrameStats stats;
    for (int i = 0; i < 9; ++i)
        stats.add(2.0);
    stats.add(40.0);
    EXPECT_EQ(stats.getPercentile(99.0), 40.0);
    EXPECT_EQ(stats.getMedian(), 2.0);
}

TEST(FrameStatsPercentiles, OutOfRangeAndNaNPercentsAreClamped)
{
    FrameStats stats;
    for (double ms : {3.0, 1.0, 2.0})
        stats.add(ms);
    EXPECT_EQ(stats.getPercentile(-20.0), 1.0);
    EXPECT_EQ(stats.getPercentile(250.0), 3.0);
    EXPECT_EQ(stats.getPercentile(std::numeric_limits<double>::quiet_NaN()), 1.0);
}
