// The city's pictures. Night is in the pictures themselves: the block is drawn unlit, so a window's colour here
// is the colour on screen, lit ones bright and warm or cool, dark ones holding a faint reflection.
#include "CityArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "Random.h"
#include "TextRaster.h"

#include "effects/CityLayout.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

namespace {

using namespace CityLayout;

const int CELL = 64;
const int FACADE = 512;

double unit(int a, int b, uint32_t seed)
{
    return (Random::hash(a, b, seed) & 0xffffu) / 65535.0;
}

Rgba rgb(double r, double g, double b)
{
    return Rgba{static_cast<float>(r), static_cast<float>(g), static_cast<float>(b), 1.0f};
}

Rgba clamped(Rgba c)
{
    return Rgba{std::min(c.r, 1.0f), std::min(c.g, 1.0f), std::min(c.b, 1.0f), 1.0f};
}

// A picture filled with a dark surface: the base colour with soft blotches and grain.
Image surface(int width, int height, Rgba base, double blotches, double grain, uint32_t seed)
{
    Image image(width, height);
    const Noise noise(seed);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width;
            const double v = (y + 0.5) / height;
            const double k = 1.0 + blotches * noise.fbm(u * 4.0, v * 4.0, 4, 4) + grain * Random::grain(x, y, seed);
            image.at(x, y) = ColourMath::shade(base, k);
        }
    }
    return image;
}

void fillRect(Image& image, int x0, int y0, int x1, int y1, const std::function<Rgba(int, int)>& colour)
{
    for (int y = std::max(0, y0); y < std::min(image.height(), y1); ++y)
        for (int x = std::max(0, x0); x < std::min(image.width(), x1); ++x)
            image.at(x, y) = colour(x, y);
}

// Dark glass holding a faint, slanted reflection of the sky's glow.
Rgba darkGlass(int x, int y, uint32_t seed)
{
    const double sheen = 0.5 + 0.5 * Maths::sin((x * 0.7 - y) * 0.05 + (seed & 7));
    return rgb(0.025 + 0.02 * sheen, 0.03 + 0.025 * sheen, 0.06 + 0.04 * sheen);
}

// The light of a lit room: warm lamps mostly, some cool, a few the blue of a screen.
Rgba roomLight(double pick, double brightness)
{
    Rgba c = rgb(1.0, 0.74, 0.4);
    if (pick > 0.55)
        c = rgb(1.0, 0.84, 0.55);
    if (pick > 0.8)
        c = rgb(0.82, 0.9, 1.0);
    if (pick > 0.93)
        c = rgb(0.45, 0.55, 1.0);
    return ColourMath::shade(c, brightness);
}

}  // namespace

Image CityArt::facade(int kind) const
{
    Image image;
    switch (kind) {
        case FACADE_GLASS:
            image = surface(FACADE, FACADE, rgb(0.05, 0.06, 0.075), 0.25, 0.08, 0x61a55u);
            officeWindows(image);
            break;
        case FACADE_FLATS:
            image = surface(FACADE, FACADE, rgb(0.1, 0.085, 0.08), 0.3, 0.12, 0xf1a75u);
            flatWindows(image);
            break;
        case FACADE_BRICK:
            image = surface(FACADE, FACADE, rgb(0.09, 0.075, 0.065), 0.2, 0.1, 0xb41c4u);
            brickWindows(image);
            break;
        default:
            image = surface(FACADE, FACADE, rgb(0.11, 0.11, 0.12), 0.25, 0.1, 0x571b5u);
            stripWindows(image);
            break;
    }
    return image;
}

