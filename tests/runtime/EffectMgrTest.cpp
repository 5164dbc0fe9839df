// The timeline: when effects start, run and retire, their drawing order, and taking them back.
#include "runtime/Effect.h"
#include "runtime/EffectMgr.h"

#include <gtest/gtest.h>
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
    void shutdown() override { log.push_back("shutdown " + name); }
    void update(float seconds) override
    {
        updateTimer(seconds);
        log.push_back("update " + name);
    }
    void display() override { log.push_back("display " + name); }
    void setLayer(short value) { layer = value; }

    std::string name;
    Log& log;
};

bool contains(const Log& log, const std::string& entry)
{
    for (const std::string& line : log)
        if (line == entry)
            return true;
    return false;
}

// Names of the effects drawn by one display() call, in order.
Log drawOrder(EffectMgr& mgr, Log& log)
{
    log.clear();
    mgr.display();
    Log names;
    for (const std::string& line : log)
        names.push_back(line.substr(line.find(' ') + 1));
    return names;
}

}

TEST(EffectBase, DefaultIsLayerZeroAndZeroSpan)
{
    Log log;
    Probe probe("p", 0, 0.0f, 0.0f, log);
    EXPECT_EQ(probe.getLayer(), 0);
    EXPECT_TRUE(probe.isRunning());
    EXPECT_FALSE(probe.isFinished());
}

TEST(EffectBase, RunningIncludesBothEnds)
{
    Log log;
    Probe probe("p", -3, 5.0f, 10.0f, log);
    EXPECT_EQ(probe.getLayer(), -3);
    EXPECT_EQ(probe.getTimer().current, 5.0f);
    EXPECT_TRUE(probe.isRunning());
    probe.updateTimer(5.0f);
    EXPECT_EQ(probe.getTimer().current, 10.0f);
    EXPECT_TRUE(probe.isRunning());
    EXPECT_FALSE(probe.isFinished());
    probe.updateTimer(0.001f);
    EXPECT_FALSE(probe.isRunning());
    EXPECT_TRUE(probe.isFinished());
}

TEST(EffectBase, BeforeTheStartIsFinishedToo)
{
    Log log;
    Probe probe("p", 0, 5.0f, 10.0f, log);
    probe.updateTimer(-0.5f);
    EXPECT_TRUE(probe.isFinished());
}

TEST(TimelineLifecycle, StartsUpdatesAndRetiresByTheSpan)
{
    Log log;
    EffectMgr mgr;
    ASSERT_TRUE(mgr.addEffect(new Probe("a", 0, 5.0f, 10.0f, log)));
    mgr.initiate();
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(mgr.getPendingCount(), 1u);

    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"initiate a", "update a"}));
    EXPECT_EQ(mgr.getPendingCount(), 0u);
    EXPECT_EQ(mgr.getRunningCount(), 1u);

    // Own clock 6 after its first update; 10 is still inside.
    log.clear();
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_FALSE(contains(log, "shutdown a"));
    EXPECT_EQ(mgr.getRunningCount(), 1u);

    log.clear();
    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"update a", "shutdown a", "delete a"}));
    EXPECT_EQ(mgr.getRunningCount(), 0u);
}

TEST(TimelineLifecycle, SceneClockStartsAtZeroAfterInitiate)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("a", 0, 5.0f, 10.0f, log));
    mgr.addEffect(new Probe("b", 0, 7.0f, 9.0f, log));
    mgr.initiate();
    EXPECT_EQ(mgr.getTimer().start, 0.0f);
    EXPECT_EQ(mgr.getTimer().end, 0.0f);
    EXPECT_EQ(mgr.getTimer().current, 0.0f);
    mgr.update(0.5f);
    EXPECT_EQ(mgr.getTimer().current, 0.5f);
}

