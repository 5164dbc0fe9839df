// Octree, nodes and PVS: octants, the OCTN/OCTT records, damaged files, traversal, leaf drawing.
#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/OctreeVisible.h"
#include "scene/PVS.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"

#include "ByteImage.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace bytes;

namespace {

std::string box(float lo, float hi)
{
    std::ostringstream out;
    BoundingBox(Vector3(lo, lo, lo), Vector3(hi, hi, hi)).save(out);
    return out.str();
}

// Hand-made node records test the reader against the layout, not against the writer.
std::string nodeRecord(uint16_t flags, const std::string& rest = "")
{
    return "OCTN" + le16(flags) + box(-1.0f, 1.0f) + rest;
}

const std::string emptyArrays = "VARR" + le32(0) + "FARR" + le32(0);

struct Counter : public Material {
    explicit Counter(const char* name) : Material(name) {}
    void bind() override { ++binds; }
    void unbind() override { ++unbinds; }
    int binds = 0;
    int unbinds = 0;
};

// Four triangles, one counting material each. Child 0 holds faces 0 and 1, child 7 faces 2 and 3;
// the root itself also lists face 3, which must not be drawn.
struct Scenery {
    Counter materials[4] = {Counter("m0"), Counter("m1"), Counter("m2"), Counter("m3")};

