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
const Fade FADES[] = {{35.0f, 36.0f, true},     {68.0f, 69.0f, true},   {75.5f, 76.5f, false},
                      {108.5f, 109.5f, false},  {141.5f, 143.5f, false}, {150.0f, 151.0f, false},
                      {168.0f, 169.0f, true},   {199.5f, 203.5f, false}};

// An effect is updated in the frame that starts it, so its own clock runs one frame
// ahead of the scene clock: it leaves on the frame whose scene time reaches its end.
unsigned fadesCovering(float t)
{
    unsigned count = 0;
    for (const Fade& fade : FADES)
        count += fade.start <= t && t < fade.end;
    return count;
}

// Each test starts from an empty registry and builds the demo in a directory of its own.
class DriverConfig : public ::testing::Test {
protected:
    std::string dir;
    std::string home;

    void SetUp() override
    {
        VariableMgr::getHandle()->shutdown();
        char pattern[] = "/tmp/velmora-driver-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        char cwd[4096];
        ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
        home = cwd;
    }

    void TearDown() override
    {
        std::remove((dir + "/velmora.cfg").c_str());
        rmdir(dir.c_str());
        VariableMgr::getHandle()->shutdown();
    }

    void writeConfig(const std::string& records)
    {
        std::ofstream((dir + "/velmora.cfg").c_str()) << HEADER << records;
    }

    // The constructor reads ./velmora.cfg, so it runs inside the test's directory.
    Velmora* build()
    {
        if (chdir(dir.c_str()) != 0)
            return nullptr;
        Velmora* demo = new Velmora();
        if (chdir(home.c_str()) != 0) {
            delete demo;
            return nullptr;
        }
        return demo;
    }
};

// A demo whose window and frame steps the test drives by hand.
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

    // Advances the scene clock to t in quarter seconds, exact in binary.
    void advanceTo(float t)
    {
        while (getEffects()->getTimer().current < t)
            onUpdate(0.25f);
    }
};

void centre(unsigned char rgba[4], int width, int height)
{
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(width / 2, height / 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
}

}

TEST_F(DriverConfig, NoFileGivesTheDefaults)
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
    EXPECT_EQ(info.stencilBuffer, 0);
    EXPECT_EQ(info.extra, 0);
    EXPECT_FALSE(demo->isSoundEnabled());
    EXPECT_FALSE(demo->isShowingFPS());
    EXPECT_STREQ(demo->getTitle(), "Velmora Deep / Quorvex Co");
    EXPECT_EQ(demo->getEffects(), nullptr);
    EXPECT_FALSE(demo->isGLReady());
    delete demo;
}

TEST_F(DriverConfig, KeysFillTheDisplayRequest)
{
    writeConfig("Cursor = no\nFullscreen = YES\nWidth = 800\nHeight = 600\nBitsPerPixel = 16\n"
                "DepthBuffer = 24\nShowFPS = yes\nSound = Yes\n");
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    const AppInfo& info = demo->getInfo();
    EXPECT_FALSE(info.cursor);
    EXPECT_TRUE(info.fullscreen);
    EXPECT_EQ(info.width, 800);
    EXPECT_EQ(info.height, 600);
    EXPECT_EQ(info.bitsPerPixel, 16);
    EXPECT_EQ(info.depthBuffer, 24);
    EXPECT_EQ(info.stencilBuffer, 0);
    EXPECT_TRUE(demo->isShowingFPS());
    EXPECT_TRUE(demo->isSoundEnabled());
    delete demo;
}

TEST_F(DriverConfig, OnlyYesIsTrue)
{
    writeConfig("Cursor = true\nShowFPS = 1\nSound = on\n");
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    EXPECT_FALSE(demo->getInfo().cursor);
    EXPECT_FALSE(demo->isShowingFPS());
    EXPECT_FALSE(demo->isSoundEnabled());
    delete demo;
}

TEST_F(DriverConfig, BrokenRecordKeepsTheKeysBeforeIt)
{
    writeConfig("Width = 1024\nHeight=768\nCursor = no\n");
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    EXPECT_EQ(demo->getInfo().width, 1024);
    EXPECT_EQ(demo->getInfo().height, 480);
    EXPECT_TRUE(demo->getInfo().cursor);
    delete demo;
}

TEST_F(DriverConfig, WrongHeaderLeavesEverythingDefault)
{
    std::ofstream((dir + "/velmora.cfg").c_str()) << "settings registry v0.1\nx\nWidth = 800\n";
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    EXPECT_EQ(demo->getInfo().width, 640);
    delete demo;
}

TEST_F(DriverConfig, ScheduleRunsEveryFadeOverItsSpan)
{
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    demo->setupScenes();
    EffectMgr* effects = demo->getEffects();
    ASSERT_NE(effects, nullptr);
    EXPECT_EQ(effects->getPendingCount(), 8u);
    EXPECT_EQ(effects->getTimer().current, 0.0f);
    EXPECT_EQ(effects->getTimer().start, 0.0f);
    EXPECT_EQ(effects->getTimer().end, 0.0f);

    for (int frame = 1; frame <= 4 * 210; ++frame) {
        demo->onUpdate(0.25f);
        float t = frame * 0.25f;
        ASSERT_EQ(effects->getRunningCount(), fadesCovering(t)) << "at scene time " << t;
    }
    EXPECT_EQ(effects->getPendingCount(), 0u);
    delete demo;
}

TEST_F(DriverConfig, SetupScenesAgainStartsOver)
{
    Velmora* demo = build();
    ASSERT_NE(demo, nullptr);
    demo->setupScenes();
    demo->onUpdate(35.5f);
    demo->setupScenes();
    EXPECT_EQ(demo->getEffects()->getPendingCount(), 8u);
    EXPECT_EQ(demo->getEffects()->getRunningCount(), 0u);
    delete demo;
}

