// Plane: stored as passed, classification tolerances and asymmetry, intersections.
#include "math/Plane.h"

#include <gtest/gtest.h>
#include <cmath>
#include <sstream>

namespace {

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-5f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

const Plane ground(0, 1, 0, 0);

}  // namespace

TEST(PlaneConstruction, StoresValuesAsPassed)
{
    Plane p(0, 0, 2, 4);
    EXPECT_EQ(p, Plane(Vector3(0, 0, 2), 4));
    EXPECT_EQ(p.c, 2.0f);
    p.assign(Vector3(1, 1, 1), -3);
    EXPECT_EQ(p, Plane(1, 1, 1, -3));
    EXPECT_NE(p, Plane(1, 1, 1, -3.0001f));
    EXPECT_EQ(Plane(), Plane(0, 0, 0, 0));
}

TEST(PlaneConstruction, CreateFromThreePoints)
{
    Plane p;
    p.create(Vector3(0, 0, 5), Vector3(10, 0, 5), Vector3(0, 10, 5));
    expectNear(p.getNormal(), Vector3(0, 0, 1));
    EXPECT_NEAR(p.d, -5.0f, 1e-6f);
    // Swapping the winding turns the normal round.
    p.create(Vector3(0, 0, 5), Vector3(0, 10, 5), Vector3(10, 0, 5));
    expectNear(p.getNormal(), Vector3(0, 0, -1));
    EXPECT_NEAR(p.d, 5.0f, 1e-6f);
}

TEST(PlaneNormalize, DividesAllFourAndLeavesZeroNormalAlone)
{
    Plane p(0, 0, 2, 4);
    p.normalize();
    EXPECT_EQ(p, Plane(0, 0, 1, 2));
    Plane degenerate(0, 0, 0, 7);
    degenerate.normalize();
    EXPECT_EQ(degenerate, Plane(0, 0, 0, 7));
}

TEST(PlaneDistance, BothOperandOrders)
{
    Plane p(0, 2, 0, -1);
    EXPECT_FLOAT_EQ(p * Vector3(5, 3, 5), 5.0f);
    EXPECT_FLOAT_EQ(Vector3(5, 3, 5) * p, 5.0f);
    EXPECT_FLOAT_EQ(p * Vector3(0, 0, 0), -1.0f);
}

TEST(PlaneClassify, PointsWithinToleranceAreOnThePlane)
{
    EXPECT_EQ(ground.classifyPoint(Vector3(0, 0.0000005f, 0)), Plane::ON);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, -0.0000005f, 0)), Plane::ON);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, 0.000002f, 0)), Plane::FRONT);
    EXPECT_EQ(ground.classifyPoint(Vector3(0, -0.000002f, 0)), Plane::BEHIND);
    EXPECT_EQ(Plane::BEHIND, 0);
    EXPECT_EQ(Plane::ON, 1);
    EXPECT_EQ(Plane::FRONT, 2);
}

TEST(PlaneClassify, SphereCentreInFrontWinsEvenWhenCrossing)
{
    EXPECT_EQ(ground.classifySphere(Vector3(0, 0.5f, 0), 3), Plane::FRONT);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -2.5f, 0), 3), Plane::ON);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -3.5f, 0), 3), Plane::BEHIND);
    EXPECT_EQ(ground.classifySphere(Vector3(0, 0, 0), 3), Plane::ON);
    EXPECT_EQ(ground.classifySphere(Vector3(0, -3.0f, 0), 3), Plane::BEHIND);
    EXPECT_EQ(ground.classifySphere(Vector3(0, 0, 0), 0), Plane::BEHIND);
}

TEST(PlaneClassify, Segments)
{
    EXPECT_EQ(ground.classifyLine(Vector3(0, 1, 0), Vector3(0, 2, 0)), Plane::FRONT);
    EXPECT_EQ(ground.classifyLine(Vector3(0, -1, 0), Vector3(0, -2, 0)), Plane::BEHIND);
    EXPECT_EQ(ground.classifyLine(Vector3(0, -1, 0), Vector3(0, 2, 0)), Plane::ON);
    EXPECT_EQ(ground.classifyLine(Vector3(0, 0, 0), Vector3(0, 2, 0)), Plane::FRONT);
}

TEST(PlaneIntersect, SegmentAndRay)
{
    Vector3 hit;
    ASSERT_TRUE(ground.lineIntersect(Vector3(1, 2, 0), Vector3(1, -6, 8), hit));
    expectNear(hit, Vector3(1, 0, 2));
    EXPECT_FALSE(ground.lineIntersect(Vector3(0, 1, 0), Vector3(5, 2, 0), hit));
    ASSERT_TRUE(ground.rayIntersect(Vector3(0, 4, 0), Vector3(1, -2, 0), hit));
    expectNear(hit, Vector3(2, 0, 0));
    EXPECT_FALSE(ground.rayIntersect(Vector3(0, 4, 0), Vector3(1, 2, 0), hit));
    EXPECT_FALSE(ground.rayIntersect(Vector3(0, 4, 0), Vector3(1, 0, 0), hit));
}

TEST(PlaneIntersect, SphereGivesTheCircle)
{
    Vector3 centre;
    float radius = 0;
    Plane scaled(0, 2, 0, 0);
    ASSERT_TRUE(scaled.sphereIntersect(Vector3(3, 3, 1), 5, centre, radius));
    expectNear(centre, Vector3(3, 0, 1));
    EXPECT_NEAR(radius, 4.0f, 1e-5f);
    EXPECT_FALSE(ground.sphereIntersect(Vector3(0, 6, 0), 5, centre, radius));
}

TEST(PlaneIntersect, TwoPlanesShareALine)
{
    Plane a(1, 0, 0, -2);   // x = 2
    Plane b(0, 1, 0, -3);   // y = 3
    Vector3 point, dir;
    ASSERT_TRUE(a.planeIntersect(b, point, dir));
    EXPECT_NEAR(a * point, 0.0f, 1e-5f);
    EXPECT_NEAR(b * point, 0.0f, 1e-5f);
    expectNear(dir, Vector3(0, 0, 1));
    EXPECT_FALSE(a.planeIntersect(Plane(2, 0, 0, 1), point, dir));
}

TEST(PlaneReflect, MirrorsTheNormalPart)
{
    Vector3 out;
    ASSERT_TRUE(Plane(0, 3, 0, 1).reflect(Vector3(1, -2, 3), out));
    expectNear(out, Vector3(1, 2, 3));
    EXPECT_FALSE(Plane(0, 0, 0, 1).reflect(Vector3(1, 2, 3), out));
}

TEST(PlaneSlope, NegatedInPlaneGravity)
{
    Vector3 out;
    EXPECT_TRUE(Plane::accelerationOnSlope(Vector3(0, -10, 0), Vector3(0, 1, 0), out));
    expectNear(out, Vector3(0, 0, 0));
    Plane slope(0.6f, 0.8f, 0, 0);
    // In-plane part of g is (4.8, -3.6, 0); the result is its negation.
    EXPECT_TRUE(Plane::accelerationOnSlope(Vector3(0, -10, 0), Vector3(9, 9, 9), slope, out));
    expectNear(out, Vector3(-4.8f, 3.6f, 0), 1e-4f);
}

TEST(PlaneText, RoundTrip)
{
    Plane p(0.1f, -0.2f, 1.0f / 3.0f, 1e30f);
    std::stringstream text;
    text << p;
    Plane back;
    text >> back;
    EXPECT_EQ(back, p);
}
