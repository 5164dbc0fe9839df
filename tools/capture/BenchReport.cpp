// Judging and printing benchmark figures.
#include "BenchReport.h"

#include "Schedule.h"

#include <cstdio>

namespace {

const double SMALL_BUDGET_MS = 8.3;
const double LARGE_BUDGET_MS = 16.7;
const double SPREAD = 2.0;
const double WORST_FRAME_MS = 50.0;

std::string format(const char* pattern, double a, double b = 0.0)
{
    char text[120];
    std::snprintf(text, sizeof text, pattern, a, b);
    return text;
}

bool contains(const ScheduleEntry& entry, double time)
{
    return entry.start <= time && time <= entry.end;
}

// The fade whose span holds the cut at `start`, or null.
const ScheduleEntry* fadeOver(const Schedule& schedule, double start)
{
    for (const ScheduleEntry& entry : schedule.getEntries()) {
        if (Schedule::isFade(entry) && entry.start < start && start < entry.end)
            return &entry;
    }
    return nullptr;
}

}  // namespace

BenchReport::Budget BenchReport::budgetFor(int width, int height)
{
    const long long pixels = static_cast<long long>(width) * height;
    return Budget{pixels <= SMALL_PIXELS ? SMALL_BUDGET_MS : LARGE_BUDGET_MS, SPREAD, WORST_FRAME_MS};
}

const char* BenchReport::kindName(FrameKind kind)
{
    switch (kind) {
        case RUN_START:
            return "run-start";
        case SCENE_START:
            return "scene-start";
        case COVERED_START:
            return "covered-start";
        default:
            return "frame";
    }
}

std::string BenchReport::Verdict::describe(const Budget& budget) const
{
    if (judged.getCount() == 0)
        return "no frames to judge";
    if (within())
        return "ok";
    std::string why;
    auto add = [&why](const std::string& part) { why += (why.empty() ? "" : "; ") + part; };
    if (!medianOk)
        add(format("median %.2f > %.2f", judged.getMedian(), budget.median));
    if (!spreadOk)
        add(format("p99 %.2f > %.0f x median", judged.getPercentile(99.0), budget.spread));
    if (!worstOk)
        add(format("max %.2f > %.0f ms", judged.getMaximum(), budget.worstFrame));
    return why;
}

void BenchReport::addFrame(double sceneSeconds, double milliseconds, const Split& split)
{
    frames.push_back(TimedFrame{sceneSeconds, milliseconds, split});
}

std::vector<BenchReport::FrameKind> BenchReport::classify(const Schedule& schedule) const
{
    std::vector<FrameKind> kinds(frames.size(), PLAIN_FRAME);
    if (frames.empty())
        return kinds;
    kinds[0] = RUN_START;
    for (const ScheduleEntry& entry : schedule.getEntries()) {
        if (Schedule::isFade(entry))
            continue;
        size_t first = 0;
        while (first < frames.size() && frames[first].time < entry.start)
            ++first;
        if (first == 0 || first == frames.size() || !contains(entry, frames[first].time))
            continue;
        // Scenes starting together share the frame: one the fade leaves visible makes it visible.
        const bool covered = fadeOver(schedule, entry.start) != nullptr;
        if (kinds[first] == PLAIN_FRAME || (kinds[first] == COVERED_START && !covered))
            kinds[first] = covered ? COVERED_START : SCENE_START;
    }
    return kinds;
}

BenchReport::Verdict BenchReport::judge(const ScheduleEntry& entry, const std::vector<FrameKind>& kinds,
                                        const Budget& budget) const
{
    Verdict verdict;
    for (size_t i = 0; i < frames.size() && i < kinds.size(); ++i) {
        if (!contains(entry, frames[i].time))
            continue;
        const bool excused = kinds[i] == RUN_START || kinds[i] == COVERED_START;
        (excused ? verdict.excused : verdict.judged).add(frames[i].milliseconds);
    }
    if (verdict.judged.getCount() == 0)
        return verdict;
    const double median = verdict.judged.getMedian();
    verdict.medianOk = median <= budget.median;
    verdict.spreadOk = verdict.judged.getPercentile(99.0) <= budget.spread * median;
    verdict.worstOk = verdict.judged.getMaximum() <= budget.worstFrame;
    return verdict;
}

FrameStats BenchReport::allFrames() const
{
    FrameStats stats;
    for (const TimedFrame& frame : frames)
        stats.add(frame.milliseconds);
    return stats;
}

