// The tunnel is drawn unlit in heavy blue fog, so the rock carries its own light and shade.
#include "TunnelArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Random.h"

#include <cmath>

namespace {

// Bright threads where cells meet: the net of light the waves focus on the sea floor.
double causticNet(const Noise& noise, double u, double v, int period)
{
    const double wu = u + 0.05 * noise.fbm(u * 3.0, v * 3.0, 3, 3);
    const double wv = v + 0.05 * noise.fbm(u * 3.0 + 5.0, v * 3.0, 3, 3);
    const Noise::Cells c = noise.cellular(wu * period, wv * period, period);
    const double edge = 1.0 - Maths::smoothstep(0.0, 0.3, c.f2 - c.f1);
    return edge * edge * edge;
}

}  // namespace

Image TunnelArt::rock() const
{
    Noise noise(0x70C4u);
    const Rgba deep{0.1f, 0.2f, 0.24f, 1.0f};
    const Rgba pale{0.42f, 0.55f, 0.55f, 1.0f};
    const Rgba weed{0.2f, 0.42f, 0.24f, 1.0f};
    return Image::square(256, [&](double u, double v, int, int) {
        // Layered stone: broad ridges, cracks between boulders, fine pitting.
        const double ridges = noise.ridged(u * 4.0, v * 4.0, 4, 5);
        const double bend = 0.9 * noise.fbm(u * 3.0, v * 3.0, 3, 3);
        const Noise::Cells stones = noise.cellular(u * 5.0 + bend, v * 5.0 - bend, 5);
        const double crack = Maths::smoothstep(0.0, 0.18, stones.f2 - stones.f1);
        const double bulge = 1.0 - Maths::clamp(stones.f1, 0.0, 1.0);
        const double pits = noise.fbm(u * 32.0, v * 32.0, 32, 2);
        double k = 0.2 + 0.5 * ridges + 0.25 * bulge + 0.12 * pits;
        k *= 0.55 + 0.45 * crack;
        Rgba c = ColourMath::mix(deep, pale, Maths::clamp(k, 0.0, 1.0));
        // Patches of weed in the hollows.
        const double growth = Maths::smoothstep(0.15, 0.5, noise.fbm(u * 5.0 + 9.0, v * 5.0, 5, 4)) * (1.0 - ridges);
        return ColourMath::mix(c, ColourMath::shade(weed, 0.6 + 0.6 * pits), Maths::clamp(growth * 1.4, 0.0, 0.8));
    });
}

Image TunnelArt::caustics() const
{
    Noise noise(0xCA05u);
    return Image::square(256, [&](double u, double v, int, int) {
        const double light = 0.75 * causticNet(noise, u, v, 5) + 0.35 * causticNet(noise, u + 0.37, v + 0.11, 9);
        const double base = 0.02 + 0.03 * (0.5 + 0.5 * noise.fbm(u * 2.0, v * 2.0, 2, 3));
        const double i = Maths::clamp(base + light * 0.5, 0.0, 1.0);
        return Rgba{(float)(i * 0.55), (float)(i * 0.95), (float)(i * 0.9), 1.0f};
    });
}

Image TunnelArt::reflection() const
{
    Noise noise(0x5EFAu);
    const Rgba abyss{0.02f, 0.06f, 0.1f, 1.0f};
    const Rgba water{0.08f, 0.3f, 0.38f, 1.0f};
    const Rgba surface{0.75f, 0.95f, 0.95f, 1.0f};
    return Image::square(256, [&](double u, double v, int, int) {
        // Position on the reflecting ball; outside it, the rim's colour continues.
        double nx = u * 2.0 - 1.0;
        double ny = 1.0 - v * 2.0;
        const double r = std::sqrt(nx * nx + ny * ny);
        if (r > 1.0) {
            nx /= r;
            ny /= r;
        }
        // The reflected direction's height: the ball's normal turned about the view axis.
        const double nz = std::sqrt(std::fmax(0.0, 1.0 - nx * nx - ny * ny));
        const double up = -(2.0 * nz * ny);  // file rows run downwards while sphere-map t runs upwards
        Rgba c = ColourMath::mix(abyss, water, Maths::smoothstep(-1.0, 0.2, up));
        c = ColourMath::mix(c, surface, Maths::pow(Maths::smoothstep(0.2, 1.0, up), 1.6));
        const double rays = causticNet(noise, (nx + 1.0) * 0.5, (ny + 1.0) * 0.5, 6);
        const double sparkle = rays * Maths::smoothstep(-0.3, 0.6, up) * 0.35;
        c.r += (float)sparkle;
        c.g += (float)sparkle;
        c.b += (float)sparkle;
        return c;
    });
}
