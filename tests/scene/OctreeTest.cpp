// Octree, nodes and PVS: octants, the OCTN/OCTT records, damaged files, traversal, leaf drawing.
#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/OctreeVisible.h"
#include "scene/PVS.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string le32(uint32_t v)
{
    std::string s(4, '\0');
    for (int i = 0; i < 4; ++i)
        s[i] = static_cast<char>((v >> (8 * i)) & 0xff);
    return s;
}

std::string le16(uint16_t v)
{
    return std::string{static_cast<char>(v & 0xff), static_cast<char>(v >> 8)};
}

std::string box(float lo, float hi)
{
    BoundingBox b(Vector3(lo, lo, lo), Vector3(hi, hi, hi));
    std::ostringstream out;
    b.save(out);
    return out.str();
}

// A node record made by hand, so that the reader is tested against the layout, not the writer.
std::string nodeRecord(uint16_t flags, const std::string& faces = "", const std::string& children = "")
{
    return "OCTN" + le16(flags) + box(-1.0f, 1.0f) + faces + children;
}

std::string emptyArrays()
{
    return "VARR" + le32(0) + "FARR" + le32(0);
}

struct Counter : public Material {
    explicit Counter(const char* name) : Material(name) {}
    void bind() override { ++binds; }
    void unbind() override { ++unbinds; }
    int binds = 0;
    int unbinds = 0;
};

// Four triangles on eight vertices; every face has its own counting material.
// The root's eight children: child 0 holds faces 0 and 1, child 7 holds 2 and 3,
// child 3 holds none; the root itself also lists face 3, which must not be drawn.
struct Scenery {
    Counter materials[4] = {Counter("m0"), Counter("m1"), Counter("m2"), Counter("m3")};

    // Without materials the faces round-trip without a material registry.
    Octree* build(bool withMaterials = true)
    {
        VertexArray* vertices = new VertexArray();
        vertices->create(8);
        for (int i = 0; i < 8; ++i) {
            float x = -0.8f + 0.2f * static_cast<float>(i);
            vertices->addVertex(Vector3(x, (i % 2) ? 0.5f : -0.5f, 0.0f));
        }
        FaceArray* faces = new FaceArray();
        faces->create(4);
        for (int f = 0; f < 4; ++f) {
            Face face;
            face.create(3);
            for (int k = 0; k < 3; ++k)
                face.indices[k] = static_cast<uint32_t>(f + k);
            face.normal.assign(0.0f, 0.0f, 1.0f);
            face.setMaterial(withMaterials ? &materials[f] : nullptr);
            faces->addFace(face);
        }
        OctreeNode* root = new OctreeNode(BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)), nullptr);
        root->createChildren();
        root->createFaceIndices(1);
        root->setFaceIndex(0, 3);
        OctreeNode* a = root->getChild(0);
        a->createFaceIndices(2);
        a->setFaceIndex(0, 0);
        a->setFaceIndex(1, 1);
        OctreeNode* b = root->getChild(7);
        b->createFaceIndices(2);
        b->setFaceIndex(0, 2);
        b->setFaceIndex(1, 3);
        Octree* tree = new Octree();
        tree->create(vertices, faces, root);
        return tree;
    }
};

std::string saved(const Octree& tree)
{
    std::ostringstream out;
    EXPECT_TRUE(tree.save(out));
    return out.str();
}

// ---- nodes: octants, indices, stamps ----

TEST(OctreeNodeTest, ChildrenSplitTheBoxIntoOctantsByIndexBits)
{
    OctreeNode node(BoundingBox(Vector3(0, 10, 20), Vector3(4, 18, 36)), nullptr);
    ASSERT_TRUE(node.createChildren());
    EXPECT_FALSE(node.createChildren());
    for (int i = 0; i < 8; ++i) {
        const OctreeNode* c = node.getChild(i);
        EXPECT_EQ(c->getFather(), &node);
        EXPECT_EQ(c->getKind(), 0);
        EXPECT_EQ(c->getMin(), Vector3((i & 4) ? 2.f : 0.f, (i & 2) ? 14.f : 10.f, (i & 1) ? 28.f : 20.f));
        EXPECT_EQ(c->getMax(), Vector3((i & 4) ? 4.f : 2.f, (i & 2) ? 18.f : 14.f, (i & 1) ? 36.f : 28.f));
        EXPECT_FLOAT_EQ(c->getRadius(), 0.5f * Vector3(2, 4, 8).length());
        EXPECT_FALSE(c->hasChildren());
        EXPECT_EQ(c->getNumFaces(), 0);
        EXPECT_EQ(c->getVisNr(), 0u);
    }
}

