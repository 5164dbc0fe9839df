// The SDL shell: opening the display, the frame loop's order, and per-frame event dispatch.
#include "runtime/ApplicationSDL.h"
#include "runtime/Timer.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

typedef std::vector<std::string> Log;

class HalfSecondTimer : public Timer {
public:
    double getUpdateSecs() override { return 0.5; }
};

std::string pair(int a, int b)
{
    return std::to_string(a) + "," + std::to_string(b);
}

// Records every handler call; quits on its own after a frame budget when one is set.
class Recorder : public ApplicationSDL {
public:
    Log log;
    int quitAfterFrames = -1;
    float lastSeconds = -1.0f;

    // These tests need GL, not a window: the X server under test now and then refuses a connection, and SDL's
    // offscreen fallback then serves as well.
    Recorder() { allowWindowless(true); }

    void onDisplay() override { log.push_back("display"); }
    void onUpdate(float seconds) override
    {
        lastSeconds = seconds;
        log.push_back("update");
        if (--quitAfterFrames == 0)
            sendQuit();
    }
    void onResize(int w, int h) override { log.push_back("resize " + pair(w, h)); }
    void onKey(unsigned char key) override { log.push_back("key " + std::to_string(key)); }
    void onMouseButton(int x, int y, int b) override
    {
        log.push_back("button " + pair(x, y) + "," + std::to_string(b));
    }
    void onMouseMove(int x, int y) override { log.push_back("move " + pair(x, y)); }
    void onInit() override { log.push_back("init"); }
    void onQuit() override { log.push_back("quit"); }
    void onActivate() override { log.push_back("activate"); }
    void onDeactivate() override { log.push_back("deactivate"); }

    using ApplicationSDL::allowWindowless;
    using ApplicationSDL::handleEvents;
    using ApplicationSDL::setTimer;

    void request(int width, int height)
    {
        AppInfo info;
        info.width = width;
        info.height = height;
        info.bitsPerPixel = 8;
        setInfo(info);
    }

    // Opens the window and throws away whatever the window system queued on its own.
    bool open(int width = 160, int height = 120)
    {
        request(width, height);
        if (!setupGL())
            return false;
        // Focus and motion from other windows would spoil the event counts.
        SDL_EventState(SDL_ACTIVEEVENT, SDL_IGNORE);
        SDL_EventState(SDL_MOUSEMOTION, SDL_IGNORE);
        SDL_EventState(SDL_VIDEOEXPOSE, SDL_IGNORE);
        SDL_Event event;
        for (int i = 0; i < 10; ++i, SDL_Delay(5))
            while (SDL_PollEvent(&event)) {
            }
        return true;
    }
};

class NoDisplay : public Recorder {
public:
    bool setupGL() override { return false; }
};

void push(Uint8 type, int a = 0, int b = 0, int c = 0)
{
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = type;
    if (type == SDL_KEYDOWN || type == SDL_KEYUP)
        event.key.keysym.sym = static_cast<SDLKey>(a);
    if (type == SDL_MOUSEBUTTONDOWN || type == SDL_MOUSEBUTTONUP) {
        event.button.x = a;
        event.button.y = b;
        event.button.button = c;
    }
    if (type == SDL_MOUSEMOTION) {
        event.motion.x = a;
        event.motion.y = b;
    }
    if (type == SDL_VIDEORESIZE) {
        event.resize.w = a;
        event.resize.h = b;
    }
    SDL_PushEvent(&event);
}

}  // namespace

TEST(ShellSettings, ColourChannelsFollowTheDesktopDepth)
{
    const int cases[][4] = {{32, 8, 8, 8}, {17, 8, 8, 8}, {16, 5, 6, 5}, {15, 5, 5, 5}, {8, 5, 6, 5}};
    for (const auto& c : cases) {
        int rgb[3] = {0, 0, 0};
        ApplicationSDL::channelSizes(c[0], rgb[0], rgb[1], rgb[2]);
        EXPECT_EQ(rgb[0] * 100 + rgb[1] * 10 + rgb[2], c[1] * 100 + c[2] * 10 + c[3]) << c[0] << " bits";
    }
}

