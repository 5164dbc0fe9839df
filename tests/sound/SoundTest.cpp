// The sound system: output start and stop, the owning player registry, the global volume and the mix.
#include "sound/Sound.h"

#include "sound/MusicPlayer.h"
#include "sound/MusicPlayerMOD.h"

#include "TinyModule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Calls {
    int plays = 0, stops = 0, deletes = 0;
};

// Counts what the registry does to a player.
class CountingPlayer : public MusicPlayer {
public:
    CountingPlayer(Calls& calls, const char* name) : calls(calls) { setFilename(name); }
    ~CountingPlayer() override { ++calls.deletes; }
    void initiate() override {}
    void shutdown() override {}
    void update() override {}
    bool load(const char*) override { return true; }
    bool play() override
    {
        ++calls.plays;
        stopped = false;
        return true;
    }
    bool stop() override
    {
        ++calls.stops;
        stopped = true;
        return true;
    }
    bool pause() override { return false; }
    bool forward(float) override { return false; }
    bool backward(float) override { return false; }
    float getCurrentLocation() override { return 0.0f; }
    bool setVolume(int) override { return false; }
    int getVolume() const override { return -1; }

private:
    Calls& calls;
};

// The silent driver: no audio thread, the test pulls the mix itself.
class SoundTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        sound->setDriver(-1);
        ASSERT_TRUE(sound->initiate(44100, 32));
        ASSERT_TRUE(TinyModule().write(module));
    }
    void TearDown() override
    {
        sound->shutdown();
        sound->setGlobalVolume(Sound::MAX_GLOBAL_VOLUME);
    }
    void start(MusicPlayerMOD& player)
    {
        ASSERT_TRUE(player.load(module.c_str()));
        ASSERT_TRUE(player.play());
    }
    std::vector<int16_t> mix(size_t frames)
    {
        std::vector<int16_t> out(2 * frames, 123);
        sound->mix(reinterpret_cast<uint8_t*>(out.data()), static_cast<int>(out.size() * sizeof(int16_t)));
        return out;
    }
    // The tiny module as a fresh player renders it on its own.
    std::vector<int16_t> reference(size_t frames)
    {
        MusicPlayerMOD player;
        EXPECT_TRUE(player.load(module.c_str()));
        std::vector<int16_t> out(2 * frames);
        EXPECT_EQ(frames, player.render(out.data(), frames, 44100));
        return out;
    }
    static bool silent(const std::vector<int16_t>& pcm)
    {
        return std::all_of(pcm.begin(), pcm.end(), [](int16_t v) { return v == 0; });
    }
    Sound* sound = Sound::getHandle();
    std::string module = scratchPath("mix.xm");
};

}  // namespace

TEST_F(SoundTest, InitiatesOnceRefusesBadArgumentsAndAMissingDeviceLeavesNothingHalfOpen)
{
    EXPECT_TRUE(sound->isInitialised());
    EXPECT_FALSE(sound->isOutputOpen());
    EXPECT_FALSE(sound->initiate(44100, 32));
    sound->shutdown();
    EXPECT_FALSE(sound->initiate(0, 32));
    EXPECT_FALSE(sound->initiate(44100, -1));
    sound->setDriver(0);
    setenv("SDL_AUDIODRIVER", "no-such-audio", 1);
    EXPECT_FALSE(sound->initiate(44100, 32));
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    EXPECT_FALSE(sound->isInitialised() || sound->isOutputOpen());
    EXPECT_TRUE(sound->initiate(22050, 32));
    EXPECT_TRUE(sound->isOutputOpen());
    EXPECT_EQ(22050, sound->getMixRate());
}

TEST_F(SoundTest, GlobalVolumeIsClampedToZeroThrough255)
{
    sound->setGlobalVolume(300);
    EXPECT_EQ(255, sound->getGlobalVolume());
    sound->setGlobalVolume(-5);
    EXPECT_EQ(0, sound->getGlobalVolume());
}

TEST_F(SoundTest, FirstPlayerAddedIsCurrentAndShutdownStopsItAndDeletesEveryPlayer)
{
    Calls current, other;
    CountingPlayer* first = new CountingPlayer(current, "first.xm");
    EXPECT_FALSE(sound->addMusic(nullptr));
    EXPECT_TRUE(sound->addMusic(first));
    EXPECT_TRUE(sound->addMusic(new CountingPlayer(other, "b.xm")));
    EXPECT_TRUE(sound->addMusic(new CountingPlayer(other, "c.xm")));
    EXPECT_EQ(first, sound->getCurrentMusic());
    EXPECT_EQ(0, current.plays);
    sound->shutdown();
    EXPECT_EQ(1, current.stops);
    EXPECT_EQ(0, other.stops);
    EXPECT_EQ(1, current.deletes);
    EXPECT_EQ(2, other.deletes);
}

