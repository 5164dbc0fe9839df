// Everything is placed by direction on the sphere, so the moon is round and the
// stars are points wherever they fall on the dome, however the texels stretch.
#include "SkyArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Random.h"

#include <cmath>
#include <vector>

namespace {

const double radian = Maths::pi / 180.0;
const double moonRadius = 3.2 * radian;

double dot3(double ax, double ay, double az, double bx, double by, double bz)
{
    return ax * bx + ay * by + az * bz;
}

// Angle between two unit vectors from their chord: exact enough and needs no arc cosine.
double angleBetween(double cx, double cy, double cz)
{
    const double chord = std::sqrt(cx * cx + cy * cy + cz * cz);
    const double half = Maths::clamp(chord * 0.5, 0.0, 1.0);
    return 2.0 * Maths::atan2(half, std::sqrt(1.0 - half * half));
}

}  // namespace

SkyArt::SkyArt() : cosAz(width), sinAz(width), cosEl(height), sinEl(height)
{
    for (int x = 0; x < width; ++x) {
        const double az = 2.0 * Maths::pi * (x + 0.5) / width;
        cosAz[x] = Maths::cos(az);
        sinAz[x] = Maths::sin(az);
    }
    for (int y = 0; y < height; ++y) {
        const double el = 0.5 * Maths::pi * (1.0 - (y + 0.5) / height);
        cosEl[y] = Maths::cos(el);
        sinEl[y] = Maths::sin(el);
    }
}

SkyArt::Dir SkyArt::texelDirection(int x, int y) const
{
    return Dir{cosEl[y] * cosAz[x], sinEl[y], cosEl[y] * sinAz[x]};
}

SkyArt::Dir SkyArt::direction(double u, double v)
{
    const double az = 2.0 * Maths::pi * u;
    const double el = 0.5 * Maths::pi * (1.0 - v);
    return Dir{Maths::cos(el) * Maths::cos(az), Maths::sin(el), Maths::cos(el) * Maths::sin(az)};
}

void SkyArt::drawBase(Image& sky) const
{
    const Rgba horizon{0.08f, 0.14f, 0.26f, 1.0f};
    const Rgba middle{0.025f, 0.055f, 0.14f, 1.0f};
    const Rgba zenith{0.008f, 0.014f, 0.05f, 1.0f};
    const Rgba band{0.05f, 0.055f, 0.08f, 1.0f};
    Noise noise(0x5C1Eu);
    // The galaxy band lies along a tilted great circle.
    const double nx = 0.3, ny = 0.55, nz = -0.78;
    const double nl = std::sqrt(nx * nx + ny * ny + nz * nz);
    for (int y = 0; y < height; ++y) {
        const double v = (y + 0.5) / height;
        const double t = 1.0 - v;
        Rgba row = ColourMath::mix(horizon, middle, Maths::smoothstep(0.0, 0.35, t));
        row = ColourMath::mix(row, zenith, Maths::smoothstep(0.3, 1.0, t));
        // Near the zenith every texel of a row is the same point: fade the texture out there.
        const double detail = 1.0 - Maths::smoothstep(0.75, 0.97, t);
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width;
            const Dir d = texelDirection(x, y);
            const double across = dot3(d.x, d.y, d.z, nx, ny, nz) / nl;
            const double lane = Maths::exp(-(across * across) / (2.0 * 0.16 * 0.16));
            const double mottle = 0.5 + 0.5 * noise.fbm(u * 24.0, v * 10.0, 24, 5) * detail;
            const double glow = lane * mottle * Maths::smoothstep(0.0, 0.3, t);
            Rgba c = row;
            c.r += (float)(band.r * glow);
            c.g += (float)(band.g * glow);
            c.b += (float)(band.b * glow);
            sky.at(x, y) = c;
        }
    }
}

