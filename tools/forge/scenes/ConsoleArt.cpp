// The backdrop is shown at 60 % over the scene, so it only needs to be dark, calm and faintly textured.
#include "ConsoleArt.h"

#include "Forge.h"

#include "GlyphAtlas.h"
#include "Maths.h"
#include "Noise.h"
#include "TextRaster.h"
#include "text/Console.h"

#include <iostream>

bool ConsoleArt::build(Forge& forge)
{
    const bool font = buildFont(forge);
    const bool background = buildBackground(forge);
    return font && background;
}

bool ConsoleArt::buildFont(Forge& forge)
{
    GlyphAtlas atlas;
    if (!atlas.build(TextRaster::fontPath("DejaVuSansMono-Bold.ttf"))) {
        std::cerr << "velmora-forge: cannot use the console font\n";
        return false;
    }
    return forge.savePicture(Console::FONT_TEXTURE, atlas.image());
}

bool ConsoleArt::buildBackground(Forge& forge)
{
    const int size = 256;
    Noise noise(0xC0FFEEu);
    Image image = Image::square(size, [&](double u, double v, int, int y) {
        // Deep blue-grey, a touch lighter at the top, darker into the corners.
        const double dx = u - 0.5;
        const double dy = v - 0.45;
        const double vignette = 1.0 - Maths::smoothstep(0.2, 0.75, dx * dx * 1.6 + dy * dy * 2.0);
        const double cloud = 0.5 + 0.5 * noise.fbm(u * 4.0, v * 4.0, 4, 5);
        const double scan = (y % 2 == 0) ? 1.0 : 0.86;
        const double light = (0.55 + 0.45 * vignette) * (0.8 + 0.35 * cloud) * scan * (1.1 - 0.35 * v);
        return Rgba{(float)(0.035 * light), (float)(0.05 * light), (float)(0.095 * light), 1.0f};
    });
    // A faint rule along the top edge frames the text area.
    for (int x = 0; x < size; ++x) {
        Rgba& p = image.at(x, 3);
        p.r += 0.05f;
        p.g += 0.09f;
        p.b += 0.14f;
    }
    return forge.savePicture(Console::BACKGROUND_TEXTURE, image);
}
