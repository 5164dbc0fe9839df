// The tunnel exit's content: the tube meets the scene's slabs where the layout says, the flights stay inside, the slab fits its place.
#include "TunnelExitContent.h"

#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

namespace {

using namespace TunnelExitLayout;

Vec3 toVec3(const Vector3& v)
{
    return Vec3{v.x, v.y, v.z};
}

const TunnelExitContent& exitContent()
{
    static const TunnelExitContent content;
    return content;
}

}  // namespace

// The scene draws the slabs from the layout's point and frame: the forged tube must end exactly there.
TEST(TunnelExitContent, TheTubeEndsAtTheBreakTheFlightsStayInsideTheSlabFitsAndThePathsReadBack)
{
    const TunnelExitContent& content = exitContent();
    const double z = TunnelExitContent::BREAK_Z;
    EXPECT_LT((content.centre(z) - toVec3(BREAK)).length(), 1e-5);
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    content.frame(z, forward, side, up);
    EXPECT_LT((forward - toVec3(AXIS)).length(), 1e-5);
    EXPECT_LT((side - toVec3(SIDE)).length(), 1e-5);
    EXPECT_LT((up - toVec3(UP)).length(), 1e-5);
    // The rock's relief dies away towards the break, so the last ring is round.
    for (double theta = 0.0; theta < 6.3; theta += 0.3)
        EXPECT_NEAR(content.radius(z, theta), RADIUS, 1e-9) << theta;
    // Straight from the break on: the slabs' stretch continues the line.
    EXPECT_LT((content.flight(12.0) - (toVec3(BREAK) + toVec3(AXIS) * 12.0)).length(), 1e-9);
    for (double t = 0.0; t <= TunnelExitContent::HIT; t += 0.05) {
        const Vec3 camera = content.cameraAt(t);
        const Vec3 ship = content.shipAt(t);
        if (content.cameraDistance(t) < 0.0) {
            ASSERT_GT(content.clearance(camera), 2.5) << t;
        }
        if (content.cameraDistance(t) + TunnelExitContent::SHIP_LEAD < 0.0) {
            ASSERT_GT(content.clearance(ship), 2.0) << t;
            // The mast tops, about four units above the waterline.
            ASSERT_GT(content.clearance(Vec3{ship.x, ship.y + 4.3, ship.z}), 0.5) << t;
        }
        ASSERT_GT(ship.z, camera.z + 8.0) << t;
    }
    EXPECT_NEAR(content.cameraDistance(TunnelExitContent::HIT), -TunnelExitContent::HIT_SHORT_OF_BREAK, 1e-9);
    // Racing at the hit, slower before and after.
    const double atHit = content.cameraDistance(6.05) - content.cameraDistance(5.95);
    EXPECT_GT(atHit, 2.0 * (content.cameraDistance(1.05) - content.cameraDistance(0.95)));
    EXPECT_GT(atHit, 1.5 * (content.cameraDistance(8.0) - content.cameraDistance(7.9)));
    MeshBuilder builder;
    content.buildSlab(builder);
    std::unique_ptr<Mesh> mesh(builder.build(false, {}));
    ASSERT_NE(mesh, nullptr);
    const VertexArray& vertices = *mesh->getVertices();
    const double sector = 2.0 * 3.14159265358979 / SECTORS;
    for (int i = 0; i < vertices.getNumVertices(); ++i) {
        const Vector3& p = vertices[i].position;
        const double angle = std::atan2(p.y, p.x);
        const double rho = std::sqrt(p.x * p.x + p.y * p.y);
        ASSERT_GT(angle, 0.0) << i;
        ASSERT_LT(angle, sector) << i;
        ASSERT_LE(p.z, 0.0f) << i;
        ASSERT_GE(p.z, -RING_LENGTH) << i;
        ASSERT_GT(rho, RADIUS * 0.8) << i;
        ASSERT_LT(rho, RADIUS + 2.5) << i;
    }
    // Both faces and the four broken edges.
    EXPECT_GT(mesh->getFaces()->getNumFaces(), 40);
    const std::string camera = "/tmp/exit-camera-" + std::to_string(getpid());
    ASSERT_TRUE(content.writeCamera(camera.c_str()));
    CameraAnimation path;
    ASSERT_TRUE(path.load(camera.c_str()));
    std::remove(camera.c_str());
    path.setup();
    EXPECT_EQ(path.getLastFrame(), 192);
    for (double t : {0.0, 3.0, TunnelExitContent::HIT, SECONDS}) {
        const Vector3 got = path.getPositionTrack()->evaluate(static_cast<float>(t * 24.0));
        EXPECT_LT((toVec3(got) - content.cameraAt(t)).length(), 2e-3) << t;
    }
}