void CityArt::officeWindows(Image& image) const
{
    // Whole floors are lit or dark together, as offices are at night; the panes are tall glass
    // between thin mullions, with the ceiling lights a brighter line near the top.
    for (int row = 0; row < 8; ++row) {
        const bool floorLit = unit(row, 0, 0x0ff1u) < 0.5;
        const double floorTone = 0.7 + 0.3 * unit(row, 1, 0x0ff1u);
        const bool warm = unit(row, 2, 0x0ff1u) > 0.8;
        const int top = row * CELL + 10;
        const int bottom = row * CELL + 58;
        for (int pane = 0; pane < 16; ++pane) {
            const double chance = floorLit ? 0.88 : 0.07;
            const bool lit = unit(row, pane + 10, 0x0ff2u) < chance;
            const bool blinds = unit(row, pane + 40, 0x0ff2u) < 0.25;
            const int x0 = pane * 32 + 2;
            const int x1 = pane * 32 + 31;
            fillRect(image, x0, top, x1, bottom, [&](int x, int y) {
                if (!lit)
                    return darkGlass(x, y, 3u);
                const double t = (y - top) / static_cast<double>(bottom - top);
                double k = floorTone * (0.62 + 0.38 * (1.0 - t));
                if (y - top < 3)
                    k *= 1.35;
                if (blinds && (y - top) % 5 == 0)
                    k *= 0.45;
                return clamped(ColourMath::shade(warm ? rgb(1.0, 0.9, 0.7) : rgb(0.74, 0.86, 1.0), k));
            });
        }
    }
}

void CityArt::flatWindows(Image& image) const
{
    for (int row = 0; row < 8; ++row) {
        for (int col = 0; col < 8; ++col) {
            const int x0 = col * CELL + 14;
            const int x1 = col * CELL + 50;
            const int y0 = row * CELL + 12;
            const int y1 = row * CELL + 50;
            const bool lit = unit(col, row, 0xf1a7u) < 0.4;
            const Rgba light = roomLight(unit(col, row, 0xf1a8u), 0.7 + 0.3 * unit(col, row, 0xf1a9u));
            const double curtain = 0.15 + 0.2 * unit(col, row, 0xf1aau);
            // Frame and sill, a shade lighter than the wall.
            fillRect(image, x0 - 2, y0 - 2, x1 + 2, y1 + 2, [](int, int) { return rgb(0.16, 0.15, 0.14); });
            fillRect(image, x0 - 4, y1 + 2, x1 + 4, y1 + 5, [](int, int) { return rgb(0.2, 0.19, 0.17); });
            fillRect(image, x0, y0, x1, y1, [&](int x, int y) {
                if (!lit)
                    return darkGlass(x, y, 5u);
                const double across = (x - x0) / static_cast<double>(x1 - x0);
                double k = 0.85 + 0.15 * (1.0 - (y - y0) / static_cast<double>(y1 - y0));
                // Drawn curtains at both sides, glowing through.
                if (across < curtain || across > 1.0 - curtain)
                    k *= 0.55;
                // The window's cross bar.
                if (std::abs(x - (x0 + x1) / 2) < 1)
                    return rgb(0.12, 0.11, 0.1);
                return clamped(ColourMath::shade(light, k));
            });
        }
    }
}

