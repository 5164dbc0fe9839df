// The opening credits texture: four credit pictures stacked, sharp on the left, blurred on the right.
#pragma once

#include "Image.h"

#include <string>

class TextRaster;

class CreditsArt {
public:
    // Each picture is drawn on a 4:3 canvas, the shape of the quad that shows it.
    static constexpr int designWidth = 1024;
    static constexpr int designHeight = 768;
    // One quarter of a half of the texture.
    static constexpr int cellSize = 512;

    // The texture itself, for tests; empty when the fonts are missing.
    Image compose();

private:
    bool drawCredit(int index, Image& canvas);
    void drawTitle(Image& canvas, TextRaster& sans, TextRaster& serif);
    void drawRole(Image& canvas, TextRaster& sans, TextRaster& serif, const std::string& role, const std::string& name);
    static Image glowOf(const Image& sharp);
};
