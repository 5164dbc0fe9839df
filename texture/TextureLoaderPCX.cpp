// PCX decoding: 128-byte header, RLE indices, and a 256-colour palette at the end of the file.
#include "texture/TextureLoaderPCX.h"

#include "texture/Texture.h"

#include <fstream>

namespace {

const int headerSize = 128;
const int paletteSize = 768;
const int blockSize = 16384;

int read16(const unsigned char* p)
{
    return p[0] | (p[1] << 8);
}

// Hands out the RLE bytes between header and palette, a block at a time.
class BlockReader {
public:
    BlockReader(std::istream& in, long long size) : in(in), left(size), pos(0), filled(0) {}

    bool next(unsigned char& value)
    {
        if (pos == filled && !refill())
            return false;
        value = block[pos++];
        return true;
    }

private:
    bool refill()
    {
        if (left <= 0)
            return false;
        long long n = left < blockSize ? left : blockSize;
        in.read(reinterpret_cast<char*>(block), n);
        if (!in)
            return false;
        left -= n;
        pos = 0;
        filled = static_cast<int>(n);
        return true;
    }

    std::istream& in;
    long long left;
    int pos;
    int filled;
    unsigned char block[blockSize];
};

struct PcxImage {
    int width;
    int height;
    int bytesPerLine;
    long long dataSize;
    unsigned char palette[paletteSize];
};

// Reads and checks the header and the palette; leaves the stream at the RLE data.
bool readHeader(std::istream& in, PcxImage& image)
{
    unsigned char header[headerSize];
    in.seekg(0, std::ios::end);
    long long fileSize = static_cast<long long>(in.tellg());
    in.seekg(0);
    if (!in || fileSize < headerSize + paletteSize)
        return false;
    in.read(reinterpret_cast<char*>(header), headerSize);
    if (!in)
        return false;
    int version = header[1], encoding = header[2], bits = header[3], planes = header[65];
    if (encoding != 1 || version < 5 || bits != 8 || planes != 1)
        return false;
    image.width = read16(header + 8) - read16(header + 4) + 1;
    image.height = read16(header + 10) - read16(header + 6) + 1;
    image.bytesPerLine = read16(header + 66);
    // Lines wider than the image would need their padding dropped: not supported.
    if (!TextureLoader::sizeUsable(image.width, image.height) || image.bytesPerLine < 1 ||
        image.bytesPerLine > image.width)
        return false;
    image.dataSize = fileSize - headerSize - paletteSize;
    // One run pair yields at most 63 indices.
    long long indices = static_cast<long long>(image.bytesPerLine) * image.height;
    if (indices > image.dataSize * 63 / 2 + 1)
        return false;
    in.seekg(fileSize - paletteSize);
    in.read(reinterpret_cast<char*>(image.palette), paletteSize);
    in.seekg(headerSize);
    return static_cast<bool>(in);
}

bool decodeIndices(std::istream& in, const PcxImage& image, int format, unsigned char* out)
{
    BlockReader* reader = new BlockReader(in, image.dataSize);
    long long count = static_cast<long long>(image.bytesPerLine) * image.height;
    bool ok = true;
    while (count > 0) {
        unsigned char value;
        if (!reader->next(value)) {
            ok = false;
            break;
        }
        long long run = 1;
        if (value > 191) {
            run = value & 0x3f;
            if (!reader->next(value)) {
                ok = false;
                break;
            }
        }
        if (run > count)
            run = count;
        const unsigned char* colour = image.palette + value * 3;
        unsigned char rgba[4] = {colour[0], colour[1], colour[2], 255};
        for (long long i = 0; i < run; ++i)
            out += TextureLoader::storePixel(out, format, rgba, false);
        count -= run;
    }
    delete reader;
    return ok;
}

}  // namespace

TextureLoaderPCX::TextureLoaderPCX() : TextureLoader("pcx") {}

Texture* TextureLoaderPCX::loadTexture(const char* name, int format)
{
    if (!name || Texture::componentsOf(format) == 0)
        return nullptr;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return nullptr;
    PcxImage image;
    if (!readHeader(in, image))
        return nullptr;
    unsigned char* pixels = allocPixels(image.width, image.height, format);
    if (!pixels || !decodeIndices(in, image, format, pixels)) {
        delete[] pixels;
        return nullptr;
    }
    return adoptPixels(name, image.width, image.height, format, pixels);
}

bool TextureLoaderPCX::reloadTexture(const char* name, Texture* t)
{
    if (!name || !t || !t->getDataPtr() || Texture::componentsOf(t->getFormat()) == 0)
        return false;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return false;
    PcxImage image;
    if (!readHeader(in, image) || image.width != t->getWidth() || image.height != t->getHeight())
        return false;
    return decodeIndices(in, image, t->getFormat(), t->getDataPtr());
}

bool TextureLoaderPCX::saveTexture(const char*, Texture*)
{
    return false;
}
