// Renders the demo's song offline with libopenmpt, from any start time, into 16-bit stereo PCM.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct openmpt_module;

class SoundtrackRenderer {
public:
    static const int32_t RATE = 44100;
    // Larger files are not songs of ours; refuse them before reading.
    static const long MAX_FILE_BYTES = 64L * 1024 * 1024;

    // False with a reason when the file is missing, too large or not a module.
    bool load(const std::string& file, std::string& error);
    bool isLoaded() const { return !song.empty(); }
    // One pass of the song in seconds; 0 with no song loaded.
    double getDuration() const;

    // Interleaved left/right samples for `frames` frames from `fromSeconds` of song time.
    // The song loops as it does in the demo, so any length can be rendered.
    bool render(double fromSeconds, size_t frames, std::vector<int16_t>& samples);
    // Renders `seconds` from `fromSeconds` into a RIFF WAVE file.
    bool renderToWav(const std::string& path, double fromSeconds, double seconds, std::string& error);

    // Frames covering `seconds` at RATE, rounded to the nearest frame.
    static size_t framesFor(double seconds);
    static bool writeWav(const std::string& path, const std::vector<int16_t>& samples, std::string& error);

private:
    // A fresh player per rendering: libopenmpt lands elsewhere when seeking a module that
    // has already played, and the same start must always give the same samples.
    openmpt_module* open() const;

    std::vector<char> song;
};
