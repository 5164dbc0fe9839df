// Module player: loading and its failures, play state, order seeking with its clamps, volume, looping, play time.
#include "sound/MusicPlayerMOD.h"

#include "TinyModule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace {

const int kRate = 44100;

std::string writeModule(const std::string& name, const TinyModule& module = TinyModule())
{
    std::string path = scratchPath(name);
    EXPECT_TRUE(module.write(path));
    return path;
}

std::string writeBytes(const std::string& name, const std::string& bytes)
{
    std::string path = scratchPath(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

class MusicPlayerMODTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        path = writeModule("tiny.xm");
        ASSERT_TRUE(player.load(path.c_str()));
    }
    std::string path;
    MusicPlayerMOD player;
};

}  // namespace

TEST(MusicPlayerMODLoad, MissingAndDamagedFilesFail)
{
    const std::string bad[] = {scratchPath("no-such-song.xm"), writeBytes("empty.xm", ""),
                               writeBytes("text.xm", "just some words, no music\n"),
                               writeBytes("cut.xm", "Extended Module: tiny"), "/tmp"};
    MusicPlayerMOD player;
    for (const std::string& file : bad)
        EXPECT_FALSE(player.load(file.c_str())) << file;
    EXPECT_FALSE(player.load(nullptr));
    EXPECT_EQ(nullptr, player.getFilename());
    EXPECT_EQ(-1, player.getVolume());
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.pause());
    EXPECT_FALSE(player.forward(10.0f));
    int16_t pcm[32];
    EXPECT_EQ(0u, player.render(pcm, 16, kRate));
}

TEST_F(MusicPlayerMODTest, ReloadStopsAndReplacesAndAFailedOneDropsTheSongButKeepsTheName)
{
    // Its own name again must not read freed memory.
    player.setFilename(player.getFilename());
    EXPECT_STREQ(path.c_str(), player.getFilename());
    TinyModule other;
    other.orders = 6;
    std::string otherPath = writeModule("other.xm", other);
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(player.setVolume(100));
    ASSERT_TRUE(player.load(otherPath.c_str()));
    EXPECT_TRUE(player.isStopped());
    EXPECT_EQ(6, player.getNumOrders());
    EXPECT_EQ(MusicPlayerMOD::MAX_VOLUME, player.getVolume());
    ASSERT_TRUE(player.play());
    EXPECT_FALSE(player.load(scratchPath("gone.xm").c_str()));
    EXPECT_TRUE(player.isStopped());
    EXPECT_FALSE(player.play());
    EXPECT_STREQ(otherPath.c_str(), player.getFilename());
}

TEST_F(MusicPlayerMODTest, PlayStopAndPauseRefuseTheWrongState)
{
    EXPECT_FALSE(player.stop());
    EXPECT_FALSE(player.pause());
    EXPECT_TRUE(player.play());
    EXPECT_FALSE(player.play());
    // Pause toggles: twice resumes.
    EXPECT_TRUE(player.pause());
    EXPECT_TRUE(player.isPaused());
    EXPECT_TRUE(player.pause());
    EXPECT_FALSE(player.isPaused());
    EXPECT_TRUE(player.stop());
    EXPECT_FALSE(player.stop());
    EXPECT_FALSE(player.pause());
    player.shutdown();
    EXPECT_FALSE(player.play());
}

// 16 rows at 125 bpm: 0.128 orders per second.
TEST_F(MusicPlayerMODTest, SeekStepsTruncateTowardZeroAndClampToOnePastTheLastOrder)
{
    EXPECT_FALSE(player.forward(10.0f));
    ASSERT_TRUE(player.play());
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        bool ahead;
        float seconds;
        int order;
    } steps[] = {{true, 7.7f, 0},  {true, 7.9f, 1},     {true, 15.7f, 3},    {false, 7.7f, 3},        {false, 15.7f, 1},
                 {true, -7.9f, 0}, {true, 1000.0f, 4},  {false, 1000.0f, 0}, {true, inf, 4},          {false, inf, 0},
                 {true, 1e30f, 4}, {false, 1000.0f, 0}, {true, 8.0f, 1},     {true, std::nanf(""), 1}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.seconds);
        EXPECT_TRUE(step.ahead ? player.forward(step.seconds) : player.backward(step.seconds));
        EXPECT_EQ(step.order, player.getOrder());
    }
    // The driver's start: a stopped song starts again from order 0.
    ASSERT_TRUE(player.stop());
    player.initiate();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_EQ(0, player.getOrder());
}

TEST(MusicPlayerMODSeek, PastTheEndWrapsToTheRestartOrderOncePlayed)
{
    TinyModule module;
    module.restart = 1;
    MusicPlayerMOD player;
    ASSERT_TRUE(player.load(writeModule("restart.xm", module).c_str()));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(player.forward(1000.0f));
    std::vector<int16_t> pcm(2 * 64);
    EXPECT_EQ(64u, player.render(pcm.data(), 64, kRate));
    EXPECT_EQ(1, player.getOrder());
}

TEST_F(MusicPlayerMODTest, VolumeClampsToZeroThrough256AndLoopPointsAreIgnored)
{
    EXPECT_TRUE(player.setVolume(300));
    EXPECT_EQ(256, player.getVolume());
    EXPECT_TRUE(player.setVolume(-3));
    EXPECT_EQ(0, player.getVolume());
    player.setLoop(1.0f, 2.0f);
    EXPECT_FALSE(player.isLooping());
    EXPECT_EQ(0.0f, player.getLoopEnd());
    player.shutdown();
    EXPECT_FALSE(player.setVolume(100));
    EXPECT_EQ(-1, player.getVolume());
}

TEST_F(MusicPlayerMODTest, TheSongLoopsForever)
{
    const size_t end = static_cast<size_t>(TinyModule().seconds() * kRate);
    std::vector<int16_t> pcm(2 * 4096);
    bool soundAfterTheEnd = false;
    for (size_t made = 0; made < end * 5 / 2; made += 4096) {
        ASSERT_EQ(4096u, player.render(pcm.data(), 4096, kRate));
        for (size_t i = 0; made > end && i < pcm.size(); ++i)
            soundAfterTheEnd = soundAfterTheEnd || pcm[i] != 0;
    }
    EXPECT_TRUE(soundAfterTheEnd);
}

TEST_F(MusicPlayerMODTest, LocationCountsTheSoundProducedSincePlay)
{
    ASSERT_TRUE(player.play());
    std::vector<int16_t> pcm(2 * kRate);
    ASSERT_EQ(static_cast<size_t>(kRate), player.render(pcm.data(), kRate, kRate));
    EXPECT_EQ(1000.0f, player.getCurrentLocation());
    // A second at another rate still adds one second.
    ASSERT_EQ(22050u, player.render(pcm.data(), 22050, 22050));
    EXPECT_EQ(2000.0f, player.getCurrentLocation());
    ASSERT_TRUE(player.stop());
    ASSERT_TRUE(player.play());
    EXPECT_EQ(0.0f, player.getCurrentLocation());
    EXPECT_EQ(0u, player.render(pcm.data(), 16, 0));
    EXPECT_EQ(0u, player.render(nullptr, 16, kRate));
}
