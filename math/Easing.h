// Smooth steps between two values, for movements that start and stop gently.
#pragma once

namespace Easing {

// 0 at or below edge0, 1 at or above edge1, and the cubic ease between them (edge0 may exceed edge1,
// for a step downwards).
inline float smoothstep(float edge0, float edge1, float x)
{
    float t = (x - edge0) / (edge1 - edge0);
    t = t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
    return t * t * (3.0f - 2.0f * t);
}

}  // namespace Easing
