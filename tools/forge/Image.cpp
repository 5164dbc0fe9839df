// Image composition: over-blending, resampling, blur and 8-bit conversion.
#include "Image.h"

#include "Maths.h"

#include <cmath>

namespace {

int edgeIndex(int i, int size, Image::Edge edge)
{
    if (edge == Image::Wrap) {
        const int r = i % size;
        return r < 0 ? r + size : r;
    }
    if (i < 0)
        return 0;
    return i >= size ? size - 1 : i;
}

// Accumulates premultiplied colour so averaging never drags in the colour of clear pixels.
struct Accum {
    double r = 0.0, g = 0.0, b = 0.0, a = 0.0;

    void take(const Rgba& p, double weight)
    {
        const double wa = weight * p.a;
        r += p.r * wa;
        g += p.g * wa;
        b += p.b * wa;
        a += wa;
    }

    Rgba result(double totalWeight) const
    {
        if (a <= 1e-12)
            return Rgba{0.0f, 0.0f, 0.0f, 0.0f};
        return Rgba{(float)(r / a), (float)(g / a), (float)(b / a), (float)(a / totalWeight)};
    }
};

}  // namespace

Image::Image() : w(0), h(0) {}

Image::Image(int width, int height, Rgba fill)
    : w(width > 0 ? width : 0), h(height > 0 ? height : 0), pixels((size_t)w * h, fill)
{
}

Image Image::square(int size, const PixelFunction& pixel)
{
    Image image(size, size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double u = (x + 0.5) / size;
            const double v = (y + 0.5) / size;
            image.at(x, y) = pixel(u, v, x, y);
        }
    }
    return image;
}

Rgba Image::get(int x, int y, Edge edge) const
{
    return at(edgeIndex(x, w, edge), edgeIndex(y, h, edge));
}

Rgba Image::sample(double x, double y, Edge edge) const
{
    const double fx = x - 0.5;
    const double fy = y - 0.5;
    const int x0 = (int)std::floor(fx);
    const int y0 = (int)std::floor(fy);
    const double tx = fx - x0;
    const double ty = fy - y0;
    Accum acc;
    acc.take(get(x0, y0, edge), (1.0 - tx) * (1.0 - ty));
    acc.take(get(x0 + 1, y0, edge), tx * (1.0 - ty));
    acc.take(get(x0, y0 + 1, edge), (1.0 - tx) * ty);
    acc.take(get(x0 + 1, y0 + 1, edge), tx * ty);
    return acc.result(1.0);
}

void Image::fill(Rgba colour)
{
    for (Rgba& p : pixels)
        p = colour;
}

void Image::blend(int x, int y, Rgba c, double coverage)
{
    if (x < 0 || y < 0 || x >= w || y >= h || coverage <= 0.0)
        return;
    Rgba& d = at(x, y);
    const double sa = Maths::clamp(c.a * coverage, 0.0, 1.0);
    const double da = d.a * (1.0 - sa);
    const double oa = sa + da;
    if (oa <= 1e-12) {
        d = Rgba{c.r, c.g, c.b, 0.0f};
        return;
    }
    d.r = (float)((c.r * sa + d.r * da) / oa);
    d.g = (float)((c.g * sa + d.g * da) / oa);
    d.b = (float)((c.b * sa + d.b * da) / oa);
    d.a = (float)oa;
}

void Image::add(int x, int y, Rgba c, double amount)
{
    if (x < 0 || y < 0 || x >= w || y >= h)
        return;
    Rgba& d = at(x, y);
    d.r += (float)(c.r * amount);
    d.g += (float)(c.g * amount);
    d.b += (float)(c.b * amount);
}

Image Image::resizedAxis(int newSize, bool horizontal) const
{
    const int oldSize = horizontal ? w : h;
    Image out(horizontal ? newSize : w, horizontal ? h : newSize);
    const double scale = (double)oldSize / newSize;
    const int lines = horizontal ? h : w;
    for (int n = 0; n < newSize; ++n) {
        for (int line = 0; line < lines; ++line) {
            Accum acc;
            double total = 0.0;
            if (scale > 1.0) {
                // Shrinking: average exactly the source span this pixel covers.
                const double s0 = n * scale;
                const double s1 = s0 + scale;
                for (int s = (int)std::floor(s0); s < (int)std::ceil(s1) && s < oldSize; ++s) {
                    const double weight = std::fmin(s1, s + 1.0) - std::fmax(s0, (double)s);
                    if (weight <= 0.0)
                        continue;
                    acc.take(horizontal ? at(s, line) : at(line, s), weight);
                    total += weight;
                }
            } else {
                const double pos = (n + 0.5) * scale - 0.5;
                const int s0 = (int)std::floor(pos);
                const double t = pos - s0;
                const int a = edgeIndex(s0, oldSize, Clamp);
                const int b = edgeIndex(s0 + 1, oldSize, Clamp);
                acc.take(horizontal ? at(a, line) : at(line, a), 1.0 - t);
                acc.take(horizontal ? at(b, line) : at(line, b), t);
                total = 1.0;
            }
            Rgba& target = horizontal ? out.at(n, line) : out.at(line, n);
            target = acc.result(total);
        }
    }
    return out;
}

