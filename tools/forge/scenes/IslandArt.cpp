// Night-sea palette: warm sand and wood against deep blue water; every tiling picture
// uses whole noise periods and whole ripple counts so its edges meet.
#include "IslandArt.h"

#include "ColourMath.h"
#include "Forge.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "Random.h"

#include <cmath>

Image IslandArt::sand() const
{
    Noise noise(0x5A4Du);
    const Rgba light{0.86f, 0.74f, 0.53f, 1.0f};
    const Rgba dark{0.62f, 0.49f, 0.33f, 1.0f};
    return Image::square(512, [&](double u, double v, int x, int y) {
        // Wind ripples: whole cycles across the tile, bent by low noise, with a
        // gentle windward slope and a steep lee face.
        const double warp = 1.6 * noise.fbm(u * 3.0, v * 3.0, 3, 3);
        double phase = (11.0 * u + 4.0 * v) + warp;
        phase -= std::floor(phase);
        const double ripple = phase < 0.75 ? phase / 0.75 : (1.0 - phase) / 0.25;
        const double patches = 0.5 + 0.5 * noise.fbm(u * 4.0, v * 4.0, 4, 4);
        const double fine = noise.fbm(u * 32.0, v * 32.0, 32, 2);
        double k = 0.78 + 0.16 * ripple + 0.1 * fine + 0.1 * Random::grain(x, y, 7u);
        Rgba c = ColourMath::mixWithAlpha(dark, light, Maths::clamp(0.25 + 0.75 * patches, 0.0, 1.0));
        // Scattered darker grains and shell fragments.
        const Noise::Cells cells = noise.cellular(u * 48.0, v * 48.0, 48);
        if (cells.f1 < 0.09)
            k *= 0.78 + 0.22 * cells.f1 / 0.09;
        return ColourMath::shade(c, k);
    });
}

Image IslandArt::water() const
{
    Noise noise(0x3A7Eu);
    const Rgba deep{0.03f, 0.11f, 0.24f, 0.8f};
    const Rgba shallow{0.07f, 0.23f, 0.38f, 0.84f};
    const Rgba crest{0.55f, 0.75f, 0.92f, 0.95f};
    return Image::square(256, [&](double u, double v, int, int) {
        const double wx = u + 0.04 * noise.fbm(u * 4.0, v * 4.0, 4, 3);
        const double wy = v + 0.04 * noise.fbm(u * 4.0 + 7.0, v * 4.0, 4, 3);
        // Bright threads where wave cells meet, like moonlight caught on ripples.
        const Noise::Cells a = noise.cellular(wx * 6.0, wy * 6.0, 6);
        const Noise::Cells b = noise.cellular(wx * 11.0 + 0.5, wy * 11.0, 11);
        const double lines = Maths::pow(1.0 - Maths::smoothstep(0.0, 0.22, a.f2 - a.f1), 3.0) * 0.55 +
                             Maths::pow(1.0 - Maths::smoothstep(0.0, 0.2, b.f2 - b.f1), 3.0) * 0.2;
        const double swell = 0.5 + 0.5 * noise.fbm(u * 3.0, v * 3.0, 3, 4);
        Rgba c = ColourMath::mixWithAlpha(deep, shallow, swell);
        return ColourMath::mixWithAlpha(c, crest, Maths::clamp(lines, 0.0, 1.0) * 0.8);
    });
}

Image IslandArt::window() const
{
    const int size = 256;
    Image image(size, size, Rgba{0.2f, 0.12f, 0.06f, 0.0f});
    const double cx = size * 0.5;
    const double left = 40.0;
    const double right = size - 40.0;
    const double top = 96.0;
    const double bottom = size - 24.0;
    const double archRadius = (right - left) * 0.5;
    // The window's outline: a rectangle under a round arch.
    auto outline = [&](double inset) {
        std::vector<Point> points;
        points.push_back(Point{left + inset, bottom - inset});
        for (int i = 0; i <= 32; ++i) {
            const double a = Maths::pi - Maths::pi * i / 32.0;
            points.push_back(
                Point{cx + (archRadius - inset) * Maths::cos(a), top - (archRadius - inset) * Maths::sin(a)});
        }
        points.push_back(Point{right - inset, bottom - inset});
        return points;
    };
    Painter paint(image);
    paint.polygon(outline(0.0), Rgba{0.24f, 0.14f, 0.07f, 1.0f});
    paint.polygon(outline(5.0), Rgba{0.36f, 0.22f, 0.11f, 1.0f});
    const std::vector<Point> glass = outline(14.0);
    Image light(size, size);
    Painter(light).polygon(glass, Rgba{1.0f, 1.0f, 1.0f, 1.0f});
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double cover = light.at(x, y).a;
            if (cover <= 0.0)
                continue;
            const double t = (double)y / size;
            // Lamp light, brighter low in the room, with a faint curtain fold down one side.
            const double fold =
                0.85 + 0.15 * Maths::sin(x * 0.35) * Maths::smoothstep(0.7, 0.0, (x - left) / (right - left));
            const Rgba warm{(float)(1.0 * fold), (float)((0.62 + 0.25 * t) * fold), (float)((0.25 + 0.2 * t) * fold),
                            0.88f};
            // Replaces the frame's colour rather than covering it, so the glass stays translucent.
            image.at(x, y) = ColourMath::mixWithAlpha(image.at(x, y), warm, cover);
        }
    }
    // Glazing bars.
    const Rgba bar{0.3f, 0.18f, 0.09f, 1.0f};
    paint.line(Point{cx, top - archRadius + 12.0}, Point{cx, bottom - 12.0}, 8.0, bar);
    paint.line(Point{left + 12.0, top + 40.0}, Point{right - 12.0, top + 40.0}, 8.0, bar);
    paint.line(Point{left + 12.0, top}, Point{right - 12.0, top}, 6.0, bar);
    // The sill.
    paint.roundRect(left - 14.0, bottom - 6.0, right + 14.0, bottom + 10.0, 3.0, Rgba{0.3f, 0.18f, 0.09f, 1.0f});
    return image;
}
