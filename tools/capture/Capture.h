// The demo driven by a fixed-step clock: draws chosen frames offline into PNGs, a video or timings.
#pragma once

#include "BenchReport.h"
#include "CaptureOptions.h"
#include "ProgressBar.h"
#include "Schedule.h"
#include "runtime/Velmora.h"

#include <string>
#include <vector>

class Frame;
class FixedStepTimer;
class VideoEncoder;
class Fonter;

class Capture : public Velmora {
public:
    // The same seed every run, so that equal options give equal frames.
    static const unsigned SEED = 0x5eed;

    // Reads velmora.cfg like the demo (through Velmora); the options override it.
    explicit Capture(const CaptureOptions& options);

    // Does the work the options ask for; false with getError() set on failure.
    bool run(int argc, char** argv) override;
    const std::string& getError() const { return error; }

    // The pointer must not change what is drawn: no console toggling.
    void onMouseButton(int x, int y, int button) override;
    // The capture size holds, whatever the window system reports.
    void onResize(int width, int height) override;
    void onQuit() override;

    // Frames drawn for [from, to) at `fps`: times from + k / fps that lie before `to`.
    static size_t frameCount(double from, double to, int fps);
    // The file name of the still at `seconds`, e.g. "shot-35.500.png".
    static std::string shotName(double seconds);
    // The file name of frame `index` of a range, e.g. "frame-000042.png".
    static std::string frameName(size_t index);
    // Where a video is written until it is complete, beside its final name: "dir/velmora.part.mp4".
    static std::string partialName(const std::string& file);
    // A sheet still's label: entry number, scene and time, e.g. "6 Islands 52.00 s".
    static std::string sheetLabel(const ScheduleEntry& entry);
    // The TrueType font of the sheet's labels.
    static constexpr const char* LABEL_FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";

private:
    bool work();
    bool listSchedule();
    bool checkOutputs();
    bool renderRange();
    bool renderShots();
    bool renderSheet();
    bool runBaseline();
    // The most this process has held resident, the figure for a whole run's memory.
    void printPeakMemory() const;
    // The label strips of the sheet, drawn with the demo's font front end before any scene starts.
    bool drawLabels(int width, int height, std::vector<Frame>& labels);
    void drawLabel(Fonter& font, const std::string& text, int width, int height, Frame& label);
    // Renders the soundtrack into a temporary WAV (named in `audio`, empty for none) and
    // starts the encoder on it, writing the partial file.
    bool startVideo(VideoEncoder& encoder, double from, double seconds, std::string& audio);
    // Ends the encoding and gives the video its final name. On failure the partial file goes, and a file
    // already under the final name stays as it was.
    bool finishVideo(VideoEncoder& encoder, bool ok);

    // Clock steps: skipTo updates without drawing up to one frame short of `time`, stepTo
    // takes the last (possibly shortened) step so the scene clock lands on `time` exactly.
    void step(double seconds);
    void skipTo(double time);
    void stepTo(double time);
    double now() const;
    // The scene time and the scenes running, for the progress bar.
    std::string whereNow() const;

    // Draws the frame and reports any GL error the scenes left behind.
    void draw();
    bool keepRunning();
    bool fail(const std::string& message);

    CaptureOptions options;
    FixedStepTimer* clock;
    Schedule schedule;
    BenchReport report;
    ProgressBar progress;
    std::string error;
    bool quitDone;
    // Seconds from the process start until the first frame of the range was swapped to the window.
    double firstFrameShown;
};
