// Matrices: column-vector products, right-to-left composition, determinant, adjoint, clamped inverse.
#include "math/Matrix3.h"
#include "math/Matrix4.h"
#include "math/Transform.h"

#include <gtest/gtest.h>

namespace {

void expectNear(const Matrix4& a, const Matrix4& b, float tolerance = 1e-5f)
{
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "entry " << i;
}

const Matrix4 sample(2, 0, 1, 3, 1, 3, 0, -1, 0, 1, 4, 2, 1, 0, 0, 1);

Matrix4 identity4()
{
    Matrix4 m;
    Identity(m);
    return m;
}

}  // namespace

TEST(MatrixProduct, PointIsAColumnWithTranslationLastAndNoDivisionAndTheRightFactorActsFirst)
{
    // x' = 2 + 0 + 3 + 3, y' = 1 + 6 + 0 - 1, z' = 0 + 2 + 12 + 2; row 3 is ignored.
    EXPECT_EQ(sample * Vector3(1, 2, 3), Vector3(8, 6, 16));
    EXPECT_EQ(Vector3(1, 2, 3) * sample, sample * Vector3(1, 2, 3));
    EXPECT_EQ(sample * Vector4(1, 2, 3, 1), Vector4(8, 6, 16, 2));
    EXPECT_EQ(Vector4(1, 2, 3, 0) * sample, Vector4(5, 7, 14, 1));
    EXPECT_EQ(Vector3(1, 0, -1) * Matrix3(1, 2, 3, 4, 5, 6, 7, 8, 9), Vector3(-2, -2, -2));
    Matrix4 rotate, move;
    RotateAroundZ(rotate, 90);
    Translate(move, 10, 0, 0);
    Vector3 p = (move * rotate) * Vector3(1, 0, 0);
    EXPECT_NEAR(p.x, 10.0f, 1e-5f);
    EXPECT_NEAR(p.y, 1.0f, 1e-5f);
    Matrix4 a = move;
    a *= rotate;
    EXPECT_EQ(a, move * rotate);
    Matrix3 b(0, 1, 0, 0, 0, 1, 1, 0, 0);
    EXPECT_EQ(Matrix3(1, 2, 3, 4, 5, 6, 7, 8, 9) * b, Matrix3(3, 1, 2, 6, 4, 5, 9, 7, 8));
}

TEST(MatrixInverse, DeterminantAndAdjointUndoARigidTransformAndASmallOrNegativeDeterminantIsClamped)
{
    EXPECT_FLOAT_EQ(det3(1, 2, 3, 0, 1, 4, 5, 6, 0), 1.0f);
    EXPECT_FLOAT_EQ(sample.det(), -4.0f);
    EXPECT_FLOAT_EQ(Matrix4(1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 1, 5, 5, 5, 5).det(), 0.0f);
    EXPECT_EQ(sample.transpose().m[12], 3.0f);
    Matrix4 scaledIdentity;
    Scale(scaledIdentity, -4, -4, -4, -4);
    expectNear(sample * sample.adjoint(), scaledIdentity, 1e-4f);
    Matrix4 rotate, move;
    RotateXYZ(rotate, 30, -40, 75);
    Translate(move, 5, -3, 12);
    Matrix4 m = move * rotate;
    expectNear(m.inverse() * m, identity4());
    EXPECT_EQ(Matrix4().inverse(), Matrix4());
    Matrix4 mirror;
    Scale(mirror, -1, 1, 1, 1);
    // The adjoint diag(1, -1, -1, -1) is divided by 0.000001 instead of -1.
    Matrix4 inv = mirror.inverse();
    EXPECT_EQ(inv, mirror.adjoint() * (1.0f / 0.000001f));
    EXPECT_NEAR(inv.m[5], -1e6f, 1.0f);
    Matrix4 small;
    Scale(small, 0.001f, 0.001f, 0.001f, 1);
    // det 1e-9 becomes 1e-6, so the result is 1000 times too small.
    EXPECT_NEAR(small.inverse().m[0], 1.0f, 1e-4f);
}
