// The dashboard glows amber on its own (the scene draws it bright), so its picture is the instruments' light; the
// planet's pictures are maps from pole to pole that wrap round its equator.
#include "CockpitArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "Random.h"

#include "effects/CockpitLayout.h"

#include <cmath>

namespace {

const int PANEL_SIZE = 256;
const int HALO_SIZE = 256;
const Rgba AMBER{1.0f, 0.6f, 0.16f, 1.0f};
const Rgba PALE_AMBER{1.0f, 0.82f, 0.5f, 1.0f};
const Rgba DIM_AMBER{0.45f, 0.24f, 0.05f, 1.0f};
const Rgba PANEL_DARK{0.05f, 0.045f, 0.04f, 1.0f};
const Rgba GLASS{0.015f, 0.012f, 0.01f, 1.0f};

float f(double v)
{
    return static_cast<float>(v);
}

// A round gauge: a dial ring with ticks and a needle at `value` of its sweep.
void gauge(Painter& paint, double cx, double cy, double r, double value)
{
    paint.disc(cx, cy, r, Rgba{0.02f, 0.02f, 0.02f, 1.0f});
    paint.ring(cx, cy, r * 0.92, 2.0, DIM_AMBER);
    for (int i = 0; i <= 10; ++i) {
        const double a = Maths::pi * (1.25 - 1.5 * i / 10.0);
        const double inner = i % 5 == 0 ? 0.62 : 0.72;
        paint.line(Point{cx + r * inner * Maths::cos(a), cy - r * inner * Maths::sin(a)},
                   Point{cx + r * 0.84 * Maths::cos(a), cy - r * 0.84 * Maths::sin(a)}, 1.5, AMBER);
    }
    const double a = Maths::pi * (1.25 - 1.5 * value);
    paint.line(Point{cx, cy}, Point{cx + r * 0.78 * Maths::cos(a), cy - r * 0.78 * Maths::sin(a)}, 2.0, PALE_AMBER);
    paint.disc(cx, cy, r * 0.1, AMBER);
}

// A rounded push button, lit or not.
void button(Painter& paint, double x, double y, double w, double h, bool lit, const Rgba& light)
{
    paint.roundRect(x, y, x + w, y + h, 2.0, Rgba{0.1f, 0.09f, 0.08f, 1.0f});
    paint.roundRect(x + 2, y + 2, x + w - 2, y + h - 2, 1.5, lit ? light : Rgba{0.16f, 0.1f, 0.04f, 1.0f});
}

int toPixel(float x)
{
    const double u = (x + CockpitLayout::DASH_HALF_WIDTH) / (2.0 * CockpitLayout::DASH_HALF_WIDTH);
    return static_cast<int>(u * CockpitArt::INSTRUMENTS_WIDTH);
}

int rowOf(float share)
{
    return static_cast<int>((1.0 - share) * CockpitArt::INSTRUMENTS_HEIGHT);
}

}  // namespace

Image CockpitArt::panels() const
{
    const Noise noise(0xc0ffu);
    Random random(0xba5eull);
    Image image = Image::square(PANEL_SIZE, [&](double u, double v, int x, int y) {
        double k = 1.0 + 0.06 * noise.fbm(u * 16.0, v * 16.0, 16, 3) + 0.1 * noise.fbm(u * 3.0, v * 3.0, 3, 3);
        const int px = x % 64, py = y % 128;
        if (px == 0 || py == 0)
            k *= 0.45;
        if (px == 1 || py == 1)
            k *= 1.25;
        const bool screw = (px == 5 || px == 59) && (py == 5 || py == 123);
        if (screw)
            k *= 1.6;
        return ColourMath::shade(Rgba{0.17f, 0.17f, 0.18f, 1.0f}, k);
    });
    // A few grilles.
    Painter paint(image);
    for (int i = 0; i < 4; ++i) {
        const double x = 10 + 64 * random.below(4), y = 20 + 128 * random.below(2);
        for (int s = 0; s < 6; ++s)
            paint.rect(x, y + s * 6, x + 40, y + s * 6 + 3, Rgba{0.06f, 0.06f, 0.065f, 1.0f});
    }
    return image;
}

