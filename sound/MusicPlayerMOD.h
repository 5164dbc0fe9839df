// Plays one tracker module (MOD, S3M, XM, IT...) decoded by libopenmpt and heard through Sound's output.
#pragma once

#include "sound/MusicPlayer.h"

#include <cstddef>
#include <cstdint>

struct openmpt_module;

class MusicPlayerMOD : public MusicPlayer {
public:
    // Full volume of a module; the global volume stops one lower, at 255.
    static constexpr int MAX_VOLUME = 256;

    MusicPlayerMOD();
    ~MusicPlayerMOD() override;

    // Restarts a loaded, stopped module from order 0.
    void initiate() override;
    void shutdown() override;
    void update() override;
    bool load(const char* file) override;
    bool play() override;
    bool stop() override;
    bool pause() override;
    // Seek by whole orders: rows of the current pattern / bpm * seconds.
    bool forward(float seconds) override;
    bool backward(float seconds) override;
    // Milliseconds of sound produced since play started.
    float getCurrentLocation() override;
    // Loop points do not apply to modules: the song loops on its own.
    void setLoop(float start, float end) override;
    void unsetLoop() override;
    bool setVolume(int volume) override;
    int getVolume() const override;

    // Tempo read when playback started; 0 before.
    float getBpm() const { return bpm; }
    bool isPaused() const { return paused; }
    // Current order; the number of orders after a seek past the end, until the song wraps.
    int getOrder();
    int getNumOrders();

    // Decodes the next frames as interleaved signed 16-bit stereo at the given rate,
    // for offline rendering with no audio device. Counts toward getCurrentLocation.
    // Returns the frames written (0 without a module).
    size_t render(int16_t* interleaved, size_t frames, int rate);
    // Moves the song to a time in seconds from its start; false without a module.
    bool setPosition(double seconds);

private:
    friend class Sound;

    // The audio thread's entry: same as render, the caller holding the audio lock.
    size_t renderLocked(int16_t* interleaved, size_t frames, int rate);
    bool seek(int direction, float seconds);
    void setOrder(int order);
    int currentOrder() const;
    void resetClock();
    double elapsedMs() const;

    openmpt_module* module;
    float bpm;
    int volume;
    bool paused;
    // libopenmpt cannot stand one past the last order; this remembers that it was asked to.
    bool pastEnd;
    // Sound produced since play: earlier rates folded into clockMs, frames at clockRate.
    double clockMs;
    uint64_t clockFrames;
    int clockRate;
};
