// The moving Bezier land: control points stay within their reach, the ground a ball meets is the patches' surface, odd meshes are refused.
#include "effects/BezierAnim.h"

#include "effects/FlipperPlay.h"
#include "scene/BezierMesh.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

const int SIDE = 3;
const float PATCH = 8.0f;

float restHeight(float x, float z)
{
    return 2.0f * std::sin(x * 0.2f) * std::cos(z * 0.15f);
}

// SIDE x SIDE patches from -12 to 12, rows along x and columns along z like the forged land.
void makeLand(BezierMesh& mesh, float skew = 0.0f)
{
    const float low = -0.5f * SIDE * PATCH;
    for (int a = 0; a < SIDE; ++a) {
        for (int b = 0; b < SIDE; ++b) {
            BezierMesh::Patch patch;
            for (int row = 0; row < 4; ++row) {
                for (int column = 0; column < 4; ++column) {
                    const float x = low + PATCH * (a + row / 3.0f) + skew * column;
                    const float z = low + PATCH * (b + column / 3.0f);
                    patch.points[row * 4 + column] = Vector3(x, restHeight(x, z), z);
                }
            }
            mesh.addPatch(patch);
        }
    }
}

const BezierAnim::Wave WAVES[] = {{1.0f, 0.3f, 22.0f, 4.0f, 0.45f}, {-0.4f, 1.0f, 15.0f, 3.0f, 0.3f}};
const BezierAnim::Ripple RIPPLE = {0.6f, 2.5f, 14.0f, 1.2f};

void animate(BezierAnim& land, const BezierMesh& mesh)
{
    ASSERT_TRUE(land.create(mesh, 6));
    land.setWaves(WAVES, 2);
    land.setRipple(RIPPLE);
    land.setEdge(5.0f);
}

}  // namespace

// Over the whole scene, kick after kick: every control point moves only up and down, never
// further than the swells' and ripple's heights together, and the rim not at all.
TEST(BezierAnimMotion, ControlPointsStayInsideTheirBounds)
{
    BezierMesh mesh;
    makeLand(mesh);
    BezierAnim land;
    animate(land, mesh);
    EXPECT_FLOAT_EQ(land.getReach(), 0.45f + 0.3f + 0.6f);
    float widest = 0.0f;
    for (float t = 0.0f; t <= 18.0f; t += 0.01f) {
        land.update(t, FlipperPlay::sinceKick(t));
        for (int p = 0; p < land.getNumPatches(); ++p) {
            for (int k = 0; k < 16; ++k) {
                const Vector3& rest = land.getRestPoint(p, k);
                const Vector3& now = land.getPoint(p, k);
                ASSERT_EQ(now.x, rest.x);
                ASSERT_EQ(now.z, rest.z);
                const float moved = std::fabs(now.y - rest.y);
                ASSERT_LE(moved, land.getWeight(p, k) * land.getReach() + 1e-5f) << t;
                widest = std::fmax(widest, moved);
            }
        }
    }
    // And it does move: most of its reach, somewhere, sometime.
    EXPECT_GT(widest, 0.6f * land.getReach());
    EXPECT_EQ(land.getWeight(0, 0), 0.0f);
    EXPECT_EQ(land.getWeight(4, 5), 1.0f);
}

TEST(BezierAnimGround, IsThePatchSurfaceWithItsNormalAndRiseAndPatchesOffAGridAreRefused)
{
    BezierMesh mesh;
    makeLand(mesh);
    BezierAnim land;
    animate(land, mesh);
    GroundPoint point;
    // Patch corners lie on the surface; between them the mesh's own evaluation is the ground.
    for (int p : {0, 4, 8}) {
        const BezierMesh::Patch& patch = mesh.getPatch(p);
        ASSERT_TRUE(land.groundAt(patch.points[15].x, patch.points[15].z, point));
        EXPECT_NEAR(point.height, patch.points[15].y, 1e-4f);
        const Vector3 inside = BezierMesh::evaluate(patch, 0.3f, 0.6f);
        ASSERT_TRUE(land.groundAt(inside.x, inside.z, point));
        EXPECT_NEAR(point.height, inside.y, 1e-4f);
        const Vector3 normal = BezierMesh::normalAt(patch, 0.3f, 0.6f);
        EXPECT_NEAR(point.normal.dot(normal), 1.0f, 1e-4f);
        EXPECT_GT(point.normal.y, 0.0f);
    }
    EXPECT_FALSE(land.groundAt(12.01f, 0.0f, point));
    EXPECT_FALSE(land.groundAt(0.0f, -12.01f, point));
    EXPECT_TRUE(land.groundAt(12.0f, 12.0f, point));
    // The rise is the change of height over the last step.
    land.update(1.0f, 10.0f);
    GroundPoint before;
    ASSERT_TRUE(land.groundAt(2.0f, 1.0f, before));
    land.update(1.1f, 10.1f);
    ASSERT_TRUE(land.groundAt(2.0f, 1.0f, point));
    EXPECT_NEAR(point.rise, (point.height - before.height) / 0.1f, 1e-3f);
    EXPECT_NE(point.rise, 0.0f);
    BezierAnim refusing;
    BezierMesh empty;
    EXPECT_FALSE(refusing.create(empty, 6));
    BezierMesh skewed;
    makeLand(skewed, 0.5f);
    EXPECT_FALSE(refusing.create(skewed, 6));
    EXPECT_FALSE(refusing.isCreated());
    BezierMesh twice;
    makeLand(twice);
    twice.addPatch(twice.getPatch(0));
    EXPECT_FALSE(refusing.create(twice, 6));
    BezierMesh good;
    makeLand(good);
    EXPECT_TRUE(refusing.create(good, 6));
    EXPECT_EQ(refusing.getVertexCount(), SIDE * SIDE * 49);
}
