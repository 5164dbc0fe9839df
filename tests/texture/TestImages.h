// Small image files made inside the tests, and the load helpers the loader tests share.
#pragma once

#include "texture/Texture.h"
#include "texture/TextureLoader.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

typedef std::vector<unsigned char> Bytes;
typedef std::unique_ptr<Texture> TexturePtr;

// A path in this process's own scratch directory.
std::string scratchPath(const std::string& fileName);
bool writeBytes(const std::string& path, const Bytes& bytes);
Bytes readBytes(const std::string& path);
// A new[] copy, for textures that take ownership of their pixels.
unsigned char* copyOf(const Bytes& bytes);
Bytes pixelsOf(const Texture* t);
// A copy of a file with some bytes replaced: {offset, value} pairs.
Bytes patched(Bytes file, std::initializer_list<std::pair<size_t, int>> edits);
// A 16-bit field written in place, little-endian unless asked otherwise.
void put16(Bytes& file, size_t at, int value, bool bigEndian = false);
TexturePtr loadBytes(TextureLoader& loader, const Bytes& file, const char* name, int format);
// Every proper prefix of a valid file must be refused (the last `keep` lengths excepted).
void expectEveryTruncationFails(TextureLoader& loader, const Bytes& whole, const char* name, int format,
                                size_t keep = 0);
// Per format code 1 to 8: the first and last pixels of a file whose first and last are RGBA a and b.
// Without alpha in the file, a[3] and b[3] are what the alpha codes take and RGBA gets opaque.
void expectEveryCode(TextureLoader& loader, const Bytes& file, const char* name, const Bytes& a, const Bytes& b,
                     bool hasAlpha = true, int tolerance = 0);

// Chunk bytes as a string, and stream round trips of anything with load/save.
std::string bytesOf(std::initializer_list<int> values);
template <class T>
std::string saved(T&& object)
{
    std::ostringstream out;
    EXPECT_TRUE(object.save(out));
    return out.str();
}
template <class T>
bool loads(T& object, const std::string& bytes)
{
    std::istringstream in(bytes);
    return object.load(in);
}
// A one-pixel CTX1 file (pixel bytes 1, 2, 3, 4 as the format needs); its path.
std::string ctxFile(const char* name, int format);

// samples: rows top first, as the colour type and bit depth pack them.
struct PngShape {
    int width, height, colorType, bitDepth;
    Bytes samples;
    Bytes palette;  // RGB triples
    Bytes trns;     // alpha per palette entry
};
bool writePng(const std::string& path, const PngShape& shape);
bool writeJpeg(const std::string& path, int width, int height, const Bytes& pixels, int components = 3);
// rgba rows top first.
bool writeTiff(const std::string& path, int width, int height, const Bytes& rgba);
// indices: bytesPerLine per row; palette: 768 bytes.
Bytes makePcx(int width, int height, int bytesPerLine, const Bytes& indices, const Bytes& palette);
// One-channel SGI image; rows as they go in the file (bottom row first).
Bytes makeSgi(int width, int height, const Bytes& pixels, bool rle);
