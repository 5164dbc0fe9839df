// Reading a frame back from GL and turning it top row first.
#include "Frame.h"

#include <GL/gl.h>
#include <algorithm>
#include <cstring>

Frame::Frame()
    : width(0), height(0)
{
}

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
