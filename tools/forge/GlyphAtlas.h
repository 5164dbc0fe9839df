// The console's glyph texture: white monospace characters 33 to 126 in 16 × 24 cells.
#pragma once

#include "Image.h"

#include <string>

class GlyphAtlas {
public:
    static constexpr int cellWidth = 16;
    static constexpr int cellHeight = 24;
    static constexpr int columns = 16;
    static constexpr int firstChar = 33;
    static constexpr int lastChar = 126;
    // The console divides texel positions by 256 on both axes.
    static constexpr int size = 256;

    // Top-left texel of a character's cell; false for characters outside the set.
    static bool cellOf(int character, int& x, int& y);

    // Renders the atlas from a font file; false when the font cannot be used.
    bool build(const std::string& fontPath);
    const Image& image() const { return atlas; }

private:
    Image atlas;
};