    Octree* build(bool withMaterials = true)
    {
        VertexArray* vertices = new VertexArray();
        vertices->create(8);
        for (int i = 0; i < 8; ++i)
            vertices->addVertex(Vector3(-0.8f + 0.2f * static_cast<float>(i), (i % 2) ? 0.5f : -0.5f, 0.0f));
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
        for (int child : {0, 7}) {
            OctreeNode* leaf = root->getChild(child);
            leaf->createFaceIndices(2);
            leaf->setFaceIndex(0, child == 0 ? 0 : 2);
            leaf->setFaceIndex(1, child == 0 ? 1 : 3);
        }
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

TEST(OctreeNodeTest, ChildrenSplitTheBoxIntoOctantsByIndexBits)
{
    OctreeNode node(BoundingBox(Vector3(0, 10, 20), Vector3(4, 18, 36)), nullptr);
    ASSERT_TRUE(node.createChildren());
    EXPECT_FALSE(node.createChildren());
    for (int i = 0; i < 8; ++i) {
        const OctreeNode* c = node.getChild(i);
        EXPECT_EQ(c->getFather(), &node);
        EXPECT_EQ(c->getMin(), Vector3((i & 4) ? 2.f : 0.f, (i & 2) ? 14.f : 10.f, (i & 1) ? 28.f : 20.f));
        EXPECT_EQ(c->getMax(), Vector3((i & 4) ? 4.f : 2.f, (i & 2) ? 18.f : 14.f, (i & 1) ? 36.f : 28.f));
    }
}

TEST(OctreeNodeTest, SetFaceIndexAcceptsTheCountItselfAsPosition)
{
    OctreeNode node;
    EXPECT_FALSE(node.createFaceIndices(-1));
    ASSERT_TRUE(node.createFaceIndices(2));
    EXPECT_FALSE(node.createFaceIndices(2));
    node.setFaceIndex(0, 7);
    node.setFaceIndex(2, 9);   // inclusive bound: stored in the spare slot
    node.setFaceIndex(3, 11);  // past it: ignored
    node.setFaceIndex(-1, 13);
    EXPECT_EQ(node.getFaceIndex(0), 7u);
    EXPECT_EQ(node.getFaceIndex(1), 0u);
    EXPECT_EQ(node.getFaceIndex(2), 9u);
    OctreeNode none;
    none.setFaceIndex(0, 5);
    EXPECT_EQ(none.getFaceIndices(), nullptr);
}

TEST(PVSTest, AddGoesToTheFrontAndDestroyUnlinksFirstMiddleAndLast)
{
    PVS pvs;
    OctreeNode n1;
    OctreeVisible* c = pvs.add();
    c->setNode(&n1);
    OctreeVisible* b = pvs.add();
    OctreeVisible* a = pvs.add();
    EXPECT_EQ(pvs.getFirst(), a);
    EXPECT_EQ(pvs.findNode(&n1), c);
    PVS other;
    pvs.destroy(other.add());  // not in this set: nothing happens
    pvs.destroy(b);
    EXPECT_EQ(pvs.getNext(a), c);
    EXPECT_EQ(c->getPrev(), a);
    pvs.destroy(a);
    EXPECT_EQ(pvs.getFirst(), c);
    EXPECT_EQ(c->getPrev(), nullptr);
    pvs.destroy(&n1);
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
    EXPECT_FALSE(node.PvsCanSee(Vector3(5, 5, 5)));
    node.getPVS().add()->setNode(&leaf);
    EXPECT_TRUE(node.PvsCanSee(Vector3(1, 1, 1)));
    EXPECT_FALSE(node.PvsCanSee(Vector3(5, 5, 5)));
}

TEST(OctreeFileTest, SaveLoadSaveIsBitIdentical)
{
    Scenery scenery;
    Octree* tree = scenery.build(false);
    std::string first = saved(*tree);
    delete tree;
    Octree loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(saved(loaded), first);
    EXPECT_EQ(loaded.getRoot()->getChild(7)->getFaceIndex(1), 3u);
    EXPECT_EQ(loaded.getRoot()->getChild(7)->getFather(), loaded.getRoot());
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
    size_t child0 = root + 6 + 41 + 8;
    EXPECT_EQ(bytes.substr(child0, 6), "OCTN" + le16(2));
    size_t child1 = child0 + 6 + 41 + 12;
    EXPECT_EQ(bytes.substr(child1, 6), "OCTN" + le16(0));
    // A non-empty PVS sets bit 2 and adds no bytes; on reading the bit changes nothing.
    tree->getRoot()->getChild(1)->getPVS().add();
    std::string withPvs = saved(*tree);
    EXPECT_EQ(withPvs.size(), bytes.size());
    EXPECT_EQ(withPvs.substr(child1, 6), "OCTN" + le16(4));
    delete tree;
    OctreeNode node;
    std::istringstream in(nodeRecord(6, le32(2) + le32(5) + le32(6)));
    ASSERT_TRUE(node.load(in));
    EXPECT_EQ(node.getFaceIndex(1), 6u);
    EXPECT_TRUE(node.getPVS().isEmpty());
}

TEST(OctreeFileTest, DamagedFilesFailAndLeaveTheOctreeEmpty)
{
    std::string sevenChildren;
    for (int i = 0; i < 7; ++i)
        sevenChildren += nodeRecord(0);
    const struct {
        const char* what;
        std::string file;
    } cases[] = {
        {"wrong tree tag", "OCTX" + emptyArrays + nodeRecord(0)},
        {"wrong node tag", "OCTT" + emptyArrays + "OCTM" + le16(0) + box(0, 1)},
        {"negative face count", "OCTT" + emptyArrays + nodeRecord(2, le32(0xffffffffu))},
        {"face count past the end", "OCTT" + emptyArrays + nodeRecord(2, le32(0x7ffffff0u) + le32(1))},
        {"children past the end", "OCTT" + emptyArrays + nodeRecord(1, sevenChildren)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Octree tree;
        std::istringstream in(c.file);
        EXPECT_FALSE(tree.load(in));
        EXPECT_TRUE(tree.isEmpty());
    }
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
    std::string leaves;
    for (int i = 0; i < 7; ++i)
        leaves += nodeRecord(0);
    std::string record = nodeRecord(0);
    for (int level = 0; level < OctreeNode::MAX_LOAD_DEPTH + 2; ++level)
        record = nodeRecord(1, record + leaves);
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
    EXPECT_FALSE(empty.load("/nonexistent/dir/x.oct"));
    Scenery scenery;
    Octree* tree = scenery.build();
    std::istringstream in(saved(*tree));
    EXPECT_FALSE(tree->load(in));
    EXPECT_EQ(in.tellg(), 0);
    delete tree;
}

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
    const struct {
        OctreeParseCode code;
        size_t count;
        int secondChild;
    } cases[] = {
        {OCTREE_PARSE_CHILDREN, 9, 0},
        {OCTREE_PARSE_CHILDREN_REVERSED, 9, 7},
        {static_cast<OctreeParseCode>(17), 1, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        visited.clear();
        answer = c.code;
        tree->parse(record);
        ASSERT_EQ(visited.size(), c.count);
        EXPECT_EQ(visited[0], root);
        if (c.secondChild >= 0) {
            EXPECT_EQ(visited[1], root->getChild(c.secondChild));
        }
    }
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
    for (const OctreeNode* node : visited)
        EXPECT_TRUE(node->PvsCanSee(Vector3(123, 456, 789)));
}

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

class OctreeRenderTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        glDisable(GL_CULL_FACE);
    }
};

TEST_F(OctreeRenderTest, LeavesDrawEveryFaceOnceWithItsMaterialInEveryMode)
{
    Scenery scenery;
    Octree* tree = scenery.build();
    EXPECT_EQ(countTriangles(*tree, OCTREE_RENDER_BACK_TO_FRONT), 4);
    // The root's own face 3 is not drawn: only the leaf's copy is.
    for (int f = 0; f < 4; ++f) {
        EXPECT_EQ(scenery.materials[f].binds, 1) << f;
        EXPECT_EQ(scenery.materials[f].unbinds, 1) << f;
    }
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
    for (int mode : {0, 2, 9})
        EXPECT_EQ(countTriangles(*tree, static_cast<OctreeRenderMode>(mode)), 4) << mode;
    delete tree;
    Octree empty;
    EXPECT_EQ(countTriangles(empty, OCTREE_RENDER_DEFAULT), 0);
}

TEST_F(OctreeRenderTest, FacesNamingMissingVerticesOrFacesAreSkipped)
{
    Scenery scenery;
    Octree* built = scenery.build();
    std::istringstream in(saved(*built));
    delete built;
    Octree tree;
    ASSERT_TRUE(tree.load(in));
    tree.getRoot()->getChild(7)->setFaceIndex(0, 99);
    const_cast<FaceArray*>(tree.getFaces())->operator[](0).indices[2] = 1000;
    EXPECT_EQ(countTriangles(tree, OCTREE_RENDER_DEFAULT), 2);
}

}  // namespace
