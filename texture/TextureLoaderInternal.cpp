// CTX1: magic, width, height, bits per pixel, format (32-bit little-endian), then the deflated pixel buffer.
#include "texture/TextureLoaderInternal.h"

#include "scene/object/Chunk.h"
#include "texture/MipMapTexture.h"
#include "texture/Texture.h"

#include <zlib.h>
#include <cstring>
#include <fstream>

namespace {

const int bufferSize = 256;

}  // namespace

TextureLoaderInternal::TextureLoaderInternal() : TextureLoader("ctx,mtx") {}

bool TextureLoaderInternal::readHeader(std::istream& in, Header& header)
{
    if (!Chunk::readTag(in, "CTX1"))
        return false;
    int32_t w = 0, h = 0, bpp = 0, format = 0;
    if (!Chunk::readInt(in, w) || !Chunk::readInt(in, h) || !Chunk::readInt(in, bpp) || !Chunk::readInt(in, format))
        return false;
    if (Texture::componentsOf(format) == 0)
        return false;
    header.width = w;
    header.height = h;
    header.bitsPerPixel = bpp;
    header.format = format;
    return true;
}

bool TextureLoaderInternal::inflateInto(std::istream& in, unsigned char* out, long long size)
{
    long long left = Chunk::remaining(in);
    if (left < 0)
        return false;
    z_stream zs;
    std::memset(&zs, 0, sizeof zs);
    if (inflateInit(&zs) != Z_OK)
        return false;
    unsigned char input[bufferSize];
    zs.next_out = out;
    zs.avail_out = static_cast<uInt>(size);
    bool ok = true;
    while (zs.avail_out > 0) {
        if (zs.avail_in == 0) {
            long long chunk = left < bufferSize ? left : bufferSize;
            if (chunk == 0) {
                // Out of input before the stream's end: a cut-off file.
                ok = false;
                break;
            }
            in.read(reinterpret_cast<char*>(input), chunk);
            if (!Chunk::good(in)) {
                ok = false;
                break;
            }
            left -= chunk;
            zs.next_in = input;
            zs.avail_in = static_cast<uInt>(chunk);
        }
        int status = inflate(&zs, Z_NO_FLUSH);
        if (status == Z_STREAM_END)
            break;
        if (status != Z_OK) {
            ok = false;
            break;
        }
    }
    inflateEnd(&zs);
    return ok;
}

Texture* TextureLoaderInternal::loadTexture(const char* name, int)
{
    if (!name)
        return nullptr;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return nullptr;
    // A stream that ends early is a good file whatever its length (the rest stays zero), so
    // only the caps bound what the header may ask for. An empty image is a good file too.
    Header header;
    if (!readHeader(in, header) || !sizeWithinCaps(header.width, header.height))
        return nullptr;
    long long size = static_cast<long long>(header.width) * header.height * Texture::componentsOf(header.format);
    unsigned char* pixels = new unsigned char[static_cast<size_t>(size)]();
    if (!inflateInto(in, pixels, size)) {
        delete[] pixels;
        return nullptr;
    }
    Texture* t = nullptr;
    if (std::strstr(name, ".ctx"))
        t = new Texture();
    else
        t = new MipMapTexture();
    if (!t->create(name, header.width, header.height, header.bitsPerPixel, header.format, pixels)) {
        // A texture that failed create may already own the pixels; only free them if it does not.
        if (t->getDataPtr() != pixels)
            delete[] pixels;
        delete t;
        return nullptr;
    }
    return t;
}

bool TextureLoaderInternal::reloadTexture(const char* name, Texture* t)
{
    if (!name || !t || !t->getDataPtr())
        return false;
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return false;
    Header header;
    if (!readHeader(in, header))
        return false;
    if (header.width != t->getWidth() || header.height != t->getHeight() ||
        header.bitsPerPixel != t->getBitsPerPixel() || header.format != t->getFormat())
        return false;
    return inflateInto(in, t->getDataPtr(), t->getDataSize());
}

bool TextureLoaderInternal::saveTexture(const char* name, Texture* t)
{
    if (!name || !t || !t->getDataPtr())
        return false;
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    Chunk::writeTag(out, "CTX1");
    Chunk::writeInt(out, t->getWidth());
    Chunk::writeInt(out, t->getHeight());
    Chunk::writeInt(out, t->getBitsPerPixel());
    Chunk::writeInt(out, t->getFormat());
    if (!Chunk::good(out))
        return false;
    z_stream zs;
    std::memset(&zs, 0, sizeof zs);
    if (deflateInit(&zs, 9) != Z_OK)
        return false;
    zs.next_in = t->getDataPtr();
    zs.avail_in = static_cast<uInt>(t->getDataSize());
    unsigned char output[bufferSize];
    int status = Z_OK;
    // Z_FINISH in a loop: each full output buffer is written out, the last partial one after the end.
    do {
        zs.next_out = output;
        zs.avail_out = bufferSize;
        status = deflate(&zs, Z_FINISH);
        if (status == Z_STREAM_ERROR)
            break;
        out.write(reinterpret_cast<const char*>(output), bufferSize - zs.avail_out);
    } while (status != Z_STREAM_END && Chunk::good(out));
    deflateEnd(&zs);
    return status == Z_STREAM_END && Chunk::good(out);
}
