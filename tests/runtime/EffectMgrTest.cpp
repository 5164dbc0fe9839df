// The timeline: when effects start, run and retire, their drawing order, and taking them back.
#include "runtime/Effect.h"
#include "runtime/EffectMgr.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

typedef std::vector<std::string> Log;

// Writes every life-cycle call to a shared log, so order and deletion are visible.
class Probe : public Effect {
public:
    Probe(const std::string& name, short layer, float start, float end, Log& log)
        : Effect(layer, EffectTimer(start, end)), name(name), log(log) {}
    ~Probe() override { log.push_back("delete " + name); }
    void initiate() override { log.push_back("initiate " + name); }
    void shutdown() override { log.push_back("shutdown " + name + " at " + std::to_string(timer.current)); }
    void update(float seconds) override
    {
        updateTimer(seconds);
        log.push_back("update " + name);
    }
    void display() override { log.push_back(name); }
    void setLayer(short value) { layer = value; }

    std::string name;
    Log& log;
};

bool contains(const Log& log, const std::string& entry)
{
    return std::find(log.begin(), log.end(), entry) != log.end();
}

Log drawOrder(EffectMgr& mgr, Log& log)
{
    log.clear();
    mgr.display();
    return log;
}

}

TEST(EffectBase, RunningIncludesBothEndsOfTheSpan)
{
    Log log;
    Probe probe("p", -3, 5.0f, 10.0f, log);
    EXPECT_EQ(probe.getLayer(), -3);
    EXPECT_TRUE(probe.isRunning());
    probe.updateTimer(5.0f);
    EXPECT_TRUE(probe.isRunning());
    EXPECT_FALSE(probe.isFinished());
    probe.updateTimer(0.001f);
    EXPECT_TRUE(probe.isFinished());
    probe.updateTimer(-6.0f);
    EXPECT_TRUE(probe.isFinished());
    EXPECT_FALSE(probe.isRunning());
}

TEST(TimelineLifecycle, StartsUpdatesAndRetiresByItsOwnClock)
{
    Log log;
    EffectMgr mgr;
    ASSERT_TRUE(mgr.addEffect(new Probe("a", 0, 5.0f, 10.0f, log)));
    mgr.initiate();
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_TRUE(log.empty());
    // Due at scene time 5 and updated in the same frame.
    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"initiate a", "update a"}));
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_FALSE(contains(log, "delete a"));
    log.clear();
    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"update a", "shutdown a at 11.000000", "delete a"}));
    EXPECT_EQ(mgr.getRunningCount(), 0u);
}

TEST(TimelineLifecycle, AddGathersASpanThatInitiateDiscards)
{
    Log log;
    EffectMgr mgr;
    EXPECT_FALSE(mgr.addEffect(nullptr));
    // The first effect is not looked at; then the latest start and the earliest end win.
    mgr.addEffect(new Probe("a", 0, 5.0f, 10.0f, log));
    EXPECT_EQ(mgr.getTimer().end, 0.0f);
    mgr.addEffect(new Probe("b", 0, 3.0f, -2.0f, log));
    mgr.addEffect(new Probe("c", 0, 1.0f, 4.0f, log));
    EXPECT_EQ(mgr.getTimer().start, 3.0f);
    EXPECT_EQ(mgr.getTimer().end, -2.0f);
    EXPECT_EQ(mgr.getTimer().current, 3.0f);
    EXPECT_EQ(mgr.getPendingCount(), 3u);
    mgr.initiate();
    EXPECT_EQ(mgr.getTimer().start + mgr.getTimer().end + mgr.getTimer().current, 0.0f);
}

TEST(TimelineLifecycle, SpansNoFrameLandsInAreNeverStarted)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("skipped", 0, 5.0f, 5.25f, log));
    mgr.addEffect(new Probe("nan", 0, std::nanf(""), 10.0f, log));
    mgr.addEffect(new Probe("point", 0, 5.5f, 5.5f, log));
    mgr.initiate();
    mgr.update(4.75f);
    mgr.update(0.75f);
    mgr.update(0.75f);
    EXPECT_EQ(log, (Log{"initiate point", "update point", "shutdown point at 6.250000", "delete point"}));
    // The others stay pending for good and go only with the manager.
    EXPECT_EQ(mgr.getPendingCount(), 2u);
    log.clear();
    mgr.shutdown();
    EXPECT_EQ(log.size(), 2u);
}

