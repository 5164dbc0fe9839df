// Hand-built little-endian byte images and the save/truncate helpers shared by the chunk tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

namespace bytes {

inline std::string le16(uint16_t v)
{
    return std::string{char(v & 0xff), char(v >> 8)};
}
inline std::string le32(uint32_t v)
{
    return le16(uint16_t(v & 0xffff)) + le16(uint16_t(v >> 16));
}

inline float fromBits(uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

inline std::string f32(float f)
{
    uint32_t bits;
    std::memcpy(&bits, &f, 4);
    return le32(bits);
}

template <class T>
std::string saved(T& object)
{
    std::ostringstream out;
    EXPECT_TRUE(object.save(out));
    return out.str();
}

// Every proper prefix of a valid image must fail to load into a fresh object; check() inspects what is left.
template <class T, class Check>
void expectEveryPrefixFails(const std::string& whole, Check check)
{
    for (size_t n = 0; n < whole.size(); ++n) {
        SCOPED_TRACE(testing::Message() << n << " of " << whole.size() << " bytes");
        T object;
        std::istringstream in(whole.substr(0, n));
        EXPECT_FALSE(object.load(in));
        check(object);
    }
}

template <class T>
void expectEveryPrefixFails(const std::string& whole)
{
    expectEveryPrefixFails<T>(whole, [](T&) {});
}

}  // namespace bytes
