// Module playback over libopenmpt; every touch of the module happens under the audio lock.
#include "sound/MusicPlayerMOD.h"

#include "sound/Sound.h"

#include <libopenmpt/libopenmpt.h>
#include <libopenmpt/libopenmpt_stream_callbacks_file.h>

#include <cmath>
#include <cstdio>

namespace {

// Holds Sound's audio lock for one scope, so the audio thread never sees a half-made change.
class AudioLock {
public:
    AudioLock() { Sound::getHandle()->lockAudio(); }
    ~AudioLock() { Sound::getHandle()->unlockAudio(); }
    AudioLock(const AudioLock&) = delete;
    AudioLock& operator=(const AudioLock&) = delete;
};

openmpt_module* openModule(const char* file)
{
    FILE* stream = std::fopen(file, "rb");
    if (!stream)
        return nullptr;
    // libopenmpt reads the whole file while creating the module; the stream is done after.
    openmpt_module* module =
        openmpt_module_create2(openmpt_stream_get_file_callbacks(), stream, openmpt_log_func_silent, nullptr,
                               openmpt_error_func_ignore, nullptr, nullptr, nullptr, nullptr);
    std::fclose(stream);
    return module;
}

}  // namespace

MusicPlayerMOD::MusicPlayerMOD()
    : module(nullptr), bpm(0.0f), volume(MAX_VOLUME), paused(false), pastEnd(false), clockMs(0.0), clockFrames(0),
      clockRate(0)
{
}

MusicPlayerMOD::~MusicPlayerMOD()
{
    if (module)
        shutdown();
}

bool MusicPlayerMOD::load(const char* file)
{
    if (module) {
        if (!stopped)
            stop();
        openmpt_module_destroy(module);
        module = nullptr;
        stopped = true;
    }
    if (!file)
        return false;
    openmpt_module* loaded = openModule(file);
    if (!loaded)
        return false;
    // The old library looped every song forever; so do we.
    openmpt_module_set_repeat_count(loaded, -1);
    // No dither: the same song renders to the same samples every time.
    openmpt_module_ctl_set_integer(loaded, "dither", 0);
    module = loaded;
    bpm = 0.0f;
    volume = MAX_VOLUME;
    paused = false;
    pastEnd = false;
    resetClock();
    setFilename(file);
    return true;
}

void MusicPlayerMOD::initiate()
{
    if (!module || !stopped)
        return;
    setOrder(0);
    play();
}

bool MusicPlayerMOD::play()
{
    if (!module || !stopped)
        return false;
    {
        AudioLock lock;
        bpm = static_cast<float>(openmpt_module_get_current_tempo(module));
        paused = false;
        resetClock();
    }
    Sound::getHandle()->attach(this);
    stopped = false;
    return true;
}

bool MusicPlayerMOD::stop()
{
    if (!module || stopped)
        return false;
    Sound::getHandle()->detach(this);
    stopped = true;
    return true;
}

bool MusicPlayerMOD::pause()
{
    if (!module || stopped)
        return false;
    AudioLock lock;
    paused = !paused;
    return true;
}

void MusicPlayerMOD::update()
{
    if (!module)
        return;
    AudioLock lock;
    location = static_cast<float>(elapsedMs());
}

float MusicPlayerMOD::getCurrentLocation()
{
    update();
    return location;
}

void MusicPlayerMOD::shutdown()
{
    if (!module)
        return;
    if (!stopped)
        stop();
    openmpt_module_destroy(module);
    module = nullptr;
}

bool MusicPlayerMOD::forward(float seconds)
{
    return seek(1, seconds);
}

bool MusicPlayerMOD::backward(float seconds)
{
    return seek(-1, seconds);
}

bool MusicPlayerMOD::seek(int direction, float seconds)
{
    if (!module || stopped)
        return false;
    AudioLock lock;
    location = static_cast<float>(elapsedMs());
    int order = currentOrder();
    int orders = openmpt_module_get_num_orders(module);
    // One past the last order has no pattern of its own: it steps by the last one's rows.
    int rowsOrder = order < orders ? order : orders - 1;
    int rows = 0;
    if (rowsOrder >= 0)
        rows = openmpt_module_get_pattern_num_rows(module, openmpt_module_get_order_pattern(module, rowsOrder));
    float steps = bpm > 0.0f ? static_cast<float>(rows) / bpm * seconds : 0.0f;
    if (std::isnan(steps))
        steps = 0.0f;
    // Clamp before converting: huge or infinite seconds must not overflow the int.
    double target = order + direction * std::trunc(static_cast<double>(steps));
    if (target < 0.0)
        target = 0.0;
    if (target > orders)
        target = orders;
    setOrder(static_cast<int>(target));
    return true;
}

void MusicPlayerMOD::setOrder(int order)
{
    if (order < openmpt_module_get_num_orders(module)) {
        openmpt_module_set_position_order_row(module, order < 0 ? 0 : order, 0);
        pastEnd = false;
        return;
    }
    // Standing at the song's end makes the next row wrap to the restart order, as it did before.
    openmpt_module_set_position_seconds(module, openmpt_module_get_duration_seconds(module));
    pastEnd = true;
}

int MusicPlayerMOD::currentOrder() const
{
    if (pastEnd)
        return openmpt_module_get_num_orders(module);
    return openmpt_module_get_current_order(module);
}

int MusicPlayerMOD::getOrder()
{
    if (!module)
        return -1;
    AudioLock lock;
    return currentOrder();
}

int MusicPlayerMOD::getNumOrders()
{
    if (!module)
        return 0;
    return openmpt_module_get_num_orders(module);
}

void MusicPlayerMOD::setLoop(float, float) {}

void MusicPlayerMOD::unsetLoop() {}

bool MusicPlayerMOD::setVolume(int v)
{
    if (!module)
        return false;
    if (v < 0)
        v = 0;
    if (v > MAX_VOLUME)
        v = MAX_VOLUME;
    AudioLock lock;
    volume = v;
    return true;
}

int MusicPlayerMOD::getVolume() const
{
    if (!module)
        return -1;
    return volume;
}

size_t MusicPlayerMOD::render(int16_t* interleaved, size_t frames, int rate)
{
    AudioLock lock;
    return renderLocked(interleaved, frames, rate);
}

bool MusicPlayerMOD::setPosition(double seconds)
{
    if (!module)
        return false;
    AudioLock lock;
    openmpt_module_set_position_seconds(module, seconds);
    pastEnd = false;
    return true;
}

size_t MusicPlayerMOD::renderLocked(int16_t* interleaved, size_t frames, int rate)
{
    if (!module || !interleaved || rate <= 0)
        return 0;
    size_t made = openmpt_module_read_interleaved_stereo(module, rate, frames, interleaved);
    pastEnd = false;
    // A change of rate folds the frames so far into milliseconds.
    if (rate != clockRate) {
        clockMs = elapsedMs();
        clockFrames = 0;
        clockRate = rate;
    }
    clockFrames += made;
    return made;
}

void MusicPlayerMOD::resetClock()
{
    clockMs = 0.0;
    clockFrames = 0;
    clockRate = 0;
}

double MusicPlayerMOD::elapsedMs() const
{
    if (clockRate <= 0)
        return clockMs;
    return clockMs + static_cast<double>(clockFrames) * 1000.0 / clockRate;
}