TEST(ShellDisplay, OpensTheRequestedSizeAtTheDesktopDepthOnce)
{
    unsetenv("SDL12COMPAT_OPENGL_SCALING");
    Recorder app;
    ASSERT_TRUE(app.open(200, 150)) << SDL_GetError();
    // A window draws straight into itself, so the viewport can follow a resize.
    EXPECT_STREQ(getenv("SDL12COMPAT_OPENGL_SCALING"), "0");
    EXPECT_EQ(app.getInfo().bitsPerPixel, SDL_GetVideoInfo()->vfmt->BitsPerPixel);
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2] * viewport[3], 200 * 150);
    // Key states outside SDL's table are neither pressed nor released.
    EXPECT_TRUE(app.keyReleased(SDLK_a));
    EXPECT_FALSE(app.keyPressed(-1) || app.keyReleased(1 << 20));
    // A second set-up is refused and keeps the mode.
    app.request(320, 240);
    EXPECT_FALSE(app.setupGL());
    EXPECT_EQ(app.getWidth(), 200);
    EXPECT_TRUE(app.shutdownGL());
    EXPECT_FALSE(app.shutdownGL());
    // The user's own scaling setting wins.
    setenv("SDL12COMPAT_OPENGL_SCALING", "1", 1);
    ASSERT_TRUE(app.open());
    EXPECT_STREQ(getenv("SDL12COMPAT_OPENGL_SCALING"), "1");
    app.shutdownGL();
    setenv("SDL12COMPAT_OPENGL_SCALING", "0", 1);
}

TEST(ShellDisplay, RefusesSDLsWindowlessFallbackUnlessItWasAskedForOrAllowed)
{
    const char* display = getenv("DISPLAY");
    const std::string saved = display ? display : "";
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    Recorder app;
    app.allowWindowless(false);
    EXPECT_FALSE(app.open());
    EXPECT_FALSE(app.isGLReady());
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    EXPECT_TRUE(app.open()) << SDL_GetError();
    app.shutdownGL();
    unsetenv("SDL_VIDEODRIVER");
    app.allowWindowless(true);
    EXPECT_TRUE(app.open()) << SDL_GetError();
    app.shutdownGL();
    if (display)
        setenv("DISPLAY", saved.c_str(), 1);
}

TEST(ShellLoop, InitThenResizeThenFramesUntilQuitAndNoHandlerWithoutADisplay)
{
    NoDisplay none;
    EXPECT_FALSE(none.run(0, nullptr));
    EXPECT_TRUE(none.log.empty());

    Recorder app;
    app.setTimer(new HalfSecondTimer);
    app.request(160, 120);
    app.quitAfterFrames = 2;
    EXPECT_TRUE(app.run(0, nullptr));
    // The window system may slip in pointer or resize events of its own; leave them out.
    Log steps;
    for (const std::string& entry : app.log)
        if (entry == "init" || entry == "update" || entry == "display" || entry == "quit")
            steps.push_back(entry);
    ASSERT_GE(app.log.size(), 2u);
    EXPECT_EQ(app.log[1], "resize 160,120");
    // The quit pushed during frame 2 is seen at the start of frame 3.
    EXPECT_EQ(steps, (Log{"init", "update", "display", "update", "display", "quit"}));
    EXPECT_EQ(app.lastSeconds, 0.5f);
    EXPECT_EQ(app.getTimer()->getTotalTime(), 1.0);
}

TEST(ShellEvents, AtMostFivePerFrameAndAQuitStillFinishesItsBatch)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    for (int i = 0; i < 6; ++i)
        push(SDL_KEYDOWN, SDLK_a + i);
    EXPECT_TRUE(app.handleEvents());
    EXPECT_EQ(app.log, (Log{"key 97", "key 98", "key 99", "key 100", "key 101"}));
    app.log.clear();
    app.sendQuit();
    push(SDL_KEYDOWN, SDLK_UP);
    EXPECT_FALSE(app.handleEvents());
    // The key is cut to its low eight bits.
    EXPECT_EQ(app.log, (Log{"key 102", "quit", "key " + std::to_string(SDLK_UP & 0xFF)}));
}

TEST(ShellEvents, OnlyPressesMotionResizeAndQuitCallHandlers)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    SDL_EventState(SDL_ACTIVEEVENT, SDL_ENABLE);
    SDL_EventState(SDL_MOUSEMOTION, SDL_ENABLE);
    push(SDL_KEYUP, SDLK_a);
    push(SDL_MOUSEBUTTONUP, 3, 4, SDL_BUTTON_LEFT);
    push(SDL_ACTIVEEVENT);
    push(SDL_MOUSEBUTTONDOWN, 10, 20, SDL_BUTTON_RIGHT);
    push(SDL_MOUSEMOTION, 65535, 7);
    push(SDL_VIDEORESIZE, 300, 200);
    app.handleEvents();
    app.handleEvents();
    // The pointer of the window system may move in between; only the pushed events count.
    Log pushed;
    for (const std::string& entry : app.log)
        if (entry.rfind("move ", 0) != 0 || entry == "move 65535,7")
            pushed.push_back(entry);
    // Positions are unsigned: the largest stays positive.
    EXPECT_EQ(pushed, (Log{"button 10,20,3", "move 65535,7", "resize 300,200"}));
}
