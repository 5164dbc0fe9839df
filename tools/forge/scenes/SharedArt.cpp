// Pictures several scenes share: the ship's planks and sails, and the soft glow every particle cluster draws.
#include "SharedArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Random.h"

#include <cmath>

void SharedArt::hullPlanks(Image& image, int x0, int y0, int w, int h) const
{
    Noise noise(0x4811u);
    const int plank = 16;
    const Rgba wood{0.42f, 0.24f, 0.13f, 1.0f};
    const Rgba trim{0.78f, 0.58f, 0.2f, 1.0f};
    for (int y = 0; y < h; ++y) {
        const int row = y / plank;
        const int within = y % plank;
        // Planks are laid with staggered butt joints.
        const int offset = (int)(Random::hash(row, 0, 0x77u) % (uint32_t)w);
        const double tone = 0.8 + 0.35 * ((Random::hash(row, 1, 0x77u) & 255u) / 255.0);
        for (int x = 0; x < w; ++x) {
            const double u = (double)x / w;
            const double v = (double)y / h;
            const double streak = noise.fbm(u * 2.0, v * 48.0, 2, 4);
            double k = tone * (0.86 + 0.22 * streak) + 0.05 * Random::grain(x, y, 3u);
            if (within == 0 || within == plank - 1)
                k *= 0.45;
            const int along = (x + offset) % 128;
            if (along < 2)
                k *= 0.5;
            if ((along == 6 || along == 121) && (within == 4 || within == 11))
                k *= 0.3;  // nail heads
            Rgba c = ColourMath::shade(wood, k);
            // A painted strake runs along the top of the hull.
            if (y >= plank && y < plank + 6)
                c = ColourMath::shade(trim, 0.9 + 0.1 * streak);
            image.at(x0 + x, y0 + y) = c;
        }
    }
}

void SharedArt::sailCloth(Image& image, int x0, int y0, int w, int h) const
{
    Noise noise(0x5A11u);
    const Rgba cloth{0.9f, 0.86f, 0.75f, 1.0f};
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const double u = (double)x / w;
            const double v = (double)y / h;
            const double weather = 0.5 + 0.5 * noise.fbm(u * 3.0, v * 3.0, 3, 4);
            double k = 0.8 + 0.15 * weather + 0.04 * Random::grain(x, y, 9u);
            const int seam = x % 16;
            if (seam == 0)
                k *= 0.72;
            else if (seam == 1 && (y % 4) < 2)
                k *= 0.85;  // stitching beside the seam
            if (y % 32 == 0)
                k *= 0.86;  // reef line
            image.at(x0 + x, y0 + y) = ColourMath::shade(cloth, k);
        }
    }
}

void SharedArt::deckPlanks(Image& image, int x0, int y0, int w, int h) const
{
    Noise noise(0xDEC4u);
    const Rgba deck{0.66f, 0.51f, 0.34f, 1.0f};
    const Rgba mast{0.2f, 0.12f, 0.07f, 1.0f};
    const int deckHeight = h * 3 / 4;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const double u = (double)x / w;
            const double v = (double)y / h;
            const double streak = noise.fbm(u * 24.0, v * 2.0, 24, 4);
            if (y >= deckHeight) {
                image.at(x0 + x, y0 + y) =
                    ColourMath::shade(mast, 0.85 + 0.25 * streak + 0.06 * Random::grain(x, y, 5u));
                continue;
            }
            const int column = x / 12;
            const double tone = 0.85 + 0.25 * ((Random::hash(column, 2, 0x99u) & 255u) / 255.0);
            double k = tone * (0.88 + 0.18 * streak) + 0.04 * Random::grain(x, y, 4u);
            if (x % 12 == 0)
                k *= 0.4;
            image.at(x0 + x, y0 + y) = ColourMath::shade(deck, k);
        }
    }
}

Image SharedArt::ship() const
{
    const int size = 256;
    Image image(size, size);
    hullPlanks(image, 0, 0, size, size / 2);
    sailCloth(image, 0, size / 2, size / 2, size / 2);
    deckPlanks(image, size / 2, size / 2, size / 2, size / 2);
    return image;
}

Image SharedArt::particle() const
{
    return Image::square(128, [](double u, double v, int, int) {
        const double dx = u * 2.0 - 1.0;
        const double dy = v * 2.0 - 1.0;
        const double r2 = dx * dx + dy * dy;
        // A hot core inside a wide soft halo, faded to nothing before the edge.
        const double core = Maths::exp(-r2 / (2.0 * 0.12 * 0.12));
        const double halo = Maths::exp(-r2 / (2.0 * 0.35 * 0.35));
        const double edge = 1.0 - Maths::smoothstep(0.6, 0.98, std::sqrt(r2));
        const double i = Maths::clamp((0.55 * core + 0.6 * halo) * edge, 0.0, 1.0);
        return Rgba{(float)i, (float)i, (float)i, (float)i};
    });
}
