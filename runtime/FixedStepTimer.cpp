// The fixed-step frame clock.
#include "runtime/FixedStepTimer.h"

#include <cmath>

FixedStepTimer::FixedStepTimer(double seconds) : step(0.0)
{
    setStep(seconds);
}

void FixedStepTimer::setStep(double seconds)
{
    // Time never runs backwards, and a NaN would poison every later total.
    step = (std::isfinite(seconds) && seconds > 0.0) ? seconds : 0.0;
}

double FixedStepTimer::getUpdateSecs()
{
    return step;
}
