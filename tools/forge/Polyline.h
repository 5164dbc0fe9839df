// A path of points measured along its length: the point at any distance, straight between the samples.
#pragma once

#include "MeshBuilder.h"

#include <vector>

class Polyline {
public:
    explicit Polyline(const Vec3& start);
    void add(const Vec3& point);
    double length() const { return arc.back(); }
    const Vec3& front() const { return points.front(); }
    const Vec3& back() const { return points.back(); }
    // The point s along the path, held at the ends.
    Vec3 at(double s) const;
    size_t size() const { return points.size(); }
    const Vec3& point(size_t i) const { return points[i]; }
    // How far along the path the i-th point lies.
    double distance(size_t i) const { return arc[i]; }
    // The distance along the path of the point nearest to p (the first of equals).
    double nearest(const Vec3& p) const;

private:
    std::vector<Vec3> points;
    std::vector<double> arc;
};
