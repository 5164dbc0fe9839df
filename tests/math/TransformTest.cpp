// Matrix builders: entry placement, rotation sense, projections' signs, the view matrix.
#include "math/Transform.h"
#include "support/VectorNear.h"

#include <gtest/gtest.h>
#include <cmath>

TEST(Transform, BuildersOverwriteEveryEntryRotationsTurnCounterClockwiseAndProjectionsKeepTheirSigns)
{
    Matrix4 m(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    RotateAroundX(m, 0);
    EXPECT_EQ(m, Matrix4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    Translate(m, 1, 2, 3, 4);
    EXPECT_EQ(m, Matrix4(1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 4));
    Matrix3 t;
    Translate(t, 5, 6, 7);
    EXPECT_EQ(t, Matrix3(1, 0, 5, 0, 1, 6, 0, 0, 7));
    Matrix4 x, y, z, z2;
    RotateAroundX(x, 90);
    RotateAroundY(y, 90);
    RotateAroundZ(z, 90);
    expectNear(x * Vector3(0, 1, 0), Vector3(0, 0, 1));
    expectNear(y * Vector3(0, 0, 1), Vector3(1, 0, 0));
    expectNear(z * Vector3(1, 0, 0), Vector3(0, 1, 0));
    Rotate2D(z2, 90);
    EXPECT_EQ(z, z2);
    Matrix4 v;
    RotateAroundZ(z, 30);
    vectorRotate(v, Vector3(0, 0, 1), 30);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(v.m[i], z.m[i], 1e-6f);
    // A doubled axis gives t * z^2 + c = 4 on the diagonal.
    vectorRotate(v, Vector3(0, 0, 2), 90);
    EXPECT_NEAR(v.m[10], 4.0f, 1e-6f);
    frustum(m, -2, 4, 3, -1, 1, 11);
    EXPECT_FLOAT_EQ(m.m[5], 2.0f / 4.0f);
    EXPECT_FLOAT_EQ(m.m[6], 2.0f / 4.0f);
    EXPECT_FLOAT_EQ(m.m[11], -22.0f / 10.0f);
    EXPECT_EQ(m.m[14], -1.0f);
    EXPECT_EQ(m.m[15], 0.0f);
    perspective(m, 90, 2, 1, 10);
    EXPECT_NEAR(m.m[0], 0.5f, 1e-6f);
    EXPECT_NEAR(m.m[5], -1.0f, 1e-6f);
    // A point above the axis lands below the centre of the image.
    EXPECT_LT((m * Vector4(0, 1, -5, 1)).homogenize().y, 0.0f);
    ortho3D(m, 0, 640, 0, 480, 1, 3);
    expectNear(m * Vector3(0, 0, -1), Vector3(-1, 1, -1), 1e-6f);
    expectNear(m * Vector3(640, 480, -3), Vector3(1, -1, 1), 1e-6f);
    Vector3 eye(1, 2, 3);
    lookAt(m, eye, Vector3(1, 2, -7), Vector3(0, 1, 0));
    expectNear(m * eye, Vector3(0, 0, 0));
    expectNear(m * Vector3(1, 2, -7), Vector3(0, 0, 10));
    // Looking down world -z, up x forward = (-1, 0, 0) is view +x.
    expectNear(m * (eye + Vector3(-1, 0, 0)), Vector3(1, 0, 0));
    // A slanted up vector is made orthogonal.
    lookAt(m, Vector3(0, 0, 0), Vector3(10, 0, 10), Vector3(0.3f, 1, 0));
    Vector3 u(m.m[4], m.m[5], m.m[6]), f(m.m[8], m.m[9], m.m[10]);
    EXPECT_NEAR(u.dot(f), 0.0f, 1e-6f);
    EXPECT_NEAR(u.length(), 1.0f, 1e-6f);
}
