// Module player: loading, play state, order seeking with its clamps, volume, endless looping, play time.
#include "sound/MusicPlayerMOD.h"

#include "TinyModule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace {

const int kRate = 44100;

std::string writeModule(const std::string& name, const TinyModule& module = TinyModule()) {
    std::string path = scratchPath(name);
    EXPECT_TRUE(module.write(path));
    return path;
}

std::string writeBytes(const std::string& name, const std::string& bytes) {
    std::string path = scratchPath(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

class MusicPlayerMODTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = writeModule("tiny.xm");
        ASSERT_TRUE(player.load(path.c_str()));
    }
    std::string path;
    MusicPlayerMOD player;
};

}  // namespace

// ---- loading ----

TEST(MusicPlayerMODLoad, MissingFileFails) {
    MusicPlayerMOD player;
    EXPECT_FALSE(player.load(scratchPath("no-such-song.xm").c_str()));
    EXPECT_EQ(nullptr, player.getFilename());
    EXPECT_EQ(-1, player.getVolume());
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.load(nullptr));
}

TEST(MusicPlayerMODLoad, FilesThatAreNoModuleFail) {
    TinyModule module;
    std::string whole = writeModule("whole.xm", module);
    std::ifstream in(whole, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 60u);

    MusicPlayerMOD player;
    EXPECT_FALSE(player.load(writeBytes("empty.xm", "").c_str()));
    EXPECT_FALSE(player.load(writeBytes("text.xm", "just some words, no music\n").c_str()));
    EXPECT_FALSE(player.load(writeBytes("cut.xm", bytes.substr(0, 40)).c_str()));
    EXPECT_FALSE(player.load("/tmp"));
    EXPECT_EQ(nullptr, player.getFilename());
}

TEST_F(MusicPlayerMODTest, LoadKeepsTheNameAndLeavesTheSongStopped) {
    EXPECT_STREQ(path.c_str(), player.getFilename());
    EXPECT_TRUE(player.isStopped());
    EXPECT_EQ(MusicPlayerMOD::MAX_VOLUME, player.getVolume());
    EXPECT_EQ(4, player.getNumOrders());
    EXPECT_EQ(0.0f, player.getBpm());
}

TEST_F(MusicPlayerMODTest, ReloadWhilePlayingStopsAndReplaces) {
    TinyModule other;
    other.orders = 6;
    std::string otherPath = writeModule("other.xm", other);
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(player.setVolume(100));
    ASSERT_TRUE(player.load(otherPath.c_str()));
    EXPECT_TRUE(player.isStopped());
    EXPECT_STREQ(otherPath.c_str(), player.getFilename());
    EXPECT_EQ(6, player.getNumOrders());
    EXPECT_EQ(MusicPlayerMOD::MAX_VOLUME, player.getVolume());
    EXPECT_TRUE(player.play());
}

TEST_F(MusicPlayerMODTest, FailedReloadDropsTheOldSongButKeepsItsName) {
    ASSERT_TRUE(player.play());
    EXPECT_FALSE(player.load(scratchPath("gone.xm").c_str()));
    EXPECT_TRUE(player.isStopped());
    EXPECT_EQ(-1, player.getVolume());
    EXPECT_FALSE(player.play());
    EXPECT_STREQ(path.c_str(), player.getFilename());
}

TEST_F(MusicPlayerMODTest, ShutdownFreesTheSong) {
    ASSERT_TRUE(player.play());
    player.shutdown();
    EXPECT_EQ(-1, player.getVolume());
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.pause());
    EXPECT_TRUE(player.load(path.c_str()));
    EXPECT_TRUE(player.play());
}

// ---- play, stop, pause ----

TEST_F(MusicPlayerMODTest, PlayAndStopEachWorkOnlyOnce) {
    EXPECT_FALSE(player.stop());
    EXPECT_TRUE(player.play());
    EXPECT_TRUE(player.isPlaying());
    EXPECT_FALSE(player.play());
    EXPECT_TRUE(player.stop());
    EXPECT_FALSE(player.stop());
    EXPECT_TRUE(player.play());
}

TEST(MusicPlayerMODPlay, TempoIsReadWhenPlayStarts) {
    TinyModule module;
    module.bpm = 140;
    MusicPlayerMOD player;
    ASSERT_TRUE(player.load(writeModule("fast.xm", module).c_str()));
    EXPECT_EQ(0.0f, player.getBpm());
    ASSERT_TRUE(player.play());
    EXPECT_EQ(140.0f, player.getBpm());
}

TEST_F(MusicPlayerMODTest, PauseTwiceResumesAndNeedsAPlayingSong) {
    EXPECT_FALSE(player.pause());
    ASSERT_TRUE(player.play());
    EXPECT_TRUE(player.pause());
    EXPECT_TRUE(player.isPaused());
    EXPECT_TRUE(player.isPlaying());
    EXPECT_TRUE(player.pause());
    EXPECT_FALSE(player.isPaused());
    ASSERT_TRUE(player.stop());
    EXPECT_FALSE(player.pause());
}

TEST_F(MusicPlayerMODTest, InitiateRestartsAStoppedSongFromOrderZero) {
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(player.forward(20.0f));
    ASSERT_EQ(2, player.getOrder());
    ASSERT_TRUE(player.stop());
    player.initiate();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_EQ(0, player.getOrder());
}

// ---- seeking by orders (16 rows at 125 bpm: 0.128 orders per second) ----