TEST(TimelineLifecycle, AddGathersLatestStartAndEarliestEnd)
{
    Log log;
    EffectMgr mgr;
    // The first effect is not looked at: the clock keeps its zero span.
    mgr.addEffect(new Probe("a", 0, 5.0f, 10.0f, log));
    EXPECT_EQ(mgr.getTimer().start, 0.0f);
    EXPECT_EQ(mgr.getTimer().end, 0.0f);
    mgr.addEffect(new Probe("b", 0, 3.0f, -2.0f, log));
    EXPECT_EQ(mgr.getTimer().start, 3.0f);
    EXPECT_EQ(mgr.getTimer().end, -2.0f);
    EXPECT_EQ(mgr.getTimer().current, 3.0f);
    mgr.addEffect(new Probe("c", 0, 1.0f, 4.0f, log));
    EXPECT_EQ(mgr.getTimer().start, 3.0f);
    EXPECT_EQ(mgr.getTimer().end, -2.0f);
}

TEST(TimelineLifecycle, SpanBetweenTwoFramesIsNeverStarted)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("a", 0, 5.0f, 5.25f, log));
    mgr.initiate();
    mgr.update(4.75f);
    mgr.update(0.75f);
    mgr.update(0.75f);
    EXPECT_TRUE(log.empty());
    // Stays pending for good, and is still deleted at shutdown.
    EXPECT_EQ(mgr.getPendingCount(), 1u);
    mgr.shutdown();
    EXPECT_EQ(log, (Log{"delete a"}));
}

TEST(TimelineLifecycle, FrameLandingInsideATinySpanStartsIt)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("a", 0, 5.0f, 5.0f, log));
    mgr.initiate();
    mgr.update(5.0f);
    EXPECT_TRUE(contains(log, "initiate a"));
}

TEST(TimelineLifecycle, NaNSpanIsNeverDue)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("a", 0, std::nanf(""), 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    EXPECT_EQ(mgr.getPendingCount(), 1u);
    EXPECT_TRUE(log.empty());
}

TEST(TimelineLifecycle, EffectClockRunsApartFromTheSceneClock)
{
    // Notes its own clock when it is retired.
    struct ClockProbe : Probe {
        float& seen;
        ClockProbe(Log& log, float& seen) : Probe("a", 0, 2.0f, 3.0f, log), seen(seen) {}
        void shutdown() override
        {
            seen = getTimer().current;
            Probe::shutdown();
        }
    };
    Log log;
    float seen = 0.0f;
    EffectMgr mgr;
    mgr.addEffect(new ClockProbe(log, seen));
    mgr.initiate();
    mgr.update(2.5f);
    // Started at scene time 2.5, but its own clock began at its start, 2.
    EXPECT_EQ(seen, 4.5f);
    EXPECT_EQ(mgr.getRunningCount(), 0u);
    EXPECT_EQ(log, (Log{"initiate a", "update a", "shutdown a", "delete a"}));
}

TEST(TimelineLifecycle, ShutdownDeletesWithoutShutdownCalls)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("run", 0, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("wait", 0, 5.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    log.clear();
    mgr.shutdown();
    EXPECT_FALSE(contains(log, "shutdown run"));
    EXPECT_TRUE(contains(log, "delete run"));
    EXPECT_TRUE(contains(log, "delete wait"));
    EXPECT_EQ(mgr.getPendingCount(), 0u);
    EXPECT_EQ(mgr.getRunningCount(), 0u);
}

TEST(TimelineLifecycle, DestructorDeletesWhatIsLeft)
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
    EXPECT_EQ(log.size(), 2u);
    EXPECT_FALSE(contains(log, "shutdown run"));
}

TEST(TimelineLifecycle, NullEffectsAreRefused)
{
    EffectMgr mgr;
    EXPECT_FALSE(mgr.addEffect(nullptr));
    EXPECT_FALSE(mgr.removeEffect(nullptr));
    EXPECT_FALSE(mgr.updateEffectFromData(nullptr));
    EXPECT_EQ(mgr.getPendingCount(), 0u);
}

TEST(TimelineLayers, LowerLayersDrawFirst)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("three", 3, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("one", 1, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("hundred", 100, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.0f);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"one", "three", "hundred"}));
}

