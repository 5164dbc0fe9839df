// Vector4: length, normalisation, homogenisation and text form.
#include "math/Vector4.h"

#include <cmath>

float Vector4::length() const
{
    return std::sqrt(dot(*this));
}

float Vector4::distance(const Vector4& v) const
{
    return (*this - v).length();
}

Vector4& Vector4::normalize()
{
    float len = length();
    if (len == 0.0f)
        return *this;
    x /= len;
    y /= len;
    z /= len;
    w /= len;
    return *this;
}

Vector4& Vector4::homogenize()
{
    if (w == 0.0f)
        return *this;
    x /= w;
    y /= w;
    z /= w;
    w = 1.0f;
    return *this;
}

std::istream& operator>>(std::istream& in, Vector4& v)
{
    return in >> v.x >> v.y >> v.z >> v.w;
}

std::ostream& operator<<(std::ostream& out, const Vector4& v)
{
    // Nine significant digits give every float back exactly when read again.
    std::streamsize old = out.precision(9);
    out << v.x << ' ' << v.y << ' ' << v.z << ' ' << v.w;
    out.precision(old);
    return out;
}