void CityArt::brickWindows(Image& image) const
{
    // Bricks first, then tall narrow windows in pairs under stone lintels.
    for (int y = 0; y < FACADE; ++y) {
        const int course = y / 8;
        const int offset = course % 2 ? 12 : 0;
        for (int x = 0; x < FACADE; ++x) {
            const bool mortar = y % 8 == 7 || (x + offset) % 24 == 23;
            if (mortar)
                continue;
            const double tone = 0.75 + 0.5 * unit((x + offset) / 24, course, 0xb41cu);
            image.at(x, y) = ColourMath::shade(rgb(0.2, 0.085, 0.06), tone * (1.0 + 0.1 * Random::grain(x, y, 7u)));
        }
    }
    for (int row = 0; row < 8; ++row) {
        for (int col = 0; col < 8; ++col) {
            const bool lit = unit(col, row, 0xb41du) < 0.38;
            const Rgba light = roomLight(unit(col, row, 0xb41eu) * 0.8, 0.75 + 0.25 * unit(col, row, 0xb41fu));
            const int y0 = row * CELL + 14;
            const int y1 = row * CELL + 54;
            fillRect(image, col * CELL + 8, y0 - 5, col * CELL + 56, y0 - 1,
                     [](int, int) { return rgb(0.22, 0.2, 0.17); });
            for (int pane = 0; pane < 2; ++pane) {
                const int x0 = col * CELL + 12 + pane * 24;
                const int x1 = x0 + 16;
                fillRect(image, x0, y0, x1, y1, [&](int x, int y) {
                    if ((y - y0) % 14 == 13 || x == x0 + 7)
                        return rgb(0.1, 0.09, 0.08);
                    if (!lit)
                        return darkGlass(x, y, 9u);
                    return clamped(ColourMath::shade(light, 0.8 + 0.2 * ((y1 - y) / 40.0)));
                });
            }
        }
    }
}

void CityArt::stripWindows(Image& image) const
{
    // Ribbon windows the width of the building; runs of panes lit in teal-white office light.
    for (int row = 0; row < 8; ++row) {
        const int y0 = row * CELL + 20;
        const int y1 = row * CELL + 50;
        int pane = 0;
        while (pane < 24) {
            const int run = 2 + static_cast<int>(unit(row, pane, 0x571cu) * 6.0);
            const bool lit = unit(row, pane, 0x571du) < 0.45;
            const Rgba light = unit(row, pane, 0x571eu) < 0.6 ? rgb(0.6, 0.95, 0.92) : rgb(0.95, 0.95, 0.9);
            for (int k = pane; k < std::min(24, pane + run); ++k) {
                const int x0 = k * FACADE / 24;
                const int x1 = (k + 1) * FACADE / 24;
                fillRect(image, x0, y0, x1, y1, [&](int x, int y) {
                    if (x < x0 + 2)
                        return rgb(0.16, 0.17, 0.18);
                    if (!lit)
                        return darkGlass(x, y, 11u);
                    return clamped(ColourMath::shade(light, 0.7 + 0.3 * ((y1 - y) / 30.0)));
                });
            }
            pane += run;
        }
        // A pale concrete band under each ribbon.
        fillRect(image, 0, y1, FACADE, y1 + 3, [](int, int) { return rgb(0.18, 0.18, 0.19); });
    }
}

Image CityArt::shops(bool late) const
{
    // Painted four times as wide as tall, as the shop fronts are, then stretched to a square.
    const int width = SURFACES[SHOP_BRIGHT].width;
    const int height = width / 4;
    Image image = surface(width, height, rgb(0.08, 0.075, 0.075), 0.2, 0.1, late ? 0x5409u : 0x5408u);
    int x = 0;
    unsigned seed = late ? 200u : 100u;
    while (x < width) {
        const int w = std::min(width - x, 128 + static_cast<int>(unit(x, 0, seed) * 96.0));
        const double pick = unit(x, 1, seed);
        int kind = pick < 0.7 ? 0 : 1;
        if (late)
            kind = pick < 0.35 ? 0 : pick < 0.7 ? 1 : 2;
        shopFront(image, x, x + w, kind, seed + static_cast<unsigned>(x));
        x += w;
    }
    return image.resized(width, SURFACES[SHOP_BRIGHT].height);
}