TEST(TimelineLayers, NegativeLayersAreSigned)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("zero", 0, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("minus", -1, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("lowest", -32768, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("highest", 32767, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.0f);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"lowest", "minus", "zero", "highest"}));
}

TEST(TimelineLayers, LaterStartedOfEqualLayerDrawsFirst)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("three", 3, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("first", 1, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("second", 1, 2.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    mgr.update(1.0f);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"second", "first", "three"}));
}

TEST(TimelineLayers, DueInOneFrameStartsNewestAddedFirst)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("early", 0, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("late", 0, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.5f);
    // The pending list runs newest first, and each start goes in front of its equals.
    EXPECT_EQ(log[0], "initiate late");
    EXPECT_EQ(log[1], "initiate early");
    EXPECT_EQ(drawOrder(mgr, log), (Log{"early", "late"}));
}

TEST(TimelineLayers, UpdateOrderFollowsDrawOrder)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("top", 100, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("scene", 0, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.5f);
    log.clear();
    mgr.update(0.5f);
    EXPECT_EQ(log, (Log{"update scene", "update top"}));
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
    // A second removal finds it nowhere.
    EXPECT_FALSE(mgr.removeEffect(probe));
    delete probe;
}

TEST(TimelineRemove, RunningEffectIsShutDownButKept)
{
    Log log;
    EffectMgr mgr;
    Probe* probe = new Probe("a", 0, 0.0f, 10.0f, log);
    mgr.addEffect(probe);
    mgr.addEffect(new Probe("b", 0, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    log.clear();
    EXPECT_TRUE(mgr.removeEffect(probe));
    EXPECT_EQ(log, (Log{"shutdown a"}));
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"b"}));
    log.clear();
    delete probe;
    EXPECT_EQ(log, (Log{"delete a"}));
}

TEST(TimelineRemove, UnknownEffectIsRefused)
{
    Log log;
    EffectMgr mgr;
    mgr.addEffect(new Probe("held", 0, 5.0f, 10.0f, log));
    Probe stranger("stranger", 0, 0.0f, 1.0f, log);
    EXPECT_FALSE(mgr.removeEffect(&stranger));
    EXPECT_EQ(mgr.getPendingCount(), 1u);
}

TEST(TimelineResort, MovesARunningEffectToItsNewLayer)
{
    Log log;
    EffectMgr mgr;
    Probe* mover = new Probe("mover", 0, 0.0f, 10.0f, log);
    mgr.addEffect(mover);
    mgr.addEffect(new Probe("middle", 5, 0.0f, 10.0f, log));
    mgr.addEffect(new Probe("top", 10, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(0.0f);
    log.clear();

    mover->setLayer(7);
    EXPECT_TRUE(mgr.updateEffectFromData(mover));
    // Neither initiate again nor a change of count.
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(mgr.getRunningCount(), 3u);
    EXPECT_EQ(drawOrder(mgr, log), (Log{"middle", "mover", "top"}));

    mover->setLayer(10);
    EXPECT_TRUE(mgr.updateEffectFromData(mover));
    EXPECT_EQ(drawOrder(mgr, log), (Log{"middle", "mover", "top"}));
}

TEST(TimelineResort, PendingEffectIsRefused)
{
    Log log;
    EffectMgr mgr;
    Probe* probe = new Probe("a", 0, 5.0f, 10.0f, log);
    mgr.addEffect(probe);
    mgr.addEffect(new Probe("b", 0, 0.0f, 10.0f, log));
    mgr.initiate();
    mgr.update(1.0f);
    EXPECT_FALSE(mgr.updateEffectFromData(probe));
    EXPECT_EQ(mgr.getPendingCount(), 1u);
    EXPECT_EQ(mgr.getRunningCount(), 1u);
}

TEST(TimelineResort, EmptyRunningListIsRefused)
{
    Log log;
    EffectMgr mgr;
    Probe* probe = new Probe("a", 0, 5.0f, 10.0f, log);
    mgr.addEffect(probe);
    EXPECT_FALSE(mgr.updateEffectFromData(probe));
}
