// Pictures of the underwater tunnel: rock walls, swimming caustics and the objects' reflection map.
#pragma once

#include "Image.h"

class TunnelArt {
public:
    // Seamless 256 × 256 teal rock for the tunnel walls.
    Image rock() const;
    // Seamless 256 × 256 caustic light, dark between bright threads: it is added on top of the rock.
    Image caustics() const;
    // 256 × 256 sphere map of the sea seen from inside it. Its last row faces up
    // (sphere-map t = 1), so the light from the surface sits at the bottom of the file.
    Image reflection() const;
};
