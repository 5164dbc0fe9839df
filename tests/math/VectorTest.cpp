// Vectors: exact comparison, zero-safe normalisation, cross orientation, homogenisation, text round trip.
#include "math/Vector2.h"
#include "math/Vector3.h"
#include "math/Vector4.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstring>
#include <sstream>

TEST(Vector, EqualityHasNoToleranceCrossIsRightHandedAndZeroIsLeftAlone)
{
    EXPECT_FALSE(Vector3(1, 2, 3) == Vector3(1, 2, std::nextafter(3.0f, 4.0f)));
    EXPECT_TRUE(Vector3(1, 2, 3) != Vector3(1, 2, std::nextafter(3.0f, 4.0f)));
    EXPECT_FALSE(Vector4(1, 2, 3, 4) == Vector4(1, 2, 3, 4.0001f));
    Vector3 zero;
    EXPECT_EQ(zero.normalize(), Vector3());
    EXPECT_EQ(Vector4().normalize(), Vector4());
    Vector3 v(3, 0, 4);
    EXPECT_EQ(&v.normalize(), &v);
    EXPECT_FLOAT_EQ(v.z, 0.8f);
    EXPECT_FLOAT_EQ(Vector4(1, 1, 1, 1).normalize().w, 0.5f);
    EXPECT_EQ(Vector3(1, 0, 0).cross(Vector3(0, 1, 0)), Vector3(0, 0, 1));
    EXPECT_EQ(Vector3(2, 3, 4).cross(Vector3(5, 6, 7)), Vector3(-3, 6, -3));
    EXPECT_FLOAT_EQ(Vector4(1, 2, 3, 4).dot(Vector4(1, 1, 1, 10)), 46.0f);
    EXPECT_EQ(Vector3(4, 5, 6) / Vector3(1, 2, 3), Vector3(4, 2.5f, 2));
    EXPECT_EQ(Vector4(2, 4, 6, 0).homogenize(), Vector4(2, 4, 6, 0));
    EXPECT_EQ(Vector4(2, 4, 6, 2).homogenize(), Vector4(1, 2, 3, 1));
}

TEST(Vector, TextRoundTripsBitForBit)
{
    Vector3 v(0.1f, 1.0f / 3.0f, -1.17549435e-38f);
    Vector4 w(3.4028235e38f, -0.0f, 7e-45f, 123456.789f);
    std::stringstream text;
    text.precision(3);
    text << v << ' ' << w;
    EXPECT_EQ(text.precision(), 3);
    Vector3 v2;
    Vector4 w2;
    text >> v2 >> w2;
    ASSERT_FALSE(text.fail());
    EXPECT_EQ(0, std::memcmp(&v, &v2, sizeof v));
    EXPECT_EQ(0, std::memcmp(&w, &w2, sizeof w));
}
