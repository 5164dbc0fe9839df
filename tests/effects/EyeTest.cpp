// The eye: shut until it opens, each blink closing it fully and opening it again, lids between their limits, the gaze kept within its limits and its speed.
#include "effects/Eye.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

const float OPENS = 10.0f;
const float BLINKS[2] = {14.0f, 17.5f};

float openness(float t)
{
    return Eye::openness(t, OPENS, BLINKS, 2);
}

}  // namespace

TEST(Eye, ShutUntilItOpensButForItsBlinksTheLidsFollowAndTheGazeStaysWithinItsLimits)
{
    EXPECT_EQ(openness(0.0f), 0.0f);
    EXPECT_EQ(openness(OPENS), 0.0f);
    const float half = openness(OPENS + 0.5f * Eye::OPENING);
    EXPECT_GT(half, 0.2f);
    EXPECT_LT(half, 0.8f);
    EXPECT_EQ(openness(OPENS + Eye::OPENING), 1.0f);
    for (float blink : BLINKS) {
        SCOPED_TRACE(blink);
        EXPECT_EQ(openness(blink - 0.01f), 1.0f);
        // Fully shut for a moment, then fully open again.
        EXPECT_EQ(openness(blink + Eye::BLINK_CLOSING + 0.5f * Eye::BLINK_SHUT), 0.0f);
        EXPECT_EQ(openness(blink + Eye::BLINK_CLOSING + Eye::BLINK_SHUT + Eye::BLINK_OPENING + 0.01f), 1.0f);
    }
    for (float t = -1.0f; t < 25.0f; t += 0.01f) {
        const float o = openness(t);
        ASSERT_GE(o, 0.0f) << t;
        ASSERT_LE(o, 1.0f) << t;
    }
    // A blink before the eye has opened leaves it shut.
    const float early = 2.0f;
    EXPECT_EQ(Eye::openness(early + 0.05f, OPENS, &early, 1), 0.0f);
    Eye eye;
    eye.setSchedule(OPENS, BLINKS, 2);
    eye.update(0.0f, 0.0f, Vector3(0.0f, 0.0f, 10.0f));
    EXPECT_EQ(eye.getUpperLid(), Eye::LID_SHUT);
    EXPECT_EQ(eye.getLowerLid(), Eye::LID_SHUT);
    eye.update(OPENS + 5.0f, 0.0f, Vector3(0.0f, 0.0f, 10.0f));
    EXPECT_FLOAT_EQ(eye.getUpperLid(), Eye::UPPER_OPEN);
    EXPECT_FLOAT_EQ(eye.getLowerLid(), Eye::LOWER_OPEN);
    const Vector3 centre(5.0f, 2.0f, -3.0f);
    float yaw = 1.0f;
    float pitch = 1.0f;
    Eye::aim(centre, centre + Vector3(0.0f, 0.0f, 20.0f), yaw, pitch);
    EXPECT_EQ(yaw, 0.0f);
    EXPECT_EQ(pitch, 0.0f);
    Eye::aim(centre, centre + Vector3(1.0f, 0.0f, 1.0f / std::tan(20.0f * 3.14159265f / 180.0f)), yaw, pitch);
    EXPECT_NEAR(yaw, 20.0f, 1e-3f);
    Eye::aim(centre, centre + Vector3(0.0f, 1.0f, 1.0f / std::tan(10.0f * 3.14159265f / 180.0f)), yaw, pitch);
    EXPECT_NEAR(pitch, 10.0f, 1e-3f);
    // Far to one side, straight behind, straight up, nowhere at all: within the limits.
    const Vector3 targets[] = {centre + Vector3(-100.0f, 0.0f, 1.0f), centre + Vector3(0.0f, -50.0f, 0.1f),
                               centre + Vector3(0.3f, 0.0f, -40.0f), centre + Vector3(0.0f, 80.0f, 0.0f), centre};
    for (const Vector3& target : targets) {
        Eye::aim(centre, target, yaw, pitch);
        EXPECT_LE(std::fabs(yaw), Eye::MAX_YAW);
        EXPECT_LE(std::fabs(pitch), Eye::MAX_PITCH);
    }
    Eye::aim(centre, targets[0], yaw, pitch);
    EXPECT_EQ(yaw, -Eye::MAX_YAW);
    Eye::aim(centre, targets[1], yaw, pitch);
    EXPECT_EQ(pitch, -Eye::MAX_PITCH);

    // The ball turns at most TURN_SPEED degrees a second, and settles on the target.
    Eye ball;
    ball.place(centre, 3.0f);
    ball.update(0.0f, 0.1f, targets[0]);
    EXPECT_NEAR(ball.getYaw(), -0.1f * Eye::TURN_SPEED, 1e-4f);
    for (int frame = 0; frame < 100; ++frame)
        ball.update(0.0f, 0.05f, targets[0]);
    EXPECT_EQ(ball.getYaw(), -Eye::MAX_YAW);
    EXPECT_EQ(ball.getPitch(), 0.0f);
}
