// The tunnel exit: the light's timing against the song, the walls' burst, a start with and without its data, a second
// start after its pictures were given back.
#include "effects/TunnelExit.h"

#include "SceneTest.h"
#include "gl/GLEXT.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "support/OffscreenFrame.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>
#include <cmath>
#include <string>

namespace {

using namespace TunnelExitLayout;

const EffectTimer SPAN(142.5f, 150.5f);
const float HIT_TIME = static_cast<float>(HIT);

// How far a slab's middle stands from the tube's axis at time t.
float fromAxis(int ring, int sector, float t)
{
    const Vector3 p = TunnelExit::slabCentre(ring, sector) + TunnelExit::slabPose(ring, sector, t).offset - BREAK;
    return (p - AXIS * p.dot(AXIS)).length();
}

}  // namespace

// Deep teal until the riser's last bars, the white flood only from the hit, white-blue at the end.
TEST(TunnelExitTiming, TheLightTurnsTheShaftsBeatAndTheSlabsHoldUntilTheRiserThenFlyOutAfterTheHit)
{
    EXPECT_EQ(TunnelExit::brightness(0.0f), 0.0f);
    EXPECT_LT(TunnelExit::brightness(HIT_TIME - 0.01f), 0.31f);
    EXPECT_FLOAT_EQ(TunnelExit::brightness(static_cast<float>(SECONDS)), 1.0f);
    for (float t = 0.0f; t < static_cast<float>(SECONDS); t += 0.05f)
        ASSERT_LE(TunnelExit::brightness(t), TunnelExit::brightness(t + 0.05f)) << t;

    EXPECT_EQ(TunnelExit::flash(HIT_TIME - 0.01f), 0.0f);
    EXPECT_GT(TunnelExit::flash(HIT_TIME), 0.85f);
    EXPECT_LT(TunnelExit::flash(HIT_TIME + 0.6f), 0.1f);
    // It ends bright, for the black fade.
    EXPECT_GT(TunnelExit::flash(static_cast<float>(SECONDS)), 0.25f);
    // In the roll's last two bars every row is a snare: the shafts flare at each and die back between.
    const float row = static_cast<float>(ROW);
    for (int r = 36; r < 48; ++r) {
        const float onBeat = TunnelExit::rayStrength(r * row + 0.001f);
        const float between = TunnelExit::rayStrength((r + 0.8f) * row);
        EXPECT_GT(onBeat, between * 1.15f) << r;
    }
    EXPECT_GT(TunnelExit::rayStrength(HIT_TIME), 0.99f);
    EXPECT_GT(TunnelExit::rayStrength(HIT_TIME), 2.0f * TunnelExit::rayStrength(1.0f));
    // Still, then creeping outwards by a hand's breadth, then flung clear of the tube after the hit.
    for (int ring = 0; ring < RINGS; ++ring) {
        for (int sector = 0; sector < SECTORS; ++sector) {
            SCOPED_TRACE(ring * 100 + sector);
            const float rest = fromAxis(ring, sector, 0.0f);
            EXPECT_NEAR(rest, RADIUS + 0.8f, 1e-3f);
            EXPECT_EQ(TunnelExit::slabPose(ring, sector, HIT_TIME - 2.0f).angle, 0.0f);
            EXPECT_NEAR(fromAxis(ring, sector, HIT_TIME - 0.01f), rest + 0.25f, 0.08f);
            // The burst runs along the tube: the last ring has gone within 0.15 s of the hit.
            float last = fromAxis(ring, sector, HIT_TIME + 0.15f);
            for (float t = HIT_TIME + 0.25f; t <= static_cast<float>(SECONDS); t += 0.1f) {
                const float now = fromAxis(ring, sector, t);
                ASSERT_GT(now, last) << t;
                last = now;
            }
            EXPECT_GT(fromAxis(ring, sector, HIT_TIME + 0.5f), rest + 5.0f);
        }
    }
}

class TunnelExitTest : public SceneTest {};

