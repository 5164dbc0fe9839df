// Height-map terrain: lookups inside, on grid points and past the edges, the TERA round trip and its bad input, the patch quadtree and its culling.
#include "scene/Terrain.h"

#include "ByteImage.h"
#include "scene/Camera.h"
#include "scene/Frustum.h"
#include "support/GLContext.h"
#include "support/VectorNear.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <sstream>

using namespace bytes;

namespace {

// A tilted plane: bilinear blending and central differences both reproduce it exactly.
const float SLOPE_X = 0.5f;
const float SLOPE_Z = -0.25f;

void makePlane(Terrain& terrain)
{
    ASSERT_TRUE(terrain.create(5, 4, Vector3(10.0f, 1.0f, -5.0f), 2.0f, 3.0f, 0.125f));
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 5; ++c)
            terrain.setHeight(c, r, SLOPE_X * (c * 2.0f) + SLOPE_Z * (r * 3.0f) + 3.0f);
}

float planeAt(float x, float z)
{
    return 1.0f + SLOPE_X * (x - 10.0f) + SLOPE_Z * (z + 5.0f) + 3.0f;
}

// Dunes over [-64, 64] on both axes: 65 x 65 points two units apart.
void makeDunes(Terrain& terrain, int patchCells)
{
    ASSERT_TRUE(terrain.create(65, 65, Vector3(-64.0f, 0.0f, -64.0f), 2.0f, 2.0f, 0.1f));
    for (int r = 0; r < 65; ++r)
        for (int c = 0; c < 65; ++c)
            terrain.setHeight(c, r, 2.0f * std::sin(c * 0.3f) * std::cos(r * 0.2f));
    ASSERT_TRUE(terrain.buildPatches(patchCells));
}

// The matrices glFrustum and gluLookAt make, column-major as OpenGL keeps them.
void viewFrom(Frustum& frustum, const Vector3& eye, const Vector3& centre, const Vector3& up, float farClip)
{
    const float nearClip = 0.5f;
    const float top = nearClip * std::tan(0.5f * 60.0f * 3.14159265f / 180.0f);
    const float right = top * 4.0f / 3.0f;
    float projection[16] = {};
    projection[0] = nearClip / right;
    projection[5] = nearClip / top;
    projection[10] = -(farClip + nearClip) / (farClip - nearClip);
    projection[11] = -1.0f;
    projection[14] = -2.0f * farClip * nearClip / (farClip - nearClip);
    Vector3 forward = centre - eye;
    forward.normalize();
    Vector3 side = forward.cross(up);
    side.normalize();
    const Vector3 upright = side.cross(forward);
    const float view[16] = {
        side.x, upright.x, -forward.x, 0.0f, side.y,         upright.y,         -forward.y,       0.0f,
        side.z, upright.z, -forward.z, 0.0f, -side.dot(eye), -upright.dot(eye), forward.dot(eye), 1.0f};
    frustum.extract(projection, view);
}

// The leaves whose boxes the frustum meets, found one by one.
int countByHand(const TerrainQuad* node, const Frustum& frustum)
{
    if (node->isLeaf())
        return frustum.isBoxInside(node->getBox()) ? 1 : 0;
    int seen = 0;
    for (int i = 0; i < TerrainQuad::CHILD_COUNT; ++i)
        if (node->getChild(i))
            seen += countByHand(node->getChild(i), frustum);
    return seen;
}

}  // namespace

