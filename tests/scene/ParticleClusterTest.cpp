// Particle clusters: emission schedule, motion, colour over life, the dead-visit counter, billboard drawing.
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Particle.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "texture/Material.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

const BoundingBox box(Vector3(-1.0f, -1.0f, -1.0f), Vector3(1.0f, 1.0f, 1.0f));
const Color white(1.0f, 1.0f, 1.0f, 1.0f);

// Fixed lifetime so that deaths fall on known updates.
PCInfoCube fixedLife(float life)
{
    return PCInfoCube(PARTICLE_QUAD, life, life, Vector3(0.1f, 0.1f, 0.1f), white, white, box);
}

TEST(ParticleClusterTest, ThreeAreEmittedPerUpdateUpToThePoolEvenWithoutTime)
{
    PCInfoCube info = fixedLife(100.0f);
    ParticleCluster cluster("plume", 10, &info, false);
    EXPECT_EQ(cluster.getActive(), 3);
    const Vector3 first = cluster.getParticle(0).getPosition();
    cluster.update(0.0f);
    EXPECT_EQ(cluster.getActive(), 6);
    EXPECT_EQ(cluster.getParticle(0).getPosition(), first);
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), 100.0f);
    for (int expected : {9, 10, 10}) {
        cluster.update(0.1f);
        EXPECT_EQ(cluster.getActive(), expected);
    }
    for (int i = 0; i < 10; ++i)
        EXPECT_GT(cluster.getParticle(i).getLifetime(), 0.0f) << i;
}

TEST(ParticleClusterTest, CreationIsRefusedTwiceWithoutInfoOrBelowThree)
{
    PCInfoCube info = fixedLife(1.0f);
    ParticleCluster cluster;
    cluster.update(1.0f);  // no pool yet: nothing to do
    EXPECT_TRUE(cluster.visible(Frustum()));
    EXPECT_FALSE(cluster.createCluster("x", 10, nullptr, false));
    EXPECT_FALSE(cluster.createCluster("x", 2, &info, false));
    EXPECT_EQ(cluster.getParticles(), nullptr);
    EXPECT_TRUE(cluster.createCluster("x", 3, &info, true));
    EXPECT_FALSE(cluster.createCluster("y", 10, &info, false));
    EXPECT_EQ(cluster.getCount(), 3);
}

TEST(ParticleClusterTest, LiveParticlesMoveAlongTheirDirectionAtTheClusterSpeed)
{
    PCInfoCube info = fixedLife(10.0f);
    ParticleCluster cluster("c", 3, &info, false);
    cluster.setSpeed(4.0f);
    Vector3 start = cluster.getParticle(1).getPosition();
    Vector3 dir = cluster.getParticle(1).getDirection();
    cluster.update(0.5f);
    EXPECT_EQ(cluster.getParticle(1).getPosition(), start + dir * 0.5f * 4.0f);
    EXPECT_EQ(cluster.getParticle(1).getLifetime(), 9.5f);
}

TEST(ParticleTest, ColourBlendsOverLifeWithoutClampingAndANonPositiveLifeNeverFades)
{
    Particle p;
    p.setColors(Color(1.0f, 0.0f, 0.0f, 1.0f), Color(0.0f, 0.0f, 1.0f, 0.0f));
    p.setLifetime(2.0f);
    p.updateColor(0.5f);
    EXPECT_FLOAT_EQ(p.getAge(), 0.25f);
    EXPECT_FLOAT_EQ(p.getColor().r, 0.75f);
    EXPECT_FLOAT_EQ(p.getColor().a, 0.75f);
    p.updateColor(2.0f);  // age 1.25: past the end colour
    EXPECT_FLOAT_EQ(p.getColor().r, -0.25f);
    EXPECT_FLOAT_EQ(p.getColor().b, 1.25f);

    Particle q;
    q.setColors(Color(0.2f, 0.4f, 0.6f, 0.8f), white);
    for (float life : {0.0f, -3.0f}) {
        q.setLifetime(life);
        q.updateColor(10.0f);
        EXPECT_EQ(q.getColor(), Color(0.2f, 0.4f, 0.6f, 0.8f));
        EXPECT_FALSE(q.isAlive());
    }
}

