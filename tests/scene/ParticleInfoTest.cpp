// Particle emitters: the start values, each shape's table row, its random draw order and seeded repeats.
#include "scene/Particle.h"
#include "scene/ParticleInfo.h"
#include "texture/Material.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

const BoundingBox region(Vector3(-2.0f, 1.0f, 3.0f), Vector3(4.0f, 5.0f, 11.0f));
const Color red(1.0f, 0.0f, 0.0f, 1.0f);
const Color clearBlue(0.0f, 0.0f, 1.0f, 0.0f);
const Vector3 size(0.5f, 0.25f, 1.0f);

// The values rand() will hand out after srand(seed), scaled as the emitters scale them.
std::vector<float> draws(unsigned seed, int n)
{
    std::srand(seed);
    std::vector<float> u;
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
    EXPECT_FLOAT_EQ(a.x, b.x);
    EXPECT_FLOAT_EQ(a.y, b.y);
    EXPECT_FLOAT_EQ(a.z, b.z);
}

Vector3 unit(float x, float y, float z)
{
    Vector3 v(x, y, z);
    v.normalize();
    return v;
}

const unsigned seeds[] = {1u, 7u, 1234u, 99991u};

// ---- what every emission sets ----

TEST(ParticleInfoTest, EveryShapeSetsTypeSizeLifetimeColoursAndMaterialFirst)
{
    Material fire("fire");
    PCInfoCube cube(PARTICLE_QUAD, 2.0f, 6.0f, size, red, clearBlue, region);
    cube.material = &fire;
    Particle p;
    std::vector<float> u = draws(5u, 1);
    cube.create(p);
    EXPECT_EQ(p.getType(), static_cast<ParticleType>(PARTICLE_QUAD));
    EXPECT_EQ(p.getSize(), size);
    EXPECT_FLOAT_EQ(p.getLifetime(), between(2.0f, 6.0f, u[0]));
    EXPECT_EQ(p.getAge(), 0.0f);
    EXPECT_EQ(p.getStartColor(), red);
    EXPECT_EQ(p.getColor(), red);
    EXPECT_EQ(p.getEndColor(), clearBlue);
    EXPECT_EQ(p.getMaterial(), &fire);
    EXPECT_EQ(p.getInfo(), &cube);
}

// ---- each shape's row ----

TEST(ParticleInfoTest, PointStartsAtTheCentreAndSpraysUpward)
{
    PCInfoPoint point(PARTICLE_POINT, 1.0f, 2.0f, size, red, red, region);
    for (unsigned seed : seeds) {
        std::vector<float> u = draws(seed, 4);
        Particle p;
        point.create(p);
        EXPECT_EQ(p.getPosition(), region.getCentre());
        expectVec(p.getDirection(), unit(2.0f * u[3] - 1.0f, u[2], 2.0f * u[1] - 1.0f));
        EXPECT_GE(p.getDirection().y, 0.0f);
        EXPECT_NEAR(p.getDirection().length(), 1.0f, 1e-5f);
    }
}

TEST(ParticleInfoTest, RectInXYDrawsYBeforeXOnTheLowZFace)
{
    PCInfoRect rect(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCINFO_PLANE_XY);
    for (unsigned seed : seeds) {
        std::vector<float> u = draws(seed, 4);
        Particle p;
        rect.create(p);
        expectVec(p.getPosition(), Vector3(between(-2, 4, u[2]), between(1, 5, u[1]), 3.0f));
        expectVec(p.getDirection(), unit(0.0f, 0.0f, 2.0f * u[3] - 1.0f));
    }
}

TEST(ParticleInfoTest, RectInXZDrawsZBeforeXOnTheLowYFace)
{
    PCInfoRect rect(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCINFO_PLANE_XZ);
    for (unsigned seed : seeds) {
        std::vector<float> u = draws(seed, 4);
        Particle p;
        rect.create(p);
        expectVec(p.getPosition(), Vector3(between(-2, 4, u[2]), 1.0f, between(3, 11, u[1])));
        expectVec(p.getDirection(), unit(0.0f, 2.0f * u[3] - 1.0f, 0.0f));
    }
}

TEST(ParticleInfoTest, RectInAnyOtherPlaneIsYZDrawingZBeforeY)
{
    for (PCInfoPlane plane : {PCInfoPlane(PCINFO_PLANE_YZ), PCInfoPlane(7)}) {
        PCInfoRect rect(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane);
        std::vector<float> u = draws(77u, 4);
        Particle p;
        rect.create(p);
        expectVec(p.getPosition(), Vector3(-2.0f, between(1, 5, u[2]), between(3, 11, u[1])));
        expectVec(p.getDirection(), unit(2.0f * u[3] - 1.0f, 0.0f, 0.0f));
    }
}

