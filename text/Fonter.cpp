// The font front end: picks the FTGL style, opens the face and forwards drawing and metrics.
#include "text/Fonter.h"

#include <FTGL/ftgl.h>

namespace {

// Truncated toward zero; sizes FTGL cannot take (negative, NaN, huge) become 0.
unsigned pointsOf(float size)
{
    if (!(size > 0.0f) || size >= 65536.0f)
        return 0u;
    return static_cast<unsigned>(size);
}

}  // namespace

Fonter::Fonter() : type(NONE), font(nullptr) {}

Fonter::~Fonter()
{
    delete font;
    font = nullptr;
}

FTFont* Fonter::createFont(const char* file, Type type)
{
    switch (type) {
        case BITMAP:
            return new FTGLBitmapFont(file);
        case PIXMAP:
            return new FTGLPixmapFont(file);
        case OUTLINE:
            return new FTGLOutlineFont(file);
        case POLYGON:
            return new FTGLPolygonFont(file);
        case EXTRUDED:
            return new FTGLExtrdFont(file);
        case TEXTURE:
            return new FTGLTextureFont(file);
        default:
            return nullptr;
    }
}

bool Fonter::loadTTF(const char* file, Type style, float size, float depth)
{
    if (font || !file)
        return false;
    FTFont* created = createFont(file, style);
    if (!created)
        return false;
    // FTGL opens the face in its constructor and reports a failure through Error().
    if (created->Error()) {
        delete created;
        return false;
    }
    created->FaceSize(pointsOf(size), 72);
    created->Depth(depth);
    created->CharMap(ft_encoding_unicode);
    font = created;
    type = style;
    return true;
}

void Fonter::draw(const char* text)
{
    font->Render(text);
}

void Fonter::draw(const wchar_t* text)
{
    font->Render(text);
}

float Fonter::getAscender() const
{
    return font->Ascender();
}

float Fonter::getDescender() const
{
    return font->Descender();
}

float Fonter::getAdvance(const char* text) const
{
    return font->Advance(text);
}

float Fonter::getAdvance(const wchar_t* text) const
{
    return font->Advance(text);
}

unsigned Fonter::getFaceSize() const
{
    return font ? font->FaceSize() : 0u;
}
