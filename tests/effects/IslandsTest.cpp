// The islands scene: water heights and the wave's wrap, the birds' loop, reuse on a second start, and running without its data.
#include "effects/Islands.h"

#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/MeshAnimation.h"
#include "support/GLContext.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <string>
#include <unistd.h>

// Reaches the scene's private steps and state.
class IslandsProbe {
public:
    static float waterFunc(Islands& s, float angle, int i, int j, float vertexPhase)
    {
        s.vertexPhase = vertexPhase;
        return s.waterFunc(angle, i, j);
    }
    static void createWater(Islands& s) { s.createWaterMesh(); }
    static void updateWater(Islands& s, float dt) { s.updateWaterMesh(dt); }
    static float& angle(Islands& s) { return s.waterAngle; }
    static MeshAnimation* birdAnim(Islands& s) { return s.birdAnim; }
    template <typename Node> static int length(const Node* node) { return node ? 1 + length(node->next) : 0; }
    static int birdCount(const Islands& s) { return length(s.birds); }
    static int mountainCount(const Islands& s) { return length(s.mountains); }
    static bool hasShip(const Islands& s) { return s.ship && s.shipAnim; }
    static void updateBirds(Islands& s, float dt) { s.updateBirds(dt); }
};

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

TEST_F(IslandsTest, WaterFuncIsFlatInDirectionOnlyOnTheMiddleRow)
{
    // Row 10 is u = 0: no direction factor, the full wave.
    EXPECT_FLOAT_EQ(IslandsProbe::waterFunc(scene, 0.0f, 10, 3, 0.0f), 0.125f);
    EXPECT_NEAR(IslandsProbe::waterFunc(scene, 3.14159265f, 10, 17, 0.0f), -0.125f, 1e-6f);
    // Row 0, column 10: u = -0.5, v = 0, so w = -90 degrees and the height vanishes.
    EXPECT_NEAR(IslandsProbe::waterFunc(scene, 0.0f, 0, 10, 0.0f), 0.0f, 1e-6f);
}

TEST_F(IslandsTest, WaveAngleWrapsBySubtracting360OncePerUpdate)
{
    IslandsProbe::createWater(scene);
    IslandsProbe::angle(scene) = 350.0f;
    IslandsProbe::updateWater(scene, 0.5f);
    EXPECT_FLOAT_EQ(IslandsProbe::angle(scene), 12.5f);
    // Reaching 360 exactly wraps to 0.
    IslandsProbe::angle(scene) = 337.5f;
    IslandsProbe::updateWater(scene, 0.5f);
    EXPECT_FLOAT_EQ(IslandsProbe::angle(scene), 0.0f);
    // A long step wraps only once.
    IslandsProbe::angle(scene) = 350.0f;
    IslandsProbe::updateWater(scene, 10.0f);
    EXPECT_FLOAT_EQ(IslandsProbe::angle(scene), 440.0f);
}

TEST_F(IslandsTest, BirdsLoopBackToFrameZeroAtTheEndOfTheirPath)
{
    MeshAnimation* birds = IslandsProbe::birdAnim(scene);
    ASSERT_NE(birds, nullptr);
    EXPECT_EQ(IslandsProbe::birdCount(scene), Islands::NUM_BIRDS);
    const long last = birds->getLastFrame();
    ASSERT_GT(last, 0);
    IslandsProbe::updateBirds(scene, (static_cast<float>(last) - 1.0f) / 12.0f);
    EXPECT_GT(birds->getCurrentFrame(), 0.0f);
    IslandsProbe::updateBirds(scene, 1.0f / 12.0f);
    EXPECT_FLOAT_EQ(birds->getCurrentFrame(), 0.0f);
    // Past the end by any amount: back to 0, not to the overshoot.
    IslandsProbe::updateBirds(scene, static_cast<float>(last) / 12.0f + 3.0f);
    EXPECT_FLOAT_EQ(birds->getCurrentFrame(), 0.0f);
}

TEST_F(IslandsTest, FullDataLoadsAndASecondInitiateReusesCameraLightsAndSkyMaterial)
{
    EXPECT_EQ(IslandsProbe::mountainCount(scene), 6);
    EXPECT_TRUE(IslandsProbe::hasShip(scene));
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
    char dir[] = "/tmp/islands-empty-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    char* previous = getcwd(nullptr, 0);
    ASSERT_EQ(chdir(dir), 0);
    testing::internal::CaptureStderr();
    {
        Islands bare(0, EffectTimer(35.5f, 68.5f));
        EXPECT_EQ(IslandsProbe::mountainCount(bare), 0);
        EXPECT_FALSE(IslandsProbe::hasShip(bare));
        EXPECT_EQ(IslandsProbe::birdCount(bare), 0);
        bare.initiate();
        bare.update(0.5f);
        bare.display();
        bare.shutdown();
    }
    const std::string errors = testing::internal::GetCapturedStderr();
    ASSERT_EQ(chdir(previous), 0);
    std::free(previous);
    rmdir(dir);
    EXPECT_NE(errors.find("Couldn't 'data/3d/load ship.msh'\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Unable to load bird 0\n"), std::string::npos) << errors;
    EXPECT_EQ(errors.find("Unable to load bird 1"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Couldn't load 'data/3d/camera_islands.cam'\n"), std::string::npos) << errors;
}