TEST(TerrainLookup, InsideTheGridTheSurfaceIsBilinear)
{
    Terrain plane;
    makePlane(plane);
    const Vector3 up = Vector3(-SLOPE_X, 1.0f, -SLOPE_Z).normalize();
    for (float x = 10.0f; x <= 18.0f; x += 0.7f) {
        for (float z = -5.0f; z <= 4.0f; z += 0.9f) {
            SCOPED_TRACE(testing::Message() << x << ", " << z);
            EXPECT_NEAR(plane.heightAt(x, z), planeAt(x, z), 1e-4f);
            // One-sided differences along the edges are exact on a plane too.
            expectNear(plane.normalAt(x, z), up, 1e-5f);
        }
    }
    // A single raised point: a quarter of it at the middle of each cell around it, nothing beyond.
    Terrain bump;
    ASSERT_TRUE(bump.create(3, 3, Vector3(), 1.0f, 1.0f, 1.0f));
    bump.setHeight(1, 1, 4.0f);
    EXPECT_FLOAT_EQ(bump.heightAt(0.5f, 0.5f), 1.0f);
    EXPECT_FLOAT_EQ(bump.heightAt(1.5f, 0.5f), 1.0f);
    EXPECT_FLOAT_EQ(bump.heightAt(1.0f, 0.5f), 2.0f);
    EXPECT_FLOAT_EQ(bump.heightAt(2.0f, 2.0f), 0.0f);
    // The slope faces away from the peak on each side.
    EXPECT_LT(bump.gridNormal(0, 1).x, 0.0f);
    EXPECT_GT(bump.gridNormal(2, 1).x, 0.0f);
    EXPECT_GT(bump.gridNormal(1, 2).z, 0.0f);
    expectNear(bump.gridNormal(1, 1), Vector3(0.0f, 1.0f, 0.0f), 1e-6f);
}

TEST(TerrainLookup, OnGridPointsTheStoredHeightsComeBackExactly)
{
    Terrain terrain;
    ASSERT_TRUE(terrain.create(4, 3, Vector3(-1.5f, 0.25f, 2.0f), 0.5f, 1.5f, 1.0f));
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c)
            terrain.setHeight(c, r, 1.0f + c * 10.0f + r * 100.0f + (c * r % 3) * 0.125f);
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            const Vector3 p = terrain.gridPoint(c, r);
            EXPECT_EQ(p.y, 0.25f + terrain.getHeight(c, r));
            EXPECT_EQ(terrain.heightAt(p.x, p.z), p.y) << c << ", " << r;
        }
    }
    // Out-of-range indices read the nearest grid point; writes there do nothing.
    EXPECT_EQ(terrain.getHeight(-3, 7), terrain.getHeight(0, 2));
    terrain.setHeight(4, 0, 99.0f);
    EXPECT_NE(terrain.getHeight(3, 0), 99.0f);
}

TEST(TerrainLookup, AtAndBeyondTheEdgesTheNearestEdgeHolds)
{
    Terrain plane;
    makePlane(plane);
    // The far corner is (18, 4).
    const struct {
        float x, z, edgeX, edgeZ;
    } cases[] = {{10.0f, -5.0f, 10.0f, -5.0f}, {18.0f, 4.0f, 18.0f, 4.0f},    {5.0f, 0.0f, 10.0f, 0.0f},
                 {25.0f, 0.0f, 18.0f, 0.0f},   {14.0f, -40.0f, 14.0f, -5.0f}, {14.0f, 9.5f, 14.0f, 4.0f},
                 {-1e30f, 1e30f, 10.0f, 4.0f}, {1e30f, -1e30f, 18.0f, -5.0f}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.x << ", " << c.z);
        EXPECT_NEAR(plane.heightAt(c.x, c.z), planeAt(c.edgeX, c.edgeZ), 1e-4f);
        expectNear(plane.normalAt(c.x, c.z), plane.normalAt(c.edgeX, c.edgeZ), 1e-6f);
    }
    // Not a number lands on the first grid point rather than anywhere undefined.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_NEAR(plane.heightAt(nan, nan), planeAt(10.0f, -5.0f), 1e-4f);
    // An empty terrain is flat and faces up.
    Terrain empty;
    EXPECT_EQ(empty.heightAt(1.0f, 2.0f), 0.0f);
    expectNear(empty.normalAt(1.0f, 2.0f), Vector3(0.0f, 1.0f, 0.0f), 0.0f);
}