TEST(ParticleInfoTest, CubeFillsTheBoxAndAimsAwayFromTheWorldOrigin)
{
    PCInfoCube cube(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region);
    for (unsigned seed : seeds) {
        std::vector<float> u = draws(seed, 4);
        Particle p;
        cube.create(p);
        Vector3 expected(between(-2, 4, u[3]), between(1, 5, u[2]), between(3, 11, u[1]));
        expectVec(p.getPosition(), expected);
        expectVec(p.getDirection(), unit(expected.x, expected.y, expected.z));
        EXPECT_TRUE(region.isPointInside(p.getPosition()));
    }
}

TEST(ParticleInfoTest, CircleUsesSeparateDrawsForSineAndCosine)
{
    const Vector3 m = region.getCentre();
    const float r = region.getRadius();
    for (PCInfoPlane plane : {PCInfoPlane(0), PCInfoPlane(1), PCInfoPlane(2)}) {
        PCInfoCircle circle(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane);
        std::vector<float> u = draws(4242u + plane, 4);
        Particle p;
        circle.create(p);
        float s = static_cast<float>(std::sin(static_cast<double>(6.2831855f * u[1])));
        float k = static_cast<float>(std::cos(static_cast<double>(6.2831855f * u[2])));
        Vector3 expected;
        Vector3 dir;
        if (plane == 0) {
            expected = m + Vector3(k * r - s * r, s * r + k * r, 0.0f);
            dir = unit(0.0f, 0.0f, 2.0f * u[3] - 1.0f);
        } else if (plane == 1) {
            expected = m + Vector3(k * r + s * r, m.y, k * r - s * r);
            dir = unit(0.0f, 2.0f * u[3] - 1.0f, 0.0f);
        } else {
            expected = m + Vector3(m.x, k * r - s * r, s * r + k * r);
            dir = unit(2.0f * u[3] - 1.0f, 0.0f, 0.0f);
        }
        expectVec(p.getPosition(), expected);
        expectVec(p.getDirection(), dir);
    }
}

TEST(ParticleInfoTest, CircleCountsTheCentreTwiceInItsNormalAxis)
{
    const Vector3 m = region.getCentre();
    PCInfoCircle xz(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCINFO_PLANE_XZ);
    PCInfoCircle yz(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, PCINFO_PLANE_YZ);
    for (unsigned seed : seeds) {
        std::srand(seed);
        Particle a, b;
        xz.create(a);
        yz.create(b);
        EXPECT_FLOAT_EQ(a.getPosition().y, 2.0f * m.y);
        EXPECT_FLOAT_EQ(b.getPosition().x, 2.0f * m.x);
    }
}

TEST(ParticleInfoTest, HelixPlanesFollowTheirOwnAngleRules)
{
    const Vector3 m = region.getCentre();
    const float r = region.getRadius();
    const float turns = 3.0f;
    const float zExtent = 8.0f;
    for (PCInfoPlane plane : {PCInfoPlane(0), PCInfoPlane(1), PCInfoPlane(2)}) {
        PCInfoHelix helix(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane, turns);
        for (unsigned seed : seeds) {
            std::vector<float> u = draws(seed, 2);
            Particle p;
            helix.create(p);
            float t, a;
            Vector3 expected, dir;
            if (plane == 0) {
                t = between(3, 11, u[1]);
                a = (6.2831855f * turns / zExtent) / t;
            } else if (plane == 1) {
                t = between(1, 5, u[1]);
                a = std::fabs(zExtent - t) / turns * 6.2831855f;
            } else {
                t = between(-2, 4, u[1]);
                a = (6.2831855f * turns / zExtent) / t;
            }
            float c = static_cast<float>(std::cos(static_cast<double>(a)));
            float s = static_cast<float>(std::sin(static_cast<double>(a)));
            if (plane == 0) {
                expected = Vector3(m.x + r * c - r * s, m.y + r * s + r * c, t);
                dir = Vector3(0, 0, 1);
            } else if (plane == 1) {
                expected = Vector3(m.x + r * c + r * s, t, m.z + r * c - r * s);
                dir = Vector3(0, 1, 0);
            } else {
                expected = Vector3(t, m.y + r * c - r * s, m.z + r * s + r * c);
                dir = Vector3(1, 0, 0);
            }
            expectVec(p.getPosition(), expected);
            EXPECT_EQ(p.getDirection(), dir);
        }
    }
}

