// Sizes the face so the tallest and widest glyphs keep a clear texel all round:
// linear filtering would otherwise bleed a neighbour's ink into a character.
#include "GlyphAtlas.h"

#include "TextRaster.h"

#include <algorithm>
#include <cmath>

namespace {

struct Extent {
    int left = 1000;
    int right = -1000;
    int top = -1000;
    int bottom = -1000;
};

bool measure(TextRaster& text, Extent& e)
{
    e = Extent();
    TextRaster::Glyph g;
    for (int c = GlyphAtlas::firstChar; c <= GlyphAtlas::lastChar; ++c) {
        if (!text.renderGlyph((unsigned long)c, g))
            return false;
        if (g.width == 0 || g.height == 0)
            continue;
        e.left = std::min(e.left, g.left);
        e.right = std::max(e.right, g.left + g.width);
        e.top = std::max(e.top, g.top);
        e.bottom = std::max(e.bottom, g.height - g.top);
    }
    return true;
}

}  // namespace

bool GlyphAtlas::cellOf(int character, int& x, int& y)
{
    if (character < firstChar || character > lastChar)
        return false;
    const int g = character - firstChar;
    x = (g % columns) * cellWidth;
    y = (g / columns) * cellHeight;
    return true;
}

bool GlyphAtlas::build(const std::string& fontPath)
{
    TextRaster text;
    if (!text.open(fontPath))
        return false;
    text.setHinting(true);
    // The console shows a cell at about 0.72 × 0.5 of its texel size, so glyphs
    // are drawn a little wide to read as ordinary proportions on screen.
    const int inkWidth = cellWidth - 2;
    const int inkHeight = cellHeight - 2;
    Extent e;
    double height = 24.0;
    double width = 0.0;
    for (; height >= 8.0; height -= 0.5) {
        width = height * 1.1;
        for (; width >= 6.0; width -= 0.5) {
            if (!text.setPixelSize(width, height) || !measure(text, e))
                return false;
            if (e.right - e.left <= inkWidth)
                break;
        }
        if (e.top + e.bottom <= inkHeight && e.right - e.left <= inkWidth)
            break;
    }
    const int penX = 1 + (inkWidth - (e.right - e.left)) / 2 - e.left;
    const int baseline = 1 + e.top + (inkHeight - (e.top + e.bottom)) / 2;

    // Clear texels stay white so filtering never darkens a glyph's edge.
    atlas = Image(size, size, Rgba{1.0f, 1.0f, 1.0f, 0.0f});
    TextRaster::Glyph g;
    for (int c = firstChar; c <= lastChar; ++c) {
        int cx = 0;
        int cy = 0;
        cellOf(c, cx, cy);
        if (!text.renderGlyph((unsigned long)c, g))
            return false;
        for (int y = 0; y < g.height; ++y) {
            for (int x = 0; x < g.width; ++x) {
                const int tx = penX + g.left + x;
                const int ty = baseline - g.top + y;
                if (tx < 0 || ty < 0 || tx >= cellWidth || ty >= cellHeight)
                    continue;
                atlas.at(cx + tx, cy + ty).a = g.coverage[(size_t)y * g.width + x] / 255.0f;
            }
        }
    }
    return true;
}
