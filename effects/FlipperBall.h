// A ball of the flipper land: it falls, rolls down the slope of the ground under it and bounces, losing energy, never sinking in.
#pragma once

#include "effects/GroundSurface.h"
#include "math/Vector3.h"

class FlipperBall {
public:
    static constexpr float GRAVITY = 9.81f;
    // The share of its speed into the ground a ball keeps in a bounce; slower than BOUNCE_SPEED it
    // does not bounce at all but rolls on.
    static constexpr float RESTITUTION = 0.55f;
    static constexpr float BOUNCE_SPEED = 0.9f;
    // A bounce also scuffs a little of the speed along the ground.
    static constexpr float SCUFF = 0.04f;
    // Share of the speed lost each second while rolling.
    static constexpr float ROLLING_DRAG = 0.12f;
    // Closer than this to the ground, and not leaving it, the ball rolls.
    static constexpr float CONTACT_GAP = 0.02f;
    static constexpr float MAX_SPEED = 40.0f;

    explicit FlipperBall(float radius = 0.6f);

    void place(const Vector3& position, const Vector3& velocity);
    // One step of dt seconds (keep it short: a ball moves less than its radius in a step).
    // Over ground that stands still its energy (energy()) never grows.
    void step(const GroundSurface& ground, float dt);
    // Kicks from flippers, bumpers and other balls.
    void push(const Vector3& change) { velocity += change; }
    void moveBy(const Vector3& offset) { position += offset; }
    // Lifts a ball that was pushed into the ground back onto it, bouncing it if it was moving in.
    void meetGround(const GroundSurface& ground);

    // Kinetic and potential energy for a unit mass, the ground's height 0 being height 0.
    double energy() const;
    // Distance from the ball to the ground's tangent plane below it (negative: sunk in); false
    // where there is no ground.
    bool clearance(const GroundSurface& ground, float& out) const;

    const Vector3& getPosition() const { return position; }
    const Vector3& getVelocity() const { return velocity; }
    float getRadius() const { return radius; }
    bool isRolling() const { return rolling; }
    // The speed into the ground of the last real bounce, and seconds since it.
    float getLastBounce() const { return lastBounce; }
    float getSinceBounce() const { return sinceBounce; }

private:
    float clearanceTo(const GroundPoint& ground) const;
    void limitEnergy(double most);

    Vector3 position;
    Vector3 velocity;
    float radius;
    bool rolling;
    float lastBounce;
    float sinceBounce;
};
