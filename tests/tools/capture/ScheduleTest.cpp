// Reading the schedule off a timeline: addition order, class names, spans, the end, printing.
#include "Schedule.h"

#include "runtime/Effect.h"
#include "runtime/EffectMgr.h"

#include <gtest/gtest.h>
#include <sstream>

class ProbeScene : public Effect {
public:
    ProbeScene(short layer, const EffectTimer& span) : Effect(layer, span) {}
    void initiate() override {}
    void shutdown() override {}
    void update(float seconds) override { updateTimer(seconds); }
    void display() override {}
};

class ProbeFade : public ProbeScene {
public:
    using ProbeScene::ProbeScene;
};

TEST(ScheduleReading, EntriesComeInAdditionOrderNumberedFromOne)
{
    EffectMgr effects;
    effects.addEffect(new ProbeScene(0, EffectTimer(0.0f, 8.875f)));
    effects.addEffect(new ProbeFade(100, EffectTimer(35.0f, 36.0f)));
    effects.addEffect(new ProbeScene(-1, EffectTimer(35.5f, 68.5f)));
    effects.initiate();

    Schedule schedule;
    schedule.read(effects);
    const auto& entries = schedule.getEntries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].number, 1);
    EXPECT_EQ(entries[0].name, "ProbeScene");
    EXPECT_EQ(entries[0].end, 8.875f);
    EXPECT_EQ(entries[1].name, "ProbeFade");
    EXPECT_EQ(entries[1].layer, 100);
    EXPECT_EQ(entries[1].start, 35.0f);
    EXPECT_EQ(entries[2].number, 3);
    EXPECT_EQ(entries[2].layer, -1);
    EXPECT_EQ(schedule.getEnd(), 68.5);
}

TEST(ScheduleReading, StartedEffectsAreNoLongerPending)
{
    EffectMgr effects;
    effects.addEffect(new ProbeScene(0, EffectTimer(0.0f, 1.0f)));
    effects.addEffect(new ProbeScene(0, EffectTimer(5.0f, 6.0f)));
    effects.initiate();
    effects.update(0.5f);

    Schedule schedule;
    schedule.read(effects);
    ASSERT_EQ(schedule.getEntries().size(), 1u);
    EXPECT_EQ(schedule.getEntries()[0].start, 5.0f);
}

TEST(ScheduleReading, EmptyTimelineEndsAtZero)
{
    EffectMgr effects;
    Schedule schedule;
    schedule.read(effects);
    EXPECT_TRUE(schedule.isEmpty());
    EXPECT_EQ(schedule.getEnd(), 0.0);
}

TEST(SchedulePrinting, OneParsableLinePerEntry)
{
    Schedule schedule;
    schedule.add(ScheduleEntry{1, "Credit", 0.0f, 8.875f, 4});
    schedule.add(ScheduleEntry{24, "Greetings", 259.5f, 289.5f, 1});
    std::ostringstream out;
    schedule.print(out);
    std::istringstream in(out.str());
    int number = 0, layer = 0;
    double start = 0, end = 0;
    std::string name;
    ASSERT_TRUE(in >> number >> start >> end >> layer >> name);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(end, 8.875);
    EXPECT_EQ(name, "Credit");
    ASSERT_TRUE(in >> number >> start >> end >> layer >> name);
    EXPECT_EQ(number, 24);
    EXPECT_EQ(start, 259.5);
    EXPECT_EQ(layer, 1);
    EXPECT_EQ(name, "Greetings");
    EXPECT_FALSE(in >> number);
}
