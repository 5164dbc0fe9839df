// Vector3: length, normalisation and text form.
#include "math/Vector3.h"

#include <cmath>

float Vector3::length() const
{
    return std::sqrt(dot(*this));
}

float Vector3::distance(const Vector3& v) const
{
    return (*this - v).length();
}

Vector3& Vector3::normalize()
{
    float len = length();
    if (len == 0.0f)
        return *this;
    x /= len;
    y /= len;
    z /= len;
    return *this;
}

std::istream& operator>>(std::istream& in, Vector3& v)
{
    return in >> v.x >> v.y >> v.z;
}

std::ostream& operator<<(std::ostream& out, const Vector3& v)
{
    // Nine significant digits give every float back exactly when read again.
    std::streamsize old = out.precision(9);
    out << v.x << ' ' << v.y << ' ' << v.z;
    out.precision(old);
    return out;
}
