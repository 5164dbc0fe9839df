// Hand-built little-endian byte images for the chunk tests.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace bytes {

inline std::string le32(uint32_t v)
{
    std::string s(4, '\0');
    for (int i = 0; i < 4; ++i)
        s[i] = static_cast<char>((v >> (8 * i)) & 0xff);
    return s;
}

inline std::string le16(uint16_t v)
{
    return std::string{static_cast<char>(v & 0xff), static_cast<char>(v >> 8)};
}

inline uint32_t bitsOf(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    return bits;
}

inline float fromBits(uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

inline std::string f32(float f)
{
    return le32(bitsOf(f));
}

} // namespace bytes