void CityArt::shopFront(Image& image, int x0, int x1, int kind, unsigned seed) const
{
    const int height = image.height();
    // A pilaster between shops.
    fillRect(image, x0, 0, x0 + 5, height, [](int, int) { return rgb(0.14, 0.13, 0.13); });
    static const Rgba fascias[] = {rgb(0.9, 0.15, 0.2), rgb(0.1, 0.55, 0.9), rgb(0.95, 0.7, 0.1), rgb(0.15, 0.75, 0.35),
                                   rgb(0.7, 0.2, 0.85)};
    const Rgba fascia = fascias[static_cast<int>(unit(static_cast<int>(seed), 2, 0x5a5au) * 4.999)];
    if (kind == 1) {
        // Shuttered for the night: corrugated steel under a dark sign.
        fillRect(image, x0 + 5, 6, x1, 24, [](int, int) { return rgb(0.1, 0.1, 0.11); });
        fillRect(image, x0 + 8, 26, x1 - 3, height - 6, [&](int x, int y) {
            const double rib = (y % 6) < 2 ? 0.7 : 1.0;
            return ColourMath::shade(rgb(0.2, 0.2, 0.21), rib * (1.0 + 0.15 * Random::grain(x, y, seed)));
        });
        return;
    }
    const bool bar = kind == 2;
    const Rgba inside = bar                                              ? rgb(0.75, 0.15, 0.35)
                        : unit(static_cast<int>(seed), 3, 0x5a5bu) < 0.6 ? rgb(1.0, 0.9, 0.72)
                                                                         : rgb(0.85, 0.95, 1.0);
    // The lit fascia with a bright band through it.
    fillRect(image, x0 + 5, 4, x1, 24,
             [&](int, int y) { return ColourMath::shade(fascia, y > 11 && y < 16 ? 1.1 : 0.75); });
    const int door = x1 - 34;
    fillRect(image, x0 + 10, 30, door - 4, height - 14, [&](int x, int y) {
        // Shelves and goods as darker bands and blocks against the light.
        double k = 0.9 + 0.1 * ((height - y) / static_cast<double>(height));
        if ((y - 30) % 22 > 17)
            k *= 0.35;
        else if (unit(x / 9, (y - 30) / 22, seed) < 0.35)
            k *= 0.55;
        return clamped(ColourMath::shade(inside, bar ? k * 0.7 : k));
    });
    fillRect(image, door, 30, x1 - 6, height,
             [&](int x, int) { return x == door + 13 ? rgb(0.1, 0.1, 0.1) : ColourMath::shade(inside, 0.55); });
    fillRect(image, x0 + 5, height - 14, door - 4, height, [](int, int) { return rgb(0.06, 0.06, 0.06); });
}

Image CityArt::road() const
{
    const int size = SURFACES[ROAD].width;
    Image image = surface(size, size, rgb(0.065, 0.065, 0.075), 0.35, 0.25, 0x40adu);
    const Noise wear(0x40aeu);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double u = (x + 0.5) / size;
            const double v = (y + 0.5) / size;
            Rgba& c = image.at(x, y);
            // Worn, darker tyre tracks down the middle of each lane.
            const double track = std::min(std::abs(u - 0.3), std::abs(u - 0.7));
            c = ColourMath::shade(c, 1.0 - 0.25 * Maths::smoothstep(0.09, 0.0, track));
            const double fade = 0.75 + 0.25 * wear.fbm(u * 8.0, v * 8.0, 8, 3);
            // Solid edge lines, and the dashed line between the two lanes.
            const bool edge = std::abs(u - 0.04) < 0.012 || std::abs(u - 0.96) < 0.012;
            const bool dash = std::abs(u - 0.5) < 0.01 && v < 0.45;
            if (edge || dash)
                c = ColourMath::mix(c, edge ? rgb(0.55, 0.55, 0.5) : rgb(0.6, 0.52, 0.2), fade);
        }
    }
    return image;
}

