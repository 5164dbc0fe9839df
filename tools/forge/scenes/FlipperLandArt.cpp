// The flipper land is a toy: its pictures are bold, saturated and clean, with a little grain so they do not look flat.
#include "FlipperLandArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "Random.h"

#include "effects/FlipperLandLayout.h"

#include <cmath>
#include <vector>

namespace {

using namespace FlipperLandLayout;

const Rgba WHITE{1.0f, 1.0f, 1.0f, 1.0f};
const Rgba GOLD{1.0f, 0.8f, 0.18f, 1.0f};
const Rgba PINK{0.98f, 0.28f, 0.58f, 1.0f};
const Rgba VIOLET{0.5f, 0.22f, 0.9f, 1.0f};
const Rgba CYAN{0.1f, 0.82f, 0.95f, 1.0f};
const Rgba RED{1.0f, 0.15f, 0.2f, 1.0f};
const Rgba YELLOW{1.0f, 0.9f, 0.1f, 1.0f};
const Rgba LIME{0.5f, 1.0f, 0.2f, 1.0f};
const Rgba ORANGE{1.0f, 0.5f, 0.05f, 1.0f};

double distance(double dx, double dz)
{
    return std::sqrt(dx * dx + dz * dz);
}

// Field pixels for a point of the land.
double toPixel(double worldUnits)
{
    return (worldUnits + HALF_SIZE) / (2.0 * HALF_SIZE) * FlipperLandArt::FIELD_SIZE;
}

double pixels(double worldUnits)
{
    return worldUnits / (2.0 * HALF_SIZE) * FlipperLandArt::FIELD_SIZE;
}

std::vector<Point> star(double cx, double cy, double outer, double inner, int points, double turn)
{
    std::vector<Point> outline;
    for (int i = 0; i < 2 * points; ++i) {
        const double a = turn + Maths::pi * i / points;
        const double r = i % 2 == 0 ? outer : inner;
        outline.push_back(Point{cx + r * Maths::cos(a), cy + r * Maths::sin(a)});
    }
    return outline;
}

// An arrow head pointing along (dx, dy), for the lanes.
std::vector<Point> chevron(double cx, double cy, double dx, double dy, double size)
{
    const double sx = -dy;
    const double sy = dx;
    return {Point{cx + dx * size, cy + dy * size},
            Point{cx - dx * size * 0.2 + sx * size, cy - dy * size * 0.2 + sy * size},
            Point{cx - dx * size * 0.7 + sx * size, cy - dy * size * 0.7 + sy * size},
            Point{cx, cy},
            Point{cx - dx * size * 0.7 - sx * size, cy - dy * size * 0.7 - sy * size},
            Point{cx - dx * size * 0.2 - sx * size, cy - dy * size * 0.2 - sy * size}};
}

void ground(Image& image)
{
    const Noise noise(0xF11Bu);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double wx = (x + 0.5) / image.width() * 2.0 * HALF_SIZE - HALF_SIZE;
            const double wz = (y + 0.5) / image.height() * 2.0 * HALF_SIZE - HALF_SIZE;
            const double r = std::sqrt(wx * wx + wz * wz);
            Rgba c = r < 16.0 ? ColourMath::mix(GOLD, PINK, Maths::smoothstep(3.0, 16.0, r))
                              : ColourMath::mix(PINK, VIOLET, Maths::smoothstep(16.0, 30.0, r));
            // Big soft checks, so the land's shape reads as it heaves.
            const bool check =
                (static_cast<int>(std::floor(wx / 3.0)) + static_cast<int>(std::floor(wz / 3.0))) % 2 == 0;
            const double k = (check ? 1.06 : 0.92) + 0.05 * noise.fbm(wx / 6.0, wz / 6.0, 16, 3) +
                             0.03 * Random::grain(x, y, 0xF11Cu);
            c = ColourMath::shade(c, k);
            // Candy stripes round the rim.
            const double square = std::max(std::fabs(wx), std::fabs(wz)) / HALF_SIZE;
            if (square > 0.86) {
                const bool stripe = static_cast<int>(std::floor((wx + wz) / 1.6 + 100.0)) % 2 == 0;
                c = ColourMath::mix(c, stripe ? RED : WHITE, Maths::smoothstep(0.86, 0.875, square));
            }
            image.at(x, y) =
                Rgba{static_cast<float>(Maths::clamp(c.r, 0.0, 1.0)), static_cast<float>(Maths::clamp(c.g, 0.0, 1.0)),
                     static_cast<float>(Maths::clamp(c.b, 0.0, 1.0)), 1.0f};
        }
    }
}

