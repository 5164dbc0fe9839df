// The real velmora program under an X server: keys other than Escape are ignored, Escape quits.
#include "ProgramProcess.h"

#include <gtest/gtest.h>
#include <cstdlib>

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
    EXPECT_EQ(program.exitStatus(), 1);
}
