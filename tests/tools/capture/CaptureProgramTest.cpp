// velmora-capture as a program: every scheduled scene draws and moves, repeatable frames, video with sound that
// an interruption leaves no trace of, the contact sheet, benchmark figures, runs with no X server, and
// clear failures for bad options and outputs.
#include "BenchReport.h"
#include "Capture.h"
#include "ContactSheet.h"
#include "TestFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

ProgramRun capture(const std::string& arguments, const std::string& environment = "")
{
    return runInBuildDir("./velmora-capture " + arguments, environment);
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

struct Entry {
    int number;
    double start, end;
    std::string name;
};

std::vector<Entry> readSchedule()
{
    std::vector<Entry> entries;
    ProgramRun run = capture("--list");
    EXPECT_EQ(run.status, 0) << (run.out + run.err);
    // Scenes may print their own messages while the schedule is built: skip those lines.
    std::istringstream lines(run.out);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        Entry entry;
        int layer = 0;
        if (fields >> entry.number >> entry.start >> entry.end >> layer >> entry.name)
            entries.push_back(entry);
    }
    return entries;
}

// Share of pixels that are not the clear colour (black).
double coveredShare(const std::vector<uint8_t>& rgb)
{
    size_t lit = 0;
    for (size_t i = 0; i + 2 < rgb.size(); i += 3)
        lit += (rgb[i] | rgb[i + 1] | rgb[i + 2]) != 0;
    return rgb.empty() ? 0.0 : static_cast<double>(lit) / static_cast<double>(rgb.size() / 3);
}

std::string probedText(const std::string& file, const char* stream, const std::string& key)
{
    const std::string text = runInBuildDir(std::string("ffprobe -v error -count_frames -select_streams ") + stream +
                                           " -show_entries stream=" + key + " -of default=nw=1 '" + file + "'")
                                 .out;
    const size_t at = text.find(key + "=");
    return at == std::string::npos ? "" : text.substr(at + key.size() + 1, text.find('\n', at) - at - key.size() - 1);
}

double probed(const std::string& file, const char* stream, const std::string& key)
{
    const std::string text = probedText(file, stream, key);
    return text.empty() ? -1.0 : std::atof(text.c_str());
}

bool exists(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

// The part of a packed RGB picture `width` pixels wide inside the rectangle.
std::vector<uint8_t> region(const std::vector<uint8_t>& rgb, int width, int x, int y, int w, int h)
{
    std::vector<uint8_t> part;
    for (int row = y; row < y + h; ++row) {
        const auto begin = rgb.begin() + (static_cast<size_t>(row) * width + x) * 3;
        part.insert(part.end(), begin, begin + static_cast<size_t>(w) * 3);
    }
    return part;
}

class CaptureProgram : public ::testing::Test {
protected:
    std::string dir;
    void SetUp() override
    {
        dir = makeTemporaryDir();
        ASSERT_FALSE(dir.empty());
    }
    void TearDown() override { removeTree(dir); }
};

}  // namespace

TEST_F(CaptureProgram, EveryScenesConsecutiveFramesDiffer)
{
    // Four frames a second through every scene: something in view moves between any two of them.
    // The fades are overlays and may hold still; a scene joins this check when it joins the schedule.
    const int fps = 4;
    for (const Entry& entry : readSchedule()) {
        if (entry.name == "Fader")
            continue;
        SCOPED_TRACE(std::to_string(entry.number) + " " + entry.name);
        const std::string frames = dir + "/" + std::to_string(entry.number);
        ProgramRun run = capture("--frames " + frames + " --size 64x48 --fps " + std::to_string(fps) + " --from " +
                                 std::to_string(entry.start) + " --to " + std::to_string(entry.end));
        ASSERT_EQ(run.status, 0) << (run.out + run.err);
        const size_t count = Capture::frameCount(entry.start, entry.end, fps);
        std::string previous = readWholeFile(frames + "/" + Capture::frameName(0));
        for (size_t k = 1; k < count; ++k) {
            const std::string next = readWholeFile(frames + "/" + Capture::frameName(k));
            ASSERT_FALSE(next.empty()) << k;
            EXPECT_NE(next, previous) << "frames " << k - 1 << " and " << k << " at "
                                      << entry.start + static_cast<double>(k) / fps << " s are the same";
            previous = next;
        }
        removeTree(frames);
    }
}

