// Tests of the XM writer: pattern packing, delta samples, limits, and libopenmpt reading the whole file.
#include "tools/composer/XmWriter.h"

#include <gtest/gtest.h>
#include <libopenmpt/libopenmpt.h>

namespace {

uint32_t u16(const std::vector<uint8_t>& b, size_t at)
{
    return b[at] | (b[at + 1] << 8);
}

XmPattern emptyPattern(int rows, int channels)
{
    XmPattern p;
    p.rows = rows;
    p.cells.resize(static_cast<size_t>(rows) * channels);
    return p;
}

// Two channels, two patterns, one square-wave instrument playing one note.
XmModule tinyModule()
{
    XmModule m;
    m.channels = 2;
    m.speed = 6;
    m.bpm = 120;
    m.patterns = {emptyPattern(16, 2), emptyPattern(8, 2)};
    m.patterns[0].cells[0] = {49, 1, 0x50, 0, 0};
    m.orders = {0, 1, 0};
    XmInstrument ins;
    ins.name = "square";
    for (int i = 0; i < 256; ++i)
        ins.sample.data.push_back(i % 32 < 16 ? 12000 : -12000);
    ins.sample.loop = XmLoopForward;
    ins.sample.loopStart = 0;
    ins.sample.loopLength = 256;
    ins.volumeEnvelope.points = {{0, 64}, {10, 32}};
    ins.volumeEnvelope.sustain = 1;
    m.instruments = {ins};
    return m;
}

}  // namespace

TEST(XmWriterPatterns, CellsPackToTheirShortestForm)
{
    XmPattern p = emptyPattern(2, 2);
    p.cells[0] = {49, 3, 0x40, 0x0C, 0x20};  // full: written plain
    p.cells[2] = {97, 0, 0, 0, 0};           // key off
    p.cells[3] = {0, 0, 0x30, 8, 0};         // volume and effect, parameter zero
    EXPECT_EQ((std::vector<uint8_t>{49, 3, 0x40, 0x0C, 0x20, 0x80, 0x81, 97, 0x8C, 0x30, 8}),
              XmWriter::packPattern(p, 2));
    EXPECT_EQ(std::vector<uint8_t>(8, 0x80), XmWriter::packPattern(emptyPattern(4, 2), 2));
}

TEST(XmWriterSamples, DeltaEncodingDecodesBitForBit)
{
    const std::vector<int16_t> frames = {0, 1, -1, 32767, -32768, 32767, 0, -12345, 4242};
    const std::vector<uint8_t> bytes = XmWriter::deltaEncode(frames);
    ASSERT_EQ(frames.size() * 2, bytes.size());
    uint16_t value = 0;
    for (size_t i = 0; i < frames.size(); ++i) {
        value = static_cast<uint16_t>(value + u16(bytes, i * 2));
        EXPECT_EQ(frames[i], static_cast<int16_t>(value)) << "frame " << i;
    }
}

TEST(XmWriterLimits, RejectsModulesTheFormatCannotHoldAndLeavesNoBytes)
{
    std::vector<XmModule> bad(8, tinyModule());
    bad[0].channels = 3;
    bad[1].orders = {0, 2};
    bad[2].instruments[0].sample.loopLength = 300;
    bad[3].patterns[1] = emptyPattern(257, 2);
    bad[4].instruments[0].volumeEnvelope.points.assign(13, {0, 0});
    bad[5].orders.clear();
    bad[6].patterns[0].cells.pop_back();
    bad[7].instruments[0].volumeEnvelope.points = {{0, 64}, {0, 32}};  // ticks must rise
    for (size_t i = 0; i < bad.size(); ++i) {
        std::vector<uint8_t> out = {1, 2, 3};
        EXPECT_FALSE(XmWriter::write(bad[i], out)) << "case " << i;
        EXPECT_TRUE(out.empty()) << "case " << i;
    }
}

TEST(XmWriterReader, LibopenmptReadsWhatWasWritten)
{
    std::vector<uint8_t> b;
    ASSERT_TRUE(XmWriter::write(tinyModule(), b));
    int error = 0;
    openmpt_module* mod = openmpt_module_create_from_memory2(b.data(), b.size(), nullptr, nullptr, nullptr, nullptr,
                                                             &error, nullptr, nullptr);
    ASSERT_NE(nullptr, mod) << "error " << error;
    EXPECT_EQ(3, openmpt_module_get_num_orders(mod));
    EXPECT_EQ(2, openmpt_module_get_num_channels(mod));
    EXPECT_EQ(1, openmpt_module_get_num_instruments(mod));
    EXPECT_EQ(8, openmpt_module_get_pattern_num_rows(mod, 1));
    // 40 rows at 120 BPM, speed 6: five seconds.
    EXPECT_NEAR(5.0, openmpt_module_get_duration_seconds(mod), 1e-6);
    std::vector<int16_t> pcm(2 * 4410);
    ASSERT_EQ(4410u, openmpt_module_read_interleaved_stereo(mod, 44100, 4410, pcm.data()));
    int peak = 0;
    for (int16_t v : pcm)
        peak = std::max(peak, std::abs(static_cast<int>(v)));
    EXPECT_GT(peak, 1000);  // the note sounds
    openmpt_module_destroy(mod);
}
