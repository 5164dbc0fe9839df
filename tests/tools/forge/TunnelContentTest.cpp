// The tunnel's content: the scene's fixed objects and glows inside the rock, the flights clear of both, and the files read back.
#include "TunnelContent.h"

#include "Maths.h"
#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/VertexArray.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

// Where the scene puts its objects and glows, and how far each reaches from its centre.
struct Fixture {
    Vec3 position;
    double reach;
};

const Fixture objects[] = {
    {{-135.0, -200.0, 5.0}, 2.0}, {{-40.0, -200.0, 0.0}, 2.0}, {{-187.0, -201.0, 11.0}, 2.0}, {{248.0, -246.0, 57.0}, 2.3},
};
const Fixture glows[] = {
    {{4.0, -195.0, -1.0}, 1.5},    {{5.0, -190.0, 2.0}, 1.5},   {{5.0, -202.0, -7.0}, 1.5}, {{158.0, -245.0, 26.0}, 1.5},
    {{-136.0, -198.0, 0.0}, 1.5}, {{-135.0, -200.0, 4.0}, 1.5}, {{-215.0, -201.0, 15.0}, 1.5},
};

const TunnelContent& content()
{
    static const TunnelContent tunnel;
    return tunnel;
}

std::string tempFile(const char* name)
{
    return std::string("/tmp/tunnel-content-") + std::to_string(getpid()) + "-" + name;
}

Vector3 toVector(const Vec3& v)
{
    return Vector3((float)v.x, (float)v.y, (float)v.z);
}

}

TEST(TunnelContentPlaces, EveryObjectAndGlowFitsInsideTheRock)
{
    for (const Fixture& f : objects)
        EXPECT_GT(content().clearance(f.position), f.reach) << f.position.x;
    for (const Fixture& f : glows)
        EXPECT_GT(content().clearance(f.position), f.reach) << f.position.x;
}

TEST(TunnelContentPlaces, TheFanHolderStandsOnTheFloor)
{
    // The holder's foot is 3.6 below the hub.
    const TunnelContent& c = content();
    const Vec3 hub = objects[3].position;
    const Vec3 foot{hub.x, hub.y - 3.6, hub.z};
    EXPECT_GT(c.clearance(foot), -0.6);
    EXPECT_LT(c.clearance(foot), 0.6);
}

TEST(TunnelContentFlight, CameraAndShipStayInsideTheRockAllTheWay)
{
    const TunnelContent& c = content();
    for (double t = 0.0; t <= TunnelContent::SECONDS; t += 0.25) {
        ASSERT_GT(c.clearance(c.cameraAt(t)), 2.0) << t;
        const Vec3 ship = c.shipAt(t);
        ASSERT_GT(c.clearance(ship), 2.0) << t;
        // The mast tops, about four units above the waterline.
        ASSERT_GT(c.clearance(Vec3{ship.x, ship.y + 4.3, ship.z}), 0.3) << t;
    }
}

TEST(TunnelContentFlight, NeverFliesThroughAnObjectOrTheFan)
{
    const TunnelContent& c = content();
    for (double t = 0.0; t <= TunnelContent::SECONDS; t += 0.1) {
        for (const Fixture& f : objects) {
            ASSERT_GT((c.cameraAt(t) - f.position).length(), f.reach + 1.5) << t;
            ASSERT_GT((c.shipAt(t) - f.position).length(), f.reach + 1.5) << t;
        }
    }
}

TEST(TunnelContentFlight, TheShipSailsAheadAndTheCameraLooksForward)
{
    const TunnelContent& c = content();
    for (double t = 0.0; t <= TunnelContent::SECONDS; t += 1.0) {
        const double here = c.nearest(c.cameraAt(t));
        EXPECT_GT(c.nearest(c.shipAt(t)), here + 5.0) << t;
        EXPECT_GT(c.nearest(c.targetAt(t)), here + 5.0) << t;
    }
    // The whole scene flies the tunnel from its first waypoints to the fan.
    EXPECT_LT(c.cameraAt(0.0).x, -250.0);
    EXPECT_GT(c.cameraAt(TunnelContent::SECONDS).x, 230.0);
    EXPECT_LT(c.cameraAt(TunnelContent::SECONDS).x, objects[3].position.x - 6.0);
}

TEST(TunnelContentFiles, PathsReadBackAsTheFlightsAtTheirFrames)
{
    const std::string camera = tempFile("camera.cam");
    const std::string ship = tempFile("ship.cam");
    ASSERT_TRUE(content().writeCamera(camera.c_str()));
    ASSERT_TRUE(content().writeShip(ship.c_str()));

    CameraAnimation cameraPath;
    ASSERT_TRUE(cameraPath.load(camera.c_str()));
    cameraPath.setup();
    EXPECT_EQ(cameraPath.getFramesPerSec(), 24.0f);
    EXPECT_EQ(cameraPath.getLastFrame(), 804);
    MeshAnimation shipPath;
    ASSERT_TRUE(shipPath.load(ship.c_str()));
    shipPath.setup();
    EXPECT_EQ(shipPath.getLastFrame(), 804);

    for (double t : {0.0, 10.0, 20.5, 33.5}) {
        const float frame = (float)(t * 24.0);
        const Vector3 expected = toVector(content().cameraAt(t));
        const Vector3 got = cameraPath.getPositionTrack()->evaluate(frame);
        EXPECT_NEAR(got.x, expected.x, 1e-3f) << t;
        EXPECT_NEAR(got.y, expected.y, 1e-3f) << t;
        EXPECT_NEAR(got.z, expected.z, 1e-3f) << t;
        const Vector3 sailing = shipPath.getPositionTrack()->evaluate(frame);
        EXPECT_NEAR(sailing.x, (float)content().shipAt(t).x, 1e-3f) << t;
    }
    // An open path: the flight ends where it ends, it does not run back to the start.
    EXPECT_GT(cameraPath.getPositionTrack()->evaluate(810.0f).x, 200.0f);
    std::remove(camera.c_str());
    std::remove(ship.c_str());
}

TEST(TunnelContentFiles, TheTunnelReadsBackAsAnOctreeOfInwardWalls)
{
    const std::string file = tempFile("tunnel.oct");
    ASSERT_TRUE(content().writeTunnel(file.c_str()));
    Octree tree;
    ASSERT_TRUE(tree.load(file.c_str()));
    std::remove(file.c_str());
    ASSERT_TRUE(tree.isComplete());
    // The walls come with no material of their own: the scene binds its own.
    EXPECT_EQ(MaterialMgr::getHandle()->getCount(), 0);
    EXPECT_TRUE(tree.getRoot()->hasChildren());

    const VertexArray& vertices = *tree.getVertices();
    ASSERT_GT(vertices.getNumVertices(), 0);
    int inward = 0;
    for (int i = 0; i < vertices.getNumVertices(); ++i) {
        const Vector3& p = vertices[i].position;
        const Vec3 point{p.x, p.y, p.z};
        const Vec3 towardsAxis = content().centre(content().nearest(point)) - point;
        const Vector3& n = vertices[i].normal;
        if (n.x * towardsAxis.x + n.y * towardsAxis.y + n.z * towardsAxis.z > 0.0)
            ++inward;
    }
    EXPECT_GT(inward, vertices.getNumVertices() * 98 / 100);
}
