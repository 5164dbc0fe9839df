// The sound system: output start and stop, the owning player registry, the global volume and the mix.
#include "sound/Sound.h"

#include "sound/MusicPlayer.h"
#include "sound/MusicPlayerMOD.h"

#include "TinyModule.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

// Counts what the registry does to a player.
struct Calls {
    int plays = 0;
    int stops = 0;
    int updates = 0;
    int deletes = 0;
};

class CountingPlayer : public MusicPlayer {
public:
    CountingPlayer(Calls& calls, const char* name) : calls(calls) { setFilename(name); }
    ~CountingPlayer() override { ++calls.deletes; }
    void initiate() override {}
    void shutdown() override {}
    void update() override { ++calls.updates; }
    bool load(const char*) override { return true; }
    bool play() override { ++calls.plays; stopped = false; return true; }
    bool stop() override { ++calls.stops; stopped = true; return true; }
    bool pause() override { return false; }
    bool forward(float) override { return false; }
    bool backward(float) override { return false; }
    float getCurrentLocation() override { return 0.0f; }
    bool setVolume(int) override { return false; }
    int getVolume() const override { return -1; }

private:
    Calls& calls;
};

class SoundTest : public ::testing::Test {
protected:
    void SetUp() override {
        // ctest sets the dummy driver; a direct run gets it here.
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        sound = Sound::getHandle();
        sound->setDriver(-1);
        ASSERT_TRUE(sound->initiate(44100, 32));
    }
    void TearDown() override {
        sound->shutdown();
        sound->setGlobalVolume(Sound::MAX_GLOBAL_VOLUME);
    }
    Sound* sound = nullptr;
};

std::string tinyModule() {
    std::string path = scratchPath("mix.xm");
    EXPECT_TRUE(TinyModule().write(path));
    return path;
}

// Loads and plays the tiny module on a player of its own.
void startModule(MusicPlayerMOD& player) {
    ASSERT_TRUE(player.load(tinyModule().c_str()));
    ASSERT_TRUE(player.play());
}

std::vector<int16_t> mixFrames(Sound* sound, size_t frames) {
    std::vector<int16_t> out(2 * frames, 123);
    sound->mix(reinterpret_cast<uint8_t*>(out.data()), static_cast<int>(out.size() * sizeof(int16_t)));
    return out;
}

std::vector<int16_t> renderFrames(MusicPlayerMOD& player, size_t frames) {
    std::vector<int16_t> out(2 * frames);
    EXPECT_EQ(frames, player.render(out.data(), frames, 44100));
    return out;
}

bool silent(const std::vector<int16_t>& pcm) {
    for (int16_t s : pcm) {
        if (s != 0)
            return false;
    }
    return true;
}

}  // namespace

// ---- starting and stopping the output ----

TEST_F(SoundTest, SilentDriverInitiatesOnceWithoutADevice) {
    EXPECT_TRUE(sound->isInitialised());
    EXPECT_FALSE(sound->isOutputOpen());
    EXPECT_EQ(32, sound->getChannels());
    EXPECT_FALSE(sound->initiate(44100, 32));
    sound->shutdown();
    EXPECT_FALSE(sound->isInitialised());
    EXPECT_EQ(0, sound->getDriver());
    EXPECT_EQ(44100, sound->getMixRate());
    EXPECT_EQ(16, sound->getChannels());
    EXPECT_FALSE(sound->initiate(0, 32));
    EXPECT_FALSE(sound->initiate(44100, -1));
}

TEST_F(SoundTest, DummyDeviceOpensAtTheAskedRate) {
    sound->shutdown();
    ASSERT_TRUE(sound->initiate(22050, 32));
    EXPECT_TRUE(sound->isOutputOpen());
    EXPECT_EQ(22050, sound->getMixRate());
    sound->shutdown();
    EXPECT_FALSE(sound->isOutputOpen());
}

