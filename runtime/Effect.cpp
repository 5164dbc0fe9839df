// Common state of every effect.
#include "runtime/Effect.h"

Effect::Effect() : layer(0), timer() {}

Effect::Effect(short layer, const EffectTimer& timer) : layer(layer), timer(timer) {}

Effect::~Effect() {}

bool Effect::isRunning() const
{
    return timer.start <= timer.current && timer.current <= timer.end;
}

bool Effect::isFinished() const
{
    return timer.current < timer.start || timer.current > timer.end;
}
