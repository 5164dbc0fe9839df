// SongMeter: the song's own instance positioned once per stretch, rendered into level, row and waveform tables.
#include "sound/SongMeter.h"

#include "sound/MusicPlayer.h"

#include <libopenmpt/libopenmpt.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// A seek lands on the first row starting at or after the time asked for; asking this much
// earlier makes it land before the stretch, so the stretch's first moment is covered.
const double SEEK_LEAD = 0.5;
const int WAVE_PER_BLOCK = SongMeter::BLOCK_FRAMES / SongMeter::WAVE_STEP;
const float FULL_SCALE = 32768.0f;

float clamp01(float v)
{
    return v < 0.0f ? 0.0f : v > 1.0f ? 1.0f : v;
}

}  // namespace

SongMeter* SongMeter::getHandle()
{
    static SongMeter meter;
    return &meter;
}

SongMeter::SongMeter() : module(nullptr), clock(nullptr), channels(0), stretchStart(0.0), blocks(0) {}

SongMeter::~SongMeter()
{
    shutdown();
}

bool SongMeter::readFile(const char* file)
{
    FILE* in = file ? std::fopen(file, "rb") : nullptr;
    if (!in)
        return false;
    long size = -1;
    if (std::fseek(in, 0, SEEK_END) == 0)
        size = std::ftell(in);
    if (size <= 0 || size > MAX_FILE_BYTES || std::fseek(in, 0, SEEK_SET) != 0) {
        std::fclose(in);
        return false;
    }
    song.resize(static_cast<size_t>(size));
    const size_t got = std::fread(song.data(), 1, song.size(), in);
    std::fclose(in);
    return got == song.size();
}

bool SongMeter::initiate(const char* songFile, MusicPlayer* playing)
{
    shutdown();
    if (!readFile(songFile)) {
        shutdown();
        return false;
    }
    if (!openModule()) {
        shutdown();
        return false;
    }
    channels = std::min(static_cast<int>(openmpt_module_get_num_channels(module)), SongReading::MAX_CHANNELS);
    clock = playing;
    return true;
}

bool SongMeter::openModule()
{
    if (module)
        openmpt_module_destroy(module);
    module = openmpt_module_create_from_memory2(song.data(), song.size(), openmpt_log_func_silent, nullptr,
                                                openmpt_error_func_ignore, nullptr, nullptr, nullptr, nullptr);
    if (!module)
        return false;
    // As the demo plays it: looping, no dither, and notes already sounding at a seek picked up mid-way.
    openmpt_module_set_repeat_count(module, -1);
    openmpt_module_ctl_set_integer(module, "dither", 0);
    openmpt_module_ctl_set_boolean(module, "seek.sync_samples", 1);
    return true;
}

void SongMeter::shutdown()
{
    release();
    if (module)
        openmpt_module_destroy(module);
    module = nullptr;
    clock = nullptr;
    channels = 0;
    std::vector<char>().swap(song);
}

void SongMeter::release()
{
    blocks = 0;
    stretchStart = 0.0;
    std::vector<float>().swap(levels);
    std::vector<Position>().swap(positions);
    std::vector<float>().swap(wave);
}

double SongMeter::getStretchEnd() const
{
    return stretchStart + static_cast<double>(blocks) * BLOCK_FRAMES / RATE;
}

bool SongMeter::prepare(double from, double to)
{
    release();
    if (!module || !(to > from) || to - from > MAX_STRETCH_SECONDS)
        return false;
    // A module that has played lands elsewhere when it seeks: a fresh one for every stretch, so
    // the same stretch always gives the same figures.
    if (!openModule())
        return false;
    const double landed = openmpt_module_set_position_seconds(module, std::max(0.0, from - SEEK_LEAD));
    if (!(landed <= to))
        return false;
    const size_t count = static_cast<size_t>(std::ceil((to - landed) * RATE / BLOCK_FRAMES));
    levels.assign(count * static_cast<size_t>(channels), 0.0f);
    positions.assign(count, Position{0, 0, 0, 0});
    wave.assign(count * WAVE_PER_BLOCK, 0.0f);
    int16_t samples[BLOCK_FRAMES * 2];
    for (size_t k = 0; k < count; ++k) {
        const size_t made = openmpt_module_read_interleaved_stereo(module, RATE, BLOCK_FRAMES, samples);
        std::fill(samples + 2 * made, samples + 2 * BLOCK_FRAMES, 0);
        noteBlock(k, samples);
    }
    stretchStart = landed;
    blocks = count;
    return true;
}

