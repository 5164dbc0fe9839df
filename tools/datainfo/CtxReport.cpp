// Checks a CTX1 texture container completely.
#include "CtxReport.h"

#include "Printing.h"
#include "scene/object/Chunk.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"

#include <zlib.h>
#include <cstring>
#include <fstream>
#include <vector>

CtxReport::CtxReport(std::ostream& output) : out(output), format(0) {}

bool CtxReport::fail(const std::string& what)
{
    problem = what;
    return false;
}

bool CtxReport::inspect(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return fail("cannot be opened");
    int32_t w = 0, h = 0, bpp = 0, code = 0;
    if (!Chunk::readTag(in, "CTX1"))
        return fail("does not start with CTX1");
    if (!Chunk::readInt(in, w) || !Chunk::readInt(in, h) || !Chunk::readInt(in, bpp) || !Chunk::readInt(in, code))
        return fail("CTX1 header cut short");
    out << "CTX1 " << w << " x " << h << ", bits per pixel " << bpp << ", format " << code << " ("
        << Printing::format(code) << ")\n";
    format = code;
    int components = Texture::componentsOf(code);
    if (components == 0)
        return fail("format " + std::to_string(code) + " is not 1 to 8");
    if (!TextureLoader::sizeWithinCaps(w, h))
        return fail("a " + std::to_string(w) + " x " + std::to_string(h) + " image is not a size the engine takes");
    long long left = Chunk::remaining(in);
    long long expected = static_cast<long long>(w) * h * components;
    // Deflate packs at most 1032 bytes into one.
    if (left < 0 || expected > left * 1032)
        return fail("the header claims " + std::to_string(expected) + " pixel bytes, more than the " +
                    std::to_string(left) + " bytes after it can hold");
    std::vector<unsigned char> packed(static_cast<size_t>(left > 0 ? left : 0));
    if (left > 0)
        in.read(reinterpret_cast<char*>(packed.data()), left);
    if (!Chunk::good(in))
        return fail("cannot be read");
    return inflateAll(packed.data(), left, expected);
}

bool CtxReport::inflateAll(const unsigned char* data, long long length, long long expected)
{
    // One byte more than the pixels, to notice a stream that holds too much.
    std::vector<unsigned char> pixels(static_cast<size_t>(expected) + 1);
    z_stream zs;
    std::memset(&zs, 0, sizeof zs);
    if (inflateInit(&zs) != Z_OK)
        return fail("zlib cannot start");
    zs.next_in = const_cast<unsigned char*>(data);
    zs.avail_in = static_cast<uInt>(length);
    zs.next_out = pixels.data();
    zs.avail_out = static_cast<uInt>(pixels.size());
    int result = inflate(&zs, Z_FINISH);
    long long produced = static_cast<long long>(zs.total_out);
    long long used = static_cast<long long>(zs.total_in);
    std::string message = zs.msg ? zs.msg : "";
    inflateEnd(&zs);
    out << "  zlib stream " << length << " bytes, " << produced << " of " << expected << " pixel bytes\n";
    if (result == Z_DATA_ERROR || result == Z_NEED_DICT || result == Z_MEM_ERROR)
        return fail("the zlib stream is damaged" + (message.empty() ? std::string() : ": " + message));
    if (produced > expected)
        return fail("the zlib stream holds more than the header's " + std::to_string(expected) + " pixel bytes");
    if (result != Z_STREAM_END)
        return fail("the zlib stream is cut short after " + std::to_string(produced) + " of " +
                    std::to_string(expected) + " pixel bytes");
    if (produced < expected)
        return fail("the zlib stream ends after " + std::to_string(produced) + " of " + std::to_string(expected) +
                    " pixel bytes; the engine would leave the rest black");
    if (used < length)
        return fail(std::to_string(length - used) + " bytes follow the zlib stream");
    return true;
}
