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
        : Effect(layer, EffectTimer(start, end)), name(name), log(log)
    {
    }
    ~Probe() override { log.push_back("delete " + name); }
    void initiate() override { log.push_back("initiate " + name); }
    // Logs only when it has pieces to load.
    bool preload() override
    {
        if (pieces <= 0)
            return false;
        log.push_back("preload " + name);
        return --pieces > 0;
    }
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
    float getPreloadLead() const override { return lead; }

    int pieces = 0;
    float lead = Effect::PRELOAD_SECONDS;
};

class Timeline : public ::testing::Test {
protected:
    Log log;
    EffectMgr mgr;

    Probe* add(const std::string& name, short layer, float start, float end = 10.0f)
    {
        Probe* probe = new Probe(name, layer, start, end, log);
        mgr.addEffect(probe);
        return probe;
    }
    Log drawOrder()
    {
        log.clear();
        mgr.display();
        return log;
    }
};

}  // namespace

TEST(EffectBase, RunningIncludesBothEndsOfTheSpan)
{
    Log log;
    Probe probe("p", -3, 5.0f, 10.0f, log);
    EXPECT_TRUE(probe.isRunning());
    probe.updateTimer(5.0f);
    EXPECT_TRUE(probe.isRunning());
    EXPECT_FALSE(probe.isFinished());
    probe.updateTimer(0.001f);
    EXPECT_TRUE(probe.isFinished());
    probe.updateTimer(-6.0f);
    EXPECT_FALSE(probe.isRunning());
}

TEST_F(Timeline, StartsUpdatesAndRetiresByItsOwnClock)
{
    add("a", 0, 5.0f);
    mgr.initiate();
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_TRUE(log.empty());
    // Due at scene time 5 and updated in the same frame.
    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"initiate a", "update a"}));
    for (int i = 0; i < 4; ++i)
        mgr.update(1.0f);
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    log.clear();
    mgr.update(1.0f);
    EXPECT_EQ(log, (Log{"update a", "shutdown a at 11.000000", "delete a"}));
    EXPECT_EQ(mgr.getRunningCount(), 0u);
}

TEST_F(Timeline, AddGathersTheLatestStartAndEarliestEndAndInitiateDiscardsThem)
{
    EXPECT_FALSE(mgr.addEffect(nullptr));
    // The first effect is not looked at.
    add("a", 0, 5.0f, 10.0f);
    EXPECT_EQ(mgr.getTimer().end, 0.0f);
    add("b", 0, 3.0f, -2.0f);
    add("c", 0, 1.0f, 4.0f);
    EXPECT_EQ(mgr.getTimer().start, 3.0f);
    EXPECT_EQ(mgr.getTimer().end, -2.0f);
    EXPECT_EQ(mgr.getTimer().current, 3.0f);
    mgr.initiate();
    EXPECT_EQ(mgr.getTimer().start + mgr.getTimer().end + mgr.getTimer().current, 0.0f);
}

TEST_F(Timeline, SpansNoFrameLandsInAreNeverStartedAndGoOnlyWithTheManager)
{
    add("skipped", 0, 5.0f, 5.25f);
    add("nan", 0, std::nanf(""));
    add("point", 0, 5.5f, 5.5f);
    mgr.initiate();
    mgr.update(4.75f);
    mgr.update(0.75f);
    mgr.update(0.75f);
    EXPECT_EQ(log, (Log{"initiate point", "update point", "shutdown point at 6.250000", "delete point"}));
    EXPECT_EQ(mgr.getPendingCount(), 2u);
    log.clear();
    mgr.shutdown();
    // Deleted without shutdown calls.
    EXPECT_EQ(log, (Log{"delete nan", "delete skipped"}));
}

TEST_F(Timeline, SignedLayersDrawLowestFirst)
{
    for (short layer : {3, -1, 32767, 0, -32768})
        add(std::to_string(layer), layer, 0.0f);
    mgr.update(0.5f);
    EXPECT_EQ(drawOrder(), (Log{"-32768", "-1", "0", "3", "32767"}));
}

