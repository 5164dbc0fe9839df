// The fish school: its places within its radius whatever the time, lags and sizes in their ranges, tails quicker on the kicks, every fish near its lagged path point.
#include "effects/FishSchool.h"

#include "effects/SeaBedLayout.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"

#include <gtest/gtest.h>
#include <cmath>
#include <set>

namespace {

FishSchool school()
{
    FishSchool fish;
    fish.create(SeaBedLayout::FISH_COUNT, SeaBedLayout::SCHOOL_RADIUS);
    return fish;
}

}  // namespace

TEST(FishSchool, EveryFishKeepsWithinTheRadiusAndItsTailBeatsQuickerJustAfterEachKick)
{
    const FishSchool fish = school();
    ASSERT_GE(fish.getCount(), 30);
    std::set<std::pair<float, float>> places;
    for (int i = 0; i < fish.getCount(); ++i) {
        const FishSchool::Fish& f = fish.getFish(i);
        places.insert({f.offset.x, f.offset.y});
        EXPECT_GE(f.lag, 0.0f);
        EXPECT_LE(f.lag, FishSchool::MAX_LAG);
        EXPECT_GT(f.size, 0.5f);
        for (float t = 0.0f; t <= 33.0f; t += 0.05f)
            ASSERT_LE(fish.offsetAt(i, t).length(), fish.getRadius()) << i << " at " << t;
    }
    // No two fish share a place.
    EXPECT_EQ(places.size(), static_cast<size_t>(fish.getCount()));
    // A school of none, or with no room at all, still answers.
    FishSchool empty;
    empty.create(0, 5.0f);
    EXPECT_EQ(empty.getCount(), 0);
    FishSchool tight;
    tight.create(8, 0.1f);
    EXPECT_EQ(tight.getFish(3).offset.length(), 0.0f);
    // Kicks fall on rows 0 and 10 of each sixteen-row bar: 0 s and 1.25 s into each 2 s bar.
    EXPECT_FLOAT_EQ(FishSchool::sinceKick(0.1f), 0.1f);
    EXPECT_FLOAT_EQ(FishSchool::sinceKick(1.3f), 1.3f - 1.25f);
    EXPECT_FLOAT_EQ(FishSchool::sinceKick(4.5f), 0.5f);
    EXPECT_FLOAT_EQ(FishSchool::kicksBy(6.0f), 6.0f);
    EXPECT_FLOAT_EQ(FishSchool::kicksBy(7.9f), 8.0f);
    EXPECT_EQ(FishSchool::kicksBy(-1.0f), 0.0f);
    const float window = 0.25f;
    const float afterKick = FishSchool::strokeAt(8.0f + window, 0.0f) - FishSchool::strokeAt(8.0f, 0.0f);
    const float between = FishSchool::strokeAt(8.6f + window, 0.0f) - FishSchool::strokeAt(8.6f, 0.0f);
    EXPECT_GT(afterKick, between * 1.3f);
    // Never backwards.
    for (float t = 0.0f; t < 10.0f; t += 0.01f)
        ASSERT_GT(FishSchool::strokeAt(t + 0.01f, 1.0f), FishSchool::strokeAt(t, 1.0f)) << t;
}

TEST(FishSchool, EachFishSwimsRoundItsOwnLaggedPointOfThePathFacingAlongIt)
{
    FishSchool fish = school();
    Vector3 position, side, up, forward;
    EXPECT_FALSE(fish.place(0, 1.0f, position, side, up, forward));
    // A straight path along +x at four units a second, at 24 frames a second.
    Lin3Track track;
    track.insertKey(new Lin3Key(0.0f, Vector3(0.0f, 5.0f, 0.0f)));
    track.insertKey(new Lin3Key(24.0f * 40.0f, Vector3(160.0f, 5.0f, 0.0f)));
    track.setup();
    fish.setTrack(&track, 24.0f);
    for (int i = 0; i < fish.getCount(); ++i) {
        const float t = 12.0f + 0.37f * i;
        ASSERT_TRUE(fish.place(i, t, position, side, up, forward));
        const Vector3 lagged = track.evaluate((t - fish.getFish(i).lag) * 24.0f);
        EXPECT_LE(position.distance(lagged), fish.getRadius() + 1e-4f) << i;
        EXPECT_NEAR(forward.x, 1.0f, 1e-4f);
        EXPECT_NEAR(up.y, 1.0f, 1e-4f);
        // A proper frame, never a mirror: side x up = forward.
        EXPECT_NEAR(side.cross(up).x, 1.0f, 1e-4f);
    }
}
