// Octree and nodes: octants, the OCTT file, damaged files, the empty PVS, leaf drawing, the batched drawing's picture.
#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"

#include "ByteImage.h"
#include "Feedback.h"
#include "support/GLContext.h"
#include "support/OffscreenFrame.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using namespace bytes;

namespace {

std::string box(float lo, float hi)
{
    BoundingBox b(Vector3(lo, lo, lo), Vector3(hi, hi, hi));
    return saved(b);
}

// Hand-made node records test the reader against the layout, not against the writer.
std::string nodeRecord(uint16_t flags, const std::string& rest = "")
{
    return "OCTN" + le16(flags) + box(-1.0f, 1.0f) + rest;
}

struct Counter : public Material {
    explicit Counter(const char* name) : Material(name) {}
    void bind() override { ++binds; }
    int binds = 0;
};

// Four triangles, one counting material each. Child 0 holds faces 0 and 1, child 7 faces 2 and 3;
// the root itself also lists face 3, which must not be drawn.
struct Scenery {
    Counter materials[4] = {Counter("m0"), Counter("m1"), Counter("m2"), Counter("m3")};
    Octree tree;
    explicit Scenery(bool withMaterials = true)
    {
        VertexArray* vertices = new VertexArray();
        vertices->create(8);
        for (int i = 0; i < 8; ++i)
            vertices->addVertex(Vector3(-0.8f + 0.2f * static_cast<float>(i), (i % 2) ? 0.5f : -0.5f, 0.0f));
        FaceArray* faces = new FaceArray();
        faces->create(4);
        for (uint32_t f = 0; f < 4; ++f) {
            Face face;
            face.create(3);
            face.indices[0] = f, face.indices[1] = f + 1, face.indices[2] = f + 2;
            face.setMaterial(withMaterials ? &materials[f] : nullptr);
            faces->addFace(face);
        }
        OctreeNode* root = new OctreeNode(BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)), nullptr);
        root->createChildren();
        root->createFaceIndices(1);
        root->setFaceIndex(0, 3);
        for (int child : {0, 7}) {
            root->getChild(child)->createFaceIndices(2);
            root->getChild(child)->setFaceIndex(0, child == 0 ? 0 : 2);
            root->getChild(child)->setFaceIndex(1, child == 0 ? 1 : 3);
        }
        tree.create(vertices, faces, root);
    }
};

TEST(OctreeNodeTest, ChildrenSplitTheBoxByIndexBitsAndSetFaceIndexAcceptsTheCountAsPosition)
{
    OctreeNode node(BoundingBox(Vector3(0, 10, 20), Vector3(4, 18, 36)), nullptr);
    ASSERT_TRUE(node.createChildren());
    EXPECT_FALSE(node.createChildren());
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(node.getChild(i)->getMin(),
                  Vector3((i & 4) ? 2.f : 0.f, (i & 2) ? 14.f : 10.f, (i & 1) ? 28.f : 20.f));
    EXPECT_FALSE(node.createFaceIndices(-1));
    ASSERT_TRUE(node.createFaceIndices(2));
    node.setFaceIndex(2, 9);   // inclusive bound: stored in the spare slot
    node.setFaceIndex(3, 11);  // past it: ignored
    EXPECT_EQ(node.getFaceIndex(1), 0u);
    EXPECT_EQ(node.getFaceIndex(2), 9u);
}

TEST(OctreeFileTest, SaveLoadSaveIsBitIdentical)
{
    Scenery scenery(false);  // no registry to resolve material names against
    const std::string first = saved(scenery.tree);
    Octree loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(saved(loaded), first);
    EXPECT_EQ(loaded.getRoot()->getChild(7)->getFather(), loaded.getRoot());
    // Only an empty octree loads.
    std::istringstream again(first);
    EXPECT_FALSE(loaded.load(again));
    EXPECT_EQ(again.tellg(), 0);
}

