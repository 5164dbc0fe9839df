// Offline song rendering and WAV output.
#include "SoundtrackRenderer.h"

#include <libopenmpt/libopenmpt.h>
#include <cmath>
#include <cstdio>

namespace {

const size_t CHUNK_FRAMES = 4096;

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

}

SoundtrackRenderer::SoundtrackRenderer()
    : module(nullptr)
{
}

SoundtrackRenderer::~SoundtrackRenderer()
{
    if (module)
        openmpt_module_destroy(module);
}

bool SoundtrackRenderer::load(const std::string& file, std::string& error)
{
    std::vector<char> data;
    if (!readWhole(file, data, error))
        return false;
    openmpt_module* loaded = openmpt_module_create_from_memory2(
        data.data(), data.size(), openmpt_log_func_silent, nullptr, openmpt_error_func_ignore,
        nullptr, nullptr, nullptr, nullptr);
    if (!loaded) {
        error = file + " is not a module libopenmpt can play";
        return false;
    }
    // The same settings as the demo's own player: loop forever, no dither noise.
    openmpt_module_set_repeat_count(loaded, -1);
    openmpt_module_ctl_set_integer(loaded, "dither", 0);
    if (module)
        openmpt_module_destroy(module);
    module = loaded;
    return true;
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
    if (!module)
        return false;
    openmpt_module_set_position_seconds(module, fromSeconds > 0.0 ? fromSeconds : 0.0);
    size_t done = 0;
    while (done < frames) {
        size_t want = frames - done < CHUNK_FRAMES ? frames - done : CHUNK_FRAMES;
        size_t made = openmpt_module_read_interleaved_stereo(module, RATE, want, samples.data() + done * 2);
        // A module that stops producing leaves silence behind (already zero).
        if (made == 0)
            break;
        done += made;
    }
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
    putLittle(out, 1, 2);            // PCM
    putLittle(out, 2, 2);            // stereo
    putLittle(out, RATE, 4);
    putLittle(out, RATE * 4, 4);     // bytes per second
    putLittle(out, 4, 2);            // bytes per frame
    putLittle(out, 16, 2);           // bits per sample
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