TEST_F(SoundTest, NoDeviceMeansNoSoundSystem) {
    sound->shutdown();
    setenv("SDL_AUDIODRIVER", "no-such-audio", 1);
    EXPECT_FALSE(sound->initiate(44100, 32));
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    EXPECT_FALSE(sound->isInitialised());
    EXPECT_FALSE(sound->isOutputOpen());
    EXPECT_EQ(44100, sound->getMixRate());

    Calls calls;
    CountingPlayer* player = new CountingPlayer(calls, "a.xm");
    ASSERT_TRUE(sound->addMusic(player));
    sound->update();
    EXPECT_EQ(0, calls.updates);
    ASSERT_TRUE(sound->removeMusic(player));
    delete player;

    // Nothing was left half open: a working device still starts.
    EXPECT_TRUE(sound->initiate(44100, 32));
    EXPECT_TRUE(sound->isOutputOpen());
}

// ---- global volume ----

TEST_F(SoundTest, GlobalVolumeIsClampedToZeroThrough255) {
    sound->setGlobalVolume(300);
    EXPECT_EQ(255, sound->getGlobalVolume());
    sound->setGlobalVolume(-5);
    EXPECT_EQ(0, sound->getGlobalVolume());
    sound->shutdown();
    ASSERT_TRUE(sound->initiate(44100, 32));
    EXPECT_EQ(255, sound->getGlobalVolume());
}

// ---- the registry ----

TEST_F(SoundTest, FirstPlayerAddedBecomesCurrentWithoutPlaying) {
    Calls calls;
    CountingPlayer* first = new CountingPlayer(calls, "first.xm");
    CountingPlayer* second = new CountingPlayer(calls, "second.xm");
    EXPECT_FALSE(sound->addMusic(nullptr));
    EXPECT_TRUE(sound->addMusic(first));
    EXPECT_TRUE(sound->addMusic(second));
    EXPECT_EQ(first, sound->getCurrentMusic());
    EXPECT_EQ(0, calls.plays);
    // Registered twice it would be deleted twice.
    EXPECT_FALSE(sound->addMusic(first));
    sound->shutdown();
    EXPECT_EQ(2, calls.deletes);
}

TEST_F(SoundTest, FindMusicMatchesTheWholeNameExactly) {
    Calls calls;
    CountingPlayer* player = new CountingPlayer(calls, "data/music/Song.xm");
    CountingPlayer* unnamed = new CountingPlayer(calls, nullptr);
    ASSERT_TRUE(sound->addMusic(player));
    ASSERT_TRUE(sound->addMusic(unnamed));
    EXPECT_EQ(player, sound->findMusic("data/music/Song.xm"));
    EXPECT_EQ(nullptr, sound->findMusic("data/music/song.xm"));
    EXPECT_EQ(nullptr, sound->findMusic("data/music/Song"));
    EXPECT_EQ(nullptr, sound->findMusic(""));
    EXPECT_EQ(nullptr, sound->findMusic(static_cast<const char*>(nullptr)));
    const Sound* constant = sound;
    EXPECT_EQ(player, constant->findMusic("data/music/Song.xm"));
}

TEST_F(SoundTest, RemoveUnlinksWithoutDeleting) {
    Calls calls;
    CountingPlayer* player = new CountingPlayer(calls, "kept.xm");
    CountingPlayer stranger(calls, "stranger.xm");
    ASSERT_TRUE(sound->addMusic(player));
    EXPECT_FALSE(sound->removeMusic(&stranger));
    EXPECT_TRUE(sound->removeMusic(player));
    EXPECT_EQ(nullptr, sound->getCurrentMusic());
    EXPECT_EQ(nullptr, sound->findMusic("kept.xm"));
    EXPECT_FALSE(sound->removeMusic(player));
    sound->shutdown();
    EXPECT_EQ(0, calls.deletes);
    delete player;
}

TEST_F(SoundTest, SetCurrentMusicStopsTheOldAndPlaysTheNew) {
    Calls oldCalls, newCalls;
    CountingPlayer* old = new CountingPlayer(oldCalls, "old.xm");
    CountingPlayer* next = new CountingPlayer(newCalls, "new.xm");
    ASSERT_TRUE(sound->addMusic(old));
    ASSERT_TRUE(sound->addMusic(next));
    EXPECT_TRUE(sound->setCurrentMusic(next));
    EXPECT_EQ(next, sound->getCurrentMusic());
    EXPECT_EQ(1, oldCalls.stops);
    EXPECT_EQ(1, newCalls.plays);
    EXPECT_EQ(0, oldCalls.plays);
    EXPECT_TRUE(sound->setCurrentMusic("old.xm"));
    EXPECT_EQ(old, sound->getCurrentMusic());
    EXPECT_EQ(1, newCalls.stops);
    EXPECT_EQ(1, oldCalls.plays);
    // Already current: neither stopped nor played again.
    EXPECT_TRUE(sound->setCurrentMusic(old));
    EXPECT_EQ(1, oldCalls.plays);
    EXPECT_EQ(1, oldCalls.stops);
    CountingPlayer stranger(oldCalls, "stranger.xm");
    EXPECT_FALSE(sound->setCurrentMusic(&stranger));
    EXPECT_FALSE(sound->setCurrentMusic("stranger.xm"));
    EXPECT_FALSE(sound->setCurrentMusic(static_cast<const char*>(nullptr)));
    EXPECT_EQ(old, sound->getCurrentMusic());
}