Image CockpitArt::instruments() const
{
    using namespace CockpitLayout;
    Random random(0x1a57ull);
    const Noise noise(0xda51u);
    Image image(INSTRUMENTS_WIDTH, INSTRUMENTS_HEIGHT);
    for (int y = 0; y < INSTRUMENTS_HEIGHT; ++y)
        for (int x = 0; x < INSTRUMENTS_WIDTH; ++x) {
            const double k = 1.0 + 0.25 * noise.fbm(x / 64.0, y / 64.0, 16, 3);
            image.at(x, y) = ColourMath::shade(PANEL_DARK, k);
        }
    Painter paint(image);
    // Seams between the panels.
    for (int x = 0; x < INSTRUMENTS_WIDTH; x += 128)
        paint.rect(x, 0, x + 2, INSTRUMENTS_HEIGHT, Rgba{0.01f, 0.01f, 0.01f, 1.0f});
    // Lamps along the top, under the window.
    for (int x = 12; x < INSTRUMENTS_WIDTH - 12; x += 18) {
        const double pick = random.uniform();
        const Rgba lamp = pick < 0.08   ? Rgba{0.3f, 1.0f, 0.4f, 1.0f}
                          : pick < 0.14 ? Rgba{1.0f, 0.2f, 0.1f, 1.0f}
                          : pick < 0.7  ? AMBER
                                        : DIM_AMBER;
        paint.roundRect(x, 6, x + 11, 14, 2.0, lamp);
    }
    // The screens' dark glass, with a faint amber rim.
    const int top = rowOf(SCREEN_HIGH), bottom = rowOf(SCREEN_LOW);
    for (const auto& edges : SCREEN_EDGES) {
        const int x0 = toPixel(edges[0]), x1 = toPixel(edges[1]);
        paint.rect(x0 - 6, top - 6, x1 + 6, bottom + 6, Rgba{0.03f, 0.025f, 0.02f, 1.0f});
        paint.rect(x0, top, x1, bottom, GLASS);
    }
    // Between and beside the screens: columns of buttons.
    const int gaps[][2] = {{toPixel(SCREEN_EDGES[0][1]) + 8, toPixel(SCREEN_EDGES[1][0]) - 8},
                           {toPixel(SCREEN_EDGES[1][1]) + 8, toPixel(SCREEN_EDGES[2][0]) - 8}};
    for (const auto& gap : gaps)
        for (int y = top + 4; y + 12 < bottom; y += 16)
            button(paint, gap[0], y, gap[1] - gap[0], 12, random.uniform() < 0.6, AMBER);
    // Gauges and readouts on the outer panels.
    for (int side = 0; side < 2; ++side) {
        const int x0 = side == 0 ? 24 : toPixel(SCREEN_EDGES[2][1]) + 24;
        const int x1 = side == 0 ? toPixel(SCREEN_EDGES[0][0]) - 24 : INSTRUMENTS_WIDTH - 24;
        const double r = 30.0;
        gauge(paint, x0 + r + 6, top + r + 6, r, random.range(0.2, 0.9));
        gauge(paint, x1 - r - 6, top + r + 6, r, random.range(0.2, 0.9));
        for (int row = 0; row < 3; ++row) {
            const double y = top + 2 * r + 22 + row * 16;
            paint.rect(x0 + 4, y, x1 - 4, y + 11, Rgba{0.02f, 0.015f, 0.01f, 1.0f});
            const int digits = 5 + random.below(4);
            for (int d = 0; d < digits; ++d)
                paint.rect(x0 + 8 + d * 11, y + 2, x0 + 16 + d * 11, y + 9, d % 3 ? AMBER : PALE_AMBER);
        }
    }
    // The lower band: rows of switches and sliders under the screens.
    for (int row = 0; row < 3; ++row) {
        const int y = bottom + 16 + row * 26;
        for (int x = 30; x + 30 < INSTRUMENTS_WIDTH; x += 34) {
            const double pick = random.uniform();
            if (pick < 0.15)
                continue;
            if (pick < 0.3) {
                paint.rect(x + 12, y, x + 16, y + 20, DIM_AMBER);
                paint.rect(x + 8, y + random.below(14), x + 20, y + 6 + random.below(8), PALE_AMBER);
                continue;
            }
            // Dimmer than the screens above them: the eye goes to the displays.
            button(paint, x, y, 26, 18, pick < 0.75,
                   pick < 0.72 ? ColourMath::shade(AMBER, 0.6) : Rgba{0.18f, 0.5f, 0.62f, 1.0f});
        }
    }
    return image;
}

