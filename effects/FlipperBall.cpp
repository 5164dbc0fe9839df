// Ball motion: gravity in the air, the slope's pull along the ground, bounces that lose energy.
#include "effects/FlipperBall.h"

#include "math/Plane.h"

#include <cmath>

namespace {

const Vector3 DOWN(0.0f, -FlipperBall::GRAVITY, 0.0f);

}

FlipperBall::FlipperBall(float radius_) : radius(radius_), rolling(false), lastBounce(0.0f), sinceBounce(0.0f) {}

void FlipperBall::place(const Vector3& position_, const Vector3& velocity_)
{
    position = position_;
    velocity = velocity_;
    rolling = false;
}

double FlipperBall::energy() const
{
    const double vx = velocity.x;
    const double vy = velocity.y;
    const double vz = velocity.z;
    return 0.5 * (vx * vx + vy * vy + vz * vz) + static_cast<double>(GRAVITY) * position.y;
}

float FlipperBall::clearanceTo(const GroundPoint& ground) const
{
    // The ground's tangent plane: the centre stands (y - height) * normal.y from it.
    return (position.y - ground.height) * ground.normal.y - radius;
}

bool FlipperBall::clearance(const GroundSurface& ground, float& out) const
{
    GroundPoint below;
    if (!ground.groundAt(position.x, position.z, below))
        return false;
    out = clearanceTo(below);
    return true;
}

void FlipperBall::step(const GroundSurface& ground, float dt)
{
    const double before = energy();
    sinceBounce += dt;
    GroundPoint below;
    const bool over = ground.groundAt(position.x, position.z, below);
    const Vector3 riseVelocity(0.0f, over ? below.rise : 0.0f, 0.0f);
    rolling = over && clearanceTo(below) <= CONTACT_GAP && (velocity - riseVelocity).dot(below.normal) <= 0.01f;
    if (rolling) {
        // accelerationOnSlope gives the negated part of gravity along the ground: the ground
        // carries the rest, and the ball runs downhill.
        Vector3 uphill;
        Plane::accelerationOnSlope(DOWN, below.normal, uphill);
        velocity -= uphill * dt;
        velocity *= 1.0f - ROLLING_DRAG * dt;
    } else {
        velocity += DOWN * dt;
    }
    const float speed = velocity.length();
    if (speed > MAX_SPEED)
        velocity *= MAX_SPEED / speed;
    position += velocity * dt;
    meetGround(ground);
    // Only ground that rises may lift the ball: over still ground the steps above cost energy but
    // rounding and the lift out of a hollow must not make any.
    GroundPoint after;
    const bool still = !over || below.rise == 0.0f;
    if (still && (!ground.groundAt(position.x, position.z, after) || after.rise == 0.0f))
        limitEnergy(before);
}

void FlipperBall::meetGround(const GroundSurface& ground)
{
    GroundPoint below;
    if (!ground.groundAt(position.x, position.z, below))
        return;
    const float gap = clearanceTo(below);
    if (gap >= 0.0f)
        return;
    position.y -= gap / below.normal.y;
    const Vector3 riseVelocity(0.0f, below.rise, 0.0f);
    const float into = (velocity - riseVelocity).dot(below.normal);
    if (into >= 0.0f)
        return;
    if (-into > BOUNCE_SPEED) {
        const Vector3 across = velocity - below.normal * velocity.dot(below.normal);
        velocity -= below.normal * (into * (1.0f + RESTITUTION));
        velocity -= across * SCUFF;
        lastBounce = -into;
        sinceBounce = 0.0f;
    } else {
        velocity -= below.normal * into;
    }
}

void FlipperBall::limitEnergy(double most)
{
    const double kinetic = most - static_cast<double>(GRAVITY) * position.y;
    const double now = 0.5 * static_cast<double>(velocity.dot(velocity));
    if (now <= kinetic)
        return;
    if (kinetic <= 0.0) {
        velocity = Vector3(0.0f, 0.0f, 0.0f);
        return;
    }
    // A hair under the exact share, so the float rounding of the new speed cannot tip it over.
    velocity *= static_cast<float>(std::sqrt(kinetic / now) * (1.0 - 1e-6));
}