TEST_F(Timeline, NewestStartedOfEqualLayersComesFirst)
{
    add("three", 3, 0.0f);
    add("first", 1, 0.0f);
    add("second", 1, 2.0f);
    mgr.initiate();
    mgr.update(1.0f);
    // Due together: the pending list runs newest added first, each going in front of its equals.
    EXPECT_EQ(log[0], "initiate first");
    EXPECT_EQ(log[1], "initiate three");
    mgr.update(1.0f);
    EXPECT_EQ(drawOrder(), (Log{"second", "first", "three"}));
}

TEST_F(Timeline, RemoveGivesPendingEffectsBackUntouchedAndShutsRunningOnesDown)
{
    Probe* pending = add("p", 0, 5.0f);
    Probe* running = add("r", 0, 0.0f);
    add("b", 0, 0.0f);
    mgr.update(1.0f);
    log.clear();
    EXPECT_TRUE(mgr.removeEffect(pending));
    EXPECT_TRUE(mgr.removeEffect(running));
    EXPECT_EQ(log, (Log{"shutdown r at 1.000000"}));
    EXPECT_FALSE(mgr.removeEffect(running));
    EXPECT_FALSE(mgr.removeEffect(nullptr));
    EXPECT_EQ(drawOrder(), (Log{"b"}));
    delete pending;
    delete running;
}

TEST_F(Timeline, UpdateFromDataMovesOnlyARunningEffectToItsNewLayer)
{
    Probe* waiting = add("waiting", 0, 5.0f);
    Probe* mover = add("mover", 0, 0.0f);
    add("middle", 5, 0.0f);
    add("top", 10, 0.0f);
    mgr.update(0.0f);
    EXPECT_FALSE(mgr.updateEffectFromData(waiting));
    EXPECT_FALSE(mgr.updateEffectFromData(nullptr));
    mover->setLayer(10);
    log.clear();
    EXPECT_TRUE(mgr.updateEffectFromData(mover));
    // Neither initiate again nor a change of count; in front of its new equals.
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(mgr.getRunningCount(), 3u);
    EXPECT_EQ(drawOrder(), (Log{"middle", "mover", "top"}));
}

TEST_F(Timeline, PreloadStepsComeOneAFrameInTheSecondsBeforeAStartSoonestStartFirst)
{
    add("now", 0, 0.5f);
    Probe* later = add("later", 0, 10.0f, 20.0f);
    later->pieces = 2;
    add("sooner", 0, 6.0f, 20.0f)->pieces = 1;
    add("nothing", 0, 6.5f, 20.0f);
    mgr.initiate();
    const auto step = [&](float seconds) {
        log.clear();
        mgr.update(seconds);
        Log steps;
        for (const std::string& entry : log) {
            if (entry.compare(0, 8, "preload ") == 0 || entry.compare(0, 9, "initiate ") == 0)
                steps.push_back(entry);
        }
        return steps;
    };
    // Due at once: started, never preloaded; the others are more than four seconds away.
    EXPECT_EQ(step(1.0f), (Log{"initiate now"}));
    EXPECT_EQ(step(1.5f), (Log{"preload sooner"}));
    // Its one piece is loaded; the effect with nothing to load takes its turn and answers at once.
    EXPECT_EQ(step(1.0f), Log{});
    // Effects due start and load the rest themselves; the next one in the window gets its step.
    EXPECT_EQ(step(3.0f), (Log{"preload later", "initiate nothing", "initiate sooner"}));
    EXPECT_EQ(step(1.0f), (Log{"preload later"}));
    EXPECT_EQ(step(1.0f), Log{});
    EXPECT_EQ(step(1.5f), (Log{"initiate later"}));
}

TEST_F(Timeline, AnEffectMayAskForItsPreloadFromFurtherAhead)
{
    Probe* early = add("early", 0, 100.0f, 120.0f);
    early->pieces = 1;
    early->lead = 100.0f;
    mgr.initiate();
    mgr.update(0.1f);
    EXPECT_EQ(log, (Log{"preload early"}));
}
