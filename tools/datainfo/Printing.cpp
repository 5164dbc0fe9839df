// Number formatting shared by velmora-data's printouts.
#include "Printing.h"

#include <cstdio>

std::string Printing::real(float value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", static_cast<double>(value));
    return text;
}

std::string Printing::numbers(const float* values, int count)
{
    std::string text = "(";
    for (int i = 0; i < count; ++i)
        text += (i ? ", " : "") + real(values[i]);
    return text + ")";
}

std::string Printing::hex(unsigned long value, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*lx", digits, value);
    return text;
}

std::string Printing::format(int code)
{
    static const char* const names[] = {"GL_RED, 1 byte a pixel",       "GL_GREEN, 1 byte a pixel",
                                        "GL_BLUE, 1 byte a pixel",      "GL_ALPHA, 1 byte a pixel",
                                        "GL_LUMINANCE, 1 byte a pixel", "GL_LUMINANCE_ALPHA, 2 bytes a pixel",
                                        "GL_RGB, 3 bytes a pixel",      "GL_RGBA, 4 bytes a pixel"};
    if (code < 1 || code > 8)
        return "unknown";
    return names[code - 1];
}
