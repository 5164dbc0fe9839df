// The tunnel's content: the scene's fixed objects and glows inside the rock, the flights clear of both, the paths read back.
#include "TunnelContent.h"

#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/MeshAnimation.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// Where the scene puts its objects (the first four; the holder stands with the fan) and glows,
// and how far each reaches from its centre.
struct Fixture {
    Vec3 position;
    double reach;
};

Vec3 toVec3(const Vector3& v)
{
    return Vec3{v.x, v.y, v.z};
}

std::vector<Fixture> fixtures()
{
    const double objectReach[] = {2.0, 2.0, 2.0, 2.3};
    std::vector<Fixture> list;
    for (int i = 0; i < 4; ++i)
        list.push_back({toVec3(TunnelLayout::OBJECT_POSITIONS[i]), objectReach[i]});
    for (const Vector3& glow : TunnelLayout::CLUSTER_POSITIONS)
        list.push_back({toVec3(glow), 1.5});
    return list;
}

const TunnelContent& tunnel()
{
    static const TunnelContent content;
    return content;
}

}  // namespace

TEST(TunnelContent, ObjectsAndGlowsFitInsideTheRockTheFlightsPassClearAndReadBackOpen)
{
    const TunnelContent& content = tunnel();
    const std::vector<Fixture> fixed = fixtures();
    for (const Fixture& f : fixed)
        EXPECT_GT(content.clearance(f.position), f.reach) << f.position.x;
    for (double t = 0.0; t <= TunnelContent::SECONDS; t += 0.1) {
        const Vec3 camera = content.cameraAt(t), ship = content.shipAt(t);
        ASSERT_GT(content.clearance(camera), 2.0) << t;
        ASSERT_GT(content.clearance(ship), 2.0) << t;
        // The mast tops, about four units above the waterline.
        ASSERT_GT(content.clearance(Vec3{ship.x, ship.y + 4.3, ship.z}), 0.3) << t;
        for (int i = 0; i < 4; ++i) {
            ASSERT_GT((camera - fixed[i].position).length(), fixed[i].reach + 1.5) << t;
            ASSERT_GT((ship - fixed[i].position).length(), fixed[i].reach + 1.5) << t;
        }
        // The ship sails ahead of the camera.
        ASSERT_GT(content.nearest(ship), content.nearest(camera) + 5.0) << t;
    }
    const std::string camera = "/tmp/tunnel-camera-" + std::to_string(getpid()), ship = camera + "-ship";
    ASSERT_TRUE(content.writeCamera(camera.c_str()));
    ASSERT_TRUE(content.writeShip(ship.c_str()));
    CameraAnimation cameraPath;
    MeshAnimation shipPath;
    ASSERT_TRUE(cameraPath.load(camera.c_str()));
    ASSERT_TRUE(shipPath.load(ship.c_str()));
    std::remove(camera.c_str());
    std::remove(ship.c_str());
    cameraPath.setup();
    shipPath.setup();
    EXPECT_EQ(cameraPath.getLastFrame(), 804);
    EXPECT_EQ(shipPath.getLastFrame(), 804);
    for (double t : {0.0, 10.0, 20.5, TunnelLayout::SECONDS}) {
        const Vector3 got = cameraPath.getPositionTrack()->evaluate((float)(t * 24.0));
        EXPECT_LT((Vec3{got.x, got.y, got.z} - content.cameraAt(t)).length(), 2e-3) << t;
        EXPECT_NEAR(shipPath.getPositionTrack()->evaluate((float)(t * 24.0)).x, content.shipAt(t).x, 1e-3f) << t;
    }
    // An open path: the flight ends where it ends, it does not run back to the start.
    EXPECT_GT(cameraPath.getPositionTrack()->evaluate(810.0f).x, 200.0f);
}
