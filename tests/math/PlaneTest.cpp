// Plane: construction, classification tolerances and the sphere asymmetry, intersections.
#include "math/Plane.h"
#include "support/VectorNear.h"

#include <gtest/gtest.h>

namespace {

const Plane ground(0, 1, 0, 0);

}  // namespace

TEST(Plane, CreateFollowsTheWindingClassificationHasItsToleranceAndSlopeAccelerationIsNegated)
{
    Plane p;
    p.create(Vector3(0, 0, 5), Vector3(0, 10, 5), Vector3(10, 0, 5));
    expectNear(p.getNormal(), Vector3(0, 0, -1));
    EXPECT_NEAR(p.d, 5.0f, 1e-6f);
    Plane scaled(0, 0, 2, 4);
    EXPECT_EQ(scaled.normalize(), Plane(0, 0, 1, 2));
    Plane degenerate(0, 0, 0, 7);
    EXPECT_EQ(degenerate.normalize(), Plane(0, 0, 0, 7));
    EXPECT_FLOAT_EQ(Vector3(5, 3, 5) * Plane(0, 2, 0, -1), 5.0f);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, 0.0000005f, 0)), Plane::ON);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, -0.0000005f, 0)), Plane::ON);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, 0.000002f, 0)), Plane::FRONT);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, -0.000002f, 0)), Plane::BEHIND);
    EXPECT_EQ(ground.classifySphere(Vector3(0, 0.5f, 0), 3), Plane::FRONT);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -2.5f, 0), 3), Plane::ON);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -3.5f, 0), 3), Plane::BEHIND);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -3.0f, 0), 3), Plane::BEHIND);
    EXPECT_EQ(ground.classifySphere(Vector3(0, 0, 0), 0), Plane::BEHIND);
    Vector3 out;
    // In-plane part of g is (4.8, -3.6, 0); the result is its negation.
    EXPECT_TRUE(Plane::accelerationOnSlope(Vector3(0, -10, 0), Vector3(9, 9, 9), Plane(0.6f, 0.8f, 0, 0), out));
    expectNear(out, Vector3(-4.8f, 3.6f, 0), 1e-4f);
}
