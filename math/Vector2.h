// Two-component float vector: texture coordinates and 2D points.
#pragma once

#include <istream>
#include <ostream>

class Vector2 {
public:
    float x, y;

    Vector2() : x(0.0f), y(0.0f) {}
    Vector2(float x_, float y_) : x(x_), y(y_) {}

    void assign(float x_, float y_)
    {
        x = x_;
        y = y_;
    }

    // Exact comparison: callers that want a tolerance compare distances.
    bool operator==(const Vector2& v) const { return x == v.x && y == v.y; }
    bool operator!=(const Vector2& v) const { return !(*this == v); }

    Vector2& operator+=(const Vector2& v)
    {
        x += v.x;
        y += v.y;
        return *this;
    }
    Vector2& operator-=(const Vector2& v)
    {
        x -= v.x;
        y -= v.y;
        return *this;
    }
    Vector2& operator*=(const Vector2& v)
    {
        x *= v.x;
        y *= v.y;
        return *this;
    }
    Vector2& operator/=(const Vector2& v)
    {
        x /= v.x;
        y /= v.y;
        return *this;
    }
    Vector2& operator*=(float s)
    {
        x *= s;
        y *= s;
        return *this;
    }
    Vector2& operator/=(float s)
    {
        x /= s;
        y /= s;
        return *this;
    }

    Vector2 operator+(const Vector2& v) const { return Vector2(x + v.x, y + v.y); }
    Vector2 operator-(const Vector2& v) const { return Vector2(x - v.x, y - v.y); }
    Vector2 operator*(const Vector2& v) const { return Vector2(x * v.x, y * v.y); }
    Vector2 operator/(const Vector2& v) const { return Vector2(x / v.x, y / v.y); }
    Vector2 operator*(float s) const { return Vector2(x * s, y * s); }
    Vector2 operator/(float s) const { return Vector2(x / s, y / s); }
    Vector2 operator-() const { return Vector2(-x, -y); }

    float dot(const Vector2& v) const { return x * v.x + y * v.y; }
    float length() const;
    float distance(const Vector2& v) const;
    // A zero vector stays as it is.
    Vector2& normalize();
};

inline Vector2 operator*(float s, const Vector2& v)
{
    return v * s;
}

std::istream& operator>>(std::istream& in, Vector2& v);
std::ostream& operator<<(std::ostream& out, const Vector2& v);
