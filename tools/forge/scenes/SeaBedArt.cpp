// The sea bed is lit teal and fogged, so the pictures keep their own warm colours: the water tints them on screen.
#include "SeaBedArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Random.h"

#include <cmath>
#include <functional>
#include <vector>

namespace {

const double TAU = 2.0 * Maths::pi;

Rgba rgb(double r, double g, double b)
{
    return Rgba{(float)r, (float)g, (float)b, 1.0f};
}

double clamp01(double v)
{
    return Maths::clamp(v, 0.0, 1.0);
}

// A bright thread where two cells meet: 1 on the border, falling to 0 a little way in.
double thread(const Noise::Cells& c, double width)
{
    const double edge = 1.0 - Maths::smoothstep(0.0, width, c.f2 - c.f1);
    return edge * edge;
}

// Feature points that circle within their cells and come back after a whole loop of frames:
// the nearest and second-nearest distances of a tiling net at time `phase` (0 to 1).
class DriftingCells {
public:
    DriftingCells(uint32_t seed, int period) : period(period), seed(seed) {}

    Noise::Cells at(double x, double y, double phase) const
    {
        const int ix = (int)std::floor(x);
        const int iy = (int)std::floor(y);
        Noise::Cells cells{9.0, 9.0};
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const int cx = ix + dx;
                const int cy = iy + dy;
                double px = 0.0;
                double py = 0.0;
                point(wrap(cx), wrap(cy), phase, px, py);
                const double d = std::sqrt((cx + px - x) * (cx + px - x) + (cy + py - y) * (cy + py - y));
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

private:
    int wrap(int i) const { return ((i % period) + period) % period; }

    // Each point turns a whole number of times (one way or the other) about its own centre.
    void point(int cx, int cy, double phase, double& px, double& py) const
    {
        const uint32_t h = Random::hash(cx, cy, seed);
        const int turns = (h & 1u) ? 1 : -1;
        const double start = (h >> 8 & 0xffu) / 256.0;
        const double radius = 0.1 + 0.08 * ((h >> 16 & 0xffu) / 255.0);
        const double a = TAU * (start + turns * phase);
        // Centres scattered over most of the cell, so the net has no rows and columns.
        const uint32_t g = Random::hash(cx, cy, seed ^ 0x9e3779b9u);
        px = 0.22 + 0.56 * ((g & 0xffffu) / 65535.0) + radius * Maths::cos(a);
        py = 0.22 + 0.56 * ((g >> 16) / 65535.0) + radius * Maths::sin(a);
    }

    int period;
    uint32_t seed;
};

// A width x height picture whose pixel is pixel(u, v), u and v the pixel centre in [0, 1], rows top first.
Image paint(int width, int height, const std::function<Rgba(double, double)>& pixel)
{
    Image image(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.at(x, y) = pixel((x + 0.5) / width, (y + 0.5) / height);
    return image;
}

}  // namespace

Image SeaBedArt::sand() const
{
    const Noise noise(0x5A4Du);
    const Rgba pale = rgb(0.74, 0.66, 0.48);
    const Rgba drift = rgb(0.52, 0.45, 0.32);
    const Rgba pebble = rgb(0.38, 0.36, 0.32);
    return Image::square(256, [&](double u, double v, int x, int y) {
        // Ripples run across v, bent by a slow warp; their lee sides are steeper than their backs.
        const double warp = 0.35 * noise.fbm(u * 3.0, v * 3.0, 3, 3);
        const double wave = Maths::wrap(v * 14.0 + warp * 2.0, 1.0);
        const double ridge = wave < 0.7 ? wave / 0.7 : (1.0 - wave) / 0.3;
        const double patches = 0.5 + 0.5 * noise.fbm(u * 4.0 + 3.0, v * 4.0, 4, 4);
        Rgba c = ColourMath::mix(drift, pale, clamp01(0.25 + 0.55 * patches + 0.3 * (ridge - 0.5)));
        const Noise::Cells stones = noise.cellular(u * 24.0, v * 24.0, 24);
        const double speck = noise.gradient(u * 24.0 + 7.0, v * 24.0, 24);
        if (speck > 0.35)
            c = ColourMath::mix(c, pebble, 1.0 - Maths::smoothstep(0.08, 0.16, stones.f1));
        return ColourMath::shade(c, 1.0 + 0.16 * Random::grain(x, y, 0x5A4Du));
    });
}

Image SeaBedArt::rock() const
{
    const Noise noise(0x40C3u);
    const Rgba dark = rgb(0.20, 0.22, 0.21);
    const Rgba stone = rgb(0.50, 0.49, 0.44);
    const Rgba coralline = rgb(0.66, 0.40, 0.48);
    const Rgba moss = rgb(0.28, 0.42, 0.20);
    return Image::square(256, [&](double u, double v, int x, int y) {
        // Lumps of stone with dark crevices between them, pitted, and a few deep cracks.
        const double bend = 0.15 * noise.fbm(u * 2.0, v * 2.0, 2, 4);
        const double lumps = noise.ridged(u * 5.0 + bend, v * 5.0, 5, 5);
        const double crevices = Maths::smoothstep(0.25, 0.65, noise.ridged(u * 3.0, v * 3.0 + bend, 3, 4));
        const double pits = noise.fbm(u * 24.0, v * 24.0, 24, 2);
        const Noise::Cells blocks = noise.cellular(u * 3.0 + bend, v * 3.0, 3);
        const double crack = Maths::smoothstep(0.0, 0.04, blocks.f2 - blocks.f1);
        const double k = clamp01(0.15 + 0.55 * lumps + 0.15 * pits) * (0.35 + 0.65 * crevices) * (0.8 + 0.2 * crack);
        Rgba c = ColourMath::mix(dark, stone, k);
        const double crust = noise.fbm(u * 4.0 + 11.0, v * 4.0, 4, 5);
        c = ColourMath::mix(c, coralline, 0.55 * Maths::smoothstep(0.35, 0.6, crust) * (0.5 + 0.5 * pits));
        const double growth = noise.fbm(u * 3.0, v * 3.0 + 17.0, 3, 5);
        c = ColourMath::mix(c, moss, 0.8 * Maths::smoothstep(0.1, 0.45, growth) * (1.0 - 0.6 * lumps));
        return ColourMath::shade(c, 1.0 + 0.18 * Random::grain(x, y, 0x40C3u));
    });
}

Image SeaBedArt::kelp() const
{
    const Noise noise(0x6E1Fu);
    const Rgba olive = rgb(0.38, 0.48, 0.16);
    const Rgba brown = rgb(0.30, 0.28, 0.10);
    const Rgba rib = rgb(0.52, 0.54, 0.26);
    return paint(64, 256, [&](double u, double v) {
        const double across = std::fabs(u - 0.5) * 2.0;
        // Wide in the middle, narrow at the base and the tip, ruffled along both edges.
        const double width = 0.92 * Maths::pow(Maths::sin(Maths::pi * v), 0.5) *
                             (0.9 + 0.1 * Maths::sin(v * 38.0 + (u > 0.5 ? 1.3 : 0.0)));
        const double inside = 1.0 - Maths::smoothstep(width - 0.06, width, across);
        const double midrib = 1.0 - Maths::smoothstep(0.06, 0.12, across);
        const double veins = 0.5 + 0.5 * Maths::sin(TAU * (v * 18.0 - across * 1.5));
        const double tone = 0.5 + 0.5 * noise.fbm(u * 2.0, v * 8.0, 2, 3);
        Rgba c = ColourMath::mix(brown, olive, clamp01(0.3 + 0.5 * tone + 0.2 * veins * (1.0 - across)));
        c = ColourMath::mix(c, rib, midrib * 0.8);
        c.a = (float)Maths::clamp(inside + midrib, 0.0, 1.0);
        return c;
    });
}

Image SeaBedArt::fan() const
{
    const Noise noise(0xFA9Bu);
    const Rgba deep = rgb(0.55, 0.12, 0.38);
    const Rgba warm = rgb(0.92, 0.40, 0.30);
    return Image::square(128, [&](double u, double v, int, int) {
        // The fan spreads from the bottom middle out to a ragged half circle.
        const double dx = (u - 0.5) * 2.0;
        const double dy = (1.0 - v) * 1.05;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double angle = Maths::atan2(dx, dy);
        const double rim = 0.9 + 0.08 * noise.fbm(angle * 2.0 + 4.0, 0.5, 8, 3);
        const double within = 1.0 - Maths::smoothstep(rim - 0.04, rim, r);
        // A net of branches, with a few thicker ribs radiating from the stalk.
        const Noise::Cells mesh = noise.cellular(u * 9.0, v * 9.0, 9);
        const double net = 1.0 - Maths::smoothstep(0.08, 0.14, mesh.f2 - mesh.f1);
        const double ribs = 1.0 - Maths::smoothstep(0.02, 0.08, std::fabs(Maths::sin(angle * 5.0)) * r);
        const double branch = Maths::clamp(net + ribs, 0.0, 1.0) * within;
        Rgba c = ColourMath::mix(deep, warm, clamp01(r * 0.9 + 0.2 * noise.fbm(u * 4.0, v * 4.0, 4, 2)));
        c.a = (float)branch;
        return c;
    });
}

Image SeaBedArt::fish() const
{
    const Rgba back = rgb(0.06, 0.16, 0.30);
    const Rgba silver = rgb(0.55, 0.64, 0.70);
    const Rgba belly = rgb(0.85, 0.86, 0.82);
    const Rgba stripe = rgb(0.95, 0.78, 0.25);
    const Rgba bar = rgb(0.15, 0.20, 0.28);
    return paint(128, 64, [&](double u, double v) {
        Rgba c = ColourMath::mix(back, silver, Maths::smoothstep(0.22, 0.42, v));
        c = ColourMath::mix(c, belly, Maths::smoothstep(0.7, 0.9, v));
        // A yellow line along the flank and dark bars across the back half.
        c = ColourMath::mix(c, stripe, 0.85 * (1.0 - Maths::smoothstep(0.02, 0.05, std::fabs(v - 0.5))));
        const double bars =
            Maths::smoothstep(0.55, 0.8, Maths::sin(TAU * u * 6.0)) * (1.0 - Maths::smoothstep(0.35, 0.6, v));
        c = ColourMath::mix(c, bar, 0.6 * bars * Maths::smoothstep(0.15, 0.3, u));
        // The eye near the nose, on both flanks (the skin is wrapped round, so v mirrors).
        const double eye = std::sqrt((u - 0.1) * (u - 0.1) * 4.0 + (v - 0.42) * (v - 0.42));
        c = ColourMath::mix(c, belly, 1.0 - Maths::smoothstep(0.06, 0.075, eye));
        c = ColourMath::mix(c, rgb(0.02, 0.02, 0.03), 1.0 - Maths::smoothstep(0.035, 0.05, eye));
        // The tail darkens towards its edge.
        return ColourMath::shade(c, 1.0 - 0.45 * Maths::smoothstep(0.8, 1.0, u));
    });
}

Image SeaBedArt::iris() const
{
    const Noise noise(0x1815u);
    const Rgba gold = rgb(1.0, 0.86, 0.3);
    const Rgba green = rgb(0.36, 0.75, 0.26);
    const Rgba limbus = rgb(0.08, 0.12, 0.06);
    const Rgba white = rgb(0.78, 0.72, 0.55);
    const Rgba vein = rgb(0.65, 0.12, 0.10);
    return Image::square(256, [&](double u, double v, int x, int y) {
        const double dx = (u - 0.5) * 2.0;
        const double dy = (v - 0.5) * 2.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double angle = Maths::atan2(dy, dx);
        // The sclera: veins creep in from the back of the ball, which darkens towards its rim.
        const double wiggle = 0.03 * noise.fbm(angle * 3.0, r * 8.0, 8, 3);
        const double veinNet =
            Maths::smoothstep(0.55, 0.9, Maths::sin(angle * 23.0 + 4.0 * wiggle / 0.03) * 0.5 + 0.5) *
            (1.0 - Maths::smoothstep(0.004, 0.02, std::fabs(noise.gradient(angle * 4.0, r * 5.0, 8) + wiggle)));
        Rgba c = ColourMath::mix(white, vein, 0.85 * veinNet * Maths::smoothstep(0.45, 0.85, r));
        c = ColourMath::shade(c, 1.0 - 0.6 * Maths::smoothstep(0.6, 1.0, r));
        // The iris: fibres running out from the pupil, gold inside and green towards the dark ring.
        const double fibres = 0.5 + 0.5 * noise.fbm(Maths::wrap(angle / TAU, 1.0) * 64.0, r * 3.0, 64, 3);
        Rgba iris = ColourMath::mix(gold, green, clamp01(Maths::smoothstep(0.1, 0.4, r) * 0.8 + 0.3 * (fibres - 0.5)));
        iris = ColourMath::shade(iris, 0.7 + 0.5 * fibres);
        iris = ColourMath::mix(iris, limbus, Maths::smoothstep(0.36, 0.42, r));
        c = ColourMath::mix(iris, c, Maths::smoothstep(0.42, 0.45, r));
        // A tall slit of a pupil.
        const double slit = std::sqrt(dx * dx / (0.09 * 0.09) + dy * dy / (0.34 * 0.34));
        c = ColourMath::mix(c, rgb(0.0, 0.0, 0.0), 1.0 - Maths::smoothstep(0.85, 1.0, slit));
        return ColourMath::shade(c, 1.0 + 0.06 * Random::grain(x, y, 0x1815u));
    });
}

Image SeaBedArt::shaft() const
{
    const Noise noise(0x5AF7u);
    return paint(64, 256, [&](double u, double v) {
        const double across = (u - 0.5) / 0.3;
        // Streaks along the shaft, as rays through a moving surface.
        const double streaks = 0.65 + 0.35 * noise.fbm(u * 8.0, v * 0.5, 8, 3);
        const double fade = Maths::pow(1.0 - v, 1.6) * Maths::smoothstep(0.0, 0.04, v);
        const double i = 0.75 * Maths::exp(-across * across) * streaks * fade;
        return rgb(i * 0.85, i, i * 0.95);
    });
}

Image SeaBedArt::bubble() const
{
    return Image::square(32, [&](double u, double v, int, int) {
        const double dx = (u - 0.5) * 2.0;
        const double dy = (v - 0.5) * 2.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double rim = Maths::exp(-((r - 0.78) / 0.12) * ((r - 0.78) / 0.12));
        const double inside = 0.12 * (1.0 - Maths::smoothstep(0.7, 0.8, r));
        const double gx = dx + 0.35;
        const double gy = dy + 0.35;
        const double glint = Maths::exp(-(gx * gx + gy * gy) / 0.03);
        const double i = clamp01(0.8 * rim + inside + glint);
        return rgb(i * 0.85, i, i);
    });
}

Image SeaBedArt::surface() const
{
    const Noise noise(0x50F4u);
    const Rgba water = rgb(0.40, 0.74, 0.76);
    const Rgba light = rgb(0.95, 1.0, 0.98);
    return Image::square(256, [&](double u, double v, int, int) {
        const double wu = u + 0.04 * noise.fbm(u * 4.0, v * 4.0, 4, 3);
        const double wv = v + 0.04 * noise.fbm(u * 4.0 + 6.0, v * 4.0, 4, 3);
        const double ripples = 0.7 * thread(noise.cellular(wu * 6.0, wv * 6.0, 6), 0.25) +
                               0.4 * thread(noise.cellular(wu * 11.0 + 0.3, wv * 11.0, 11), 0.2);
        const double glow = 0.5 + 0.5 * noise.fbm(u * 2.0, v * 2.0, 2, 3);
        return ColourMath::mix(ColourMath::shade(water, 0.8 + 0.3 * glow), light, clamp01(ripples));
    });
}

Image SeaBedArt::caustic(int frame, int frames) const
{
    const Noise warp(0xCA57u);
    const DriftingCells coarse(0xCA51u, 4);
    const DriftingCells fine(0xCA52u, 7);
    const double phase = frames > 0 ? (double)frame / frames : 0.0;
    return Image::square(128, [&](double u, double v, int, int) {
        // The same slow warp in every frame keeps the loop seamless in time as well as in space.
        const double wu = u + 0.12 * warp.fbm(u * 2.0, v * 2.0, 2, 4);
        const double wv = v + 0.12 * warp.fbm(u * 2.0 + 5.0, v * 2.0, 2, 4);
        const Noise::Cells big = coarse.at(wu * 4.0, wv * 4.0, phase);
        const Noise::Cells small = fine.at(wu * 7.0 + 0.5, wv * 7.0, 1.0 - phase);
        // Threads of every width: where the two nets cross the light gathers.
        const double a = thread(big, 0.35);
        const double b = thread(small, 0.25);
        const double light =
            0.55 * a + 0.35 * b + 0.6 * a * b + 0.15 * (1.0 - Maths::smoothstep(0.0, 0.7, big.f2 - big.f1));
        const double i = clamp01(light) * 0.42;
        return rgb(i * 0.75, i, i * 0.9);
    });
}