TEST_F(TunnelExitTest, WithoutItsDataTheSceneSaysWhatIsMissingAndStillRuns)
{
    MissingData nothing;
    // Through the hit and out, drawing every step.
    runWithoutData<TunnelExit>(nothing, SPAN, 40, 0.2f, [](TunnelExit& exit) {
        EXPECT_EQ(exit.getTunnel(), nullptr);
        EXPECT_EQ(exit.getCameraAnimation(), nullptr);
    });
    EXPECT_FALSE(glIsEnabled(GL_FOG));
    for (const char* file : {OCTREE, SLAB_MESH, SHIP_PATH, CAMERA_PATH, "data/3d/ship.msh", ROCK.file, CAUSTICS.file,
                             LIGHT.file, RAY.file, "data/img/ship.png", "data/img/particle.png"})
        EXPECT_TRUE(nothing.saidOnce("TunnelExit", file));
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}

// The capture program's contact sheet checks that the loaded scene draws.
TEST_F(TunnelExitTest, WithItsDataEverythingLoadsAndIsWiredTogether)
{
    SKIP_WITHOUT_DATA(OCTREE);
    testing::internal::CaptureStderr();
    TunnelExit exit(0, SPAN);
    exit.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(exit.getTunnel(), nullptr);
    EXPECT_TRUE(exit.getTunnel()->isComplete());
    EXPECT_GT(exit.getLeafCount(), 4);
    ASSERT_NE(exit.getShipAnimation(), nullptr);
    EXPECT_EQ(exit.getShipAnimation()->getMesh(), exit.getShip());
    ASSERT_NE(exit.getCameraAnimation(), nullptr);
    EXPECT_EQ(exit.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find(CAMERA_NAME));
    EXPECT_EQ(exit.getMoteCount(), TunnelExit::MOTE_COUNT);
    // The fog starts as the tunnel's and has turned white-blue by the end.
    EXPECT_FLOAT_EQ(exit.getFogColour().b, 0.2f);
    exit.update(static_cast<float>(SECONDS));
    EXPECT_GT(exit.getFogColour().r, 0.75f);
    exit.shutdown();
    EXPECT_EQ(exit.getTunnel(), nullptr);
    EXPECT_EQ(exit.getLeafCount(), 0);
    EXPECT_EQ(LightMgr::getHandle()->find("ExitLight1"), nullptr);
}

// Its pictures leave GL and memory when it ends. A later start finds its materials registered and sends the pictures
// to GL again before anything is drawn or compiled into a list (an upload at a bind would be compiled into the
// tunnel's lists, and one for the caustics on the second texture unit would land on the first); it draws the same
// frame as the first start.
TEST_F(TunnelExitTest, ItsPicturesGoAtTheEndAndASecondStartDrawsTheSameFrame)
{
    SKIP_WITHOUT_DATA(OCTREE);
    const TextureFile pictures[] = {ROCK, CAUSTICS, LIGHT, RAY};
    const float moment = HIT_TIME - 1.0f;
    std::vector<unsigned char> first;
    {
        TunnelExit exit(0, SPAN);
        exit.initiate();
        exit.update(moment);
        first = SceneHarness::drawFrame(exit);
        exit.shutdown();
    }
    for (const TextureFile& picture : pictures) {
        const Texture* texture = TextureMgr::getHandle()->findTexture(picture.file);
        ASSERT_NE(texture, nullptr) << picture.file;
        EXPECT_EQ(texture->getGLName(), Texture::noName) << picture.file;
        EXPECT_EQ(texture->getDataPtr(), nullptr) << picture.file;
    }
    TunnelExit again(0, SPAN);
    again.initiate();
    for (const TextureFile& picture : pictures)
        EXPECT_TRUE(glIsTexture(TextureMgr::getHandle()->findTexture(picture.file)->getGLName())) << picture.file;
    again.update(moment);
    const std::vector<unsigned char> second = SceneHarness::drawFrame(again);
    again.shutdown();
    EXPECT_EQ(OffscreenFrame::countDifferences(first, second, 0), 0u);
}