TEST_F(SoundTest, AddMusicRefusesOnlyNullAndAPlayerAddedTwiceIsDeletedOnce)
{
    Calls calls;
    CountingPlayer* twice = new CountingPlayer(calls, "twice.xm");
    EXPECT_TRUE(sound->addMusic(twice));
    EXPECT_TRUE(sound->addMusic(twice));
    // Removing unlinks one registration; the other still holds it.
    EXPECT_TRUE(sound->removeMusic(twice));
    EXPECT_EQ(twice, sound->findMusic("twice.xm"));
    EXPECT_TRUE(sound->addMusic(twice));
    sound->shutdown();
    EXPECT_EQ(1, calls.deletes);
}

TEST_F(SoundTest, SetCurrentMusicStopsTheOldAndPlaysTheNewAndRemoveUnlinksWithoutDeleting)
{
    Calls oldCalls, newCalls;
    CountingPlayer* old = new CountingPlayer(oldCalls, "old.xm");
    CountingPlayer* next = new CountingPlayer(newCalls, "new.xm");
    ASSERT_TRUE(sound->addMusic(old));
    ASSERT_TRUE(sound->addMusic(next));
    EXPECT_TRUE(sound->setCurrentMusic(next));
    EXPECT_EQ(1, oldCalls.stops);
    EXPECT_EQ(1, newCalls.plays);
    // By its exact name; already current: neither stopped nor played again.
    EXPECT_FALSE(sound->setCurrentMusic("OLD.xm"));
    EXPECT_TRUE(sound->setCurrentMusic("old.xm"));
    EXPECT_TRUE(sound->setCurrentMusic(old));
    EXPECT_EQ(old, sound->getCurrentMusic());
    EXPECT_EQ(1, newCalls.stops);
    EXPECT_EQ(1, oldCalls.plays);
    CountingPlayer stranger(oldCalls, "stranger.xm");
    EXPECT_FALSE(sound->setCurrentMusic(&stranger));
    EXPECT_FALSE(sound->setCurrentMusic(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(sound->removeMusic(&stranger));
    EXPECT_TRUE(sound->removeMusic(next));
    EXPECT_FALSE(sound->removeMusic(next));
    sound->shutdown();
    EXPECT_EQ(0, newCalls.deletes);
    delete next;
}

TEST_F(SoundTest, FullVolumesPassTheModuleThroughBitForBitAndHalfVolumeHalves)
{
    MusicPlayerMOD heard, half;
    start(heard);
    std::vector<int16_t> raw = reference(3000);
    EXPECT_FALSE(silent(raw));
    EXPECT_EQ(raw, mix(3000));
    ASSERT_TRUE(heard.stop());
    start(half);
    ASSERT_TRUE(half.setVolume(128));
    std::vector<int16_t> mixed = mix(2048);
    for (size_t i = 0; i < mixed.size(); ++i)
        ASSERT_EQ(raw[i] / 2, mixed[i]) << "sample " << i;
}

TEST_F(SoundTest, TwoSongsAddUpAndSaturate)
{
    MusicPlayerMOD a, b;
    start(a);
    start(b);
    std::vector<int16_t> raw = reference(2048);
    std::vector<int16_t> mixed = mix(2048);
    for (size_t i = 0; i < raw.size(); ++i) {
        int doubled = 2 * raw[i];
        ASSERT_EQ(doubled > 32767 ? 32767 : (doubled < -32768 ? -32768 : doubled), mixed[i]) << "sample " << i;
    }
}

TEST_F(SoundTest, SilencedPausedAndStoppedSongsAreNotHeard)
{
    MusicPlayerMOD player;
    start(player);
    sound->setGlobalVolume(0);
    EXPECT_TRUE(silent(mix(4410)));
    // Time goes on under a zero volume, not while paused.
    EXPECT_EQ(100.0f, player.getCurrentLocation());
    sound->setGlobalVolume(255);
    ASSERT_TRUE(player.pause());
    EXPECT_TRUE(silent(mix(1024)));
    EXPECT_EQ(100.0f, player.getCurrentLocation());
    ASSERT_TRUE(player.pause());
    EXPECT_FALSE(silent(mix(1024)));
    ASSERT_TRUE(player.stop());
    EXPECT_TRUE(silent(mix(1024)));
}

TEST_F(SoundTest, ABufferOfOddLengthIsFilledWithoutOverrun)
{
    MusicPlayerMOD player;
    start(player);
    std::vector<uint8_t> buffer(4 * 100 + 3, 0xAA);
    sound->mix(buffer.data(), static_cast<int>(buffer.size()));
    EXPECT_EQ(0, buffer[400] | buffer[402]);
    EXPECT_EQ(100.0f * 1000.0f / 44100.0f, player.getCurrentLocation());
}
