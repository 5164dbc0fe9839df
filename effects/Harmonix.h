// The cockpit's music displays: a level bar per channel, the pattern rows scrolling by, the waveform on a scope.
//
// What they show is read from the song at the moment the scene is at (SongMeter), so a capture's displays move with
// its soundtrack; with no song to read they idle, dark and still.
#pragma once

#include "runtime/Effect.h"
#include "sound/SongReading.h"

class Texture;

class Harmonix : public Effect {
public:
    enum { READOUT_ROWS = 9, READOUT_CHANNELS = 4, CELL_CHARS = 6 };
    // A read-out line: the row number, then a cell per channel, each after a space.
    enum { LINE_CHARS = 2 + READOUT_CHANNELS * (CELL_CHARS + 1) };
    // Lamps in each level bar.
    enum { SEGMENTS = 14 };
    // The channels the read-out follows: the song's lead, arpeggio, bass and kick drum.
    static const int READOUT[READOUT_CHANNELS];
    // Channels drawn when there is no song to say how many it has.
    enum { IDLE_CHANNELS = 16 };

    Harmonix(short layer, const EffectTimer& timer);
    ~Harmonix() override;
    Harmonix(const Harmonix&) = delete;
    Harmonix& operator=(const Harmonix&) = delete;

    // The font, and the song's stretch for this span measured (when there is a song).
    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    // The three screens on the cockpit's dashboard, in the cockpit's space.
    void display() override;

    const SongReading& getReading() const { return reading; }
    bool isIdle() const { return !reading.valid; }
    // Line i of the read-out as it is drawn, LINE_CHARS characters; the middle one is the row playing.
    const char* getLine(int i) const { return lines[i]; }

    // A note as three characters: "C-5", "C#5", "..." for none, "===" for a release.
    static void formatNote(unsigned char note, char* out);
    // A cell as CELL_CHARS characters: the note, a space, the instrument in hex or "..".
    static void formatCell(const unsigned char note, unsigned char instrument, char* out);

private:
    void readLines();
    void beginScreen(int index, float& width, float& height) const;
    void endScreen() const;
    void drawGlass(float width, float height) const;
    void drawText(const char* text, int length, float x, float y, float charWidth, float charHeight) const;
    void drawReadout(float width, float height) const;
    void drawBars(float width, float height) const;
    void drawWave(float width, float height) const;

    Texture* font;
    SongReading reading;
    char lines[READOUT_ROWS][LINE_CHARS + 1];
    char header[32];
};
