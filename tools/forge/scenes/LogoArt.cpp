// The sheet only ever shows the first eleven twelfths of each axis and its edges ripple
// out of view, so everything that matters sits well inside that window.
#include "LogoArt.h"

#include "ColourMath.h"
#include "Maths.h"
#include "Noise.h"
#include "Painter.h"
#include "TextRaster.h"

#include <cmath>
#include <iostream>

namespace {

// Centre of the part of the picture the sheet shows.
const double centreX = LogoArt::designWidth * 11.0 / 24.0;
const double emblemY = LogoArt::designHeight * 0.37;
const double emblemRadius = 150.0;

const Rgba navy{0.05f, 0.07f, 0.22f, 1.0f};
const Rgba gold{1.0f, 0.78f, 0.25f, 1.0f};
const Rgba white{1.0f, 1.0f, 1.0f, 1.0f};

}  // namespace

void LogoArt::stamp(Image& canvas, const Image& mask, const std::function<Rgba(int, int)>& colour, int dx, int dy)
{
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const float a = mask.at(x, y).a;
            if (a > 0.0f)
                canvas.blend(x + dx, y + dy, colour(x + dx, y + dy), a);
        }
    }
}

Image LogoArt::outlineOf(const Image& mask, double width)
{
    const Image spread = mask.blurred(width * 0.5, Image::Clamp);
    Image outline(mask.width(), mask.height());
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            outline.at(x, y) = Rgba{1.0f, 1.0f, 1.0f, (float)Maths::smoothstep(0.02, 0.16, spread.at(x, y).a)};
    return outline;
}

void LogoArt::drawBackground(Image& canvas) const
{
    Noise noise(0x10C0u);
    const Rgba core{1.0f, 0.9f, 0.55f, 1.0f};
    const Rgba rayA{1.0f, 0.6f, 0.16f, 1.0f};
    const Rgba rayB{0.95f, 0.38f, 0.12f, 1.0f};
    const Rgba rim{0.42f, 0.06f, 0.22f, 1.0f};
    for (int y = 0; y < designHeight; ++y) {
        for (int x = 0; x < designWidth; ++x) {
            const double dx = x + 0.5 - centreX;
            const double dy = y + 0.5 - emblemY;
            const double r = std::sqrt(dx * dx + dy * dy) / designHeight;
            const double angle = Maths::atan2(dy, dx);
            // Twenty-four rays with soft edges, slightly wavering.
            const double wave = Maths::cos(angle * 24.0 + 0.6 * noise.gradient(r * 6.0, angle, 8));
            const double ray = Maths::smoothstep(-0.25, 0.25, wave);
            Rgba c = ColourMath::mix(rayB, rayA, ray);
            c = ColourMath::mix(core, c, Maths::smoothstep(0.0, 0.35, r));
            c = ColourMath::mix(c, rim, Maths::smoothstep(0.3, 0.95, r));
            canvas.at(x, y) = c;
        }
    }
}

void LogoArt::drawEmblem(Image& canvas) const
{
    Image mask(designWidth, designHeight);
    Painter(mask).disc(centreX, emblemY, emblemRadius + 16.0, white);
    // Drop shadow, then the disc with a white rim.
    stamp(
        canvas, mask.blurred(10.0, Image::Clamp),
        [](int, int) {
            return Rgba{0.2f, 0.02f, 0.05f, 0.55f};
        },
        14, 16);
    Painter paint(canvas);
    paint.disc(centreX, emblemY, emblemRadius + 16.0, white);
    paint.disc(centreX, emblemY, emblemRadius, navy);

    // Night sky inside: a glow behind a crescent moon over three waves.
    const double mx = centreX - 38.0;
    const double my = emblemY - 52.0;
    paint.glow(mx, my, 55.0, Rgba{0.25f, 0.35f, 0.7f, 1.0f}, 0.6);
    Image moon(designWidth, designHeight);
    Painter(moon).disc(mx, my, 46.0, gold);
    Painter cut(moon);
    for (int y = 0; y < designHeight; ++y)
        for (int x = 0; x < designWidth; ++x) {
            const double d = std::sqrt((x + 0.5 - mx - 22.0) * (x + 0.5 - mx - 22.0) +
                                       (y + 0.5 - my + 12.0) * (y + 0.5 - my + 12.0));
            moon.at(x, y).a *= (float)Maths::clamp(d - 40.0, 0.0, 1.0);
        }
    stamp(canvas, moon, [](int, int) { return gold; });
    Painter stars(canvas);
    stars.disc(centreX + 60.0, emblemY - 80.0, 5.0, white);
    stars.disc(centreX + 95.0, emblemY - 30.0, 3.5, white);
    stars.disc(centreX + 30.0, emblemY - 110.0, 3.0, white);

    for (int w = 0; w < 3; ++w) {
        const double baseY = emblemY + 30.0 + w * 34.0;
        const double half = std::sqrt(emblemRadius * emblemRadius - (baseY - emblemY) * (baseY - emblemY)) - 22.0;
        Point last{centreX - half, baseY};
        for (int i = 1; i <= 48; ++i) {
            const double x = centreX - half + 2.0 * half * i / 48.0;
            const Point next{x, baseY + 9.0 * Maths::sin((x - centreX) / 26.0 + w * 1.3)};
            paint.line(last, next, 9.0 - w * 1.5, w == 0 ? white : Rgba{0.55f, 0.75f, 1.0f, 1.0f});
            last = next;
        }
    }
}

bool LogoArt::drawWordmark(Image& canvas) const
{
    TextRaster sans;
    if (!sans.open(TextRaster::fontPath("DejaVuSans-Bold.ttf")))
        return false;
    sans.setHinting(false);
    Image word(designWidth, designHeight);
    const double baseline = emblemY + emblemRadius + 210.0;
    sans.setPixelSize(176.0, 190.0);
    const double wordWidth = sans.measure("QUORVEX", 6.0);
    const double scale = std::min(1.0, designWidth * 0.74 / wordWidth);
    sans.setPixelSize(176.0 * scale, 190.0 * scale);
    sans.drawCentred(word, "QUORVEX", centreX, baseline, white, 6.0 * scale);

    const Image outline = outlineOf(word, 16.0);
    stamp(
        canvas, outline.blurred(8.0, Image::Clamp),
        [](int, int) {
            return Rgba{0.2f, 0.02f, 0.05f, 0.6f};
        },
        12, 16);
    stamp(canvas, outline, [](int, int) { return navy; });
    const double top = baseline - sans.capHeight();
    stamp(canvas, word, [=](int, int y) {
        const double t = Maths::clamp((y - top) / (baseline - top), 0.0, 1.0);
        return ColourMath::mix(white, Rgba{1.0f, 0.86f, 0.5f, 1.0f}, t * t);
    });

    // "CO" in gold on a navy pill under the name.
    const double pillY = baseline + 70.0;
    Painter paint(canvas);
    paint.roundRect(centreX - 115.0, pillY - 38.0, centreX + 115.0, pillY + 38.0, 38.0, white);
    paint.roundRect(centreX - 107.0, pillY - 30.0, centreX + 107.0, pillY + 30.0, 30.0, navy);
    sans.setPixelSize(50.0, 50.0);
    sans.drawCentred(canvas, "C O", centreX, pillY + sans.capHeight() * 0.5, gold, 14.0);
    return true;
}

Image LogoArt::compose()
{
    Image canvas(designWidth, designHeight);
    drawBackground(canvas);
    drawEmblem(canvas);
    if (!drawWordmark(canvas))
        return Image();
    return canvas.resized(size, size);
}
