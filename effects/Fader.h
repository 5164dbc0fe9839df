// A full-screen colour whose opacity rises to 1 at the middle of its span and falls back to 0.
#pragma once

#include "math/Color.h"
#include "runtime/Effect.h"

class Fader : public Effect {
public:
    Fader(const Color& colour, short layer, const EffectTimer& timer);

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    float getAlpha() const { return alpha; }
    float getRate() const { return rate; }

protected:
    // Orthographic unit square, blending on, depth and culling off, the fade colour set.
    void beginBlend();
    void endBlend();
    // The full-screen quad, drawn between the two.
    virtual void drawCover();
    // Lighting is switched off through the LightMgr for the quad and deliberately left
    // off: the driver turns it back on at the end of each frame. True when it was on.
    bool turnLightingOff();

    float alpha;
    float rate;
    // Only red, green and blue are drawn; the fade's alpha takes the place of the colour's.
    float colour[4];
};
