// The octree batch: every drawable face once, in the leaf that lists it first, opaque materials before blended ones,
// leaves culled by a view's planes, and those planes made from a camera without GL.
#include "effects/OctreeBatch.h"

#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"

#include <gtest/gtest.h>

namespace {

const int ROW = 100;
const uint32_t MISSING_VERTEX = 999;

// Triangles one unit apart along z, in the two octants of a 128 cube that split at z = 64; the
// triangle at z = 64 is listed by both, and one more names a vertex that does not exist.
struct Row {
    Material solid{"solid"};
    Material glass{"glass"};
    Octree tree;
    Row()
    {
        glass.setBlendMode(Material::blendAlpha);
        VertexArray* vertices = new VertexArray();
        vertices->create(3 * ROW);
        FaceArray* faces = new FaceArray();
        faces->create(ROW + 1);
        for (int i = 0; i < ROW; ++i) {
            const float z = static_cast<float>(i);
            vertices->addVertex(Vector3(10.0f, 10.0f, z), Vector3(0.0f, 0.0f, -1.0f));
            vertices->addVertex(Vector3(11.0f, 10.0f, z), Vector3(0.0f, 0.0f, -1.0f));
            vertices->addVertex(Vector3(10.0f, 11.0f, z), Vector3(0.0f, 0.0f, -1.0f));
            faces->addFace(triangle(3 * i, i % 4 == 0 ? &glass : &solid));
        }
        faces->addFace(triangle(MISSING_VERTEX, &solid));
        OctreeNode* root = new OctreeNode(BoundingBox(Vector3(0, 0, 0), Vector3(128, 128, 128)), nullptr);
        root->createChildren();
        OctreeNode* near = root->getChild(0);
        OctreeNode* far = root->getChild(1);
        near->createFaceIndices(66);
        for (int i = 0; i <= 64; ++i)
            near->setFaceIndex(i, static_cast<unsigned long>(i));
        near->setFaceIndex(65, ROW);
        far->createFaceIndices(ROW - 64);
        for (int i = 64; i < ROW; ++i)
            far->setFaceIndex(i - 64, static_cast<unsigned long>(i));
        tree.create(vertices, faces, root);
    }
    static Face triangle(uint32_t first, Material* material)
    {
        Face face;
        face.create(3);
        for (uint32_t k = 0; k < 3; ++k)
            face.indices[k] = first == MISSING_VERTEX ? first : first + k;
        face.setMaterial(material);
        return face;
    }
};

Camera lookingFrom(const Vector3& eye, const Vector3& target, float farClip)
{
    Camera camera("BatchCamera", eye, target, 1.0f, farClip, 60.0f);
    return camera;
}

}  // namespace

TEST(OctreeBatch, EveryDrawableFaceOnceInTheFirstLeafThatListsItGroupedByMaterial)
{
    Row row;
    OctreeBatch batch;
    ASSERT_TRUE(batch.build(row.tree));
    EXPECT_EQ(batch.getLeafCount(), 2);
    EXPECT_EQ(batch.getFaceCount(), ROW);
    EXPECT_EQ(batch.getMaterialCount(), 2);
    // The glass comes first in the file but is drawn last, over what it lets through.
    EXPECT_EQ(batch.getMaterial(0), &row.solid);
    EXPECT_EQ(batch.getMaterial(1), &row.glass);
    // A view of everything: both leaves, every face once.
    Plane none[1] = {Plane(Vector3(0.0f, 0.0f, 1.0f), 1000.0f)};
    EXPECT_EQ(batch.cull(none, 1), 2);
    EXPECT_EQ(batch.getVisibleFaces(), ROW);
    OctreeBatch empty;
    EXPECT_FALSE(empty.build(Octree()));
    EXPECT_EQ(empty.getFaceCount(), 0);
    // The choice of material groups faces by what they are drawn with.
    OctreeBatch grouped;
    ASSERT_TRUE(grouped.build(row.tree, [&](Material*) { return &row.solid; }));
    EXPECT_EQ(grouped.getMaterialCount(), 1);
    EXPECT_EQ(grouped.getFaceCount(), ROW);
}

TEST(OctreeBatch, AViewSeesTheLeavesInFrontWithinItsReachAndItsPlanesCutWhatTheCameraCannotSee)
{
    Row row;
    OctreeBatch batch;
    ASSERT_TRUE(batch.build(row.tree));
    Plane planes[OctreeBatch::VIEW_PLANES];
    const float aspect = 4.0f / 3.0f;
    OctreeBatch::viewPlanes(lookingFrom(Vector3(10, 10, -20), Vector3(10, 10, 0), 60.0f), aspect, planes);
    EXPECT_EQ(batch.cull(planes, OctreeBatch::VIEW_PLANES), 1);
    EXPECT_EQ(batch.getVisibleFaces(), 65);
    OctreeBatch::viewPlanes(lookingFrom(Vector3(10, 10, -20), Vector3(10, 10, -40), 1000.0f), aspect, planes);
    EXPECT_EQ(batch.cull(planes, OctreeBatch::VIEW_PLANES), 0);
    EXPECT_EQ(batch.getVisibleFaces(), 0);
    OctreeBatch::viewPlanes(lookingFrom(Vector3(10, 10, 200), Vector3(10, 10, 0), 1000.0f), aspect, planes);
    EXPECT_EQ(batch.cull(planes, OctreeBatch::VIEW_PLANES), 2);
    Plane square[OctreeBatch::VIEW_PLANES];
    OctreeBatch::viewPlanes(lookingFrom(Vector3(0, 0, 0), Vector3(0, 0, -1), 100.0f), 1.0f, square);
    const auto inside = [&](const Vector3& p) {
        for (const Plane& plane : square)
            if (plane.distance(p) < 0.0f)
                return false;
        return true;
    };
    EXPECT_TRUE(inside(Vector3(0, 0, -10)));
    // 60 degrees of view: at 10 units ahead the edges lie tan(30) * 10, about 5.77, to each side.
    EXPECT_TRUE(inside(Vector3(5.6f, 0, -10)));
    EXPECT_FALSE(inside(Vector3(6.0f, 0, -10)));
    EXPECT_TRUE(inside(Vector3(0, -5.6f, -10)));
    EXPECT_FALSE(inside(Vector3(0, 6.0f, -10)));
    EXPECT_FALSE(inside(Vector3(0, 0, 10)));
    EXPECT_FALSE(inside(Vector3(0, 0, -0.5f)));
    EXPECT_FALSE(inside(Vector3(0, 0, -101)));
}
