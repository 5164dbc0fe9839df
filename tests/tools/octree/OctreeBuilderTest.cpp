// The octree builder: every face lands in a leaf it touches, the limits hold, files round-trip, render draws all.
#include "tools/octree/OctreeBuilder.h"

#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Mesh {
    VertexArray vertices;
    FaceArray faces;

    void triangle(const Vector3& a, const Vector3& b, const Vector3& c)
    {
        int base = vertices.getNumVertices();
        vertices.addVertex(a);
        vertices.addVertex(b);
        vertices.addVertex(c);
        Face face;
        face.create(3);
        face.indices[0] = static_cast<uint32_t>(base);
        face.indices[1] = static_cast<uint32_t>(base + 1);
        face.indices[2] = static_cast<uint32_t>(base + 2);
        face.normal = (b - a).cross(c - a);
        face.normal.normalize();
        faces.addFace(face);
    }
};

// A wavy sheet of n x n quads in -0.9..0.9, as two triangles each, plus one
// large triangle that crosses every octant plane of the root.
std::unique_ptr<Mesh> sheet(int n)
{
    std::unique_ptr<Mesh> mesh(new Mesh());
    mesh->vertices.create(6 * n * n + 3);
    mesh->faces.create(2 * n * n + 1);
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

void collect(const OctreeNode* node, int depth, std::vector<Leaf>& leaves, int& innerWithFaces)
{
    if (!node->hasChildren()) {
        leaves.push_back({node, depth});
        return;
    }
    if (node->getNumFaces() > 0)
        ++innerWithFaces;
    for (int i = 0; i < 8; ++i)
        collect(node->getChild(i), depth + 1, leaves, innerWithFaces);
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
        const float eps = 1e-4f;
        if (hi < (&box.getMin().x)[axis] - eps || lo > (&box.getMax().x)[axis] + eps)
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

// ---- placement ----

TEST(OctreeBuilderTest, EveryFaceLandsInALeafItTouchesAndInnerNodesHoldNone)
{
    std::unique_ptr<Mesh> mesh = sheet(12);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(16);
    builder.setMaxDepth(5);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    ASSERT_TRUE(tree->isComplete());

    std::vector<Leaf> leaves;
    int innerWithFaces = 0;
    collect(tree->getRoot(), 0, leaves, innerWithFaces);
    EXPECT_EQ(innerWithFaces, 0);
    EXPECT_GT(leaves.size(), 8u);

    std::vector<int> homes(static_cast<size_t>(mesh->faces.getNumFaces()), 0);
    for (const Leaf& leaf : leaves) {
        EXPECT_LE(leaf.depth, 5);
        const OctreeNode* node = leaf.node;
        if (leaf.depth < 5) {
            EXPECT_LE(node->getNumFaces(), 16) << "a leaf over the limit above the depth limit";
        }
        for (int i = 0; i < node->getNumFaces(); ++i) {
            uint32_t f = node->getFaceIndex(i);
            ASSERT_LT(f, homes.size());
            ++homes[f];
            EXPECT_TRUE(boundsMeet(*mesh, f, *node)) << "face " << f;
        }
    }
    for (size_t f = 0; f < homes.size(); ++f)
        EXPECT_GE(homes[f], 1) << "face " << f << " is in no leaf";
    // The large triangle straddles the octant planes: it is kept in several leaves.
    EXPECT_GT(homes.back(), 4);
}

TEST(OctreeBuilderTest, LeafFaceListsAreAscendingAndWithoutRepeats)
{
    std::unique_ptr<Mesh> mesh = sheet(8);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(10);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    std::vector<Leaf> leaves;
    int inner = 0;
    collect(tree->getRoot(), 0, leaves, inner);
    for (const Leaf& leaf : leaves)
        for (int i = 1; i < leaf.node->getNumFaces(); ++i)
            EXPECT_LT(leaf.node->getFaceIndex(i - 1), leaf.node->getFaceIndex(i));
}

TEST(OctreeBuilderTest, DepthZeroKeepsEverythingInTheRoot)
{
    std::unique_ptr<Mesh> mesh = sheet(6);
    OctreeBuilder builder;
    builder.setMaxDepth(0);
    builder.setMaxFacesPerLeaf(1);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    EXPECT_FALSE(tree->getRoot()->hasChildren());
    EXPECT_EQ(tree->getRoot()->getNumFaces(), mesh->faces.getNumFaces());
}

TEST(OctreeBuilderTest, RootIsACubeAroundEveryVertex)
{
    std::unique_ptr<Mesh> mesh(new Mesh());
    mesh->vertices.create(3);
    mesh->faces.create(1);
    mesh->triangle(Vector3(0, 0, 0), Vector3(10, 0, 0), Vector3(0, 2, 1));
    std::unique_ptr<Octree> tree(OctreeBuilder().build(mesh->vertices, mesh->faces));
    const OctreeNode* root = tree->getRoot();
    Vector3 size = root->getMax() - root->getMin();
    EXPECT_FLOAT_EQ(size.x, size.y);
    EXPECT_FLOAT_EQ(size.x, size.z);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(root->isPointInside(mesh->vertices[i].position)) << i;
}

TEST(OctreeBuilderTest, SplittingThatGainsNothingIsNotDone)
{
    // Forty copies of one triangle through the whole cube: every octant would get all of them.
    std::unique_ptr<Mesh> mesh(new Mesh());
    mesh->vertices.create(120);
    mesh->faces.create(40);
    for (int i = 0; i < 40; ++i)
        mesh->triangle(Vector3(-1, -1, -1), Vector3(1, 1, 1), Vector3(1, -1, 1));
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(4);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    // The plane x = z runs through the cube's centre: every octant touches it,
    // at least along an edge (boxes are closed), so a split would copy all forty
    // faces into each child and the root stays a leaf.
    const OctreeNode* root = tree->getRoot();
    EXPECT_FALSE(root->hasChildren());
    EXPECT_EQ(root->getNumFaces(), 40);
}

TEST(OctreeBuilderTest, FacesNamingMissingVerticesAreLeftOut)
{
    std::unique_ptr<Mesh> mesh = sheet(2);
    Face bad;
    bad.create(3);
    bad.indices[0] = 0;
    bad.indices[1] = 1;
    bad.indices[2] = 100000;
    mesh->faces.resize(mesh->faces.getNumFaces() + 2);
    mesh->faces.addFace(bad);
    Face tooFew;
    tooFew.create(2);
    mesh->faces.addFace(tooFew);
    std::unique_ptr<Octree> tree(OctreeBuilder().build(mesh->vertices, mesh->faces));
    std::set<uint32_t> placed;
    std::vector<Leaf> leaves;
    int inner = 0;
    collect(tree->getRoot(), 0, leaves, inner);
    for (const Leaf& leaf : leaves)
        for (int i = 0; i < leaf.node->getNumFaces(); ++i)
            placed.insert(leaf.node->getFaceIndex(i));
    int n = mesh->faces.getNumFaces();
    EXPECT_EQ(placed.count(static_cast<uint32_t>(n - 1)), 0u);
    EXPECT_EQ(placed.count(static_cast<uint32_t>(n - 2)), 0u);
    EXPECT_EQ(placed.size(), static_cast<size_t>(n - 2));
    EXPECT_EQ(tree->getFaces()->getNumFaces(), n);  // the arrays are copied whole
}

TEST(OctreeBuilderTest, AnEmptyMeshGivesAnEmptyLeafRoot)
{
    VertexArray vertices;
    FaceArray faces;
    std::unique_ptr<Octree> tree(OctreeBuilder().build(vertices, faces));
    ASSERT_TRUE(tree->isComplete());
    EXPECT_FALSE(tree->getRoot()->hasChildren());
    EXPECT_EQ(tree->getRoot()->getNumFaces(), 0);
    Octree loaded;
    std::istringstream in(saved(*tree));
    EXPECT_TRUE(loaded.load(in));
}

// ---- files ----

TEST(OctreeBuilderTest, BuiltTreeSavedLoadedAndSavedAgainIsBitIdentical)
{
    std::unique_ptr<Mesh> mesh = sheet(10);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(12);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));
    std::string first = saved(*tree);
    Octree loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(in.peek(), EOF);
    EXPECT_EQ(saved(loaded), first);
    // Building is deterministic as well.
    std::unique_ptr<Octree> again(builder.build(mesh->vertices, mesh->faces));
    EXPECT_EQ(saved(*again), first);
}

