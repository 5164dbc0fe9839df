// The city street and the blast on it: what hides behind a street's walls, only their own lights on their cars,
// starts without their data (one line per missing piece) and with it, loaded ahead or not, and the block the blast
// shares with the street instead of loading it twice.
#include "effects/BlowUp.h"
#include "effects/CityBlock.h"
#include "effects/CityLayout.h"
#include "effects/CityStreet.h"
#include "effects/OwnLights.h"
#include "effects/SceneKit.h"

#include "SceneTest.h"

#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Light.h"
#include "scene/LightMgr.h"
#include "support/OffscreenFrame.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace CityLayout;

namespace {

const EffectTimer SPAN(214.5f, 247.5f);
// Down the middle of the x street at z = 2 pitches, at the camera's height.
const Vector3 EYE(100.0f, static_cast<float>(CAMERA_HEIGHT), static_cast<float>(2 * PITCH));

bool hidden(Vector3 low, Vector3 high)
{
    return CityBlock::behindStreetWall(EYE, low, high);
}

}  // namespace

TEST(CityBlockWalls, WhatLiesBehindAStreetsWallsWithinOneBlockSideIsHidden)
{
    // A building two streets over, straight across from the eye: behind the wall.
    EXPECT_TRUE(hidden(Vector3(80.0f, 0.0f, 200.0f), Vector3(110.0f, 40.0f, 230.0f)));
    EXPECT_TRUE(hidden(Vector3(80.0f, 0.0f, 40.0f), Vector3(110.0f, 40.0f, 60.0f)));
    // Down a cross street only what lines up with the gap is seen: a car just round the corner is,
    // a building further up that street, seen through the wall's plane beside the gap, is not.
    EXPECT_FALSE(hidden(Vector3(128.0f, 0.0f, 140.0f), Vector3(140.0f, 5.0f, 150.0f)));
    EXPECT_TRUE(hidden(Vector3(120.0f, 0.0f, 200.0f), Vector3(136.0f, 10.0f, 230.0f)));
    // Far along the street the wall's gaps open: a box whose outline reaches a cross street.
    EXPECT_FALSE(hidden(Vector3(300.0f, 0.0f, 150.0f), Vector3(340.0f, 5.0f, 170.0f)));
    // A tower rising over the wall close behind it.
    EXPECT_FALSE(hidden(Vector3(90.0f, 0.0f, 141.0f), Vector3(100.0f, 120.0f, 150.0f)));
    // The street's own facades stand in the wall's plane and are never hidden by it.
    EXPECT_FALSE(hidden(Vector3(80.0f, 0.0f, static_cast<float>(2 * PITCH + BLOCK_EDGE)),
                        Vector3(110.0f, 4.5f, static_cast<float>(2 * PITCH + BLOCK_EDGE))));
    // From above the roofs, or from inside a block, no wall hides anything.
    EXPECT_FALSE(CityBlock::behindStreetWall(Vector3(100.0f, 30.0f, 128.0f), Vector3(80.0f, 0.0f, 200.0f),
                                             Vector3(110.0f, 40.0f, 230.0f)));
    EXPECT_FALSE(CityBlock::behindStreetWall(Vector3(100.0f, 2.0f, 100.0f), Vector3(80.0f, 0.0f, 200.0f),
                                             Vector3(110.0f, 40.0f, 230.0f)));
}

class CityStreetTest : public SceneTest {};

