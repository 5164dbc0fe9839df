// Number formatting shared by velmora-data's printouts.
#pragma once

#include <string>

class Printing {
public:
    // "(1, 2.5, -3)": compact reals in brackets.
    static std::string numbers(const float* values, int count);
    static std::string real(float value);
    // "0x0043".
    static std::string hex(unsigned long value, int digits);
    // "GL_RGB, 3 bytes a pixel" for a format code; "unknown" outside 1 to 8.
    static std::string format(int code);
};