TEST(OctreeBuilderTest, WritesAFileWithItsMaterialsFirst)
{
    MaterialMgr* materials = MaterialMgr::getHandle();
    materials->initiate();
    materials->add(new Material("OctreeRock"));
    std::unique_ptr<Mesh> mesh = sheet(4);
    for (int f = 0; f < mesh->faces.getNumFaces(); ++f)
        mesh->faces[f].setMaterial(materials->find("OctreeRock"));

    std::string file = std::string(VELMORA_BINARY_DIR) + "/octree_builder_test.oct";
    ASSERT_TRUE(OctreeBuilder().write(mesh->vertices, mesh->faces, file.c_str()));
    materials->shutdown();
    materials->initiate();

    Octree loaded;
    ASSERT_TRUE(loaded.load(file.c_str()));
    Material* rock = materials->find("OctreeRock");
    ASSERT_NE(rock, nullptr);
    EXPECT_EQ((*loaded.getFaces())[0].material, rock);
    EXPECT_FALSE(OctreeBuilder().write(mesh->vertices, mesh->faces, "/nonexistent/dir/x.oct"));
    materials->shutdown();
    std::remove(file.c_str());
}

// ---- drawing what was built ----

struct Counter : public Material {
    Counter() : Material("counter") {}
    void bind() override { ++binds; }
    void unbind() override {}
    int binds = 0;
};

