// Particle emitters: each shape's table row and its random draw order, the lifetime drawn first.
#include "scene/Particle.h"
#include "scene/ParticleInfo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

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

float between(float a, float b, float u) { return a + u * (b - a); }

void expectVec(const Vector3& a, const Vector3& b)
{
    EXPECT_LT((a - b).length(), 1e-5f * (1.0f + b.length())) << a << " is not " << b;
}

Vector3 unit(float x, float y, float z)
{
    Vector3 v(x, y, z);
    return v.normalize(), v;
}

float sinf64(float a) { return static_cast<float>(std::sin(static_cast<double>(a))); }
float cosf64(float a) { return static_cast<float>(std::cos(static_cast<double>(a))); }

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
    const PCInfoPlane planes[] = {PCINFO_PLANE_XY, PCINFO_PLANE_XZ, PCINFO_PLANE_YZ, PCInfoPlane(7)};
    for (PCInfoPlane plane : planes) {
        SCOPED_TRACE(plane);
        PCInfoRect rect(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane);
        std::vector<float> u = draws(77u + plane, 5);
        Particle p;
        rect.create(p);
        const float d = 2.0f * u[4] - 1.0f;
        if (plane == PCINFO_PLANE_XY) {
            expectVec(p.getPosition(), Vector3(between(-2, 4, u[3]), between(1, 5, u[2]), 3.0f));
            expectVec(p.getDirection(), unit(0.0f, 0.0f, d));
        } else if (plane == PCINFO_PLANE_XZ) {
            expectVec(p.getPosition(), Vector3(between(-2, 4, u[3]), 1.0f, between(3, 11, u[2])));
            expectVec(p.getDirection(), unit(0.0f, d, 0.0f));
        } else {
            expectVec(p.getPosition(), Vector3(-2.0f, between(1, 5, u[3]), between(3, 11, u[2])));
            expectVec(p.getDirection(), unit(d, 0.0f, 0.0f));
        }
    }
}

TEST(ParticleInfoTest, CircleUsesSeparateDrawsAndCountsTheCentreTwiceOffXY)
{
    for (PCInfoPlane plane : {PCInfoPlane(0), PCInfoPlane(1), PCInfoPlane(2)}) {
        SCOPED_TRACE(plane);
        PCInfoCircle circle(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane);
        std::vector<float> u = draws(4242u + plane, 5);
        Particle p;
        circle.create(p);
        const float s = sinf64(6.2831855f * u[2]) * r, k = cosf64(6.2831855f * u[3]) * r;
        const float d = 2.0f * u[4] - 1.0f;
        if (plane == 0) {
            expectVec(p.getPosition(), m + Vector3(k - s, s + k, 0.0f));
            expectVec(p.getDirection(), unit(0.0f, 0.0f, d));
        } else if (plane == 1) {
            expectVec(p.getPosition(), m + Vector3(k + s, m.y, k - s));
            expectVec(p.getDirection(), unit(0.0f, d, 0.0f));
        } else {
            expectVec(p.getPosition(), m + Vector3(m.x, k - s, s + k));
            expectVec(p.getDirection(), unit(d, 0.0f, 0.0f));
        }
    }
}

TEST(ParticleInfoTest, HelixPlanesFollowTheirOwnAngleRules)
{
    const float turns = 3.0f, zExtent = 8.0f;
    for (PCInfoPlane plane : {PCInfoPlane(0), PCInfoPlane(1), PCInfoPlane(2)}) {
        PCInfoHelix helix(PARTICLE_QUAD, 1.0f, 2.0f, size, red, red, region, plane, turns);
        for (unsigned seed : seeds) {
            SCOPED_TRACE(testing::Message() << "plane " << plane << " seed " << seed);
            std::vector<float> u = draws(seed, 2);
            Particle p;
            helix.create(p);
            if (plane == 0) {
                const float t = between(3, 11, u[2]), a = (6.2831855f * turns / zExtent) / t;
                const float c = cosf64(a) * r, s = sinf64(a) * r;
                expectVec(p.getPosition(), Vector3(m.x + c - s, m.y + s + c, t));
                EXPECT_EQ(p.getDirection(), Vector3(0, 0, 1));
            } else if (plane == 1) {
                const float t = between(1, 5, u[2]), a = std::fabs(zExtent - t) / turns * 6.2831855f;
                const float c = cosf64(a) * r, s = sinf64(a) * r;
                expectVec(p.getPosition(), Vector3(m.x + c + s, t, m.z + c - s));
                EXPECT_EQ(p.getDirection(), Vector3(0, 1, 0));
            } else {
                const float t = between(-2, 4, u[2]), a = (6.2831855f * turns / zExtent) / t;
                const float c = cosf64(a) * r, s = sinf64(a) * r;
                expectVec(p.getPosition(), Vector3(t, m.y + c - s, m.z + s + c));
                EXPECT_EQ(p.getDirection(), Vector3(1, 0, 0));
            }
        }
    }
}

}  // namespace
