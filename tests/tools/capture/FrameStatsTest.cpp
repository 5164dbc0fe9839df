// Frame-time figures: empty groups, odd and even medians, nearest-rank percentiles that never hide the worst frame.
#include "FrameStats.h"

#include <gtest/gtest.h>
#include <limits>

TEST(FrameStats, MediansAndNearestRankPercentilesFromUnsortedInput)
{
    EXPECT_EQ(FrameStats().getMedian(), 0.0);
    EXPECT_EQ(FrameStats().getPercentile(99.0), 0.0);
    FrameStats even;
    for (double ms : {8.0, 2.0, 6.0, 4.0})
        even.add(ms);
    EXPECT_EQ(even.getMedian(), 5.0);
    FrameStats stats;
    for (int i = 100; i >= 1; --i)
        stats.add(i);
    const std::pair<double, double> cases[] = {{99.0, 99.0}, {100.0, 100.0}, {0.5, 1.0}, {-20.0, 1.0}, {250.0, 100.0},
                                               {std::numeric_limits<double>::quiet_NaN(), 1.0}};
    for (const auto& [percent, value] : cases)
        EXPECT_EQ(stats.getPercentile(percent), value) << percent;
    // One slow frame in ten must show in the 99th percentile, not be averaged away.
    FrameStats ten;
    for (int i = 0; i < 10; ++i)
        ten.add(i == 9 ? 40.0 : 2.0);
    EXPECT_EQ(ten.getPercentile(99.0), 40.0);
}
