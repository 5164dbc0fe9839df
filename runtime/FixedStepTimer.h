// A frame clock that advances by a set step instead of the wall clock, for reproducible offline runs.
#pragma once

#include "runtime/Timer.h"

class FixedStepTimer : public Timer {
public:
    // A negative or non-finite step is taken as 0.
    explicit FixedStepTimer(double step);

    // Changes the step of the following frames; lets a caller land exactly on a chosen time.
    void setStep(double seconds);
    double getStep() const { return step; }

    // Every call reports the current step, whatever the wall clock did.
    double getUpdateSecs() override;

private:
    double step;
};