void SkyArt::drawStars(Image& sky) const
{
    Random random(0x57A125ull);
    const Dir moon = direction(moonAzimuth, 1.0 - moonElevation / 90.0);
    for (int i = 0; i < 6000; ++i) {
        // Uniform over the hemisphere: the sine of the elevation is uniform.
        const double s = random.uniform();
        const double el = Maths::atan2(s, std::sqrt(1.0 - s * s));
        const double u = random.uniform();
        const double v = 1.0 - el / (0.5 * Maths::pi);
        double bright = 0.06 + 0.9 * Maths::pow(random.uniform(), 7.0);
        const double warmth = random.range(-1.0, 1.0);
        const Dir d = direction(u, v);
        bright *= Maths::smoothstep(0.0, 0.22, el);
        bright *= Maths::smoothstep(0.1, 0.4, angleBetween(d.x - moon.x, d.y - moon.y, d.z - moon.z));
        if (bright < 0.01)
            continue;
        const Rgba tint{(float)(1.0 + 0.12 * warmth), 1.0f, (float)(1.0 - 0.12 * warmth), 1.0f};
        // A point on the sphere covers more texels across where the rows are short.
        const double sigmaY = bright > 0.5 ? 0.8 : 0.55;
        const double sigmaX = std::fmin(sigmaY / std::fmax(Maths::cos(el), 0.03), 24.0);
        const double cx = u * width;
        const double cy = v * height;
        for (int y = (int)std::floor(cy - 3.0 * sigmaY); y <= (int)std::ceil(cy + 3.0 * sigmaY); ++y) {
            if (y < 0 || y >= height)
                continue;
            for (int x = (int)std::floor(cx - 3.0 * sigmaX); x <= (int)std::ceil(cx + 3.0 * sigmaX); ++x) {
                const double dx = x + 0.5 - cx;
                const double dy = y + 0.5 - cy;
                const double k = Maths::exp(-0.5 * (dx * dx / (sigmaX * sigmaX) + dy * dy / (sigmaY * sigmaY)));
                const int wx = ((x % width) + width) % width;
                sky.add(wx, y, tint, bright * k);
            }
        }
    }
}

void SkyArt::drawClouds(Image& sky) const
{
    Noise noise(0xC10Du);
    const Dir moon = direction(moonAzimuth, 1.0 - moonElevation / 90.0);
    const Rgba shadowSide{0.035f, 0.05f, 0.1f, 1.0f};
    const Rgba litSide{0.42f, 0.46f, 0.56f, 1.0f};
    for (int y = 0; y < height; ++y) {
        const double v = (y + 0.5) / height;
        const double t = 1.0 - v;
        const double layer = Maths::smoothstep(0.02, 0.1, t) * (1.0 - Maths::smoothstep(0.22, 0.5, t));
        if (layer <= 0.0)
            continue;
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width;
            // Long, thin streaks: stretched along the horizon.
            const double n = noise.fbm(u * 16.0, v * 18.0, 16, 5, 0.55);
            const double density = Maths::smoothstep(-0.05, 0.45, n) * layer;
            if (density <= 0.0)
                continue;
            const Dir d = texelDirection(x, y);
            const double a = angleBetween(d.x - moon.x, d.y - moon.y, d.z - moon.z);
            const double lit = 1.2 * Maths::exp(-a / 0.3) + 0.18;
            const Rgba c = ColourMath::mix(shadowSide, litSide, Maths::clamp(lit * (0.6 + 0.4 * n), 0.0, 1.0));
            sky.blend(x, y, c, density * 0.85);
        }
    }
}

