// Color: clamped assignment, clamping, normalisation and text form.
#include "math/Color.h"

namespace {

float unit(float value)
{
    if (value < 0.0f)
        return 0.0f;
    if (value > 1.0f)
        return 1.0f;
    return value;
}

}  // namespace

void Color::assign(float r_, float g_, float b_, float a_)
{
    r = unit(r_);
    g = unit(g_);
    b = unit(b_);
    a = unit(a_);
}

Color& Color::clamp()
{
    assign(r, g, b, a);
    return *this;
}

Color& Color::normalize()
{
    float brightest = r;
    if (g > brightest)
        brightest = g;
    if (b > brightest)
        brightest = b;
    if (brightest <= 0.0f)
        return *this;
    r /= brightest;
    g /= brightest;
    b /= brightest;
    return *this;
}

std::istream& operator>>(std::istream& in, Color& c)
{
    return in >> c.r >> c.g >> c.b >> c.a;
}

std::ostream& operator<<(std::ostream& out, const Color& c)
{
    // Nine significant digits give every float back exactly when read again.
    std::streamsize old = out.precision(9);
    out << c.r << ' ' << c.g << ' ' << c.b << ' ' << c.a;
    out.precision(old);
    return out;
}
