// One picture read back from GL: tightly packed RGB rows, top row first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class Frame {
public:
    Frame();

    // Reads the current (not yet swapped) colour buffer; false for a non-positive size.
    bool read(int width, int height);
    // Takes pixels given bottom row first, as GL hands them out.
    void setBottomUp(int width, int height, const uint8_t* rgb);
    // A picture of one colour; a non-positive size gives an empty one.
    void fill(int width, int height, uint8_t red, uint8_t green, uint8_t blue);
    // Copies `piece` with its top left corner at (x, y); what falls outside this picture is left out.
    void paste(const Frame& piece, int x, int y);

    int getWidth() const { return width; }
    int getHeight() const { return height; }
    const uint8_t* getPixels() const { return pixels.data(); }
    size_t getByteCount() const { return pixels.size(); }
    size_t getRowBytes() const { return static_cast<size_t>(width) * 3; }

private:
    void flipRows();

    int width;
    int height;
    std::vector<uint8_t> pixels;
};
