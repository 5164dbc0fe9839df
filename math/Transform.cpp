// The matrix builders: identity, translation, scale, rotations, projections, view.
// Matrices are written out row by row, as they read on paper: the formatter leaves these files alone.
// clang-format off
#include "math/Transform.h"
#include "math/MathConstants.h"

#include <cmath>

namespace {

// Degrees to radians with the engine's own constant.

// The 3x3 part shared by the Matrix3 and Matrix4 forms, row-major.
void put3(Matrix4& mat, const float r[9])
{
    mat.assign(r[0], r[1], r[2], 0.0f,
               r[3], r[4], r[5], 0.0f,
               r[6], r[7], r[8], 0.0f,
               0.0f, 0.0f, 0.0f, 1.0f);
}

void put3(Matrix3& mat, const float r[9])
{
    mat.assign(r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7], r[8]);
}

void aroundX(float r[9], float degrees)
{
    float c = std::cos(degrees * MathConstants::DEGREES_TO_RADIANS);
    float s = std::sin(degrees * MathConstants::DEGREES_TO_RADIANS);
    const float e[9] = { 1.0f, 0.0f, 0.0f,
                         0.0f, c, -s,
                         0.0f, s, c };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

void aroundY(float r[9], float degrees)
{
    float c = std::cos(degrees * MathConstants::DEGREES_TO_RADIANS);
    float s = std::sin(degrees * MathConstants::DEGREES_TO_RADIANS);
    const float e[9] = { c, 0.0f, s,
                         0.0f, 1.0f, 0.0f,
                         -s, 0.0f, c };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

void aroundZ(float r[9], float degrees)
{
    float c = std::cos(degrees * MathConstants::DEGREES_TO_RADIANS);
    float s = std::sin(degrees * MathConstants::DEGREES_TO_RADIANS);
    const float e[9] = { c, -s, 0.0f,
                         s, c, 0.0f,
                         0.0f, 0.0f, 1.0f };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

void rows(float r[9], const Vector3& u, const Vector3& v, const Vector3& n)
{
    const float e[9] = { u.x, u.y, u.z,
                         v.x, v.y, v.z,
                         n.x, n.y, n.z };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

void columns(float r[9], const Vector3& u, const Vector3& v, const Vector3& n)
{
    const float e[9] = { u.x, v.x, n.x,
                         u.y, v.y, n.y,
                         u.z, v.z, n.z };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

// Rodrigues' rotation matrix about a unit axis.
void aroundAxis(float r[9], const Vector3& axis, float degrees)
{
    float c = std::cos(degrees * MathConstants::DEGREES_TO_RADIANS);
    float s = std::sin(degrees * MathConstants::DEGREES_TO_RADIANS);
    float t = 1.0f - c;
    float x = axis.x, y = axis.y, z = axis.z;
    const float e[9] = { c + t * x * x, t * x * y - z * s, t * x * z + y * s,
                         t * x * y + z * s, t * y * y + c, t * y * z - x * s,
                         t * x * z - y * s, t * y * z + x * s, t * z * z + c };
    for (int i = 0; i < 9; ++i)
        r[i] = e[i];
}

// x acts first, z last: Rz * Ry * Rx.
Matrix3 xyz(float ax, float ay, float az)
{
    float r[9];
    Matrix3 mx, my, mz;
    aroundX(r, ax);
    put3(mx, r);
    aroundY(r, ay);
    put3(my, r);
    aroundZ(r, az);
    put3(mz, r);
    return mz * my * mx;
}

}  // namespace

void Identity(Matrix3& mat)
{
    Scale(mat, 1.0f, 1.0f, 1.0f);
}

void Identity(Matrix4& mat)
{
    Scale(mat, 1.0f, 1.0f, 1.0f, 1.0f);
}

void Translate(Matrix4& mat, float x, float y, float z, float w)
{
    mat.assign(1.0f, 0.0f, 0.0f, x,
               0.0f, 1.0f, 0.0f, y,
               0.0f, 0.0f, 1.0f, z,
               0.0f, 0.0f, 0.0f, w);
}

void Translate(Matrix3& mat, float x, float y, float z)
{
    mat.assign(1.0f, 0.0f, x,
               0.0f, 1.0f, y,
               0.0f, 0.0f, z);
}

void Scale(Matrix4& mat, float x, float y, float z, float w)
{
    mat.assign(x, 0.0f, 0.0f, 0.0f,
               0.0f, y, 0.0f, 0.0f,
               0.0f, 0.0f, z, 0.0f,
               0.0f, 0.0f, 0.0f, w);
}

void Scale(Matrix3& mat, float x, float y, float z)
{
    mat.assign(x, 0.0f, 0.0f,
               0.0f, y, 0.0f,
               0.0f, 0.0f, z);
}

void RotateAroundX(Matrix3& mat, float degrees) { float r[9]; aroundX(r, degrees); put3(mat, r); }
void RotateAroundX(Matrix4& mat, float degrees) { float r[9]; aroundX(r, degrees); put3(mat, r); }
void RotateAroundY(Matrix3& mat, float degrees) { float r[9]; aroundY(r, degrees); put3(mat, r); }
void RotateAroundY(Matrix4& mat, float degrees) { float r[9]; aroundY(r, degrees); put3(mat, r); }
void RotateAroundZ(Matrix3& mat, float degrees) { float r[9]; aroundZ(r, degrees); put3(mat, r); }
void RotateAroundZ(Matrix4& mat, float degrees) { float r[9]; aroundZ(r, degrees); put3(mat, r); }
void Rotate2D(Matrix3& mat, float degrees) { RotateAroundZ(mat, degrees); }
void Rotate2D(Matrix4& mat, float degrees) { RotateAroundZ(mat, degrees); }

void RotateAxis(Matrix3& mat, const Vector3& u, const Vector3& v, const Vector3& n)
{
    float r[9];
    rows(r, u, v, n);
    put3(mat, r);
}

void RotateAxis(Matrix4& mat, const Vector3& u, const Vector3& v, const Vector3& n)
{
    float r[9];
    rows(r, u, v, n);
    put3(mat, r);
}

void InvRotateAxis(Matrix3& mat, const Vector3& u, const Vector3& v, const Vector3& n)
{
    float r[9];
    columns(r, u, v, n);
    put3(mat, r);
}

void InvRotateAxis(Matrix4& mat, const Vector3& u, const Vector3& v, const Vector3& n)
{
    float r[9];
    columns(r, u, v, n);
    put3(mat, r);
}

void vectorRotate(Matrix3& mat, const Vector3& axis, float degrees)
{
    float r[9];
    aroundAxis(r, axis, degrees);
    put3(mat, r);
}

void vectorRotate(Matrix4& mat, const Vector3& axis, float degrees)
{
    float r[9];
    aroundAxis(r, axis, degrees);
    put3(mat, r);
}

void RotateXYZ(Matrix3& mat, float ax, float ay, float az)
{
    mat = xyz(ax, ay, az);
}

void RotateXYZ(Matrix4& mat, float ax, float ay, float az)
{
    put3(mat, xyz(ax, ay, az).m);
}

void frustum(Matrix4& mat, float left, float right, float top, float bottom, float zNear, float zFar)
{
    float w = right - left;
    float h = top - bottom;
    float depth = zFar - zNear;
    mat.assign(2.0f * zNear / w, 0.0f, (right + left) / w, 0.0f,
               0.0f, 2.0f * zNear / h, (top + bottom) / h, 0.0f,
               0.0f, 0.0f, -(zFar + zNear) / depth, -2.0f * zFar * zNear / depth,
               0.0f, 0.0f, -1.0f, 0.0f);
}

void perspective(Matrix4& mat, float fovy, float aspect, float zNear, float zFar)
{
    float h = std::tan(fovy * MathConstants::PI / 360.0f) * zNear;
    float right = h * aspect;
    // top = -h, bottom = h: the image is mirrored vertically and stays so.
    frustum(mat, -right, right, -h, h, zNear, zFar);
}

void ortho3D(Matrix4& mat, float left, float right, float top, float bottom, float zNear, float zFar)
{
    float w = right - left;
    float h = top - bottom;
    float depth = zFar - zNear;
    mat.assign(2.0f / w, 0.0f, 0.0f, -(right + left) / w,
               0.0f, 2.0f / h, 0.0f, -(top + bottom) / h,
               0.0f, 0.0f, -2.0f / depth, -(zFar + zNear) / depth,
               0.0f, 0.0f, 0.0f, 1.0f);
}

void ortho2D(Matrix4& mat, float left, float right, float top, float bottom)
{
    ortho3D(mat, left, right, top, bottom, -1.0f, 1.0f);
    mat.m[10] = -1.0f;
    mat.m[11] = 0.0f;
}

void lookAt(Matrix4& mat, const Vector3& eye, const Vector3& target, const Vector3& up)
{
    Vector3 f = target - eye;
    f.normalize();
    Vector3 s = up.cross(f);
    s.normalize();
    Vector3 u = f.cross(s);
    u.normalize();
    Matrix4 r;
    RotateAxis(r, s, u, f);
    Matrix4 t;
    Translate(t, -eye.x, -eye.y, -eye.z);
    mat = r * t;
}

float det3(float a1, float a2, float a3,
           float b1, float b2, float b3,
           float c1, float c2, float c3)
{
    return a1 * (b2 * c3 - b3 * c2)
         - a2 * (b1 * c3 - b3 * c1)
         + a3 * (b1 * c2 - b2 * c1);
}
// clang-format on
