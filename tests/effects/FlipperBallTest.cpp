// A flipper land ball: on a slope it stays on the ground and never gains energy; at rest it stays at rest; bounces die down; rising ground lifts it.
#include "effects/FlipperBall.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

const float STEP = 1.0f / 120.0f;

// A plane rising along x at `slope` (height per unit).
class Slope : public GroundSurface {
public:
    explicit Slope(float slope, float rise = 0.0f) : slope(slope), rise(rise) {}
    bool groundAt(float x, float, GroundPoint& out) const override
    {
        out.height = slope * x;
        out.normal = Vector3(-slope, 1.0f, 0.0f);
        out.normal.normalize();
        out.rise = rise;
        return true;
    }

private:
    float slope;
    float rise;
};

// A trough along z, its floor at x = 0: a ball rolls to and fro and settles.
class Valley : public GroundSurface {
public:
    bool groundAt(float x, float, GroundPoint& out) const override
    {
        out.height = 0.08f * x * x;
        out.normal = Vector3(-0.16f * x, 1.0f, 0.0f);
        out.normal.normalize();
        out.rise = 0.0f;
        return true;
    }
};

}  // namespace

// Dropped from above onto the ground: it bounces, settles and rolls, for 10,000 steps never
// sinking in and never gaining energy (down to the rounding of a float position).
TEST(FlipperBall, DroppedOnASlopeStaysOnTheGroundAndNeverGainsEnergy)
{
    const Slope gentle(0.2f);
    const Slope steep(0.9f);
    const Valley valley;
    const GroundSurface* grounds[] = {&gentle, &steep, &valley};
    for (const GroundSurface* ground : grounds) {
        SCOPED_TRACE(ground == &valley ? "valley" : ground == &steep ? "steep" : "gentle");
        FlipperBall ball(0.6f);
        ball.place(Vector3(6.0f, 9.0f, 1.0f), Vector3(-1.0f, 0.0f, 0.5f));
        double last = ball.energy();
        int bounces = 0;
        for (int i = 0; i < 10000; ++i) {
            const float before = ball.getSinceBounce();
            ball.step(*ground, STEP);
            if (ball.getSinceBounce() < before)
                ++bounces;
            float clearance = 0.0f;
            ASSERT_TRUE(ball.clearance(*ground, clearance));
            ASSERT_GE(clearance, -1e-4f) << i;
            const double now = ball.energy();
            ASSERT_LE(now, last + 1e-6 * std::fmax(1.0, std::fabs(last))) << i;
            last = now;
        }
        EXPECT_GE(bounces, 1);
        EXPECT_TRUE(ball.isRolling());
    }
}

TEST(FlipperBall, AtRestItStaysEachBounceIsLowerUntilItRollsAndRisingGroundThrowsItUp)
{
    const Slope flat(0.0f);
    FlipperBall ball(0.6f);
    const Vector3 place(3.0f, 0.6f, -2.0f);
    ball.place(place, Vector3(0.0f, 0.0f, 0.0f));
    for (int i = 0; i < 10000; ++i)
        ball.step(flat, STEP);
    EXPECT_EQ(ball.getPosition(), place);
    EXPECT_EQ(ball.getVelocity(), Vector3(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(ball.isRolling());
    FlipperBall bouncing(0.5f);
    bouncing.place(Vector3(0.0f, 5.5f, 0.0f), Vector3(0.0f, 0.0f, 0.0f));
    // Heights of the bouncing's underside.
    float apex = 5.0f;
    float highest = 0.0f;
    int bounces = 0;
    bool rising = false;
    for (int i = 0; i < 2000; ++i) {
        bouncing.step(flat, STEP);
        const float y = bouncing.getPosition().y - 0.5f;
        if (bouncing.getVelocity().y > 0.0f) {
            rising = true;
            highest = std::fmax(highest, y);
        } else if (rising) {
            rising = false;
            ++bounces;
            EXPECT_LT(highest, apex * 0.5f) << bounces;
            apex = highest;
            highest = 0.0f;
        }
    }
    EXPECT_GE(bounces, 2);
    EXPECT_TRUE(bouncing.isRolling());
    EXPECT_NEAR(bouncing.getPosition().y, 0.5f, 1e-4f);
    // Ground heaving up under a resting ball throws it into the air, faster than the ground rises.
    const Slope heaving(0.0f, 3.0f);
    FlipperBall thrown(0.5f);
    thrown.place(Vector3(0.0f, 0.49f, 0.0f), Vector3(0.0f, 0.0f, 0.0f));
    thrown.step(heaving, STEP);
    EXPECT_GT(thrown.getVelocity().y, 3.0f);
    EXPECT_GT(thrown.getLastBounce(), 2.9f);
}