class DriverWindow : public ::testing::Test {
protected:
    void SetUp() override { VariableMgr::getHandle()->shutdown(); }
    void TearDown() override { VariableMgr::getHandle()->shutdown(); }
};

TEST_F(DriverWindow, InitSetsTheFixedState)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open()) << SDL_GetError();
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_DITHER));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
    GLint value = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &value);
    EXPECT_EQ(value, GL_LESS);
    glGetIntegerv(GL_CULL_FACE_MODE, &value);
    EXPECT_EQ(value, GL_BACK);
    glGetIntegerv(GL_FRONT_FACE, &value);
    EXPECT_EQ(value, GL_CCW);
    glGetIntegerv(GL_SHADE_MODEL, &value);
    EXPECT_EQ(value, GL_SMOOTH);
    glGetIntegerv(GL_PERSPECTIVE_CORRECTION_HINT, &value);
    EXPECT_EQ(value, GL_NICEST);
    glGetIntegerv(GL_POLYGON_SMOOTH_HINT, &value);
    EXPECT_EQ(value, GL_NICEST);
    GLfloat clear[4] = {-1, -1, -1, -1};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[0], 0.0f);
    EXPECT_EQ(clear[1], 0.0f);
    EXPECT_EQ(clear[2], 0.0f);
    EXPECT_EQ(clear[3], 1.0f);
    GLfloat depth = 0;
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &depth);
    EXPECT_EQ(depth, 1.0f);
    EXPECT_EQ(demo.getEffects()->getPendingCount(), 8u);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(DriverWindow, FadesFlashTheirColourAtEachCut)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open()) << SDL_GetError();
    // A grey background tells a black fade from an empty frame.
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    unsigned char rgba[4];
    for (const Fade& fade : FADES) {
        // Full cover comes one frame before the scene clock reaches the middle.
        float middle = (fade.start + fade.end) / 2;
        demo.advanceTo(middle - 0.25f);
        demo.onDisplay();
        centre(rgba, demo.getWidth(), demo.getHeight());
        int expected = fade.white ? 255 : 0;
        EXPECT_EQ(rgba[0], expected) << "cut at " << middle;
        EXPECT_EQ(rgba[2], expected) << "cut at " << middle;
    }
    demo.advanceTo(250.0f);
    demo.onDisplay();
    centre(rgba, demo.getWidth(), demo.getHeight());
    EXPECT_NEAR(rgba[0], 128, 1);
    // The read-out and the console leave depth testing as the scenes expect it.
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
}

TEST_F(DriverWindow, EscapeQuitsAndOtherKeysDoNothing)
{
    OpenDemo demo;
    ASSERT_TRUE(demo.open());
    while (demo.handleEvents()) {
        // Drops whatever the window system queued at opening.
        if (SDL_PollEvent(nullptr) == 0)
            break;
    }
    demo.onKey('q');
    demo.onKey(' ');
    EXPECT_TRUE(demo.handleEvents());
    demo.onKey(Velmora::KEY_ESCAPE);
    EXPECT_FALSE(demo.handleEvents());
}

namespace {

// Resizes its own window from outside once running, then checks the frame after the resize.
class ResizeProbe : public Velmora {
public:
    std::string title;
    int frames = 0;
    bool requested = false;
    bool resized = false;
    bool checked = false;
    unsigned char corner[4] = {0, 0, 0, 0};
    unsigned char origin[4] = {0, 0, 0, 0};
    GLint viewport[4] = {0, 0, 0, 0};
    Uint32 began = 0;
    Uint32 lastTry = 0;

    ResizeProbe()
    {
        title = "velmora-resize-" + std::to_string(getpid());
        setTitle(title.c_str());
    }

    void onUpdate(float seconds) override
    {
        Velmora::onUpdate(seconds);
        if (++frames == 1)
            began = SDL_GetTicks();
        Uint32 now = SDL_GetTicks();
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

    void onResize(int width, int height) override
    {
        Velmora::onResize(width, height);
        resized = frames > 0 && width == 720 && height == 540;
    }

    void onDisplay() override
    {
        Velmora::onDisplay();
        if (!resized || checked)
            return;
        // A quad over the whole viewport: it reaches the new corner only if the viewport followed.
        glDisable(GL_DEPTH_TEST);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glColor3f(0.0f, 1.0f, 0.0f);
        glBegin(GL_QUADS);
        glVertex2f(-1, -1);
        glVertex2f(1, -1);
        glVertex2f(1, 1);
        glVertex2f(-1, 1);
        glEnd();
        glEnable(GL_DEPTH_TEST);
        glGetIntegerv(GL_VIEWPORT, viewport);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(719, 539, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, corner);
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, origin);
        checked = true;
        sendQuit();
    }
};

}

TEST_F(DriverWindow, ResizedWindowIsFilledByTheNextFrame)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ResizeProbe demo;
    EXPECT_TRUE(demo.run(0, nullptr));
    ASSERT_TRUE(demo.requested) << "xdotool could not resize the window";
    ASSERT_TRUE(demo.checked) << "onResize never saw the new size";
    EXPECT_EQ(demo.getWidth(), 720);
    EXPECT_EQ(demo.getHeight(), 540);
    EXPECT_EQ(demo.viewport[2], 720);
    EXPECT_EQ(demo.viewport[3], 540);
    EXPECT_EQ(demo.corner[0], 0);
    EXPECT_EQ(demo.corner[1], 255);
    EXPECT_EQ(demo.origin[1], 255);
}