void BenchReport::print(std::ostream& out, const Schedule& schedule, const std::string& renderer, int width, int height,
                        int fps) const
{
    const Budget budget = budgetFor(width, height);
    const std::vector<FrameKind> kinds = classify(schedule);
    const double empty = baseline.getMedian();
    char line[240];
    out << "renderer: " << renderer << '\n';
    std::snprintf(line, sizeof line, "size: %dx%d, %d frames per scene second, %zu frames\n", width, height, fps,
                  frames.size());
    out << line;
    std::snprintf(line, sizeof line,
                  "budget: median <= %.1f ms (%.0f fps), p99 <= %.0f x median, no frame over %.0f ms but a scene's "
                  "first frame under a fade\n",
                  budget.median, 1000.0 / budget.median, budget.spread, budget.worstFrame);
    out << line;
    std::snprintf(line, sizeof line, "empty frame (clear and swap): %zu frames, median %.2f ms, p99 %.2f ms\n",
                  baseline.getCount(), empty, baseline.getPercentile(99.0));
    out << line;
    std::snprintf(line, sizeof line, "%-42s %6s %8s %8s %8s %8s  %s\n", "entry (frame times in ms)", "frames", "median",
                  "p99", "max", "x empty", "verdict");
    out << line;
    int within = 0, judgedEntries = 0;
    std::string over;
    for (const ScheduleEntry& entry : schedule.getEntries()) {
        const Verdict verdict = judge(entry, kinds, budget);
        const FrameStats& stats = verdict.judged;
        char label[120];
        std::snprintf(label, sizeof label, "%2d %-16.16s %7.3f to %7.3f s", entry.number, entry.name.c_str(),
                      entry.start, entry.end);
        std::string note = verdict.describe(budget);
        if (verdict.excused.getCount() > 0)
            note += format(" (excused first frame %.2f ms)", verdict.excused.getMaximum());
        if (stats.getCount() == 0) {
            std::snprintf(line, sizeof line, "%-42s %6d %8s %8s %8s %8s  %s\n", label, 0, "-", "-", "-", "-",
                          note.c_str());
        } else {
            std::snprintf(line, sizeof line, "%-42s %6zu %8.2f %8.2f %8.2f %8.1f  %s\n", label, stats.getCount(),
                          stats.getMedian(), stats.getPercentile(99.0), stats.getMaximum(),
                          empty > 0.0 ? stats.getMedian() / empty : 0.0, note.c_str());
            ++judgedEntries;
            within += verdict.within();
            if (!verdict.within())
                over += (over.empty() ? "" : ", ") + std::to_string(entry.number) + " " + entry.name;
        }
        out << line;
    }
    const FrameStats all = allFrames();
    std::snprintf(line, sizeof line, "%-42s %6zu %8.2f %8.2f %8.2f %8.1f\n", "all frames", all.getCount(),
                  all.getMedian(), all.getPercentile(99.0), all.getMaximum(),
                  empty > 0.0 ? all.getMedian() / empty : 0.0);
    out << line;
    printStarts(out, schedule, kinds, budget);
    std::snprintf(line, sizeof line, "verdict: %d of %d entries within the budget", within, judgedEntries);
    out << line << (over.empty() ? "" : "; over: " + over) << '\n';
}

void BenchReport::printStarts(std::ostream& out, const Schedule& schedule, const std::vector<FrameKind>& kinds,
                              const Budget& budget) const
{
    out << "scene starts (a scene's first frame carries its loading):\n";
    for (size_t i = 0; i < frames.size() && i < kinds.size(); ++i) {
        if (kinds[i] == PLAIN_FRAME)
            continue;
        const double time = frames[i].time;
        std::string why;
        if (kinds[i] == RUN_START) {
            why = "the run's first frame: excused";
        } else if (kinds[i] == COVERED_START) {
            const ScheduleEntry* fade = fadeOver(schedule, time);
            why = fade ? format("under the fade %.3f to %.3f s: excused", fade->start, fade->end)
                       : std::string("under a fade: excused");
        } else {
            why = frames[i].milliseconds <= budget.worstFrame ? "no fade covers the cut: within"
                                                              : "no fade covers the cut: OVER";
        }
        const Split& split = frames[i].split;
        char line[300];
        std::snprintf(line, sizeof line, "  %8.3f s  %-28.28s %8.2f ms (update %.2f, draw %.2f, swap %.2f)  %s\n", time,
                      schedule.scenesAt(time).c_str(), frames[i].milliseconds, split.update, split.draw, split.present,
                      why.c_str());
        out << line;
    }
}

void BenchReport::writeCsv(std::ostream& out, const Schedule& schedule, int width, int height) const
{
    const Budget budget = budgetFor(width, height);
    const std::vector<FrameKind> kinds = classify(schedule);
    out << CSV_HEADER << '\n';
    for (size_t i = 0; i < frames.size(); ++i) {
        // Scene names hold no commas or quotes; " + " between them becomes "+".
        std::string scenes = schedule.scenesAt(frames[i].time);
        for (size_t at = scenes.find(" + "); at != std::string::npos; at = scenes.find(" + "))
            scenes.replace(at, 3, "+");
        const Split& split = frames[i].split;
        char line[300];
        std::snprintf(line, sizeof line, "%d,%d,%.4f,%.4f,%.1f,%s,%s,%.4f,%.4f,%.4f\n", width, height, frames[i].time,
                      frames[i].milliseconds, budget.median, kindName(kinds[i]), scenes.c_str(), split.update,
                      split.draw, split.present);
        out << line;
    }
}
