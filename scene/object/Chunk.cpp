// Writes bytes, never memory images, so files are the same on every host.
#include "scene/object/Chunk.h"

#include <cstring>

namespace {

const long long unknownSizeCap = 64LL * 1024 * 1024;

bool writeLE(std::ostream& out, uint32_t value, int bytes)
{
    char buffer[4];
    for (int i = 0; i < bytes; ++i)
        buffer[i] = static_cast<char>((value >> (8 * i)) & 0xff);
    out.write(buffer, bytes);
    return Chunk::good(out);
}

bool readLE(std::istream& in, uint32_t& value, int bytes)
{
    unsigned char buffer[4] = {0, 0, 0, 0};
    in.read(reinterpret_cast<char*>(buffer), bytes);
    if (!Chunk::good(in))
        return false;
    value = 0;
    for (int i = 0; i < bytes; ++i)
        value |= static_cast<uint32_t>(buffer[i]) << (8 * i);
    return true;
}

}  // namespace

bool Chunk::good(const std::ios& stream)
{
    return !stream.fail() && !stream.bad();
}

bool Chunk::writeTag(std::ostream& out, const char* tag)
{
    out.write(tag, 4);
    return good(out);
}

bool Chunk::readTag(std::istream& in, const char* tag)
{
    char found[4];
    if (!readTag(in, found))
        return false;
    return std::strncmp(found, tag, 4) == 0;
}

bool Chunk::readTag(std::istream& in, char tag[4])
{
    in.read(tag, 4);
    return good(in);
}

bool Chunk::peekTag(std::istream& in, char tag[4])
{
    if (!readTag(in, tag))
        return false;
    in.seekg(-4, std::ios::cur);
    return good(in);
}

bool Chunk::writeInt(std::ostream& out, int32_t value)
{
    return writeLE(out, static_cast<uint32_t>(value), 4);
}

bool Chunk::readInt(std::istream& in, int32_t& value)
{
    uint32_t raw;
    if (!readLE(in, raw, 4))
        return false;
    value = static_cast<int32_t>(raw);
    return true;
}

bool Chunk::writeShort(std::ostream& out, int16_t value)
{
    return writeLE(out, static_cast<uint16_t>(value), 2);
}

bool Chunk::readShort(std::istream& in, int16_t& value)
{
    uint32_t raw;
    if (!readLE(in, raw, 2))
        return false;
    value = static_cast<int16_t>(static_cast<uint16_t>(raw));
    return true;
}

bool Chunk::writeByte(std::ostream& out, uint8_t value)
{
    return writeLE(out, value, 1);
}

bool Chunk::readByte(std::istream& in, uint8_t& value)
{
    uint32_t raw;
    if (!readLE(in, raw, 1))
        return false;
    value = static_cast<uint8_t>(raw);
    return true;
}

bool Chunk::writeFloat(std::ostream& out, float value)
{
    uint32_t raw;
    std::memcpy(&raw, &value, 4);
    return writeLE(out, raw, 4);
}

bool Chunk::readFloat(std::istream& in, float& value)
{
    uint32_t raw;
    if (!readLE(in, raw, 4))
        return false;
    std::memcpy(&value, &raw, 4);
    return true;
}

bool Chunk::writeFloats(std::ostream& out, const float* values, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (!writeFloat(out, values[i]))
            return false;
    return true;
}

bool Chunk::readFloats(std::istream& in, float* values, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (!readFloat(in, values[i]))
            return false;
    return true;
}

long long Chunk::remaining(std::istream& in)
{
    // tellg on a stream at its end would set the fail state.
    if (!good(in) || in.eof())
        return 0;
    std::streampos here = in.tellg();
    if (here < 0)
        return -1;
    in.seekg(0, std::ios::end);
    std::streampos end = in.tellg();
    in.seekg(here);
    if (end < 0 || !good(in)) {
        in.clear(in.rdstate() & ~std::ios::failbit);
        in.seekg(here);
        return -1;
    }
    return static_cast<long long>(end - here);
}

bool Chunk::fits(std::istream& in, long long count, long long itemSize)
{
    if (count < 0 || itemSize < 0)
        return false;
    if (count == 0 || itemSize == 0)
        return true;
    long long left = remaining(in);
    long long limit = left < 0 ? unknownSizeCap : left;
    return count <= limit / itemSize;
}
