// The street's life without GL: cars ride their lanes one way and never meet, the camera's crossings are kept
// clear, lamps stand at the curb and signs hang on walls below the lowest roof.
#include "effects/CityLayout.h"
#include "effects/OneWayStreet.h"

#include <gtest/gtest.h>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

using namespace CityLayout;

namespace {

struct Box {
    float x;
    float z;
    float halfX;
    float halfZ;
};

Box footprint(const OneWayStreet::Car& car, double t)
{
    Vector3 heading;
    const Vector3 p = OneWayStreet::carPosition(car, t, &heading);
    const float halfLength = static_cast<float>(CAR_LENGTH * 0.5);
    const float halfWidth = static_cast<float>(CAR_WIDTH * 0.5);
    const bool alongX = heading.x != 0.0f;
    return Box{p.x, p.z, alongX ? halfLength : halfWidth, alongX ? halfWidth : halfLength};
}

// The smallest clearance between two boxes along either axis; negative when they overlap.
float gap(const Box& a, const Box& b)
{
    const float dx = std::fabs(a.x - b.x) - a.halfX - b.halfX;
    const float dz = std::fabs(a.z - b.z) - a.halfZ - b.halfZ;
    return std::max(dx, dz);
}

}  // namespace

TEST(OneWayStreet, EveryCarKeepsToItsLaneNoTwoShareAPlaceAndTheCamerasCrossingsAreClear)
{
    const OneWayStreet street;
    ASSERT_GT(street.getCars().size(), 300u);
    const double step = 0.25;
    for (const OneWayStreet::Car& car : street.getCars()) {
        const OneWayStreet::Lane lane = OneWayStreet::lane(car.lane);
        EXPECT_EQ(lane.direction, lane.alongX ? xStreetDirection(lane.street) : zStreetDirection(lane.street));
        EXPECT_NEAR(std::fabs(lane.across - lane.street * PITCH), LANE_OFFSET, 1e-9);
        for (double t = 0.0; t < 40.0; t += step) {
            Vector3 heading;
            const Vector3 p = OneWayStreet::carPosition(car, t, &heading);
            const Vector3 next = OneWayStreet::carPosition(car, t + step);
            const float across = lane.alongX ? p.z : p.x;
            const float along = lane.alongX ? p.x : p.z;
            ASSERT_NEAR(across, lane.across, 1e-3) << "lane " << car.lane << " at " << t;
            ASSERT_EQ(p.y, 0.0f);
            ASSERT_GE(along, LANE_START - 1e-3);
            ASSERT_LE(along, LANE_START + LANE_LENGTH + 1e-3);
            ASSERT_EQ(lane.alongX ? heading.x : heading.z, static_cast<float>(lane.direction));
            // Forward by the speed, except where the lane's end hands the car back to its start.
            const float moved = (lane.alongX ? next.x - p.x : next.z - p.z) * lane.direction;
            if (std::fabs(moved) < LANE_LENGTH * 0.5) {
                ASSERT_NEAR(moved, CAR_SPEED * step, 1e-2) << "lane " << car.lane << " at " << t;
            }
        }
    }
    const std::vector<OneWayStreet::Car>& cars = street.getCars();
    float closest = 1e9f;
    // A tenth of a second for the whole race and a second lap: a car crosses a lane in a quarter second.
    for (double t = 0.0; t < 2.0 * SECONDS; t += 0.05) {
        std::map<std::pair<int, int>, std::vector<Box>> cells;
        for (const OneWayStreet::Car& car : cars) {
            const Box b = footprint(car, t);
            cells[{static_cast<int>(std::floor(b.x / 8.0f)), static_cast<int>(std::floor(b.z / 8.0f))}].push_back(b);
        }
        for (const auto& cell : cells) {
            for (int dx = -1; dx <= 1; ++dx) {
                for (int dz = -1; dz <= 1; ++dz) {
                    const auto other = cells.find({cell.first.first + dx, cell.first.second + dz});
                    if (other == cells.end())
                        continue;
                    for (const Box& a : cell.second)
                        for (const Box& b : other->second)
                            if (&a != &b)
                                closest = std::min(closest, gap(a, b));
                }
            }
        }
        ASSERT_GT(closest, 0.0f) << "two cars overlap at " << t;
    }
    // Crossing streets run half a slot apart: a car clears the crossing before the next comes.
    EXPECT_GT(closest, 0.3f);
    for (int k = 0; k < ROUTE_NODES; ++k) {
        const Node& node = ROUTE[k];
        const Node& from = ROUTE[k > 0 ? k - 1 : 1];
        const Node& to = ROUTE[k + 1 < ROUTE_NODES ? k + 1 : k - 1];
        const bool alongX = from.j == node.j;
        const bool turning = (from.j == node.j) != (to.j == node.j);
        const Vector3 crossing(static_cast<float>(node.i * PITCH), 0.0f, static_cast<float>(node.j * PITCH));
        for (double t = k * BAR - 0.4; t <= k * BAR + 0.4; t += 0.05) {
            for (const OneWayStreet::Car& car : street.getCars()) {
                const OneWayStreet::Lane lane = OneWayStreet::lane(car.lane);
                // Beside the camera on its own street is fine; across its way is not.
                if (!turning && lane.alongX == alongX)
                    continue;
                const Vector3 p = OneWayStreet::carPosition(car, t);
                const float d = std::max(std::fabs(p.x - crossing.x), std::fabs(p.z - crossing.z));
                ASSERT_GT(d, 8.0f) << "a car in the crossing of route node " << k << " at " << t;
            }
        }
    }
}

TEST(OneWayStreet, LampsStandAtTheCurbAndSignsHangOnWallsBelowTheLowestRoof)
{
    for (int k = 0; k < LAMP_COUNT; ++k) {
        const Lamp l = lamp(k);
        const double across = l.towardRoadX != 0.0 ? l.x : l.z;
        const double offset = std::fabs(across - std::round(across / PITCH) * PITCH);
        EXPECT_NEAR(offset, LAMP_SIDE, 1e-9) << k;
        EXPECT_GT(offset - LAMP_REACH, 0.0) << k;
    }
    const OneWayStreet street;
    ASSERT_GT(street.getSigns().size(), 100u);
    for (const OneWayStreet::Sign& s : street.getSigns()) {
        EXPECT_LT(s.centre.y + s.height * 0.5f, MIN_HEIGHT);
        EXPECT_GT(s.centre.y - s.height * 0.5f, SHOP_HEIGHT - 1e-3);
        // Back from the sign to the wall it hangs on: the edge of a block, beside a street.
        const float reach = s.blade ? 0.2f + s.width * 0.5f : 0.06f;
        const Vector3 wall = s.centre - s.out * reach;
        const float across = s.out.x != 0.0f ? wall.x : wall.z;
        const float fromStreet = across - std::round(across / PITCH) * PITCH;
        EXPECT_NEAR(std::fabs(fromStreet), BLOCK_EDGE, 1e-3);
        EXPECT_LT(fromStreet * (s.out.x + s.out.z), 0.0f) << "a sign facing away from its street";
    }
}
