// Pictures of the spacecraft fly-by: hull plating, lit window bands, the nebula round the sky and a soft glow.
#pragma once

#include "Image.h"

class SpaceCraftArt {
public:
    // Seamless 512 × 512 steel plating: plates of many sizes, seams, bolts and wear.
    Image plates() const;
    // 256 × 256: eight bands of windows, a window every 32 texels, most of them lit.
    Image windows() const;
    // 512 × 512 half of the sky for a dome: u the azimuth, v from the pole (0) to the horizon (1).
    // The upper and lower halves meet without a seam at the horizon.
    Image nebula(bool upper) const;
    // 128 × 128 round glow, white at the centre fading to black.
    Image glow() const;
};
