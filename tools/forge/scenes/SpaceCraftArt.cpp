// The hull is lit by one distant star, so its pictures carry the fine detail: seams, bolts, tone from plate to plate.
#include "SpaceCraftArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "Random.h"

#include <cmath>
#include <vector>

namespace {

const int PLATE_SIZE = 512;
const int WINDOW_SIZE = 256;
const int WINDOW_BANDS = 8;
const int WINDOW_PITCH = 32;
const int NEBULA_SIZE = 512;
const int GLOW_SIZE = 128;

struct Rect {
    int x0, y0, x1, y1;
};

// Plates: the square split again and again, unevenly, down to a few sizes.
void split(Random& random, const Rect& r, int depth, std::vector<Rect>& out)
{
    const int w = r.x1 - r.x0;
    const int h = r.y1 - r.y0;
    const bool stop = depth >= 6 || (w <= 32 && h <= 32) || (depth >= 3 && random.uniform() < 0.25);
    if (stop) {
        out.push_back(r);
        return;
    }
    const bool vertical = w > h || (w == h && random.uniform() < 0.5);
    const int length = vertical ? w : h;
    // Cuts fall on an eight-texel grid, so seams line up as on a real hull.
    const int cut = 8 * static_cast<int>(std::lround(length * random.range(0.3, 0.7) / 8.0));
    if (cut <= 0 || cut >= length) {
        out.push_back(r);
        return;
    }
    if (vertical) {
        split(random, Rect{r.x0, r.y0, r.x0 + cut, r.y1}, depth + 1, out);
        split(random, Rect{r.x0 + cut, r.y0, r.x1, r.y1}, depth + 1, out);
    } else {
        split(random, Rect{r.x0, r.y0, r.x1, r.y0 + cut}, depth + 1, out);
        split(random, Rect{r.x0, r.y0 + cut, r.x1, r.y1}, depth + 1, out);
    }
}

float f(double v)
{
    return static_cast<float>(v);
}

}  // namespace

Image SpaceCraftArt::plates() const
{
    Random random(0x91a7e5ull);
    std::vector<Rect> rects;
    split(random, Rect{0, 0, PLATE_SIZE, PLATE_SIZE}, 0, rects);
    std::vector<int> owner(PLATE_SIZE * PLATE_SIZE, 0);
    std::vector<double> tone(rects.size());
    std::vector<int> bolted(rects.size());
    for (size_t i = 0; i < rects.size(); ++i) {
        const Rect& r = rects[i];
        for (int y = r.y0; y < r.y1; ++y)
            for (int x = r.x0; x < r.x1; ++x)
                owner[y * PLATE_SIZE + x] = static_cast<int>(i);
        tone[i] = random.range(-0.09, 0.09);
        bolted[i] = random.uniform() < 0.45;
    }
    const Noise noise(0x5ee1u);
    const Rgba steel{0.56f, 0.58f, 0.62f, 1.0f};
    const Rgba soot{0.2f, 0.2f, 0.22f, 1.0f};
    Image image(PLATE_SIZE, PLATE_SIZE);
    for (int y = 0; y < PLATE_SIZE; ++y) {
        for (int x = 0; x < PLATE_SIZE; ++x) {
            const int i = owner[y * PLATE_SIZE + x];
            const Rect& r = rects[static_cast<size_t>(i)];
            const double u = (x + 0.5) / PLATE_SIZE;
            const double v = (y + 0.5) / PLATE_SIZE;
            double k = 1.0 + tone[static_cast<size_t>(i)];
            // Fine brushing and broad wear.
            k += 0.05 * noise.fbm(u * 64.0, v * 8.0, 8, 2);
            const double wear = noise.fbm(u * 6.0, v * 6.0, 6, 5);
            // A raised edge: light along the top and left, shade along the bottom and right.
            const int left = x - r.x0, right = r.x1 - 1 - x, top = y - r.y0, bottom = r.y1 - 1 - y;
            if (left == 1 || top == 1)
                k += 0.12;
            if (right == 1 || bottom == 1)
                k -= 0.14;
            Rgba c = ColourMath::shade(steel, k);
            c = ColourMath::mix(c, soot, Maths::clamp(0.35 * Maths::smoothstep(0.1, 0.7, wear), 0.0, 0.4));
            // Seams between plates.
            if (left == 0 || top == 0)
                c = ColourMath::shade(c, 0.35);
            // Bolts in rows a few texels inside the edges.
            if (bolted[static_cast<size_t>(i)]) {
                const bool row = (left == 4 || right == 4) && (y % 8) == 4;
                const bool column = (top == 4 || bottom == 4) && (x % 8) == 4;
                if (row || column)
                    c = ColourMath::shade(c, 1.25);
            }
            image.at(x, y) = c;
        }
    }
    // A few hatches and vents.
    Painter paint(image);
    for (int i = 0; i < 24; ++i) {
        const double x = 16 + random.below(PLATE_SIZE - 48);
        const double y = 16 + random.below(PLATE_SIZE - 48);
        if (i % 2) {
            for (int s = 0; s < 4; ++s)
                paint.rect(x, y + s * 5, x + 22, y + s * 5 + 2, Rgba{0.12f, 0.12f, 0.14f, 1.0f});
        } else {
            paint.roundRect(x, y, x + 18, y + 12, 2.0, Rgba{0.35f, 0.36f, 0.4f, 1.0f});
            paint.rect(x + 2, y + 2, x + 16, y + 3, Rgba{0.68f, 0.7f, 0.74f, 1.0f});
        }
    }
    return image;
}

