// Colour arithmetic the picture generators share: shading and blending straight RGBA.
#pragma once

#include "Image.h"

class ColourMath {
public:
    // The colour channels scaled by k; alpha kept.
    static Rgba shade(Rgba c, double k);
    // Channel-wise blend from a (t = 0) to b (t = 1); the result is opaque.
    static Rgba mix(Rgba a, Rgba b, double t);
    // As mix, but alpha is blended too.
    static Rgba mixWithAlpha(Rgba a, Rgba b, double t);
};