Image CockpitArt::planet() const
{
    const Noise land(0x9e7au);
    const Noise climate(0xc1a5u);
    const Rgba deep{0.015f, 0.06f, 0.26f, 1.0f};
    const Rgba sea{0.03f, 0.2f, 0.52f, 1.0f};
    const Rgba shallow{0.08f, 0.42f, 0.6f, 1.0f};
    const Rgba forest{0.1f, 0.28f, 0.09f, 1.0f};
    const Rgba grass{0.3f, 0.42f, 0.16f, 1.0f};
    const Rgba desert{0.66f, 0.52f, 0.32f, 1.0f};
    const Rgba rock{0.4f, 0.35f, 0.3f, 1.0f};
    const Rgba ice{0.88f, 0.92f, 0.96f, 1.0f};
    Image image(PLANET_WIDTH, PLANET_HEIGHT);
    for (int y = 0; y < PLANET_HEIGHT; ++y) {
        const double v = (y + 0.5) / PLANET_HEIGHT;
        const double latitude = std::fabs(v - 0.5) * 2.0;
        for (int x = 0; x < PLANET_WIDTH; ++x) {
            const double u = (x + 0.5) / PLANET_WIDTH;
            // Coasts bent by a second noise so they wander.
            const double wx = u * 6.0 + 0.5 * land.fbm(u * 12.0, v * 6.0, 12, 3);
            const double wy = v * 3.0 + 0.5 * land.fbm(u * 12.0 + 7.0, v * 6.0, 12, 3);
            const double height = land.fbm(wx, wy, 6, 7, 0.52) - 0.04;
            const double dry = 0.5 + 0.5 * climate.fbm(u * 5.0, v * 5.0, 5, 4);
            Rgba c;
            if (height < 0.0) {
                c = ColourMath::mix(deep, sea, Maths::clamp(1.0 + height * 3.0, 0.0, 1.0));
                c = ColourMath::mix(c, shallow, Maths::smoothstep(-0.06, 0.0, height));
            } else {
                const double desertBelt = Maths::exp(-((latitude - 0.3) / 0.15) * ((latitude - 0.3) / 0.15));
                c = ColourMath::mix(forest, grass, Maths::clamp(dry * 1.4 - 0.2, 0.0, 1.0));
                // Mottling: valleys, plains and hills in slightly different shades.
                c = ColourMath::shade(c, 0.8 + 0.45 * (0.5 + 0.5 * land.fbm(u * 64.0, v * 32.0, 64, 3)));
                c = ColourMath::mix(c, desert,
                                    Maths::clamp((dry - 0.45) * 3.0 * desertBelt + 0.2 * desertBelt, 0.0, 1.0));
                c = ColourMath::mix(c, rock, Maths::smoothstep(0.25, 0.45, height));
                c = ColourMath::mix(c, ice, Maths::smoothstep(0.5, 0.58, height));
            }
            const double cap = Maths::smoothstep(0.8, 0.86, latitude + 0.08 * climate.fbm(u * 8.0, v * 4.0, 8, 3));
            image.at(x, y) = ColourMath::mix(c, ice, cap);
        }
    }
    return image;
}

Image CockpitArt::clouds() const
{
    const Noise noise(0xc10du);
    Image image(PLANET_WIDTH, PLANET_HEIGHT);
    for (int y = 0; y < PLANET_HEIGHT; ++y) {
        const double v = (y + 0.5) / PLANET_HEIGHT;
        const double latitude = (v - 0.5) * 2.0;
        // Bands of weather: thicker in the storm tracks, thinner over the deserts' belts.
        const double belt = 0.75 + 0.25 * Maths::cos(latitude * Maths::pi * 3.0);
        for (int x = 0; x < PLANET_WIDTH; ++x) {
            const double u = (x + 0.5) / PLANET_WIDTH;
            const double shear = 0.3 * noise.fbm(u * 4.0, v * 2.0, 4, 2);
            const double n = 0.5 + 0.5 * noise.fbm(u * 16.0 + shear * 6.0, v * 8.0, 16, 6, 0.55);
            const double streak = 0.5 + 0.5 * noise.fbm(u * 32.0, v * 4.0 + shear, 32, 3);
            const double cover = Maths::smoothstep(0.42, 0.72, n * belt + 0.12 * streak);
            image.at(x, y) = Rgba{1.0f, 1.0f, 1.0f, f(Maths::clamp(cover * 0.92, 0.0, 1.0))};
        }
    }
    return image;
}

Image CockpitArt::halo() const
{
    return Image::square(HALO_SIZE, [](double u, double v, int, int) {
        const double r = std::sqrt((u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5)) * 2.0;
        const double edge = 0.8;
        // A thin bright rim just inside the edge, and the air thinning away outside it.
        const double in = (edge - r) / 0.035;
        const double inside = r < edge ? Maths::exp(-in * in) : 0.0;
        const double outside = r >= edge ? Maths::exp(-(r - edge) / 0.032) : 0.0;
        const double fade = 1.0 - Maths::smoothstep(0.9, 1.0, r);
        const double k = Maths::clamp((inside * 0.8 + outside) * fade, 0.0, 1.0);
        return Rgba{f(k), f(k), f(k), 1.0f};
    });
}
