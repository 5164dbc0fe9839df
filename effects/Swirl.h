// The closing swirl: a trail of up to 60 glowing points along a tumbling closed curve, seen through the feedback glow.
#pragma once

#include "math/Vector3.h"
#include "runtime/Effect.h"

class Diffusion;
class VertexArray;

class Swirl : public Effect {
public:
    static constexpr int MAX_POINTS = 60;
    // Seconds between two new trail points.
    static constexpr float STEP = 0.0125f;

    Swirl(short layer, const EffectTimer& timer);
    ~Swirl() override;
    Swirl(const Swirl&) = delete;
    Swirl& operator=(const Swirl&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // The curve at parameter a, in degrees.
    static Vector3 curve(float a);
    // The points at their resting places and a trail of one: the part of
    // initiate that needs no GL.
    void resetTrail();
    // What initiate reported: the feedback's answer.
    bool isReady() const { return ready; }

    float getAngle() const { return angle; }
    float getStepTimer() const { return stepTimer; }
    int getCount() const { return count; }
    const VertexArray* getPoints() const { return points; }
    const Diffusion* getDiffusion() const { return diffusion; }

private:
    void release();

    float angle;
    float stepTimer;
    int count;
    VertexArray* points;
    Diffusion* diffusion;
    bool ready;
};
