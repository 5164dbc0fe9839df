// The fixed-step frame clock: exact totals, step changes, rejected steps and the rate it reports.
#include "runtime/FixedStepTimer.h"

#include <gtest/gtest.h>
#include <limits>

TEST(FixedStepTimer, TotalIsStepsTimesStepAndSetupKeepsTheStep)
{
    FixedStepTimer timer(0.125);
    timer.update();
    timer.setup();
    for (int i = 0; i < 80; ++i)
        timer.update();
    EXPECT_EQ(timer.getTotalTime(), 10.0);
    EXPECT_EQ(timer.getFramesProcessed(), 80u);
    EXPECT_DOUBLE_EQ(timer.getFramesPerSec(), 8.0);
    // The remainder as the last step lands on a chosen time.
    timer.setStep(0.1);
    timer.update();
    timer.setStep(10.25 - timer.getTotalTime());
    timer.update();
    EXPECT_NEAR(timer.getTotalTime(), 10.25, 1e-12);
}

TEST(FixedStepTimer, NegativeAndNonFiniteStepsBecomeZero)
{
    const double inf = std::numeric_limits<double>::infinity();
    for (double step : {-0.04, -inf, inf, std::numeric_limits<double>::quiet_NaN()}) {
        SCOPED_TRACE(step);
        FixedStepTimer timer(step);
        EXPECT_EQ(timer.getStep(), 0.0);
        timer.setStep(0.25);
        timer.setStep(step);
        EXPECT_EQ(timer.getStep(), 0.0);
        timer.setup();
        timer.update();
        EXPECT_EQ(timer.getTotalTime(), 0.0);
    }
}