Image SpaceCraftArt::windows() const
{
    Random random(0x3d0c1ull);
    const Rgba frame{0.09f, 0.09f, 0.1f, 1.0f};
    const Rgba warm{1.0f, 0.84f, 0.56f, 1.0f};
    const Rgba cool{0.72f, 0.86f, 1.0f, 1.0f};
    Image image(WINDOW_SIZE, WINDOW_SIZE, frame);
    Painter paint(image);
    const int bandHeight = WINDOW_SIZE / WINDOW_BANDS;
    for (int band = 0; band < WINDOW_BANDS; ++band) {
        const Rgba light = band % 3 == 2 ? cool : warm;
        const double lit = 0.55 + 0.4 * random.uniform();
        const int y0 = band * bandHeight;
        for (int x = 0; x < WINDOW_SIZE; x += WINDOW_PITCH) {
            if (random.uniform() > lit) {
                paint.rect(x + 5, y0 + 9, x + 27, y0 + 23, Rgba{0.05f, 0.06f, 0.08f, 1.0f});
                continue;
            }
            const double k = random.range(0.6, 1.0);
            paint.rect(x + 5, y0 + 9, x + 27, y0 + 23, ColourMath::shade(light, k));
            // The glass is brighter at its middle.
            paint.rect(x + 9, y0 + 13, x + 23, y0 + 19, ColourMath::shade(light, std::min(1.0, k * 1.2)));
        }
    }
    return image;
}

Image SpaceCraftArt::nebula(bool upper) const
{
    const Noise noise(0x4eb01u);
    const Noise dust(0xd057u);
    // The glowing band runs along a great circle that climbs steeply from the horizon, so both
    // halves of the sky hold some of it; its brightest knot lies low in the east.
    const double nx = 0.3, ny = 0.35, nz = 0.89;
    const double nl = std::sqrt(nx * nx + ny * ny + nz * nz);
    const double kx = 0.8, ky = 0.25, kz = -0.55;
    const Rgba deep{0.004f, 0.004f, 0.02f, 1.0f};
    const Rgba blue{0.08f, 0.16f, 0.42f, 1.0f};
    const Rgba violet{0.36f, 0.1f, 0.46f, 1.0f};
    const Rgba teal{0.05f, 0.36f, 0.42f, 1.0f};
    const Rgba rose{0.95f, 0.42f, 0.5f, 1.0f};
    return Image::square(NEBULA_SIZE, [&](double u, double v, int, int) {
        const double elevation = (upper ? 1.0 : -1.0) * (1.0 - v) * Maths::pi * 0.5;
        const double azimuth = u * 2.0 * Maths::pi;
        const double ce = Maths::cos(elevation);
        const double dx = ce * Maths::cos(azimuth), dy = Maths::sin(elevation), dz = ce * Maths::sin(azimuth);
        const double across = (dx * nx + dy * ny + dz * nz) / nl;
        const double band = Maths::exp(-across * across / 0.16);
        const double toKnot = dx * kx + dy * ky + dz * kz;
        const double knot = Maths::exp((toKnot - 1.0) * 3.0);
        // Noise over azimuth and elevation: it tiles round the sky and runs on across the horizon.
        const double ax = u * 8.0;
        const double ay = (elevation / Maths::pi + 0.5) * 8.0;
        const double gas = 0.5 + 0.5 * noise.fbm(ax, ay, 8, 6, 0.55);
        const double swirl = 0.5 + 0.5 * noise.fbm(ax * 0.5 + 3.0, ay * 0.5, 4, 4);
        const double lanes = dust.ridged(ax * 1.5, ay * 1.5, 12, 4);
        double density = (band + knot) * Maths::smoothstep(0.15, 0.85, gas);
        density *= 1.0 - 0.65 * Maths::smoothstep(0.55, 0.95, lanes);
        density += 0.1 * Maths::smoothstep(0.45, 1.0, swirl) * gas;
        Rgba c = ColourMath::mix(blue, violet, Maths::clamp(swirl * 1.4 - 0.25, 0.0, 1.0));
        c = ColourMath::mix(c, teal, Maths::clamp((gas - swirl) * 1.8, 0.0, 1.0));
        c = ColourMath::mix(c, rose, Maths::clamp((density - 0.6) * 1.8 + knot * 0.4, 0.0, 0.75));
        return ColourMath::mix(deep, c, Maths::clamp(density * 1.25, 0.0, 1.0));
    });
}

Image SpaceCraftArt::glow() const
{
    return Image::square(GLOW_SIZE, [](double u, double v, int, int) {
        const double dx = u - 0.5, dy = v - 0.5;
        const double r = std::sqrt(dx * dx + dy * dy) * 2.0;
        const double core = Maths::exp(-r * r * 18.0);
        const double halo = Maths::clamp(1.0 - r, 0.0, 1.0);
        const double k = Maths::clamp(core + 0.45 * halo * halo * halo, 0.0, 1.0);
        return Rgba{f(k), f(k), f(k), 1.0f};
    });
}