Image Image::resized(int newWidth, int newHeight) const
{
    if (newWidth <= 0 || newHeight <= 0 || empty())
        return Image();
    Image across = newWidth == w ? *this : resizedAxis(newWidth, true);
    return newHeight == h ? across : across.resizedAxis(newHeight, false);
}

void Image::boxPass(std::vector<double>& plane, int radius, bool horizontal, Edge edge) const
{
    const double scale = 1.0 / (2 * radius + 1);
    if (!horizontal) {
        // Whole rows at a time with one running sum per column: the memory is walked in order.
        const std::vector<double> source = plane;
        std::vector<double> sums(w, 0.0);
        for (int k = -radius; k <= radius; ++k) {
            const double* row = &source[(size_t)edgeIndex(k, h, edge) * w];
            for (int x = 0; x < w; ++x)
                sums[x] += row[x];
        }
        for (int y = 0; y < h; ++y) {
            double* out = &plane[(size_t)y * w];
            const double* enter = &source[(size_t)edgeIndex(y + radius + 1, h, edge) * w];
            const double* leave = &source[(size_t)edgeIndex(y - radius, h, edge) * w];
            for (int x = 0; x < w; ++x) {
                out[x] = sums[x] * scale;
                sums[x] += enter[x] - leave[x];
            }
        }
        return;
    }
    // The row with its edge pixels laid out on both sides, so the loop needs no index rule.
    std::vector<double> line(w + 2 * radius + 1);
    for (int y = 0; y < h; ++y) {
        double* row = &plane[(size_t)y * w];
        for (int i = -radius; i <= w + radius; ++i)
            line[i + radius] = row[edgeIndex(i, w, edge)];
        double sum = 0.0;
        for (int k = 0; k <= 2 * radius; ++k)
            sum += line[k];
        for (int x = 0; x < w; ++x) {
            row[x] = sum * scale;
            sum += line[x + 2 * radius + 1] - line[x];
        }
    }
}

Image Image::blurred(double sigma, Edge edge) const
{
    if (sigma <= 0.0 || empty())
        return *this;
    // Three box passes per axis approach a Gaussian of this sigma closely.
    const int passes = 3;
    int lower = (int)std::floor(std::sqrt(12.0 * sigma * sigma / passes + 1.0));
    if (lower % 2 == 0)
        --lower;
    const int upper = lower + 2;
    const double m =
        (12.0 * sigma * sigma - passes * lower * lower - 4.0 * passes * lower - 3.0 * passes) / (-4.0 * lower - 4.0);
    const int lowerCount = (int)std::floor(m + 0.5);

    const size_t count = (size_t)w * h;
    std::vector<double> planes[4];
    for (std::vector<double>& p : planes)
        p.resize(count);
    for (size_t i = 0; i < count; ++i) {
        const Rgba& p = pixels[i];
        planes[0][i] = p.r * p.a;
        planes[1][i] = p.g * p.a;
        planes[2][i] = p.b * p.a;
        planes[3][i] = p.a;
    }
    for (int pass = 0; pass < passes; ++pass) {
        const int radius = ((pass < lowerCount ? lower : upper) - 1) / 2;
        for (std::vector<double>& p : planes) {
            boxPass(p, radius, true, edge);
            boxPass(p, radius, false, edge);
        }
    }
    Image out(w, h);
    for (size_t i = 0; i < count; ++i) {
        const double a = planes[3][i];
        if (a <= 1e-9)
            continue;
        out.pixels[i] = Rgba{(float)(planes[0][i] / a), (float)(planes[1][i] / a), (float)(planes[2][i] / a), (float)a};
    }
    return out;
}

uint8_t Image::toByte(float v)
{
    if (!(v > 0.0f))
        return 0;
    if (v >= 1.0f)
        return 255;
    return (uint8_t)std::floor(v * 255.0f + 0.5f);
}

std::vector<uint8_t> Image::toBytes(int channels) const
{
    std::vector<uint8_t> bytes;
    if (channels != 3 && channels != 4)
        return bytes;
    bytes.reserve((size_t)w * h * channels);
    for (const Rgba& p : pixels) {
        bytes.push_back(toByte(p.r));
        bytes.push_back(toByte(p.g));
        bytes.push_back(toByte(p.b));
        if (channels == 4)
            bytes.push_back(toByte(p.a));
    }
    return bytes;
}
