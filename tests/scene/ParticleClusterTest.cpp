// Particles: each emitter's table row and draw order, emission, colour over life, the dead-visit counter, drawing.
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Particle.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "texture/Material.h"

#include "Feedback.h"
#include "support/GLContext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

const Color white(1.0f, 1.0f, 1.0f, 1.0f);
const BoundingBox region(Vector3(-2.0f, 1.0f, 3.0f), Vector3(4.0f, 5.0f, 11.0f));
const Vector3 m = region.getCentre();
const float r = region.getRadius();
const Color red(1.0f, 0.0f, 0.0f, 1.0f);
const Vector3 size(0.5f, 0.25f, 1.0f);
const unsigned seeds[] = {1u, 7u, 1234u, 99991u};

// The values rand() will hand out after srand(seed), scaled as the emitters scale them; reseeds after.
std::vector<float> draws(unsigned seed, int n)
{
    std::srand(seed);
    std::vector<float> u(1, 0.0f);  // 1-based, as the emitter table numbers them
    for (int i = 0; i < n; ++i)
        u.push_back(static_cast<float>(std::rand()) * 4.656613e-10f);
    std::srand(seed);
    return u;
}

float between(float a, float b, float u)
{
    return a + u * (b - a);
}

void expectVec(const Vector3& a, const Vector3& b)
{
    EXPECT_LT((a - b).length(), 1e-5f * (1.0f + b.length())) << a << " is not " << b;
}

Vector3 unit(float x, float y, float z)
{
    Vector3 v(x, y, z);
    return v.normalize(), v;
}

// The unit axis normal to plane row 0 (XY), 1 (XZ) or 2 (YZ), pointing the way d does.
Vector3 along(int row, float d)
{
    const float sign = d < 0.0f ? -1.0f : 1.0f;
    return row == 0 ? Vector3(0, 0, sign) : row == 1 ? Vector3(0, sign, 0) : Vector3(sign, 0, 0);
}

float sinf64(float a)
{
    return static_cast<float>(std::sin(static_cast<double>(a)));
}
float cosf64(float a)
{
    return static_cast<float>(std::cos(static_cast<double>(a)));
}

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

TEST(ParticleInfoTest, PointCubeAndSphereRowsAfterTheLifetimeDraw)
{
    PCInfoPoint point(PARTICLE_POINT, 1.0f, 2.0f, size, red, red, region);
    PCInfoCube cube(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region);
    PCInfoSphere sphere(PARTICLE_SPHERE, 1.0f, 2.0f, size, red, red, region);
    auto sign = [](float x) { return x < 0.0f ? -1.0f : 1.0f; };
    for (unsigned seed : seeds) {
        SCOPED_TRACE(seed);
        std::vector<float> u = draws(seed, 4);
        Particle p;
        point.create(p);
        EXPECT_FLOAT_EQ(p.getLifetime(), between(1.0f, 2.0f, u[1]));
        EXPECT_EQ(p.getPosition(), m);
        // The y part is never negative: points spray upwards.
        expectVec(p.getDirection(), unit(2.0f * u[4] - 1.0f, u[3], 2.0f * u[2] - 1.0f));
        u = draws(seed, 4);
        cube.create(p);
        const Vector3 inBox(between(-2, 4, u[4]), between(1, 5, u[3]), between(3, 11, u[2]));
        expectVec(p.getPosition(), inBox);
        expectVec(p.getDirection(), unit(inBox.x, inBox.y, inBox.z));  // away from the world origin
        u = draws(seed, 4);
        sphere.create(p);
        const Vector3 d = unit(2.0f * u[4] - 1.0f, 2.0f * u[3] - 1.0f, 2.0f * u[2] - 1.0f);
        expectVec(p.getPosition(), m + d * r);
        EXPECT_EQ(p.getDirection(), Vector3(sign(d.x), sign(d.y), sign(d.z)));
    }
}

TEST(ParticleInfoTest, RectDrawsItsTwoAxesInPlaneOrderOnTheLowFace)
{
    for (int k : {0, 1, 2, 7}) {
        SCOPED_TRACE(k);
        const int row = k > 2 ? 2 : k;  // any other plane is YZ
        PCInfoRect rect(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCInfoPlane(k));
        std::vector<float> u = draws(77u + k, 4);
        Particle p;
        rect.create(p);
        const Vector3 expected[3] = {{between(-2, 4, u[3]), between(1, 5, u[2]), 3.0f},
                                     {between(-2, 4, u[3]), 1.0f, between(3, 11, u[2])},
                                     {-2.0f, between(1, 5, u[3]), between(3, 11, u[2])}};
        expectVec(p.getPosition(), expected[row]);
        expectVec(p.getDirection(), along(row, 2.0f * u[4] - 1.0f));
    }
}

TEST(ParticleInfoTest, CircleUsesSeparateDrawsAndCountsTheCentreTwiceOffXY)
{
    for (int plane : {0, 1, 2}) {
        SCOPED_TRACE(plane);
        PCInfoCircle circle(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCInfoPlane(plane));
        std::vector<float> u = draws(4242u + plane, 4);
        Particle p;
        circle.create(p);
        const float s = sinf64(6.2831855f * u[2]) * r, k = cosf64(6.2831855f * u[3]) * r;
        const Vector3 expected[3] = {m + Vector3(k - s, s + k, 0.0f), m + Vector3(k + s, m.y, k - s),
                                     m + Vector3(m.x, k - s, s + k)};
        expectVec(p.getPosition(), expected[plane]);
        expectVec(p.getDirection(), along(plane, 2.0f * u[4] - 1.0f));
    }
}

TEST(ParticleInfoTest, HelixPlanesFollowTheirOwnAngleRules)
{
    const float turns = 3.0f, zExtent = 8.0f;
    for (int plane : {0, 1, 2}) {
        PCInfoHelix helix(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCInfoPlane(plane), turns);
        for (unsigned seed : seeds) {
            SCOPED_TRACE(testing::Message() << "plane " << plane << " seed " << seed);
            std::vector<float> u = draws(seed, 2);
            Particle p;
            helix.create(p);
            const float t = plane == 0 ? between(3, 11, u[2]) : plane == 1 ? between(1, 5, u[2]) : between(-2, 4, u[2]);
            const float a =
                plane == 1 ? std::fabs(zExtent - t) / turns * 6.2831855f : (6.2831855f * turns / zExtent) / t;
            const float c = cosf64(a) * r, s = sinf64(a) * r;
            const Vector3 expected[3] = {
                {m.x + c - s, m.y + s + c, t}, {m.x + c + s, t, m.z + c - s}, {t, m.y + c - s, m.z + s + c}};
            expectVec(p.getPosition(), expected[plane]);
            EXPECT_EQ(p.getDirection(), along(plane, 1.0f));
        }
    }
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
