// The spacecraft fly-by: the hull's octree (every face in a leaf, a camera inside it sees part of it), the lights'
// and engines' timing against the song, the baked starlight, and a start with and without its data.
#include "effects/SpaceCraft.h"

#include "SceneTest.h"
#include "effects/OctreeBatch.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/FaceArray.h"
#include "scene/LightMgr.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace SpaceCraftLayout;

const EffectTimer SPAN(168.5f, 201.5f);
const float BAR = 2.0f;
const float BEAT = 0.5f;

void markLeaves(const OctreeNode* node, std::vector<int>& seen)
{
    if (node->hasChildren()) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            markLeaves(node->getChild(i), seen);
        return;
    }
    for (int i = 0; i < node->getNumFaces(); ++i)
        if (node->getFaceIndex(i) < seen.size())
            seen[node->getFaceIndex(i)] = 1;
}

}  // namespace

TEST(SpaceCraftHull, EveryOneOfTensOfThousandsOfFacesReachesALeafAndACameraInsideDrawsSomeLeaves)
{
    SKIP_WITHOUT_DATA(OCTREE);
    Octree hull;
    ASSERT_TRUE(hull.load(OCTREE));
    const int faces = hull.getFaces()->getNumFaces();
    EXPECT_GE(faces, 20000);
    std::vector<int> seen(static_cast<size_t>(faces), 0);
    markLeaves(hull.getRoot(), seen);
    for (int f = 0; f < faces; ++f)
        ASSERT_EQ(seen[static_cast<size_t>(f)], 1) << "face " << f << " is in no leaf";

    OctreeBatch batch;
    ASSERT_TRUE(batch.build(hull));
    ASSERT_GT(batch.getLeafCount(), 1);
    // Low over the deck near the stern, where the scene starts, looking forward along the hull.
    const Vector3 eye(30.0f, 31.0f, 205.0f);
    ASSERT_TRUE(hull.getRoot()->isPointInside(eye));
    Camera camera("HullCamera", eye, Vector3(0.0f, 25.0f, 60.0f), 0.5f, 9000.0f, 52.0f);
    Plane planes[OctreeBatch::VIEW_PLANES];
    OctreeBatch::viewPlanes(camera, 4.0f / 3.0f, planes);
    const int drawn = batch.cull(planes, OctreeBatch::VIEW_PLANES);
    EXPECT_GT(drawn, 0);
    EXPECT_LT(drawn, batch.getLeafCount());
    EXPECT_LT(batch.getVisibleFaces(), batch.getFaceCount());
    MaterialMgr::getHandle()->shutdown();
}

