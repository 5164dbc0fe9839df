// The song meter: readings at a moment are the same however often and in whatever order they are taken, they
// follow what the song plays (channel levels, the row, the sound), and bad files and stretches are refused.
#include "sound/SongMeter.h"

#include "sound/MusicPlayerMOD.h"

#include "TinyModule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

namespace {

// The tiny module's rows last 3 ticks at 125 bpm.
const double ROW_SECONDS = 3 * 2.5 / 125;

class SongMeterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(tiny.write(song));
        ASSERT_TRUE(meter.initiate(song.c_str()));
    }

    TinyModule tiny;
    const std::string song = scratchPath("meter.xm");
    SongMeter meter;
};

bool same(const SongReading& a, const SongReading& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

TEST_F(SongMeterTest, AMomentReadsTheSameAfterOtherReadingsAndAfterMeasuringTheStretchAgain)
{
    ASSERT_TRUE(meter.prepare(0.0, tiny.seconds()));
    SongReading first, other, again;
    ASSERT_TRUE(meter.measure(1.234, first));
    meter.measure(0.3, other);
    meter.measure(2.9, other);
    ASSERT_TRUE(meter.measure(1.234, again));
    EXPECT_TRUE(same(first, again));
    // Measuring again after the song has played on elsewhere: the same figures.
    ASSERT_TRUE(meter.prepare(2.0, 3.0));
    ASSERT_TRUE(meter.prepare(0.0, tiny.seconds()));
    ASSERT_TRUE(meter.measure(1.234, again));
    EXPECT_TRUE(same(first, again));
}

TEST(SongMeter, TheSongsOwnStretchMeasuresTheSameFirstAndAfterOthers)
{
    // A real song seeks to a later place after it has played: each stretch starts afresh.
    SongMeter meter;
    if (!meter.initiate("data/music/velmora.xm"))
        GTEST_SKIP() << "no forged song in the working directory";
    SongReading first, again;
    ASSERT_TRUE(meter.prepare(201.0, 215.0));
    const double start = meter.getStretchStart();
    ASSERT_TRUE(meter.measure(203.5, first));
    ASSERT_TRUE(meter.prepare(230.0, 231.0));
    ASSERT_TRUE(meter.prepare(201.0, 215.0));
    EXPECT_EQ(meter.getStretchStart(), start);
    ASSERT_TRUE(meter.measure(203.5, again));
    EXPECT_TRUE(same(first, again));
}

TEST_F(SongMeterTest, LevelsRowsAndSoundFollowTheSong)
{
    ASSERT_TRUE(meter.prepare(0.0, tiny.seconds()));
    EXPECT_EQ(meter.getChannels(), 2);
    SongReading early, late;
    // The first pattern strikes only the first channel; the second adds the other, which rings on.
    ASSERT_TRUE(meter.measure(0.5, early));
    ASSERT_TRUE(meter.measure(1.5, late));
    EXPECT_TRUE(early.valid);
    EXPECT_EQ(early.channels, 2);
    EXPECT_GT(early.levels[0], 0.0f);
    EXPECT_EQ(early.levels[1], 0.0f);
    EXPECT_GT(late.levels[1], 0.0f);
    EXPECT_EQ(std::make_tuple(early.order, late.order, late.pattern, early.rows), std::make_tuple(0, 1, 1, 16));
    EXPECT_NEAR(early.row, static_cast<int>(0.5 / ROW_SECONDS), 1);
    float loudest = 0.0f;
    for (float v : late.wave) {
        EXPECT_LE(v, 1.0f);
        EXPECT_GE(v, -1.0f);
        loudest = std::max(loudest, v);
    }
    EXPECT_GT(loudest, 0.05f);
    for (float level : late.levels)
        EXPECT_LE(level, 1.0f);
}

TEST_F(SongMeterTest, OutsideTheStretchOrWithoutOneTheReadingIsIdle)
{
    SongReading reading;
    EXPECT_FALSE(meter.measure(0.5, reading));
    ASSERT_TRUE(meter.prepare(1.0, 2.0));
    EXPECT_LE(meter.getStretchStart(), 1.0);
    EXPECT_GE(meter.getStretchEnd(), 2.0);
    reading.valid = true;
    EXPECT_FALSE(meter.measure(meter.getStretchEnd() + 0.01, reading));
    EXPECT_FALSE(reading.valid);
    EXPECT_EQ(reading.channels, 0);
    EXPECT_FALSE(meter.measure(meter.getStretchStart() - 0.01, reading));
    EXPECT_TRUE(meter.measure(1.5, reading));
    meter.release();
    EXPECT_FALSE(meter.measure(1.5, reading));
}

TEST_F(SongMeterTest, PatternCellsAreReadAsStored)
{
    // libopenmpt numbers notes from its own C-0: the file's 49 (FastTracker's C-4) reads as 61.
    PatternCell cell;
    ASSERT_TRUE(meter.cell(0, 0, 0, cell));
    EXPECT_EQ(cell.note, 61);
    EXPECT_EQ(cell.instrument, 1);
    ASSERT_TRUE(meter.cell(0, 0, 1, cell));
    EXPECT_EQ(cell.note, 0);
    ASSERT_TRUE(meter.cell(1, 0, 1, cell));
    EXPECT_EQ(cell.note, 68);
    EXPECT_EQ(meter.rowsOf(1), 16);
    EXPECT_FALSE(meter.cell(2, 0, 0, cell));
    EXPECT_FALSE(meter.cell(0, 16, 0, cell));
    EXPECT_FALSE(meter.cell(0, -1, 0, cell));
    EXPECT_FALSE(meter.cell(0, 0, 2, cell));
    EXPECT_FALSE(meter.cell(-1, 0, 0, cell));
    EXPECT_EQ(meter.rowsOf(7), 0);
}

TEST_F(SongMeterTest, RefusesWhatIsNoSongAndStretchesItCannotMeasure)
{
    EXPECT_FALSE(meter.prepare(2.0, 1.0));
    EXPECT_FALSE(meter.prepare(0.0, SongMeter::MAX_STRETCH_SECONDS + 1.0));
    EXPECT_FALSE(meter.isPrepared());
    SongMeter other;
    EXPECT_FALSE(other.initiate(scratchPath("missing.xm").c_str()));
    EXPECT_FALSE(other.initiate(nullptr));
    const std::string text = scratchPath("not-a-song.xm");
    FILE* out = std::fopen(text.c_str(), "wb");
    ASSERT_NE(out, nullptr);
    std::fputs("not a module at all", out);
    std::fclose(out);
    EXPECT_FALSE(other.initiate(text.c_str()));
    EXPECT_FALSE(other.isOpen());
    EXPECT_FALSE(other.prepare(0.0, 1.0));
    PatternCell cell;
    EXPECT_FALSE(other.cell(0, 0, 0, cell));
}

TEST_F(SongMeterTest, TheSongTimeIsTheSceneTimeUnlessAModuleIsPlaying)
{
    EXPECT_DOUBLE_EQ(meter.songTime(12.5), 12.5);
    MusicPlayerMOD player;
    ASSERT_TRUE(player.load(song.c_str()));
    ASSERT_TRUE(meter.initiate(song.c_str(), &player));
    // A stopped module keeps no clock.
    EXPECT_DOUBLE_EQ(meter.songTime(12.5), 12.5);
    ASSERT_TRUE(player.play());
    int16_t samples[2 * 4410];
    player.render(samples, 4410, SongMeter::RATE);
    EXPECT_NEAR(meter.songTime(12.5), 0.1, 1e-3);
    player.stop();
}
