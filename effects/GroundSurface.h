// What a rolling ball needs of the ground under it: the height, the way up and how fast the ground itself rises.
#pragma once

#include "math/Vector3.h"

struct GroundPoint {
    // The surface's height straight below (or above) the point asked about.
    float height;
    // Unit length, pointing out of the ground (its y is positive).
    Vector3 normal;
    // How fast the surface there moves up, in units a second; 0 for ground that stands still.
    float rise;
};

class GroundSurface {
public:
    virtual ~GroundSurface() = default;
    // False where there is no ground under (x, z).
    virtual bool groundAt(float x, float z, GroundPoint& out) const = 0;
};
