// Frame clocks: sampling, the 24-frame average and its fixed divisor, the first tick reading.
#include "runtime/Timer.h"
#include "runtime/TimerLinux.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

// Reports whatever frame time the test sets next.
class ScriptedTimer : public Timer {
public:
    double next = 0.0;
    double getUpdateSecs() override { return next; }
    void frames(int count, double seconds)
    {
        next = seconds;
        for (int i = 0; i < count; ++i)
            update();
    }
};

}  // namespace

TEST(FrameTimer, SetupStartsOverWithoutTheOldRingAndTheRateIsInfiniteUntilSomethingIsMeasured)
{
    ScriptedTimer timer;
    EXPECT_TRUE(std::isinf(timer.getFramesPerSec()));
    timer.frames(30, 0.5);
    timer.setup();
    EXPECT_EQ(timer.getFramesProcessed(), 0u);
    EXPECT_EQ(timer.getTotalTime(), 0.0);
    timer.frames(10, 0.0);
    EXPECT_TRUE(std::isinf(timer.getFramesPerSec()));
    timer.frames(2, 0.01);
    EXPECT_DOUBLE_EQ(timer.getFramesPerSec(), 24.0 / 0.02);
}

TEST(FrameTimer, FewFramesStillDivideByTwentyFourAndTheRingKeepsTheLastTwentyFour)
{
    ScriptedTimer timer;
    timer.frames(5, 0.02);
    // 24 / 0.1, not the true 50: kept as it is.
    EXPECT_NEAR(timer.getFramesPerSec(), 240.0, 1e-9);
    timer.frames(19, 1.0);
    timer.frames(6, 0.04);
    EXPECT_NEAR(timer.getFramesPerSec(), 24.0 / (18.0 + 6 * 0.04), 1e-9);
    timer.frames(18, 0.04);
    EXPECT_NEAR(timer.getFramesPerSec(), 25.0, 1e-9);
}

TEST(TickTimer, FirstFrameMeasuresFromSetup)
{
    TimerLinux timer;
    ASSERT_GT(timer.getTicksPerSecond(), 0);
    timer.setup();
    timer.update();
    // Without the discarded reading the first frame would span the whole tick counter.
    EXPECT_GE(timer.getDeltaTime(), 0.0);
    EXPECT_LT(timer.getDeltaTime(), 1.0);
}
