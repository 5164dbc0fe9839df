// The scene clock of one effect.
#include "runtime/EffectTimer.h"

EffectTimer::EffectTimer() : start(0.0f), end(0.0f), current(0.0f) {}

EffectTimer::EffectTimer(float start, float end) : start(0.0f), end(0.0f), current(0.0f)
{
    set(start, end);
}

void EffectTimer::set(float newStart, float newEnd)
{
    start = newStart;
    end = newEnd;
    current = newStart;
}

void EffectTimer::update(float seconds)
{
    current += seconds;
}
