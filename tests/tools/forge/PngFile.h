// Test helper: reads a PNG with libpng alone, so checks do not trust the forge's own code.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct PngFile {
    int width = 0;
    int height = 0;
    int channels = 0;  // as stored: 3 for RGB, 4 for RGBA
    std::vector<uint8_t> bytes;

    bool read(const std::string& path);
    const uint8_t* pixel(int x, int y) const { return &bytes[((size_t)y * width + x) * channels]; }
};