TEST_F(CaptureProgram, OneSecondAtTenFpsGivesTenEqualFramesTwice)
{
    const std::string options = " --from 35.2 --to 36.2 --fps 10 --size 96x64";
    ProgramRun first = capture("--frames " + dir + "/a" + options);
    ASSERT_EQ(first.status, 0) << (first.out + first.err);
    ProgramRun second = capture("--frames " + dir + "/b" + options);
    ASSERT_EQ(second.status, 0) << (second.out + second.err);
    for (size_t k = 0; k < 10; ++k) {
        const std::string name = Capture::frameName(k);
        int width = 0, height = 0;
        std::vector<uint8_t> rgb;
        ASSERT_TRUE(readPng(dir + "/a/" + name, width, height, rgb)) << name;
        EXPECT_EQ(width, 96);
        EXPECT_EQ(height, 64);
        EXPECT_EQ(readWholeFile(dir + "/a/" + name), readWholeFile(dir + "/b/" + name)) << name << " differs";
    }
    EXPECT_EQ(std::fopen((dir + "/a/" + Capture::frameName(10)).c_str(), "rb"), nullptr);
}

TEST_F(CaptureProgram, FiveSecondVideoHasTheFramesAndASoundtrackOfTheSameLength)
{
    const std::string file = dir + "/clip.mp4";
    ProgramRun run = capture("--video " + file + " --from 33 --to 38 --fps 10 --size 160x120");
    ASSERT_EQ(run.status, 0) << (run.out + run.err);
    EXPECT_EQ(probed(file, "v:0", "width"), 160);
    EXPECT_EQ(probed(file, "v:0", "height"), 120);
    EXPECT_EQ(probed(file, "v:0", "nb_read_frames"), 50);
    EXPECT_NEAR(probed(file, "a:0", "duration"), 5.0, 0.05);
    // What browsers and phones play: H.264 in 4:2:0, AAC, the index ahead of the media.
    EXPECT_EQ(probedText(file, "v:0", "codec_name"), "h264");
    EXPECT_EQ(probedText(file, "v:0", "pix_fmt"), "yuv420p");
    EXPECT_EQ(probedText(file, "v:0", "r_frame_rate"), "10/1");
    EXPECT_EQ(probedText(file, "a:0", "codec_name"), "aac");
    const std::string bytes = readWholeFile(file);
    EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
    EXPECT_FALSE(exists(Capture::partialName(file)));
}

TEST(CaptureNames, APartialVideoKeepsItsExtensionLast)
{
    EXPECT_EQ(Capture::partialName("/tmp/a.b/clip.mkv"), "/tmp/a.b/clip.part.mkv");
    EXPECT_EQ(Capture::partialName("/tmp/a.b/clip"), "/tmp/a.b/clip.part");
    EXPECT_EQ(Capture::partialName(".hidden"), ".hidden.part");
}

TEST_F(CaptureProgram, AnInterruptedVideoLeavesNoFileUnderEitherName)
{
    const std::string file = dir + "/demo.mp4";
    const std::string partial = Capture::partialName(file);
    const std::string log = dir + "/log.txt";
    const pid_t child = fork();
    if (child == 0) {
        const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out < 0 || chdir(VELMORA_BINARY_DIR) != 0 || dup2(out, 1) < 0 || dup2(out, 2) < 0)
            _exit(120);
        execl("./velmora-capture", "velmora-capture", "--video", file.c_str(), "--size", "64x48", "--fps", "30",
              static_cast<char*>(nullptr));
        _exit(121);
    }
    ASSERT_GT(child, 0);
    // Ctrl-C once the encoder is writing: a whole run takes far longer than the wait for its first frames.
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (!exists(partial) && std::chrono::steady_clock::now() < giveUp && waitpid(child, nullptr, WNOHANG) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const bool writing = exists(partial);
    kill(child, SIGINT);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(writing) << readWholeFile(log);
    ASSERT_TRUE(WIFEXITED(status)) << readWholeFile(log);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_TRUE(contains(readWholeFile(log), "velmora-capture: interrupted")) << readWholeFile(log);
    EXPECT_FALSE(exists(file));
    EXPECT_FALSE(exists(partial));
}

TEST_F(CaptureProgram, SheetHasALabelledStillOfEveryEntryInScheduleOrder)
{
    const std::vector<Entry> entries = readSchedule();
    ASSERT_FALSE(entries.empty());
    const std::string file = dir + "/sheet.png";
    const int w = 64, h = 48, label = ContactSheet::labelHeightFor(h);
    // Values come in both spellings: "--option value" and "--option=value".
    ProgramRun run = capture("--sheet=" + file + " --size=64x48 --fps 5");
    ASSERT_EQ(run.status, 0) << (run.out + run.err);
    EXPECT_FALSE(contains(run.out + run.err, "OpenGL ERROR")) << (run.out + run.err);
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    ASSERT_TRUE(readPng(file, width, height, rgb));
    const ContactSheet layout(w, h, label, entries.size());
    ASSERT_EQ(width, layout.getPicture().getWidth());
    ASSERT_EQ(height, layout.getPicture().getHeight());
    for (size_t i = 0; i < entries.size(); ++i) {
        SCOPED_TRACE("entry " + std::to_string(entries[i].number) + " " + entries[i].name);
        const int x = ContactSheet::GAP + static_cast<int>(i % ContactSheet::COLUMNS) * (w + ContactSheet::GAP);
        const int y = ContactSheet::GAP + static_cast<int>(i / ContactSheet::COLUMNS) * (h + label + ContactSheet::GAP);
        // A scene's still is its middle; a fade's, three quarters in, may cover nothing but the clear colour.
        if (entries[i].name != "Fader") {
            EXPECT_GT(coveredShare(region(rgb, width, x, y, w, h)), 0.05);
        }
        // White text on the grey strip.
        size_t text = 0;
        for (uint8_t value : region(rgb, width, x, y + h, w, label))
            text += value > 200;
        EXPECT_GT(text, 10u);
    }
}

