// Polyline: distances summed as points are added, a binary search for the span holding a distance.
#include "Polyline.h"

Polyline::Polyline(const Vec3& start) : points{start}, arc{0.0} {}

void Polyline::add(const Vec3& point)
{
    arc.push_back(arc.back() + (point - points.back()).length());
    points.push_back(point);
}

Vec3 Polyline::at(double s) const
{
    if (s <= 0.0)
        return points.front();
    if (s >= length())
        return points.back();
    size_t lo = 0;
    size_t hi = arc.size() - 1;
    while (hi - lo > 1) {
        const size_t mid = (lo + hi) / 2;
        if (arc[mid] <= s)
            lo = mid;
        else
            hi = mid;
    }
    const double span = arc[hi] - arc[lo];
    const double t = span > 0.0 ? (s - arc[lo]) / span : 0.0;
    return points[lo] + (points[hi] - points[lo]) * t;
}

double Polyline::nearest(const Vec3& p) const
{
    size_t best = 0;
    double bestDistance = (points[0] - p).length();
    for (size_t i = 1; i < points.size(); ++i) {
        const double d = (points[i] - p).length();
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return arc[best];
}
