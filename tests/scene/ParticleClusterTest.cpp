// Particle clusters: emission schedule, motion, colour over life, the dead-visit counter, billboard drawing.
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Particle.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "texture/Material.h"

#include "Feedback.h"
#include "support/GLContext.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

const Color white(1.0f, 1.0f, 1.0f, 1.0f);

// Fixed lifetime so that deaths fall on known updates.
PCInfoCube fixedLife(float life)
{
    return PCInfoCube(PARTICLE_QUAD, life, life, Vector3(0.1f, 0.1f, 0.1f), white, white,
                      BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)));
}

TEST(ParticleClusterTest, ThreeAreEmittedPerUpdateUpToThePoolAndMoveAtTheClusterSpeed)
{
    PCInfoCube info = fixedLife(100.0f);
    ParticleCluster cluster("plume", 10, &info, false);
    EXPECT_EQ(cluster.getActive(), 3);
    cluster.setSpeed(4.0f);
    const Particle& p = cluster.getParticle(1);
    const Vector3 start = p.getPosition();
    cluster.update(0.5f);
    EXPECT_EQ(p.getPosition(), start + p.getDirection() * 0.5f * 4.0f);
    EXPECT_EQ(p.getLifetime(), 99.5f);
    for (int expected : {6, 9, 10, 10}) {
        EXPECT_EQ(cluster.getActive(), expected);
        cluster.update(0.0f);  // no time passing still emits
    }
    EXPECT_FALSE(cluster.createCluster("again", 10, &info, false));
    ParticleCluster refused;
    EXPECT_FALSE(refused.createCluster("x", 10, nullptr, false));
    EXPECT_FALSE(refused.createCluster("x", 2, &info, false));
    refused.update(1.0f);  // no pool: nothing to do
}

TEST(ParticleTest, ColourBlendsOverLifeWithoutClampingAndANonPositiveLifeNeverFades)
{
    Particle p;
    p.setColors(Color(1.0f, 0.0f, 0.0f, 1.0f), Color(0.0f, 0.0f, 1.0f, 0.0f));
    p.setLifetime(2.0f);
    p.updateColor(0.5f);
    EXPECT_FLOAT_EQ(p.getColor().r, 0.75f);
    p.updateColor(2.0f);  // age 1.25: past the end colour
    EXPECT_FLOAT_EQ(p.getColor().r, -0.25f);
    EXPECT_FLOAT_EQ(p.getColor().b, 1.25f);
    p.setLifetime(0.0f);
    p.updateColor(10.0f);
    EXPECT_EQ(p.getColor(), Color(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(ParticleClusterTest, TheDeadVisitCounterCanEndTheClusterWhileParticlesLive)
{
    PCInfoCube info = fixedLife(1.0f);
    ParticleCluster cluster("c", 6, &info, false);
    for (int i = 0; i < 3; ++i)
        cluster.getParticle(i).setLifetime(100.0f);
    cluster.update(1.0f);  // particles 3..5 emitted and spent
    cluster.update(1.0f);  // three dead visits
    EXPECT_EQ(cluster.getDead(), 3);
    cluster.update(1.0f);  // six: the cluster stops
    EXPECT_EQ(cluster.getDead(), 6);
    const float life = cluster.getParticle(0).getLifetime();
    cluster.update(1.0f);
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), life);
}

TEST(ParticleClusterTest, RespawnReEmitsDeadParticlesForTheNextUpdate)
{
    PCInfoCube info = fixedLife(1.0f);
    ParticleCluster cluster("c", 3, &info, true);
    cluster.update(1.0f);
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), 0.0f);
    cluster.update(0.25f);  // re-emitted, not yet moved
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), 1.0f);
    EXPECT_EQ(cluster.getDead(), 0);
}

TEST(ParticleClusterTest, TheSameSeedRunsTheSameClusterTwice)
{
    PCInfoSphere info(PARTICLE_QUAD, 0.5f, 3.0f, Vector3(1, 1, 1), white, white,
                      BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)));
    auto run = [&]() {
        std::srand(2024u);
        ParticleCluster cluster("c", 30, &info, true);
        for (int i = 0; i < 40; ++i)
            cluster.update(0.1f);
        std::vector<Vector3> out;
        for (int i = 0; i < 30; ++i)
            out.push_back(cluster.getParticle(i).getPosition());
        return out;
    };
    EXPECT_EQ(run(), run());
}

struct Counter : public Material {
    explicit Counter(const char* name) : Material(name) {}
    void bind() override { ++binds; }
    int binds = 0;
};

class ParticleDrawTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        glDisable(GL_CULL_FACE);
        // Looking along (1, 0, 1) from the origin, its basis worked out; GL matrices stay identity.
        camera = new Camera("BillboardCam");
        camera->lookAt(Vector3(0, 0, 0), Vector3(1, 0, 1));
        camera->calcUVN();
        camera->calcInverse();
        CameraMgr::getHandle()->add(camera);
        CameraMgr::getHandle()->setActiveCamera(camera);
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->remove("BillboardCam");
        GLTest::TearDown();
    }

    // A region of radius 0 around p: point emitters start exactly there.
    static PCInfoPoint emitter(ParticleType type, const Vector3& size, const Vector3& p)
    {
        BoundingBox b;
        b.create(p, 0.0f);
        return PCInfoPoint(type, 10.0f, 10.0f, size, white, white, b);
    }

    Camera* camera = nullptr;
};

TEST_F(ParticleDrawTest, APointLandsAtItsPositionPlusItsRotatedPosition)
{
    const Vector3 p(0.2f, 0.1f, 0.3f);
    PCInfoPoint info = emitter(PARTICLE_POINT, Vector3(1, 1, 1), p);
    ParticleCluster cluster("points", 3, &info, false);
    auto prims = feedback([&] { cluster.draw(); });
    ASSERT_EQ(prims.size(), 3u);
    const Vector3 expected = p + camera->getU() * p.x + camera->getV() * p.y + camera->getN() * p.z;
    EXPECT_LT((prims[0][0] - expected).length(), 3e-3f);
}

TEST_F(ParticleDrawTest, DeadParticlesAndUnknownTypesDrawNothingAndSharedMaterialsBindOncePerRun)
{
    PCInfoPoint info = emitter(PARTICLE_TRIANGLE, Vector3(0.1f, 0.1f, 1), Vector3());
    ParticleCluster cluster("tris", 5, &info, false);
    cluster.getParticle(1).setLifetime(0.0f);
    cluster.getParticle(2).setType(9);
    auto prims = feedback([&] { cluster.draw(); });
    ASSERT_EQ(prims.size(), 1u);
    EXPECT_EQ(prims[0].size(), 3u);

    Counter a("a"), b("b");
    info.material = &a;
    ParticleCluster runs("runs", 6, &info, false);
    runs.update(0.0f);  // six live, all with a
    runs.getParticle(2).setMaterial(&b);
    runs.getParticle(5).setMaterial(nullptr);  // keeps whatever is bound
    runs.draw();
    // Runs: a a | b | a a | (none)
    EXPECT_EQ(a.binds, 2);
    EXPECT_EQ(b.binds, 1);
    EXPECT_EQ(Particle::lastMaterial, nullptr);
}

}  // namespace
