// Writes 8-bit RGB or RGBA pictures as PNG files through libpng.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class Image;

class PngWriter {
public:
    // channels is 3 or 4; rows top first, no padding. False (and no file left
    // half-written on purpose) when the size does not match or the file cannot be made.
    static bool write(const std::string& path, const std::vector<uint8_t>& bytes, int width, int height, int channels);
    static bool write(const std::string& path, const Image& image, int channels);
};