namespace {

// The lines a scene printed on the error stream where none of its files are; its output must hold no GL error.
template <typename Body>
std::string withoutData(Body body)
{
    MissingData nothing;
    if (!nothing.entered())
        return "no empty directory";
    body();
    nothing.finish();
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
    return nothing.getErrors();
}

size_t count(const std::string& text, const std::string& part)
{
    size_t n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

}  // namespace

TEST_F(CityStreetTest, OnlyTheScenesOwnLightsShineWhileItDrawsItsCars)
{
    Light* ours = SceneKit::directionalLight("OwnLightsOurs", WHITE_LIGHT);
    Light* left = SceneKit::directionalLight("OwnLightsLeftOn", WHITE_LIGHT);
    {
        static const char* const names[] = {"OwnLightsOurs", nullptr};
        const OwnLights only(names);
        EXPECT_TRUE(ours->isOn());
        EXPECT_FALSE(left->isOn());
        EXPECT_FALSE(glIsEnabled(static_cast<GLenum>(left->getUnit())));
    }
    EXPECT_TRUE(ours->isOn() && left->isOn());
    EXPECT_TRUE(glIsEnabled(static_cast<GLenum>(left->getUnit())));
    LightMgr::getHandle()->remove("OwnLightsOurs");
    LightMgr::getHandle()->remove("OwnLightsLeftOn");
}

TEST_F(CityStreetTest, WithoutItsDataTheStreetAndTheBlastSayOnceWhatIsMissingAndStillRun)
{
    // Started directly, and loaded ahead first.
    for (const bool ahead : {false, true}) {
        const std::string errors = withoutData([ahead] {
            CityStreet street(0, SPAN);
            while (ahead && street.preload()) {
            }
            street.initiate();
            EXPECT_EQ(street.getBlock().getOctree(), nullptr);
            EXPECT_EQ(street.getCameraAnimation(), nullptr);
            for (int i = 0; i < 3; ++i) {
                street.update(0.1f);
                street.display();
            }
            street.shutdown();
            EXPECT_FALSE(glIsEnabled(GL_FOG));
        });
        for (const char* file : {OCTREE, CAMERA_PATH, CAR_MESH, NEON.file, POOL.file, BEAM.file, TRAIL.file})
            EXPECT_EQ(count(errors, std::string("CityStreet: couldn't load '") + file + "'\n"), 1u) << file << errors;
        for (const SurfaceInfo& surface : SURFACES)
            EXPECT_EQ(count(errors, std::string("CityStreet: couldn't load '") + surface.picture.file + "'\n"), 1u)
                << surface.picture.file;
        // Nothing but those lines, and nothing more while it runs.
        EXPECT_EQ(count(errors, "\n"), 7u + SURFACE_COUNT + 1u) << errors;
    }
    for (const bool ahead : {false, true}) {
        const std::string errors = withoutData([ahead] {
            BlowUp blast(0, EffectTimer(247.5f, 259.5f));
            while (ahead && blast.preload()) {
            }
            blast.initiate();
            EXPECT_EQ(blast.getCameraAnimation(), nullptr);
            // Through the crash, so the fire, shock and smoke are drawn too.
            for (int i = 0; i < 12; ++i) {
                blast.update(0.5f);
                blast.display();
            }
            blast.shutdown();
            EXPECT_FALSE(glIsEnabled(GL_FOG));
            EXPECT_EQ(LightMgr::getHandle()->find("BlowUpFire"), nullptr);
        });
        for (const char* file :
             {BlowUpLayout::CAMERA_PATH, BlowUpLayout::DEBRIS_MESHES[0], BlowUpLayout::DEBRIS_MESHES[1],
              BlowUpLayout::FIRE.file, BlowUpLayout::SMOKE.file, BlowUpLayout::SHOCK.file, OCTREE, CAR_MESH})
            EXPECT_EQ(count(errors, std::string("BlowUp: couldn't load '") + file + "'\n"), 1u) << file << errors;
        // One line each: the blast's own pieces, the block's and the street's, nothing per frame.
        EXPECT_EQ(count(errors, "\n"), 6u + 1u + SURFACE_COUNT + 6u) << errors;
    }
}

TEST_F(CityStreetTest, WithItsDataTheBlockTrafficAndPathLoadAndTheBlastSharesTheBlock)
{
    SKIP_WITHOUT_DATA(OCTREE);
    testing::internal::CaptureStderr();
    CityStreet street(0, SPAN);
    street.initiate();
    ASSERT_NE(street.getBlock().getOctree(), nullptr);
    EXPECT_GT(street.getBlock().getFaceCount(), 10000);
    ASSERT_NE(street.getCameraAnimation(), nullptr);
    EXPECT_EQ(street.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find(CAMERA_NAME));
    EXPECT_EQ(CameraMgr::getHandle()->getActiveCamera(), CameraMgr::getHandle()->find(CAMERA_NAME));
    // Down in the street the walls hide most of the block.
    street.update(10.0f);
    CameraMgr::getHandle()->getActiveCamera()->resize(320, 240);
    street.display();
    EXPECT_GT(street.getBlock().getDrawnFaces(), 100);
    EXPECT_LT(street.getBlock().getDrawnFaces(), street.getBlock().getFaceCount() / 2);

    // The blast loads ahead while the street still runs: it takes the same block in one step.
    BlowUp blast(0, EffectTimer(247.5f, 259.5f));
    ASSERT_TRUE(blast.preload());
    EXPECT_EQ(blast.getBlock().getOctree(), street.getBlock().getOctree());
    while (blast.preload()) {
    }
    blast.initiate();
    street.shutdown();
    EXPECT_EQ(LightMgr::getHandle()->find("CityMoon"), nullptr);
    EXPECT_NE(blast.getBlock().getOctree(), nullptr);
    blast.shutdown();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Loaded and drawn once unseen before they start, the street and the blast draw what a start loading everything
// draws: the street's race and the blast through its crash.
TEST_F(CityStreetTest, LoadedAheadTheStreetAndTheBlastDrawWhatAFreshStartDraws)
{
    SKIP_WITHOUT_DATA(OCTREE);
    const EffectTimer blastSpan(247.5f, 259.5f);
    // The first start in a process makes the shared cameras, lights and materials later starts find.
    framesOf<CityStreet>(SPAN, false, 1, 0.1f);
    framesOf<BlowUp>(blastSpan, false, 1, 0.1f);
    for (const bool street : {true, false}) {
        const std::vector<unsigned char> ahead =
            street ? framesOf<CityStreet>(SPAN, true, 10, 0.7f) : framesOf<BlowUp>(blastSpan, true, 12, 0.5f);
        const std::vector<unsigned char> fresh =
            street ? framesOf<CityStreet>(SPAN, false, 10, 0.7f) : framesOf<BlowUp>(blastSpan, false, 12, 0.5f);
        EXPECT_EQ(OffscreenFrame::countDifferences(ahead, fresh, 0), 0u) << (street ? "street" : "blast");
        EXPECT_GT(OffscreenFrame::countDifferences(ahead, std::vector<unsigned char>(ahead.size(), 0), 0),
                  ahead.size() / 2);
    }
}
