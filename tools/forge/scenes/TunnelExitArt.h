// Pictures of the tunnel exit: rock and caustics lit by the nearing surface, the light beyond the walls, one shaft of it.
#pragma once

#include "Image.h"

class TunnelExitArt {
public:
    static const int SIZE = 256;
    static const int RAY_SIZE = 64;

    // Seamless teal rock, paler than deep in the tunnel: the light reaches it.
    Image rock() const;
    // Seamless caustic light, brighter than the tunnel's; added on top of the rock.
    Image caustics() const;
    // The dome beyond the mouth, as a hemisphere maps it: u round the horizon, v from the
    // middle of the light (top row) out to its rim (bottom row), with shafts running outwards.
    Image light() const;
    // One shaft: bright along the middle column, fading to both sides and down to the far end.
    Image ray() const;
};
