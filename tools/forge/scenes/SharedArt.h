// Pictures several scenes share: the ship's planks and sails, and the soft glow every particle cluster draws.
#pragma once

#include "Image.h"

class SharedArt {
public:
    // 256 × 256 atlas for the ship mesh: hull planks in the top half (v 0 to 0.5),
    // sail canvas in the lower left quarter, deck planks in the lower right quarter
    // above a dark band for masts and rigging (v 0.875 to 1).
    Image ship() const;
    // 128 × 128 soft round glow, black at its border.
    Image particle() const;

private:
    void hullPlanks(Image& image, int x0, int y0, int w, int h) const;
    void sailCloth(Image& image, int x0, int y0, int w, int h) const;
    void deckPlanks(Image& image, int x0, int y0, int w, int h) const;
};