void lanes(Painter& paint)
{
    for (const Vector3& s : STATIONS) {
        const double length = std::sqrt(static_cast<double>(s.x) * s.x + static_cast<double>(s.z) * s.z);
        const double dx = s.x / length;
        const double dz = s.z / length;
        paint.line(Point{toPixel(dx * 4.0), toPixel(dz * 4.0)}, Point{toPixel(dx * 8.6), toPixel(dz * 8.6)},
                   pixels(3.4), CYAN);
        for (double d = 5.0; d < 8.7; d += 1.8)
            paint.polygon(chevron(toPixel(dx * d), toPixel(dz * d), dx, dz, pixels(0.8)), WHITE);
    }
}

void targets(Painter& paint)
{
    const Rgba rings[] = {RED, WHITE, RED, WHITE, YELLOW};
    for (const Vector3& s : STATIONS) {
        for (int i = 0; i < 5; ++i)
            paint.disc(toPixel(s.x), toPixel(s.z), pixels(4.4 - 0.85 * i), rings[i]);
        paint.polygon(star(toPixel(s.x), toPixel(s.z), pixels(0.8), pixels(0.35), 5, -0.5 * Maths::pi), RED);
    }
}

void bumperStars(Painter& paint)
{
    for (int i = 0; i < BUMPER_COUNT; ++i) {
        const Vector3& b = BUMPERS[i];
        const double cx = toPixel(b.x);
        const double cy = toPixel(b.z);
        if (i == 0) {
            // The sun under the middle bumper.
            paint.polygon(star(cx, cy, pixels(4.6), pixels(2.9), 12, 0.0), ORANGE);
            paint.disc(cx, cy, pixels(3.0), YELLOW);
            continue;
        }
        paint.disc(cx, cy, pixels(2.8), LIME);
        paint.polygon(star(cx, cy, pixels(2.5), pixels(1.1), 8, 0.2), WHITE);
    }
}

// Little stars and dots sprinkled where nothing else is painted.
void sprinkles(Painter& paint)
{
    Random random(0xF11Du);
    const Rgba colours[] = {WHITE, YELLOW, CYAN, LIME};
    for (int i = 0; i < 90; ++i) {
        const double x = random.range(-19.5, 19.5);
        const double z = random.range(-19.5, 19.5);
        bool clear = std::sqrt(x * x + z * z) > 6.0;
        for (const Vector3& s : STATIONS)
            clear = clear && distance(x - s.x, z - s.z) > 5.2;
        for (const Vector3& b : BUMPERS)
            clear = clear && distance(x - b.x, z - b.z) > 3.4;
        const bool onLane = (std::fabs(x) < 2.2 || std::fabs(z) < 2.2) && std::sqrt(x * x + z * z) < 9.5;
        const Rgba colour = colours[random.below(4)];
        const double size = random.range(0.35, 0.75);
        if (!clear || onLane)
            continue;
        if (i % 3 == 0)
            paint.disc(toPixel(x), toPixel(z), pixels(size * 0.6), colour);
        else
            paint.polygon(star(toPixel(x), toPixel(z), pixels(size), pixels(size * 0.45), 5, random.range(0.0, 1.3)),
                          colour);
    }
}

}  // namespace

Image FlipperLandArt::field() const
{
    Image image(FIELD_SIZE, FIELD_SIZE);
    ground(image);
    Painter paint(image);
    paint.setFeather(1.2);
    sprinkles(paint);
    lanes(paint);
    targets(paint);
    bumperStars(paint);
    return image;
}

