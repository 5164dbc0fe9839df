// SGI image reading (big-endian header, verbatim or RLE rows), one channel only, rows as stored.
#include "texture/TextureLoaderBW.h"

#include "scene/object/Chunk.h"
#include "texture/Texture.h"

#include <fstream>

namespace {

const int headerSize = 512;
const int sgiMagic = 474;

int read16(const unsigned char* p)
{
    return (p[0] << 8) | p[1];
}

bool read32(std::istream& in, long long& value)
{
    unsigned char b[4];
    in.read(reinterpret_cast<char*>(b), 4);
    if (!Chunk::good(in))
        return false;
    value = (static_cast<long long>(b[0]) << 24) | (b[1] << 16) | (b[2] << 8) | b[3];
    return true;
}

// Expands one RLE row of at most length bytes into width bytes; a row that
// ends early leaves the rest zero, one that overruns is damaged.
bool expandRow(const unsigned char* row, long long length, unsigned char* out, int width)
{
    long long in = 0;
    int x = 0;
    while (in < length) {
        unsigned char code = row[in++];
        int count = code & 0x7f;
        if (count == 0)
            return true;
        if (x + count > width)
            return false;
        if (code & 0x80) {
            if (in + count > length)
                return false;
            for (int i = 0; i < count; ++i)
                out[x++] = row[in++];
        } else {
            if (in >= length)
                return false;
            unsigned char value = row[in++];
            for (int i = 0; i < count; ++i)
                out[x++] = value;
        }
    }
    return true;
}

bool readRle(std::istream& in, int width, int height, unsigned char* out)
{
    if (!Chunk::fits(in, height, 8))
        return false;
    long long* starts = new long long[height];
    long long* lengths = new long long[height];
    bool ok = true;
    for (int y = 0; y < height && ok; ++y)
        ok = read32(in, starts[y]);
    for (int y = 0; y < height && ok; ++y)
        ok = read32(in, lengths[y]);
    in.seekg(0, std::ios::end);
    long long fileSize = static_cast<long long>(in.tellg());
    unsigned char* row = nullptr;
    long long rowCapacity = 0;
    for (int y = 0; y < height && ok; ++y) {
        if (starts[y] < headerSize || lengths[y] < 0 || starts[y] + lengths[y] > fileSize) {
            ok = false;
            break;
        }
        if (lengths[y] > rowCapacity) {
            delete[] row;
            rowCapacity = lengths[y];
            row = new unsigned char[rowCapacity];
        }
        in.seekg(starts[y]);
        in.read(reinterpret_cast<char*>(row), lengths[y]);
        ok = Chunk::good(in) && expandRow(row, lengths[y], out + static_cast<long long>(y) * width, width);
    }
    delete[] row;
    delete[] starts;
    delete[] lengths;
    return ok;
}

}  // namespace

TextureLoaderBW::TextureLoaderBW() : TextureLoader("bw") {}

Texture* TextureLoaderBW::loadTexture(const char* name, int format)
{
    // One channel of bytes serves only the one-component codes.
    if (!name || Texture::componentsOf(format) != 1)
        return nullptr;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return nullptr;
    unsigned char header[headerSize];
    in.read(reinterpret_cast<char*>(header), headerSize);
    if (!Chunk::good(in) || read16(header) != sgiMagic)
        return nullptr;
    int storage = header[2], bytesPerChannel = header[3], dimension = read16(header + 4);
    int width = read16(header + 6);
    int height = dimension == 1 ? 1 : read16(header + 8);
    int channels = dimension < 3 ? 1 : read16(header + 10);
    if (storage > 1 || bytesPerChannel != 1 || dimension < 1 || dimension > 3 || channels != 1 ||
        !sizeUsable(width, height))
        return nullptr;
    if (storage == 0 && !Chunk::fits(in, static_cast<long long>(width) * height, 1))
        return nullptr;
    unsigned char* pixels = allocPixels(width, height, format);
    if (!pixels)
        return nullptr;
    bool ok = false;
    if (storage == 0) {
        in.read(reinterpret_cast<char*>(pixels), static_cast<long long>(width) * height);
        ok = Chunk::good(in);
    } else {
        ok = readRle(in, width, height, pixels);
    }
    if (!ok) {
        delete[] pixels;
        return nullptr;
    }
    return adoptPixels(name, width, height, format, pixels);
}

bool TextureLoaderBW::reloadTexture(const char*, Texture*)
{
    return false;
}

bool TextureLoaderBW::saveTexture(const char*, Texture*)
{
    return false;
}
