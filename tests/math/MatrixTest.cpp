// Matrices: column-vector products, right-to-left composition, determinant, adjoint, clamped inverse.
#include "math/Matrix3.h"
#include "math/Matrix4.h"
#include "math/Transform.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

void expectNear(const Matrix4& a, const Matrix4& b, float tolerance = 1e-5f)
{
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "entry " << i;
}

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-5f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

Matrix4 sample()
{
    return Matrix4(2, 0, 1, 3,
                   1, 3, 0, -1,
                   0, 1, 4, 2,
                   1, 0, 0, 1);
}

Matrix4 identity4()
{
    Matrix4 m;
    Identity(m);
    return m;
}

}  // namespace

TEST(MatrixStorage, DefaultIsZeroAndConstructionIsRowMajor)
{
    EXPECT_EQ(Matrix4(), Matrix4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    Matrix3 z;
    for (float e : z.m)
        EXPECT_EQ(e, 0.0f);
    Matrix4 m = sample();
    EXPECT_EQ(m.m[3], 3.0f);   // row 0, column 3
    EXPECT_EQ(m.m[4], 1.0f);   // row 1, column 0
    EXPECT_EQ(sizeof(Matrix4), 16 * sizeof(float));
    EXPECT_EQ(sizeof(Matrix3), 9 * sizeof(float));
}

TEST(MatrixPoint, ColumnVectorWithTranslationInLastColumn)
{
    Matrix4 m = sample();
    Vector3 p(1, 2, 3);
    // x' = 2 + 0 + 3 + 3, y' = 1 + 6 + 0 - 1, z' = 0 + 2 + 12 + 2
    EXPECT_EQ(m * p, Vector3(8, 6, 16));
    EXPECT_EQ(p * m, m * p);
}

TEST(MatrixPoint, FourthRowIgnoredAndNoDivision)
{
    Matrix4 m;
    Translate(m, 1, 2, 3, 1);
    m.m[12] = 7;
    m.m[15] = 5;
    EXPECT_EQ(m * Vector3(1, 1, 1), Vector3(2, 3, 4));
}

TEST(MatrixPoint, Vector4UsesTheFullProduct)
{
    Matrix4 m = sample();
    Vector4 v(1, 2, 3, 0);
    EXPECT_EQ(m * v, Vector4(5, 7, 14, 1));
    EXPECT_EQ(v * m, m * v);
    EXPECT_EQ(m * Vector4(1, 2, 3, 1), Vector4(8, 6, 16, 2));
}

TEST(MatrixProduct, RightFactorActsFirst)
{
    Matrix4 rotate;
    RotateAroundZ(rotate, 90);
    Matrix4 move;
    Translate(move, 10, 0, 0);
    // Rotate (1,0,0) to (0,1,0), then move: (10,1,0). The other order gives (0,11,0).
    expectNear((move * rotate) * Vector3(1, 0, 0), Vector3(10, 1, 0));
    expectNear((rotate * move) * Vector3(1, 0, 0), Vector3(0, 11, 0));
    Matrix4 a = move;
    a *= rotate;
    EXPECT_EQ(a, move * rotate);
}

TEST(MatrixProduct, RowTimesColumn)
{
    Matrix3 a(1, 2, 3, 4, 5, 6, 7, 8, 9);
    Matrix3 b(0, 1, 0, 0, 0, 1, 1, 0, 0);
    EXPECT_EQ(a * b, Matrix3(3, 1, 2, 6, 4, 5, 9, 7, 8));
    EXPECT_EQ(b * a, Matrix3(4, 5, 6, 7, 8, 9, 1, 2, 3));
    EXPECT_EQ(a * Vector3(1, 0, -1), Vector3(-2, -2, -2));
    EXPECT_EQ(Vector3(1, 0, -1) * a, a * Vector3(1, 0, -1));
}

TEST(MatrixArithmetic, ElementWise)
{
    Matrix4 m = sample();
    Matrix4 twice = m + m;
    EXPECT_EQ(twice, m * 2.0f);
    EXPECT_EQ(twice / 2.0f, m);
    EXPECT_EQ(twice - m, m);
    Matrix3 a(1, 2, 3, 4, 5, 6, 7, 8, 9);
    Matrix3 b = a;
    b += a;
    b -= a;
    b *= 3.0f;
    b /= 3.0f;
    EXPECT_EQ(b, a);
}

TEST(MatrixDeterminant, KnownValues)
{
    EXPECT_FLOAT_EQ(det3(1, 2, 3, 0, 1, 4, 5, 6, 0), 1.0f);
    EXPECT_FLOAT_EQ(Matrix3(1, 2, 3, 0, 1, 4, 5, 6, 0).det(), 1.0f);
    EXPECT_FLOAT_EQ(sample().det(), -4.0f);
    EXPECT_FLOAT_EQ(identity4().det(), 1.0f);
    EXPECT_FLOAT_EQ(Matrix4(1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 1, 5, 5, 5, 5).det(), 0.0f);
}

TEST(MatrixTranspose, SwapsRowsAndColumns)
{
    Matrix4 t = sample().transpose();
    EXPECT_EQ(t.m[1], 1.0f);
    EXPECT_EQ(t.m[12], 3.0f);
    EXPECT_EQ(t.transpose(), sample());
    EXPECT_EQ(Matrix3(1, 2, 3, 4, 5, 6, 7, 8, 9).transpose(), Matrix3(1, 4, 7, 2, 5, 8, 3, 6, 9));
}

TEST(MatrixInverse, AdjointIsTransposedCofactors)
{
    Matrix4 m = sample();
    Matrix4 scaledIdentity;
    Scale(scaledIdentity, -4, -4, -4, -4);
    expectNear(m * m.adjoint(), scaledIdentity, 1e-4f);
    expectNear(m.adjoint() * m, scaledIdentity, 1e-4f);
}

TEST(MatrixInverse, UndoesARigidTransform)
{
    Matrix4 rotate;
    RotateXYZ(rotate, 30, -40, 75);
    Matrix4 move;
    Translate(move, 5, -3, 12);
    Matrix4 m = move * rotate;
    expectNear(m.inverse() * m, identity4());
    // Negating one row makes the determinant positive (4), out of the clamp's reach.
    Matrix4 positive = sample();
    for (int i = 0; i < 4; ++i)
        positive.m[i] = -positive.m[i];
    expectNear(positive.inverse() * positive, identity4());
}

TEST(MatrixInverse, ZeroMatrixGivesZero)
{
    EXPECT_EQ(Matrix4().inverse(), Matrix4());
}

TEST(MatrixInverse, NegativeDeterminantIsClampedNotUsed)
{
    Matrix4 mirror;
    Scale(mirror, -1, 1, 1, 1);
    Matrix4 inv = mirror.inverse();
    // The adjoint is diag(1, -1, -1, -1), divided by 0.000001 instead of -1.
    EXPECT_EQ(inv, mirror.adjoint() * (1.0f / 0.000001f));
    EXPECT_NEAR(inv.m[0], 1e6f, 1.0f);
    EXPECT_NEAR(inv.m[5], -1e6f, 1.0f);
    EXPECT_EQ(inv.m[1], 0.0f);
}

TEST(MatrixInverse, TinyPositiveDeterminantIsClamped)
{
    Matrix4 small;
    Scale(small, 0.001f, 0.001f, 0.001f, 1);
    Matrix4 inv = small.inverse();
    // det 1e-9 becomes 1e-6, so the result is 1000 times too small.
    EXPECT_NEAR(inv.m[0], 1.0f, 1e-4f);
    EXPECT_NEAR(inv.m[15], 0.001f, 1e-7f);
}

TEST(MatrixText, RoundTripsExactly)
{
    Matrix4 m;
    RotateXYZ(m, 12.5f, 33.3f, -71.1f);
    m.m[3] = 1.0f / 3.0f;
    std::stringstream text;
    text << m;
    Matrix4 back;
    text >> back;
    ASSERT_FALSE(text.fail());
    EXPECT_EQ(back, m);
    Matrix3 a(0.1f, 0.2f, 0.3f, 4, 5, 6, 7e-30f, 8, 9);
    std::stringstream text3;
    text3 << a;
    Matrix3 b;
    text3 >> b;
    EXPECT_EQ(a, b);
}