TEST_F(SoundTest, UpdatePumpsOnlyTheCurrentPlayer) {
    Calls currentCalls, otherCalls;
    ASSERT_TRUE(sound->addMusic(new CountingPlayer(currentCalls, "current.xm")));
    ASSERT_TRUE(sound->addMusic(new CountingPlayer(otherCalls, "other.xm")));
    sound->update();
    sound->update();
    EXPECT_EQ(2, currentCalls.updates);
    EXPECT_EQ(0, otherCalls.updates);
}

TEST_F(SoundTest, ShutdownStopsTheCurrentAndDeletesEveryPlayer) {
    Calls currentCalls, otherCalls;
    ASSERT_TRUE(sound->addMusic(new CountingPlayer(currentCalls, "a.xm")));
    ASSERT_TRUE(sound->addMusic(new CountingPlayer(otherCalls, "b.xm")));
    ASSERT_TRUE(sound->addMusic(new CountingPlayer(otherCalls, "c.xm")));
    sound->shutdown();
    EXPECT_EQ(1, currentCalls.stops);
    EXPECT_EQ(0, otherCalls.stops);
    EXPECT_EQ(1, currentCalls.deletes);
    EXPECT_EQ(2, otherCalls.deletes);
    EXPECT_EQ(nullptr, sound->getCurrentMusic());
    EXPECT_EQ(nullptr, sound->findMusic("b.xm"));
}

TEST_F(SoundTest, ShutdownDeletesRealModulePlayers) {
    MusicPlayerMOD* player = new MusicPlayerMOD();
    startModule(*player);
    ASSERT_TRUE(sound->addMusic(player));
    sound->shutdown();
    // The deleted player left the mix too.
    EXPECT_TRUE(silent(mixFrames(sound, 256)));
}

TEST(SoundIdle, ShutdownBeforeInitiateLeavesTheRegistryAlone) {
    Sound* sound = Sound::getHandle();
    ASSERT_FALSE(sound->isInitialised());
    Calls calls;
    CountingPlayer* player = new CountingPlayer(calls, "idle.xm");
    ASSERT_TRUE(sound->addMusic(player));
    sound->shutdown();
    EXPECT_EQ(0, calls.deletes);
    EXPECT_EQ(player, sound->getCurrentMusic());
    ASSERT_TRUE(sound->removeMusic(player));
    delete player;
}

// ---- the mix (silent driver: no audio thread, the test pulls the sound itself) ----

TEST_F(SoundTest, FullVolumesPassTheModuleThroughBitForBit) {
    MusicPlayerMOD heard, reference;
    startModule(heard);
    ASSERT_TRUE(reference.load(tinyModule().c_str()));
    std::vector<int16_t> mixed = mixFrames(sound, 3000);
    std::vector<int16_t> raw = renderFrames(reference, 3000);
    EXPECT_FALSE(silent(raw));
    EXPECT_EQ(raw, mixed);
}

TEST_F(SoundTest, VolumesScaleTowardZero) {
    MusicPlayerMOD heard, reference;
    startModule(heard);
    ASSERT_TRUE(heard.setVolume(128));
    sound->setGlobalVolume(255);
    ASSERT_TRUE(reference.load(tinyModule().c_str()));
    std::vector<int16_t> mixed = mixFrames(sound, 2048);
    std::vector<int16_t> raw = renderFrames(reference, 2048);
    for (size_t i = 0; i < raw.size(); ++i)
        ASSERT_EQ(raw[i] / 2, mixed[i]) << "sample " << i;
}

