// Pictures of the flipper land: the painted play field, a sunny sky with a rainbow, the balls' gloss and their shadow.
#pragma once

#include "Image.h"

class FlipperLandArt {
public:
    static const int FIELD_SIZE = 512;
    static const int SKY_SIZE = 256;
    static const int SHINE_SIZE = 128;
    static const int SHADOW_SIZE = 64;

    // The whole land seen from above, x to the right and z down the rows: lanes from the middle
    // to the four hollows, targets in the hollows, stars under the bumpers, candy stripes on the rim.
    Image field() const;
    // The dome as a hemisphere maps it: u round the horizon, v from the zenith (top row) down.
    Image sky() const;
    // A sphere map of a bright day: light above, warm ground below, a window of sun; the balls'
    // colour is multiplied by it.
    Image shine() const;
    // A soft dark blot, its alpha falling to nothing at the rim.
    Image shadow() const;
};
