// The fixed-step frame clock: exact totals, rejected steps, step changes and the rate it reports.
#include "runtime/FixedStepTimer.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

TEST(FixedStepTimerSteps, TotalIsStepsTimesStepWhateverTheWallClockDoes)
{
    FixedStepTimer timer(0.125);
    timer.setup();
    for (int i = 0; i < 80; ++i)
        timer.update();
    EXPECT_EQ(timer.getTotalTime(), 10.0);
    EXPECT_EQ(timer.getDeltaTime(), 0.125);
    EXPECT_EQ(timer.getFramesProcessed(), 80u);
}

TEST(FixedStepTimerSteps, ChangingTheStepLandsOnAChosenTime)
{
    // Nine steps of 0.1 then the remainder: the caller reaches 1.0 within rounding.
    FixedStepTimer timer(0.1);
    timer.setup();
    for (int i = 0; i < 9; ++i)
        timer.update();
    timer.setStep(1.0 - timer.getTotalTime());
    timer.update();
    EXPECT_NEAR(timer.getTotalTime(), 1.0, 1e-12);
    EXPECT_EQ(timer.getFramesProcessed(), 10u);
}

TEST(FixedStepTimerSteps, SetupRestartsTheCountButKeepsTheStep)
{
    FixedStepTimer timer(0.5);
    timer.update();
    timer.update();
    timer.setup();
    EXPECT_EQ(timer.getTotalTime(), 0.0);
    EXPECT_EQ(timer.getFramesProcessed(), 0u);
    EXPECT_EQ(timer.getStep(), 0.5);
    timer.update();
    EXPECT_EQ(timer.getTotalTime(), 0.5);
}

TEST(FixedStepTimerSteps, ZeroStepHoldsTimeStill)
{
    FixedStepTimer timer(0.0);
    timer.setup();
    timer.update();
    EXPECT_EQ(timer.getTotalTime(), 0.0);
    EXPECT_EQ(timer.getFramesProcessed(), 1u);
}

TEST(FixedStepTimerBadSteps, NegativeAndNonFiniteStepsBecomeZero)
{
    const double bad[] = {-0.04, -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::quiet_NaN()};
    for (double step : bad) {
        FixedStepTimer timer(step);
        EXPECT_EQ(timer.getStep(), 0.0) << step;
        timer.setStep(0.25);
        timer.setStep(step);
        EXPECT_EQ(timer.getStep(), 0.0) << step;
        timer.setup();
        timer.update();
        EXPECT_EQ(timer.getTotalTime(), 0.0) << step;
    }
}

TEST(FixedStepTimerRate, FullRingReportsTheStepRate)
{
    FixedStepTimer timer(0.03125);
    timer.setup();
    for (int i = 0; i < 30; ++i)
        timer.update();
    EXPECT_DOUBLE_EQ(timer.getFramesPerSec(), 32.0);
}

TEST(FixedStepTimerRate, KeepsTheBaseClocksHighEarlyFigure)
{
    // The shared averaging divides by 24 from the first frame on.
    FixedStepTimer timer(0.02);
    timer.setup();
    for (int i = 0; i < 5; ++i)
        timer.update();
    EXPECT_NEAR(timer.getFramesPerSec(), 240.0, 1e-9);
}
