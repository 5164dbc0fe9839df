// Tests of the finished soundtrack through libopenmpt: length, cuts on pattern boundaries, levels, determinism.
#include "tools/composer/Song.h"
#include "tools/composer/Synth.h"
#include "tools/composer/XmWriter.h"

#include <gtest/gtest.h>
#include <libopenmpt/libopenmpt.h>

#include <cmath>
#include <fstream>
#include <iterator>

namespace {

// Where the picture cuts, in seconds.
const double kCuts[] = {35.5, 68.5, 76, 109, 142.5, 150.5, 168.5, 201.5, 214.5, 247.5, 259.5};
const double kRowSeconds = 0.125;
const int kRate = 44100;

const std::vector<uint8_t>& songBytes() {
    static std::vector<uint8_t> bytes;
    if (bytes.empty())
        XmWriter::write(Song::compose(), bytes);
    return bytes;
}

openmpt_module* load(const std::vector<uint8_t>& bytes) {
    int error = 0;
    return openmpt_module_create_from_memory2(bytes.data(), bytes.size(), nullptr, nullptr, nullptr, nullptr,
                                              &error, nullptr, nullptr);
}

// The whole song rendered once, 16-bit stereo.
const std::vector<int16_t>& rendered() {
    static std::vector<int16_t> pcm;
    if (!pcm.empty())
        return pcm;
    openmpt_module* mod = load(songBytes());
    if (!mod)
        return pcm;
    std::vector<int16_t> block(2 * 8192);
    for (;;) {
        const size_t frames = openmpt_module_read_interleaved_stereo(mod, kRate, 8192, block.data());
        if (!frames) break;
        pcm.insert(pcm.end(), block.begin(), block.begin() + 2 * frames);
    }
    openmpt_module_destroy(mod);
    return pcm;
}

class SongPlayback : public ::testing::Test {
protected:
    void SetUp() override {
        mod = load(songBytes());
        ASSERT_NE(nullptr, mod);
    }
    void TearDown() override {
        if (mod) openmpt_module_destroy(mod);
    }
    openmpt_module* mod = nullptr;
};

}  // namespace

// ---- Timing ----

TEST_F(SongPlayback, EndsAfterTheLastSceneAndBeforeFiveMinutes) {
    const double duration = openmpt_module_get_duration_seconds(mod);
    EXPECT_GT(duration, 289.5);
    EXPECT_LE(duration, 300.0);
}

TEST_F(SongPlayback, EveryCutFallsOnAPatternBoundary) {
    std::vector<double> boundaries;
    for (int order = 0; order < openmpt_module_get_num_orders(mod); ++order)
        boundaries.push_back(openmpt_module_set_position_order_row(mod, order, 0));
    for (double cut : kCuts) {
        double nearest = 1e9;
        for (double b : boundaries) nearest = std::min(nearest, std::fabs(b - cut));
        EXPECT_LE(nearest, kRowSeconds) << "cut at " << cut;
    }
}

TEST_F(SongPlayback, TempoNeverChanges) {
    for (int order = 0; order < openmpt_module_get_num_orders(mod); ++order) {
        openmpt_module_set_position_order_row(mod, order, 0);
        EXPECT_EQ(Song::kSpeed, openmpt_module_get_current_speed(mod)) << "order " << order;
        EXPECT_EQ(Song::kBpm, openmpt_module_get_current_tempo(mod)) << "order " << order;
    }
}

TEST(SongPatterns, UseNoEffectThatMovesTime) {
    const XmModule m = Song::compose();
    for (const XmPattern& p : m.patterns)
        for (const XmCell& c : p.cells) {
            EXPECT_NE(0x0B, c.effect);  // position jump
            EXPECT_NE(0x0D, c.effect);  // pattern break
            EXPECT_NE(0x0F, c.effect);  // speed or tempo
            if (c.effect == 0x0E) {
                EXPECT_NE(0x60, c.param & 0xF0);  // pattern loop
                EXPECT_NE(0xE0, c.param & 0xF0);  // pattern delay
            }
            EXPECT_LE(c.instrument, m.instruments.size());
        }
}

// ---- Levels ----

TEST(SongLevels, RendersTheWholeSong) {
    const std::vector<int16_t>& pcm = rendered();
    EXPECT_GE(pcm.size() / 2, static_cast<size_t>(289.5 * kRate));
}

TEST(SongLevels, NeverClips) {
    const std::vector<int16_t>& pcm = rendered();
    ASSERT_FALSE(pcm.empty());
    int peak = 0;
    for (int16_t v : pcm) peak = std::max(peak, std::abs(static_cast<int>(v)));
    EXPECT_LT(peak, 32767);
    EXPECT_LT(peak, 29000) << "less than 1 dB of headroom";
}

TEST(SongLevels, NeverSilentForTwoSeconds) {
    const std::vector<int16_t>& pcm = rendered();
    ASSERT_FALSE(pcm.empty());
    size_t run = 0, longest = 0;
    for (size_t i = 0; i + 1 < pcm.size(); i += 2) {
        const bool quiet = std::abs(pcm[i]) < 64 && std::abs(pcm[i + 1]) < 64;
        run = quiet ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_LT(longest, static_cast<size_t>(2 * kRate));
}

// The busiest section should not be more than about 9 dB above the quietest
// full section, so the listener never reaches for the volume knob.
TEST(SongLevels, SectionsKeepAConsistentLoudness) {
    const std::vector<int16_t>& pcm = rendered();
    ASSERT_FALSE(pcm.empty());
    std::vector<double> starts = {0};
    starts.insert(starts.end(), std::begin(kCuts), std::end(kCuts));
    starts.push_back(289.5);
    double loudest = -1e9, quietest = 1e9;
    for (size_t s = 0; s + 1 < starts.size(); ++s) {
        const size_t a = static_cast<size_t>(starts[s] * kRate), b = static_cast<size_t>(starts[s + 1] * kRate);
        double sum = 0;
        for (size_t i = 2 * a; i < 2 * b && i < pcm.size(); ++i) sum += static_cast<double>(pcm[i]) * pcm[i];
        const double db = 10 * std::log10(sum / (2.0 * (b - a)) / (32768.0 * 32768.0));
        loudest = std::max(loudest, db);
        quietest = std::min(quietest, db);
        EXPECT_GT(db, -30.0) << "section from " << starts[s];
    }
    EXPECT_LT(loudest - quietest, 9.0);
}

// ---- The file ----

TEST(SongFile, ComposingTwiceGivesTheSameBytes) {
    std::vector<uint8_t> again;
    ASSERT_TRUE(XmWriter::write(Song::compose(), again));
    EXPECT_EQ(songBytes(), again);
}

TEST(SongFile, TheBuildWroteTheCurrentSong) {
    std::ifstream file(std::string(VELMORA_BINARY_DIR) + "/data/music/velmora.xm", std::ios::binary);
    ASSERT_TRUE(file.good());
    const std::vector<uint8_t> onDisk((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_EQ(songBytes(), onDisk);
}

TEST(SongFile, IsSmall) { EXPECT_LT(songBytes().size(), 700u * 1024u); }

TEST(SongFile, SectionsStartWhereTheScheduleCuts) {
    const std::vector<int> rows = Song::sectionRows();
    ASSERT_EQ(std::size(kCuts) + 2, rows.size());
    for (size_t i = 0; i < std::size(kCuts); ++i)
        EXPECT_EQ(static_cast<int>(kCuts[i] * Song::kRowsPerSecond), rows[i + 1]);
}
