// The command line: malformed and out-of-range values, contradictions, each refusal naming its option.
#include "CaptureOptions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Parses the words after the program name; `error` keeps the reason.
bool parse(CaptureOptions& options, std::vector<const char*> words, std::string& error)
{
    words.insert(words.begin(), "velmora-capture");
    return options.parse(static_cast<int>(words.size()), words.data(), error);
}

}  // namespace

TEST(CaptureOptions, EveryBadFormNamesItsOptionAndTheBenchWithCsvAndMemoryIsAccepted)
{
    const std::vector<std::pair<std::vector<const char*>, const char*>> cases = {
        {{"--fast"}, "unknown option '--fast'"},
        {{"frames"}, "unknown option 'frames'"},
        {{"-s", "640x480"}, "unknown option '-s'"},
        {{"--bench=yes"}, "takes no value"},
        {{"--size"}, "--size needs a value"},
        {{"--bench", "--to"}, "--to needs a value"},
        {{"--frames="}, "non-empty"},
        {{"--shot", "1,,2"}, "--shot"},
        {{"--shot", "1,"}, "--shot"},
        {{"--shot", "-0.5"}, "--shot"},
        {{"--from", "10", "--to", "10", "--bench"}, "--to must lie after --from"},
        {{"--from", "10", "--to", "5", "--bench"}, "--to must lie after --from"},
        {{"--bench", "--frames", "out"}, "--bench writes no pictures"},
        {{"--bench", "--shot", "3"}, "--bench writes no pictures"},
        {{"--shot", "3", "--video", "a.mp4"}, "--shot cannot be combined"},
        {{"--list", "--frames", "out"}, "--list prints the schedule only"},
        {{"--video", "a.mp4", "--size", "321x240"}, "even"},
        {{"--sheet", "s.png", "--video", "a.mp4"}, "--sheet makes one picture only"},
        {{"--sheet", "s.png", "--shot", "3"}, "--sheet makes one picture only"},
        {{"--sheet", "s.png", "--list"}, "--sheet makes one picture only"},
        {{"--sheet", "s.png", "--to", "30"}, "--sheet covers the whole schedule"},
        {{"--sheet", "s.png", "--from", "3"}, "--sheet covers the whole schedule"},
        {{"--sheet="}, "non-empty"},
        {{"--csv", "b.csv", "--to", "3"}, "--csv writes the frame times of --bench"},
        {{"--bench", "--csv="}, "non-empty"},
        {{"--memory=5", "--shot", "3"}, "--shot"},
        {{"--memory=5", "--list"}, "--list"},
    };
    std::vector<std::pair<std::vector<const char*>, const char*>> all = cases;
    for (const char* size : {"640", "640x", "640X480", "640x480x2", "6a0x480", " 640x480", "+640x480", "0x480",
                             "-640x480", "8193x100", "99999999999x1"})
        all.push_back({{"--size", size}, "--size"});
    for (const char* rate : {"0", "-5", "1001", "2.5", "ten", "", "30fps"})
        all.push_back({{"--fps", rate}, "--fps"});
    for (const char* time : {"-1", "86400.5", "nan", "inf", "0x10", "1s", "", " 5"})
        all.push_back({{"--from", time}, "--from"});
    for (const char* every : {"0", "-1", "abc", "1e9", ""})
        all.push_back({{"--memory", every}, "--memory"});
    for (const auto& [words, mentions] : all) {
        SCOPED_TRACE(std::string(words[0]) + (words.size() > 1 ? std::string(" ") + words[1] : ""));
        CaptureOptions options;
        std::string error;
        EXPECT_FALSE(parse(options, words, error));
        EXPECT_NE(error.find(mentions), std::string::npos) << "error was: " << error;
    }
    CaptureOptions options;
    std::string error;
    ASSERT_TRUE(parse(options, {"--bench", "--csv", "bench.csv", "--memory", "120", "--to", "1800"}, error)) << error;
    EXPECT_TRUE(options.bench);
    EXPECT_EQ(options.csvFile, "bench.csv");
    EXPECT_EQ(options.memoryEvery, 120.0);
    EXPECT_TRUE(options.rendersRange());
    EXPECT_TRUE(options.hasWork());
}
