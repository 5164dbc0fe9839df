// Mesh generation: which way faces point, how winding is written, and the shapes' proportions.
#include "BirdMesh.h"
#include "MeshBuilder.h"
#include "SeaObjectMesh.h"
#include "ShipMesh.h"

#include "scene/Mesh.h"
#include "texture/Material.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

Vec3 at(const VertexArray& v, uint32_t i)
{
    const Vector3& p = v[(int)i].position;
    return Vec3{ p.x, p.y, p.z };
}

// Cross product of a face's edges in index order.
Vec3 winding(const Mesh& mesh, int f)
{
    const Face& face = (*mesh.getFaces())[f];
    const VertexArray& v = *mesh.getVertices();
    return (at(v, face.indices[1]) - at(v, face.indices[0])).cross(at(v, face.indices[2]) - at(v, face.indices[0]));
}

Vec3 centroid(const Mesh& mesh, int f)
{
    const Face& face = (*mesh.getFaces())[f];
    const VertexArray& v = *mesh.getVertices();
    return (at(v, face.indices[0]) + at(v, face.indices[1]) + at(v, face.indices[2])) * (1.0 / 3.0);
}

Vec3 stored(const Mesh& mesh, int f)
{
    const Vector3& n = (*mesh.getFaces())[f].normal;
    return Vec3{ n.x, n.y, n.z };
}

TEST(MeshBuilderFacing, TubeSidesAndCapsFaceOutwards)
{
    MeshBuilder b;
    b.tube({ Vec3{ 0, 0, 0 }, Vec3{ 0, 2, 0 } }, { 0.5, 0.5 }, 8, 0);
    std::unique_ptr<Mesh> mesh(b.build(false, {}));
    ASSERT_TRUE(mesh);
    const int faces = mesh->getFaces()->getNumFaces();
    EXPECT_EQ(faces, 8 * 2 + 8 * 2);
    const Vec3 middle{ 0, 1, 0 };
    for (int f = 0; f < faces; ++f) {
        const Vec3 out = centroid(*mesh, f) - middle;
        EXPECT_GT(winding(*mesh, f).dot(out), 0.0) << f;
        EXPECT_GT(stored(*mesh, f).dot(out), 0.0) << f;
    }
}

TEST(MeshBuilderFacing, ClockwiseBuildReversesIndicesButNotNormals)
{
    MeshBuilder b;
    b.cone(Vec3{ 0, 0, 0 }, Vec3{ 0, 0, 1 }, 0.3, 6, 0);
    std::unique_ptr<Mesh> ccw(b.build(false, {}));
    std::unique_ptr<Mesh> cw(b.build(true, {}));
    ASSERT_TRUE(ccw && cw);
    for (int f = 0; f < ccw->getFaces()->getNumFaces(); ++f) {
        EXPECT_GT(winding(*ccw, f).dot(stored(*ccw, f)), 0.0);
        EXPECT_LT(winding(*cw, f).dot(stored(*cw, f)), 0.0);
        EXPECT_NEAR(stored(*cw, f).dot(stored(*ccw, f)), 1.0, 1e-6);
    }
}

TEST(MeshBuilderFacing, TwoSidedSheetsHaveOpposingPairs)
{
    MeshBuilder b;
    b.twoSided(2, 2, 0, [](int r, int c) { return Vec3{ (double)c, 0.0, (double)r }; });
    std::unique_ptr<Mesh> mesh(b.build(false, {}));
    ASSERT_TRUE(mesh);
    ASSERT_EQ(mesh->getFaces()->getNumFaces(), 4);
    int up = 0, down = 0;
    for (int f = 0; f < 4; ++f) {
        up += stored(*mesh, f).y > 0.99;
        down += stored(*mesh, f).y < -0.99;
    }
    EXPECT_EQ(up, 2);
    EXPECT_EQ(down, 2);
}

TEST(MeshBuilderFacing, FanFacingFollowsTheRequestedSide)
{
    const std::vector<Vec3> square{ { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 } };
    for (double sign : { 1.0, -1.0 }) {
        MeshBuilder b;
        b.fanFacing(square, Vec3{ 0, 0, sign }, 0);
        std::unique_ptr<Mesh> mesh(b.build(false, {}));
        ASSERT_TRUE(mesh);
        for (int f = 0; f < mesh->getFaces()->getNumFaces(); ++f)
            EXPECT_GT(winding(*mesh, f).z * sign, 0.0);
    }
}

TEST(MeshBuilderEdges, DegenerateTrianglesAreDroppedAndEmptyBuildsNothing)
{
    MeshBuilder b;
    const int a = b.vertex(Vec3{ 0, 0, 0 });
    const int c = b.vertex(Vec3{ 1, 0, 0 });
    const int d = b.vertex(Vec3{ 2, 0, 0 });
    b.triangle(a, c, d, 0);
    b.triangle(a, a, c, 0);
    EXPECT_EQ(b.triangleCount(), 0);
    EXPECT_EQ(b.build(false, {}), nullptr);
}

