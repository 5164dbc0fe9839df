// velmora-capture as a program: every scheduled scene draws, repeatable frames, video with sound,
// benchmark figures, runs with no X server, and clear failures for bad options and outputs.
#include "Capture.h"
#include "TestFiles.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

ProgramRun capture(const std::string& arguments, const std::string& environment = "")
{
    return runInBuildDir("./velmora-capture " + arguments, environment);
}

std::string describe(const ProgramRun& run)
{
    return "status " + std::to_string(run.status) + "\nstdout:\n" + run.out + "\nstderr:\n" + run.err;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

struct Entry {
    int number;
    double start;
    double end;
    std::string name;
};

std::vector<Entry> readSchedule()
{
    std::vector<Entry> entries;
    ProgramRun run = capture("--list");
    EXPECT_EQ(run.status, 0) << describe(run);
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

std::string probe(const std::string& file, const char* stream, const char* entries)
{
    return runInBuildDir(std::string("ffprobe -v error -count_frames -select_streams ") + stream +
                         " -show_entries stream=" + entries + " -of default=nw=1 '" + file + "'").out;
}

double probedNumber(const std::string& text, const std::string& key)
{
    size_t at = text.find(key + "=");
    return at == std::string::npos ? -1.0 : std::atof(text.c_str() + at + key.size() + 1);
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

}

TEST(CaptureNaming, FrameCountsAndFileNames)
{
    EXPECT_EQ(Capture::frameCount(0.0, 1.0, 10), 10u);
    EXPECT_EQ(Capture::frameCount(35.2, 36.2, 10), 10u);
    EXPECT_EQ(Capture::frameCount(0.0, 1.05, 10), 11u);
    EXPECT_EQ(Capture::frameCount(0.0, 0.01, 30), 1u);
    EXPECT_EQ(Capture::frameCount(5.0, 5.0, 30), 0u);
    EXPECT_EQ(Capture::frameCount(6.0, 5.0, 30), 0u);
    EXPECT_EQ(Capture::frameName(42), "frame-000042.png");
    EXPECT_EQ(Capture::shotName(35.5), "shot-35.500.png");
}

TEST_F(CaptureProgram, EveryScheduledEntryDrawsAtItsMiddleWithoutGLErrors)
{
    std::vector<Entry> entries = readSchedule();
    ASSERT_FALSE(entries.empty());
    std::string times;
    for (const Entry& entry : entries)
        times += (times.empty() ? "" : ",") + std::to_string((entry.start + entry.end) / 2.0);
    ProgramRun run = capture("--size 160x120 --fps 10 --shot-dir " + dir + " --shot " + times);
    ASSERT_EQ(run.status, 0) << describe(run);
    EXPECT_FALSE(contains(run.out + run.err, "OpenGL ERROR")) << describe(run);
    for (const Entry& entry : entries) {
        int width = 0, height = 0;
        std::vector<uint8_t> rgb;
        std::string still = dir + "/" + Capture::shotName((entry.start + entry.end) / 2.0);
        ASSERT_TRUE(readPng(still, width, height, rgb)) << still;
        EXPECT_EQ(width, 160);
        EXPECT_EQ(height, 120);
        // A fade is solid at its middle by design and may be the clear colour itself.
        if (entry.name == "Fader")
            continue;
        EXPECT_GT(coveredShare(rgb), 0.05) << "entry " << entry.number << " " << entry.name << " at "
                                           << (entry.start + entry.end) / 2.0 << " s draws nothing";
    }
}

TEST_F(CaptureProgram, OneSecondAtTenFpsGivesTenEqualFramesTwice)
{
    const std::string options = " --from 35.2 --to 36.2 --fps 10 --size 96x64";
    ProgramRun first = capture("--frames " + dir + "/a" + options);
    ASSERT_EQ(first.status, 0) << describe(first);
    ProgramRun second = capture("--frames " + dir + "/b" + options);
    ASSERT_EQ(second.status, 0) << describe(second);
    for (size_t k = 0; k < 10; ++k) {
        std::string name = Capture::frameName(k);
        int width = 0, height = 0;
        std::vector<uint8_t> rgb;
        ASSERT_TRUE(readPng(dir + "/a/" + name, width, height, rgb)) << name;
        EXPECT_EQ(width, 96);
        EXPECT_EQ(height, 64);
        std::string a = readWholeFile(dir + "/a/" + name);
        EXPECT_EQ(a, readWholeFile(dir + "/b/" + name)) << name << " differs between runs";
    }
    EXPECT_EQ(std::fopen((dir + "/a/" + Capture::frameName(10)).c_str(), "rb"), nullptr);
}

TEST_F(CaptureProgram, FramesFromALaterStartMatchTheStillAtThatTime)
{
    // Stepping up to --from must leave the scenes where a still at that time finds them.
    ProgramRun frames = capture("--frames " + dir + " --from 35.3 --to 35.4 --fps 10 --size 64x48");
    ASSERT_EQ(frames.status, 0) << describe(frames);
    ProgramRun still = capture("--shot 35.3 --shot-dir " + dir + " --fps 10 --size 64x48");
    ASSERT_EQ(still.status, 0) << describe(still);
    std::string framePng = readWholeFile(dir + "/" + Capture::frameName(0));
    ASSERT_FALSE(framePng.empty());
    EXPECT_EQ(framePng, readWholeFile(dir + "/" + Capture::shotName(35.3)));
}

TEST_F(CaptureProgram, FiveSecondVideoHasTheFramesAndASoundtrackOfTheSameLength)
{
    std::string file = dir + "/clip.mp4";
    ProgramRun run = capture("--video " + file + " --from 33 --to 38 --fps 10 --size 160x120");
    ASSERT_EQ(run.status, 0) << describe(run);
    std::string video = probe(file, "v:0", "width,height,nb_read_frames,duration");
    EXPECT_EQ(probedNumber(video, "width"), 160) << video;
    EXPECT_EQ(probedNumber(video, "height"), 120) << video;
    EXPECT_EQ(probedNumber(video, "nb_read_frames"), 50) << video;
    std::string audio = probe(file, "a:0", "codec_type,duration");
    ASSERT_TRUE(contains(audio, "codec_type=audio")) << audio;
    EXPECT_NEAR(probedNumber(audio, "duration"), 5.0, 0.05) << audio;
}

TEST_F(CaptureProgram, BenchPrintsEveryEntryAndTheEmptyFrameBaseline)
{
    ProgramRun run = capture("--bench --from 35 --to 36 --fps 4 --size 160x120");
    ASSERT_EQ(run.status, 0) << describe(run);
    EXPECT_TRUE(contains(run.out, "renderer: ")) << run.out;
    EXPECT_TRUE(contains(run.out, "size: 160x120")) << run.out;
    std::vector<Entry> entries = readSchedule();
    std::istringstream lines(run.out);
    std::string line;
    size_t rows = 0;
    bool baseline = false;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        int number = 0;
        std::string name, to, unit;
        double start = 0.0, end = 0.0;
        int frames = -1;
        if (contains(line, "empty frame (clear and swap)")) {
            baseline = contains(line, " 200 ");
            continue;
        }
        if (!(words >> number >> name) || number < 1 || static_cast<size_t>(number) > entries.size())
            continue;
        ++rows;
        EXPECT_EQ(name, entries[number - 1].name) << line;
        // Four frames of the run (35, 35.25, 35.5, 35.75) lie in the first white fade.
        if (entries[number - 1].start == 35.0 && entries[number - 1].end == 36.0) {
            words >> start >> to >> end >> unit >> frames;
            EXPECT_EQ(frames, 4) << line;
        }
    }
    EXPECT_EQ(rows, entries.size()) << run.out;
    EXPECT_TRUE(baseline) << run.out;
}

TEST_F(CaptureProgram, RunsWithNoXServer)
{
    ProgramRun run = capture("--shot 35.5 --shot-dir " + dir + " --size 32x32", "env -u DISPLAY -u WAYLAND_DISPLAY");
    ASSERT_EQ(run.status, 0) << describe(run);
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    ASSERT_TRUE(readPng(dir + "/" + Capture::shotName(35.5), width, height, rgb));
    // The white fade is full at its middle.
    EXPECT_EQ(rgb[0], 255);
    EXPECT_EQ(rgb[rgb.size() - 1], 255);
}

TEST_F(CaptureProgram, BadOptionsStopBeforeAnyWindowWithUsage)
{
    ProgramRun unknown = capture("--frames " + dir + " --speed 2");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(contains(unknown.err, "unknown option '--speed'")) << unknown.err;
    EXPECT_TRUE(contains(unknown.err, "usage: velmora-capture")) << unknown.err;
    ProgramRun size = capture("--bench --size 640by480");
    EXPECT_EQ(size.status, 2);
    EXPECT_TRUE(contains(size.err, "--size expects WIDTHxHEIGHT")) << size.err;
    ProgramRun nothing = capture("--fps 10");
    EXPECT_EQ(nothing.status, 2);
    EXPECT_TRUE(contains(nothing.err, "nothing to do")) << nothing.err;
    ProgramRun help = capture("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(contains(help.out, "--video FILE")) << help.out;
}

TEST_F(CaptureProgram, UnwritableOutputsAreNamed)
{
    ProgramRun frames = capture("--frames /nonexistent-dir/frames --to 1");
    EXPECT_EQ(frames.status, 1);
    EXPECT_TRUE(contains(frames.err, "cannot create the directory /nonexistent-dir/frames")) << frames.err;

    std::string plain = dir + "/plain";
    std::fclose(std::fopen(plain.c_str(), "w"));
    ProgramRun notDir = capture("--shot 1 --shot-dir " + plain);
    EXPECT_EQ(notDir.status, 1);
    EXPECT_TRUE(contains(notDir.err, "is not a directory")) << notDir.err;

    ProgramRun video = capture("--video /nonexistent-dir/clip.mp4 --to 1");
    EXPECT_EQ(video.status, 1);
    EXPECT_TRUE(contains(video.err, "cannot write /nonexistent-dir/clip.mp4")) << video.err;
    EXPECT_FALSE(contains(video.err, "ffmpeg failed")) << "checked before any frame is drawn";
}

TEST_F(CaptureProgram, MissingFfmpegIsReportedAndNothingIsWritten)
{
    std::string file = dir + "/clip.mp4";
    ProgramRun run = capture("--video " + file + " --to 1", "env PATH=/nonexistent-dir");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "ffmpeg was not found on PATH")) << run.err;
    EXPECT_EQ(std::fopen(file.c_str(), "rb"), nullptr);
}

TEST_F(CaptureProgram, StartPastTheScheduleIsRefused)
{
    ProgramRun run = capture("--frames " + dir + " --from 5000 --size 32x32");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(contains(run.err, "nothing to draw")) << run.err;
}
