// A contact sheet: one still per schedule entry, in rows, each still over a strip with its label.
#pragma once

#include "Frame.h"

#include <cstddef>
#include <cstdint>

class ContactSheet {
public:
    static constexpr int COLUMNS = 6;
    // Pixels between the tiles and around the sheet.
    static constexpr int GAP = 4;
    // The background, also under the labels.
    static constexpr uint8_t GREY = 40;

    // An empty sheet for `count` stills of tileWidth x tileHeight, each with a label strip of labelHeight below it.
    ContactSheet(int tileWidth, int tileHeight, int labelHeight, size_t count);

    // Puts still `index` and its label in their places; an index past the count is ignored.
    void place(size_t index, const Frame& still, const Frame& label);
    const Frame& getPicture() const { return picture; }
    int getColumns() const { return columns; }
    int getRows() const { return rows; }

    // A label strip that fits a still of this height: an eighth of it, never too small to read
    // nor taller than the still.
    static int labelHeightFor(int tileHeight);

private:
    int tileWidth;
    int tileHeight;
    int labelHeight;
    size_t count;
    int columns;
    int rows;
    Frame picture;
};