Image CityArt::crossing() const
{
    const int size = SURFACES[CROSSING].width;
    Image image = surface(size, size, rgb(0.06, 0.06, 0.07), 0.35, 0.25, 0xc055u);
    const Noise wear(0xc056u);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double u = (x + 0.5) / size;
            const double v = (y + 0.5) / size;
            // Zebra stripes across each road where it enters the crossing.
            const double edge = std::min(std::min(u, 1.0 - u), std::min(v, 1.0 - v));
            if (edge > 0.13 || edge < 0.02)
                continue;
            const double along = (u < 0.13 || u > 0.87) ? v : u;
            if (std::fmod(along * 10.0, 1.0) > 0.55)
                continue;
            const double fade = 0.65 + 0.35 * wear.fbm(u * 8.0, v * 8.0, 8, 3);
            image.at(x, y) = ColourMath::mix(image.at(x, y), rgb(0.5, 0.5, 0.48), fade);
        }
    }
    return image;
}

Image CityArt::sidewalk() const
{
    const int size = SURFACES[SIDEWALK].width;
    Image image(size, size);
    // Paving slabs a metre square, each its own shade, with dark joints.
    const int slab = size / 4;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            if (x % slab < 2 || y % slab < 2) {
                image.at(x, y) = rgb(0.05, 0.05, 0.05);
                continue;
            }
            const double tone = 0.8 + 0.35 * unit(x / slab, y / slab, 0x51d3u);
            image.at(x, y) = ColourMath::shade(rgb(0.15, 0.14, 0.135), tone + 0.1 * Random::grain(x, y, 13u));
        }
    }
    return image;
}

Image CityArt::roof() const
{
    const int size = SURFACES[ROOF].width;
    return surface(size, size, rgb(0.07, 0.07, 0.075), 0.5, 0.35, 0x2003u);
}

Image CityArt::metal() const
{
    const int size = SURFACES[METAL].width;
    return surface(size, size, rgb(0.13, 0.14, 0.15), 0.3, 0.15, 0x3e7au);
}

Image CityArt::oneWay() const
{
    // Painted at the sign's shape, then stretched to a square.
    const int width = SURFACES[ONE_WAY].width;
    const int height = width / 2;
    Image image(width, height, rgb(0.02, 0.02, 0.02));
    Painter paint(image);
    TextRaster text;
    const bool font = text.open(TextRaster::fontPath("DejaVuSans-Bold.ttf")) && text.setPixelSize(20.0, 20.0);
    const Rgba white = rgb(0.92, 0.92, 0.9);
    const Rgba black = rgb(0.02, 0.02, 0.02);
    for (int half = 0; half < 2; ++half) {
        const double top = half * height * 0.5;
        // Right-pointing above, left-pointing below: mirror x for the lower half.
        const auto px = [&](double x) { return half == 0 ? x : width - x; };
        paint.rect(std::min(px(14.0), px(196.0)), top + 18.0, std::max(px(14.0), px(196.0)), top + 46.0, white);
        paint.polygon({{px(190.0), top + 6.0}, {px(244.0), top + 32.0}, {px(190.0), top + 58.0}}, white);
        if (font)
            text.drawCentred(image, "ONE WAY", px(105.0), top + 40.0, black, 1.0);
    }
    return image.resized(width, SURFACES[ONE_WAY].height);
}

