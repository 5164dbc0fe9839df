// Tests of the XM writer: byte layout, pattern packing, delta samples, limits, and libopenmpt reading it.
#include "tools/composer/XmWriter.h"

#include <gtest/gtest.h>
#include <libopenmpt/libopenmpt.h>

#include <cstring>

namespace {

uint32_t u16(const std::vector<uint8_t>& b, size_t at) { return b[at] | (b[at + 1] << 8); }
uint32_t u32(const std::vector<uint8_t>& b, size_t at) { return u16(b, at) | (u16(b, at + 2) << 16); }

XmPattern emptyPattern(int rows, int channels) {
    XmPattern p;
    p.rows = rows;
    p.cells.resize(static_cast<size_t>(rows) * channels);
    return p;
}

// Two channels, two patterns, one square-wave instrument playing one note.
XmModule tinyModule() {
    XmModule m;
    m.name = "tiny";
    m.channels = 2;
    m.speed = 6;
    m.bpm = 120;
    m.patterns = {emptyPattern(16, 2), emptyPattern(8, 2)};
    m.patterns[0].cells[0] = {49, 1, 0x50, 0, 0};
    m.orders = {0, 1, 0};
    XmInstrument ins;
    ins.name = "square";
    ins.sample.name = "square";
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

std::vector<uint8_t> written(const XmModule& m) {
    std::vector<uint8_t> bytes;
    EXPECT_TRUE(XmWriter::write(m, bytes));
    return bytes;
}

}  // namespace

// ---- Header ----

TEST(XmWriterHeader, FieldsSitAtTheirOffsets) {
    const std::vector<uint8_t> b = written(tinyModule());
    ASSERT_GT(b.size(), 336u);
    EXPECT_EQ(0, std::memcmp(b.data(), "Extended Module: tiny", 21));
    EXPECT_EQ(0, b[21]);  // name padded with zeros
    EXPECT_EQ(0x1A, b[37]);
    EXPECT_EQ(0x0104u, u16(b, 58));
    EXPECT_EQ(276u, u32(b, 60));
    EXPECT_EQ(3u, u16(b, 64));  // song length
    EXPECT_EQ(0u, u16(b, 66));  // restart
    EXPECT_EQ(2u, u16(b, 68));  // channels
    EXPECT_EQ(2u, u16(b, 70));  // patterns
    EXPECT_EQ(1u, u16(b, 72));  // instruments
    EXPECT_EQ(1u, u16(b, 74));  // linear frequencies
    EXPECT_EQ(6u, u16(b, 76));
    EXPECT_EQ(120u, u16(b, 78));
    EXPECT_EQ(0, b[80]);
    EXPECT_EQ(1, b[81]);
    EXPECT_EQ(0, b[82]);
    EXPECT_EQ(0, b[83]);  // unused orders are zero
}

TEST(XmWriterHeader, LongNamesAreCutToTheirField) {
    XmModule m = tinyModule();
    m.name = std::string(40, 'n');
    m.tracker = std::string(40, 't');
    const std::vector<uint8_t> b = written(m);
    EXPECT_EQ('n', b[36]);
    EXPECT_EQ(0x1A, b[37]);
    EXPECT_EQ('t', b[57]);
    EXPECT_EQ(0x0104u, u16(b, 58));
}

// ---- Patterns ----

TEST(XmWriterPatterns, EmptyCellsPackToOneByte) {
    const std::vector<uint8_t> packed = XmWriter::packPattern(emptyPattern(4, 2), 2);
    EXPECT_EQ(std::vector<uint8_t>(8, 0x80), packed);
}

TEST(XmWriterPatterns, FullCellsAreWrittenPlain) {
    XmPattern p = emptyPattern(1, 2);
    p.cells[0] = {49, 3, 0x40, 0x0C, 0x20};
    const std::vector<uint8_t> packed = XmWriter::packPattern(p, 2);
    EXPECT_EQ((std::vector<uint8_t>{49, 3, 0x40, 0x0C, 0x20, 0x80}), packed);
}

TEST(XmWriterPatterns, PartialCellsCarryAMaskAndOnlyTheirFields) {
    XmPattern p = emptyPattern(1, 2);
    p.cells[0] = {97, 0, 0, 0, 0};     // key off
    p.cells[1] = {0, 0, 0x30, 8, 0};   // volume and effect, parameter zero
    const std::vector<uint8_t> packed = XmWriter::packPattern(p, 2);
    EXPECT_EQ((std::vector<uint8_t>{0x81, 97, 0x8C, 0x30, 8}), packed);
}

TEST(XmWriterPatterns, PackedSizeFieldMatchesTheData) {
    const XmModule m = tinyModule();
    const std::vector<uint8_t> b = written(m);
    size_t at = 336;
    for (const XmPattern& p : m.patterns) {
        EXPECT_EQ(9u, u32(b, at));
        EXPECT_EQ(0, b[at + 4]);
        EXPECT_EQ(static_cast<uint32_t>(p.rows), u16(b, at + 5));
        const uint32_t size = u16(b, at + 7);
        EXPECT_EQ(XmWriter::packPattern(p, m.channels).size(), size);
        at += 9 + size;
    }
    EXPECT_EQ(263u, u32(b, at));  // the instrument follows directly
}

// ---- Samples ----

TEST(XmWriterSamples, DeltaEncodingDecodesBitForBit) {
    const std::vector<int16_t> frames = {0, 1, -1, 32767, -32768, 32767, 0, -12345, 4242};
    const std::vector<uint8_t> bytes = XmWriter::deltaEncode(frames);
    ASSERT_EQ(frames.size() * 2, bytes.size());
    uint16_t value = 0;
    for (size_t i = 0; i < frames.size(); ++i) {
        value = static_cast<uint16_t>(value + u16(bytes, i * 2));
        EXPECT_EQ(frames[i], static_cast<int16_t>(value)) << "frame " << i;
    }
}

TEST(XmWriterSamples, InstrumentAndSampleHeadersCountBytes) {
    const XmModule m = tinyModule();
    const std::vector<uint8_t> b = written(m);
    const size_t ins = b.size() - 263 - 40 - 512;
    EXPECT_EQ(263u, u32(b, ins));
    EXPECT_EQ(0, std::memcmp(&b[ins + 4], "square", 6));
    EXPECT_EQ(1u, u16(b, ins + 27));          // one sample
    EXPECT_EQ(40u, u32(b, ins + 29));         // sample header size
    EXPECT_EQ(64u, u16(b, ins + 129 + 2));    // first envelope point's value
    EXPECT_EQ(2, b[ins + 225]);               // volume points
    EXPECT_EQ(1, b[ins + 227]);               // sustain point
    EXPECT_EQ(3, b[ins + 233]);               // envelope on, with sustain
    const size_t s = ins + 263;
    EXPECT_EQ(512u, u32(b, s));               // length in bytes
    EXPECT_EQ(0u, u32(b, s + 4));
    EXPECT_EQ(512u, u32(b, s + 8));           // loop length in bytes
    EXPECT_EQ(0x11, b[s + 14]);               // forward loop, 16-bit
}

// ---- Limits ----

TEST(XmWriterLimits, RejectsModulesTheFormatCannotHold) {
    std::vector<XmModule> bad(7, tinyModule());
    bad[0].channels = 3;
    bad[1].orders = {0, 2};
    bad[2].instruments[0].sample.loopLength = 300;
    bad[3].patterns[1] = emptyPattern(257, 2);
    bad[4].instruments[0].volumeEnvelope.points.assign(13, {0, 0});
    bad[5].orders.clear();
    bad[6].patterns[0].cells.pop_back();
    for (size_t i = 0; i < bad.size(); ++i) {
        std::vector<uint8_t> out = {1, 2, 3};
        EXPECT_FALSE(XmWriter::write(bad[i], out)) << "case " << i;
        EXPECT_TRUE(out.empty()) << "case " << i;
    }
}

TEST(XmWriterLimits, EnvelopeTicksMustRise) {
    XmModule m = tinyModule();
    m.instruments[0].volumeEnvelope.points = {{0, 64}, {0, 32}};
    std::vector<uint8_t> out;
    EXPECT_FALSE(XmWriter::write(m, out));
}

// ---- An independent reader ----

TEST(XmWriterReader, LibopenmptReadsWhatWasWritten) {
    const std::vector<uint8_t> b = written(tinyModule());
    int error = 0;
    openmpt_module* mod = openmpt_module_create_from_memory2(b.data(), b.size(), nullptr, nullptr, nullptr, nullptr,
                                                             &error, nullptr, nullptr);
    ASSERT_NE(nullptr, mod) << "error " << error;
    EXPECT_EQ(2, openmpt_module_get_num_channels(mod));
    EXPECT_EQ(3, openmpt_module_get_num_orders(mod));
    EXPECT_EQ(2, openmpt_module_get_num_patterns(mod));
    EXPECT_EQ(1, openmpt_module_get_num_instruments(mod));
    EXPECT_EQ(16, openmpt_module_get_pattern_num_rows(mod, 0));
    EXPECT_EQ(8, openmpt_module_get_pattern_num_rows(mod, 1));
    // 40 rows at 120 BPM, speed 6: five seconds.
    EXPECT_NEAR(5.0, openmpt_module_get_duration_seconds(mod), 1e-6);

    std::vector<int16_t> pcm(2 * 4410);
    ASSERT_EQ(4410u, openmpt_module_read_interleaved_stereo(mod, 44100, 4410, pcm.data()));
    int peak = 0;
    for (int16_t v : pcm) peak = std::max(peak, std::abs(static_cast<int>(v)));
    EXPECT_GT(peak, 1000);  // the note sounds
    openmpt_module_destroy(mod);
}
