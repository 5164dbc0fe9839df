// Pictures of the cockpit scene: dark metal panels, the amber instrument dashboard, and the planet with its air.
#pragma once

#include "Image.h"

class CockpitArt {
public:
    static const int PLANET_WIDTH = 1024;
    static const int PLANET_HEIGHT = 512;
    static const int INSTRUMENTS_WIDTH = 1024;
    static const int INSTRUMENTS_HEIGHT = 256;

    // Seamless 256 × 256 gunmetal panels.
    Image panels() const;
    // The dashboard's face, 1024 × 256, its top row under the window: lamps, gauges, buttons and
    // the dark glass of the three screens where the layout puts them.
    Image instruments() const;
    // The planet's ground, 1024 × 512 from pole to pole, wrapping round: oceans, continents, ice.
    Image planet() const;
    // Its clouds at the same size: white, their cover in alpha.
    Image clouds() const;
    // 256 × 256 ring of air: bright at the planet's edge (at 0.8 of the radius), fading outwards.
    Image halo() const;
};
