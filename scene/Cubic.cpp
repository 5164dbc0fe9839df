// Hermite basis evaluation for scalars and vectors.
#include "scene/Cubic.h"

namespace {

struct Basis {
    float a, b, p, q;
};

Basis basis(float t)
{
    float t2 = t * t;
    float t3 = t2 * t;
    return Basis{2.0f * t3 - 3.0f * t2 + 1.0f, -2.0f * t3 + 3.0f * t2, t3 - 2.0f * t2 + t, t3 - t2};
}

}  // namespace

float cubic(float a, float p, float q, float b, float t)
{
    Basis h = basis(t);
    return a * h.a + b * h.b + p * h.p + q * h.q;
}

Vector3 cubic(const Vector3& a, const Vector3& p, const Vector3& q, const Vector3& b, float t)
{
    Basis h = basis(t);
    return a * h.a + b * h.b + p * h.p + q * h.q;
}
