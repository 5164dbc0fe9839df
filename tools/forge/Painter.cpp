// Every shape is a distance function; coverage ramps across the feather at its edge.
#include "Painter.h"

#include "Maths.h"

#include <algorithm>
#include <cmath>

Painter::Painter(Image& target) : image(target), feather(1.0) {}

void Painter::cover(double x0, double y0, double x1, double y1, const std::function<double(double, double)>& distance,
                    Rgba colour)
{
    const int ix0 = std::max(0, (int)std::floor(x0 - feather - 1.0));
    const int iy0 = std::max(0, (int)std::floor(y0 - feather - 1.0));
    const int ix1 = std::min(image.width() - 1, (int)std::ceil(x1 + feather + 1.0));
    const int iy1 = std::min(image.height() - 1, (int)std::ceil(y1 + feather + 1.0));
    for (int y = iy0; y <= iy1; ++y) {
        for (int x = ix0; x <= ix1; ++x) {
            const double d = distance(x + 0.5, y + 0.5);
            const double c = Maths::clamp(0.5 - d / feather, 0.0, 1.0);
            if (c > 0.0)
                image.blend(x, y, colour, c);
        }
    }
}

void Painter::disc(double cx, double cy, double radius, Rgba colour)
{
    cover(
        cx - radius, cy - radius, cx + radius, cy + radius,
        [=](double x, double y) { return std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy)) - radius; }, colour);
}

void Painter::ellipse(double cx, double cy, double rx, double ry, Rgba colour)
{
    if (rx <= 0.0 || ry <= 0.0)
        return;
    // Scaled circle distance, corrected by the local stretch: close enough for soft edges.
    cover(
        cx - rx, cy - ry, cx + rx, cy + ry,
        [=](double x, double y) {
            const double nx = (x - cx) / rx;
            const double ny = (y - cy) / ry;
            const double r = std::sqrt(nx * nx + ny * ny);
            if (r < 1e-9)
                return -std::min(rx, ry);
            const double gx = nx / (rx * r);
            const double gy = ny / (ry * r);
            return (r - 1.0) / std::sqrt(gx * gx + gy * gy);
        },
        colour);
}

void Painter::ring(double cx, double cy, double radius, double thickness, Rgba colour)
{
    const double outer = radius + thickness * 0.5;
    cover(
        cx - outer, cy - outer, cx + outer, cy + outer,
        [=](double x, double y) {
            const double r = std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy));
            return std::fabs(r - radius) - thickness * 0.5;
        },
        colour);
}

double Painter::segmentDistance(Point a, Point b, double x, double y)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0.0 ? ((x - a.x) * dx + (y - a.y) * dy) / len2 : 0.0;
    t = Maths::clamp(t, 0.0, 1.0);
    const double px = a.x + dx * t - x;
    const double py = a.y + dy * t - y;
    return std::sqrt(px * px + py * py);
}

void Painter::line(Point a, Point b, double width, Rgba colour)
{
    const double r = width * 0.5;
    cover(
        std::min(a.x, b.x) - r, std::min(a.y, b.y) - r, std::max(a.x, b.x) + r, std::max(a.y, b.y) + r,
        [=](double x, double y) { return segmentDistance(a, b, x, y) - r; }, colour);
}

void Painter::rect(double x0, double y0, double x1, double y1, Rgba colour)
{
    roundRect(x0, y0, x1, y1, 0.0, colour);
}

void Painter::roundRect(double x0, double y0, double x1, double y1, double radius, Rgba colour)
{
    const double cx = (x0 + x1) * 0.5;
    const double cy = (y0 + y1) * 0.5;
    const double hx = std::fabs(x1 - x0) * 0.5;
    const double hy = std::fabs(y1 - y0) * 0.5;
    const double r = std::min(radius, std::min(hx, hy));
    cover(
        cx - hx, cy - hy, cx + hx, cy + hy,
        [=](double x, double y) {
            const double qx = std::fabs(x - cx) - (hx - r);
            const double qy = std::fabs(y - cy) - (hy - r);
            const double ox = std::max(qx, 0.0);
            const double oy = std::max(qy, 0.0);
            return std::sqrt(ox * ox + oy * oy) + std::min(std::max(qx, qy), 0.0) - r;
        },
        colour);
}

double Painter::polygonDistance(const std::vector<Point>& points, double x, double y)
{
    const size_t n = points.size();
    if (n < 2)
        return 1e9;
    double best = 1e18;
    bool inside = false;
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
        const Point& a = points[j];
        const Point& b = points[i];
        best = std::min(best, segmentDistance(a, b, x, y));
        if ((b.y > y) != (a.y > y) && x < (a.x - b.x) * (y - b.y) / (a.y - b.y) + b.x)
            inside = !inside;
    }
    return inside ? -best : best;
}

void Painter::polygon(const std::vector<Point>& points, Rgba colour)
{
    if (points.size() < 3)
        return;
    double x0 = points[0].x, x1 = points[0].x, y0 = points[0].y, y1 = points[0].y;
    for (const Point& p : points) {
        x0 = std::min(x0, p.x);
        x1 = std::max(x1, p.x);
        y0 = std::min(y0, p.y);
        y1 = std::max(y1, p.y);
    }
    cover(
        x0, y0, x1, y1, [&points](double x, double y) { return polygonDistance(points, x, y); }, colour);
}

void Painter::glow(double cx, double cy, double radius, Rgba colour, double strength)
{
    if (radius <= 0.0)
        return;
    const double reach = radius * 3.0;
    const int ix0 = std::max(0, (int)std::floor(cx - reach));
    const int iy0 = std::max(0, (int)std::floor(cy - reach));
    const int ix1 = std::min(image.width() - 1, (int)std::ceil(cx + reach));
    const int iy1 = std::min(image.height() - 1, (int)std::ceil(cy + reach));
    for (int y = iy0; y <= iy1; ++y) {
        for (int x = ix0; x <= ix1; ++x) {
            const double dx = x + 0.5 - cx;
            const double dy = y + 0.5 - cy;
            const double k = Maths::exp(-(dx * dx + dy * dy) / (2.0 * radius * radius));
            image.add(x, y, colour, k * strength);
        }
    }
}
