// The process-wide text overlay: a ring of wrapped, colour-coded lines and immediate text.
#pragma once

#include "math/Color.h"
#include "texture/TextureFormat.h"

class Material;

class Console {
public:
    static const int LINE_COUNT = 256;
    static const int WIDTH = 53;
    // Codes up to this value are stored in a line; anything above means "no colour code".
    static const int LAST_COLOUR_CODE = 23;
    // The code of a line that carries none: red, green and blue at 0.8.
    static const int PLAIN_COLOUR = 7;
    static const int FORMAT_BUFFER_SIZE = 4096;
    // The glyph atlas and the backdrop, in the formats they are drawn with.
    static constexpr TextureFile FONT_TEXTURE{"data/confont.png", TEXTURE_RGBA};
    static constexpr TextureFile BACKGROUND_TEXTURE{"data/conbg2.png", TEXTURE_RGB};
    // The fixed view every console drawing uses, whatever the window size.
    static const int VIEW_WIDTH = 640;
    static const int VIEW_HEIGHT = 480;
    // The row the oldest drawn line sits at: just above the view's top edge.
    static const int TOP_ROW = 40;

    // One glyph's corners in drawing order: texture coordinate, then position.
    struct GlyphQuad {
        float u[4];
        float v[4];
        float x[4];
        float y[4];
    };

    static Console* getHandle();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Allocates the ring and finds or makes the two materials; a second call does nothing.
    void initiate();
    // Frees the ring and forgets both materials without deleting them, those it made included.
    void shutdown();

    void activate();
    void deactivate();
    bool isActive() const { return active; }
    // Fades the opening flash out over one second.
    void update(float seconds);

    // The open console with its flash; lighting is switched off around it.
    void display();
    // The lines and background only, open or not.
    void draw();

    // Appends text to the ring with word wrapping; codes above 23 store no colour.
    void print(const char* text, int colourCode);
    void printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // Draws formatted text at once at a column and row (row 0 at the bottom); stores nothing.
    void printf(int column, int row, int colourMask, const char* format, ...) __attribute__((format(printf, 5, 6)));
    // Typing: a newline returns the cursor, a carriage return starts a line (unlike print).
    void put(int character);
    void linefeed();
    void erase();
    void clear();
    void setScrollback(int lines);
    void setVisibleLines(int lines);
    // Sets the drawing colour from a code and makes it the GL colour.
    void setColor(int colourCode);
    void drawNotify() {}
    void clearNotify() {}

    // Bits 1, 2, 4 turn red, green, blue on; 8 makes them 1.0, else 16 makes them 0.6, else 0.8.
    static Color colorOf(int colourCode);
    // Where drawCharacter puts a character, in the 640 x 480 view.
    static GlyphQuad glyphQuad(int column, int row, int character);

    bool isInitiated() const { return initiated; }
    float getFlash() const { return flash; }
    int getLineCount() const { return lineCount; }
    int getScroll() const { return scroll; }
    int getCurrentLine() const { return currentLine; }
    int getCursor() const { return cursor; }
    int getWidth() const { return width; }
    int getVisibleLines() const { return visibleLines; }
    const Color& getColor() const { return colour; }
    Material* getFontMaterial() const { return fontMaterial; }
    Material* getBackgroundMaterial() const { return backgroundMaterial; }
    // The width bytes of a line by its number (its ring slot); null before initiate.
    const char* getLine(int line) const;

private:
    Console();

    int slotOf(int line) const;
    char* lineAt(int line);
    // Stores at the cursor on the current line and advances, wrapping to 0 at the width.
    void store(char character);
    void drawLines();
    void drawCharacter(int column, int row, int character);
    void drawBackground();
    void drawFlash();
    void beginDraw();
    void endDraw();
    // The named material from the registry, or a new unregistered one over the texture.
    Material* findOrMakeMaterial(const char* name, const Color& colour, const TextureFile& picture);

    bool initiated;
    bool active;
    float flash;
    int lineCount;
    int scroll;
    int currentLine;
    int cursor;
    int width;
    int visibleLines;
    int spare;
    char* buffer;
    Color colour;
    Material* fontMaterial;
    Material* backgroundMaterial;
};
