// Periodic noise: every lattice index is wrapped before hashing, so a tile's edges meet.
#include "Noise.h"

#include "Maths.h"
#include "Random.h"

#include <cmath>

namespace {

int wrapIndex(int i, int period)
{
    const int r = i % period;
    return r < 0 ? r + period : r;
}

double fade(double t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

}  // namespace

Noise::Noise(uint32_t seed) : seed(seed)
{
    // Evenly spread unit directions keep the noise free of axis bias.
    for (int i = 0; i < 256; ++i) {
        const double angle = i * (2.0 * Maths::pi / 256.0);
        directions[i] = Direction{Maths::cos(angle), Maths::sin(angle)};
    }
}

void Noise::gradientAt(int ix, int iy, int period, double& gx, double& gy) const
{
    const uint32_t h = Random::hash(wrapIndex(ix, period), wrapIndex(iy, period), seed);
    const Direction& d = directions[h & 255u];
    gx = d.x;
    gy = d.y;
}

double Noise::gradient(double x, double y, int period) const
{
    if (period < 1)
        period = 1;
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const int ix = (int)fx;
    const int iy = (int)fy;
    const double tx = x - fx;
    const double ty = y - fy;
    double corner[4];
    for (int c = 0; c < 4; ++c) {
        const int dx = c & 1;
        const int dy = c >> 1;
        double gx = 0.0;
        double gy = 0.0;
        gradientAt(ix + dx, iy + dy, period, gx, gy);
        corner[c] = gx * (tx - dx) + gy * (ty - dy);
    }
    const double u = fade(tx);
    const double v = fade(ty);
    const double top = Maths::mix(corner[0], corner[1], u);
    const double bottom = Maths::mix(corner[2], corner[3], u);
    // Two-dimensional gradient noise peaks near sqrt(0.5); stretch it to about [-1, 1].
    return Maths::mix(top, bottom, v) * 1.41421356;
}

double Noise::fbm(double x, double y, int period, int octaves, double gain) const
{
    double sum = 0.0;
    double amplitude = 1.0;
    double norm = 0.0;
    for (int o = 0; o < octaves; ++o) {
        sum += amplitude * gradient(x, y, period);
        norm += amplitude;
        amplitude *= gain;
        x *= 2.0;
        y *= 2.0;
        period *= 2;
    }
    return norm > 0.0 ? sum / norm : 0.0;
}

double Noise::ridged(double x, double y, int period, int octaves) const
{
    double sum = 0.0;
    double amplitude = 1.0;
    double norm = 0.0;
    for (int o = 0; o < octaves; ++o) {
        const double n = 1.0 - std::fabs(gradient(x, y, period));
        sum += amplitude * n * n;
        norm += amplitude;
        amplitude *= 0.5;
        x *= 2.0;
        y *= 2.0;
        period *= 2;
    }
    return norm > 0.0 ? Maths::clamp(sum / norm, 0.0, 1.0) : 0.0;
}

Noise::Cells Noise::cellular(double x, double y, int period) const
{
    if (period < 1)
        period = 1;
    const int ix = (int)std::floor(x);
    const int iy = (int)std::floor(y);
    Cells cells{9.0, 9.0};
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const int cx = ix + dx;
            const int cy = iy + dy;
            const uint32_t h = Random::hash(wrapIndex(cx, period), wrapIndex(cy, period), seed ^ 0x5bd1e995u);
            const double px = cx + (h & 0xffffu) / 65536.0;
            const double py = cy + (h >> 16) / 65536.0;
            const double d = std::sqrt((px - x) * (px - x) + (py - y) * (py - y));
            if (d < cells.f1) {
                cells.f2 = cells.f1;
                cells.f1 = d;
            } else if (d < cells.f2) {
                cells.f2 = d;
            }
        }
    }
    return cells;
}
