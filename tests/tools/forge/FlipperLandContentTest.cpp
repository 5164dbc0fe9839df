// The flipper land's content: a seamless land whose hollows hold the flipper stations, and toys of the sizes the scene draws.
#include "FlipperLandContent.h"

#include "scene/BezierMesh.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"

#include <gtest/gtest.h>
#include <cmath>
#include <memory>

namespace {

using namespace FlipperLandLayout;

std::unique_ptr<Mesh> built(void (*make)(MeshBuilder&))
{
    MeshBuilder builder;
    make(builder);
    return std::unique_ptr<Mesh>(builder.build(false, {}));
}

}  // namespace

// Neighbouring patches share their edge points, and the points either side of an edge line up
// with it, so the land has no seam a rolling ball could feel.
TEST(FlipperLandContent, TheLandIsSeamlessItsHollowsHoldTheStationsAndToysAreTheirSizes)
{
    BezierMesh land;
    FlipperLandContent::buildLand(land);
    ASSERT_EQ(land.getNumPatches(), PATCHES * PATCHES);
    const float side = 2.0f * HALF_SIZE / PATCHES;
    for (int a = 0; a < PATCHES; ++a) {
        for (int b = 0; b + 1 < PATCHES; ++b) {
            const BezierMesh::Patch& left = land.getPatch(a * PATCHES + b);
            const BezierMesh::Patch& right = land.getPatch(a * PATCHES + b + 1);
            for (int row = 0; row < 4; ++row) {
                const Vector3& edge = left.points[row * 4 + 3];
                EXPECT_EQ(edge, right.points[row * 4]);
                const Vector3 before = left.points[row * 4 + 2];
                const Vector3 after = right.points[row * 4 + 1];
                EXPECT_NEAR(edge.y, 0.5f * (before.y + after.y), 1e-4f);
            }
        }
    }
    EXPECT_FLOAT_EQ(land.getPatch(0).points[0].x, -HALF_SIZE);
    EXPECT_FLOAT_EQ(land.getPatch(PATCHES * PATCHES - 1).points[15].z, HALF_SIZE);
    EXPECT_FLOAT_EQ(land.getPatch(0).points[3].z - land.getPatch(0).points[0].z, side);
    // Balls roll down into the stations' hollows; the middle's hill and the rim stand above them.
    for (const Vector3& s : STATIONS) {
        const double hollow = FlipperLandContent::height(s.x, s.z);
        for (double a = 0.0; a < 6.28; a += 0.5) {
            EXPECT_LT(hollow, FlipperLandContent::height(s.x + 2.5 * std::cos(a), s.z + 2.5 * std::sin(a)));
            EXPECT_LT(hollow + 1.0, FlipperLandContent::height(s.x + 6.0 * std::cos(a), s.z + 6.0 * std::sin(a)));
        }
    }
    EXPECT_GT(FlipperLandContent::height(0.0, 0.0), 3.0);
    EXPECT_GT(FlipperLandContent::height(HALF_SIZE, 5.0), 4.0);
    const std::unique_ptr<Mesh> ball = built(&FlipperLandContent::buildBall);
    ASSERT_NE(ball, nullptr);
    for (int i = 0; i < ball->getVertices()->getNumVertices(); ++i)
        ASSERT_NEAR((*ball->getVertices())[i].position.length(), 1.0f, 1e-5f) << i;

    const std::unique_ptr<Mesh> paddle = built(&FlipperLandContent::buildPaddle);
    ASSERT_NE(paddle, nullptr);
    EXPECT_NEAR(paddle->getLimits().getMax().x, FlipperLandContent::PADDLE_LENGTH + 0.25f, 1e-4f);
    EXPECT_NEAR(paddle->getLimits().getMin().y, 0.0f, 1e-6f);

    // The cap sits on the post, within the bumper's reach in the play.
    const std::unique_ptr<Mesh> bumper = built(&FlipperLandContent::buildBumper);
    const std::unique_ptr<Mesh> cap = built(&FlipperLandContent::buildCap);
    ASSERT_NE(bumper, nullptr);
    ASSERT_NE(cap, nullptr);
    EXPECT_LT(cap->getLimits().getMin().y, bumper->getLimits().getMax().y);
    EXPECT_LT(cap->getLimits().getMax().x, 1.45f);
}