TEST(OctreeNodeTest, FaceIndicesAreZeroedAndRefusedTwiceOrNegative)
{
    OctreeNode node;
    EXPECT_FALSE(node.createFaceIndices(-1));
    ASSERT_TRUE(node.createFaceIndices(3));
    EXPECT_FALSE(node.createFaceIndices(2));
    EXPECT_EQ(node.getNumFaces(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(node.getFaceIndex(i), 0u);
}

TEST(OctreeNodeTest, SetFaceIndexAcceptsTheCountItselfAsPosition)
{
    OctreeNode node;
    node.createFaceIndices(2);
    node.setFaceIndex(0, 7);
    node.setFaceIndex(2, 9);   // inclusive bound: stored in the spare slot
    node.setFaceIndex(3, 11);  // past it: ignored
    node.setFaceIndex(-1, 13);
    EXPECT_EQ(node.getFaceIndex(0), 7u);
    EXPECT_EQ(node.getFaceIndex(1), 0u);
    EXPECT_EQ(node.getFaceIndex(2), 9u);
    OctreeNode none;
    none.setFaceIndex(0, 5);  // no array at all: nothing happens
    EXPECT_EQ(none.getFaceIndices(), nullptr);
}

// ---- the PVS ----

TEST(PVSTest, EntriesGoToTheFrontAndAreFoundByNode)
{
    PVS pvs;
    OctreeNode n1, n2;
    OctreeVisible* a = pvs.add();
    a->setNode(&n1);
    OctreeVisible* b = pvs.add();
    b->setNode(&n2);
    EXPECT_FALSE(b->isReallyVisible());
    EXPECT_EQ(pvs.getFirst(), b);
    EXPECT_EQ(pvs.getNext(b), a);
    EXPECT_EQ(pvs.getNext(a), nullptr);
    EXPECT_EQ(pvs.getNext(nullptr), nullptr);
    EXPECT_EQ(pvs.findNode(&n1), a);
    EXPECT_EQ(pvs.findNode(nullptr), nullptr);
}

TEST(PVSTest, DestroyUnlinksFirstMiddleAndLast)
{
    PVS pvs;
    OctreeVisible* c = pvs.add();
    OctreeVisible* b = pvs.add();
    OctreeVisible* a = pvs.add();
    pvs.destroy(b);
    EXPECT_EQ(pvs.getNext(a), c);
    EXPECT_EQ(c->getPrev(), a);
    pvs.destroy(a);
    EXPECT_EQ(pvs.getFirst(), c);
    EXPECT_EQ(c->getPrev(), nullptr);
    pvs.destroy(c);
    EXPECT_TRUE(pvs.isEmpty());
}

TEST(PVSTest, DestroyingWhatIsNotInTheSetDoesNothing)
{
    PVS pvs, other;
    OctreeNode inside, outside;
    pvs.add()->setNode(&inside);
    OctreeVisible* foreign = other.add();
    pvs.destroy(foreign);
    pvs.destroy(&outside);
    pvs.destroy(static_cast<OctreeVisible*>(nullptr));
    EXPECT_NE(pvs.getFirst(), nullptr);
    EXPECT_EQ(other.getFirst(), foreign);
    pvs.destroy(&inside);
    EXPECT_TRUE(pvs.isEmpty());
}

TEST(PVSTest, AnEmptySetSeesEverythingAFilledOneOnlyItsLeaves)
{
    OctreeNode node;
    EXPECT_TRUE(node.PvsCanSee(Vector3(1e9f, 0, 0)));

    OctreeNode leaf(BoundingBox(Vector3(0, 0, 0), Vector3(1, 1, 1)), nullptr);
    OctreeNode inner(BoundingBox(Vector3(0, 0, 0), Vector3(10, 10, 10)), nullptr);
    inner.createChildren();
    node.getPVS().add()->setNode(&inner);
    EXPECT_FALSE(node.PvsCanSee(Vector3(5, 5, 5)));  // only leaves count
    node.getPVS().add()->setNode(&leaf);
    EXPECT_TRUE(node.PvsCanSee(Vector3(1, 1, 1)));  // bounds inclusive
    EXPECT_FALSE(node.PvsCanSee(Vector3(5, 5, 5)));
}

// ---- records and files ----

TEST(OctreeFileTest, SaveLoadSaveIsBitIdentical)
{
    Scenery scenery;
    Octree* tree = scenery.build(false);
    std::string first = saved(*tree);
    Octree loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(saved(loaded), first);
    ASSERT_TRUE(loaded.isComplete());
    EXPECT_EQ(loaded.getRoot()->getChild(7)->getFaceIndex(1), 3u);
    EXPECT_EQ(loaded.getRoot()->getChild(7)->getFather(), loaded.getRoot());
    delete tree;
}

TEST(OctreeFileTest, NodeFlagsSayWhatFollows)
{
    Scenery scenery;
    Octree* tree = scenery.build();
    std::string bytes = saved(*tree);
    size_t root = bytes.find("OCTN");
    ASSERT_NE(root, std::string::npos);
    // Root: children and faces; the count and index follow the 41-byte box.
    EXPECT_EQ(bytes.substr(root + 4, 2), le16(3));
    EXPECT_EQ(bytes.substr(root + 6 + 41, 8), le32(1) + le32(3));
    // Child 0: faces only; child 1: nothing at all.
    size_t child0 = root + 6 + 41 + 8;
    EXPECT_EQ(bytes.substr(child0, 6), "OCTN" + le16(2));
    size_t child1 = child0 + 6 + 41 + 12;
    EXPECT_EQ(bytes.substr(child1, 6), "OCTN" + le16(0));

    // A non-empty PVS sets bit 2 and adds no bytes.
    tree->getRoot()->getChild(1)->getPVS().add();
    std::string withPvs = saved(*tree);
    EXPECT_EQ(withPvs.size(), bytes.size());
    EXPECT_EQ(withPvs.substr(child1, 6), "OCTN" + le16(4));
    delete tree;
}

TEST(OctreeFileTest, PvsBitLoadsLikeItsAbsence)
{
    std::string faces = le32(2) + le32(5) + le32(6);
    for (uint16_t flags : {uint16_t(2), uint16_t(6)}) {
        OctreeNode node;
        std::istringstream in(nodeRecord(flags, faces));
        ASSERT_TRUE(node.load(in)) << flags;
        EXPECT_EQ(node.getNumFaces(), 2);
        EXPECT_EQ(node.getFaceIndex(1), 6u);
        EXPECT_TRUE(node.getPVS().isEmpty());
    }
}

TEST(OctreeFileTest, FlagsZeroIsALeafWithoutFaces)
{
    OctreeNode node;
    std::istringstream in(nodeRecord(0));
    ASSERT_TRUE(node.load(in));
    EXPECT_FALSE(node.hasChildren());
    EXPECT_EQ(node.getNumFaces(), 0);
    EXPECT_EQ(node.getFaceIndices(), nullptr);
}

TEST(OctreeFileTest, WrongTagLeavesTheOctreeEmpty)
{
    std::string file = "OCTX" + emptyArrays() + nodeRecord(0);
    Octree tree;
    std::istringstream in(file);
    EXPECT_FALSE(tree.load(in));
    EXPECT_TRUE(tree.isEmpty());

    std::string badNode = "OCTT" + emptyArrays() + "OCTM" + le16(0) + box(0, 1);
    std::istringstream in2(badNode);
    EXPECT_FALSE(tree.load(in2));
    EXPECT_TRUE(tree.isEmpty());
}

TEST(OctreeFileTest, NegativeFaceCountIsRejected)
{
    Octree tree;
    std::istringstream in("OCTT" + emptyArrays() + nodeRecord(2, le32(0xffffffffu)));
    EXPECT_FALSE(tree.load(in));
    EXPECT_TRUE(tree.isEmpty());
}

TEST(OctreeFileTest, FaceCountPastTheEndFailsBeforeAllocating)
{
    Octree tree;
    std::istringstream in("OCTT" + emptyArrays() + nodeRecord(2, le32(0x7ffffff0u) + le32(1)));
    EXPECT_FALSE(tree.load(in));
    EXPECT_TRUE(tree.isEmpty());
}

TEST(OctreeFileTest, ChildrenPastTheEndFail)
{
    // The children flag with only seven child records behind it.
    std::string children;
    for (int i = 0; i < 7; ++i)
        children += nodeRecord(0);
    Octree tree;
    std::istringstream in("OCTT" + emptyArrays() + nodeRecord(1, "", children));
    EXPECT_FALSE(tree.load(in));
    EXPECT_TRUE(tree.isEmpty());
}

TEST(OctreeFileTest, EveryTruncationFailsAndLeavesTheOctreeEmpty)
{
    Scenery scenery;
    Octree* tree = scenery.build();
    const std::string bytes = saved(*tree);
    delete tree;
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        Octree loaded;
        std::istringstream in(bytes.substr(0, cut));
        EXPECT_FALSE(loaded.load(in)) << cut;
        EXPECT_TRUE(loaded.isEmpty()) << cut;
    }
}

TEST(OctreeFileTest, AbsurdNestingIsRefused)
{
    // Each level's first child has children again; the other seven are empty leaves.
    std::string leaves;
    for (int i = 0; i < 7; ++i)
        leaves += nodeRecord(0);
    std::string record = nodeRecord(0);
    for (int level = 0; level < OctreeNode::MAX_LOAD_DEPTH + 2; ++level)
        record = nodeRecord(1, "", record + leaves);
    OctreeNode node;
    std::istringstream in(record);
    EXPECT_FALSE(node.load(in));
}

TEST(OctreeFileTest, OnlyAnEmptyOctreeLoadsAndOnlyACompleteOneSaves)
{
    Octree empty;
    std::ostringstream out;
    EXPECT_FALSE(empty.save(out));
    EXPECT_TRUE(out.str().empty());
    EXPECT_FALSE(empty.save("/nonexistent/dir/x.oct"));
    EXPECT_FALSE(empty.load("/nonexistent/dir/x.oct"));

    Scenery scenery;
    Octree* tree = scenery.build();
    std::string bytes = saved(*tree);
    std::istringstream in(bytes);
    EXPECT_FALSE(tree->load(in));
    EXPECT_EQ(in.tellg(), 0);
    VertexArray spare;
    FaceArray spareFaces;
    OctreeNode spareRoot;
    EXPECT_FALSE(tree->create(&spare, &spareFaces, &spareRoot));
    delete tree;

    OctreeNode withChildren;
    withChildren.createChildren();
    std::istringstream node(nodeRecord(0));
    EXPECT_FALSE(withChildren.load(node));
}

// ---- walking the tree ----

std::vector<const OctreeNode*> visited;
OctreeParseCode answer = OCTREE_PARSE_CHILDREN;

OctreeParseCode record(OctreeNode* node)
{
    visited.push_back(node);
    return answer;
}

TEST(OctreeParseTest, DescendsInTheOrderTheCallbackAsks)
{
    Scenery scenery;
    Octree* tree = scenery.build();
    OctreeNode* root = tree->getRoot();

    visited.clear();
    answer = OCTREE_PARSE_CHILDREN;  // leaves answer it too: they have nothing to descend into
    tree->parse(record);
    ASSERT_EQ(visited.size(), 9u);
    EXPECT_EQ(visited[0], root);
    EXPECT_EQ(visited[1], root->getChild(0));
    EXPECT_EQ(visited[8], root->getChild(7));

    visited.clear();
    answer = OCTREE_PARSE_CHILDREN_REVERSED;
    tree->parse(record);
    ASSERT_EQ(visited.size(), 9u);
    EXPECT_EQ(visited[1], root->getChild(7));

    visited.clear();
    answer = static_cast<OctreeParseCode>(17);
    tree->parse(record);
    EXPECT_EQ(visited.size(), 1u);

    visited.clear();
    tree->parse(nullptr);
    Octree empty;
    empty.parse(record);
    EXPECT_TRUE(visited.empty());
    delete tree;
}

TEST(OctreeParseTest, EveryNodeOfALoadedTreeSeesEverything)
{
    Scenery scenery;
    Octree* built = scenery.build();
    Octree tree;
    std::istringstream in(saved(*built));
    ASSERT_TRUE(tree.load(in));
    delete built;
    tree.buildPVS(tree.getRoot());
    tree.buildQuickPVS(tree.getRoot());
    tree.setupDummyPVS(tree.getRoot());
    EXPECT_TRUE(tree.buildLeafPVS(tree.getRoot()->getChild(0), tree.getRoot()));
    visited.clear();
    answer = OCTREE_PARSE_CHILDREN;
    tree.parse(record);
    for (const OctreeNode* node : visited) {
        EXPECT_TRUE(node->getPVS().isEmpty());
        EXPECT_TRUE(node->PvsCanSee(Vector3(123, 456, 789)));
    }
}

// ---- drawing ----

// Triangles that reach GL, counted through feedback mode.
int countTriangles(Octree& tree, OctreeRenderMode mode)
{
    static GLfloat buffer[4096];
    glFeedbackBuffer(4096, GL_3D, buffer);
    glRenderMode(GL_FEEDBACK);
    Camera camera("OctreeCam");
    tree.render(camera, mode);
    GLint size = glRenderMode(GL_RENDER);
    int polygons = 0;
    for (GLint i = 0; i < size;) {
        GLint token = static_cast<GLint>(buffer[i]);
        if (token == GL_POLYGON_TOKEN) {
            ++polygons;
            i += 2 + 3 * static_cast<GLint>(buffer[i + 1]);
        } else if (token == GL_PASS_THROUGH_TOKEN) {
            i += 2;
        } else {
            ADD_FAILURE() << "unexpected token " << token;
            break;
        }
    }
    return polygons;
}

class OctreeRenderTest : public GLTest {};

TEST_F(OctreeRenderTest, LeavesDrawTheirFacesWithTheirMaterialsInChildOrder)
{
    glDisable(GL_CULL_FACE);
    Scenery scenery;
    Octree* tree = scenery.build();
    EXPECT_EQ(countTriangles(*tree, OCTREE_RENDER_BACK_TO_FRONT), 4);
    // The root's own face 3 is not drawn: only the leaf's copy is.
    for (int f = 0; f < 4; ++f) {
        EXPECT_EQ(scenery.materials[f].binds, 1) << f;
        EXPECT_EQ(scenery.materials[f].unbinds, 1) << f;
    }
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
    delete tree;
}

TEST_F(OctreeRenderTest, EveryModeDrawsTheSame)
{
    glDisable(GL_CULL_FACE);
    Scenery scenery;
    Octree* tree = scenery.build();
    for (int mode : {0, 1, 2, 9})
        EXPECT_EQ(countTriangles(*tree, static_cast<OctreeRenderMode>(mode)), 4) << mode;
    delete tree;
}

TEST_F(OctreeRenderTest, FacesNamingMissingVerticesOrFacesAreSkipped)
{
    glDisable(GL_CULL_FACE);
    Scenery scenery;
    Octree* built = scenery.build();
    std::string bytes = saved(*built);
    delete built;
    Octree tree;
    std::istringstream in(bytes);
    ASSERT_TRUE(tree.load(in));
    // Point leaf 7 at a face that does not exist and break a vertex index of face 0.
    tree.getRoot()->getChild(7)->setFaceIndex(0, 99);
    const_cast<FaceArray*>(tree.getFaces())->operator[](0).indices[2] = 1000;
    EXPECT_EQ(countTriangles(tree, OCTREE_RENDER_DEFAULT), 2);
}

TEST_F(OctreeRenderTest, AnIncompleteOctreeDrawsNothing)
{
    Octree tree;
    EXPECT_EQ(countTriangles(tree, OCTREE_RENDER_DEFAULT), 0);
}

}  // namespace
