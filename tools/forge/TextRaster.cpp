// FreeType glue: glyphs are rendered with the pen's sub-pixel offset so spacing stays even.
#include "TextRaster.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cmath>

TextRaster::TextRaster() : library(nullptr), face(nullptr), hinting(true) {}

TextRaster::~TextRaster()
{
    if (face)
        FT_Done_Face(face);
    if (library)
        FT_Done_FreeType(library);
}

std::string TextRaster::fontPath(const std::string& fileName)
{
    return "/usr/share/fonts/truetype/dejavu/" + fileName;
}

bool TextRaster::open(const std::string& path)
{
    if (face) {
        FT_Done_Face(face);
        face = nullptr;
    }
    if (!library && FT_Init_FreeType(&library) != 0) {
        library = nullptr;
        return false;
    }
    if (FT_New_Face(library, path.c_str(), 0, &face) != 0) {
        face = nullptr;
        return false;
    }
    return true;
}

bool TextRaster::setPixelSize(double width, double height)
{
    if (!face || width <= 0.0 || height <= 0.0)
        return false;
    const FT_F26Dot6 w = (FT_F26Dot6)std::lround(width * 64.0);
    const FT_F26Dot6 h = (FT_F26Dot6)std::lround(height * 64.0);
    return FT_Set_Char_Size(face, w, h, 72, 72) == 0;
}

bool TextRaster::renderGlyph(unsigned long code, Glyph& out, double offsetX)
{
    out = Glyph();
    if (!face)
        return false;
    FT_Vector delta;
    delta.x = (FT_Pos)std::lround(offsetX * 64.0);
    delta.y = 0;
    FT_Set_Transform(face, nullptr, &delta);
    const FT_Int32 flags = FT_LOAD_RENDER | (hinting ? FT_LOAD_DEFAULT : FT_LOAD_NO_HINTING);
    const FT_Error error = FT_Load_Char(face, code, flags);
    FT_Set_Transform(face, nullptr, nullptr);
    if (error != 0)
        return false;
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY && bitmap.rows > 0)
        return false;
    out.width = (int)bitmap.width;
    out.height = (int)bitmap.rows;
    out.left = slot->bitmap_left;
    out.top = slot->bitmap_top;
    out.advance = hinting ? slot->advance.x / 64.0 : slot->linearHoriAdvance / 65536.0;
    out.coverage.resize((size_t)out.width * out.height);
    for (int y = 0; y < out.height; ++y) {
        const unsigned char* row = bitmap.buffer + (long)y * bitmap.pitch;
        for (int x = 0; x < out.width; ++x)
            out.coverage[(size_t)y * out.width + x] = row[x];
    }
    return true;
}

double TextRaster::kerning(unsigned long left, unsigned long right) const
{
    if (!face || !FT_HAS_KERNING(face))
        return 0.0;
    FT_Vector k;
    const FT_UInt a = FT_Get_Char_Index(face, left);
    const FT_UInt b = FT_Get_Char_Index(face, right);
    if (FT_Get_Kerning(face, a, b, FT_KERNING_UNFITTED, &k) != 0)
        return 0.0;
    return k.x / 64.0;
}

double TextRaster::measure(const std::string& text, double tracking)
{
    double pen = 0.0;
    Glyph g;
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned long code = (unsigned char)text[i];
        if (i > 0)
            pen += tracking + kerning((unsigned char)text[i - 1], code);
        if (renderGlyph(code, g))
            pen += g.advance;
    }
    return pen;
}

double TextRaster::draw(Image& image, const std::string& text, double x, double baseline, Rgba colour, double tracking)
{
    double pen = x;
    const int base = (int)std::lround(baseline);
    Glyph g;
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned long code = (unsigned char)text[i];
        if (i > 0)
            pen += tracking + kerning((unsigned char)text[i - 1], code);
        const double whole = std::floor(pen);
        if (!renderGlyph(code, g, pen - whole))
            continue;
        for (int gy = 0; gy < g.height; ++gy) {
            for (int gx = 0; gx < g.width; ++gx) {
                const uint8_t c = g.coverage[(size_t)gy * g.width + gx];
                if (c)
                    image.blend((int)whole + g.left + gx, base - g.top + gy, colour, c / 255.0);
            }
        }
        pen += g.advance;
    }
    return pen - x;
}

double TextRaster::drawCentred(Image& image, const std::string& text, double centreX, double baseline, Rgba colour,
                               double tracking)
{
    const double width = measure(text, tracking);
    return draw(image, text, centreX - width * 0.5, baseline, colour, tracking);
}

double TextRaster::capHeight()
{
    Glyph g;
    if (!renderGlyph('H', g))
        return 0.0;
    return g.top;
}
