// Little-endian field reading and writing for the chunk format, and the
// "can this stream still hold it" check that guards every count read from a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <ostream>

class Chunk {
public:
    // Stream state test: neither fail nor bad set (end of file alone is fine).
    static bool good(const std::ios& stream);

    static bool writeTag(std::ostream& out, const char* tag);
    // Reads four bytes and compares them with the tag; the bytes stay consumed.
    static bool readTag(std::istream& in, const char* tag);
    static bool readTag(std::istream& in, char tag[4]);
    // Looks at the next four bytes and steps back, for containers of mixed children.
    static bool peekTag(std::istream& in, char tag[4]);

    static bool writeInt(std::ostream& out, int32_t value);
    static bool readInt(std::istream& in, int32_t& value);
    static bool writeShort(std::ostream& out, int16_t value);
    static bool readShort(std::istream& in, int16_t& value);
    static bool writeByte(std::ostream& out, uint8_t value);
    static bool readByte(std::istream& in, uint8_t& value);
    static bool writeFloat(std::ostream& out, float value);
    static bool readFloat(std::istream& in, float& value);
    static bool writeFloats(std::ostream& out, const float* values, size_t count);
    static bool readFloats(std::istream& in, float* values, size_t count);

    // Bytes left between the read position and the end of a seekable stream;
    // -1 when the stream cannot tell.
    static long long remaining(std::istream& in);
    // True when count items of itemSize bytes each can still be read. Counts
    // below zero never fit. Streams that cannot tell their size are trusted
    // up to a fixed cap so that a bad count never allocates without bound.
    static bool fits(std::istream& in, long long count, long long itemSize);
};
