// Camera paths: key editing, playback, the CANI chunk and its bad inputs.
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"

#include "ByteImage.h"

#include <gtest/gtest.h>

#include <string>

using namespace bytes;

namespace {

const char* const camName = "PathCam";

class CameraAnimationTest : public ::testing::Test {
protected:
    void SetUp() override { CameraMgr::getHandle()->add(new Camera(camName)); }
    void TearDown() override { CameraMgr::getHandle()->remove(camName); }
    // Keys with values whose bits a sloppy writer would change, bound to the test camera.
    static std::string filledImage(CameraAnimation& anim)
    {
        anim.addCameraPos(0, Vector3(-0.0f, 1.0e-40f, 3.5f));
        anim.addCameraPos(50, Vector3(10.0f, 20.0f, 1.0e30f));
        anim.addCameraPos(-7, Vector3(0.1f, 0.2f, 0.3f));
        anim.addTargetPos(0, Vector3(0.0f, 0.0f, 100.0f));
        anim.addTargetPos(80, Vector3(5.0f, 5.0f, 5.0f));
        anim.setFramesPerSec(25.0f);
        anim.setCamera(camName);
        return saved(anim);
    }
};

TEST_F(CameraAnimationTest, AddingAtAnExistingFrameReplacesTheValue)
{
    CameraAnimation anim;
    anim.addCameraPos(10, Vector3(1.0f, 2.0f, 3.0f));
    anim.addCameraPos(10, Vector3(4.0f, 5.0f, 6.0f));
    ASSERT_EQ(anim.getPositionTrack()->getNumKeys(), 1);
    EXPECT_EQ(static_cast<const Lin3Key*>(anim.getPositionTrack()->getFirstKey())->getPosition(), Vector3(4, 5, 6));
    EXPECT_EQ(anim.getTargetTrack(), nullptr);
}

TEST_F(CameraAnimationTest, SetupTakesTheLastFrameOfTheLongerTrack)
{
    const int frames[][3] = {{200, 240, 240}, {300, 240, 300}};
    for (const auto& f : frames) {
        CameraAnimation anim;
        anim.addCameraPos(0, Vector3());
        anim.addCameraPos(f[0], Vector3(1.0f, 0.0f, 0.0f));
        anim.addTargetPos(f[1], Vector3());
        anim.setFrame(77);
        anim.setup();
        EXPECT_EQ(anim.getLastFrame(), f[2]);
        EXPECT_EQ(anim.getCurrentFrame(), 0.0f);
    }
}

TEST_F(CameraAnimationTest, HalfASecondAt24FramesPerSecondIs12FramesAndMovesTheCamera)
{
    CameraAnimation anim;
    anim.addCameraPos(0, Vector3());
    anim.addCameraPos(24, Vector3(24.0f, 0.0f, 0.0f));
    anim.addTargetPos(0, Vector3(0.0f, 7.0f, 0.0f));
    anim.setup();
    anim.setCamera(camName);
    Camera* cam = CameraMgr::getHandle()->find(camName);
    ASSERT_EQ(anim.getCamera(), cam);
    anim.update(0.5f);
    EXPECT_EQ(anim.getCurrentFrame(), 12.0f);
    EXPECT_EQ(cam->getPosition(), anim.getPositionTrack()->evaluate(12.0f));
    EXPECT_EQ(cam->getTarget(), Vector3(0.0f, 7.0f, 0.0f));
    // The view basis is only recomputed by the camera's own lookAt().
    EXPECT_EQ(cam->getN(), Vector3(0.0f, 0.0f, 1.0f));
    anim.setCamera("NoSuchCamera");
    EXPECT_EQ(anim.getCamera(), nullptr);
    anim.update(0.5f);
    EXPECT_EQ(anim.getCurrentFrame(), 24.0f);
}

TEST_F(CameraAnimationTest, SaveLoadSaveIsBitIdenticalAndAnUnknownCameraLoadsAsNone)
{
    CameraAnimation anim;
    const std::string first = filledImage(anim);
    const std::string head = std::string("CANI") + f32(25.0f) + le16(7) + camName + "LIN3";
    EXPECT_EQ(first.substr(0, head.size()), head);
    CameraAnimation loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(in.peek(), EOF);
    EXPECT_EQ(loaded.getCamera(), CameraMgr::getHandle()->find(camName));
    EXPECT_EQ(saved(loaded), first);
    CameraMgr::getHandle()->remove(camName);
    CameraAnimation orphan;
    std::istringstream again(first);
    EXPECT_TRUE(orphan.load(again));
    EXPECT_EQ(orphan.getCamera(), nullptr);
}

TEST_F(CameraAnimationTest, TruncatedWrongOrAbsurdInputFails)
{
    auto noTracks = [](CameraAnimation& a) {
        EXPECT_EQ(a.getPositionTrack(), nullptr);
        EXPECT_EQ(a.getTargetTrack(), nullptr);
    };
    CameraAnimation anim;
    std::string wrongTag = filledImage(anim);
    wrongTag[3] = 'X';
    std::istringstream in(wrongTag);
    EXPECT_FALSE(anim.load(in));
    EXPECT_NE(anim.getPositionTrack(), nullptr);  // the failed load keeps what was there
    const std::string cases[] = {
        std::string("CANI") + f32(24.0f) + le16(0xffff) + "abc",
        std::string("CANI") + f32(24.0f) + le16(0) + "LIN3" + le16(0) + le32(0x7fffffffu),
    };
    for (const std::string& bad : cases)
        expectEveryPrefixFails<CameraAnimation>(bad + "\n", noTracks);
    expectEveryPrefixFails<CameraAnimation>(filledImage(anim), noTracks);
    CameraAnimation empty;
    std::ostringstream out;
    EXPECT_FALSE(empty.save(out));
    EXPECT_FALSE(empty.load("/nonexistent/dir/none.cam"));
}

}  // namespace