TEST_F(CaptureProgram, BenchJudgesEveryEntryBesideTheEmptyFrameAndWritesItsFrames)
{
    const std::string csv = dir + "/bench.csv";
    ProgramRun run = capture("--bench --from 35 --to 36 --fps 4 --size 160x120 --csv " + csv);
    ASSERT_EQ(run.status, 0) << (run.out + run.err);
    EXPECT_TRUE(contains(run.out, "renderer: ")) << run.out;
    EXPECT_TRUE(contains(run.out, "empty frame (clear and swap)")) << run.out;
    EXPECT_TRUE(contains(run.out, "verdict: ")) << run.out;
    EXPECT_TRUE(contains(run.out, "start-up: ")) << run.out;
    EXPECT_TRUE(contains(run.out, "peak resident memory of the run: ")) << run.out;
    for (const Entry& entry : readSchedule())
        EXPECT_TRUE(contains(run.out, std::to_string(entry.number) + " " + entry.name)) << run.out;
    // Four frames: the run's first, then Islands starting under the white fade at 35.5 s.
    const std::string rows = readWholeFile(csv);
    EXPECT_EQ(rows.compare(0, std::string(BenchReport::CSV_HEADER).size(), BenchReport::CSV_HEADER), 0) << rows;
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 5) << rows;
    EXPECT_TRUE(contains(rows, "160,120,35.0000,")) << rows;
    EXPECT_TRUE(contains(rows, ",8.3,run-start,Credit,")) << rows;
    EXPECT_TRUE(contains(rows, ",covered-start,Islands,")) << rows;
}

TEST_F(CaptureProgram, RunsWithNoXServer)
{
    ProgramRun run =
        capture("--shot 35.5,100 --shot-dir " + dir + " --size 32x32", "env -u DISPLAY -u WAYLAND_DISPLAY");
    ASSERT_EQ(run.status, 0) << (run.out + run.err);
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    ASSERT_TRUE(readPng(dir + "/" + Capture::shotName(100), width, height, rgb));
    ASSERT_TRUE(readPng(dir + "/" + Capture::shotName(35.5), width, height, rgb));
    EXPECT_EQ(width * 100 + height, 3232);
    // The white fade is full at its middle.
    EXPECT_EQ(rgb[0], 255);
    EXPECT_EQ(rgb[rgb.size() - 1], 255);
}

TEST_F(CaptureProgram, BadOptionsAndUnusableOutputsStopWithTheirMessage)
{
    std::fclose(std::fopen((dir + "/plain").c_str(), "w"));
    const struct {
        std::string arguments, environment;
        int status;
        const char* message;
    } cases[] = {
        {"--frames " + dir + " --speed 2", "", 2, "usage: velmora-capture"},
        {"--frames /nonexistent-dir/frames --to 1", "", 1, "cannot create the directory /nonexistent-dir/frames"},
        {"--shot 1 --shot-dir " + dir + "/plain", "", 1, "is not a directory"},
        {"--video /nonexistent-dir/clip.mp4 --to 1", "", 1, "cannot write /nonexistent-dir/clip.mp4"},
        {"--video " + dir + "/clip.mp4 --to 1", "env PATH=/nonexistent-dir", 1, "ffmpeg was not found on PATH"},
        {"--frames " + dir + " --from 5000 --size 32x32", "", 1, "nothing to draw"},
    };
    for (const auto& c : cases) {
        ProgramRun run = capture(c.arguments, c.environment);
        EXPECT_EQ(run.status, c.status) << c.arguments << "\n" << run.err;
        EXPECT_TRUE(contains(run.err, c.message)) << c.arguments << "\n" << run.err;
        // Outputs are checked before any frame is drawn.
        EXPECT_FALSE(contains(run.err, "ffmpeg failed")) << c.arguments;
    }
    EXPECT_EQ(std::fopen((dir + "/clip.mp4").c_str(), "rb"), nullptr);
}
