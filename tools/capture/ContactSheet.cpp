// Laying stills and labels out on the contact sheet.
#include "ContactSheet.h"

#include <algorithm>

namespace {

const int MIN_LABEL_HEIGHT = 12;

}  // namespace

ContactSheet::ContactSheet(int width, int height, int labels, size_t stills)
    : tileWidth(std::max(width, 0)), tileHeight(std::max(height, 0)), labelHeight(std::max(labels, 0)), count(stills),
      columns(static_cast<int>(std::min<size_t>(stills, COLUMNS))),
      rows(static_cast<int>((stills + COLUMNS - 1) / COLUMNS))
{
    picture.fill(GAP + columns * (tileWidth + GAP), GAP + rows * (tileHeight + labelHeight + GAP), GREY, GREY, GREY);
}

int ContactSheet::labelHeightFor(int height)
{
    // The strip is drawn in the capture window, so it can be no taller than a still.
    return std::min(height, std::max(MIN_LABEL_HEIGHT, height / 8));
}

void ContactSheet::place(size_t index, const Frame& still, const Frame& label)
{
    if (index >= count)
        return;
    const int column = static_cast<int>(index % COLUMNS);
    const int row = static_cast<int>(index / COLUMNS);
    const int x = GAP + column * (tileWidth + GAP);
    const int y = GAP + row * (tileHeight + labelHeight + GAP);
    picture.paste(still, x, y);
    picture.paste(label, x, y + tileHeight);
}
