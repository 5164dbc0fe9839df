// RGBA colour of floats, each channel kept in 0..1 when assigned or clamped.
#pragma once

#include <istream>
#include <ostream>

class Color {
public:
    float r, g, b, a;

    Color() : r(0.0f), g(0.0f), b(0.0f), a(0.0f) {}
    // Clamps like assign.
    Color(float r_, float g_, float b_, float a_ = 1.0f) { assign(r_, g_, b_, a_); }

    // Stores each channel clamped to 0..1.
    void assign(float r_, float g_, float b_, float a_);

    bool operator==(const Color& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
    bool operator!=(const Color& o) const { return !(*this == o); }

    // Arithmetic is plain, over all four channels; call clamp() to bring it back to 0..1.
    Color& operator+=(const Color& o)
    {
        r += o.r;
        g += o.g;
        b += o.b;
        a += o.a;
        return *this;
    }
    Color& operator-=(const Color& o)
    {
        r -= o.r;
        g -= o.g;
        b -= o.b;
        a -= o.a;
        return *this;
    }
    Color& operator*=(const Color& o)
    {
        r *= o.r;
        g *= o.g;
        b *= o.b;
        a *= o.a;
        return *this;
    }
    Color& operator*=(float s)
    {
        r *= s;
        g *= s;
        b *= s;
        a *= s;
        return *this;
    }
    Color& operator/=(float s)
    {
        r /= s;
        g /= s;
        b /= s;
        a /= s;
        return *this;
    }

    Color operator+(const Color& o) const
    {
        Color t(*this);
        return t += o;
    }
    Color operator-(const Color& o) const
    {
        Color t(*this);
        return t -= o;
    }
    Color operator*(const Color& o) const
    {
        Color t(*this);
        return t *= o;
    }
    Color operator*(float s) const
    {
        Color t(*this);
        return t *= s;
    }
    Color operator/(float s) const
    {
        Color t(*this);
        return t /= s;
    }

    // Every channel into 0..1.
    Color& clamp();
    // Scales r, g, b so that the brightest of them is 1; alpha and black stay as they are.
    Color& normalize();
};

std::istream& operator>>(std::istream& in, Color& c);
std::ostream& operator<<(std::ostream& out, const Color& c);
