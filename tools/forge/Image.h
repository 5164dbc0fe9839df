// A floating-point RGBA picture with the few operations the generators compose with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// Straight (not premultiplied) colour, each channel nominally in [0, 1].
struct Rgba {
    float r;
    float g;
    float b;
    float a;
};

class Image {
public:
    enum Edge { Clamp, Wrap };

    Image();
    Image(int width, int height, Rgba fill = Rgba{0.0f, 0.0f, 0.0f, 0.0f});

    // A size x size picture whose pixel (x, y) is pixel(u, v, x, y), u and v
    // being the pixel centre in [0, 1]; rows are filled top first.
    using PixelFunction = std::function<Rgba(double u, double v, int x, int y)>;
    static Image square(int size, const PixelFunction& pixel);

    int width() const { return w; }
    int height() const { return h; }
    bool empty() const { return w == 0 || h == 0; }

    // Pixel access; coordinates outside the picture are the caller's fault.
    Rgba& at(int x, int y) { return pixels[(size_t)y * w + x]; }
    const Rgba& at(int x, int y) const { return pixels[(size_t)y * w + x]; }
    // Pixel access that follows the edge rule instead of failing.
    Rgba get(int x, int y, Edge edge) const;
    // Bilinear sample at pixel-centre coordinates (0.5, 0.5 is the first pixel's centre).
    Rgba sample(double x, double y, Edge edge) const;

    void fill(Rgba colour);
    // Composites colour over the pixel with the given coverage; no effect outside.
    void blend(int x, int y, Rgba colour, double coverage);
    // Adds colour × amount to the pixel's colour channels; alpha is left alone.
    void add(int x, int y, Rgba colour, double amount);

    // A copy scaled to the new size: area averaging when shrinking, bilinear when growing.
    Image resized(int newWidth, int newHeight) const;
    // Gaussian blur, weighting colour by alpha so transparent pixels lend no colour.
    Image blurred(double sigma, Edge edge) const;

    // 8-bit rows, top row first, with 3 (RGB) or 4 (RGBA) bytes a pixel; empty otherwise.
    std::vector<uint8_t> toBytes(int channels) const;
    static uint8_t toByte(float v);

private:
    Image resizedAxis(int newSize, bool horizontal) const;
    void boxPass(std::vector<double>& plane, int radius, bool horizontal, Edge edge) const;

    int w;
    int h;
    std::vector<Rgba> pixels;
};
