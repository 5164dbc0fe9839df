// When resident memory is printed during a run and what the summary says.
#include "MemoryReport.h"

#include <algorithm>
#include <cstdio>

MemoryReport::MemoryReport(double everySeconds, double lastSceneStart)
    : every(everySeconds), lastStart(lastSceneStart), nextMark(0.0), started(false), lastSceneTime(0.0),
      lastSceneFirst(-1), lastSceneHighest(-1), latest(-1)
{
}

void MemoryReport::addFrame(double seconds, long kilobytes, bool lastFrame, std::ostream& out)
{
    latest = kilobytes;
    const char* note = nullptr;
    if (!started) {
        started = true;
        nextMark = seconds;
        note = "start";
    }
    // Marks sit on whole multiples of the interval after the first frame, so rounding
    // in the frame times cannot make them drift or skip one.
    bool onMark = seconds >= nextMark - 1e-9;
    if (onMark) {
        while (nextMark <= seconds + 1e-9)
            nextMark += every;
    }
    if (!sawLastScene() && seconds >= lastStart) {
        lastSceneTime = seconds;
        lastSceneFirst = kilobytes;
        lastSceneHighest = kilobytes;
        note = note ? note : "last scene starts";
    }
    if (sawLastScene())
        lastSceneHighest = std::max(lastSceneHighest, kilobytes);
    if (lastFrame)
        note = "end";
    if (note || onMark)
        printLine(out, seconds, kilobytes, note ? note : "");
}

void MemoryReport::printLine(std::ostream& out, double seconds, long kilobytes, const char* note) const
{
    char line[120];
    std::snprintf(line, sizeof line, "memory %9.3f s  VmRSS %8ld kB  %s\n", seconds, kilobytes, note);
    // A long run shows its figures as they come, even into a file.
    out << line << std::flush;
}

void MemoryReport::printSummary(std::ostream& out) const
{
    char line[200];
    if (!sawLastScene()) {
        out << "memory: the run ended before the last scene started; no growth figure\n";
        return;
    }
    std::snprintf(line, sizeof line,
                  "memory since the last scene started at %.3f s: first %ld kB, highest %ld kB, last %ld kB, "
                  "growth %ld kB\n",
                  lastSceneTime, lastSceneFirst, lastSceneHighest, latest, growthAfterLastStart());
    // A leak report at exit ends the process without flushing the standard streams.
    out << line << std::flush;
}
