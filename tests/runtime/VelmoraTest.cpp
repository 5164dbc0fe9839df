// The demo driver: configuration, the fade schedule, the fixed GL state, keys and window resizing.
#include "runtime/Velmora.h"

#include "config/VariableMgr.h"
#include "runtime/EffectMgr.h"

#include <SDL/SDL.h>
#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

const char* const HEADER = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";

// The fades of the schedule: start, end, and whether they flash white.
struct Fade { float start, end; bool white; };
const Fade FADES[] = {{35.0f, 36.0f, true},    {68.0f, 69.0f, true},    {75.5f, 76.5f, false},
                      {108.5f, 109.5f, false}, {141.5f, 143.5f, false}, {150.0f, 151.0f, false},
                      {168.0f, 169.0f, true},  {199.5f, 203.5f, false}};

// An effect is updated in the frame that starts it, so its own clock runs one frame
// ahead of the scene clock: it leaves on the frame whose scene time reaches its end.
unsigned fadesCovering(float t)
{
    unsigned count = 0;
    for (const Fade& fade : FADES)
        count += fade.start <= t && t < fade.end;
    return count;
}

// Each test starts from an empty registry; the demo is built inside a directory of its own.
class Driver : public ::testing::Test {
protected:
    std::string dir;

    void SetUp() override
    {
        VariableMgr::getHandle()->shutdown();
        char pattern[] = "/tmp/velmora-driver-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }

    void TearDown() override
    {
        std::remove((dir + "/velmora.cfg").c_str());
        rmdir(dir.c_str());
        VariableMgr::getHandle()->shutdown();
    }

    void writeConfig(const std::string& text) { std::ofstream((dir + "/velmora.cfg").c_str()) << text; }

    // The constructor reads ./velmora.cfg, so it runs in the test's directory.
    Velmora* build()
    {
        char home[4096];
        if (!getcwd(home, sizeof home) || chdir(dir.c_str()) != 0)
            return nullptr;
        Velmora* demo = new Velmora();
        if (chdir(home) != 0)
            ADD_FAILURE() << "cannot return to " << home;
        return demo;
    }
};

// A demo whose window and frames the test drives by hand.
class OpenDemo : public Velmora {
public:
    using ApplicationSDL::handleEvents;

    bool open()
    {
        if (!setupGL())
            return false;
        onInit();
        onResize(getWidth(), getHeight());
        return true;
    }

    // Quarter-second frames: exact in binary.
    void advanceTo(float t)
    {
        while (getEffects()->getTimer().current < t)
            onUpdate(0.25f);
    }

    int centreRed()
    {
        unsigned char rgba[4];
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(getWidth() / 2, getHeight() / 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return rgba[0];
    }
};

}

TEST_F(Driver, NoFileGivesTheDefaults)
{
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    const AppInfo& info = demo->getInfo();
    EXPECT_TRUE(info.cursor);
    EXPECT_FALSE(info.fullscreen);
    EXPECT_EQ(info.width, 640);
    EXPECT_EQ(info.height, 480);
    EXPECT_EQ(info.bitsPerPixel, 24);
    EXPECT_EQ(info.depthBuffer, 16);
    EXPECT_FALSE(demo->isSoundEnabled());
    EXPECT_FALSE(demo->isShowingFPS());
    EXPECT_STREQ(demo->getTitle(), "Velmora Deep / Quorvex Co");
    EXPECT_EQ(demo->getEffects(), nullptr);
    delete demo;
}

TEST_F(Driver, KeysFillTheDisplayRequest)
{
    writeConfig(std::string(HEADER) + "Cursor = no\nFullscreen = YES\nWidth = 800\nHeight = 600\n"
                "BitsPerPixel = 16\nDepthBuffer = 24\nShowFPS = yes\nSound = Yes\n");
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    const AppInfo& info = demo->getInfo();
    EXPECT_FALSE(info.cursor);
    EXPECT_TRUE(info.fullscreen);
    EXPECT_EQ(info.width, 800);
    EXPECT_EQ(info.height, 600);
    EXPECT_EQ(info.bitsPerPixel, 16);
    EXPECT_EQ(info.depthBuffer, 24);
    EXPECT_EQ(info.stencilBuffer + info.extra, 0);
    EXPECT_TRUE(demo->isShowingFPS());
    EXPECT_TRUE(demo->isSoundEnabled());
    delete demo;
}

TEST_F(Driver, BadValuesAndRecordsFallBackToDefaults)
{
    // Only "yes" is true; a record without blanks around "=" ends the file.
    writeConfig(std::string(HEADER) + "Cursor = true\nShowFPS = 1\nWidth = 1024\nHeight=768\nSound = yes\n");
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    EXPECT_FALSE(demo->getInfo().cursor);
    EXPECT_FALSE(demo->isShowingFPS());
    EXPECT_EQ(demo->getInfo().width, 1024);
    EXPECT_EQ(demo->getInfo().height, 480);
    EXPECT_FALSE(demo->isSoundEnabled());
    delete demo;

    VariableMgr::getHandle()->shutdown();
    writeConfig("settings registry v0.1\nx\nWidth = 800\n");
    demo = build();
    ASSERT_NE(demo, nullptr);
    EXPECT_EQ(demo->getInfo().width, 640);
    delete demo;
}

TEST_F(Driver, ScheduleRunsEveryFadeOverItsSpan)
{
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    demo->setupScenes();
    EffectMgr* effects = demo->getEffects();
    ASSERT_NE(effects, nullptr);
    EXPECT_EQ(effects->getPendingCount(), 8u);
    EXPECT_EQ(effects->getTimer().current + effects->getTimer().end, 0.0f);
    for (int frame = 1; frame <= 4 * 210; ++frame) {
        demo->onUpdate(0.25f);
        float t = frame * 0.25f;
        ASSERT_EQ(effects->getRunningCount(), fadesCovering(t)) << "at scene time " << t;
    }
    EXPECT_EQ(effects->getPendingCount(), 0u);
    delete demo;
}

TEST_F(Driver, InitSetsTheFixedState)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open()) << SDL_GetError();
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST) && glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_DITHER) || glIsEnabled(GL_COLOR_MATERIAL));
    const GLenum queries[] = {GL_DEPTH_FUNC, GL_CULL_FACE_MODE, GL_FRONT_FACE, GL_SHADE_MODEL,
                              GL_PERSPECTIVE_CORRECTION_HINT, GL_POLYGON_SMOOTH_HINT};
    const GLint expected[] = {GL_LESS, GL_BACK, GL_CCW, GL_SMOOTH, GL_NICEST, GL_NICEST};
    for (int i = 0; i < 6; ++i) {
        GLint value = 0;
        glGetIntegerv(queries[i], &value);
        EXPECT_EQ(value, expected[i]) << "query " << i;
    }
    GLfloat clear[5] = {-1, -1, -1, -1, -1};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, clear + 4);
    EXPECT_EQ(clear[0] + clear[1] + clear[2], 0.0f);
    EXPECT_EQ(clear[3], 1.0f);
    EXPECT_EQ(clear[4], 1.0f);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Driver, FadesFlashTheirColourAtEachCut)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open()) << SDL_GetError();
    // A grey background tells a black fade from an empty frame.
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    for (const Fade& fade : FADES) {
        // Full cover comes one frame before the scene clock reaches the middle.
        demo.advanceTo((fade.start + fade.end) / 2 - 0.25f);
        demo.onDisplay();
        EXPECT_EQ(demo.centreRed(), fade.white ? 255 : 0) << "fade from " << fade.start;
    }
    demo.advanceTo(250.0f);
    demo.onDisplay();
    EXPECT_NEAR(demo.centreRed(), 128, 1);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
}

