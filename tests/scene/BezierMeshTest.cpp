// Bezier patch meshes: the BMSH round trip and its bad input, normals, the grid and culling.
#include "scene/BezierMesh.h"

#include "ByteImage.h"
#include "scene/Camera.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>
#include <cmath>
#include <sstream>

using namespace bytes;

namespace {

// A gently curved patch over [0, 3] x [0, 3]: rows along x, columns along z, so it faces up.
BezierMesh::Patch hill(float height)
{
    BezierMesh::Patch patch;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const bool inner = row > 0 && row < 3 && column > 0 && column < 3;
            patch.points[row * 4 + column] =
                Vector3(static_cast<float>(row), inner ? height : 0.0f, static_cast<float>(column));
        }
    return patch;
}

}  // namespace

TEST(BezierMeshChunk, RoundTripIsBitForBit)
{
    BezierMesh mesh;
    mesh.setName("Mountain1");
    mesh.setMaterialName("Sand4");
    mesh.addPatch(hill(2.5f));
    mesh.addPatch(hill(-0.1f));
    const std::string image = saved(mesh);
    ASSERT_EQ(image.size(), 4u + 2 + 9 + 2 + 5 + 4 + 2u * BezierMesh::patchFileSize);
    EXPECT_EQ(image.substr(0, 18), "BMSH" + le16(9) + "Mountain1" + le16(5) + "S");
    std::istringstream in(image);
    BezierMesh copy;
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(saved(copy), image);
}

TEST(BezierMeshChunk, RefusesWrongTagTruncationAbsurdCountsAndMissingFiles)
{
    BezierMesh mesh;
    mesh.setName("M");
    mesh.addPatch(hill(1.0f));
    const std::string image = saved(mesh);
    expectEveryPrefixFails<BezierMesh>(image);
    // The count sits after the two names: a wrong tag, a billion patches and a negative count.
    const size_t countAt = 4 + 2 + 1 + 2;
    for (const std::string& bad :
         {"X" + image.substr(1), image.substr(0, countAt) + le32(1000000000) + image.substr(countAt + 4),
          image.substr(0, countAt) + le32(0xffffffffu) + image.substr(countAt + 4)}) {
        std::istringstream in(bad);
        EXPECT_FALSE(BezierMesh().load(in));
    }
    EXPECT_FALSE(BezierMesh().load("no/such/mountain.bez"));
}

TEST(BezierMeshSurface, NormalsFaceUpOnAnUpFacingPatchEvenAtACollapsedEdge)
{
    EXPECT_NEAR(BezierMesh::normalAt(hill(0.0f), 0.3f, 0.7f).y, 1.0f, 1e-6f);
    // The whole first row meets in one point: the peak of a cone.
    BezierMesh::Patch cone = hill(0.0f);
    for (int column = 0; column < 4; ++column)
        cone.points[column] = Vector3(0.0f, 2.0f, 1.5f);
    const Vector3 n = BezierMesh::normalAt(cone, 0.5f, 0.0f);
    EXPECT_TRUE(std::isfinite(n.x) && std::isfinite(n.y) && std::isfinite(n.z));
    EXPECT_NEAR(n.length(), 1.0f, 1e-4f);
    EXPECT_GT(n.y, 0.0f);
}

TEST(BezierMeshGrid, GridSizeSetsThePointsPerPatchAndNeverDropsBelowOne)
{
    BezierMesh mesh;
    mesh.addPatch(hill(1.0f));
    mesh.setGridSize(10, 5);
    EXPECT_EQ(mesh.getSurface(0).positions.size(), 11u * 6u);
    mesh.setGridSize(0, -3);
    EXPECT_EQ(mesh.getSurface(0).positions.size(), 4u);
}

class BezierMeshDrawTest : public GLTest {};

TEST_F(BezierMeshDrawTest, DrawsOnlyThePatchesInTheCamerasFrustum)
{
    BezierMesh mesh;
    BezierMesh::Patch ahead = hill(1.0f), behind = hill(1.0f);
    for (int i = 0; i < 16; ++i)
        ahead.points[i].z -= 20.0f, behind.points[i].z += 20.0f;
    mesh.addPatch(ahead);
    mesh.addPatch(behind);
    Camera camera("BezierCamera", Vector3(0.0f, 2.0f, 0.0f), Vector3(0.0f, 2.0f, -10.0f), 0.1f, 1000.0f, 45.0f);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(45.0, 1.0, 0.1, 1000.0);
    // The frustum is taken from the GL matrices the camera leaves behind.
    camera.lookAt();
    mesh.draw(&camera);
    EXPECT_EQ(mesh.getDrawnPatches(), 1);
    mesh.draw(nullptr);
    EXPECT_EQ(mesh.getDrawnPatches(), 2);
}