TEST_F(SoundTest, GlobalVolumeZeroSilencesButTimeGoesOn) {
    MusicPlayerMOD player;
    startModule(player);
    sound->setGlobalVolume(0);
    EXPECT_TRUE(silent(mixFrames(sound, 4410)));
    EXPECT_EQ(100.0f, player.getCurrentLocation());
}

TEST_F(SoundTest, PausedAndStoppedSongsAreNotHeard) {
    MusicPlayerMOD player;
    startModule(player);
    ASSERT_TRUE(player.pause());
    EXPECT_TRUE(silent(mixFrames(sound, 1024)));
    EXPECT_EQ(0.0f, player.getCurrentLocation());
    ASSERT_TRUE(player.pause());
    EXPECT_FALSE(silent(mixFrames(sound, 1024)));
    ASSERT_TRUE(player.stop());
    EXPECT_TRUE(silent(mixFrames(sound, 1024)));
}

TEST_F(SoundTest, TwoSongsAddUpAndSaturate) {
    MusicPlayerMOD a, b, reference;
    startModule(a);
    startModule(b);
    ASSERT_TRUE(reference.load(tinyModule().c_str()));
    std::vector<int16_t> mixed = mixFrames(sound, 2048);
    std::vector<int16_t> raw = renderFrames(reference, 2048);
    for (size_t i = 0; i < raw.size(); ++i) {
        int doubled = 2 * raw[i];
        int expected = doubled > 32767 ? 32767 : (doubled < -32768 ? -32768 : doubled);
        ASSERT_EQ(expected, mixed[i]) << "sample " << i;
    }
}

TEST_F(SoundTest, ABufferOfOddLengthIsFilledWithoutOverrun) {
    MusicPlayerMOD player;
    startModule(player);
    std::vector<uint8_t> buffer(4 * 100 + 3, 0xAA);
    sound->mix(buffer.data(), static_cast<int>(buffer.size()));
    EXPECT_EQ(0, buffer[400]);
    EXPECT_EQ(0, buffer[402]);
    EXPECT_EQ(100.0f * 1000.0f / 44100.0f, player.getCurrentLocation());
}

// ---- a real (dummy) device on SDL's audio thread ----

namespace {

// Waits up to five seconds for the location to pass a mark; returns the last reading.
float waitPast(MusicPlayerMOD& player, float mark) {
    float location = player.getCurrentLocation();
    for (int i = 0; i < 500 && location <= mark; ++i) {
        SDL_Delay(10);
        location = player.getCurrentLocation();
    }
    return location;
}

}  // namespace

TEST_F(SoundTest, APlayedModuleReportsARisingLocationOverRealTime) {
    sound->shutdown();
    sound->setDriver(0);
    ASSERT_TRUE(sound->initiate(44100, 32));
    ASSERT_TRUE(sound->isOutputOpen());
    MusicPlayerMOD* player = new MusicPlayerMOD();
    ASSERT_TRUE(player->load(tinyModule().c_str()));
    ASSERT_TRUE(sound->addMusic(player));
    player->initiate();
    float first = waitPast(*player, 0.0f);
    EXPECT_GT(first, 0.0f);
    EXPECT_GT(waitPast(*player, first), first);

    // Paused, the audio thread leaves the song alone.
    ASSERT_TRUE(player->pause());
    float held = player->getCurrentLocation();
    SDL_Delay(200);
    EXPECT_EQ(held, player->getCurrentLocation());
    ASSERT_TRUE(player->pause());
    EXPECT_GT(waitPast(*player, held), held);
}

TEST_F(SoundTest, TheDriversStartSequencePlaysTheSongOnce) {
    sound->shutdown();
    sound->setDriver(0);
    ASSERT_TRUE(sound->initiate(44100, 32));
    sound->setGlobalVolume(0);
    MusicPlayerMOD* player = new MusicPlayerMOD();
    ASSERT_TRUE(player->load(tinyModule().c_str()));
    ASSERT_TRUE(sound->addMusic(player));
    ASSERT_TRUE(sound->setCurrentMusic(player));
    EXPECT_TRUE(player->isStopped());
    player->initiate();
    EXPECT_TRUE(player->isPlaying());
    sound->update();
    sound->setGlobalVolume(200);
    EXPECT_EQ(200, sound->getGlobalVolume());
    EXPECT_GT(waitPast(*player, 0.0f), 0.0f);
}
