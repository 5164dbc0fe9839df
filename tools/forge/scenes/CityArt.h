// The city's pictures: facades of lit and dark windows, shop fronts, the street's surfaces, the one-way sign,
// and the lights the street draws over them (neon signs, lamp pools, headlight beams, trails).
#pragma once

#include "Image.h"

class CityArt {
public:
    // The facade picture of one of CityLayout's facade surfaces: eight windows across, eight floors up.
    Image facade(int kind) const;
    // A row of shop fronts; `late` has more of them shuttered and lit for the night.
    Image shops(bool late) const;
    Image road() const;
    Image crossing() const;
    Image sidewalk() const;
    Image roof() const;
    Image metal() const;
    // White arrows on black, pointing right in the top half and left in the bottom half.
    Image oneWay() const;
    // Neon tubes on black, laid out as CityLayout's neon picture says.
    Image neon() const;
    // Light on black, drawn additively: a round pool, a headlight's beam from the bottom edge, and a
    // trail bright at its left end fading to the right.
    Image pool() const;
    Image beam() const;
    Image trail() const;

private:
    void officeWindows(Image& image) const;
    void flatWindows(Image& image) const;
    void brickWindows(Image& image) const;
    void stripWindows(Image& image) const;
    void shopFront(Image& image, int x0, int x1, int kind, unsigned seed) const;
    void neonText(Image& image, const char* text, int x0, int y0, int width, int height, Rgba colour,
                  bool vertical) const;
};