TEST_F(Driver, EscapeQuitsAndOtherKeysDoNothing)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open());
    SDL_EventState(SDL_ACTIVEEVENT, SDL_IGNORE);
    while (SDL_PollEvent(nullptr))
        demo.handleEvents();
    demo.onKey('q');
    demo.onKey(' ');
    EXPECT_TRUE(demo.handleEvents());
    demo.onKey(Velmora::KEY_ESCAPE);
    EXPECT_FALSE(demo.handleEvents());
}

namespace {

// Has its own window resized from outside, then checks the first frame at the new size.
class ResizeProbe : public Velmora {
public:
    std::string title = "velmora-resize-" + std::to_string(getpid());
    bool requested = false;
    bool checked = false;
    unsigned char corner[4] = {0, 0, 0, 0};
    GLint viewport[4] = {0, 0, 0, 0};
    Uint32 began = 0;
    Uint32 lastTry = 0;

    ResizeProbe() { setTitle(title.c_str()); }

    void onUpdate(float seconds) override
    {
        Velmora::onUpdate(seconds);
        Uint32 now = SDL_GetTicks();
        if (!began)
            began = now;
        // The window's name may reach the X server a little after it opens: keep asking.
        if (!requested && now - lastTry >= 50) {
            lastTry = now;
            std::string command = "xdotool search --name '^" + title + "$' windowsize 720 540 >/dev/null 2>&1";
            requested = std::system(command.c_str()) == 0;
        }
        // A safety net only: a window system that never resizes must not hang the test.
        if (now - began > 20000)
            sendQuit();
    }

    void onDisplay() override
    {
        Velmora::onDisplay();
        if (getWidth() != 720 || getHeight() != 540 || checked)
            return;
        // A quad over the whole viewport reaches the new corner only if the viewport followed.
        glDisable(GL_DEPTH_TEST);
        glColor3f(0.0f, 1.0f, 0.0f);
        glRectf(-1.0f, -1.0f, 1.0f, 1.0f);
        glEnable(GL_DEPTH_TEST);
        glGetIntegerv(GL_VIEWPORT, viewport);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(719, 539, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, corner);
        checked = true;
        sendQuit();
    }
};

}

TEST_F(Driver, ResizedWindowIsFilledByTheNextFrame)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ResizeProbe demo;
    EXPECT_TRUE(demo.run(0, nullptr));
    ASSERT_TRUE(demo.requested) << "xdotool could not resize the window";
    ASSERT_TRUE(demo.checked) << "onResize never saw the new size";
    EXPECT_EQ(demo.viewport[2] * 1000 + demo.viewport[3], 720540);
    EXPECT_EQ(demo.corner[0], 0);
    EXPECT_EQ(demo.corner[1], 255);
}
