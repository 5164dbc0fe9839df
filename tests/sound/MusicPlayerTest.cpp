// The abstract player's owned file name.
#include "sound/MusicPlayer.h"

#include <gtest/gtest.h>

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

TEST(MusicPlayerFilename, KeepsItsOwnCopyAndSurvivesBeingGivenItBack) {
    char name[] = "data/music/a.xm";
    BarePlayer player;
    player.setFilename(name);
    name[11] = 'z';
    EXPECT_STREQ("data/music/a.xm", player.getFilename());
    // Its own name again must not read freed memory.
    player.setFilename(player.getFilename());
    EXPECT_STREQ("data/music/a.xm", player.getFilename());
    player.setFilename(nullptr);
    EXPECT_EQ(nullptr, player.getFilename());
}