TEST(TimelineLifecycle, ShutdownAndDestructorDeleteWithoutShutdownCalls)
{
    Log log;
    {
        EffectMgr mgr;
        mgr.addEffect(new Probe("run", 0, 0.0f, 10.0f, log));
        mgr.addEffect(new Probe("wait", 0, 5.0f, 10.0f, log));
        mgr.initiate();
        mgr.update(1.0f);
        log.clear();
    }
    EXPECT_EQ(log, (Log{"delete wait", "delete run"}));

    EffectMgr mgr;
    mgr.addEffect(new Probe("run", 0, 0.0f, 10.0f, log));
    mgr.update(0.0f);
    mgr.shutdown();
    EXPECT_EQ(mgr.getRunningCount() + mgr.getPendingCount(), 0u);
    EXPECT_EQ(log.back(), "delete run");
}

TEST(TimelineLayers, SignedLayersDrawLowestFirst)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("3", 3, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("-1", -1, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("32767", 32767, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("0", 0, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("-32768", -32768, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.5f);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"-32768", "-1", "0", "3", "32767"}));
    log.clear();
    mgr.update(0.5f);
    EXPECT_EQ(log, (Log{"update -32768", "update -1", "update 0", "update 3", "update 32767"}));
}

TEST(TimelineLayers, NewestStartedOfEqualLayersComesFirst)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("three", 3, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("first", 1, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("second", 1, 2.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    // Due together: the pending list runs newest added first, each going in front of its equals.
    EXPECT_EQ(log[0], "initiate first");
    EXPECT_EQ(log[1], "initiate three");
    mgr.update(1.0f);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"second", "first", "three"}));
}

TEST(TimelineRemove, PendingEffectComesBackUntouched)
{
    Log log;
    EffectMgr mgr;
    Probe* probe = new Probe("a", 0, 5.0f, 10.0f, log);
    mgr.addEffect(probe);
    EXPECT_TRUE(mgr.removeEffect(probe));
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(mgr.getPendingCount(), 0u);
    EXPECT_FALSE(mgr.removeEffect(probe));
    EXPECT_FALSE(mgr.removeEffect(nullptr));
    delete probe;
}

TEST(TimelineRemove, RunningEffectIsShutDownButKeptAlive)
{
    Log log;
    EffectMgr mgr;
    Probe* probe = new Probe("a", 0, 0.0f, 10.0f, log);
    mgr.addEffect(probe);
    mgr.addEffect(new Probe("b", 0, 0.0f, 10.0f, log));
    mgr.update(1.0f);
    log.clear();
    EXPECT_TRUE(mgr.removeEffect(probe));
    EXPECT_EQ(log, (Log{"shutdown a at 1.000000"}));
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"b"}));
    delete probe;
}

TEST(TimelineResort, MovesARunningEffectToItsNewLayer)
{
    Log log;
    EffectMgr mgr;
    Probe* mover = new Probe("mover", 0, 0.0f, 10.0f, log);
    mgr.addEffect(mover);
    mgr.addEffect(new Probe("middle", 5, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("top", 10, 0.0f, 10.0f, log));
    mgr.update(0.0f);
    mover->setLayer(10);
    log.clear();
    EXPECT_TRUE(mgr.updateEffectFromData(mover));
    // Neither initiate again nor a change of count; in front of its new equals.
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(mgr.getRunningCount(), 3u);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"middle", "mover", "top"}));
}

TEST(TimelineResort, OnlyRunningEffectsAreResorted)
{
    Log log;
    EffectMgr mgr;
    Probe* waiting = new Probe("a", 0, 5.0f, 10.0f, log);
    mgr.addEffect(waiting);
    EXPECT_FALSE(mgr.updateEffectFromData(waiting));
    EXPECT_FALSE(mgr.updateEffectFromData(nullptr));
    mgr.addEffect(new Probe("b", 0, 0.0f, 10.0f, log));
    mgr.update(1.0f);
    EXPECT_FALSE(mgr.updateEffectFromData(waiting));
    EXPECT_EQ(mgr.getPendingCount(), 1u);
    EXPECT_EQ(mgr.getRunningCount(), 1u);
}
