// The exit's pictures start from the tunnel's own rock and caustics, so both scenes wear the same stone.
#include "TunnelExitArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Random.h"
#include "TunnelArt.h"

namespace {

float clampChannel(double v)
{
    return static_cast<float>(Maths::clamp(v, 0.0, 1.0));
}

}  // namespace

Image TunnelExitArt::rock() const
{
    Image image = TunnelArt().rock();
    const Noise noise(0xE1u);
    const Rgba pale{0.5f, 0.64f, 0.62f, 1.0f};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double u = (x + 0.5) / image.width();
            const double v = (y + 0.5) / image.height();
            // Silt settled on the stone where the current slows.
            const double silt = 0.14 + 0.16 * (0.5 + 0.5 * noise.fbm(u * 4.0, v * 4.0, 4, 4));
            Rgba c = ColourMath::mix(image.at(x, y), pale, silt);
            const double grain = 0.06 * Random::grain(x, y, 0xE2u);
            c.r = clampChannel(c.r + grain);
            c.g = clampChannel(c.g + grain);
            c.b = clampChannel(c.b + grain);
            image.at(x, y) = c;
        }
    }
    return image;
}

Image TunnelExitArt::caustics() const
{
    Image image = TunnelArt().caustics();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            Rgba& c = image.at(x, y);
            c = Rgba{clampChannel(c.r * 1.4), clampChannel(c.g * 1.4), clampChannel(c.b * 1.4), 1.0f};
        }
    return image;
}

Image TunnelExitArt::light() const
{
    const Noise noise(0xE3u);
    const Rgba rim{0.28f, 0.52f, 0.7f, 1.0f};
    const Rgba window{0.72f, 0.88f, 1.0f, 1.0f};
    const Rgba white{1.0f, 1.0f, 1.0f, 1.0f};
    return Image::square(SIZE, [&](double u, double v, int, int) {
        // The bright window of the surface, its rippled edge, and the sun in its middle.
        const double ripple = 0.05 * noise.fbm(u * 16.0, v * 3.0, 16, 3);
        Rgba c = ColourMath::mix(rim, window, Maths::smoothstep(0.75, 0.3, v + ripple));
        // Shafts running out from the middle: streaks round the dome, fading outwards.
        const double streak = Maths::smoothstep(0.1, 0.8, 0.5 + 0.5 * noise.fbm(u * 24.0, 0.37, 24, 2));
        const double shafts = streak * Maths::smoothstep(0.95, 0.2, v) * 0.35;
        c = ColourMath::mix(c, white, Maths::clamp(shafts, 0.0, 1.0));
        const double sun = Maths::exp(-(v / 0.07) * (v / 0.07));
        // The surface's ripples, seen from below: a net of bright threads over the whole window,
        // thinning out towards its edge.
        const double warpU = 0.6 * noise.fbm(u * 12.0, v * 6.0, 12, 3);
        const double warpV = 0.6 * noise.fbm(u * 12.0 + 3.0, v * 6.0, 12, 3);
        const Noise::Cells cells = noise.cellular(u * 48.0 + warpU, v * 22.0 + warpV, 48);
        const double thread = Maths::pow(1.0 - Maths::smoothstep(0.0, 0.16, cells.f2 - cells.f1), 2.0);
        const double band = Maths::smoothstep(0.04, 0.12, v) * Maths::smoothstep(0.62, 0.3, v);
        c = ColourMath::mix(c, white, 0.7 * thread * band);
        c = ColourMath::mix(c, white, sun);
        return c;
    });
}

Image TunnelExitArt::ray() const
{
    return Image::square(RAY_SIZE, [&](double u, double v, int, int) {
        const double across = (u - 0.5) / 0.2;
        const double profile = Maths::exp(-across * across);
        // Full at the light (top row), gone at the far end.
        const double along = Maths::pow(1.0 - v, 1.6);
        const double i = profile * along;
        return Rgba{clampChannel(0.82 * i), clampChannel(0.93 * i), clampChannel(1.0 * i), 1.0f};
    });
}
