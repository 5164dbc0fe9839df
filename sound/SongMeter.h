// Reads what the song plays at a moment (channel levels, pattern row, waveform) from a module instance of its own.
//
// A scene asks for a stretch of song time when it starts (prepare): the meter positions its module there once
// and renders the stretch block by block into preallocated tables, noting after each block the channel levels
// and the row. A reading is then a look-up: the same moment always gives the same figures, whatever was read
// before, and a frame costs no decoding and no allocation. The live program names its playing module as the
// clock, so the displays follow what is heard; velmora-capture names none, and the scene time is the song time.
#pragma once

#include "sound/SongReading.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class MusicPlayer;
struct openmpt_module;

class SongMeter {
public:
    static constexpr int RATE = 44100;
    // Frames rendered between two readings of the levels: about 12 ms.
    static constexpr int BLOCK_FRAMES = 512;
    // One waveform point kept every this many frames.
    static constexpr int WAVE_STEP = 8;
    // Larger files are not songs of ours.
    static constexpr long MAX_FILE_BYTES = 64L * 1024 * 1024;
    // The longest stretch prepared at once, so a wild request cannot size the tables.
    static constexpr double MAX_STRETCH_SECONDS = 120.0;

    // The meter the driver sets up for the scenes.
    static SongMeter* getHandle();

    SongMeter();
    ~SongMeter();
    SongMeter(const SongMeter&) = delete;
    SongMeter& operator=(const SongMeter&) = delete;

    // Opens its own instance of the song; `clock`, when given, is the playing module whose
    // position is the song time (not owned). False, and closed, when the file is not a module.
    bool initiate(const char* songFile, MusicPlayer* clock = nullptr);
    // Closes the song and frees the tables.
    void shutdown();
    bool isOpen() const { return module != nullptr; }
    int getChannels() const { return channels; }

    // Renders song time [from, to] into the tables (they are allocated here); false without a
    // song or for an empty or overlong stretch.
    bool prepare(double from, double to);
    // Frees the tables; the song stays open.
    void release();
    bool isPrepared() const { return blocks > 0; }
    double getStretchStart() const { return stretchStart; }
    double getStretchEnd() const;

    // The song time a scene at `sceneSeconds` hears: the clock's position, or the scene time.
    double songTime(double sceneSeconds);
    // The reading at a song time; cleared (not valid) outside the prepared stretch.
    bool measure(double songSeconds, SongReading& reading) const;
    // One cell of the song's patterns; false outside them.
    bool cell(int pattern, int row, int channel, PatternCell& out) const;
    int rowsOf(int pattern) const;

private:
    struct Position {
        int16_t order;
        int16_t pattern;
        int16_t row;
        int16_t rows;
    };

    bool readFile(const char* file);
    // A new instance of the song in `module`, set up as the demo plays it.
    bool openModule();
    void noteBlock(size_t index, const int16_t* samples);

    std::vector<char> song;
    openmpt_module* module;
    MusicPlayer* clock;
    int channels;
    double stretchStart;
    size_t blocks;
    // Per block: the levels of every channel, the position, the waveform points.
    std::vector<float> levels;
    std::vector<Position> positions;
    std::vector<float> wave;
};
