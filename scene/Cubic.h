// The cubic Hermite polynomial that joins two keys.
#pragma once

#include "math/Vector3.h"

// a and b are the end values, p the outgoing tangent at a, q the incoming one at b, t in 0..1.
float cubic(float a, float p, float q, float b, float t);
Vector3 cubic(const Vector3& a, const Vector3& p, const Vector3& q, const Vector3& b, float t);
