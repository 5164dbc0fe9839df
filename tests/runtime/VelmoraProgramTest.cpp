// The real velmora program: keys other than Escape are ignored, Escape quits, full screen covers the
// screen, and with no display it stops at once and says how to watch instead.
#include "ProgramProcess.h"
#include "runtime/Velmora.h"

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

TEST(VelmoraProgram, FullScreenCoversTheScreenAtTheDesktopSize)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ProgramProcess program;
    program.writeConfig("Settings Registry v0.1\n-\nFullscreen = yes\nWidth = 640\nHeight = 480\nSound = no\n");
    std::string screen = ProgramProcess::capture("xdotool getdisplaygeometry");
    screen = screen.substr(0, screen.find('\n'));
    screen.replace(screen.find(' '), 1, "x");
    EXPECT_EQ(program.startAndFindWindow(), screen) << program.output();
    const std::string where = ProgramProcess::capture("xdotool getwindowgeometry --shell " + program.windowId());
    EXPECT_NE(where.find("X=0\nY=0\n"), std::string::npos) << where;
    EXPECT_EQ(program.terminate(), 1) << program.output();
}

TEST(VelmoraProgram, WithoutADisplayItStopsAtOnceWithTheDisplayFailureThenTheVideoHint)
{
    ProgramProcess program;
    program.startWithoutDisplay();
    // Long enough for a loaded machine; SDL's fallback used to run unseen until killed.
    ASSERT_TRUE(program.ended(10.0)) << "velmora kept running with no display: " << program.output();
    // A display failure ends with status 0: kept inverted.
    EXPECT_EQ(program.exitStatus(), 0);
    const std::string output = program.output();
    const std::string failure = std::string("ERROR! Couldn't init SDL: ") + ApplicationSDL::NO_DISPLAY_REASON + "\n";
    const size_t at = output.find(failure);
    ASSERT_NE(at, std::string::npos) << output;
    EXPECT_EQ(output.substr(at + failure.size()), std::string(Velmora::NO_DISPLAY_HINT) + "\n");
}
