// The sea bed: water deepening to the tunnel's colour, the caustic loop, plants leaning within their reach, instance batches, and a start with and without its data.
#include "effects/SeaBed.h"

#include "SceneTest.h"
#include "effects/IndexedMesh.h"
#include "effects/InstanceBatch.h"
#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"
#include "effects/SwayingPlants.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/ParticleCluster.h"
#include "scene/Terrain.h"

#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

const EffectTimer SPAN(76.0f, 109.0f);

// A square of two triangles, and a face naming a vertex the mesh does not have.
Mesh* square()
{
    VertexArray* vertices = new VertexArray();
    vertices->create(4);
    for (int i = 0; i < 4; ++i)
        vertices->addVertex(Vector3(float(i % 2), float(i / 2), 0.0f));
    FaceArray* faces = new FaceArray();
    faces->create(3);
    const uint32_t corners[3][3] = {{0, 1, 2}, {2, 1, 3}, {0, 9, 1}};
    for (const auto& c : corners) {
        Face face;
        face.create(3);
        std::copy(c, c + 3, face.indices);
        faces->addFace(face);
    }
    Mesh* mesh = new Mesh();
    mesh->create(vertices, faces);
    return mesh;
}

}  // namespace

TEST(SeaBedParts, WaterDeepensToTheTunnelsTealPlantsLeanWithinReachAndBatchesNumberTheirCopies)
{
    const Color top = SeaBed::waterColour(SeaBedLayout::SURFACE_HEIGHT, 0.0f);
    const Color floor = SeaBed::waterColour(3.0f, 0.0f);
    EXPECT_GT(top.r + top.g + top.b, floor.r + floor.g + floor.b);
    EXPECT_EQ(SeaBed::waterColour(0.0f, 0.0f), SeaBedLayout::FLOOR_WATER);
    // Deep in the cave the water is the colour the tunnel begins with.
    EXPECT_EQ(SeaBed::waterColour(4.0f, 30.0f), Color(0.1f, 0.15f, 0.2f, 1.0f));
    EXPECT_LT(SeaBed::fogDensity(SeaBedLayout::SURFACE_HEIGHT, 0.0f), SeaBed::fogDensity(2.0f, 0.0f));
    EXPECT_LT(SeaBed::fogDensity(2.0f, 0.0f), SeaBed::fogDensity(2.0f, 30.0f));
    // The caustic loop runs at its rate and starts again.
    EXPECT_EQ(SeaBed::causticFrame(0.0f), 0);
    EXPECT_EQ(SeaBed::causticFrame(1.01f / SeaBed::CAUSTIC_RATE), 1);
    EXPECT_EQ(SeaBed::causticFrame(SeaBed::CAUSTIC_FRAMES / SeaBed::CAUSTIC_RATE + 0.01f), 0);
    EXPECT_EQ(SeaBed::causticFrame(-3.0f), 0);
    const SwayingPlants kelp(14.0f, 2.0f, Vector3(1.0f, 0.0f, 0.5f));
    for (float t = 0.0f; t < 33.0f; t += 0.1f) {
        EXPECT_EQ(kelp.lean(0.0f, t, 1.0f).length(), 0.0f);
        const Vector3 top = kelp.lean(14.0f, t, 1.0f);
        ASSERT_LE(top.length(), 2.0f * 1.0001f) << t;
        ASSERT_EQ(top.y, 0.0f);
        ASSERT_LE(kelp.lean(7.0f, t, 1.0f).length(), top.length() + 1.0f) << t;
    }
    // Filling worked out once a vertex ahead bends the copies as the full lean does.
    Mesh* mesh = square();
    IndexedMesh stem;
    ASSERT_TRUE(stem.build(*mesh));
    delete mesh;
    SwayingPlants quick(1.0f, 0.5f, Vector3(1.0f, 0.0f, 0.0f));
    quick.reserve(2);
    quick.add({Vector3(3.0f, 1.0f, 2.0f), 30.0f, 2.0f, 0.7f});
    quick.add({Vector3(-3.0f, 0.0f, 5.0f), 200.0f, 0.5f, 2.1f});
    InstanceBatch full, prepared;
    ASSERT_TRUE(full.create(stem, 2));
    ASSERT_TRUE(prepared.create(stem, 2));
    const Frustum everywhere;
    quick.fill(full, stem, 4.2f, everywhere);
    quick.prepare(stem);
    quick.fill(prepared, stem, 4.2f, everywhere);
    ASSERT_EQ(prepared.getCount(), 2);
    for (int v = 0; v < 2 * stem.getVertexCount(); ++v)
        EXPECT_LT(prepared.getVertices()[v].position.distance(full.getVertices()[v].position), 1e-4f) << v;

    // Room is made once; beyond it plants are refused.
    SwayingPlants fans(2.0f, 0.2f, Vector3(0.0f, 0.0f, 1.0f));
    fans.reserve(2);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(fans.add({Vector3(float(i), 0.0f, 0.0f), 0.0f, 1.0f, 0.0f}), i < 2);
    EXPECT_EQ(fans.getCount(), 2);
    Mesh* squareMesh = square();
    IndexedMesh indexed;
    ASSERT_TRUE(indexed.build(*squareMesh));
    delete squareMesh;
    // The face naming vertex 9 is left out.
    EXPECT_EQ(indexed.getIndexCount(), 6);
    EXPECT_EQ(indexed.getVertexCount(), 4);
    EXPECT_FALSE(IndexedMesh().build(Mesh()));

    InstanceBatch batch;
    EXPECT_FALSE(batch.create(IndexedMesh(), 3));
    ASSERT_TRUE(batch.create(indexed, 3));
    EXPECT_EQ(batch.getStride(), 4);
    Vertex* first = batch.add();
    Vertex* second = batch.add();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(second - first, 4);
    batch.add();
    EXPECT_EQ(batch.add(), nullptr);
    EXPECT_EQ(batch.getCount(), 3);
    batch.clear();
    EXPECT_EQ(batch.getCount(), 0);
}

