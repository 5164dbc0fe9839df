// Pictures of the sea bed: sand, rock, kelp and fan blades, the fish's skin, the eye's iris, light shafts, bubbles, the surface and the caustic loop.
#pragma once

#include "Image.h"

class SeaBedArt {
public:
    // Seamless 256 x 256 pale sand with ripples, darker drifts and pebbles.
    Image sand() const;
    // Seamless 256 x 256 rock with crusts of pink and green growth.
    Image rock() const;
    // 64 x 256 kelp blade, base at the top row: olive, ruffled edges, transparent around; its
    // middle column stays opaque from end to end, so the stem can be drawn from it.
    Image kelp() const;
    // 128 x 128 sea fan: a lattice of red and purple branches spreading from the bottom middle.
    Image fan() const;
    // 128 x 64 fish skin: u runs from the nose to the tail, v from the back down to the belly.
    Image fish() const;
    // 256 x 256 eye seen from the front: a slit pupil, a golden-green iris, veined white around it.
    Image iris() const;
    // 64 x 256 shaft of light, bright at the top row, fading down and to both sides; drawn added.
    Image shaft() const;
    // 32 x 32 bubble, a bright rim and a glint on black; drawn added.
    Image bubble() const;
    // Seamless 256 x 256 surface seen from below: light teal crossed by brighter ripples.
    Image surface() const;
    // Frame `frame` of `frames` of a seamless 128 x 128 caustic net whose threads drift and return
    // to where they began after the last frame; dark between them, since it is added on the sand.
    Image caustic(int frame, int frames) const;
};
