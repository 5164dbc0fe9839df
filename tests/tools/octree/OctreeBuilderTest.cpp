// The octree builder: every face lands in a leaf it touches, the limits hold, bad faces are left out, builds repeat.
#include "tools/octree/OctreeBuilder.h"

#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Mesh {
    VertexArray vertices;
    FaceArray faces;

    Mesh(int maxFaces)
    {
        vertices.create(3 * maxFaces);
        faces.create(maxFaces);
    }

    void triangle(const Vector3& a, const Vector3& b, const Vector3& c)
    {
        Face face;
        face.create(3);
        for (int k = 0; k < 3; ++k) {
            face.indices[k] = static_cast<uint32_t>(vertices.getNumVertices());
            vertices.addVertex(k == 0 ? a : k == 1 ? b : c);
        }
        face.normal = (b - a).cross(c - a);
        face.normal.normalize();
        faces.addFace(face);
    }
};

// A wavy sheet of n x n quads in -0.9..0.9, plus one large triangle across every octant plane of the root.
std::unique_ptr<Mesh> sheet(int n)
{
    std::unique_ptr<Mesh> mesh(new Mesh(2 * n * n + 1));
    auto point = [n](int i, int j) {
        float x = -0.9f + 1.8f * static_cast<float>(i) / static_cast<float>(n);
        float y = -0.9f + 1.8f * static_cast<float>(j) / static_cast<float>(n);
        return Vector3(x, y, 0.8f * std::sin(3.0f * x) * std::cos(2.0f * y));
    };
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            mesh->triangle(point(i, j), point(i + 1, j), point(i + 1, j + 1));
            mesh->triangle(point(i, j), point(i + 1, j + 1), point(i, j + 1));
        }
    }
    mesh->triangle(Vector3(-0.85f, -0.85f, -0.5f), Vector3(0.85f, -0.6f, 0.5f), Vector3(0.1f, 0.85f, 0.2f));
    return mesh;
}

struct Leaf {
    const OctreeNode* node;
    int depth;
};

// The leaves in order; inner nodes must hold no faces.
std::vector<Leaf> leavesOf(const OctreeNode* node, int depth = 0)
{
    if (!node->hasChildren())
        return {{node, depth}};
    EXPECT_EQ(node->getNumFaces(), 0) << "an inner node holds faces";
    std::vector<Leaf> leaves;
    for (int i = 0; i < 8; ++i)
        for (const Leaf& leaf : leavesOf(node->getChild(i), depth + 1))
            leaves.push_back(leaf);
    return leaves;
}

// Loose, independent check: the triangle's own bounding box meets the leaf's box.
bool boundsMeet(const Mesh& mesh, uint32_t f, const BoundingBox& box)
{
    const Face& face = mesh.faces[static_cast<int>(f)];
    for (int axis = 0; axis < 3; ++axis) {
        float lo = 1e30f, hi = -1e30f;
        for (int k = 0; k < 3; ++k) {
            const float* p = &mesh.vertices[static_cast<int>(face.indices[k])].position.x;
            lo = std::min(lo, p[axis]);
            hi = std::max(hi, p[axis]);
        }
        if (hi < (&box.getMin().x)[axis] - 1e-4f || lo > (&box.getMax().x)[axis] + 1e-4f)
            return false;
    }
    return true;
}

std::string saved(const Octree& tree)
{
    std::ostringstream out;
    EXPECT_TRUE(tree.save(out));
    return out.str();
}

TEST(OctreeBuilderTest, EveryFaceLandsInLeavesItTouchesWithinTheLimits)
{
    std::unique_ptr<Mesh> mesh = sheet(12);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(16);
    builder.setMaxDepth(5);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    ASSERT_TRUE(tree->isComplete());
    std::vector<Leaf> leaves = leavesOf(tree->getRoot());
    EXPECT_GT(leaves.size(), 8u);

    std::vector<int> homes(static_cast<size_t>(mesh->faces.getNumFaces()), 0);
    for (const Leaf& leaf : leaves) {
        EXPECT_LE(leaf.depth, 5);
        if (leaf.depth < 5) {
            EXPECT_LE(leaf.node->getNumFaces(), 16) << "a leaf over the limit above the depth limit";
        }
        for (int i = 0; i < leaf.node->getNumFaces(); ++i) {
            uint32_t f = leaf.node->getFaceIndex(i);
            ASSERT_LT(f, homes.size());
            ++homes[f];
            EXPECT_TRUE(boundsMeet(*mesh, f, *leaf.node)) << "face " << f;
            if (i > 0) {
                EXPECT_LT(leaf.node->getFaceIndex(i - 1), f) << "leaf lists ascend without repeats";
            }
        }
    }
    for (size_t f = 0; f < homes.size(); ++f)
        EXPECT_GE(homes[f], 1) << "face " << f << " is in no leaf";
    // The large triangle straddles the octant planes: it is kept in several leaves.
    EXPECT_GT(homes.back(), 4);
}

TEST(OctreeBuilderTest, AUselessSplitIsNotMadeAndFacesNamingMissingVerticesAreLeftOut)
{
    // Forty copies of a triangle on the plane x = z, which every octant touches (boxes are closed):
    // a split would copy all forty into each child.
    Mesh same(40);
    for (int i = 0; i < 40; ++i)
        same.triangle(Vector3(-1, -1, -1), Vector3(1, 1, 1), Vector3(1, -1, 1));
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(4);
    std::unique_ptr<Octree> tree(builder.build(same.vertices, same.faces));
    EXPECT_FALSE(tree->getRoot()->hasChildren());
    EXPECT_EQ(tree->getRoot()->getNumFaces(), 40);
    std::unique_ptr<Mesh> mesh = sheet(2);
    mesh->faces.resize(mesh->faces.getNumFaces() + 2);
    Face bad;
    bad.create(3);
    bad.indices[0] = 0;
    bad.indices[1] = 1;
    bad.indices[2] = 100000;
    mesh->faces.addFace(bad);
    Face tooFew;
    tooFew.create(2);
    mesh->faces.addFace(tooFew);
    std::unique_ptr<Octree> kept(OctreeBuilder().build(mesh->vertices, mesh->faces));
    std::set<uint32_t> placed;
    for (const Leaf& leaf : leavesOf(kept->getRoot()))
        for (int i = 0; i < leaf.node->getNumFaces(); ++i)
            placed.insert(leaf.node->getFaceIndex(i));
    const int n = mesh->faces.getNumFaces();
    EXPECT_EQ(placed.size(), static_cast<size_t>(n - 2));
    EXPECT_EQ(placed.count(static_cast<uint32_t>(n - 1)) + placed.count(static_cast<uint32_t>(n - 2)), 0u);
    EXPECT_EQ(kept->getFaces()->getNumFaces(), n);  // the arrays are copied whole
}

TEST(OctreeBuilderTest, BuildingIsDeterministicAndAnEmptyMeshStillSaves)
{
    std::unique_ptr<Mesh> mesh = sheet(10);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(12);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    std::unique_ptr<Octree> again(builder.build(mesh->vertices, mesh->faces));
    EXPECT_EQ(saved(*again), saved(*tree));

    VertexArray noVertices;
    FaceArray noFaces;
    std::unique_ptr<Octree> empty(OctreeBuilder().build(noVertices, noFaces));
    ASSERT_TRUE(empty->isComplete());
    EXPECT_EQ(empty->getRoot()->getNumFaces(), 0);
    Octree loaded;
    std::istringstream in(saved(*empty));
    EXPECT_TRUE(loaded.load(in));
}

}  // namespace
