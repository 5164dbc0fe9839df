// Plane: construction from points, classification, intersections, reflection.
#include "math/Plane.h"

#include <cmath>

namespace {

// Points this close to a plane count as lying on it.
const float EPSILON = 0.000001f;

}  // namespace

void Plane::create(const Vector3& p1, const Vector3& p2, const Vector3& p3)
{
    Vector3 normal = (p2 - p1).cross(p3 - p1);
    normal.normalize();
    assign(normal, -normal.dot(p1));
}

Plane& Plane::normalize()
{
    float squared = a * a + b * b + c * c;
    if (squared == 0.0f)
        return *this;
    float len = std::sqrt(squared);
    a /= len;
    b /= len;
    c /= len;
    d /= len;
    return *this;
}

int Plane::classifyPoint(const Vector3& p) const
{
    float dist = distance(p);
    if (dist < -EPSILON)
        return BEHIND;
    if (dist > EPSILON)
        return FRONT;
    return ON;
}

int Plane::classifySphere(const Vector3& centre, float radius) const
{
    // Only "wholly behind" is exact; any sphere whose centre is in front counts
    // as in front, so culling never drops a crossing object by mistake.
    float dist = distance(centre);
    if (dist <= EPSILON - radius)
        return BEHIND;
    if (dist > EPSILON)
        return FRONT;
    return ON;
}

int Plane::classifyLine(const Vector3& p1, const Vector3& p2) const
{
    int s1 = classifyPoint(p1);
    int s2 = classifyPoint(p2);
    if (s1 == s2)
        return s1;
    if (s1 == ON)
        return s2;
    if (s2 == ON)
        return s1;
    return ON;
}

bool Plane::lineIntersect(const Vector3& p1, const Vector3& p2, Vector3& out) const
{
    float d1 = distance(p1);
    float d2 = distance(p2);
    if ((d1 > 0.0f && d2 > 0.0f) || (d1 < 0.0f && d2 < 0.0f))
        return false;
    // Both ends in the plane: no single point to report.
    if (d1 == d2)
        return false;
    float t = d1 / (d1 - d2);
    out = p1 + (p2 - p1) * t;
    return true;
}

bool Plane::rayIntersect(const Vector3& origin, const Vector3& dir, Vector3& out) const
{
    float denom = getNormal().dot(dir);
    if (denom == 0.0f)
        return false;
    float t = -distance(origin) / denom;
    if (t < 0.0f)
        return false;
    out = origin + dir * t;
    return true;
}

bool Plane::sphereIntersect(const Vector3& centre, float radius, Vector3& outCentre, float& outRadius) const
{
    Vector3 normal = getNormal();
    float len = normal.length();
    if (len == 0.0f)
        return false;
    normal /= len;
    float dist = distance(centre) / len;
    if (std::fabs(dist) > radius)
        return false;
    outCentre = centre - normal * dist;
    outRadius = std::sqrt(radius * radius - dist * dist);
    return true;
}

bool Plane::planeIntersect(const Plane& other, Vector3& outPoint, Vector3& outDir) const
{
    Vector3 n1 = getNormal();
    Vector3 n2 = other.getNormal();
    Vector3 dir = n1.cross(n2);
    float squared = dir.dot(dir);
    if (squared == 0.0f)
        return false;
    // The point of the line nearest the origin, from n.p = -d on both planes.
    outPoint = (n2.cross(dir) * -d + dir.cross(n1) * -other.d) / squared;
    outDir = dir;
    return true;
}

bool Plane::reflect(const Vector3& v, Vector3& out) const
{
    Vector3 normal = getNormal();
    if (normal.dot(normal) == 0.0f)
        return false;
    normal.normalize();
    out = v - normal * (2.0f * v.dot(normal));
    return true;
}

bool Plane::accelerationOnSlope(const Vector3& g, const Vector3& n, Vector3& out)
{
    out = g.cross(n).cross(n);
    return true;
}

bool Plane::accelerationOnSlope(const Vector3& g, const Vector3& /*v*/, const Plane& plane, Vector3& out)
{
    return accelerationOnSlope(g, plane.getNormal(), out);
}

std::istream& operator>>(std::istream& in, Plane& plane)
{
    return in >> plane.a >> plane.b >> plane.c >> plane.d;
}

std::ostream& operator<<(std::ostream& out, const Plane& plane)
{
    // Nine significant digits give every float back exactly when read again.
    std::streamsize old = out.precision(9);
    out << plane.a << ' ' << plane.b << ' ' << plane.c << ' ' << plane.d;
    out.precision(old);
    return out;
}
