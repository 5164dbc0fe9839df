// Matrix3: element-wise arithmetic, products, determinant and text form.
// Matrices are written out row by row, as they read on paper: the formatter leaves these files alone.
// clang-format off
#include "math/Matrix3.h"
#include "math/Transform.h"

Matrix3::Matrix3()
{
    for (float& e : m)
        e = 0.0f;
}

Matrix3::Matrix3(float m0, float m1, float m2,
                 float m3, float m4, float m5,
                 float m6, float m7, float m8)
{
    assign(m0, m1, m2, m3, m4, m5, m6, m7, m8);
}

Matrix3::Matrix3(const float* values)
{
    for (int i = 0; i < 9; ++i)
        m[i] = values[i];
}

void Matrix3::assign(float m0, float m1, float m2,
                     float m3, float m4, float m5,
                     float m6, float m7, float m8)
{
    m[0] = m0; m[1] = m1; m[2] = m2;
    m[3] = m3; m[4] = m4; m[5] = m5;
    m[6] = m6; m[7] = m7; m[8] = m8;
}

bool Matrix3::operator==(const Matrix3& o) const
{
    for (int i = 0; i < 9; ++i) {
        if (m[i] != o.m[i])
            return false;
    }
    return true;
}

Matrix3& Matrix3::operator+=(const Matrix3& o)
{
    for (int i = 0; i < 9; ++i)
        m[i] += o.m[i];
    return *this;
}

Matrix3& Matrix3::operator-=(const Matrix3& o)
{
    for (int i = 0; i < 9; ++i)
        m[i] -= o.m[i];
    return *this;
}

Matrix3& Matrix3::operator*=(const Matrix3& o)
{
    *this = *this * o;
    return *this;
}

Matrix3& Matrix3::operator*=(float s)
{
    for (float& e : m)
        e *= s;
    return *this;
}

Matrix3& Matrix3::operator/=(float s)
{
    for (float& e : m)
        e /= s;
    return *this;
}

Matrix3 Matrix3::operator+(const Matrix3& o) const
{
    Matrix3 r(*this);
    return r += o;
}

Matrix3 Matrix3::operator-(const Matrix3& o) const
{
    Matrix3 r(*this);
    return r -= o;
}

Matrix3 Matrix3::operator*(const Matrix3& o) const
{
    Matrix3 r;
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            float sum = 0.0f;
            for (int k = 0; k < 3; ++k)
                sum += m[3 * row + k] * o.m[3 * k + col];
            r.m[3 * row + col] = sum;
        }
    }
    return r;
}

Matrix3 Matrix3::operator*(float s) const
{
    Matrix3 r(*this);
    return r *= s;
}

Matrix3 Matrix3::operator/(float s) const
{
    Matrix3 r(*this);
    return r /= s;
}

float Matrix3::det() const
{
    return det3(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8]);
}

Matrix3 Matrix3::transpose() const
{
    return Matrix3(m[0], m[3], m[6],
                   m[1], m[4], m[7],
                   m[2], m[5], m[8]);
}

Vector3 operator*(const Matrix3& mat, const Vector3& v)
{
    const float* m = mat.m;
    return Vector3(m[0] * v.x + m[1] * v.y + m[2] * v.z,
                   m[3] * v.x + m[4] * v.y + m[5] * v.z,
                   m[6] * v.x + m[7] * v.y + m[8] * v.z);
}

Vector3 operator*(const Vector3& v, const Matrix3& mat)
{
    return mat * v;
}

std::istream& operator>>(std::istream& in, Matrix3& mat)
{
    for (float& e : mat.m)
        in >> e;
    return in;
}

std::ostream& operator<<(std::ostream& out, const Matrix3& mat)
{
    // One row per line; nine significant digits read back exactly.
    std::streamsize old = out.precision(9);
    for (int row = 0; row < 3; ++row) {
        out << mat.m[3 * row] << ' ' << mat.m[3 * row + 1] << ' ' << mat.m[3 * row + 2];
        if (row < 2)
            out << '\n';
    }
    out.precision(old);
    return out;
}
// clang-format on
