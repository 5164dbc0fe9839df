// Serialises an XmModule into FastTracker 2 XM bytes, little-endian, byte by byte.
#include "tools/composer/XmWriter.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

void put8(std::vector<uint8_t>& out, unsigned v)
{
    out.push_back(static_cast<uint8_t>(v & 0xFF));
}

void put16(std::vector<uint8_t>& out, unsigned v)
{
    put8(out, v);
    put8(out, v >> 8);
}

void put32(std::vector<uint8_t>& out, uint32_t v)
{
    put16(out, v & 0xFFFF);
    put16(out, v >> 16);
}

// Fixed-width text field, padded with zeros and cut when too long.
void putText(std::vector<uint8_t>& out, const std::string& text, size_t width)
{
    for (size_t i = 0; i < width; ++i)
        put8(out, i < text.size() ? static_cast<uint8_t>(text[i]) : 0);
}

const size_t kInstrumentHeaderSize = 263;
const size_t kSampleHeaderSize = 40;
const size_t kMaxEnvelopePoints = 12;

bool fail(const char* what)
{
    std::fprintf(stderr, "XM writer: %s\n", what);
    return false;
}

bool envelopeOk(const XmEnvelope& env)
{
    if (env.points.size() > kMaxEnvelopePoints)
        return false;
    const int n = static_cast<int>(env.points.size());
    if (env.sustain >= n || env.loopStart >= n || env.loopEnd >= n)
        return false;
    for (size_t i = 1; i < env.points.size(); ++i)
        if (env.points[i].tick <= env.points[i - 1].tick)
            return false;
    for (const XmEnvelopePoint& p : env.points)
        if (p.value > 64)
            return false;
    return true;
}

}  // namespace

bool XmWriter::check(const XmModule& m)
{
    if (m.channels < 2 || m.channels > 32 || m.channels % 2)
        return fail("channel count must be even and within 2..32");
    if (m.orders.empty() || m.orders.size() > 256)
        return fail("order list must hold 1..256 entries");
    if (m.patterns.empty() || m.patterns.size() > 256)
        return fail("pattern count must be within 1..256");
    if (m.instruments.size() > 128)
        return fail("at most 128 instruments");
    if (m.restart < 0 || m.restart >= static_cast<int>(m.orders.size()))
        return fail("restart position outside the order list");
    if (m.speed < 1 || m.speed > 31 || m.bpm < 32 || m.bpm > 255)
        return fail("speed or tempo out of range");
    for (uint8_t o : m.orders)
        if (o >= m.patterns.size())
            return fail("order names a missing pattern");
    for (const XmPattern& p : m.patterns) {
        if (p.rows < 1 || p.rows > 256)
            return fail("pattern rows must be within 1..256");
        if (p.cells.size() != static_cast<size_t>(p.rows) * m.channels)
            return fail("pattern cell count does not match rows and channels");
        for (const XmCell& c : p.cells)
            if (c.note > 97)
                return fail("note out of range");
    }
    for (const XmInstrument& ins : m.instruments) {
        const XmSample& s = ins.sample;
        if (!envelopeOk(ins.volumeEnvelope) || !envelopeOk(ins.panningEnvelope))
            return fail("bad envelope");
        if (s.volume > 64)
            return fail("sample volume above 64");
        if (s.loop != XmLoopNone &&
            (s.loopLength == 0 || s.loopStart + static_cast<uint64_t>(s.loopLength) > s.data.size()))
            return fail("sample loop outside its data");
        if (s.data.size() > 0x3FFFFFFF)
            return fail("sample too long");
    }
    return true;
}

std::vector<uint8_t> XmWriter::packPattern(const XmPattern& pattern, int channels)
{
    std::vector<uint8_t> out;
    const size_t cells = static_cast<size_t>(pattern.rows) * channels;
    for (size_t i = 0; i < cells && i < pattern.cells.size(); ++i) {
        const XmCell& c = pattern.cells[i];
        uint8_t mask = 0x80;
        if (c.note)
            mask |= 1;
        if (c.instrument)
            mask |= 2;
        if (c.volume)
            mask |= 4;
        if (c.effect)
            mask |= 8;
        if (c.param)
            mask |= 16;
        // A full cell is shorter unpacked; its first byte (the note) is below 0x80.
        if (mask == 0x9F) {
            out.insert(out.end(), {c.note, c.instrument, c.volume, c.effect, c.param});
            continue;
        }
        out.push_back(mask);
        if (c.note)
            out.push_back(c.note);
        if (c.instrument)
            out.push_back(c.instrument);
        if (c.volume)
            out.push_back(c.volume);
        if (c.effect)
            out.push_back(c.effect);
        if (c.param)
            out.push_back(c.param);
    }
    return out;
}

std::vector<uint8_t> XmWriter::deltaEncode(const std::vector<int16_t>& frames)
{
    std::vector<uint8_t> out;
    out.reserve(frames.size() * 2);
    uint16_t previous = 0;
    for (int16_t s : frames) {
        const uint16_t value = static_cast<uint16_t>(s);
        put16(out, static_cast<uint16_t>(value - previous));
        previous = value;
    }
    return out;
}

