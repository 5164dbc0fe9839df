// The bench's judgement: the budget by size, scene starts and the fades that cover them, per-entry verdicts,
// the printed table and the CSV rows.
#include "BenchReport.h"
#include "Schedule.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// A credit, a fade across the cut to a scene at 9 s, and a second scene joining at 15 s with no fade.
Schedule sample()
{
    Schedule schedule;
    schedule.add({1, "Credit", 0.0f, 9.0f, 4});
    schedule.add({2, "Fader", 8.5f, 9.5f, 100});
    schedule.add({3, "Islands", 9.0f, 20.0f, 0});
    schedule.add({4, "Swirl", 15.0f, 20.0f, 1});
    return schedule;
}

// One frame a second from 0 to 19 s, each taking `ms` but those listed.
BenchReport frames(double ms, const std::vector<std::pair<int, double>>& slow = {})
{
    BenchReport report;
    for (int second = 0; second < 20; ++second) {
        double time = ms;
        for (const auto& frame : slow) {
            if (frame.first == second)
                time = frame.second;
        }
        report.addFrame(second, time);
    }
    for (int i = 0; i < 10; ++i)
        report.addBaseline(0.5);
    return report;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST(BenchFrames, TheBudgetBySizeAndScenesStartOnTheirFirstFrameUnlessAFadeCoversIt)
{
    EXPECT_DOUBLE_EQ(BenchReport::budgetFor(640, 480).median, 8.3);
    EXPECT_DOUBLE_EQ(BenchReport::budgetFor(641, 480).median, 16.7);
    const std::vector<BenchReport::FrameKind> kinds = frames(1.0).classify(sample());
    ASSERT_EQ(kinds.size(), 20u);
    EXPECT_EQ(kinds[0], BenchReport::RUN_START);
    EXPECT_EQ(kinds[9], BenchReport::COVERED_START);
    EXPECT_EQ(kinds[15], BenchReport::SCENE_START);
    for (int i : {1, 8, 10, 14, 16, 19})
        EXPECT_EQ(kinds[i], BenchReport::PLAIN_FRAME) << i;

    // A start between frames falls on the next; a run beginning late has the scenes running as its start.
    BenchReport late;
    late.addFrame(14.5, 1.0);
    late.addFrame(15.5, 1.0);
    late.addFrame(16.5, 1.0);
    const std::vector<BenchReport::FrameKind> lateKinds = late.classify(sample());
    EXPECT_EQ(lateKinds, (std::vector<BenchReport::FrameKind>{BenchReport::RUN_START, BenchReport::SCENE_START,
                                                              BenchReport::PLAIN_FRAME}));
    EXPECT_TRUE(BenchReport().classify(sample()).empty());
}

TEST(BenchVerdict, CoveredStartsAndTheFirstFrameAreExcusedAndTheMedianAndSpreadJudgedOnTheirOwn)
{
    const Schedule schedule = sample();
    const BenchReport::Budget budget = BenchReport::budgetFor(640, 480);
    // 110 ms loading under the fade, 80 ms at the run's start: both excused.
    const BenchReport excused = frames(4.0, {{0, 80.0}, {9, 110.0}});
    const std::vector<BenchReport::FrameKind> kinds = excused.classify(schedule);
    const BenchReport::Verdict islands = excused.judge(schedule.getEntries()[2], kinds, budget);
    EXPECT_TRUE(islands.within());
    EXPECT_EQ(islands.judged.getCount(), 10u);
    EXPECT_EQ(islands.excused.getCount(), 1u);
    EXPECT_DOUBLE_EQ(islands.excused.getMaximum(), 110.0);
    EXPECT_EQ(islands.describe(budget), "ok");
    EXPECT_TRUE(excused.judge(schedule.getEntries()[0], kinds, budget).within());

    // The same stall where no fade covers the cut breaks the budget, for every entry the frame belongs to.
    const BenchReport uncovered = frames(4.0, {{15, 110.0}});
    const std::vector<BenchReport::FrameKind> uncoveredKinds = uncovered.classify(schedule);
    const BenchReport::Verdict swirl = uncovered.judge(schedule.getEntries()[3], uncoveredKinds, budget);
    EXPECT_FALSE(swirl.worstOk);
    EXPECT_TRUE(swirl.medianOk);
    EXPECT_EQ(swirl.describe(budget), "p99 110.00 > 2 x median; max 110.00 > 50 ms");
    EXPECT_FALSE(uncovered.judge(schedule.getEntries()[2], uncoveredKinds, budget).within());
    const BenchReport slow = frames(9.0);
    const std::vector<BenchReport::FrameKind> slowKinds = slow.classify(schedule);
    const BenchReport::Verdict small = slow.judge(schedule.getEntries()[2], slowKinds, BenchReport::budgetFor(640, 480));
    EXPECT_FALSE(small.medianOk);
    EXPECT_TRUE(small.spreadOk && small.worstOk);
    EXPECT_EQ(small.describe(BenchReport::budgetFor(640, 480)), "median 9.00 > 8.30");
    EXPECT_TRUE(slow.judge(schedule.getEntries()[2], slowKinds, BenchReport::budgetFor(1280, 720)).within());

    // One frame in eleven at three times the median: the p99 is that frame.
    const BenchReport jumpy = frames(4.0, {{12, 12.0}});
    const BenchReport::Verdict spread =
        jumpy.judge(schedule.getEntries()[2], jumpy.classify(schedule), BenchReport::budgetFor(640, 480));
    EXPECT_TRUE(spread.medianOk && spread.worstOk);
    EXPECT_FALSE(spread.spreadOk);

    BenchReport none;
    const BenchReport::Verdict empty = none.judge(schedule.getEntries()[0], {}, BenchReport::budgetFor(640, 480));
    EXPECT_TRUE(empty.within());
    EXPECT_EQ(empty.describe(BenchReport::budgetFor(640, 480)), "no frames to judge");
}

TEST(BenchReport, TheTableJudgesEveryEntryAndTheCsvHasOneRowPerFrame)
{
    std::ostringstream out;
    frames(4.0, {{9, 110.0}, {15, 70.0}}).print(out, sample(), "softpipe", 640, 480, 1);
    const std::string text = out.str();
    EXPECT_TRUE(contains(text, "budget: median <= 8.3 ms (120 fps)")) << text;
    EXPECT_TRUE(contains(text, "empty frame (clear and swap): 10 frames, median 0.50 ms")) << text;
    // The median over the empty frame's: 4 / 0.5.
    EXPECT_TRUE(contains(text, "     8.0  ok (excused first frame 110.00 ms)")) << text;
    EXPECT_TRUE(contains(text, "under the fade 8.500 to 9.500 s: excused")) << text;
    EXPECT_TRUE(contains(text, "Islands + Swirl")) << text;
    // The fade's only frame is the excused start: nothing left to judge, and it is not counted.
    EXPECT_TRUE(contains(text, "no frames to judge (excused first frame 110.00 ms)")) << text;
    EXPECT_TRUE(contains(text, "no fade covers the cut: OVER")) << text;
    EXPECT_TRUE(contains(text, "verdict: 1 of 3 entries within the budget; over: 3 Islands, 4 Swirl\n")) << text;
    BenchReport report;
    report.addFrame(0.0, 30.0);
    report.addFrame(9.0, 110.25, BenchReport::Split{60.0, 40.25, 10.0});
    report.addFrame(15.0, 3.5);
    std::ostringstream csv;
    report.writeCsv(csv, sample(), 1280, 720);
    EXPECT_EQ(csv.str(), std::string(BenchReport::CSV_HEADER) + "\n" +
                             "1280,720,0.0000,30.0000,16.7,run-start,Credit,0.0000,0.0000,0.0000\n"
                             "1280,720,9.0000,110.2500,16.7,covered-start,Islands,60.0000,40.2500,10.0000\n"
                             "1280,720,15.0000,3.5000,16.7,scene-start,Islands+Swirl,0.0000,0.0000,0.0000\n");
}
