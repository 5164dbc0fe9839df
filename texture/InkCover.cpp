// Measuring a texture region's ink row by row and gathering the rows into bands.
#include "texture/InkCover.h"

#include "texture/Texture.h"
#include "texture/TextureFormat.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Where the alpha lies in a texel of the format; -1 when the format has none (every texel is opaque).
int alphaByte(int format)
{
    switch (format) {
        case TEXTURE_ALPHA:
            return 0;
        case TEXTURE_LUMINANCE_ALPHA:
            return 1;
        case TEXTURE_RGBA:
            return 3;
        default:
            return -1;
    }
}

// Index into [0, size) as GL_REPEAT wraps it.
int wrap(int index, int size)
{
    return ((index % size) + size) % size;
}

// The first and last inked columns of one row; first > last when it has none.
struct RowInk {
    int first = INT_MAX;
    int last = INT_MIN;
};

// Linear filtering blends the two texels around s * size - 0.5: a sample at s reaches texels from
// floor(s * size) - 1 to ceil(s * size). Widened by the margin.
int firstReached(float coordinate, int size)
{
    return static_cast<int>(std::floor(coordinate * size)) - 1 - static_cast<int>(InkCover::MARGIN);
}

int lastReached(float coordinate, int size)
{
    return static_cast<int>(std::ceil(coordinate * size)) + static_cast<int>(InkCover::MARGIN);
}

// The coordinates from which a sample reaches texels first to last, margin included.
float lowestReaching(int first, int size)
{
    return (static_cast<float>(first) - 0.5f - InkCover::MARGIN) / static_cast<float>(size);
}

float highestReaching(int last, int size)
{
    return (static_cast<float>(last) + 1.5f + InkCover::MARGIN) / static_cast<float>(size);
}

}  // namespace

void InkCover::measure(const Texture* texture, float sLow, float sHigh, float tLow, float tHigh, int bandRows)
{
    boxes.clear();
    whole = true;
    const unsigned char* pixels = texture ? texture->getDataPtr() : nullptr;
    const int alpha = texture ? alphaByte(texture->getFormat()) : -1;
    if (!pixels || alpha < 0 || texture->getWidth() <= 0 || texture->getHeight() <= 0 || bandRows <= 0) {
        boxes.push_back(Box{sLow, sHigh, tLow, tHigh});
        return;
    }
    whole = false;
    const int width = texture->getWidth();
    const int height = texture->getHeight();
    const int step = texture->getComponents();

    // The ink of every row any sample of the region reaches, over the columns it reaches.
    const int columnFrom = firstReached(sLow, width), columnTo = lastReached(sHigh, width);
    const int rowFrom = firstReached(tLow, height), rowTo = lastReached(tHigh, height);
    std::vector<RowInk> rows(static_cast<size_t>(rowTo - rowFrom + 1));
    // Where each column of the reach lies in a row, wrapped once for all rows.
    std::vector<size_t> offsets;
    offsets.reserve(static_cast<size_t>(columnTo - columnFrom + 1));
    for (int column = columnFrom; column <= columnTo; ++column)
        offsets.push_back(static_cast<size_t>(wrap(column, width)) * step + alpha);
    for (int row = rowFrom; row <= rowTo; ++row) {
        const unsigned char* line = pixels + static_cast<size_t>(wrap(row, height)) * width * step;
        RowInk& ink = rows[static_cast<size_t>(row - rowFrom)];
        // The first inked column from the left, then the last from the right.
        size_t left = 0;
        while (left < offsets.size() && line[offsets[left]] == 0)
            ++left;
        if (left == offsets.size())
            continue;
        size_t right = offsets.size() - 1;
        while (line[offsets[right]] == 0)
            --right;
        ink.first = columnFrom + static_cast<int>(left);
        ink.last = columnFrom + static_cast<int>(right);
    }

    // Bands start on whole rows, so that neighbours share their edge exactly.
    const float rowHeight = 1.0f / static_cast<float>(height);
    for (int band = static_cast<int>(std::floor(tLow * height)); band * rowHeight < tHigh; band += bandRows) {
        const float bandLow = std::max(tLow, band * rowHeight);
        const float bandHigh = std::min(tHigh, (band + bandRows) * rowHeight);
        RowInk columns;
        int inkTop = INT_MAX, inkBottom = INT_MIN;
        for (int row = firstReached(bandLow, height); row <= lastReached(bandHigh, height); ++row) {
            const RowInk& ink = rows[static_cast<size_t>(row - rowFrom)];
            if (ink.first > ink.last)
                continue;
            columns.first = std::min(columns.first, ink.first);
            columns.last = std::max(columns.last, ink.last);
            inkTop = std::min(inkTop, row);
            inkBottom = row;
        }
        if (columns.first > columns.last)
            continue;
        boxes.push_back(Box{
            std::max(sLow, lowestReaching(columns.first, width)), std::min(sHigh, highestReaching(columns.last, width)),
            std::max(bandLow, lowestReaching(inkTop, height)), std::min(bandHigh, highestReaching(inkBottom, height))});
    }
}