TEST_F(MusicPlayerMODTest, SeekNeedsAPlayingSong) {
    EXPECT_FALSE(player.forward(10.0f));
    EXPECT_FALSE(player.backward(10.0f));
    MusicPlayerMOD empty;
    EXPECT_FALSE(empty.forward(10.0f));
    EXPECT_EQ(-1, empty.getOrder());
}

TEST_F(MusicPlayerMODTest, StepsAreTruncatedTowardZero) {
    ASSERT_TRUE(player.play());
    EXPECT_TRUE(player.forward(7.7f));
    EXPECT_EQ(0, player.getOrder());
    EXPECT_TRUE(player.forward(7.9f));
    EXPECT_EQ(1, player.getOrder());
    EXPECT_TRUE(player.forward(15.7f));
    EXPECT_EQ(3, player.getOrder());
    EXPECT_TRUE(player.backward(7.7f));
    EXPECT_EQ(3, player.getOrder());
    EXPECT_TRUE(player.backward(15.7f));
    EXPECT_EQ(1, player.getOrder());
    // Negative seconds seek the other way.
    EXPECT_TRUE(player.forward(-7.9f));
    EXPECT_EQ(0, player.getOrder());
}

TEST_F(MusicPlayerMODTest, SeeksClampToZeroAndOnePastTheLastOrder) {
    ASSERT_TRUE(player.play());
    EXPECT_TRUE(player.forward(1000.0f));
    EXPECT_EQ(player.getNumOrders(), player.getOrder());
    EXPECT_TRUE(player.backward(1000.0f));
    EXPECT_EQ(0, player.getOrder());
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(player.forward(inf));
    EXPECT_EQ(4, player.getOrder());
    EXPECT_TRUE(player.backward(inf));
    EXPECT_EQ(0, player.getOrder());
    EXPECT_TRUE(player.forward(1e30f));
    EXPECT_EQ(4, player.getOrder());
    ASSERT_TRUE(player.backward(1000.0f));
    ASSERT_TRUE(player.forward(8.0f));
    EXPECT_TRUE(player.forward(std::nanf("")));
    EXPECT_EQ(1, player.getOrder());
}

TEST(MusicPlayerMODSeek, PastTheEndWrapsToTheRestartOrderOncePlayed) {
    TinyModule module;
    module.restart = 1;
    MusicPlayerMOD player;
    ASSERT_TRUE(player.load(writeModule("restart.xm", module).c_str()));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(player.forward(1000.0f));
    ASSERT_EQ(4, player.getOrder());
    std::vector<int16_t> pcm(2 * 64);
    EXPECT_EQ(64u, player.render(pcm.data(), 64, kRate));
    EXPECT_EQ(1, player.getOrder());
}

// ---- volume ----

TEST_F(MusicPlayerMODTest, VolumeIsClampedToZeroThrough256) {
    EXPECT_TRUE(player.setVolume(300));
    EXPECT_EQ(256, player.getVolume());
    EXPECT_TRUE(player.setVolume(-3));
    EXPECT_EQ(0, player.getVolume());
    player.shutdown();
    EXPECT_FALSE(player.setVolume(100));
    EXPECT_EQ(-1, player.getVolume());
}

// ---- loop points do not apply ----

TEST_F(MusicPlayerMODTest, LoopPointsAreIgnored) {
    player.setLoop(1.0f, 2.0f);
    EXPECT_FALSE(player.isLooping());
    EXPECT_EQ(0.0f, player.getLoopStart());
    EXPECT_EQ(0.0f, player.getLoopEnd());
}

// ---- rendering and play time ----

TEST_F(MusicPlayerMODTest, TheSongLoopsForever) {
    TinyModule module;
    size_t total = static_cast<size_t>((module.seconds() * 2.5) * kRate);
    std::vector<int16_t> pcm(2 * 4096);
    size_t made = 0;
    bool soundAfterTheEnd = false;
    size_t end = static_cast<size_t>(module.seconds() * kRate);
    while (made < total) {
        size_t got = player.render(pcm.data(), 4096, kRate);
        ASSERT_EQ(4096u, got);
        for (size_t i = 0; made > end && i < pcm.size(); ++i)
            soundAfterTheEnd = soundAfterTheEnd || pcm[i] != 0;
        made += got;
    }
    EXPECT_TRUE(soundAfterTheEnd);
}

TEST_F(MusicPlayerMODTest, LocationCountsTheSoundProducedSincePlay) {
    ASSERT_TRUE(player.play());
    EXPECT_EQ(0.0f, player.getCurrentLocation());
    std::vector<int16_t> pcm(2 * kRate);
    ASSERT_EQ(static_cast<size_t>(kRate), player.render(pcm.data(), kRate, kRate));
    EXPECT_EQ(1000.0f, player.getCurrentLocation());
    // A second at another rate still adds one second.
    ASSERT_EQ(22050u, player.render(pcm.data(), 22050, 22050));
    EXPECT_EQ(2000.0f, player.getCurrentLocation());
    ASSERT_TRUE(player.stop());
    ASSERT_TRUE(player.play());
    EXPECT_EQ(0.0f, player.getCurrentLocation());
}

TEST(MusicPlayerMODRender, NothingWithoutASongOrARate) {
    MusicPlayerMOD player;
    std::vector<int16_t> pcm(2 * 16, 7);
    EXPECT_EQ(0u, player.render(pcm.data(), 16, kRate));
    EXPECT_FALSE(player.setPosition(1.0));
    ASSERT_TRUE(player.load(writeModule("rate.xm").c_str()));
    EXPECT_EQ(0u, player.render(pcm.data(), 16, 0));
    EXPECT_EQ(0u, player.render(nullptr, 16, kRate));
}
