// 3x3 float matrix, row-major, acting on column vectors (p' = M * p).
// Matrices are written out row by row, as they read on paper: the formatter leaves these files alone.
// clang-format off
#pragma once

#include "math/Vector3.h"

#include <istream>
#include <ostream>

class Matrix3 {
public:
    // Element (row r, column c) is m[3 * r + c].
    float m[9];

    Matrix3();  // all zero
    Matrix3(float m0, float m1, float m2,
            float m3, float m4, float m5,
            float m6, float m7, float m8);
    explicit Matrix3(const float* values);

    void assign(float m0, float m1, float m2,
                float m3, float m4, float m5,
                float m6, float m7, float m8);

    float& operator[](int i) { return m[i]; }
    float operator[](int i) const { return m[i]; }

    // Exact element-wise comparison.
    bool operator==(const Matrix3& o) const;
    bool operator!=(const Matrix3& o) const { return !(*this == o); }

    Matrix3& operator+=(const Matrix3& o);
    Matrix3& operator-=(const Matrix3& o);
    // A *= B makes A the product A * B, so B acts first on a point.
    Matrix3& operator*=(const Matrix3& o);
    Matrix3& operator*=(float s);
    Matrix3& operator/=(float s);

    Matrix3 operator+(const Matrix3& o) const;
    Matrix3 operator-(const Matrix3& o) const;
    Matrix3 operator*(const Matrix3& o) const;
    Matrix3 operator*(float s) const;
    Matrix3 operator/(float s) const;

    float det() const;
    Matrix3 transpose() const;
};

// Both operand orders are M * v: the library has no row-vector product.
Vector3 operator*(const Matrix3& mat, const Vector3& v);
Vector3 operator*(const Vector3& v, const Matrix3& mat);

std::istream& operator>>(std::istream& in, Matrix3& mat);
std::ostream& operator<<(std::ostream& out, const Matrix3& mat);
// clang-format on
