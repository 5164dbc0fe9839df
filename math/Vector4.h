// Four-component float vector: homogeneous points.
#pragma once

#include <istream>
#include <ostream>

class Vector4 {
public:
    float x, y, z, w;

    Vector4() : x(0.0f), y(0.0f), z(0.0f), w(0.0f) {}
    Vector4(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}

    void assign(float x_, float y_, float z_, float w_)
    {
        x = x_;
        y = y_;
        z = z_;
        w = w_;
    }

    // Exact comparison: callers that want a tolerance compare distances.
    bool operator==(const Vector4& v) const { return x == v.x && y == v.y && z == v.z && w == v.w; }
    bool operator!=(const Vector4& v) const { return !(*this == v); }

    Vector4& operator+=(const Vector4& v)
    {
        x += v.x;
        y += v.y;
        z += v.z;
        w += v.w;
        return *this;
    }
    Vector4& operator-=(const Vector4& v)
    {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        w -= v.w;
        return *this;
    }
    Vector4& operator*=(const Vector4& v)
    {
        x *= v.x;
        y *= v.y;
        z *= v.z;
        w *= v.w;
        return *this;
    }
    Vector4& operator/=(const Vector4& v)
    {
        x /= v.x;
        y /= v.y;
        z /= v.z;
        w /= v.w;
        return *this;
    }
    Vector4& operator*=(float s)
    {
        x *= s;
        y *= s;
        z *= s;
        w *= s;
        return *this;
    }
    Vector4& operator/=(float s)
    {
        x /= s;
        y /= s;
        z /= s;
        w /= s;
        return *this;
    }

    Vector4 operator+(const Vector4& v) const { return Vector4(x + v.x, y + v.y, z + v.z, w + v.w); }
    Vector4 operator-(const Vector4& v) const { return Vector4(x - v.x, y - v.y, z - v.z, w - v.w); }
    Vector4 operator*(const Vector4& v) const { return Vector4(x * v.x, y * v.y, z * v.z, w * v.w); }
    Vector4 operator/(const Vector4& v) const { return Vector4(x / v.x, y / v.y, z / v.z, w / v.w); }
    Vector4 operator*(float s) const { return Vector4(x * s, y * s, z * s, w * s); }
    Vector4 operator/(float s) const { return Vector4(x / s, y / s, z / s, w / s); }
    Vector4 operator-() const { return Vector4(-x, -y, -z, -w); }

    // All four components take part.
    float dot(const Vector4& v) const { return x * v.x + y * v.y + z * v.z + w * v.w; }
    float length() const;
    float distance(const Vector4& v) const;
    // A zero vector stays as it is.
    Vector4& normalize();
    // Divides x, y, z by w and sets w to 1; a w of exactly 0 leaves the vector alone.
    Vector4& homogenize();
};

inline Vector4 operator*(float s, const Vector4& v)
{
    return v * s;
}

std::istream& operator>>(std::istream& in, Vector4& v);
std::ostream& operator<<(std::ostream& out, const Vector4& v);