namespace {

class SeaBedTest : public SceneTest {
protected:
    // A few frames the way the driver runs them: update, apply the camera, draw.
    static void play(SeaBed& scene, int frames, float seconds)
    {
        for (int i = 0; i < frames; ++i) {
            scene.update(seconds);
            Camera* camera = CameraMgr::getHandle()->getActiveCamera();
            ASSERT_NE(camera, nullptr);
            camera->resize(GLContext::width(), GLContext::height());
            scene.display();
        }
    }
};

}  // namespace

TEST_F(SeaBedTest, WithoutItsDataTheScenePrintsOneLinePerMissingPieceAndStillRuns)
{
    MissingData nothing;
    runWithoutData<SeaBed>(nothing, SPAN, 3, 0.1f, [](SeaBed& scene) {
        EXPECT_EQ(scene.getTerrain(), nullptr);
        EXPECT_EQ(scene.getCameraAnimation(), nullptr);
        EXPECT_FALSE(scene.getEye().isLoaded());
        EXPECT_TRUE(glIsEnabled(GL_FOG));
    });
    EXPECT_FALSE(glIsEnabled(GL_FOG));
    EXPECT_EQ(LightMgr::getHandle()->find("SeaBedSun"), nullptr);
    // Every file of the scene's own named once, and nothing else said (the shared glow may already
    // be in the texture cache from another test).
    std::vector<std::string> files = {SeaBedLayout::TERRAIN,    SeaBedLayout::CAMERA_PATH, SeaBedLayout::FISH_PATH,
                                      SeaBedLayout::FISH_MESH,  SeaBedLayout::KELP_MESH,   SeaBedLayout::FAN_MESH,
                                      SeaBedLayout::CLIFF_MESH, SeaBedLayout::CAVE_MESH,   SeaBedLayout::EYEBALL_MESH,
                                      SeaBedLayout::EYELID_MESH};
    files.insert(files.end(), std::begin(SeaBedLayout::ROCK_MESHES), std::end(SeaBedLayout::ROCK_MESHES));
    for (const TextureFile& picture :
         {SeaBedLayout::SAND, SeaBedLayout::ROCK, SeaBedLayout::KELP, SeaBedLayout::FAN, SeaBedLayout::FISH,
          SeaBedLayout::IRIS, SeaBedLayout::SHAFT, SeaBedLayout::BUBBLE, SeaBedLayout::SURFACE})
        files.push_back(picture.file);
    for (const TextureFile& frame : SeaBedLayout::CAUSTICS)
        files.push_back(frame.file);
    const std::string glow = SceneKit::missingMessage("SeaBed", SharedLayout::PARTICLE.file);
    size_t said = 0;
    for (const std::string& file : files) {
        EXPECT_TRUE(nothing.saidOnce("SeaBed", file.c_str()));
        said += SceneKit::missingMessage("SeaBed", file.c_str()).size();
    }
    const size_t length = nothing.getErrors().size();
    EXPECT_TRUE(length == said || length == said + glow.size()) << nothing.getErrors();
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}

TEST_F(SeaBedTest, WithItsDataEverythingLoadsAndTheEyeOpensOnTime)
{
    SKIP_WITHOUT_DATA(SeaBedLayout::TERRAIN);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    SeaBed scene(0, SPAN);
    scene.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(scene.getTerrain(), nullptr);
    EXPECT_GT(scene.getTerrain()->getPatchCount(), 100);
    ASSERT_NE(scene.getCameraAnimation(), nullptr);
    EXPECT_EQ(scene.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find(SeaBedLayout::CAMERA_NAME));
    EXPECT_EQ(CameraMgr::getHandle()->getActiveCamera(), scene.getCameraAnimation()->getCamera());
    EXPECT_GE(scene.getSchool().getCount(), 30);
    EXPECT_GT(scene.getKelp().getCount(), 40);
    EXPECT_EQ(scene.getFans().getCount(), SeaBedLayout::FAN_COUNT);
    ASSERT_NE(scene.getBubbles(0), nullptr);
    // The plants stand on the sand.
    const SwayingPlants::Plant& strand = scene.getKelp().getPlant(3);
    EXPECT_NEAR(strand.base.y, scene.getTerrain()->heightAt(strand.base.x, strand.base.z), 0.5f);

    play(scene, 4, 0.25f);
    EXPECT_EQ(scene.getEye().getOpenness(), 0.0f);
    play(scene, 1, SeaBedLayout::EYE_OPENS + 2.0f);
    EXPECT_EQ(scene.getEye().getOpenness(), 1.0f);
    EXPECT_GT(scene.getBubbles(0)->getActive(), 3);
    scene.shutdown();
    EXPECT_EQ(scene.getTerrain(), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout().find("OpenGL ERROR"), std::string::npos);
}
