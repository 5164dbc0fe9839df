// Where a region of a texture holds ink: boxes outside which every texel a sample can reach is fully transparent.
#pragma once

#include <vector>

class Texture;

class InkCover {
public:
    // A box in texture coordinates, s and t each from low to high.
    struct Box {
        float sLow, sHigh, tLow, tHigh;
    };

    // Texels kept around the ink beyond the reach of linear filtering, against rounding in the interpolation.
    static constexpr float MARGIN = 1.0f;

    // Measures the region s in [sLow, sHigh], t in [tLow, tHigh] in bands of `bandRows` texel rows: one box
    // per band that a sample can find ink in, as narrow as that ink, trimmed at the ink's first and last rows.
    // Samples are taken as linear filtering takes them, texels wrapping as GL_REPEAT wraps them. A texture with
    // no pixels or no alpha channel gives one box, the whole region.
    void measure(const Texture* texture, float sLow, float sHigh, float tLow, float tHigh, int bandRows);

    // Drawing a quad only over these boxes leaves every pixel as drawing the whole region would, for a blend
    // that weighs the source by its alpha: a fully transparent texel blends to nothing.
    const std::vector<Box>& getBoxes() const { return boxes; }
    // True when the pixels could not be looked at and the one box is the whole region.
    bool isWhole() const { return whole; }

private:
    std::vector<Box> boxes;
    bool whole = true;
};
