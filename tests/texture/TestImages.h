// Small image files made inside the tests: temporary paths and writers for every format the loaders read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

typedef std::vector<unsigned char> Bytes;

// A path in this process's own scratch directory.
std::string scratchPath(const std::string& fileName);

bool writeBytes(const std::string& path, const Bytes& bytes);
Bytes readBytes(const std::string& path);

// samples: rows top first, channels as the colour type has them, bitDepth 8
// (or 16, big-endian pairs, or 1/2/4 packed as libpng expects for grey and palette).
struct PngSpec {
    int width = 0;
    int height = 0;
    int colorType = 0;
    int bitDepth = 8;
    Bytes samples;
    Bytes palette;  // RGB triples for palette images
    Bytes trns;     // alpha per palette entry
};
bool writePng(const std::string& path, const PngSpec& shape);

bool writeJpeg(const std::string& path, int width, int height, const Bytes& rgb, int components = 3);
// rgba rows top first.
bool writeTiff(const std::string& path, int width, int height, const Bytes& rgba);
// indices: bytesPerLine per row; palette: 768 bytes.
Bytes makePcx(int width, int height, int bytesPerLine, const Bytes& indices, const Bytes& palette);
// One-channel SGI image; rows as they go in the file (bottom row first).
Bytes makeSgi(int width, int height, const Bytes& pixels, bool rle);
