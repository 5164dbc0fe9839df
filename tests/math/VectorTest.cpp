// Vectors: exact comparison, zero-safe normalisation, cross orientation, homogenisation, text round trip.
#include "math/Vector2.h"
#include "math/Vector3.h"
#include "math/Vector4.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstring>
#include <sstream>

namespace {
bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }
}

TEST(VectorLayout, ComponentsAreConsecutiveFloats)
{
    // Vertex arrays and GL calls read &v.x as packed floats.
    EXPECT_EQ(sizeof(Vector2), 2 * sizeof(float));
    EXPECT_EQ(sizeof(Vector3), 3 * sizeof(float));
    EXPECT_EQ(sizeof(Vector4), 4 * sizeof(float));
    Vector3 v(1, 2, 3);
    EXPECT_EQ((&v.x)[2], 3.0f);
    EXPECT_EQ(Vector4(), Vector4(0, 0, 0, 0));
}

TEST(VectorEquality, NoTolerance)
{
    Vector3 a(1, 2, 3);
    Vector3 b(1, 2, std::nextafter(3.0f, 4.0f));
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a == Vector3(1, 2, 3));
    EXPECT_FALSE(Vector4(1, 2, 3, 4) == Vector4(1, 2, 3, 4.0001f));
    EXPECT_FALSE(Vector2(1, 2) == Vector2(1.0001f, 2));
}

TEST(VectorNormalize, ZeroVectorIsLeftAlone)
{
    Vector2 v2;
    Vector3 v3;
    Vector4 v4;
    EXPECT_EQ(v2.normalize(), Vector2());
    EXPECT_EQ(v3.normalize(), Vector3());
    EXPECT_EQ(v4.normalize(), Vector4());
    EXPECT_FALSE(std::isnan(v3.x));
}

TEST(VectorNormalize, ScalesToUnitLengthAndReturnsItself)
{
    Vector3 v(3, 0, 4);
    Vector3& r = v.normalize();
    EXPECT_EQ(&r, &v);
    EXPECT_FLOAT_EQ(v.x, 0.6f);
    EXPECT_FLOAT_EQ(v.z, 0.8f);
    EXPECT_FLOAT_EQ(Vector4(1, 1, 1, 1).normalize().w, 0.5f);
    EXPECT_FLOAT_EQ(Vector2(0, -5).normalize().y, -1.0f);
}

TEST(VectorArithmetic, ComponentWiseAndScalar)
{
    Vector3 a(1, 2, 3);
    Vector3 b(4, 5, 6);
    EXPECT_EQ(a + b, Vector3(5, 7, 9));
    EXPECT_EQ(b - a, Vector3(3, 3, 3));
    EXPECT_EQ(a * b, Vector3(4, 10, 18));
    EXPECT_EQ(b / a, Vector3(4, 2.5f, 2));
    EXPECT_EQ(a * 2.0f, Vector3(2, 4, 6));
    EXPECT_EQ(2.0f * a, Vector3(2, 4, 6));
    EXPECT_EQ(-a, Vector3(-1, -2, -3));
    EXPECT_FLOAT_EQ(a.dot(b), 32.0f);
    EXPECT_FLOAT_EQ(Vector3(1, 2, 2).length(), 3.0f);
    EXPECT_FLOAT_EQ(a.distance(b), std::sqrt(27.0f));
    Vector3 c = a;
    c *= b;
    c /= 2.0f;
    EXPECT_EQ(c, Vector3(2, 5, 9));
}

TEST(VectorCross, RightHanded)
{
    EXPECT_EQ(Vector3(1, 0, 0).cross(Vector3(0, 1, 0)), Vector3(0, 0, 1));
    EXPECT_EQ(Vector3(0, 1, 0).cross(Vector3(0, 0, 1)), Vector3(1, 0, 0));
    EXPECT_EQ(Vector3(0, 0, 1).cross(Vector3(1, 0, 0)), Vector3(0, 1, 0));
    EXPECT_EQ(Vector3(2, 3, 4).cross(Vector3(5, 6, 7)), Vector3(-3, 6, -3));
}

TEST(Vector4Dot, IncludesW)
{
    EXPECT_FLOAT_EQ(Vector4(1, 2, 3, 4).dot(Vector4(1, 1, 1, 10)), 46.0f);
    EXPECT_FLOAT_EQ(Vector4(0, 0, 0, 2).length(), 2.0f);
}

TEST(Vector4Homogenize, ZeroWLeavesItAlone)
{
    Vector4 direction(2, 4, 6, 0);
    EXPECT_EQ(direction.homogenize(), Vector4(2, 4, 6, 0));
    Vector4 point(2, 4, 6, 2);
    EXPECT_EQ(point.homogenize(), Vector4(1, 2, 3, 1));
    Vector4 negative(2, 4, 6, -2);
    EXPECT_EQ(negative.homogenize(), Vector4(-1, -2, -3, 1));
}

TEST(VectorText, RoundTripsBitForBit)
{
    Vector3 v(0.1f, 1.0f / 3.0f, -1.17549435e-38f);
    Vector4 w(3.4028235e38f, -0.0f, 7e-45f, 123456.789f);
    Vector2 u(-2.5f, 1e-7f);
    std::stringstream text;
    text << v << ' ' << w << ' ' << u;
    Vector3 v2;
    Vector4 w2;
    Vector2 u2;
    text >> v2 >> w2 >> u2;
    ASSERT_FALSE(text.fail());
    EXPECT_TRUE(sameBits(v.x, v2.x) && sameBits(v.y, v2.y) && sameBits(v.z, v2.z));
    EXPECT_TRUE(sameBits(w.x, w2.x) && sameBits(w.y, w2.y) && sameBits(w.w, w2.w));
    EXPECT_EQ(u, u2);
}

TEST(VectorText, LeavesTheStreamPrecisionAsItWas)
{
    std::ostringstream out;
    out.precision(3);
    out << Vector3(1, 2, 3);
    EXPECT_EQ(out.precision(), 3);
}
