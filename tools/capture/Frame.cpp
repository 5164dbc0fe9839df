// Reading a frame back from GL and turning it top row first.
#include "Frame.h"

#include <GL/gl.h>
#include <algorithm>
#include <cstring>

Frame::Frame() : width(0), height(0) {}

bool Frame::read(int w, int h)
{
    if (w <= 0 || h <= 0)
        return false;
    width = w;
    height = h;
    pixels.resize(static_cast<size_t>(w) * static_cast<size_t>(h) * 3);
    // Rows of odd widths are not padded to four bytes.
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    flipRows();
    return true;
}

void Frame::setBottomUp(int w, int h, const uint8_t* rgb)
{
    width = std::max(w, 0);
    height = std::max(h, 0);
    pixels.assign(rgb, rgb + static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    flipRows();
}

void Frame::fill(int w, int h, uint8_t red, uint8_t green, uint8_t blue)
{
    width = std::max(w, 0);
    height = std::max(h, 0);
    pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    for (size_t i = 0; i < pixels.size(); i += 3) {
        pixels[i] = red;
        pixels[i + 1] = green;
        pixels[i + 2] = blue;
    }
}

void Frame::paste(const Frame& piece, int x, int y)
{
    const int left = std::max(x, 0);
    const int right = std::min(x + piece.width, width);
    if (left >= right)
        return;
    const size_t bytes = static_cast<size_t>(right - left) * 3;
    for (int row = std::max(y, 0); row < std::min(y + piece.height, height); ++row) {
        const uint8_t* from = piece.pixels.data() + (static_cast<size_t>(row - y) * piece.width + (left - x)) * 3;
        std::memcpy(pixels.data() + (static_cast<size_t>(row) * width + left) * 3, from, bytes);
    }
}

void Frame::flipRows()
{
    size_t row = getRowBytes();
    std::vector<uint8_t> swap(row);
    for (int top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        uint8_t* upper = pixels.data() + static_cast<size_t>(top) * row;
        uint8_t* lower = pixels.data() + static_cast<size_t>(bottom) * row;
        std::memcpy(swap.data(), upper, row);
        std::memcpy(upper, lower, row);
        std::memcpy(lower, swap.data(), row);
    }
}
