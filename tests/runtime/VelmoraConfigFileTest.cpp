// The real velmora program started with good and damaged velmora.cfg files: it opens the window it could read, runs on and ends cleanly.
#include "ProgramProcess.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <vector>

namespace {

const std::string header = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";

// Bytes of every value, NUL and newline included, the same on every run.
std::string garbage(size_t size)
{
    std::string bytes;
    for (unsigned state = 12345u; bytes.size() < size;) {
        state = state * 1103515245u + 12345u;
        bytes += static_cast<char>(state >> 16);
    }
    return bytes;
}

struct ConfigCase {
    const char* label;
    bool present;
    std::string content;
    const char* window;
};

std::vector<ConfigCase> cases()
{
    std::string tenKilobytes(10 * 1024, 'x');
    return {
        {"Plain", true, header + "Fullscreen = no\nWidth = 800\nHeight = 600\nSound = no\n", "800x600"},
        {"Missing", false, "", "640x480"},
        {"Empty", true, "", "640x480"},
        {"HeaderOnly", true, header, "640x480"},
        // Reading stops at the record too long to hold: what came before it stays. (Carriage returns and long
        // names are the settings reader's own tests.)
        {"TenKilobyteValue", true, header + "Width = 800\nSong = " + tenKilobytes + "\nHeight = 600\n", "800x480"},
        {"BinaryGarbage", true, garbage(4096), "640x480"},
        {"GarbageAfterRecords", true, header + "Width = 720\n" + garbage(4096), "720x480"},
    };
}

class ConfigFileRun : public ::testing::TestWithParam<ConfigCase> {};

}  // namespace

TEST_P(ConfigFileRun, OpensTheWindowItCouldReadAndRunsOn)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    const ConfigCase& config = GetParam();
    ProgramProcess program;
    if (config.present)
        program.writeConfig(config.content);
    EXPECT_EQ(program.startAndFindWindow(), config.window) << program.output();
    ProgramProcess::sleepMillis(2000);
    ASSERT_TRUE(program.running()) << "velmora ended on its own: " << program.output();
    // SIGTERM is a normal end, and run's true comes back as exit status 1: kept inverted.
    EXPECT_EQ(program.terminate(), 1) << program.output();
    EXPECT_EQ(program.output().find("ERROR!"), std::string::npos) << program.output();
}

INSTANTIATE_TEST_SUITE_P(DamagedConfig, ConfigFileRun, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<ConfigCase>& info) {
                             return std::string(info.param.label);
                         });
