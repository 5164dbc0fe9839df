// The closing text roll: thirty fixed lines scrolling up the screen in a TrueType font.
#pragma once

#include "runtime/Effect.h"

class Fonter;

class Greetings : public Effect {
public:
    static constexpr int LINE_COUNT = 30;
    static constexpr int LINE_SIZE = 64;
    // Screen units between two lines.
    static constexpr float SPACING = 24.0f;
    // The roll drops its top line each time it passes this height.
    static constexpr float TOP = 504.0f;
    // The font tried first, and the one the roll falls back on so that it can be read.
    static const char* const FONT_FILE;
    static const char* const FALLBACK_FONT_FILE;

    Greetings(short layer, const EffectTimer& timer);
    // The font stays: nothing ever releases it.
    ~Greetings() override;
    Greetings(const Greetings&) = delete;
    Greetings& operator=(const Greetings&) = delete;

    void initiate() override;
    // Makes the glyphs of every line, which FTGL would otherwise make (and send to GL) the first time a line is
    // drawn; made in the order the roll first shows them, they take the same places in the font's texture.
    bool preload() override;
    // From the demo's start: the font's first glyph makes its whole texture, tens of megabytes with its
    // staging copy, best made before anything is on screen and while little else is held in memory.
    float getPreloadLead() const override { return timer.start; }
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // The roll at its start: the part of initiate that needs no GL.
    void resetRoll();
    // Line i of the text (empty outside 0..29).
    static const char* getLine(int i);

    int getFirst() const { return first; }
    int getLast() const { return last; }
    float getScroll() const { return scroll; }
    float getLead() const { return lead; }
    float getSpeed() const { return speed; }
    // The distance between drawn lines; not finite once the range is empty.
    float getSpacing() const;
    const Fonter* getFont() const { return font; }

private:
    Fonter* font;
    int first;
    int last;
    float scroll;
    float lead;
    float speed;
    bool glyphsMade;
};
