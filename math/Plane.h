// A plane a*x + b*y + c*z + d = 0 with classification and intersection helpers.
#pragma once

#include "math/Vector3.h"

#include <istream>
#include <ostream>

class Plane {
public:
    // (a, b, c) is the normal; nothing here normalises it behind the caller's back.
    float a, b, c, d;

    // Classification results shared with the frustum.
    enum { BEHIND = 0, ON = 1, FRONT = 2 };

    Plane() : a(0.0f), b(0.0f), c(0.0f), d(0.0f) {}
    Plane(const Vector3& normal, float d_) : a(normal.x), b(normal.y), c(normal.z), d(d_) {}
    Plane(float a_, float b_, float c_, float d_) : a(a_), b(b_), c(c_), d(d_) {}

    void assign(const Vector3& normal, float d_)
    {
        a = normal.x;
        b = normal.y;
        c = normal.z;
        d = d_;
    }
    void assign(float a_, float b_, float c_, float d_)
    {
        a = a_;
        b = b_;
        c = c_;
        d = d_;
    }

    // Plane through three points, normal (p2 - p1) x (p3 - p1) made unit length.
    void create(const Vector3& p1, const Vector3& p2, const Vector3& p3);
    // Divides all four values by the normal's length; a zero normal is left alone.
    Plane& normalize();

    Vector3 getNormal() const { return Vector3(a, b, c); }
    // Signed distance normal . p + d (a true distance only for a unit normal).
    float distance(const Vector3& p) const { return a * p.x + b * p.y + c * p.z + d; }

    bool operator==(const Plane& o) const { return a == o.a && b == o.b && c == o.c && d == o.d; }
    bool operator!=(const Plane& o) const { return !(*this == o); }

    // BEHIND, ON (within 0.000001) or FRONT.
    int classifyPoint(const Vector3& p) const;
    // BEHIND only when wholly behind; a centre in front is FRONT even when the sphere crosses.
    int classifySphere(const Vector3& centre, float radius) const;
    // BEHIND or FRONT when both ends lie on that side (or on the plane), ON when the segment crosses.
    int classifyLine(const Vector3& p1, const Vector3& p2) const;

    // Point where the segment p1-p2 meets the plane; false when it does not.
    bool lineIntersect(const Vector3& p1, const Vector3& p2, Vector3& out) const;
    // Point where the ray origin + t * dir (t >= 0) meets the plane; false when it does not.
    bool rayIntersect(const Vector3& origin, const Vector3& dir, Vector3& out) const;
    // The circle where the sphere cuts the plane: its centre and radius; false when they do not meet.
    bool sphereIntersect(const Vector3& centre, float radius, Vector3& outCentre, float& outRadius) const;
    // The line shared with another plane: a point on it and its direction; false for parallel planes.
    bool planeIntersect(const Plane& other, Vector3& outPoint, Vector3& outDir) const;
    // Direction v mirrored at the plane; false when the normal is zero.
    bool reflect(const Vector3& v, Vector3& out) const;

    // out = (g x n) x n: the negated part of g along the slope for a unit n.
    static bool accelerationOnSlope(const Vector3& g, const Vector3& n, Vector3& out);
    // The same with the plane's normal; v is not used.
    static bool accelerationOnSlope(const Vector3& g, const Vector3& v, const Plane& plane, Vector3& out);
};

// Signed distance, both operand orders.
inline float operator*(const Vector3& p, const Plane& plane)
{
    return plane.distance(p);
}
inline float operator*(const Plane& plane, const Vector3& p)
{
    return plane.distance(p);
}

std::istream& operator>>(std::istream& in, Plane& plane);
std::ostream& operator<<(std::ostream& out, const Plane& plane);
