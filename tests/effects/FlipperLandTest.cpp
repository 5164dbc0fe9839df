// The flipper land: its camera swings round the play, a start with and without its data, and the play running on the forged land.
#include "effects/FlipperLand.h"

#include "SceneTest.h"
#include "scene/LightMgr.h"

#include <gtest/gtest.h>
#include <cmath>
#include <string>

namespace {

using namespace FlipperLandLayout;

const EffectTimer SPAN(150.5f, 168.5f);

}  // namespace

// Always outside the land and above it, looking down at the play, and round it over the scene.
TEST(FlipperLandPlaces, TheCameraSwingsRoundFromOutsideAndAboveAndThePaddlesPairUpAcrossEachHollow)
{
    float turned = 0.0f;
    Vector3 last = FlipperLand::cameraAt(0.0f);
    for (float t = 0.05f; t <= static_cast<float>(SECONDS); t += 0.05f) {
        const Vector3 eye = FlipperLand::cameraAt(t);
        const Vector3 look = FlipperLand::targetAt(t) - eye;
        ASSERT_GT(std::sqrt(eye.x * eye.x + eye.z * eye.z), HALF_SIZE * 0.9f) << t;
        ASSERT_GT(eye.y, 7.0f) << t;
        ASSERT_LT(look.y, 0.0f) << t;
        turned += std::atan2(last.x * eye.z - last.z * eye.x, last.x * eye.x + last.z * eye.z);
        last = eye;
    }
    EXPECT_GT(std::fabs(turned), 3.14159f);
    // The paddles of a station straddle its lane, hinged outside the hollow and pointing into it.
    for (int station = 0; station < STATION_COUNT; ++station) {
        Vector3 hinges[2];
        Vector3 along[2];
        for (int side = 0; side < 2; ++side)
            FlipperLand::paddlePlace(station, side, hinges[side], along[side]);
        const Vector3& at = STATIONS[station];
        for (int side = 0; side < 2; ++side) {
            EXPECT_NEAR(along[side].length(), 1.0f, 1e-5f);
            const Vector3 toHollow = at - hinges[side];
            EXPECT_GT(along[side].dot(toHollow), 0.0f);
            EXPECT_GT(hinges[side].length(), at.length());
        }
        EXPECT_NEAR((hinges[0] - at).length(), (hinges[1] - at).length(), 1e-4f);
    }
}

class FlipperLandTest : public SceneTest {};

TEST_F(FlipperLandTest, WithoutItsDataTheSceneSaysWhatIsMissingAndStillRuns)
{
    MissingData nothing;
    runWithoutData<FlipperLand>(nothing, SPAN, 20, 0.25f,
                                [](FlipperLand& land) { EXPECT_FALSE(land.getLand().isCreated()); });
    for (const char* file : {LAND, PADDLE_MESH, BUMPER_MESH, CAP_MESH, BALL_MESH, FIELD.file, SKY.file, SHINE.file,
                             SHADOW.file, "data/img/particle.png"})
        EXPECT_TRUE(nothing.saidOnce("FlipperLand", file));
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}

// The capture program's contact sheet checks that the loaded scene draws; here the game runs on the forged land.
TEST_F(FlipperLandTest, WithItsDataTheLandHeavesAndThePlayPlaysOnIt)
{
    SKIP_WITHOUT_DATA(LAND);
    testing::internal::CaptureStderr();
    FlipperLand land(0, SPAN);
    land.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_TRUE(land.getLand().isCreated());
    EXPECT_EQ(land.getLand().getNumPatches(), PATCHES * PATCHES);
    // The whole section at thirty frames a second: balls are thrown and hit bumpers, and none ever sinks into
    // the heaving land or leaves it.
    float brightest = 0.0f;
    for (int frame = 0; frame < 18 * 30; ++frame) {
        land.update(1.0f / 30.0f);
        for (int i = 0; i < FlipperPlay::BALL_COUNT; ++i) {
            float clearance = 0.0f;
            ASSERT_TRUE(land.getPlay().getBall(i).clearance(land.getLand(), clearance)) << frame << ' ' << i;
            ASSERT_GE(clearance, -1e-3f) << frame << ' ' << i;
        }
        for (int b = 0; b < FlipperPlay::BUMPER_COUNT; ++b)
            brightest = std::fmax(brightest, land.getPlay().getBumperGlow(b));
    }
    land.display();
    EXPECT_GT(land.getLand().getDrawnPatches(), 0);
    EXPECT_GE(land.getPlay().getLaunches(), 8);
    EXPECT_GE(land.getPlay().getBumperHits(), 3);
    EXPECT_GT(brightest, 0.9f);
    land.shutdown();
    EXPECT_EQ(LightMgr::getHandle()->find("FlipperSun"), nullptr);
}
