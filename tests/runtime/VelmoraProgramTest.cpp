// The real velmora program under an X server: its configured window, a clean end on SIGTERM, and Escape.
#include "ProgramProcess.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <sys/wait.h>

TEST(VelmoraProgram, ConfiguredSizeAndCleanQuitOnSigterm)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ProgramProcess program;
    program.writeConfig("Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n"
                        "Fullscreen = no\nWidth = 800\nHeight = 600\nSound = no\n");
    EXPECT_EQ(program.startAndFindWindow(), "800x600") << program.output();
    ProgramProcess::sleepMillis(2000);
    ASSERT_TRUE(program.running()) << "velmora ended on its own: " << program.output();
    // A normal end returns run's true as the exit status: kept inverted.
    EXPECT_EQ(program.terminate(), 1);
    EXPECT_EQ(program.output().find("ERROR!"), std::string::npos) << program.output();
}

TEST(VelmoraProgram, OtherKeysAreIgnoredAndEscapeQuitsWithStatusOne)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ProgramProcess program;
    ASSERT_EQ(program.startAndFindWindow(), "640x480") << program.output();
    const std::string id = program.windowId();
    ProgramProcess::capture("xdotool windowfocus --sync " + id + " key --window " + id + " space q Return 2>&1");
    ProgramProcess::sleepMillis(500);
    ASSERT_TRUE(program.running()) << "a key other than Escape ended velmora: " << program.output();
    for (int i = 0; i < 80 && program.running(); ++i) {
        ProgramProcess::capture("xdotool key --window " + id + " Escape 2>&1");
        ProgramProcess::sleepMillis(250);
    }
    ASSERT_TRUE(program.ended(20.0)) << "Escape did not end velmora";
    ASSERT_TRUE(WIFEXITED(program.status));
    EXPECT_EQ(WEXITSTATUS(program.status), 1);
}