TEST(OctreeFileTest, DamagedFilesFailAndLeaveTheOctreeEmpty)
{
    const std::string arrays = "VARR" + le32(0) + "FARR" + le32(0);
    std::string sevenChildren, nested = nodeRecord(0);
    for (int i = 0; i < 7; ++i)
        sevenChildren += nodeRecord(0);
    for (int level = 0; level < OctreeNode::MAX_LOAD_DEPTH + 2; ++level)
        nested = nodeRecord(1, nested + sevenChildren);
    const struct {
        const char* what;
        std::string file;
    } cases[] = {
        {"wrong tree tag", "OCTX" + arrays + nodeRecord(0)},
        {"wrong node tag", "OCTT" + arrays + "OCTM" + le16(0) + box(0, 1)},
        {"negative face count", "OCTT" + arrays + nodeRecord(2, le32(0xffffffffu))},
        {"face count past the end", "OCTT" + arrays + nodeRecord(2, le32(0x7ffffff0u) + le32(1))},
        {"children past the end", "OCTT" + arrays + nodeRecord(1, sevenChildren)},
        {"absurd nesting", "OCTT" + arrays + nested},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Octree tree;
        std::istringstream in(c.file);
        EXPECT_FALSE(tree.load(in));
        EXPECT_TRUE(tree.isEmpty());
    }
    Scenery scenery;
    expectEveryPrefixFails<Octree>(saved(scenery.tree), [](Octree& t) { EXPECT_TRUE(t.isEmpty()); });
    EXPECT_FALSE(Octree().load("/nonexistent/dir/x.oct"));
}

TEST(OctreePvsTest, EveryNodeOfALoadedTreeSeesEverythingAfterTheBuilders)
{
    Scenery scenery;
    Octree tree;
    std::istringstream in(saved(scenery.tree));
    ASSERT_TRUE(tree.load(in));
    tree.buildPVS(tree.getRoot());
    tree.setupDummyPVS(tree.getRoot());
    EXPECT_TRUE(tree.buildLeafPVS(tree.getRoot()->getChild(0), tree.getRoot()));
    EXPECT_TRUE(tree.getRoot()->PvsCanSee(Vector3(123, 456, 789)));
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(tree.getRoot()->getChild(i)->PvsCanSee(Vector3(123, 456, 789))) << i;
}

class OctreeRenderTest : public GLTest {
protected:
    static size_t triangles(Octree& tree, int mode)
    {
        glDisable(GL_CULL_FACE);
        Camera camera("OctreeCam");
        return feedback([&] { tree.render(camera, static_cast<OctreeRenderMode>(mode)); }).size();
    }
};

TEST_F(OctreeRenderTest, LeavesDrawEveryFaceOnceWithItsMaterialInEveryMode)
{
    Scenery scenery;
    EXPECT_EQ(triangles(scenery.tree, OCTREE_RENDER_BACK_TO_FRONT), 4u);
    // The root's own face 3 is not drawn: only the leaf's copy is.
    for (int f = 0; f < 4; ++f)
        EXPECT_EQ(scenery.materials[f].binds, 1) << f;
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
    for (int mode : {0, 2, 9})
        EXPECT_EQ(triangles(scenery.tree, mode), 4u) << mode;
    Octree empty;
    EXPECT_EQ(triangles(empty, OCTREE_RENDER_DEFAULT), 0u);
}

TEST_F(OctreeRenderTest, FacesNamingMissingVerticesOrFacesAreSkipped)
{
    Scenery scenery;
    scenery.tree.getRoot()->getChild(7)->setFaceIndex(0, 99);
    const_cast<FaceArray*>(scenery.tree.getFaces())->operator[](0).indices[2] = 1000;
    EXPECT_EQ(triangles(scenery.tree, OCTREE_RENDER_DEFAULT), 2u);
}

}  // namespace

namespace {

// The tree drawn as written down: the default traversal, each leaf face its own begin/end pair of array elements
// between its material's bind and unbind.
void drawFaceByFace(const Octree& tree, const OctreeNode* node)
{
    if (!node)
        return;
    if (node->hasChildren()) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            drawFaceByFace(tree, node->getChild(i));
        return;
    }
    for (int i = 0; i < node->getNumFaces(); ++i) {
        const Face& face = (*tree.getFaces())[static_cast<int>(node->getFaceIndex(i))];
        if (face.material)
            face.material->bind();
        glBegin(GL_TRIANGLES);
        for (int j = 0; j < 3; ++j)
            glArrayElement(static_cast<GLint>(face.indices[j]));
        glEnd();
        if (face.material)
            face.material->unbind();
    }
}

