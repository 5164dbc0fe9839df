// Samples resident memory every frame of a run and prints it at chosen scene times, with a verdict on growth.
#pragma once

#include <ostream>

class MemoryReport {
public:
    // Prints every `every` scene seconds from the first frame, at the first frame on or after
    // `lastStart` (when the last scene of the schedule starts) and at the last frame.
    MemoryReport(double every, double lastStart);

    // One frame drawn at scene time `seconds` with `kilobytes` resident (-1: unknown).
    void addFrame(double seconds, long kilobytes, bool lastFrame, std::ostream& out);
    // The figures since the last scene started: first, highest and last resident size.
    void printSummary(std::ostream& out) const;

    bool sawLastScene() const { return lastSceneFirst >= 0; }
    // Highest resident size after the last scene's first frame, less the size at that frame.
    long growthAfterLastStart() const { return sawLastScene() ? lastSceneHighest - lastSceneFirst : 0; }

private:
    void printLine(std::ostream& out, double seconds, long kilobytes, const char* note) const;

    double every;
    double lastStart;
    double nextMark;
    bool started;
    double lastSceneTime;
    long lastSceneFirst;
    long lastSceneHighest;
    long latest;
};