TEST(MeshBuilderEdges, MaterialsAreAttachedByIndexAndUnknownIndicesLeaveNone)
{
    Material first("First");
    MeshBuilder b;
    b.fan({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, 0);
    b.fan({ { 0, 0, 1 }, { 1, 0, 1 }, { 0, 1, 1 } }, 3);
    std::unique_ptr<Mesh> mesh(b.build(false, { &first }));
    ASSERT_TRUE(mesh);
    const FaceArray& faces = *mesh->getFaces();
    ASSERT_EQ(faces.getNumFaces(), 6);
    EXPECT_EQ(faces[0].material, &first);
    EXPECT_TRUE(faces[0].flags & Face::HAS_MATERIAL);
    EXPECT_EQ(faces[5].material, nullptr);
    EXPECT_FALSE(faces[5].flags & Face::HAS_MATERIAL);
}

TEST(ShipShape, HullNarrowsToTheBowAndSitsInTheWater)
{
    EXPECT_NEAR(ShipMesh::halfBeam(1.0), 0.0, 1e-9);
    EXPECT_GT(ShipMesh::halfBeam(0.0), 0.4);
    EXPECT_LT(ShipMesh::keelDepth(0.5), 0.0);
    for (double t = 0.0; t <= 1.0; t += 0.05) {
        EXPECT_GT(ShipMesh::deckHeight(t), 0.3) << t;
        EXPECT_GE(ShipMesh::halfBeam(t), 0.0) << t;
    }
}

TEST(ShipShape, ProportionsOfASailingShip)
{
    MeshBuilder b;
    ShipMesh().build(b);
    EXPECT_GT(b.triangleCount(), 300);
    EXPECT_LT(b.triangleCount(), 5000);
    std::unique_ptr<Mesh> mesh(b.build(true, {}));
    ASSERT_TRUE(mesh);
    const VertexArray& v = *mesh->getVertices();
    double minZ = 1e9, maxZ = -1e9, maxY = -1e9, minY = 1e9, maxX = 0.0;
    for (int i = 0; i < v.getNumVertices(); ++i) {
        minZ = std::fmin(minZ, v[i].position.z);
        maxZ = std::fmax(maxZ, v[i].position.z);
        minY = std::fmin(minY, v[i].position.y);
        maxY = std::fmax(maxY, v[i].position.y);
        maxX = std::fmax(maxX, std::fabs(v[i].position.x));
    }
    // Longer than tall than wide; the bowsprit reaches forward along +z; the keel is under water.
    EXPECT_GT(maxZ, -minZ + 1.0);
    EXPECT_GT(maxZ - minZ, maxY - minY);
    EXPECT_GT(maxY, 4.0);
    EXPECT_LT(minY, -0.3);
    EXPECT_LT(maxX, 1.2);
}

TEST(BirdShape, PosesDifferInTheWingsOnly)
{
    MeshBuilder up, down;
    BirdMesh(true).build(up);
    BirdMesh(false).build(down);
    ASSERT_EQ(up.triangleCount(), down.triangleCount());
    std::unique_ptr<Mesh> a(up.build(true, {}));
    std::unique_ptr<Mesh> b(down.build(true, {}));
    double tipUp = -1e9, tipDown = 1e9, span = 0.0, lengthX = 0.0;
    for (int i = 0; i < a->getVertices()->getNumVertices(); ++i) {
        const Vector3& p = (*a->getVertices())[i].position;
        const Vector3& q = (*b->getVertices())[i].position;
        tipUp = std::fmax(tipUp, p.y);
        tipDown = std::fmin(tipDown, q.y);
        span = std::fmax(span, std::fabs(p.z));
        lengthX = std::fmax(lengthX, std::fabs(p.x));
    }
    EXPECT_GT(tipUp, 0.3);
    EXPECT_LT(tipDown, -0.25);
    // Wider than long, facing +x.
    EXPECT_GT(span, lengthX);
}

TEST(SeaObjectShape, FanBladesTurnInThePlaneAcrossItsAxis)
{
    MeshBuilder b;
    SeaObjectMesh(SeaObjectMesh::Fan).build(b);
    std::unique_ptr<Mesh> mesh(b.build(false, {}));
    ASSERT_TRUE(mesh);
    double reach = 0.0, depth = 0.0;
    const VertexArray& v = *mesh->getVertices();
    for (int i = 0; i < v.getNumVertices(); ++i) {
        reach = std::fmax(reach, std::hypot(v[i].position.y, v[i].position.z));
        depth = std::fmax(depth, std::fabs(v[i].position.x));
    }
    EXPECT_GT(reach, 2.0);
    EXPECT_LT(depth, 0.6);
}

TEST(SeaObjectShape, ClosedObjectsFaceOutwards)
{
    for (SeaObjectMesh::Kind kind : { SeaObjectMesh::Worm, SeaObjectMesh::Spike }) {
        MeshBuilder b;
        SeaObjectMesh(kind).build(b);
        std::unique_ptr<Mesh> mesh(b.build(false, {}));
        ASSERT_TRUE(mesh);
        int outward = 0;
        const int faces = mesh->getFaces()->getNumFaces();
        for (int f = 0; f < faces; ++f) {
            // The urchin is round about the origin; the worm is a tube, so compare with its nearest axis point.
            Vec3 c = centroid(*mesh, f);
            Vec3 from = kind == SeaObjectMesh::Spike ? c : c - Vec3{ c.x, 0.06 * std::sin(3.14159265 * (c.x + 0.5)), 0.09 * std::sin(3.0 * 3.14159265 * (c.x + 0.5)) };
            outward += winding(*mesh, f).dot(from) > 0.0;
        }
        EXPECT_GT(outward, faces * 9 / 10) << kind;
    }
}

} // namespace
