// Base of every scene on the timeline: a layer, a time span and the four life-cycle steps.
#pragma once

#include "runtime/EffectTimer.h"

class Effect {
public:
    Effect();
    Effect(short layer, const EffectTimer& timer);
    virtual ~Effect();

    // Called once when the timeline starts the effect.
    virtual void initiate() = 0;
    // Called by the timeline once a frame in the seconds before the effect starts, while other scenes run: loads
    // one more piece of what initiate would load (through the process-wide caches, or kept by the effect for
    // initiate to use), so that the start does not stall a frame. Must leave GL as it found it and change
    // nothing drawn. Returns true while pieces are left; the default has none.
    virtual bool preload() { return false; }
    // How long before its start the effect is given preload steps, in scene seconds.
    virtual float getPreloadLead() const { return PRELOAD_SECONDS; }
    static constexpr float PRELOAD_SECONDS = 4.0f;
    // Called when the effect leaves the running list.
    virtual void shutdown() = 0;
    // Must advance the effect's own timer (updateTimer): the timeline retires effects by it.
    virtual void update(float seconds) = 0;
    virtual void display() = 0;

    short getLayer() const { return layer; }
    const EffectTimer& getTimer() const { return timer; }
    void updateTimer(float seconds) { timer.update(seconds); }
    bool isRunning() const;
    bool isFinished() const;

protected:
    short layer;
    EffectTimer timer;
};
