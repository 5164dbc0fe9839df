// The command line: accepted forms, defaults, malformed and out-of-range values, contradictions.
#include "CaptureOptions.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

// Parses the words after the program name; `error` keeps the reason.
bool parse(CaptureOptions& options, std::initializer_list<const char*> words, std::string& error)
{
    std::vector<const char*> argv = {"velmora-capture"};
    argv.insert(argv.end(), words.begin(), words.end());
    return options.parse(static_cast<int>(argv.size()), argv.data(), error);
}

void expectRefused(std::initializer_list<const char*> words, const std::string& mentions)
{
    CaptureOptions options;
    std::string error;
    EXPECT_FALSE(parse(options, words, error)) << *words.begin();
    EXPECT_NE(error.find(mentions), std::string::npos) << "error was: " << error;
}

}

TEST(CaptureOptionsAccepted, DefaultsAskForNothing)
{
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {}, error));
    EXPECT_FALSE(options.hasWork());
    EXPECT_FALSE(options.hasSize);
    EXPECT_EQ(options.fps, 30);
    EXPECT_EQ(options.from, 0.0);
    EXPECT_FALSE(options.hasTo);
    EXPECT_EQ(options.shotDir, ".");
}

TEST(CaptureOptionsAccepted, EveryRangeOptionInBothSpellings)
{
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {"--size", "320x200", "--fps=12", "--from", "1.5", "--to=2.25",
                                "--frames", "out", "--video=a.mp4"}, error)) << error;
    EXPECT_TRUE(options.hasSize);
    EXPECT_EQ(options.width, 320);
    EXPECT_EQ(options.height, 200);
    EXPECT_EQ(options.fps, 12);
    EXPECT_EQ(options.from, 1.5);
    EXPECT_EQ(options.to, 2.25);
    EXPECT_EQ(options.framesDir, "out");
    EXPECT_EQ(options.videoFile, "a.mp4");
    EXPECT_TRUE(options.rendersRange());
}

TEST(CaptureOptionsAccepted, ShotListKeepsItsOrderAndRepeatsAdd)
{
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {"--shot", "40,0,12.5", "--shot=3", "--shot-dir", "stills"}, error)) << error;
    EXPECT_EQ(options.shots, (std::vector<double>{40.0, 0.0, 12.5, 3.0}));
    EXPECT_EQ(options.shotDir, "stills");
    EXPECT_TRUE(options.hasWork());
    EXPECT_FALSE(options.rendersRange());
}

TEST(CaptureOptionsAccepted, SizeAndRateBoundaries)
{
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {"--size", "1x8192", "--fps", "1000", "--bench"}, error)) << error;
    EXPECT_EQ(options.width, 1);
    EXPECT_EQ(options.height, 8192);
    EXPECT_EQ(options.fps, 1000);
    ASSERT_TRUE(parse(options, {"--fps", "1", "--to", "86400"}, error)) << error;
}

TEST(CaptureOptionsAccepted, HelpAndListTakeNoValue)
{
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {"--help"}, error));
    EXPECT_TRUE(options.help);
    EXPECT_FALSE(options.hasWork());
    ASSERT_TRUE(parse(options, {"--list"}, error));
    EXPECT_TRUE(options.hasWork());
    expectRefused({"--bench=yes"}, "takes no value");
}

TEST(CaptureOptionsRefused, UnknownOptionsAndStrayWords)
{
    expectRefused({"--fast"}, "unknown option '--fast'");
    expectRefused({"frames"}, "unknown option 'frames'");
    expectRefused({"-s", "640x480"}, "unknown option '-s'");
}

TEST(CaptureOptionsRefused, MissingValues)
{
    expectRefused({"--size"}, "--size needs a value");
    expectRefused({"--bench", "--to"}, "--to needs a value");
    expectRefused({"--frames="}, "non-empty");
}

TEST(CaptureOptionsRefused, MalformedSizes)
{
    for (const char* size : {"640", "640x", "x480", "640X480", "640x480x2", "6a0x480", " 640x480", "640 x480",
                             "+640x480", "640x 480", "0x480", "640x0", "-640x480", "8193x100", "99999999999x1"})
        expectRefused({"--size", size}, "--size");
}

TEST(CaptureOptionsRefused, RatesOutOfRangeOrNotWhole)
{
    for (const char* rate : {"0", "-5", "1001", "2.5", "ten", "", "30fps"})
        expectRefused({"--fps", rate}, "--fps");
}

TEST(CaptureOptionsRefused, TimesNegativeHugeOrNotNumbers)
{
    for (const char* time : {"-1", "86400.5", "1e9", "nan", "inf", "0x10", "1s", "", " 5", "+5"})
        expectRefused({"--from", time}, "--from");
    expectRefused({"--shot", "1,,2"}, "--shot");
    expectRefused({"--shot", "1,"}, "--shot");
    expectRefused({"--shot", "-0.5"}, "--shot");
}

TEST(CaptureOptionsRefused, EmptyOrBackwardRange)
{
    expectRefused({"--from", "10", "--to", "10", "--bench"}, "--to must lie after --from");
    expectRefused({"--from", "10", "--to", "5", "--bench"}, "--to must lie after --from");
}

TEST(CaptureOptionsRefused, ContradictoryOutputs)
{
    expectRefused({"--bench", "--frames", "out"}, "--bench writes no files");
    expectRefused({"--bench", "--shot", "3"}, "--bench writes no files");
    expectRefused({"--shot", "3", "--video", "a.mp4"}, "--shot cannot be combined");
    expectRefused({"--list", "--frames", "out"}, "--list prints the schedule only");
}

TEST(CaptureOptionsRefused, OddVideoSizeThatTheEncoderCannotTake)
{
    expectRefused({"--video", "a.mp4", "--size", "321x240"}, "even");
    CaptureOptions options;
    std::string error;
    EXPECT_TRUE(parse(options, {"--frames", "out", "--size", "321x241"}, error)) << error;
}
