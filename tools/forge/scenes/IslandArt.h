// Pictures of the islands scene: sand, water and a lit window.
#pragma once

#include "Image.h"

class IslandArt {
public:
    // Seamless 512 × 512 rippled sand.
    Image sand() const;
    // Seamless 256 × 256 night water.
    Image water() const;
    // 256 × 256 arched window with warm light behind its panes, clear outside the frame.
    Image window() const;
};
