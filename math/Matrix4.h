// 4x4 float matrix, row-major, acting on column vectors (p' = M * p).
// Row-major is not OpenGL's order: transpose before handing one to GL.
// Matrices are written out row by row, as they read on paper: the formatter leaves these files alone.
// clang-format off
#pragma once

#include "math/Vector3.h"
#include "math/Vector4.h"

#include <istream>
#include <ostream>

class Matrix4 {
public:
    // Element (row r, column c) is m[4 * r + c]; the translation sits in 3, 7, 11.
    float m[16];

    Matrix4();  // all zero
    Matrix4(float m0, float m1, float m2, float m3,
            float m4, float m5, float m6, float m7,
            float m8, float m9, float m10, float m11,
            float m12, float m13, float m14, float m15);
    explicit Matrix4(const float* values);

    void assign(float m0, float m1, float m2, float m3,
                float m4, float m5, float m6, float m7,
                float m8, float m9, float m10, float m11,
                float m12, float m13, float m14, float m15);

    float& operator[](int i) { return m[i]; }
    float operator[](int i) const { return m[i]; }

    // Exact element-wise comparison.
    bool operator==(const Matrix4& o) const;
    bool operator!=(const Matrix4& o) const { return !(*this == o); }

    Matrix4& operator+=(const Matrix4& o);
    Matrix4& operator-=(const Matrix4& o);
    // A *= B makes A the product A * B, so B acts first on a point.
    Matrix4& operator*=(const Matrix4& o);
    Matrix4& operator*=(float s);
    Matrix4& operator/=(float s);

    Matrix4 operator+(const Matrix4& o) const;
    Matrix4 operator-(const Matrix4& o) const;
    Matrix4 operator*(const Matrix4& o) const;
    Matrix4 operator*(float s) const;
    Matrix4 operator/(float s) const;

    float det() const;
    Matrix4 transpose() const;
    // Transpose of the cofactor matrix.
    Matrix4 adjoint() const;
    // adjoint() / det(), with every determinant below 0.000001 (negative ones
    // included) taken as 0.000001: the engine never fails an inversion.
    Matrix4 inverse() const;
};

// A point: implicit w = 1, fourth row ignored, no division. Both orders are M * p.
Vector3 operator*(const Matrix4& mat, const Vector3& v);
Vector3 operator*(const Vector3& v, const Matrix4& mat);
// The full 4x4 product; both orders are M * v.
Vector4 operator*(const Matrix4& mat, const Vector4& v);
Vector4 operator*(const Vector4& v, const Matrix4& mat);

std::istream& operator>>(std::istream& in, Matrix4& mat);
std::ostream& operator<<(std::ostream& out, const Matrix4& mat);
// clang-format on
