// The city's content: walls unbroken along every block side (what the street's culling stands on), the race passing
// a crossing on every bar down the streets' middles, clear of every building, and the car.
#include "CarMesh.h"
#include "CityBlockMesh.h"
#include "CityStreetContent.h"

#include "scene/BoundingBox.h"
#include "scene/Mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace CityLayout;

namespace {

const CityBlockMesh& block()
{
    static const CityBlockMesh mesh;
    return mesh;
}

}  // namespace

TEST(CityStreetContent, UnbrokenWallsTheRaceOnEveryBarAndTheCarAtItsLayoutsSize)
{
    const double size = PITCH - 2.0 * BLOCK_EDGE;
    for (int bx = FIRST_BLOCK; bx <= LAST_BLOCK; ++bx) {
        for (int bz = FIRST_BLOCK; bz <= LAST_BLOCK; ++bz) {
            const double x0 = bx * PITCH + BLOCK_EDGE;
            const double z0 = bz * PITCH + BLOCK_EDGE;
            // Along the block's south side and its west side, metre by metre, a building stands flush.
            for (double along = 0.5; along < size; along += 1.0) {
                bool south = false;
                bool west = false;
                for (const CityBlockMesh::Building& b : block().getBuildings()) {
                    south = south || (b.z0 == z0 && b.x0 <= x0 + along && b.x1 >= x0 + along &&
                                      b.street[CityBlockMesh::SOUTH] && b.height >= MIN_HEIGHT);
                    west = west || (b.x0 == x0 && b.z0 <= z0 + along && b.z1 >= z0 + along &&
                                    b.street[CityBlockMesh::WEST] && b.height >= MIN_HEIGHT);
                }
                ASSERT_TRUE(south && west) << "block " << bx << ", " << bz << " at " << along;
            }
        }
    }
    const CityStreetContent content;
    for (int k = 0; k < ROUTE_NODES; ++k) {
        const Vec3 at = content.cameraAt(k * BAR);
        const Vec3 node{ROUTE[k].i * PITCH, at.y, ROUTE[k].j * PITCH};
        // At a turn the camera is in the middle of the arc round the corner.
        EXPECT_LT((at - node).length(), CityStreetContent::CORNER_RADIUS * (std::sqrt(2.0) - 1.0) + 1e-6) << k;
    }
    Vec3 last = content.cameraAt(0.0);
    EXPECT_NEAR(last.y, DROP_HEIGHT, 1e-9);
    for (double t = 0.02; t <= SECONDS; t += 0.02) {
        const Vec3 at = content.cameraAt(t);
        // Never through a wall; down in the streets, within a road's width of a street's middle.
        ASSERT_FALSE(block().inside(at, 1.0)) << t;
        const double offX = std::fabs(at.x - std::round(at.x / PITCH) * PITCH);
        const double offZ = std::fabs(at.z - std::round(at.z / PITCH) * PITCH);
        ASSERT_LT(std::min(offX, offZ), CityStreetContent::CORNER_RADIUS) << t;
        const double speed = (at - last).length() / 0.02;
        ASSERT_GT(speed, 25.0) << t;
        ASSERT_LT(speed, 50.0) << t;
        last = at;
    }
    EXPECT_NEAR(content.cameraAt(DROP_SECONDS + 0.1).y, CAMERA_HEIGHT, 1e-9);
    // It looks ahead along the way it goes.
    for (double t = 0.0; t <= SECONDS; t += 0.5) {
        const Vec3 look = content.targetAt(t) - content.cameraAt(t);
        const Vec3 ahead = content.cameraAt(t + 0.1) - content.cameraAt(t);
        EXPECT_GT(look.x * ahead.x + look.z * ahead.z, 0.0) << t;
    }
    MeshBuilder builder;
    CarMesh().build(builder);
    ASSERT_GT(builder.triangleCount(), 20);
    std::unique_ptr<Mesh> mesh(builder.build(false, {}));
    ASSERT_TRUE(mesh);
    mesh->calcLimits();
    const BoundingBox& box = mesh->getLimits();
    EXPECT_NEAR(box.getMax().z - box.getMin().z, CAR_LENGTH, 1e-3);
    EXPECT_NEAR(box.getMax().x - box.getMin().x, CAR_WIDTH, 1e-3);
    EXPECT_NEAR(box.getMax().y, CAR_HEIGHT, 1e-3);
    EXPECT_NEAR(box.getMin().y, 0.0, 1e-3);
}