void XmWriter::writeHeader(const XmModule& m, std::vector<uint8_t>& out)
{
    putText(out, "Extended Module: ", 17);
    putText(out, m.name, 20);
    put8(out, 0x1A);
    putText(out, m.tracker, 20);
    put16(out, 0x0104);
    put32(out, 276);
    put16(out, static_cast<unsigned>(m.orders.size()));
    put16(out, static_cast<unsigned>(m.restart));
    put16(out, static_cast<unsigned>(m.channels));
    put16(out, static_cast<unsigned>(m.patterns.size()));
    put16(out, static_cast<unsigned>(m.instruments.size()));
    put16(out, m.linearFrequencies ? 1 : 0);
    put16(out, static_cast<unsigned>(m.speed));
    put16(out, static_cast<unsigned>(m.bpm));
    for (size_t i = 0; i < 256; ++i)
        put8(out, i < m.orders.size() ? m.orders[i] : 0);
}

void XmWriter::writeEnvelope(const XmEnvelope& env, std::vector<uint8_t>& out)
{
    for (size_t i = 0; i < kMaxEnvelopePoints; ++i) {
        const bool used = i < env.points.size();
        put16(out, used ? env.points[i].tick : 0);
        put16(out, used ? env.points[i].value : 0);
    }
}

namespace {

uint8_t envelopeType(const XmEnvelope& env)
{
    if (!env.enabled())
        return 0;
    uint8_t type = 1;
    if (env.sustain >= 0)
        type |= 2;
    if (env.loopStart >= 0 && env.loopEnd >= env.loopStart)
        type |= 4;
    return type;
}

uint8_t pointIndex(int index)
{
    return index < 0 ? 0 : static_cast<uint8_t>(index);
}

}  // namespace

void XmWriter::writeInstrument(const XmInstrument& ins, std::vector<uint8_t>& out)
{
    const size_t start = out.size();
    const XmSample& s = ins.sample;
    put32(out, kInstrumentHeaderSize);
    putText(out, ins.name, 22);
    put8(out, 0);
    put16(out, 1);
    put32(out, kSampleHeaderSize);
    for (int key = 0; key < 96; ++key)
        put8(out, 0);
    writeEnvelope(ins.volumeEnvelope, out);
    writeEnvelope(ins.panningEnvelope, out);
    put8(out, static_cast<unsigned>(ins.volumeEnvelope.points.size()));
    put8(out, static_cast<unsigned>(ins.panningEnvelope.points.size()));
    put8(out, pointIndex(ins.volumeEnvelope.sustain));
    put8(out, pointIndex(ins.volumeEnvelope.loopStart));
    put8(out, pointIndex(ins.volumeEnvelope.loopEnd));
    put8(out, pointIndex(ins.panningEnvelope.sustain));
    put8(out, pointIndex(ins.panningEnvelope.loopStart));
    put8(out, pointIndex(ins.panningEnvelope.loopEnd));
    put8(out, envelopeType(ins.volumeEnvelope));
    put8(out, envelopeType(ins.panningEnvelope));
    put8(out, ins.vibratoType);
    put8(out, ins.vibratoSweep);
    put8(out, ins.vibratoDepth);
    put8(out, ins.vibratoRate);
    put16(out, ins.fadeout);
    while (out.size() - start < kInstrumentHeaderSize)
        put8(out, 0);

    // Lengths and loop points are counted in bytes: two per 16-bit frame.
    const bool looped = s.loop != XmLoopNone;
    put32(out, static_cast<uint32_t>(s.data.size() * 2));
    put32(out, looped ? s.loopStart * 2 : 0);
    put32(out, looped ? s.loopLength * 2 : 0);
    put8(out, s.volume);
    put8(out, static_cast<uint8_t>(s.finetune));
    put8(out, static_cast<uint8_t>(s.loop) | 0x10);
    put8(out, s.panning);
    put8(out, static_cast<uint8_t>(s.relativeNote));
    put8(out, 0);
    putText(out, s.name, 22);

    const std::vector<uint8_t> data = deltaEncode(s.data);
    out.insert(out.end(), data.begin(), data.end());
}

bool XmWriter::write(const XmModule& module, std::vector<uint8_t>& out)
{
    out.clear();
    if (!check(module))
        return false;
    writeHeader(module, out);
    for (const XmPattern& p : module.patterns) {
        const std::vector<uint8_t> packed = packPattern(p, module.channels);
        if (packed.size() > 0xFFFF) {
            out.clear();
            return fail("packed pattern larger than 65535 bytes");
        }
        put32(out, 9);
        put8(out, 0);
        put16(out, static_cast<unsigned>(p.rows));
        put16(out, static_cast<unsigned>(packed.size()));
        out.insert(out.end(), packed.begin(), packed.end());
    }
    for (const XmInstrument& ins : module.instruments)
        writeInstrument(ins, out);
    return true;
}

bool XmWriter::writeFile(const XmModule& module, const std::string& path)
{
    std::vector<uint8_t> bytes;
    if (!write(module, bytes))
        return false;
    std::error_code ignored;
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    if (!parent.empty())
        std::filesystem::create_directories(parent, ignored);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return fail("cannot open the output file");
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file) || fail("cannot write the output file");
}