// Lit, fogged and textured by the vertices' own coordinates, so that positions, normals and texture
// coordinates all show; after the tree a triangle with no normal or texture coordinates of its own shows
// what the drawing left current.
std::vector<unsigned char> tunnelFrame(const OffscreenFrame& frame, Camera& camera, GLuint texture,
                                       const std::function<void()>& drawTree)
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.1, 0.1, -0.075, 0.075, 0.1, 1000.0);
    glMatrixMode(GL_MODELVIEW);
    camera.lookAt();
    const float direction[4] = {0.3f, 1.0f, 0.2f, 0.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, direction);
    glPushAttrib(GL_ENABLE_BIT);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_FOG);
    glFogf(GL_FOG_DENSITY, 0.01f);
    glBindTexture(GL_TEXTURE_2D, texture);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_DEPTH_TEST);
    // Something else current before, so that only what the drawing leaves shows in the last triangle.
    glNormal3f(0.0f, 0.0f, 1.0f);
    glTexCoord2f(0.3f, 0.7f);
    drawTree();
    glLoadIdentity();
    const float towardsTheEye[4] = {0.0f, 0.0f, 1.0f, 0.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, towardsTheEye);
    glBegin(GL_TRIANGLES);
    glVertex3f(-0.05f, -0.05f, -0.2f);
    glVertex3f(0.05f, -0.05f, -0.2f);
    glVertex3f(0.0f, 0.05f, -0.2f);
    glEnd();
    glPopAttrib();
    return frame.read();
}

}  // namespace

// One call per run of faces draws the same picture as a begin/end pair per face, and leaves the same normal and
// texture coordinates current: the tunnel seen from three places along its length.
TEST_F(OctreeRenderTest, BatchedFacesDrawTheFaceByFacePicture)
{
    if (access("data/3d/tunnel3.oct", R_OK) != 0)
        GTEST_SKIP() << "no forged data tree in the working directory";
    Octree tree;
    ASSERT_TRUE(tree.load("data/3d/tunnel3.oct"));
    OffscreenFrame frame(320, 240);
    ASSERT_TRUE(frame.isComplete());
    // A checker, so that a texture coordinate out of place shows.
    std::vector<unsigned char> checker(64 * 64 * 3);
    for (size_t i = 0; i < checker.size(); ++i)
        checker[i] = static_cast<unsigned char>((((i / 3) % 64 / 8 + (i / 3) / 64 / 8) % 2) ? 230 : 40 + i % 3 * 60);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 64, 64, 0, GL_RGB, GL_UNSIGNED_BYTE, checker.data());
    const Vector3 places[][2] = {{Vector3(-262, -195, 26), Vector3(-240, -196, 22)},
                                 {Vector3(-60, -200, 2), Vector3(0, -195, 0)},
                                 {Vector3(140, -240, 20), Vector3(200, -246, 45)}};
    for (const auto& place : places) {
        Camera camera("TunnelView", place[0], place[1], 0.1f, 1000.0f, 60.0f);
        const std::vector<unsigned char> batched =
            tunnelFrame(frame, camera, texture, [&] { tree.render(camera, OCTREE_RENDER_BACK_TO_FRONT); });
        const std::vector<unsigned char> single = tunnelFrame(frame, camera, texture, [&] {
            tree.getVertices()->upload(Octree::UPLOAD_MASK);
            drawFaceByFace(tree, tree.getRoot());
            tree.getVertices()->unload(Octree::UPLOAD_MASK);
        });
        EXPECT_EQ(OffscreenFrame::countDifferences(batched, single, 0), 0u) << place[0].x;
        // The walls are in view: most of the frame is not the clear colour.
        EXPECT_GT(OffscreenFrame::countDifferences(batched, std::vector<unsigned char>(batched.size(), 0), 0),
                  batched.size() / 2);
    }
    glDeleteTextures(1, &texture);
}
