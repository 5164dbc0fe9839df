// Text through FreeType: measuring and drawing anti-aliased strings into an Image.
#pragma once

#include "Image.h"

#include <cstdint>
#include <string>
#include <vector>

struct FT_LibraryRec_;
struct FT_FaceRec_;

class TextRaster {
public:
    // One rendered glyph: coverage rows top first; left and top place it against the pen.
    struct Glyph {
        int width = 0;
        int height = 0;
        int left = 0;
        int top = 0;
        double advance = 0.0;
        std::vector<uint8_t> coverage;
    };

    TextRaster();
    ~TextRaster();
    TextRaster(const TextRaster&) = delete;
    TextRaster& operator=(const TextRaster&) = delete;

    // The system's DejaVu fonts live here.
    static std::string fontPath(const std::string& fileName);

    bool open(const std::string& path);
    bool isOpen() const { return face != nullptr; }
    // Em size in pixels; a width unlike the height stretches the glyphs.
    bool setPixelSize(double width, double height);
    // Hinting snaps small glyphs to the pixel grid; large display text looks better without.
    void setHinting(bool on) { hinting = on; }

    // Renders one character with the pen at a fractional offset (0 <= offset < 1).
    bool renderGlyph(unsigned long code, Glyph& out, double offsetX = 0.0);
    // Pen advance of a string with `tracking` extra pixels after every character but the last.
    double measure(const std::string& text, double tracking = 0.0);
    // Draws with the baseline's left end at (x, baseline); returns the advance.
    double draw(Image& image, const std::string& text, double x, double baseline, Rgba colour, double tracking = 0.0);
    double drawCentred(Image& image, const std::string& text, double centreX, double baseline, Rgba colour,
                       double tracking = 0.0);
    // Distance from baseline to the top of capitals, in pixels.
    double capHeight();

private:
    double kerning(unsigned long left, unsigned long right) const;

    FT_LibraryRec_* library;
    FT_FaceRec_* face;
    bool hinting;
};
