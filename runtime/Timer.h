// The frame clock: per-frame time, total time, frame count and a 24-frame rate average.
#pragma once

#include <cstdint>

class Timer {
public:
    static const unsigned SAMPLE_COUNT = 24;

    Timer();
    virtual ~Timer();

    virtual void setup();
    // Seconds elapsed since the previous call; each platform supplies its own.
    virtual double getUpdateSecs() = 0;

    // Takes one frame sample.
    void update();

    double getDeltaTime() const { return deltaTime; }
    double getTotalTime() const { return totalTime; }
    unsigned getFramesProcessed() const { return framesProcessed; }
    // Always divides by the full ring, so the figure runs high for the first 24 frames.
    double getFramesPerSec() const;

protected:
    double totalTime;
    double deltaTime;
    uint32_t sampleIndex;
    uint32_t framesProcessed;
    double samples[SAMPLE_COUNT];
};
