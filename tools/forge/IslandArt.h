// Pictures of the islands scene: sand, water, the ship's wood and sails, the fire glow and a lit window.
#pragma once

#include "Image.h"

class Forge;

class IslandArt {
public:
    bool build(Forge& forge);

    // Seamless 512 × 512 rippled sand.
    Image sand() const;
    // Seamless 256 × 256 night water, translucent (RGBA).
    Image water() const;
    // 256 × 256 atlas for the ship mesh: hull planks in the top half (v 0 to 0.5),
    // sail canvas in the lower left quarter, deck planks in the lower right quarter
    // above a dark band for masts and rigging (v 0.875 to 1).
    Image ship() const;
    // 128 × 128 soft round glow, black at its border.
    Image particle() const;
    // 256 × 256 arched window with warm light behind its panes, clear outside the frame.
    Image window() const;

private:
    void hullPlanks(Image& image, int x0, int y0, int w, int h) const;
    void sailCloth(Image& image, int x0, int y0, int w, int h) const;
    void deckPlanks(Image& image, int x0, int y0, int w, int h) const;
};
