// The abstract player's own state: owned file name and loop points.
#include "sound/MusicPlayer.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

class BarePlayer : public MusicPlayer {
public:
    void initiate() override {}
    void shutdown() override {}
    void update() override {}
    bool load(const char*) override { return false; }
    bool play() override { return false; }
    bool stop() override { return false; }
    bool pause() override { return false; }
    bool forward(float) override { return false; }
    bool backward(float) override { return false; }
    float getCurrentLocation() override { return location; }
    bool setVolume(int) override { return false; }
    int getVolume() const override { return -1; }
};

}  // namespace

TEST(MusicPlayerState, StartsStoppedUnnamedAndNotLooping) {
    BarePlayer player;
    EXPECT_TRUE(player.isStopped());
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(player.isLooping());
    EXPECT_EQ(nullptr, player.getFilename());
    EXPECT_EQ(0.0f, player.getCurrentLocation());
}

TEST(MusicPlayerFilename, KeepsItsOwnCopyReplacedAsAWhole) {
    char name[] = "data/music/a.xm";
    BarePlayer player;
    player.setFilename(name);
    name[11] = 'z';
    EXPECT_STREQ("data/music/a.xm", player.getFilename());
    EXPECT_NE(name, player.getFilename());
    // Its own name again must not read freed memory.
    player.setFilename(player.getFilename());
    EXPECT_STREQ("data/music/a.xm", player.getFilename());
    player.setFilename("second.mod");
    EXPECT_STREQ("second.mod", player.getFilename());
    player.setFilename(nullptr);
    EXPECT_EQ(nullptr, player.getFilename());
}

TEST(MusicPlayerLoop, SetStoresBothPointsAndUnsetZeroesThem) {
    BarePlayer player;
    player.setLoop(1.5f, 9.25f);
    EXPECT_TRUE(player.isLooping());
    EXPECT_EQ(1.5f, player.getLoopStart());
    EXPECT_EQ(9.25f, player.getLoopEnd());
    player.unsetLoop();
    EXPECT_FALSE(player.isLooping());
    EXPECT_EQ(0.0f, player.getLoopStart());
    EXPECT_EQ(0.0f, player.getLoopEnd());
}
