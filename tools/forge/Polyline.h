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

private:
    std::vector<Vec3> points;
    std::vector<double> arc;
};
