// White ink on clear texels: the scene reads the picture as luminance with alpha and tints the trail itself.
#include "CreditsArt.h"

#include "Maths.h"
#include "Painter.h"
#include "TextRaster.h"

#include <iostream>

namespace {

const Rgba white{1.0f, 1.0f, 1.0f, 1.0f};
const Rgba soft{1.0f, 1.0f, 1.0f, 0.78f};

void whiten(Image& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            Rgba& p = image.at(x, y);
            p.r = p.g = p.b = 1.0f;
        }
    }
}

// Copies a cell-sized picture into the texture at a texel offset.
void place(Image& target, const Image& cell, int ox, int oy)
{
    for (int y = 0; y < cell.height(); ++y)
        for (int x = 0; x < cell.width(); ++x)
            target.at(ox + x, oy + y) = cell.at(x, y);
}

// A short rule with a diamond in the middle, the credits' one ornament.
void ornament(Image& canvas, double cx, double y, double halfWidth)
{
    Painter paint(canvas);
    paint.line(Point{cx - halfWidth, y}, Point{cx - 18.0, y}, 2.5, soft);
    paint.line(Point{cx + 18.0, y}, Point{cx + halfWidth, y}, 2.5, soft);
    paint.polygon({{cx, y - 9.0}, {cx + 9.0, y}, {cx, y + 9.0}, {cx - 9.0, y}}, white);
}

// Centred text at the wanted size, shrunk as a whole when it would be wider than the canvas allows.
void fitted(Image& canvas, TextRaster& text, const std::string& line, double size, double tracking, double baseline,
            Rgba colour)
{
    const double maxWidth = CreditsArt::designWidth * 0.84;
    text.setPixelSize(size, size);
    const double width = text.measure(line, tracking);
    if (width > maxWidth) {
        const double k = maxWidth / width;
        size *= k;
        tracking *= k;
        text.setPixelSize(size, size);
    }
    text.drawCentred(canvas, line, CreditsArt::designWidth * 0.5, baseline, colour, tracking);
}

}  // namespace

void CreditsArt::drawTitle(Image& canvas, TextRaster& sans, TextRaster& serif)
{
    const double cx = designWidth * 0.5;
    fitted(canvas, sans, "QUORVEX CO", 46.0, 16.0, 235.0, white);
    fitted(canvas, serif, "presents", 48.0, 3.0, 312.0, soft);
    fitted(canvas, serif, "VELMORA", 168.0, 10.0, 492.0, white);
    ornament(canvas, cx, 560.0, 250.0);
}

void CreditsArt::drawRole(Image& canvas, TextRaster& sans, TextRaster& serif, const std::string& role,
                          const std::string& name)
{
    const double cx = designWidth * 0.5;
    fitted(canvas, serif, role, 64.0, 6.0, 290.0, soft);
    ornament(canvas, cx, 335.0, 160.0);
    fitted(canvas, sans, name, 128.0, 10.0, 490.0, white);
    fitted(canvas, sans, "QUORVEX CO", 30.0, 12.0, 570.0, soft);
}

bool CreditsArt::drawCredit(int index, Image& canvas)
{
    TextRaster sans;
    TextRaster serif;
    if (!sans.open(TextRaster::fontPath("DejaVuSans-Bold.ttf")) ||
        !serif.open(TextRaster::fontPath("DejaVuSerif-Bold.ttf")))
        return false;
    sans.setHinting(false);
    serif.setHinting(false);
    if (index == 0)
        drawTitle(canvas, sans, serif);
    else if (index == 1)
        drawRole(canvas, sans, serif, "code", "KESTREL");
    else if (index == 2)
        drawRole(canvas, sans, serif, "graphics", "NYX ARDENT");
    else
        drawRole(canvas, sans, serif, "music", "SABLE");
    return true;
}

Image CreditsArt::glowOf(const Image& sharp)
{
    // A tight blur for the shape and a wide one for the bloom around it, faint: the trail
    // stacks fifteen copies over the sharp picture and must not bury it.
    const Image near = sharp.blurred(9.0, Image::Clamp);
    const Image far = sharp.blurred(26.0, Image::Clamp);
    Image glow(sharp.width(), sharp.height(), Rgba{1.0f, 1.0f, 1.0f, 0.0f});
    for (int y = 0; y < glow.height(); ++y) {
        for (int x = 0; x < glow.width(); ++x) {
            const double a = 0.5 * near.at(x, y).a + 0.35 * far.at(x, y).a;
            glow.at(x, y).a = (float)Maths::clamp(a, 0.0, 1.0);
        }
    }
    return glow;
}

Image CreditsArt::compose()
{
    Image texture(cellSize * 2, cellSize * 4, Rgba{1.0f, 1.0f, 1.0f, 0.0f});
    for (int i = 0; i < 4; ++i) {
        Image canvas(designWidth, designHeight, Rgba{1.0f, 1.0f, 1.0f, 0.0f});
        if (!drawCredit(i, canvas))
            return Image();
        Image sharp = canvas.resized(cellSize, cellSize);
        Image blurred = glowOf(canvas).resized(cellSize, cellSize);
        whiten(sharp);
        whiten(blurred);
        place(texture, sharp, 0, cellSize * i);
        place(texture, blurred, cellSize, cellSize * i);
    }
    return texture;
}
