// Grouping and printing benchmark figures.
#include "BenchReport.h"

#include "Schedule.h"

#include <cstdio>

namespace {

void printRow(std::ostream& out, const char* label, const FrameStats& stats)
{
    char line[200];
    if (stats.getCount() == 0) {
        std::snprintf(line, sizeof line, "%-44s %7d %9s %9s %9s\n", label, 0, "-", "-", "-");
    } else {
        std::snprintf(line, sizeof line, "%-44s %7zu %9.2f %9.2f %9.2f\n", label, stats.getCount(),
                      stats.getMinimum(), stats.getMedian(), stats.getPercentile(99.0));
    }
    out << line;
}

}

void BenchReport::addFrame(double sceneSeconds, double milliseconds)
{
    frames.emplace_back(sceneSeconds, milliseconds);
}

FrameStats BenchReport::statsBetween(double start, double end) const
{
    FrameStats stats;
    for (const auto& frame : frames) {
        if (start <= frame.first && frame.first <= end)
            stats.add(frame.second);
    }
    return stats;
}

FrameStats BenchReport::allFrames() const
{
    FrameStats stats;
    for (const auto& frame : frames)
        stats.add(frame.second);
    return stats;
}

void BenchReport::print(std::ostream& out, const Schedule& schedule, const std::string& renderer, int width,
                        int height, int fps) const
{
    char line[200];
    out << "renderer: " << renderer << '\n';
    std::snprintf(line, sizeof line, "size: %dx%d, %d frames per scene second, %zu frames\n", width, height,
                  fps, frames.size());
    out << line;
    std::snprintf(line, sizeof line, "%-44s %7s %9s %9s %9s\n", "entry (frame times in ms)", "frames", "min",
                  "median", "p99");
    out << line;
    for (const ScheduleEntry& entry : schedule.getEntries()) {
        char label[120];
        std::snprintf(label, sizeof label, "%2d %-18.18s %7.3f to %7.3f s", entry.number, entry.name.c_str(),
                      entry.start, entry.end);
        printRow(out, label, statsBetween(entry.start, entry.end));
    }
    printRow(out, "all frames", allFrames());
    printRow(out, "empty frame (clear and swap)", baseline);
}