TEST(TerrainChunk, RoundTripIsBitForBitInTheLayoutTheHeaderGives)
{
    Terrain terrain("Dunes");
    makePlane(terrain);
    terrain.setHeight(2, 1, -0.0f);
    terrain.setHeight(3, 2, 1e-40f);
    const std::string image = saved(terrain);
    ASSERT_EQ(image.size(), 4u + 2 + 5 + 4 + 4 + 6 * 4 + 20 * 4);
    EXPECT_EQ(image.substr(0, 19), "TERA" + le16(5) + "Dunes" + le32(5) + le32(4));
    EXPECT_EQ(image.substr(19, 24), f32(10.0f) + f32(1.0f) + f32(-5.0f) + f32(2.0f) + f32(3.0f) + f32(0.125f));
    // Heights row by row, x running fastest.
    EXPECT_EQ(image.substr(43, 8), f32(3.0f) + f32(4.0f));
    EXPECT_EQ(image.substr(43 + (1 * 5 + 2) * 4, 4), f32(-0.0f));

    Terrain copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(saved(copy), image);
    // The limits enclose the grid, heights and origin included.
    EXPECT_EQ(copy.getLimits().getMin().x, 10.0f);
    EXPECT_EQ(copy.getLimits().getMax().z, 4.0f);
    EXPECT_EQ(copy.getLimits().getMax().y, planeAt(18.0f, -5.0f));
    // Only an empty terrain loads.
    std::istringstream again(image);
    EXPECT_FALSE(copy.load(again));
}