TEST(ParticleClusterTest, TheDeadVisitCounterCanEndTheClusterWhileParticlesLive)
{
    PCInfoCube info = fixedLife(1.0f);
    ParticleCluster cluster("c", 6, &info, false);
    for (int i = 0; i < 3; ++i)
        cluster.getParticle(i).setLifetime(100.0f);
    cluster.update(1.0f);  // particles 3..5 emitted and spent
    EXPECT_EQ(cluster.getDead(), 0);
    cluster.update(1.0f);  // three dead visits
    EXPECT_EQ(cluster.getDead(), 3);
    cluster.update(1.0f);  // six: the cluster stops
    EXPECT_EQ(cluster.getDead(), 6);
    float life = cluster.getParticle(0).getLifetime();
    EXPECT_GT(life, 0.0f);
    cluster.update(1.0f);
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), life);
}

TEST(ParticleClusterTest, ACounterThatStepsOverThePoolSizeKeepsCounting)
{
    // Only equality ends a cluster: five dead per update passes 6 and goes on.
    PCInfoCube info = fixedLife(1.0f);
    ParticleCluster cluster("c", 6, &info, false);
    cluster.getParticle(0).setLifetime(1000.0f);
    cluster.update(1.0f);
    cluster.update(1.0f);
    EXPECT_EQ(cluster.getDead(), 5);
    cluster.update(1.0f);
    EXPECT_EQ(cluster.getDead(), 10);
    EXPECT_FLOAT_EQ(cluster.getParticle(0).getLifetime(), 997.0f);
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
    cluster.update(0.25f);
    EXPECT_EQ(cluster.getParticle(0).getLifetime(), 0.75f);
}

TEST(ParticleClusterTest, ResetKillsEverythingAndTheNextUpdateEmitsFromTheStart)
{
    PCInfoCube info = fixedLife(5.0f);
    ParticleCluster cluster("c", 10, &info, false);
    cluster.update(0.1f);
    cluster.reset();
    EXPECT_EQ(cluster.getActive(), 0);
    EXPECT_EQ(cluster.getDead(), 0);
    EXPECT_EQ(cluster.getParticle(9).getLifetime(), 0.0f);
    cluster.update(0.0f);
    EXPECT_EQ(cluster.getActive(), 3);
    EXPECT_EQ(cluster.getParticle(2).getLifetime(), 5.0f);
    EXPECT_EQ(cluster.getParticle(3).getLifetime(), 0.0f);
}

TEST(ParticleClusterTest, TheSameSeedRunsTheSameClusterTwice)
{
    PCInfoSphere info(PARTICLE_QUAD, 0.5f, 3.0f, Vector3(1, 1, 1), white, white, box);
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
    void unbind() override { ++unbinds; }
    int binds = 0;
    int unbinds = 0;
};

// A region of radius 0 around p: point emitters start exactly there.
BoundingBox at(const Vector3& p)
{
    BoundingBox b;
    b.create(p, 0.0f);
    return b;
}

// Object-space vertices of every primitive drawn, through feedback mode with identity matrices.
std::vector<std::vector<Vector3>> capture(ParticleCluster& cluster)
{
    static GLfloat buffer[8192];
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glFeedbackBuffer(8192, GL_3D, buffer);
    glRenderMode(GL_FEEDBACK);
    cluster.draw();
    GLint size = glRenderMode(GL_RENDER);
    auto vertexAt = [&](GLint i) {
        return Vector3(buffer[i] / viewport[2] * 2.0f - 1.0f, buffer[i + 1] / viewport[3] * 2.0f - 1.0f,
                       buffer[i + 2] * 2.0f - 1.0f);
    };
    std::vector<std::vector<Vector3>> prims;
    for (GLint i = 0; i < size;) {
        GLint token = static_cast<GLint>(buffer[i]);
        GLint n = token == GL_POLYGON_TOKEN ? static_cast<GLint>(buffer[i + 1]) : 1;
        GLint first = token == GL_POLYGON_TOKEN ? i + 2 : i + 1;
        if (token != GL_POLYGON_TOKEN && token != GL_POINT_TOKEN) {
            ADD_FAILURE() << "token " << token;
            break;
        }
        std::vector<Vector3> prim;
        for (GLint k = 0; k < n; ++k)
            prim.push_back(vertexAt(first + 3 * k));
        prims.push_back(prim);
        i = first + 3 * n;
    }
    return prims;
}

class ParticleDrawTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        glDisable(GL_CULL_FACE);
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->remove("BillboardCam");
        GLTest::TearDown();
    }

    // A camera looking along (1, 0, 1) from the origin, its basis worked out.
    static Camera* activeCamera()
    {
        Camera* camera = new Camera("BillboardCam");
        camera->lookAt(Vector3(0, 0, 0), Vector3(1, 0, 1));
        camera->calcUVN();
        camera->calcInverse();
        CameraMgr::getHandle()->add(camera);
        CameraMgr::getHandle()->setActiveCamera(camera);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        return camera;
    }
};

TEST_F(ParticleDrawTest, QuadsFaceTheActiveCamera)
{
    Camera* camera = activeCamera();
    const Vector3 p(0.1f, 0.2f, 0.0f);
    PCInfoPoint info(PARTICLE_QUAD, 10.0f, 10.0f, Vector3(0.3f, 0.2f, 1.0f), white, white, at(p));
    ParticleCluster cluster("quads", 3, &info, false);
    auto prims = capture(cluster);
    // The driver may hand each quad to feedback as two triangles.
    ASSERT_TRUE(prims.size() == 3u || prims.size() == 6u) << prims.size();
    const Vector3 u = camera->getU(), v = camera->getV();
    const Vector3 corners[4] = {p - u * 0.3f + v * 0.2f, p - u * 0.3f - v * 0.2f, p + u * 0.3f - v * 0.2f,
                                p + u * 0.3f + v * 0.2f};
    bool seen[4] = {false, false, false, false};
    for (const auto& prim : prims)
        for (const Vector3& vertex : prim) {
            int match = -1;
            for (int k = 0; k < 4; ++k)
                if ((vertex - corners[k]).length() < 3e-3f)
                    match = k;
            ASSERT_GE(match, 0) << vertex.x << " " << vertex.y << " " << vertex.z;
            seen[match] = true;
        }
    for (int k = 0; k < 4; ++k)
        EXPECT_TRUE(seen[k]) << k;
}

TEST_F(ParticleDrawTest, APointLandsAtItsPositionPlusItsRotatedPosition)
{
    Camera* camera = activeCamera();
    const Vector3 p(0.2f, 0.1f, 0.3f);
    PCInfoPoint info(PARTICLE_POINT, 10.0f, 10.0f, Vector3(1, 1, 1), white, white, at(p));
    ParticleCluster cluster("points", 3, &info, false);
    auto prims = capture(cluster);
    ASSERT_EQ(prims.size(), 3u);
    Vector3 expected = p + camera->getU() * p.x + camera->getV() * p.y + camera->getN() * p.z;
    EXPECT_LT((prims[0][0] - expected).length(), 3e-3f);
}

TEST_F(ParticleDrawTest, DeadParticlesAndUnknownTypesDrawNothing)
{
    PCInfoPoint info(PARTICLE_TRIANGLE, 10.0f, 10.0f, Vector3(0.1f, 0.1f, 1), white, white, at(Vector3()));
    ParticleCluster cluster("tris", 5, &info, false);
    cluster.getParticle(1).setLifetime(0.0f);
    cluster.getParticle(2).setType(9);
    auto prims = capture(cluster);
    ASSERT_EQ(prims.size(), 1u);
    EXPECT_EQ(prims[0].size(), 3u);
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
}

TEST_F(ParticleDrawTest, SharedMaterialsBindOncePerRun)
{
    Counter a("a"), b("b");
    PCInfoPoint info(PARTICLE_QUAD, 10.0f, 10.0f, Vector3(0.1f, 0.1f, 1), white, white, at(Vector3()));
    info.material = &a;
    ParticleCluster cluster("runs", 6, &info, false);
    cluster.update(0.0f);  // six live, all with a
    cluster.getParticle(2).setMaterial(&b);
    cluster.getParticle(5).setMaterial(nullptr);  // keeps whatever is bound
    cluster.draw();
    // Runs: a a | b | a a | (none)
    EXPECT_EQ(a.binds, 2);
    EXPECT_EQ(b.binds, 1);
    EXPECT_EQ(a.unbinds, 2);
    EXPECT_EQ(b.unbinds, 1);
    EXPECT_EQ(Particle::lastMaterial, nullptr);
}

}  // namespace