TEST(ParticleInfoTest, HelixYZAngleKeepsTheSignOfTheZExtent)
{
    // A region given with its corners swapped in z: YZ divides by the signed
    // extent, XY by its absolute value.
    PCInfoHelix yz(PARTICLE_QUAD, 1, 1, size, red, red, region, PCINFO_PLANE_YZ, 1.0f);
    PCInfoHelix xy(PARTICLE_QUAD, 1, 1, size, red, red, region, PCINFO_PLANE_XY, 1.0f);
    BoundingBox flipped;
    flipped.create(Vector3(-2, 1, 11), Vector3(4, 5, 3));
    PCInfoHelix yzFlipped(PARTICLE_QUAD, 1, 1, size, red, red, flipped, PCINFO_PLANE_YZ, 1.0f);
    PCInfoHelix xyFlipped(PARTICLE_QUAD, 1, 1, size, red, red, flipped, PCINFO_PLANE_XY, 1.0f);
    // Same centre and radius in both; for YZ the angle's sign flips, and with it the sine.
    Vector3 a = yz.fYZ(2.0f), b = yzFlipped.fYZ(2.0f);
    EXPECT_FALSE(std::fabs(a.y - b.y) < 1e-6f && std::fabs(a.z - b.z) < 1e-6f);
    EXPECT_EQ(xy.fXY(2.0f), xyFlipped.fXY(2.0f));
}

TEST(ParticleInfoTest, HelixAngleIsZeroAtParameterZero)
{
    PCInfoHelix helix(PARTICLE_QUAD, 1, 1, size, red, red, region, PCINFO_PLANE_XY, 2.0f);
    const float r = region.getRadius();
    expectVec(helix.fXY(0.0f), Vector3(r, r, 0.0f));
    expectVec(helix.fYZ(0.0f), Vector3(0.0f, r, r));
    // XZ measures from the top of the z extent instead: zero where t equals it.
    expectVec(helix.fXZ(8.0f), Vector3(r, 8.0f, r));
}

TEST(ParticleInfoTest, SphereStartsOnTheSphereAndMovesBySigns)
{
    PCInfoSphere sphere(PARTICLE_SPHERE, 1.0f, 2.0f, size, red, red, region);
    const Vector3 m = region.getCentre();
    const float r = region.getRadius();
    for (unsigned seed : seeds) {
        std::vector<float> u = draws(seed, 4);
        Particle p;
        sphere.create(p);
        Vector3 d = unit(2.0f * u[3] - 1.0f, 2.0f * u[2] - 1.0f, 2.0f * u[1] - 1.0f);
        expectVec(p.getPosition(), m + d * r);
        EXPECT_NEAR((p.getPosition() - m).length(), r, 1e-4f);
        Vector3 dir = p.getDirection();
        EXPECT_EQ(dir.x, d.x < 0.0f ? -1.0f : 1.0f);
        EXPECT_EQ(dir.y, d.y < 0.0f ? -1.0f : 1.0f);
        EXPECT_EQ(dir.z, d.z < 0.0f ? -1.0f : 1.0f);
    }
}

// ---- repeatability and visibility ----

TEST(ParticleInfoTest, TheSameSeedGivesTheSameParticles)
{
    PCInfoHelix helix(PARTICLE_QUAD, 1.0f, 9.0f, size, red, clearBlue, region, PCINFO_PLANE_XZ, 2.5f);
    PCInfoSphere sphere(PARTICLE_QUAD, 1.0f, 9.0f, size, red, clearBlue, region);
    auto run = [&](unsigned seed) {
        std::srand(seed);
        std::vector<Particle> out(20);
        for (size_t i = 0; i < out.size(); ++i)
            (i % 2 ? static_cast<ParticleInfo&>(helix) : sphere).create(out[i]);
        return out;
    };
    std::vector<Particle> a = run(31337u), b = run(31337u), c = run(31338u);
    bool allSame = true;
    for (size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(std::memcmp(&a[i].getPosition(), &b[i].getPosition(), sizeof(Vector3)), 0) << i;
        EXPECT_EQ(a[i].getLifetime(), b[i].getLifetime()) << i;
        allSame = allSame && a[i].getPosition() == c[i].getPosition();
    }
    EXPECT_FALSE(allSame);
}

}  // namespace
