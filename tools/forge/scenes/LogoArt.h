// The group's logo for the rippling full-screen sheet.
#pragma once

#include "Image.h"

#include <functional>

class LogoArt {
public:
    // Drawn on a 4:3 canvas, the shape of the screen, then fitted to a square texture.
    static constexpr int designWidth = 1280;
    static constexpr int designHeight = 960;
    static constexpr int size = 1024;

    // The finished texture; empty when the fonts are missing.
    Image compose();

private:
    void drawBackground(Image& canvas) const;
    void drawEmblem(Image& canvas) const;
    bool drawWordmark(Image& canvas) const;
    // Lays a mask's alpha onto the canvas in a colour that may vary with position.
    static void stamp(Image& canvas, const Image& mask, const std::function<Rgba(int, int)>& colour, int dx = 0,
                      int dy = 0);
    static Image outlineOf(const Image& mask, double width);
};