void SongMeter::noteBlock(size_t index, const int16_t* samples)
{
    float* level = levels.data() + index * static_cast<size_t>(channels);
    for (int ch = 0; ch < channels; ++ch)
        level[ch] = clamp01(openmpt_module_get_current_channel_vu_mono(module, ch));
    Position& p = positions[index];
    p.order = static_cast<int16_t>(openmpt_module_get_current_order(module));
    p.pattern = static_cast<int16_t>(openmpt_module_get_current_pattern(module));
    p.row = static_cast<int16_t>(openmpt_module_get_current_row(module));
    p.rows = static_cast<int16_t>(openmpt_module_get_pattern_num_rows(module, p.pattern));
    float* points = wave.data() + index * WAVE_PER_BLOCK;
    for (int j = 0; j < WAVE_PER_BLOCK; ++j) {
        const int frame = j * WAVE_STEP;
        points[j] =
            (static_cast<float>(samples[2 * frame]) + static_cast<float>(samples[2 * frame + 1])) / (2.0f * FULL_SCALE);
    }
}

double SongMeter::songTime(double sceneSeconds)
{
    if (!clock || !clock->isPlaying())
        return sceneSeconds;
    return clock->getCurrentLocation() / 1000.0;
}

bool SongMeter::measure(double songSeconds, SongReading& reading) const
{
    reading.clear();
    const double frames = (songSeconds - stretchStart) * RATE;
    if (!isPrepared() || !(frames >= 0.0) || !(frames < static_cast<double>(blocks) * BLOCK_FRAMES))
        return false;
    const size_t block = static_cast<size_t>(frames) / BLOCK_FRAMES;
    reading.valid = true;
    reading.channels = channels;
    std::copy_n(levels.data() + block * static_cast<size_t>(channels), channels, reading.levels);
    const Position& p = positions[block];
    reading.order = p.order;
    reading.pattern = p.pattern;
    reading.row = p.row;
    reading.rows = p.rows;
    // The waveform ends at the moment read; before the stretch it is silence.
    const long last = static_cast<long>(frames) / WAVE_STEP;
    for (int i = 0; i < SongReading::WAVE_POINTS; ++i) {
        const long at = last - (SongReading::WAVE_POINTS - 1) + i;
        reading.wave[i] = at >= 0 ? wave[static_cast<size_t>(at)] : 0.0f;
    }
    return true;
}

bool SongMeter::cell(int pattern, int row, int channel, PatternCell& out) const
{
    out = PatternCell();
    if (!module || channel < 0 || channel >= channels || row < 0 || row >= rowsOf(pattern))
        return false;
    const auto command = [&](int which) {
        return openmpt_module_get_pattern_row_channel_command(module, pattern, row, channel, which);
    };
    out.note = command(OPENMPT_MODULE_COMMAND_NOTE);
    out.instrument = command(OPENMPT_MODULE_COMMAND_INSTRUMENT);
    out.volumeEffect = command(OPENMPT_MODULE_COMMAND_VOLUMEEFFECT);
    out.effect = command(OPENMPT_MODULE_COMMAND_EFFECT);
    out.volume = command(OPENMPT_MODULE_COMMAND_VOLUME);
    out.parameter = command(OPENMPT_MODULE_COMMAND_PARAMETER);
    return true;
}

int SongMeter::rowsOf(int pattern) const
{
    if (!module || pattern < 0 || pattern >= openmpt_module_get_num_patterns(module))
        return 0;
    return openmpt_module_get_pattern_num_rows(module, pattern);
}
