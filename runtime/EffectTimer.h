// The scene clock of one effect: a start/end span and a current time, in seconds.
#pragma once

class EffectTimer {
public:
    EffectTimer();
    EffectTimer(float start, float end);

    // Setting a span rewinds the clock to its start.
    void set(float start, float end);
    // Never clamps at end: owners decide when they are finished.
    void update(float seconds);

    float getStart() const { return start; }
    float getEnd() const { return end; }
    float getCurrent() const { return current; }

    float start;
    float end;
    float current;
};
