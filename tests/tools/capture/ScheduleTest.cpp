// The schedule as the capture tool reads it: the scenes at a moment, and where each entry's still is taken.
#include "Schedule.h"

#include <gtest/gtest.h>

namespace {

Schedule sample()
{
    Schedule schedule;
    schedule.add({1, "Credit", 0.0f, 8.875f, 4});
    schedule.add({2, "Fader", 8.0f, 10.0f, 100});
    schedule.add({3, "Swirl", 8.875f, 20.0f, 0});
    schedule.add({4, "Greetings", 8.875f, 20.0f, 1});
    return schedule;
}

}  // namespace

TEST(Schedule, FadesAreLeftOutOfTheScenesAndHaveTheirStillThreeQuartersIn)
{
    const Schedule schedule = sample();
    EXPECT_EQ(schedule.scenesAt(0.0), "Credit");
    EXPECT_EQ(schedule.scenesAt(8.5), "Credit");
    EXPECT_EQ(schedule.scenesAt(8.875), "Swirl + Greetings");
    EXPECT_EQ(schedule.scenesAt(20.0), "no scene");
    EXPECT_EQ(Schedule().scenesAt(1.0), "no scene");
    EXPECT_DOUBLE_EQ(schedule.getEnd(), 20.0);
    EXPECT_DOUBLE_EQ(Schedule::stillTime(schedule.getEntries()[0]), 4.4375);
    EXPECT_DOUBLE_EQ(Schedule::stillTime(schedule.getEntries()[1]), 9.5);
    EXPECT_TRUE(Schedule::isFade(schedule.getEntries()[1]));
    EXPECT_FALSE(Schedule::isFade(schedule.getEntries()[2]));
}
