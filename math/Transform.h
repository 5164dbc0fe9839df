// Builders that overwrite a matrix with a transform, projection or view.
// Angles are degrees; matrices are row-major and act on column vectors.
#pragma once

#include "math/Matrix3.h"
#include "math/Matrix4.h"
#include "math/Vector3.h"

void Identity(Matrix3& mat);
void Identity(Matrix4& mat);

// Translation in entries 3, 7, 11; w goes to the corner entry 15.
void Translate(Matrix4& mat, float x, float y, float z, float w = 1.0f);
// 2D homogeneous translation: entries 2, 5 and z in the corner entry 8.
void Translate(Matrix3& mat, float x, float y, float z = 1.0f);

void Scale(Matrix4& mat, float x, float y, float z, float w = 1.0f);
void Scale(Matrix3& mat, float x, float y, float z);

void RotateAroundX(Matrix3& mat, float degrees);
void RotateAroundX(Matrix4& mat, float degrees);
void RotateAroundY(Matrix3& mat, float degrees);
void RotateAroundY(Matrix4& mat, float degrees);
void RotateAroundZ(Matrix3& mat, float degrees);
void RotateAroundZ(Matrix4& mat, float degrees);
// The same as RotateAroundZ.
void Rotate2D(Matrix3& mat, float degrees);
void Rotate2D(Matrix4& mat, float degrees);

// Rows u, v, n: takes world vectors into the basis's frame.
void RotateAxis(Matrix3& mat, const Vector3& u, const Vector3& v, const Vector3& n);
void RotateAxis(Matrix4& mat, const Vector3& u, const Vector3& v, const Vector3& n);
// Columns u, v, n: the transpose of RotateAxis.
void InvRotateAxis(Matrix3& mat, const Vector3& u, const Vector3& v, const Vector3& n);
void InvRotateAxis(Matrix4& mat, const Vector3& u, const Vector3& v, const Vector3& n);

// Rotation about a unit axis (not normalised here).
void vectorRotate(Matrix3& mat, const Vector3& axis, float degrees);
void vectorRotate(Matrix4& mat, const Vector3& axis, float degrees);

// Rotates about x first, then y, then z: Rz * Ry * Rx.
void RotateXYZ(Matrix3& mat, float ax, float ay, float az);
void RotateXYZ(Matrix4& mat, float ax, float ay, float az);

// The OpenGL frustum matrix. Note top comes before bottom.
void frustum(Matrix4& mat, float left, float right, float top, float bottom, float zNear, float zFar);
// frustum with top = -h and bottom = h: the picture comes out mirrored vertically, on purpose.
void perspective(Matrix4& mat, float fovy, float aspect, float zNear, float zFar);
void ortho3D(Matrix4& mat, float left, float right, float top, float bottom, float zNear, float zFar);
void ortho2D(Matrix4& mat, float left, float right, float top, float bottom);

// View matrix looking down +z from eye towards target, with +x = up x forward.
void lookAt(Matrix4& mat, const Vector3& eye, const Vector3& target, const Vector3& up);

// Determinant of the 3x3 matrix given row by row.
float det3(float a1, float a2, float a3, float b1, float b2, float b3, float c1, float c2, float c3);
