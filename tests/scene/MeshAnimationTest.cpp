// Mesh paths: placement along the direction of motion, playback and the shared CANI chunk.
#include "math/Matrix4.h"
#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"

#include "ByteImage.h"
#include "support/VectorNear.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace bytes;

namespace {

Vector3 column(const Matrix4& m, int c)
{
    return Vector3(m[c], m[4 + c], m[8 + c]);
}

// A proper rotation: orthonormal columns and a right-handed basis.
void expectRotation(const Matrix4& m)
{
    const Vector3 x = column(m, 0), y = column(m, 1);
    EXPECT_NEAR(x.length(), 1.0f, 1e-5f);
    EXPECT_NEAR(x.dot(y), 0.0f, 1e-5f);
    expectNear(x.cross(y), column(m, 2));
}

// Three keys, so the middle of the path is an inner span.
void straightPath(MeshAnimation& anim, const Vector3& origin, const Vector3& dir)
{
    anim.addMeshPos(0, origin);
    anim.addMeshPos(50, origin + dir * 50.0f);
    anim.addMeshPos(100, origin + dir * 100.0f);
    anim.setup();
}

class MeshPlacementTest : public ::testing::TestWithParam<Vector3> {};

TEST_P(MeshPlacementTest, ForwardAxisFollowsAStraightPath)
{
    const Vector3 dir = GetParam();
    const Vector3 origin(3.0f, -2.0f, 7.0f);
    MeshAnimation anim;
    straightPath(anim, origin, dir);
    for (long frame : {10L, 25L, 60L, 90L}) {
        anim.setFrame(frame);
        Matrix4 m = anim.placement();
        // The direction comes from two path points half a frame apart: float noise of ~1e-4.
        expectNear(column(m, 2), dir, 1e-3f);
        expectRotation(m);
        expectNear(column(m, 3), anim.getPositionTrack()->evaluate(static_cast<float>(frame)), 1e-4f);
    }
}

INSTANTIATE_TEST_SUITE_P(EachAxis, MeshPlacementTest,
                         ::testing::Values(Vector3(1, 0, 0), Vector3(-1, 0, 0), Vector3(0, 1, 0), Vector3(0, -1, 0),
                                           Vector3(0, 0, 1), Vector3(0, 0, -1)));

TEST(MeshAnimationTest, WithoutATrackOrAlongPlusZTheMeshIsUnturnedAndPastTheEndItStops)
{
    Matrix4 m = MeshAnimation().placement();
    expectNear(column(m, 2), Vector3(0, 0, 1));
    MeshAnimation anim;
    straightPath(anim, Vector3(), Vector3(0.0f, 0.0f, 1.0f));
    anim.update(1.25f);  // 30 frames at 24 a second
    EXPECT_EQ(anim.getCurrentFrame(), 30.0f);
    m = anim.placement();
    expectNear(column(m, 0), Vector3(1, 0, 0));
    expectNear(column(m, 1), Vector3(0, 1, 0));
    anim.getPositionTrack()->setFlags(0);
    anim.setFrame(500);
    m = anim.placement();
    expectNear(column(m, 3), Vector3(0.0f, 0.0f, 100.0f));
    for (int i = 0; i < 16; ++i)
        EXPECT_FALSE(std::isnan(m[i])) << i;
}

TEST(MeshAnimationTest, SaveLoadSaveIsBitIdenticalAndNamesTheMesh)
{
    MeshAnimation anim;
    straightPath(anim, Vector3(-0.0f, 1e-40f, 2.0f), Vector3(0, 1, 0));
    anim.setLabel("fish");
    anim.setFramesPerSec(30.0f);
    const std::string first = saved(anim);
    MeshAnimation loaded;
    std::istringstream in(first);
    ASSERT_TRUE(loaded.load(in));
    EXPECT_EQ(saved(loaded), first);
    Mesh mesh;
    mesh.setName("ship");
    anim.setMesh(&mesh);
    EXPECT_EQ(saved(anim).substr(8, 6), std::string("\x04\x00ship", 6));
}

TEST(MeshAnimationTest, ReadsTheFirstTrackOfACameraPathFile)
{
    // The tag is shared: a camera path read as a mesh path yields its position track.
    CameraAnimation cam;
    cam.addCameraPos(0, Vector3(1, 2, 3));
    cam.addCameraPos(10, Vector3(4, 5, 6));
    cam.addTargetPos(0, Vector3());
    std::ostringstream out;
    ASSERT_TRUE(cam.save(out));
    MeshAnimation anim;
    std::istringstream in(out.str());
    ASSERT_TRUE(anim.load(in));
    EXPECT_EQ(anim.getPositionTrack()->getNumKeys(), 2);
    char next[4];
    in.read(next, 4);
    EXPECT_EQ(std::string(next, 4), "LIN3");
}

TEST(MeshAnimationTest, TruncatedOrWrongInputFailsAndLeavesNoTrack)
{
    MeshAnimation anim;
    straightPath(anim, Vector3(), Vector3(0, 0, 1));
    anim.setLabel("worm");
    expectEveryPrefixFails<MeshAnimation>(saved(anim),
                                          [](MeshAnimation& a) { EXPECT_EQ(a.getPositionTrack(), nullptr); });
    MeshAnimation empty;
    std::istringstream wrongTag(std::string("CAMI\0\0\xc0\x41\0\0", 10));
    EXPECT_FALSE(empty.load(wrongTag));
    std::ostringstream out;
    EXPECT_FALSE(empty.save(out));
    EXPECT_FALSE(empty.load("/nonexistent/none.cam"));
}

}  // namespace