class OctreeBuilderRenderTest : public GLTest {};

TEST_F(OctreeBuilderRenderTest, RenderDrawsEveryFaceAtLeastOnce)
{
    std::unique_ptr<Mesh> mesh = sheet(12);
    const int n = mesh->faces.getNumFaces();
    std::vector<Counter> counters(static_cast<size_t>(n));
    for (int f = 0; f < n; ++f)
        mesh->faces[f].setMaterial(&counters[static_cast<size_t>(f)]);
    OctreeBuilder builder;
    builder.setMaxFacesPerLeaf(8);
    std::unique_ptr<Octree> tree(builder.build(mesh->vertices, mesh->faces));

    glDisable(GL_CULL_FACE);
    std::vector<GLfloat> buffer(1 << 20);
    glFeedbackBuffer(static_cast<GLsizei>(buffer.size()), GL_3D, buffer.data());
    glRenderMode(GL_FEEDBACK);
    Camera camera("BuilderCam");
    tree->render(camera, OCTREE_RENDER_BACK_TO_FRONT);
    GLint size = glRenderMode(GL_RENDER);
    ASSERT_GE(size, 0) << "feedback buffer overflow";

    int polygons = 0;
    for (GLint i = 0; i < size; ++i) {
        ASSERT_EQ(static_cast<GLint>(buffer[i]), GL_POLYGON_TOKEN);
        ++polygons;
        i += 1 + 3 * static_cast<GLint>(buffer[i + 1]);
    }
    int binds = 0;
    for (int f = 0; f < n; ++f) {
        EXPECT_GE(counters[static_cast<size_t>(f)].binds, 1) << "face " << f << " never drawn";
        binds += counters[static_cast<size_t>(f)].binds;
    }
    // One triangle reached GL for every face drawn, copies in several leaves included.
    EXPECT_EQ(polygons, binds);
    EXPECT_GT(binds, n);
}

}  // namespace
