// What the song is doing at one moment, for displays that follow the music: channel levels, the row and the sound.
#pragma once

struct SongReading {
    // The most channels a module can have; XM stops at 32.
    static constexpr int MAX_CHANNELS = 32;
    // Mono samples of the waveform, oldest first, ending at the moment read.
    static constexpr int WAVE_POINTS = 128;

    // False when nothing was read: no song, or a moment outside the measured stretch.
    bool valid = false;
    int channels = 0;
    // 0 (silent) to 1 per channel.
    float levels[MAX_CHANNELS] = {};
    int order = 0;
    int pattern = 0;
    int row = 0;
    // Rows of the pattern being played.
    int rows = 0;
    // -1 to 1.
    float wave[WAVE_POINTS] = {};

    // Back to the idle reading.
    void clear() { *this = SongReading(); }
};

// One cell of a pattern as libopenmpt reads it (note 0: none; 1 is its C-0; above 252 a release).
struct PatternCell {
    unsigned char note = 0;
    unsigned char instrument = 0;
    unsigned char volumeEffect = 0;
    unsigned char effect = 0;
    unsigned char volume = 0;
    unsigned char parameter = 0;
};