void SkyArt::drawMoon(Image& sky) const
{
    const double az = 2.0 * Maths::pi * moonAzimuth;
    const double el = moonElevation * radian;
    const Dir m = direction(moonAzimuth, 1.0 - moonElevation / 90.0);
    // East and up on the sky at the moon.
    const Dir east{-Maths::sin(az), 0.0, Maths::cos(az)};
    const Dir up{-Maths::sin(el) * Maths::cos(az), Maths::cos(el), -Maths::sin(el) * Maths::sin(az)};
    const double pixelsPerRadian = height / (0.5 * Maths::pi);
    const double radiusPixels = moonRadius * pixelsPerRadian;

    struct Crater {
        double x, y, r;
    };
    std::vector<Crater> craters;
    Random random(0x300Dull);
    for (int i = 0; i < 34; ++i) {
        const double r = 0.03 + 0.13 * Maths::pow(random.uniform(), 2.5);
        const double a = random.range(0.0, 2.0 * Maths::pi);
        const double d = std::sqrt(random.uniform()) * (0.95 - r);
        craters.push_back(Crater{d * Maths::cos(a), d * Maths::sin(a), r});
    }
    Noise noise(0x3A12u);
    // Sunlight from a little to the right: a waxing gibbous moon.
    const double lx = 0.42, ly = 0.12, lz = 0.9;
    const double ll = std::sqrt(lx * lx + ly * ly + lz * lz);

    const int cy = (int)((1.0 - moonElevation / 90.0) * height);
    const int reach = (int)(radiusPixels * 9.0);
    for (int y = std::max(0, cy - reach); y < std::min(height, cy + reach); ++y) {
        for (int x = 0; x < width; ++x) {
            const Dir d = texelDirection(x, y);
            const double a = angleBetween(d.x - m.x, d.y - m.y, d.z - m.z);
            if (a > moonRadius * 12.0)
                continue;
            // Halo: a bright inner glow and a wide faint one.
            const double halo =
                0.5 * Maths::exp(-(a - moonRadius) / (0.9 * moonRadius)) + 0.12 * Maths::exp(-a / (5.0 * moonRadius));
            sky.add(x, y, Rgba{0.5f, 0.58f, 0.78f, 1.0f}, a < moonRadius ? 0.6 : halo);
            const double mx = dot3(d.x, d.y, d.z, east.x, east.y, east.z) / moonRadius;
            const double my = dot3(d.x, d.y, d.z, up.x, up.y, up.z) / moonRadius;
            const double r2 = mx * mx + my * my;
            const double cover = Maths::clamp((1.0 - std::sqrt(r2)) * radiusPixels + 0.5, 0.0, 1.0);
            if (cover <= 0.0)
                continue;
            const double nz = std::sqrt(std::fmax(0.0, 1.0 - r2));
            double albedo = 0.9;
            const double maria = Maths::smoothstep(0.05, 0.45, noise.fbm(mx * 1.4 + 3.0, my * 1.4 + 1.0, 8, 4));
            albedo *= 1.0 - 0.32 * maria;
            albedo *= 1.0 + 0.06 * noise.fbm(mx * 8.0, my * 8.0, 16, 3);
            for (const Crater& c : craters) {
                const double ox = (mx - c.x) / c.r;
                const double oy = (my - c.y) / c.r;
                const double q = std::sqrt(ox * ox + oy * oy);
                if (q > 1.25)
                    continue;
                // Bowl shadowed on the lit side, rim bright on the far side.
                const double facing = (ox * lx + oy * ly) / (std::fmax(q, 1e-6) * std::sqrt(lx * lx + ly * ly));
                if (q < 1.0)
                    albedo *= 0.86 - 0.1 * facing * q;
                else
                    albedo *= 1.0 + 0.16 * (1.25 - q) / 0.25 * (0.5 + 0.5 * facing);
            }
            const double lambert = std::fmax(0.0, (mx * lx + my * ly + nz * lz) / ll);
            const double light = albedo * (0.05 + 0.98 * Maths::pow(lambert, 0.6));
            sky.blend(x, y, Rgba{(float)(1.0 * light), (float)(0.97 * light), (float)(0.9 * light), 1.0f}, cover);
        }
    }
}

Image SkyArt::compose() const
{
    Image sky(width, height);
    drawBase(sky);
    drawStars(sky);
    drawClouds(sky);
    drawMoon(sky);
    return sky;
}
