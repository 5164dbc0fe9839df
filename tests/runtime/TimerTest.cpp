// Frame and scene clocks: sampling, the 24-frame average and its fixed divisor, tick resolution.
#include "runtime/EffectTimer.h"
#include "runtime/Timer.h"
#include "runtime/TimerLinux.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <vector>

namespace {

// Hands out scripted frame times so the averaging can be checked exactly.
class ScriptedTimer : public Timer {
public:
    std::vector<double> script;
    size_t next = 0;
    double getUpdateSecs() override { return next < script.size() ? script[next++] : 0.0; }
};

void frames(ScriptedTimer& timer, int count, double seconds)
{
    for (int i = 0; i < count; ++i) {
        timer.script.push_back(seconds);
        timer.update();
    }
}

}

TEST(EffectTimerClock, DefaultIsAllZero)
{
    EffectTimer timer;
    EXPECT_EQ(timer.start, 0.0f);
    EXPECT_EQ(timer.end, 0.0f);
    EXPECT_EQ(timer.current, 0.0f);
}

TEST(EffectTimerClock, ConstructedSpanStartsAtItsStart)
{
    EffectTimer timer(35.0f, 36.0f);
    EXPECT_EQ(timer.getStart(), 35.0f);
    EXPECT_EQ(timer.getEnd(), 36.0f);
    EXPECT_EQ(timer.getCurrent(), 35.0f);
}

TEST(EffectTimerClock, SetRewindsToTheNewStart)
{
    EffectTimer timer(0.0f, 100.0f);
    timer.update(15.0f);
    timer.set(10.0f, 20.0f);
    EXPECT_EQ(timer.current, 10.0f);
}

TEST(EffectTimerClock, UpdateRunsPastTheEndWithoutStopping)
{
    EffectTimer timer(0.0f, 1.0f);
    timer.update(0.75f);
    timer.update(0.75f);
    EXPECT_EQ(timer.current, 1.5f);
    timer.update(-2.0f);
    EXPECT_EQ(timer.current, -0.5f);
}

TEST(FrameTimerSampling, FreshTimerHasNothingCounted)
{
    ScriptedTimer timer;
    EXPECT_EQ(timer.getFramesProcessed(), 0u);
    EXPECT_EQ(timer.getTotalTime(), 0.0);
    EXPECT_EQ(timer.getDeltaTime(), 0.0);
}

TEST(FrameTimerSampling, UpdateKeepsDeltaTotalAndCount)
{
    ScriptedTimer timer;
    timer.script = {0.25, 0.5, 0.125};
    timer.update();
    timer.update();
    timer.update();
    EXPECT_EQ(timer.getDeltaTime(), 0.125);
    EXPECT_EQ(timer.getTotalTime(), 0.875);
    EXPECT_EQ(timer.getFramesProcessed(), 3u);
}

TEST(FrameTimerSampling, SetupStartsOver)
{
    ScriptedTimer timer;
    frames(timer, 30, 0.5);
    timer.setup();
    EXPECT_EQ(timer.getFramesProcessed(), 0u);
    EXPECT_EQ(timer.getTotalTime(), 0.0);
    EXPECT_EQ(timer.getDeltaTime(), 0.0);
    // The old ring must not leak into the average of the new run.
    frames(timer, 2, 0.01);
    EXPECT_DOUBLE_EQ(timer.getFramesPerSec(), 24.0 / 0.02);
}

TEST(FrameTimerRate, NoFrameYetIsInfinite)
{
    ScriptedTimer timer;
    EXPECT_EQ(timer.getFramesPerSec(), std::numeric_limits<double>::infinity());
}

TEST(FrameTimerRate, ZeroTickFramesAreInfinite)
{
    ScriptedTimer timer;
    frames(timer, 10, 0.0);
    EXPECT_TRUE(std::isinf(timer.getFramesPerSec()));
}

TEST(FrameTimerRate, FewFramesStillDivideByTwentyFour)
{
    ScriptedTimer timer;
    frames(timer, 5, 0.02);
    // 24 / 0.1, not the true 50.
    EXPECT_NEAR(timer.getFramesPerSec(), 240.0, 1e-9);
}

TEST(FrameTimerRate, FullRingIsTheTrueMeanRate)
{
    ScriptedTimer timer;
    frames(timer, 30, 0.02);
    EXPECT_NEAR(timer.getFramesPerSec(), 50.0, 1e-9);
}

TEST(FrameTimerRate, RingKeepsOnlyTheLastTwentyFour)
{
    ScriptedTimer timer;
    frames(timer, 24, 1.0);
    frames(timer, 6, 0.04);
    // Slots 0..5 were overwritten; 18 one-second samples remain.
    EXPECT_NEAR(timer.getFramesPerSec(), 24.0 / (18.0 + 6 * 0.04), 1e-9);
    frames(timer, 18, 0.04);
    EXPECT_NEAR(timer.getFramesPerSec(), 25.0, 1e-9);
    EXPECT_EQ(timer.getFramesProcessed(), 48u);
}

TEST(TickTimer, ReadsTheSystemTickRate)
{
    TimerLinux timer;
    EXPECT_GT(timer.getTicksPerSecond(), 0);
}

TEST(TickTimer, SetupThrowsAwayTheTimeSinceBoot)
{
    TimerLinux timer;
    timer.setup();
    timer.update();
    // Without the discarded reading the first frame would span the whole tick counter.
    EXPECT_LT(timer.getDeltaTime(), 1.0);
    EXPECT_GE(timer.getDeltaTime(), 0.0);
    EXPECT_EQ(timer.getFramesProcessed(), 1u);
}

TEST(TickTimer, MeasuresWholeTicksAndZeroWithinOne)
{
    TimerLinux timer;
    timer.setup();
    double tick = 1.0 / timer.getTicksPerSecond();
    bool sawZero = false;
    for (int i = 0; i < 1000 && !sawZero; ++i) {
        double seconds = timer.getUpdateSecs();
        double ticks = seconds / tick;
        EXPECT_NEAR(ticks, std::round(ticks), 1e-9);
        sawZero = seconds == 0.0;
    }
    EXPECT_TRUE(sawZero);
}
