// Matrix builders: rotation sense, entry placement, projections' signs, the view matrix.
#include "math/Transform.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-5f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

bool unitBorder(const Matrix4& m)
{
    return m.m[3] == 0 && m.m[7] == 0 && m.m[11] == 0 &&
           m.m[12] == 0 && m.m[13] == 0 && m.m[14] == 0 && m.m[15] == 1;
}

}  // namespace

TEST(Builders, OverwriteEveryEntry)
{
    Matrix4 m(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    Identity(m);
    EXPECT_EQ(m, Matrix4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    m = Matrix4(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    RotateAroundX(m, 0);
    EXPECT_EQ(m, Matrix4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    Matrix3 n(9, 9, 9, 9, 9, 9, 9, 9, 9);
    Identity(n);
    EXPECT_EQ(n, Matrix3(1, 0, 0, 0, 1, 0, 0, 0, 1));
}

TEST(Builders, TranslateFourthArgumentIsTheCorner)
{
    Matrix4 m;
    Translate(m, 1, 2, 3, 4);
    EXPECT_EQ(m, Matrix4(1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 4));
    Matrix3 t;
    Translate(t, 5, 6, 7);
    EXPECT_EQ(t, Matrix3(1, 0, 5, 0, 1, 6, 0, 0, 7));
    Scale(m, 2, 3, 4, 5);
    EXPECT_EQ(m, Matrix4(2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 5));
    Scale(t, 2, 3, 4);
    EXPECT_EQ(t, Matrix3(2, 0, 0, 0, 3, 0, 0, 0, 4));
}

TEST(Rotations, PositiveAnglesTurnCounterClockwise)
{
    Matrix4 m;
    RotateAroundX(m, 90);
    expectNear(m * Vector3(0, 1, 0), Vector3(0, 0, 1));
    EXPECT_TRUE(unitBorder(m));
    RotateAroundY(m, 90);
    expectNear(m * Vector3(0, 0, 1), Vector3(1, 0, 0));
    EXPECT_TRUE(unitBorder(m));
    RotateAroundZ(m, 90);
    expectNear(m * Vector3(1, 0, 0), Vector3(0, 1, 0));
    EXPECT_TRUE(unitBorder(m));
    Matrix3 r;
    RotateAroundY(r, -90);
    expectNear(r * Vector3(0, 0, 1), Vector3(-1, 0, 0));
}

TEST(Rotations, Rotate2DIsRotateAroundZ)
{
    Matrix4 a, b;
    RotateAroundZ(a, 37.5f);
    Rotate2D(b, 37.5f);
    EXPECT_EQ(a, b);
    Matrix3 c, d;
    RotateAroundZ(c, -12);
    Rotate2D(d, -12);
    EXPECT_EQ(c, d);
}

TEST(Rotations, VectorRotateMatchesAxisRotationsAndDoesNotNormalise)
{
    Matrix4 z, v;
    RotateAroundZ(z, 30);
    vectorRotate(v, Vector3(0, 0, 1), 30);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(v.m[i], z.m[i], 1e-6f);
    Matrix3 x;
    vectorRotate(x, Vector3(1, 0, 0), 90);
    expectNear(x * Vector3(0, 1, 0), Vector3(0, 0, 1));
    // The caller owns normalisation: a doubled axis gives t * z^2 + c = 4 on the diagonal.
    vectorRotate(v, Vector3(0, 0, 2), 90);
    EXPECT_NEAR(v.m[10], 4.0f, 1e-6f);
}

TEST(Rotations, RotateXYZTurnsAboutXFirst)
{
    Matrix4 m;
    RotateXYZ(m, 90, 90, 0);
    // x takes y to z, then y takes z to x.
    expectNear(m * Vector3(0, 1, 0), Vector3(1, 0, 0));
    RotateXYZ(m, 0, 90, 90);
    // y takes z to x, then z takes x to y.
    expectNear(m * Vector3(0, 0, 1), Vector3(0, 1, 0));
    EXPECT_TRUE(unitBorder(m));
}

TEST(Rotations, AxisBasisAsRowsOrColumns)
{
    Vector3 u(0, 0, 1), v(1, 0, 0), n(0, 1, 0);
    Matrix4 rows, columns;
    RotateAxis(rows, u, v, n);
    InvRotateAxis(columns, u, v, n);
    EXPECT_EQ(rows, Matrix4(0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1));
    EXPECT_EQ(columns, rows.transpose());
    // Rows take a world vector into the basis: u itself becomes (1, 0, 0).
    EXPECT_EQ(rows * u, Vector3(1, 0, 0));
    Matrix3 r3;
    RotateAxis(r3, u, v, n);
    EXPECT_EQ(r3 * n, Vector3(0, 0, 1));
}

TEST(Projection, FrustumTakesTopBeforeBottom)
{
    Matrix4 m;
    frustum(m, -2, 4, 3, -1, 1, 11);
    EXPECT_FLOAT_EQ(m.m[0], 2.0f / 6.0f);
    EXPECT_FLOAT_EQ(m.m[2], 2.0f / 6.0f);
    EXPECT_FLOAT_EQ(m.m[5], 2.0f / 4.0f);
    EXPECT_FLOAT_EQ(m.m[6], 2.0f / 4.0f);
    EXPECT_FLOAT_EQ(m.m[10], -12.0f / 10.0f);
    EXPECT_FLOAT_EQ(m.m[11], -22.0f / 10.0f);
    EXPECT_EQ(m.m[14], -1.0f);
    EXPECT_EQ(m.m[15], 0.0f);
    EXPECT_EQ(m.m[3], 0.0f);
}

TEST(Projection, PerspectiveIsMirroredVertically)
{
    Matrix4 m;
    perspective(m, 90, 2, 1, 10);
    // h = tan(45) = 1, right = 2: x scale n/right, y scale -n/h.
    EXPECT_NEAR(m.m[0], 0.5f, 1e-6f);
    EXPECT_NEAR(m.m[5], -1.0f, 1e-6f);
    EXPECT_EQ(m.m[2], 0.0f);
    EXPECT_FLOAT_EQ(m.m[10], -11.0f / 9.0f);
    EXPECT_FLOAT_EQ(m.m[11], -20.0f / 9.0f);
    // A point above the axis lands below the centre of the image.
    Vector4 clip = m * Vector4(0, 1, -5, 1);
    EXPECT_LT(clip.homogenize().y, 0.0f);
}

TEST(Projection, OrthoMapsTopToPlusOne)
{
    Matrix4 m;
    ortho3D(m, 0, 640, 0, 480, 1, 3);
    EXPECT_NEAR((m * Vector3(0, 0, -1)).x, -1.0f, 1e-6f);
    EXPECT_NEAR((m * Vector3(640, 0, -1)).x, 1.0f, 1e-6f);
    EXPECT_NEAR((m * Vector3(0, 0, -1)).y, 1.0f, 1e-6f);
    EXPECT_NEAR((m * Vector3(0, 480, -1)).y, -1.0f, 1e-6f);
    EXPECT_NEAR((m * Vector3(0, 0, -1)).z, -1.0f, 1e-6f);
    EXPECT_NEAR((m * Vector3(0, 0, -3)).z, 1.0f, 1e-6f);
    EXPECT_EQ(m.m[15], 1.0f);
}

TEST(Projection, Ortho2DFixesDepthEntries)
{
    Matrix4 m, n;
    ortho2D(m, -4, 4, 3, -3);
    ortho3D(n, -4, 4, 3, -3, 5, 50);
    EXPECT_EQ(m.m[10], -1.0f);
    EXPECT_EQ(m.m[11], 0.0f);
    n.m[10] = -1.0f;
    n.m[11] = 0.0f;
    EXPECT_EQ(m, n);
}

TEST(View, LooksDownPlusZWithXAsUpCrossForward)
{
    Matrix4 m;
    Vector3 eye(1, 2, 3);
    Vector3 target(1, 2, -7);
    lookAt(m, eye, target, Vector3(0, 1, 0));
    expectNear(m * eye, Vector3(0, 0, 0));
    expectNear(m * target, Vector3(0, 0, 10));
    // Looking down world -z, up x forward = (0,1,0) x (0,0,-1) = (-1,0,0) is view +x.
    expectNear(m * (eye + Vector3(-1, 0, 0)), Vector3(1, 0, 0));
    expectNear(m * (eye + Vector3(0, 1, 0)), Vector3(0, 1, 0));
}

TEST(View, UpIsMadeOrthogonal)
{
    Matrix4 m;
    lookAt(m, Vector3(0, 0, 0), Vector3(10, 0, 10), Vector3(0.3f, 1, 0));
    Vector3 s(m.m[0], m.m[1], m.m[2]);
    Vector3 u(m.m[4], m.m[5], m.m[6]);
    Vector3 f(m.m[8], m.m[9], m.m[10]);
    EXPECT_NEAR(s.dot(u), 0.0f, 1e-6f);
    EXPECT_NEAR(u.dot(f), 0.0f, 1e-6f);
    EXPECT_NEAR(s.length(), 1.0f, 1e-6f);
    EXPECT_NEAR(u.length(), 1.0f, 1e-6f);
    EXPECT_NEAR(f.x, std::sqrt(0.5f), 1e-6f);
}