// Beat lights flash on every beat and fade before the next; strobes flash twice at each bar's top; steady lights
// only breathe; nothing blinks before the section's music starts.
TEST(SpaceCraftLights, BlinkAndThrobInTimeWithTheSongAndStarlightIsGLsLightWorkedOutOnce)
{
    const float start = SpaceCraft::MUSIC_START;
    EXPECT_EQ(SpaceCraft::blink(BLINK_BEAT, start - 0.1f), 0.0f);
    for (int beat = 0; beat < 8; ++beat) {
        const float at = start + beat * BEAT;
        EXPECT_GT(SpaceCraft::blink(BLINK_BEAT, at + 0.01f), 0.9f) << beat;
        EXPECT_LT(SpaceCraft::blink(BLINK_BEAT, at + BEAT * 0.9f), 0.2f) << beat;
    }
    for (int bar = 0; bar < 4; ++bar) {
        const float top = start + bar * BAR;
        EXPECT_EQ(SpaceCraft::blink(BLINK_STROBE, top + 0.03f), 1.0f);
        EXPECT_EQ(SpaceCraft::blink(BLINK_STROBE, top + 0.15f), 0.0f);
        EXPECT_EQ(SpaceCraft::blink(BLINK_STROBE, top + 0.25f), 1.0f);
        EXPECT_EQ(SpaceCraft::blink(BLINK_STROBE, top + 1.0f), 0.0f);
    }
    for (float t = start; t < start + 10.0f; t += 0.37f) {
        EXPECT_GE(SpaceCraft::blink(BLINK_STEADY, t), 0.7f);
        EXPECT_LE(SpaceCraft::blink(BLINK_STEADY, t), 1.0f);
    }
    const float row = 0.125f;
    // The section's kicks fall on rows 0, 8 and 10 of each bar.
    for (int kick : {0, 8, 10}) {
        const float at = start + BAR + kick * row;
        EXPECT_GT(SpaceCraft::throb(at + 0.001f), 0.99f) << kick;
        EXPECT_LT(SpaceCraft::throb(at + row * 1.5f), SpaceCraft::throb(at + 0.001f)) << kick;
    }
    EXPECT_LT(SpaceCraft::throb(start + BAR + 7.9f * row), 0.3f);
    EXPECT_FLOAT_EQ(SpaceCraft::throb(start - 1.0f), 0.2f);
    Material grey("Grey");
    grey.setAmbient(Color(0.5f, 0.5f, 0.5f, 1.0f));
    grey.setDiffuse(Color(0.5f, 0.5f, 0.5f, 1.0f));
    Vector3 towardsSun = SUN_DIRECTION;
    towardsSun.normalize();
    const Color lit = SpaceCraft::starlight(towardsSun, &grey);
    const Color dark = SpaceCraft::starlight(-towardsSun, &grey);
    EXPECT_GT(lit.r, dark.r + 0.4f);
    EXPECT_GT(dark.r, 0.05f);
    // Emission alone lights the windows, whatever way they face.
    Material glow("Glow");
    glow.setAmbient(Color(0.0f, 0.0f, 0.0f, 1.0f));
    glow.setDiffuse(Color(0.0f, 0.0f, 0.0f, 1.0f));
    glow.setEmission(Color(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_FLOAT_EQ(SpaceCraft::starlight(-towardsSun, &glow).g, 1.0f);
}

class SpaceCraftTest : public SceneTest {};

TEST_F(SpaceCraftTest, WithoutItsDataEachMissingPieceIsNamedOnceAndTheSceneStillRuns)
{
    SceneHarness::forgetPictures();
    MissingData nothing;
    runWithoutData<SpaceCraft>(nothing, SPAN, 3, 0.1f, [](SpaceCraft& scene) {
        EXPECT_EQ(scene.getHull(), nullptr);
        EXPECT_EQ(scene.getCameraAnimation(), nullptr);
    });
    const char* const files[] = {OCTREE,
                                 CAMERA_PATH,
                                 NEBULA_UP.file,
                                 NEBULA_DOWN.file,
                                 GLOW.file,
                                 "data/img/planet.png",
                                 "data/img/planetclouds.png",
                                 "data/img/planethalo.png"};
    // At the start, once each: nothing more while it runs.
    EXPECT_EQ(SceneHarness::saidOnlyOnceEach(nothing, "SpaceCraft", files, sizeof files / sizeof files[0]), "");
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}

TEST_F(SpaceCraftTest, WithItsDataEverythingLoadsDrawsAndLeavesNoLightsBehind)
{
    SKIP_WITHOUT_DATA(OCTREE);
    const int lightsBefore = LightMgr::getHandle()->getNumLights();
    testing::internal::CaptureStderr();
    SpaceCraft scene(0, SPAN);
    scene.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(scene.getHull(), nullptr);
    EXPECT_TRUE(scene.getBatch().isBaked());
    ASSERT_NE(scene.getCameraAnimation(), nullptr);
    EXPECT_EQ(scene.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find(CAMERA_NAME));
    scene.update(0.5f);
    SceneHarness::drawFrame(scene);
    unsigned char centre[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, centre);
    EXPECT_GT(centre[0] + centre[1] + centre[2], 0) << "the hull fills the middle of the first shot";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    scene.shutdown();
    EXPECT_EQ(scene.getHull(), nullptr);
    EXPECT_EQ(LightMgr::getHandle()->getNumLights(), lightsBefore);

    // The hull's picture goes with the scene; a second start, finding the twin materials registered, makes it
    // again with its smaller levels.
    const Texture* plates = TextureMgr::getHandle()->findTexture(PLATES.file);
    ASSERT_NE(plates, nullptr);
    EXPECT_EQ(plates->getGLName(), Texture::noName);
    SpaceCraft again(0, SPAN);
    again.initiate();
    glBindTexture(GL_TEXTURE_2D, plates->getGLName());
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(filter, GL_LINEAR_MIPMAP_NEAREST);
    again.shutdown();
}
