// The frame clock's sampling and averaging.
#include "runtime/Timer.h"

Timer::Timer() : totalTime(0.0), deltaTime(0.0), sampleIndex(0), framesProcessed(0), samples() {}

Timer::~Timer() {}

void Timer::setup()
{
    totalTime = 0.0;
    deltaTime = 0.0;
    sampleIndex = 0;
    framesProcessed = 0;
}

void Timer::update()
{
    double seconds = getUpdateSecs();
    samples[sampleIndex] = seconds;
    deltaTime = seconds;
    totalTime += seconds;
    sampleIndex = (sampleIndex + 1) % SAMPLE_COUNT;
    ++framesProcessed;
}

double Timer::getFramesPerSec() const
{
    unsigned count = framesProcessed < SAMPLE_COUNT ? framesProcessed : SAMPLE_COUNT;
    double sum = 0.0;
    for (unsigned i = 0; i < count; ++i)
        sum += samples[i];
    // The divisor stays 24 even for fewer samples; an all-zero sum gives infinity.
    return 1.0 / (sum / SAMPLE_COUNT);
}
