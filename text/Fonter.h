// One TrueType font drawn through FTGL in a chosen rendering style.
#pragma once

class FTFont;

class Fonter {
public:
    // The FTGL style a font is drawn with; 0 and anything above 6 name none.
    enum Type { NONE = 0, BITMAP = 1, PIXMAP = 2, OUTLINE = 3, POLYGON = 4, EXTRUDED = 5, TEXTURE = 6 };

    Fonter();
    ~Fonter();
    Fonter(const Fonter&) = delete;
    Fonter& operator=(const Fonter&) = delete;

    // False when a font is loaded already, the file is null or unreadable, or the type names
    // no style. The size is truncated to whole points at 72 dots per inch.
    bool loadTTF(const char* file, Type type, float size, float depth);

    // Drawing and measuring need a loaded font: callers load first.
    void draw(const char* text);
    void draw(const wchar_t* text);
    float getAscender() const;
    float getDescender() const;
    float getAdvance(const char* text) const;
    float getAdvance(const wchar_t* text) const;

    Type getType() const { return type; }
    bool isLoaded() const { return font != nullptr; }
    // The face size FTGL was given; 0 before a load.
    unsigned getFaceSize() const;

    // The FTGL object for a style: a new font over the file, or null for no style.
    static FTFont* createFont(const char* file, Type type);

private:
    Type type;
    FTFont* font;
};
