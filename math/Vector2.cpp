// Vector2: length, normalisation and text form.
#include "math/Vector2.h"

#include <cmath>

float Vector2::length() const
{
    return std::sqrt(dot(*this));
}

float Vector2::distance(const Vector2& v) const
{
    return (*this - v).length();
}

Vector2& Vector2::normalize()
{
    float len = length();
    if (len == 0.0f)
        return *this;
    x /= len;
    y /= len;
    return *this;
}

std::istream& operator>>(std::istream& in, Vector2& v)
{
    return in >> v.x >> v.y;
}

std::ostream& operator<<(std::ostream& out, const Vector2& v)
{
    // Nine significant digits give every float back exactly when read again.
    std::streamsize old = out.precision(9);
    out << v.x << ' ' << v.y;
    out.precision(old);
    return out;
}
