// Offline song rendering and WAV output.
#include "SoundtrackRenderer.h"

#include <libopenmpt/libopenmpt.h>
#include <cmath>
#include <cstdio>

namespace {

const size_t CHUNK_FRAMES = 4096;
// Seeks land on the song's rows; anything further off is not worth playing through.
const double MAX_SEEK_ERROR = 1.0;

void putLittle(std::vector<uint8_t>& out, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void putTag(std::vector<uint8_t>& out, const char* tag)
{
    out.insert(out.end(), tag, tag + 4);
}

bool readWhole(const std::string& file, std::vector<char>& data, std::string& error)
{
    FILE* in = std::fopen(file.c_str(), "rb");
    if (!in) {
        error = "cannot open " + file;
        return false;
    }
    long size = -1;
    if (std::fseek(in, 0, SEEK_END) == 0)
        size = std::ftell(in);
    if (size <= 0 || size > SoundtrackRenderer::MAX_FILE_BYTES || std::fseek(in, 0, SEEK_SET) != 0) {
        std::fclose(in);
        error = file + " is empty, unreadable or too large for a song";
        return false;
    }
    data.resize(static_cast<size_t>(size));
    size_t got = std::fread(data.data(), 1, data.size(), in);
    std::fclose(in);
    if (got != data.size()) {
        error = "cannot read " + file;
        return false;
    }
    return true;
}

}  // namespace

openmpt_module* SoundtrackRenderer::open() const
{
    if (song.empty())
        return nullptr;
    openmpt_module* module =
        openmpt_module_create_from_memory2(song.data(), song.size(), openmpt_log_func_silent, nullptr,
                                           openmpt_error_func_ignore, nullptr, nullptr, nullptr, nullptr);
    if (!module)
        return nullptr;
    // The same settings as the demo's own player: loop forever, no dither noise. Notes
    // sounding at the start time are picked up mid-way instead of being dropped.
    openmpt_module_set_repeat_count(module, -1);
    openmpt_module_ctl_set_integer(module, "dither", 0);
    openmpt_module_ctl_set_boolean(module, "seek.sync_samples", 1);
    return module;
}

bool SoundtrackRenderer::load(const std::string& file, std::string& error)
{
    std::vector<char> data;
    if (!readWhole(file, data, error))
        return false;
    data.swap(song);
    openmpt_module* probe = open();
    if (!probe) {
        song.swap(data);
        error = file + " is not a module libopenmpt can play";
        return false;
    }
    openmpt_module_destroy(probe);
    return true;
}

double SoundtrackRenderer::getDuration() const
{
    openmpt_module* module = open();
    if (!module)
        return 0.0;
    double duration = openmpt_module_get_duration_seconds(module);
    openmpt_module_destroy(module);
    return duration;
}

size_t SoundtrackRenderer::framesFor(double seconds)
{
    if (!(seconds > 0.0))
        return 0;
    return static_cast<size_t>(std::llround(seconds * RATE));
}

bool SoundtrackRenderer::render(double fromSeconds, size_t frames, std::vector<int16_t>& samples)
{
    samples.assign(frames * 2, 0);
    openmpt_module* module = open();
    if (!module)
        return false;
    double from = fromSeconds > 0.0 ? fromSeconds : 0.0;
    // The demo loops the song, so a start past its end is the same point of a later pass.
    double duration = openmpt_module_get_duration_seconds(module);
    if (duration > 0.0 && from >= duration)
        from = std::fmod(from, duration);
    double landed = openmpt_module_set_position_seconds(module, from);
    // A seek that lands a little early is played through silently; one that lands late
    // starts after a matching pause, so that sound and picture keep the same clock.
    size_t done = 0;
    if (landed < from && from - landed <= MAX_SEEK_ERROR) {
        std::vector<int16_t> skipped(CHUNK_FRAMES * 2);
        for (size_t skip = framesFor(from - landed); skip > 0;) {
            size_t want = skip < CHUNK_FRAMES ? skip : CHUNK_FRAMES;
            size_t made = openmpt_module_read_interleaved_stereo(module, RATE, want, skipped.data());
            if (made == 0)
                break;
            skip -= made;
        }
    } else if (landed > from && landed - from <= MAX_SEEK_ERROR) {
        done = framesFor(landed - from) < frames ? framesFor(landed - from) : frames;
    }
    while (done < frames) {
        size_t want = frames - done < CHUNK_FRAMES ? frames - done : CHUNK_FRAMES;
        size_t made = openmpt_module_read_interleaved_stereo(module, RATE, want, samples.data() + done * 2);
        // A module that stops producing leaves silence behind (already zero).
        if (made == 0)
            break;
        done += made;
    }
    openmpt_module_destroy(module);
    return true;
}

bool SoundtrackRenderer::writeWav(const std::string& path, const std::vector<int16_t>& samples, std::string& error)
{
    uint32_t dataBytes = static_cast<uint32_t>(samples.size() * 2);
    std::vector<uint8_t> out;
    out.reserve(44 + dataBytes);
    putTag(out, "RIFF");
    putLittle(out, 36 + dataBytes, 4);
    putTag(out, "WAVE");
    putTag(out, "fmt ");
    putLittle(out, 16, 4);
    putLittle(out, 1, 2);  // PCM
    putLittle(out, 2, 2);  // stereo
    putLittle(out, RATE, 4);
    putLittle(out, RATE * 4, 4);  // bytes per second
    putLittle(out, 4, 2);         // bytes per frame
    putLittle(out, 16, 2);        // bits per sample
    putTag(out, "data");
    putLittle(out, dataBytes, 4);
    for (int16_t sample : samples)
        putLittle(out, static_cast<uint16_t>(sample), 2);

    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        error = "cannot write " + path;
        return false;
    }
    bool ok = std::fwrite(out.data(), 1, out.size(), file) == out.size();
    ok = std::fclose(file) == 0 && ok;
    if (!ok)
        error = "cannot write " + path;
    return ok;
}

bool SoundtrackRenderer::renderToWav(const std::string& path, double fromSeconds, double seconds, std::string& error)
{
    // A RIFF size field holds 32 bits; hours of sound would overflow it.
    if (framesFor(seconds) > (0xFFFFFFFFu - 44u) / 4u) {
        error = "the soundtrack is too long for a WAV file";
        return false;
    }
    std::vector<int16_t> samples;
    if (!render(fromSeconds, framesFor(seconds), samples)) {
        error = "no song loaded";
        return false;
    }
    return writeWav(path, samples, error);
}
