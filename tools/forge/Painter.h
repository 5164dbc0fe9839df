// Anti-aliased shapes drawn onto an Image from signed distances, one pixel of soft edge.
#pragma once

#include "Image.h"

#include <functional>
#include <vector>

struct Point {
    double x;
    double y;
};

class Painter {
public:
    explicit Painter(Image& target);

    // Width of the soft edge in pixels (1 gives a crisp anti-aliased edge).
    void setFeather(double pixels) { feather = pixels > 0.01 ? pixels : 0.01; }

    void disc(double cx, double cy, double radius, Rgba colour);
    void ellipse(double cx, double cy, double rx, double ry, Rgba colour);
    void ring(double cx, double cy, double radius, double thickness, Rgba colour);
    void line(Point a, Point b, double width, Rgba colour);
    void rect(double x0, double y0, double x1, double y1, Rgba colour);
    void roundRect(double x0, double y0, double x1, double y1, double radius, Rgba colour);
    // Even-odd filled polygon.
    void polygon(const std::vector<Point>& points, Rgba colour);
    // Adds a Gaussian spot of light: colour × strength at the centre.
    void glow(double cx, double cy, double radius, Rgba colour, double strength);

    // Signed distance from a point to a polygon's outline: negative inside.
    static double polygonDistance(const std::vector<Point>& points, double x, double y);
    static double segmentDistance(Point a, Point b, double x, double y);

private:
    // Blends colour into the box wherever the distance function is below zero.
    void cover(double x0, double y0, double x1, double y1, const std::function<double(double, double)>& distance,
               Rgba colour);

    Image& image;
    double feather;
};
