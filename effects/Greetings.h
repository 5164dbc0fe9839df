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
    // Makes the glyphs of the next line, which FTGL would otherwise make (and send to GL) the first time the
    // line is drawn; made in the order the roll first shows them, they take the same places in the font's texture.
    bool preload() override;
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
    // Lines whose glyphs preload has made.
    int linesPrepared;
};
