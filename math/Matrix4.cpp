// Matrix4: element-wise arithmetic, products, determinant, adjoint, inverse and text form.
// Matrices are written out row by row, as they read on paper: the formatter leaves these files alone.
// clang-format off
#include "math/Matrix4.h"
#include "math/Transform.h"

namespace {

// Determinant of the 3x3 matrix left when row r and column c are struck out.
float minor(const float* m, int r, int c)
{
    float e[9];
    int n = 0;
    for (int row = 0; row < 4; ++row) {
        if (row == r)
            continue;
        for (int col = 0; col < 4; ++col) {
            if (col != c)
                e[n++] = m[4 * row + col];
        }
    }
    return det3(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8]);
}

float cofactor(const float* m, int r, int c)
{
    float value = minor(m, r, c);
    return ((r + c) & 1) ? -value : value;
}

}  // namespace

Matrix4::Matrix4()
{
    for (float& e : m)
        e = 0.0f;
}

Matrix4::Matrix4(float m0, float m1, float m2, float m3,
                 float m4, float m5, float m6, float m7,
                 float m8, float m9, float m10, float m11,
                 float m12, float m13, float m14, float m15)
{
    assign(m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15);
}

Matrix4::Matrix4(const float* values)
{
    for (int i = 0; i < 16; ++i)
        m[i] = values[i];
}

void Matrix4::assign(float m0, float m1, float m2, float m3,
                     float m4, float m5, float m6, float m7,
                     float m8, float m9, float m10, float m11,
                     float m12, float m13, float m14, float m15)
{
    m[0] = m0;   m[1] = m1;   m[2] = m2;   m[3] = m3;
    m[4] = m4;   m[5] = m5;   m[6] = m6;   m[7] = m7;
    m[8] = m8;   m[9] = m9;   m[10] = m10; m[11] = m11;
    m[12] = m12; m[13] = m13; m[14] = m14; m[15] = m15;
}

bool Matrix4::operator==(const Matrix4& o) const
{
    for (int i = 0; i < 16; ++i) {
        if (m[i] != o.m[i])
            return false;
    }
    return true;
}

Matrix4& Matrix4::operator+=(const Matrix4& o)
{
    for (int i = 0; i < 16; ++i)
        m[i] += o.m[i];
    return *this;
}

Matrix4& Matrix4::operator-=(const Matrix4& o)
{
    for (int i = 0; i < 16; ++i)
        m[i] -= o.m[i];
    return *this;
}

Matrix4& Matrix4::operator*=(const Matrix4& o)
{
    *this = *this * o;
    return *this;
}

Matrix4& Matrix4::operator*=(float s)
{
    for (float& e : m)
        e *= s;
    return *this;
}

Matrix4& Matrix4::operator/=(float s)
{
    for (float& e : m)
        e /= s;
    return *this;
}

Matrix4 Matrix4::operator+(const Matrix4& o) const
{
    Matrix4 r(*this);
    return r += o;
}

Matrix4 Matrix4::operator-(const Matrix4& o) const
{
    Matrix4 r(*this);
    return r -= o;
}

Matrix4 Matrix4::operator*(const Matrix4& o) const
{
    Matrix4 r;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k)
                sum += m[4 * row + k] * o.m[4 * k + col];
            r.m[4 * row + col] = sum;
        }
    }
    return r;
}

Matrix4 Matrix4::operator*(float s) const
{
    Matrix4 r(*this);
    return r *= s;
}

Matrix4 Matrix4::operator/(float s) const
{
    Matrix4 r(*this);
    return r /= s;
}

float Matrix4::det() const
{
    float sum = 0.0f;
    for (int c = 0; c < 4; ++c)
        sum += m[c] * cofactor(m, 0, c);
    return sum;
}

Matrix4 Matrix4::transpose() const
{
    Matrix4 r;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col)
            r.m[4 * col + row] = m[4 * row + col];
    }
    return r;
}

Matrix4 Matrix4::adjoint() const
{
    Matrix4 r;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col)
            r.m[4 * row + col] = cofactor(m, col, row);
    }
    return r;
}

Matrix4 Matrix4::inverse() const
{
    // Never fail: tiny and negative determinants are clamped, which scales a
    // reflection's inverse wrongly. Callers only invert rotations and translations.
    const float smallest = 0.000001f;
    float d = det();
    if (d < smallest)
        d = smallest;
    return adjoint() * (1.0f / d);
}

Vector3 operator*(const Matrix4& mat, const Vector3& v)
{
    const float* m = mat.m;
    return Vector3(m[0] * v.x + m[1] * v.y + m[2] * v.z + m[3],
                   m[4] * v.x + m[5] * v.y + m[6] * v.z + m[7],
                   m[8] * v.x + m[9] * v.y + m[10] * v.z + m[11]);
}

Vector3 operator*(const Vector3& v, const Matrix4& mat)
{
    return mat * v;
}

Vector4 operator*(const Matrix4& mat, const Vector4& v)
{
    const float* m = mat.m;
    return Vector4(m[0] * v.x + m[1] * v.y + m[2] * v.z + m[3] * v.w,
                   m[4] * v.x + m[5] * v.y + m[6] * v.z + m[7] * v.w,
                   m[8] * v.x + m[9] * v.y + m[10] * v.z + m[11] * v.w,
                   m[12] * v.x + m[13] * v.y + m[14] * v.z + m[15] * v.w);
}

Vector4 operator*(const Vector4& v, const Matrix4& mat)
{
    return mat * v;
}

std::istream& operator>>(std::istream& in, Matrix4& mat)
{
    for (float& e : mat.m)
        in >> e;
    return in;
}

std::ostream& operator<<(std::ostream& out, const Matrix4& mat)
{
    // One row per line; nine significant digits read back exactly.
    std::streamsize old = out.precision(9);
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            out << mat.m[4 * row + col];
            if (col < 3)
                out << ' ';
        }
        if (row < 3)
            out << '\n';
    }
    out.precision(old);
    return out;
}
// clang-format on
