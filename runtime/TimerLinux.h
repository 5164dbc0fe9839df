// The frame clock over the process-times tick counter.
#pragma once

#include "runtime/Timer.h"

#include <cstdint>

class TimerLinux : public Timer {
public:
    TimerLinux();

    // Throws one reading away so that the first frame measures from here.
    void setup() override;
    // Resolution is one clock tick; a frame shorter than that measures 0.
    double getUpdateSecs() override;

    int getTicksPerSecond() const { return ticksPerSecond; }

private:
    uint32_t lastTicks;
    int32_t ticksPerSecond;
};