TEST(TerrainChunk, EveryTruncationAndEveryBadFieldIsRefusedAndLeavesItEmpty)
{
    Terrain terrain("T");
    makePlane(terrain);
    const std::string image = saved(terrain);
    expectEveryPrefixFails<Terrain>(image, [](Terrain& t) { EXPECT_TRUE(t.isEmpty()); });

    // Fields after the 4-byte tag and the 3-byte name record.
    const size_t columnsAt = 7, rowsAt = 11, spacingAt = 27, heightsAt = 39;
    auto patched = [&](size_t at, const std::string& bytes) {
        return image.substr(0, at) + bytes + image.substr(at + bytes.size());
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const std::string bad[] = {
        "TERB" + image.substr(4),
        patched(columnsAt, le32(1)),
        patched(rowsAt, le32(0xffffffffu)),
        patched(columnsAt, le32(Terrain::MAX_SIDE + 1)),
        // A grid the stream could never hold, refused before anything is allocated.
        patched(columnsAt, le32(1025) + le32(1025)),
        patched(spacingAt, f32(0.0f)),
        patched(spacingAt + 4, f32(-3.0f)),
        patched(spacingAt, f32(nan)),
        patched(columnsAt + 8, f32(infinity)),
        patched(heightsAt + 8, f32(nan)),
        patched(heightsAt + 76, f32(-infinity)),
    };
    for (const std::string& bytes : bad) {
        SCOPED_TRACE(&bytes - bad);
        Terrain t;
        std::istringstream in(bytes);
        EXPECT_FALSE(t.load(in));
        EXPECT_TRUE(t.isEmpty());
    }
    // Bytes after the chunk are the caller's business.
    Terrain t;
    std::istringstream longer(image + "MORE");
    EXPECT_TRUE(t.load(longer));
    // create refuses the same shapes.
    EXPECT_FALSE(t.create(1, 5, Vector3(), 1.0f, 1.0f, 1.0f));
    EXPECT_FALSE(t.create(5, 5, Vector3(), 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(t.getColumns(), 5);
    EXPECT_FALSE(t.load("/nonexistent/dunes.ter"));
}

TEST(TerrainPatches, EveryCellIsInExactlyOneLeafAtEachLevelAndLeavesFollowOneAnother)
{
    // Each patch has its own block of grid points, its edges shared with no neighbour, and lowered
    // copies of its coarse edge points for the curtain under its coarse edges; coarse, it keeps every
    // other grid line and its last one, and adds a curtain quad under each coarse edge segment.
    const struct {
        int columns, rows, patchCells, patches, vertices, coarseQuads;
    } cases[] = {{65, 65, 16, 16, 16 * (17 * 17 + 4 * 9), 16 * (8 * 8 + 4 * 8)},
                 {65, 65, 8, 64, 64 * (9 * 9 + 4 * 5), 64 * (4 * 4 + 4 * 4)},
                 {33, 9, 8, 4, 4 * (9 * 9 + 4 * 5), 4 * (4 * 4 + 4 * 4)},
                 {5, 4, 16, 1, 5 * 4 + 4 * 3, 2 * 2 + 4 * 2},
                 {21, 3, 4, 8, 4 * (3 * 3 + 4 * 2) + 4 * (4 * 3 + 2 * 3 + 2 * 2), 4 * (1 + 4) + 4 * (2 + 6)}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.columns << " x " << c.rows << " by " << c.patchCells);
        Terrain terrain;
        ASSERT_TRUE(terrain.create(c.columns, c.rows, Vector3(), 1.0f, 1.0f, 1.0f));
        ASSERT_TRUE(terrain.buildPatches(c.patchCells));
        EXPECT_EQ(terrain.getPatchCount(), c.patches);
        EXPECT_EQ(terrain.getVertices().getNumVertices(), c.vertices);
        const std::vector<uint32_t>& indices = terrain.getIndices();
        const size_t fine = static_cast<size_t>((c.columns - 1) * (c.rows - 1) * 6);
        ASSERT_EQ(indices.size(), fine + c.coarseQuads * 6);
        // Every fine cell once: the cells' first corners, found back in the grid, are all different;
        // and every index names a vertex of the blocks.
        std::set<std::pair<float, float>> corners;
        for (size_t i = 0; i < fine; i += 6) {
            const Vector3& p = terrain.getVertices()[static_cast<int>(indices[i])].position;
            corners.insert({p.x, p.z});
        }
        EXPECT_EQ(corners.size(), fine / 6);
        EXPECT_LT(*std::max_element(indices.begin(), indices.end()), static_cast<uint32_t>(c.vertices));
        // With everything in view the walk lists every leaf, fine, in one run from index 0; seen from
        // far off, all coarse, in one run after them.
        Frustum all;
        viewFrom(all, Vector3(0.0f, 1000.0f, 0.0f), Vector3(0.0f, 0.0f, 0.0f), Vector3(0.0f, 0.0f, -1.0f), 5000.0f);
        for (const TerrainQuad::Level level : {TerrainQuad::FINE, TerrainQuad::COARSE}) {
            const float coarseBeyond = level == TerrainQuad::FINE ? 1e9f : 10.0f;
            ASSERT_EQ(terrain.cull(all, Vector3(0.0f, 1000.0f, 0.0f), coarseBeyond), c.patches);
            EXPECT_EQ(terrain.getVisible().getCount(level), c.patches);
            uint32_t next = level == TerrainQuad::FINE ? 0 : static_cast<uint32_t>(fine);
            for (int i = 0; i < c.patches; ++i) {
                EXPECT_EQ(terrain.getVisible().get(i).patch->getRange(level).first, next);
                next += terrain.getVisible().get(i).patch->getRange(level).count;
            }
            EXPECT_EQ(next, level == TerrainQuad::FINE ? fine : indices.size());
        }
    }
}

TEST(TerrainPatches, CullingSeesNoneFacingAwaySomeFromAboveTheMiddleAndAllFromHighUp)
{
    Terrain terrain;
    makeDunes(terrain, 8);
    ASSERT_EQ(terrain.getPatchCount(), 64);
    EXPECT_EQ(terrain.getVisible().getCapacity(), 64);
    const Vector3 north(0.0f, 0.0f, -1.0f);
    const struct {
        const char* what;
        Vector3 eye, centre, up;
        float farClip;
        int low, high;
    } views[] = {
        {"beyond the east edge looking east", Vector3(80.0f, 3.0f, 0.0f), Vector3(200.0f, 3.0f, 0.0f),
         Vector3(0.0f, 1.0f, 0.0f), 1000.0f, 0, 0},
        {"above the middle looking up", Vector3(0.0f, 40.0f, 0.0f), Vector3(0.0f, 100.0f, 0.0f), north, 1000.0f, 0, 0},
        {"above the middle looking down", Vector3(0.0f, 40.0f, 0.0f), Vector3(0.0f, 0.0f, 0.0f), north, 1000.0f, 4, 40},
        {"low over the ground with a near far plane", Vector3(0.0f, 3.0f, 0.0f), Vector3(0.0f, 3.0f, -10.0f),
         Vector3(0.0f, 1.0f, 0.0f), 20.0f, 1, 8},
        {"high above looking down", Vector3(0.0f, 600.0f, 0.0f), Vector3(0.0f, 0.0f, 0.0f), north, 1000.0f, 64, 64},
    };
    for (const auto& v : views) {
        SCOPED_TRACE(v.what);
        Frustum frustum;
        viewFrom(frustum, v.eye, v.centre, v.up, v.farClip);
        const int seen = terrain.cull(frustum);
        EXPECT_GE(seen, v.low);
        EXPECT_LE(seen, v.high);
        // The walk's shortcut for nodes wholly inside lists what testing each leaf would.
        EXPECT_EQ(seen, countByHand(terrain.getQuadTree(), frustum));
        EXPECT_EQ(terrain.getVisible().getTriangleCount(), seen * 8LL * 8 * 2);
    }
}

TEST(TerrainPatches, PatchesWhollyBeyondTheCoarseDistanceAreListedCoarse)
{
    Terrain terrain;
    makeDunes(terrain, 8);
    Frustum frustum;
    const Vector3 eye(0.0f, 3.0f, 60.0f);
    viewFrom(frustum, eye, Vector3(0.0f, 3.0f, 0.0f), Vector3(0.0f, 1.0f, 0.0f), 1000.0f);
    const int seen = terrain.cull(frustum, eye, 40.0f);
    const TerrainQuadPVS& visible = terrain.getVisible();
    const int coarse = visible.getCount(TerrainQuad::COARSE);
    EXPECT_GT(coarse, 0);
    EXPECT_LT(coarse, seen);
    for (int i = 0; i < seen; ++i) {
        const BoundingBox& box = visible.get(i).patch->getBox();
        EXPECT_EQ(visible.get(i).level == TerrainQuad::COARSE, eye.distance(box.getCentre()) - box.getRadius() > 40.0f);
    }
    // A coarse patch of 8 x 8 cells is drawn as 4 x 4, with a curtain of four quads under each edge.
    EXPECT_EQ(visible.getTriangleCount(), (seen - coarse) * 128LL + coarse * 64LL);
    // The same view without a coarse distance lists the same patches, all fine.
    EXPECT_EQ(terrain.cull(frustum), seen);
    EXPECT_EQ(terrain.getVisible().getCount(TerrainQuad::COARSE), 0);
}

TEST_F(GLTest, TerrainDrawsItsVisiblePatchesAndNothingFacingAway)
{
    Terrain terrain;
    makeDunes(terrain, 16);
    Camera camera("TerrainTest", Vector3(0.0f, 20.0f, 30.0f), Vector3(0.0f, 0.0f, 0.0f), 0.5f, 500.0f, 60.0f);
    camera.resize(GLContext::width(), GLContext::height());
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    terrain.draw(camera);
    unsigned char middle[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, middle);
    EXPECT_GT(middle[0], 200);
    EXPECT_GT(terrain.getVisible().getCount(), 0);

    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    camera.lookAt(Vector3(0.0f, 20.0f, 30.0f), Vector3(0.0f, 60.0f, 80.0f));
    camera.lookAt();
    terrain.draw(camera);
    EXPECT_EQ(terrain.getVisible().getCount(), 0);
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, middle);
    EXPECT_EQ(middle[0], 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