void CityArt::neonText(Image& image, const char* text, int x0, int y0, int width, int height, Rgba colour,
                       bool vertical) const
{
    TextRaster raster;
    if (!raster.open(TextRaster::fontPath("DejaVuSans-Bold.ttf")))
        return;
    // The tubes as a white mask first: letters, and a frame round the sign.
    Image mask(width, height, Rgba{1.0f, 1.0f, 1.0f, 0.0f});
    const Rgba tube{1.0f, 1.0f, 1.0f, 1.0f};
    const std::string word(text);
    if (vertical) {
        const double size = std::min(width * 0.62, (height - 24.0) / word.size() * 0.95);
        raster.setPixelSize(size, size);
        const double step = (height - 24.0) / word.size();
        for (size_t k = 0; k < word.size(); ++k)
            raster.drawCentred(mask, word.substr(k, 1), width * 0.5, 12.0 + step * (k + 0.8), tube);
    } else {
        const double size = height * 0.72;
        raster.setPixelSize(size * 0.9, size);
        raster.drawCentred(mask, word, width * 0.5, height * 0.5 + size * 0.36, tube, 1.0);
    }
    Painter frame(mask);
    const double inset = vertical ? 4.0 : 2.0;
    const Point corners[4] = {
        {inset, inset}, {width - inset, inset}, {width - inset, height - inset}, {inset, height - inset}};
    for (int k = 0; k < 4; ++k)
        frame.line(corners[k], corners[(k + 1) % 4], 2.0, tube);
    // A hot white core inside the glass, its colour round it, and a wide halo.
    const Image halo = mask.blurred(vertical ? 5.0 : 3.0, Image::Clamp);
    const Rgba core = ColourMath::mix(colour, rgb(1.0, 1.0, 1.0), 0.55);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double a = mask.at(x, y).a;
            const double h = halo.at(x, y).a;
            Rgba& c = image.at(x0 + x, y0 + y);
            c.r = static_cast<float>(std::min(1.0, c.r + core.r * a + colour.r * h * 1.3));
            c.g = static_cast<float>(std::min(1.0, c.g + core.g * a + colour.g * h * 1.3));
            c.b = static_cast<float>(std::min(1.0, c.b + core.b * a + colour.b * h * 1.3));
        }
    }
}

Image CityArt::neon() const
{
    Image image(NEON_SIZE, NEON_SIZE, rgb(0.0, 0.0, 0.0));
    static const char* const blades[BLADE_SIGNS] = {"HOTEL", "BAR", "CLUB", "RAMEN"};
    const auto tubes = [](const float* c) { return rgb(c[0], c[1], c[2]); };
    for (int k = 0; k < BLADE_SIGNS; ++k)
        neonText(image, blades[k], k * BLADE_WIDTH, 0, BLADE_WIDTH, BLADE_HEIGHT, tubes(BLADE_COLOURS[k]), true);
    static const char* const banners[BANNER_SIGNS] = {"OPEN 24H", "NOODLES", "DINER",  "LIVE MUSIC",
                                                      "PIZZA",    "KARAOKE", "TATTOO", "VELMORA"};
    for (int k = 0; k < BANNER_SIGNS; ++k)
        neonText(image, banners[k], (k % 2) * BANNER_WIDTH, BLADE_HEIGHT + (k / 2) * BANNER_HEIGHT, BANNER_WIDTH,
                 BANNER_HEIGHT, tubes(BANNER_COLOURS[k]), false);
    return image;
}

Image CityArt::pool() const
{
    return Image::square(128, [](double u, double v, int, int) {
        const double dx = u * 2.0 - 1.0;
        const double dy = v * 2.0 - 1.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double k = Maths::smoothstep(1.0, 0.0, r);
        return rgb(k * k, k * k, k * k);
    });
}

Image CityArt::beam() const
{
    // Seen from above: the car at the bottom edge, the light spreading and fading up the picture.
    return Image::square(128, [](double u, double v, int, int) {
        const double along = 1.0 - v;
        const double across = (u - 0.5) * 2.0;
        const double width = 0.18 + 0.82 * along;
        const double spread = Maths::exp(-3.0 * (across / width) * (across / width));
        const double reach = Maths::smoothstep(0.0, 0.1, along) * Maths::pow(1.0 - along, 1.4);
        const double k = spread * reach;
        return rgb(k, k, k);
    });
}

Image CityArt::trail() const
{
    Image image(128, 32);
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 128; ++x) {
            const double u = (x + 0.5) / 128.0;
            const double v = (y + 0.5) / 32.0 - 0.5;
            const double k =
                Maths::exp(-v * v / (2.0 * 0.16 * 0.16)) * Maths::pow(1.0 - u, 1.5) * Maths::smoothstep(0.0, 0.04, u);
            image.at(x, y) = rgb(k, k, k);
        }
    }
    return image;
}
