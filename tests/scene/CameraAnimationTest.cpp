// Camera paths: key editing, playback, the CANI chunk and its bad inputs, the path display state.
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

namespace {

const char* const camName = "PathCam";

std::string le32(uint32_t v)
{
    std::string s(4, '\0');
    for (int i = 0; i < 4; ++i)
        s[i] = static_cast<char>((v >> (8 * i)) & 0xff);
    return s;
}

std::string f32(float f)
{
    uint32_t bits;
    std::memcpy(&bits, &f, 4);
    return le32(bits);
}

const Lin3Key* keyAt(const Lin3Track* track, int frame)
{
    return static_cast<const Lin3Key*>(track->findKey(frame));
}

class CameraAnimationTest : public ::testing::Test {
protected:
    void SetUp() override { CameraMgr::getHandle()->add(new Camera(camName)); }
    void TearDown() override { CameraMgr::getHandle()->remove(camName); }

    // Three keys on each track, with values whose bits a sloppy writer would change.
    static void fill(CameraAnimation& anim)
    {
        anim.addCameraPos(0, Vector3(-0.0f, 1.0e-40f, 3.5f));
        anim.addCameraPos(50, Vector3(10.0f, 20.0f, 1.0e30f));
        anim.addCameraPos(-7, Vector3(0.1f, 0.2f, 0.3f));
        anim.addTargetPos(0, Vector3(0.0f, 0.0f, 100.0f));
        anim.addTargetPos(80, Vector3(5.0f, 5.0f, 5.0f));
        anim.setFramesPerSec(25.0f);
    }
};

// ---- key editing ----

TEST_F(CameraAnimationTest, AddingAtAnExistingFrameReplacesTheValue)
{
    CameraAnimation anim;
    anim.addCameraPos(10, Vector3(1.0f, 2.0f, 3.0f));
    anim.addCameraPos(10, Vector3(4.0f, 5.0f, 6.0f));
    const Lin3Track* track = anim.getPositionTrack();
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(track->getNumKeys(), 1);
    ASSERT_NE(keyAt(track, 10), nullptr);
    EXPECT_EQ(keyAt(track, 10)->getPosition(), Vector3(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(track->getFirstKey()->getNextKey(), nullptr);
}

TEST_F(CameraAnimationTest, NewKeysCarryTheFixedSplineParametersOnAClosedTrack)
{
    CameraAnimation anim;
    anim.addTargetPos(3, Vector3(1.0f, 1.0f, 1.0f));
    const Lin3Track* track = anim.getTargetTrack();
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(anim.getPositionTrack(), nullptr);
    EXPECT_EQ(track->getFlags(), Track::CLOSED);
    const Lin3Key* key = keyAt(track, 3);
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->getFlags(), 31);
    EXPECT_FLOAT_EQ(key->getTension(), 0.1f);
    EXPECT_FLOAT_EQ(key->getContinuity(), 0.1f);
    EXPECT_EQ(key->getBias(), 0.0f);
    EXPECT_EQ(key->getEaseTo(), 32.0f);
    EXPECT_EQ(key->getEaseFrom(), 32.0f);
}

TEST_F(CameraAnimationTest, KeysStaySortedAndTheTrackIsSetUpAfterEachChange)
{
    CameraAnimation anim;
    anim.addCameraPos(100, Vector3(100.0f, 0.0f, 0.0f));
    anim.addCameraPos(0, Vector3(0.0f, 0.0f, 0.0f));
    const Lin3Track* track = anim.getPositionTrack();
    EXPECT_EQ(track->getFirstKey()->getFrame(), 0);
    EXPECT_EQ(track->getFirstKey()->getNextKey()->getFrame(), 100);
    // Tangents exist without an explicit setup: a straight two-key path is evaluable at once.
    EXPECT_NE(keyAt(track, 0)->getDD(), Vector3());
    Vector3 mid = track->evaluate(50.0f);
    EXPECT_GT(mid.x, 0.0f);
    EXPECT_LT(mid.x, 100.0f);
}

// ---- playback ----

TEST_F(CameraAnimationTest, SetupTakesTheLastFrameOfTheLongerTrack)
{
    CameraAnimation anim;
    anim.addCameraPos(0, Vector3());
    anim.addCameraPos(200, Vector3(1.0f, 0.0f, 0.0f));
    anim.addTargetPos(0, Vector3());
    anim.addTargetPos(240, Vector3(0.0f, 1.0f, 0.0f));
    anim.setFrame(77);
    anim.setup();
    EXPECT_EQ(anim.getLastFrame(), 240);
    EXPECT_EQ(anim.getCurrentFrame(), 0.0f);

    CameraAnimation other;
    other.addCameraPos(300, Vector3());
    other.addTargetPos(240, Vector3());
    other.setup();
    EXPECT_EQ(other.getLastFrame(), 300);
}

TEST_F(CameraAnimationTest, HalfASecondAt24FramesPerSecondIs12Frames)
{
    CameraAnimation anim;
    EXPECT_EQ(anim.getFramesPerSec(), 24.0f);
    anim.update(0.5f);
    EXPECT_EQ(anim.getCurrentFrame(), 12.0f);
    anim.update(0.5f);
    EXPECT_EQ(anim.getCurrentFrame(), 24.0f);
}

TEST_F(CameraAnimationTest, UpdateMovesTheCameraButDoesNotApplyIt)
{
    CameraAnimation anim;
    anim.addCameraPos(0, Vector3(0.0f, 0.0f, 0.0f));
    anim.addCameraPos(24, Vector3(24.0f, 0.0f, 0.0f));
    anim.addTargetPos(0, Vector3(0.0f, 7.0f, 0.0f));
    anim.setup();
    anim.setCamera(camName);
    Camera* cam = CameraMgr::getHandle()->find(camName);
    ASSERT_EQ(anim.getCamera(), cam);

    anim.update(0.5f);
    EXPECT_EQ(cam->getPosition(), anim.getPositionTrack()->evaluate(12.0f));
    EXPECT_EQ(cam->getTarget(), Vector3(0.0f, 7.0f, 0.0f));
    // The view basis is only recomputed by the camera's own lookAt().
    EXPECT_EQ(cam->getN(), Vector3(0.0f, 0.0f, 1.0f));
}

TEST_F(CameraAnimationTest, UnknownCameraNameLeavesNoCamera)
{
    CameraAnimation anim;
    anim.setCamera(camName);
    anim.setCamera("NoSuchCamera");
    EXPECT_EQ(anim.getCamera(), nullptr);
    anim.addCameraPos(0, Vector3(1.0f, 1.0f, 1.0f));
    anim.update(1.0f);  // nothing to move; must not touch anything
    EXPECT_EQ(anim.getCurrentFrame(), 24.0f);
}

// ---- the CANI chunk ----

TEST_F(CameraAnimationTest, SaveLoadSaveIsBitIdentical)
{
    CameraAnimation anim;
    fill(anim);
    anim.setCamera(camName);
    std::ostringstream first;
    ASSERT_TRUE(anim.save(first));

    CameraAnimation loaded;
    std::istringstream in(first.str());
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(in.peek(), EOF);
    EXPECT_EQ(loaded.getCamera(), CameraMgr::getHandle()->find(camName));
    EXPECT_EQ(loaded.getFramesPerSec(), 25.0f);
    EXPECT_EQ(loaded.getPositionTrack()->getNumKeys(), 3);

    std::ostringstream second;
    ASSERT_TRUE(loaded.save(second));
    EXPECT_EQ(first.str(), second.str());
}

TEST_F(CameraAnimationTest, LayoutIsTagRateNameThenTwoTracks)
{
    CameraAnimation anim;
    fill(anim);
    anim.setCamera(camName);
    std::ostringstream out;
    ASSERT_TRUE(anim.save(out));
    std::string bytes = out.str();
    std::string head = std::string("CANI") + f32(25.0f) + std::string("\x07\x00", 2) + camName;
    ASSERT_GE(bytes.size(), head.size() + 4);
    EXPECT_EQ(bytes.substr(0, head.size()), head);
    EXPECT_EQ(bytes.substr(head.size(), 4), "LIN3");
    // Two LIN3 headers of 10 bytes and five keys of 46 bytes.
    EXPECT_EQ(bytes.size(), head.size() + 2 * 10 + 5 * static_cast<size_t>(Lin3Key::RECORD_SIZE));
}

TEST_F(CameraAnimationTest, UnknownCameraNameLoadsWithoutCamera)
{
    CameraAnimation anim;
    fill(anim);
    anim.setCamera(camName);
    std::ostringstream out;
    ASSERT_TRUE(anim.save(out));
    CameraMgr::getHandle()->remove(camName);

    CameraAnimation loaded;
    std::istringstream in(out.str());
    EXPECT_TRUE(loaded.load(in));
    EXPECT_EQ(loaded.getCamera(), nullptr);
    EXPECT_NE(loaded.getTargetTrack(), nullptr);
}

TEST_F(CameraAnimationTest, WrongTagFailsAndKeepsTheAnimation)
{
    CameraAnimation anim;
    fill(anim);
    std::ostringstream out;
    ASSERT_TRUE(anim.save(out));
    std::string bytes = out.str();
    bytes[3] = 'X';
    std::istringstream in(bytes);
    EXPECT_FALSE(anim.load(in));
    EXPECT_NE(anim.getPositionTrack(), nullptr);
}

TEST_F(CameraAnimationTest, EveryTruncationFailsAndLeavesNoTracks)
{
    CameraAnimation anim;
    fill(anim);
    anim.setCamera(camName);
    std::ostringstream out;
    ASSERT_TRUE(anim.save(out));
    const std::string bytes = out.str();
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        CameraAnimation loaded;
        std::istringstream in(bytes.substr(0, cut));
        EXPECT_FALSE(loaded.load(in)) << "cut at " << cut;
        EXPECT_EQ(loaded.getPositionTrack(), nullptr) << "cut at " << cut;
        EXPECT_EQ(loaded.getTargetTrack(), nullptr) << "cut at " << cut;
    }
}

TEST_F(CameraAnimationTest, NameLongerThanTheFileFails)
{
    std::string bytes = std::string("CANI") + f32(24.0f) + std::string("\xff\xff", 2) + "abc";
    CameraAnimation anim;
    std::istringstream in(bytes);
    EXPECT_FALSE(anim.load(in));
}

TEST_F(CameraAnimationTest, HugeKeyCountFailsWithoutAllocating)
{
    std::string bytes = std::string("CANI") + f32(24.0f) + std::string("\0\0", 2) +
                        "LIN3" + std::string("\0\0", 2) + le32(0x7fffffffu);
    CameraAnimation anim;
    std::istringstream in(bytes);
    EXPECT_FALSE(anim.load(in));
    EXPECT_EQ(anim.getPositionTrack(), nullptr);
}

TEST_F(CameraAnimationTest, SavingWithoutTracksFailsAndMissingFilesFail)
{
    CameraAnimation anim;
    std::ostringstream out;
    EXPECT_FALSE(anim.save(out));
    EXPECT_FALSE(anim.load("/nonexistent/dir/none.cam"));
}

// ---- path display ----

class CameraAnimationDrawTest : public GLTest {};

TEST_F(CameraAnimationDrawTest, DrawsTranslucentPathsAndRestoresState)
{
    CameraAnimation anim;
    // A horizontal line through the middle of the window, identity matrices.
    anim.addCameraPos(0, Vector3(-1.0f, 0.0f, 0.0f));
    anim.addCameraPos(10, Vector3(1.0f, 0.0f, 0.0f));
    anim.addTargetPos(0, Vector3(0.0f, -2.0f, 0.0f));
    anim.getPositionTrack()->setFlags(0);
    anim.setup();

    LightMgr::getHandle()->turnLightingOn();
    glDisable(GL_DEPTH_TEST);
    anim.draw();

    unsigned char px[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, px);
    EXPECT_NEAR(px[0], 128, 3);  // red at half alpha over black
    EXPECT_EQ(px[1], 0);

    EXPECT_TRUE(LightMgr::getHandle()->isLightingOn());
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_MATERIAL));
    GLint depthFunc = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &depthFunc);
    EXPECT_EQ(depthFunc, GL_LESS);
    GLfloat width = 0.0f;
    glGetFloatv(GL_LINE_WIDTH, &width);
    EXPECT_EQ(width, 1.0f);

    LightMgr::getHandle()->turnLightingOff();
    glDisable(GL_COLOR_MATERIAL);
}

}  // namespace