Image FlipperLandArt::sky() const
{
    const Noise noise(0x5C1Eu);
    const Rgba zenith{0.12f, 0.42f, 0.95f, 1.0f};
    const Rgba horizon{0.62f, 0.88f, 1.0f, 1.0f};
    const Rgba bands[7] = {{0.95f, 0.2f, 0.25f, 1.0f}, {1.0f, 0.55f, 0.1f, 1.0f}, {1.0f, 0.95f, 0.2f, 1.0f},
                           {0.3f, 0.9f, 0.3f, 1.0f},   {0.2f, 0.6f, 1.0f, 1.0f},  {0.35f, 0.3f, 0.9f, 1.0f},
                           {0.6f, 0.3f, 0.85f, 1.0f}};
    return Image::square(SKY_SIZE, [&](double u, double v, int, int) {
        Rgba c = ColourMath::mix(zenith, horizon, Maths::pow(v, 1.4));
        // A rainbow arching over one side of the land.
        const double across = (u - 0.62) / 0.13;
        if (std::fabs(across) < 1.0) {
            const double arc = 1.0 - 0.36 * std::sqrt(1.0 - across * across);
            const double band = (v - arc) / 0.045 + 0.5;
            if (band >= 0.0 && band < 1.0) {
                const double fade = 0.55 * Maths::smoothstep(1.0, 0.8, std::fabs(across));
                c = ColourMath::mix(c, bands[static_cast<int>(band * 7.0)], fade);
            }
        }
        // Fair-weather clouds low round the horizon, lit from above.
        const double puff = noise.fbm(u * 8.0, v * 4.0, 8, 4) + 0.35 * noise.fbm(u * 24.0, v * 8.0, 24, 2);
        const double low = Maths::smoothstep(0.45, 0.75, v) * Maths::smoothstep(1.0, 0.9, v);
        const double cloud = Maths::smoothstep(0.05, 0.35, puff) * low;
        const Rgba lit = ColourMath::mix(WHITE, Rgba{0.78f, 0.84f, 0.95f, 1.0f}, Maths::smoothstep(0.1, 0.6, puff));
        return ColourMath::mix(c, lit, cloud);
    });
}

Image FlipperLandArt::shine() const
{
    const Rgba sky{0.95f, 0.98f, 1.0f, 1.0f};
    const Rgba horizon{1.0f, 1.0f, 1.0f, 1.0f};
    const Rgba floor{0.45f, 0.35f, 0.45f, 1.0f};
    return Image::square(SHINE_SIZE, [&](double u, double v, int, int) {
        double nx = u * 2.0 - 1.0;
        double ny = 1.0 - v * 2.0;
        const double r = std::sqrt(nx * nx + ny * ny);
        if (r > 1.0) {
            nx /= r;
            ny /= r;
        }
        const double nz = std::sqrt(std::fmax(0.0, 1.0 - nx * nx - ny * ny));
        // The reflected direction's height; the file's rows run down while sphere-map t runs up.
        const double up = -(2.0 * nz * ny);
        Rgba c = up > 0.0 ? ColourMath::mix(horizon, sky, Maths::smoothstep(0.0, 0.6, up))
                          : ColourMath::mix(horizon, floor, Maths::smoothstep(0.0, 0.35, -up));
        // A window of sun up and to the left.
        const double wx = (nx + 0.35) / 0.16;
        const double wy = (ny + 0.4) / 0.12;
        const double window = Maths::exp(-(wx * wx * wx * wx + wy * wy * wy * wy));
        return ColourMath::mix(c, WHITE, window);
    });
}

Image FlipperLandArt::shadow() const
{
    return Image::square(SHADOW_SIZE, [&](double u, double v, int, int) {
        const double dx = u * 2.0 - 1.0;
        const double dy = v * 2.0 - 1.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double a = 0.8 * Maths::pow(1.0 - Maths::smoothstep(0.2, 1.0, r), 1.5);
        return Rgba{0.0f, 0.0f, 0.0f, static_cast<float>(a)};
    });
}
