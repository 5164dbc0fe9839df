// The islands scene: water heights and the wave's wrap, the birds' loop, reuse on a second start, and running without its data.
#include "effects/Islands.h"

#include "MissingData.h"

#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/VertexArray.h"
#include "support/GLContext.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>
#include <cmath>
#include <string>

namespace {

class IslandsTest : public GLTest {
protected:
    Islands scene{0, EffectTimer(35.5f, 68.5f)};

    void TearDown() override
    {
        CameraMgr::getHandle()->remove("IslandCamera");
        GLTest::TearDown();
    }
};

}  // namespace

TEST_F(IslandsTest, WaterHeightsFollowTheWaveAndVanishWhereTheDirectionIsSquare)
{
    scene.initiate();
    scene.update(2.0f);
    const VertexArray& vertices = *scene.getWater()->getVertices();
    // 90 degrees after two seconds at 45 a second; each vertex k adds k x 81.48733 to the phase.
    const float angle = 90.0f * 0.017453292f;
    const auto wave = [&](int k) { return std::cos(angle + (2.0f + static_cast<float>(k) * 81.48733f)) * 0.125f; };
    // Row 10 is u = 0: no direction factor, the full wave.
    for (int j : {0, 3, 19})
        EXPECT_NEAR(vertices[10 * 20 + j].position.y, wave(10 * 20 + j), 1e-5f) << j;
    // Row 0, column 10: u = -0.5, v = 0, so w = -90 degrees and the height vanishes.
    EXPECT_NEAR(vertices[10].position.y, 0.0f, 1e-6f);
    for (int k = 0; k < 400; ++k)
        ASSERT_LE(std::fabs(vertices[k].position.y), 0.125f) << k;
    scene.shutdown();
}

TEST_F(IslandsTest, WaveAngleWrapsBySubtracting360OncePerUpdate)
{
    scene.initiate();
    scene.update(7.5f);
    // Reaching 360 exactly wraps to 0.
    scene.update(0.5f);
    EXPECT_FLOAT_EQ(scene.getWaterAngle(), 0.0f);
    // A long step wraps only once.
    scene.update(7.5f);
    scene.update(10.0f);
    EXPECT_FLOAT_EQ(scene.getWaterAngle(), 787.5f - 360.0f);
    scene.shutdown();
}

TEST_F(IslandsTest, BirdsLoopBackToFrameZeroAtTheEndOfTheirPath)
{
    const MeshAnimation* birds = scene.getBirdAnimation();
    ASSERT_NE(birds, nullptr);
    EXPECT_EQ(scene.getBirdCount(), Islands::NUM_BIRDS);
    const long last = birds->getLastFrame();
    ASSERT_GT(last, 0);
    scene.initiate();
    scene.update((static_cast<float>(last) - 1.0f) / 12.0f);
    EXPECT_GT(birds->getCurrentFrame(), 0.0f);
    scene.update(1.0f / 12.0f);
    EXPECT_FLOAT_EQ(birds->getCurrentFrame(), 0.0f);
    // Past the end by any amount: back to 0, not to the overshoot.
    scene.update(static_cast<float>(last) / 12.0f + 3.0f);
    EXPECT_FLOAT_EQ(birds->getCurrentFrame(), 0.0f);
    scene.shutdown();
}

TEST_F(IslandsTest, FullDataLoadsAndASecondInitiateReusesCameraLightsAndSkyMaterial)
{
    EXPECT_EQ(scene.getMountainCount(), 6);
    EXPECT_TRUE(scene.getShip() && scene.getShipAnimation());
    scene.initiate();
    Camera* camera = CameraMgr::getHandle()->find("IslandCamera");
    Light* light = LightMgr::getHandle()->find("IslandLight1");
    Material* sky = MaterialMgr::getHandle()->find("HemisphereMaterial");
    ASSERT_TRUE(camera && light && sky);
    const int count = CameraMgr::getHandle()->getNumCameras() * 100 + LightMgr::getHandle()->getNumLights();
    scene.shutdown();
    scene.initiate();
    EXPECT_EQ(CameraMgr::getHandle()->find("IslandCamera"), camera);
    EXPECT_EQ(LightMgr::getHandle()->find("IslandLight1"), light);
    EXPECT_EQ(MaterialMgr::getHandle()->find("HemisphereMaterial"), sky);
    EXPECT_EQ(CameraMgr::getHandle()->getNumCameras() * 100 + LightMgr::getHandle()->getNumLights(), count);
    scene.update(0.1f);
    scene.display();
    scene.shutdown();
}

TEST_F(IslandsTest, WithoutItsDataTheScenePrintsItsMessagesAndStillRuns)
{
    MissingData nothing;
    ASSERT_TRUE(nothing.entered());
    {
        Islands bare(0, EffectTimer(35.5f, 68.5f));
        EXPECT_EQ(bare.getMountainCount(), 0);
        EXPECT_EQ(bare.getShip(), nullptr);
        EXPECT_EQ(bare.getBirdCount(), 0);
        bare.initiate();
        bare.update(0.5f);
        bare.display();
        bare.shutdown();
    }
    nothing.finish();
    const std::string& errors = nothing.getErrors();
    EXPECT_NE(errors.find("Couldn't 'data/3d/load ship.msh'\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Unable to load bird 0\n"), std::string::npos) << errors;
    EXPECT_EQ(errors.find("Unable to load bird 1"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Couldn't load 'data/3d/camera_islands.cam'\n"), std::string::npos) << errors;
    // The ship's path is loaded even when the ship is missing; the mountains fail silently.
    EXPECT_NE(errors.find("Failed to load 'data/3d/ship_island.cam'\n"), std::string::npos) << errors;
    EXPECT_EQ(errors.find("mountain"), std::string::npos) << errors;
}
