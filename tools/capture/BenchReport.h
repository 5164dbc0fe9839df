// Frame times of a benchmark run, judged per schedule entry against the frame-time budget of the size drawn.
#pragma once

#include "FrameStats.h"

#include <ostream>
#include <string>
#include <vector>

class Schedule;
struct ScheduleEntry;

class BenchReport {
public:
    // What a timed frame is to the budget. A scene's first frame carries its loading; under a fade that
    // covers the cut nobody sees it, and the run's first frame follows nothing on screen.
    enum FrameKind { PLAIN_FRAME, RUN_START, SCENE_START, COVERED_START };

    struct Budget {
        double median;      // ms, the most an entry's median frame may take
        double spread;      // p99 at most this many times the median
        double worstFrame;  // ms, the most any frame but an excused one may take
    };
    // 120 fps up to 640 x 480 pixels, 60 fps above; the spread and the worst frame hold at every size.
    static Budget budgetFor(int width, int height);
    static constexpr int SMALL_PIXELS = 640 * 480;

    // One entry's figures: the frames the budget applies to, and the excused frames left out of them.
    struct Verdict {
        FrameStats judged;
        FrameStats excused;
        bool medianOk = true;
        bool spreadOk = true;
        bool worstOk = true;
        bool within() const { return medianOk && spreadOk && worstOk; }
        // "ok", or what broke the budget, e.g. "median 9.10 > 8.30; 2 frames > 50 ms".
        std::string describe(const Budget& budget) const;
    };

    // Where a frame's time went, in ms: the timeline's update (a scene's loading included), the drawing calls
    // (the renderer's shader compiles included), and the swap with the wait for the renderer to finish.
    struct Split {
        double update;
        double draw;
        double present;
    };

    // Frames come in the order they were drawn, at the timeline's clock after their update.
    void addFrame(double sceneSeconds, double milliseconds, const Split& split = Split{});
    void addBaseline(double milliseconds) { baseline.add(milliseconds); }
    size_t getFrameCount() const { return frames.size(); }
    const FrameStats& getBaseline() const { return baseline; }

    // One kind per frame. A scene starts on the first frame at or after its start; a fade covers the cut
    // when the scene starts strictly inside the fade's span (the cut lies at the fade's middle).
    std::vector<FrameKind> classify(const Schedule& schedule) const;
    // The frames whose scene time lies in the entry's closed span, as the timeline runs it.
    Verdict judge(const ScheduleEntry& entry, const std::vector<FrameKind>& kinds, const Budget& budget) const;
    FrameStats allFrames() const;

    // The table: per entry the median, p99 and max of its judged frames, the median over the empty frame's and
    // the verdict; then every scene start with its time and whether it is excused.
    void print(std::ostream& out, const Schedule& schedule, const std::string& renderer, int width, int height,
               int fps) const;
    // One row per frame: width, height, scene time, frame time, budget, kind, scenes running, the split.
    void writeCsv(std::ostream& out, const Schedule& schedule, int width, int height) const;
    static constexpr const char* CSV_HEADER =
        "width,height,time_s,frame_ms,budget_ms,kind,scenes,update_ms,draw_ms,present_ms";
    static const char* kindName(FrameKind kind);

private:
    struct TimedFrame {
        double time;
        double milliseconds;
        Split split;
    };

    void printStarts(std::ostream& out, const Schedule& schedule, const std::vector<FrameKind>& kinds,
                     const Budget& budget) const;

    std::vector<TimedFrame> frames;
    FrameStats baseline;
};
