// The SDL shell: opening the display, the frame loop's order, and per-frame event dispatch.
#include "runtime/ApplicationSDL.h"
#include "runtime/Timer.h"

#include <SDL/SDL.h>
#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

typedef std::vector<std::string> Log;

class FixedStepTimer : public Timer {
public:
    double getUpdateSecs() override { return 0.5; }
};

// Records every handler call; quits on its own after a frame budget when one is set.
class Recorder : public ApplicationSDL {
public:
    Log log;
    int quitAfterFrames = -1;
    int frames = 0;
    float lastSeconds = -1.0f;

    void onDisplay() override { log.push_back("display"); }
    void onUpdate(float seconds) override
    {
        lastSeconds = seconds;
        log.push_back("update");
        if (++frames == quitAfterFrames)
            sendQuit();
    }
    void onResize(int w, int h) override { log.push_back("resize " + std::to_string(w) + "x" + std::to_string(h)); }
    void onKey(unsigned char key) override { log.push_back("key " + std::to_string(key)); }
    void onMouseButton(int x, int y, int b) override
    {
        log.push_back("button " + std::to_string(x) + "," + std::to_string(y) + "," + std::to_string(b));
    }
    void onMouseMove(int x, int y) override { log.push_back("move " + std::to_string(x) + "," + std::to_string(y)); }
    void onInit() override { log.push_back("init"); }
    void onQuit() override { log.push_back("quit"); }
    void onActivate() override { log.push_back("activate"); }
    void onDeactivate() override { log.push_back("deactivate"); }

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
        // Other windows opening under the pointer send focus and motion events of their
        // own; the event tests count every event, so those kinds are kept out.
        SDL_EventState(SDL_ACTIVEEVENT, SDL_IGNORE);
        SDL_EventState(SDL_MOUSEMOTION, SDL_IGNORE);
        SDL_EventState(SDL_VIDEOEXPOSE, SDL_IGNORE);
        for (int i = 0; i < 10; ++i) {
            SDL_Event event;
            SDL_PumpEvents();
            while (SDL_PollEvent(&event)) {
            }
            SDL_Delay(5);
        }
        return true;
    }
};

// A shell whose display can never be set up.
class NoDisplay : public Recorder {
public:
    bool setupGL() override { return false; }
};

void push(Uint8 type)
{
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = type;
    SDL_PushEvent(&event);
}

void pushKey(Uint8 type, SDLKey sym)
{
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = type;
    event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = sym;
    SDL_PushEvent(&event);
}

void pushButton(Uint8 type, Uint16 x, Uint16 y, Uint8 button)
{
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = type;
    event.button.button = button;
    event.button.state = type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.button.x = x;
    event.button.y = y;
    SDL_PushEvent(&event);
}

}

TEST(ShellSettings, DefaultsBeforeAnyWindow)
{
    Recorder app;
    EXPECT_TRUE(app.getInfo().cursor);
    EXPECT_FALSE(app.getInfo().fullscreen);
    EXPECT_EQ(app.getInfo().width, 640);
    EXPECT_EQ(app.getInfo().height, 480);
    EXPECT_EQ(app.getInfo().bitsPerPixel, 16);
    EXPECT_EQ(app.getInfo().depthBuffer, 16);
    EXPECT_EQ(app.getInfo().stencilBuffer, 0);
    EXPECT_EQ(app.getTitle(), nullptr);
    EXPECT_FALSE(app.isGLReady());
    EXPECT_NE(app.getTimer(), nullptr);
}

TEST(ShellSettings, SetInfoCopiesEveryField)
{
    Recorder app;
    AppInfo info;
    info.cursor = false;
    info.fullscreen = true;
    info.width = 800;
    info.height = 600;
    info.bitsPerPixel = 32;
    info.depthBuffer = 24;
    info.stencilBuffer = 8;
    info.extra = 42;
    app.setInfo(info);
    EXPECT_FALSE(app.getInfo().cursor);
    EXPECT_TRUE(app.getInfo().fullscreen);
    EXPECT_EQ(app.getInfo().width, 800);
    EXPECT_EQ(app.getInfo().height, 600);
    EXPECT_EQ(app.getInfo().bitsPerPixel, 32);
    EXPECT_EQ(app.getInfo().depthBuffer, 24);
    EXPECT_EQ(app.getInfo().stencilBuffer, 8);
    EXPECT_EQ(app.getInfo().extra, 42);
}

TEST(ShellSettings, TitleIsAnOwnedCopyReplacedWhole)
{
    Recorder app;
    char text[] = "first";
    app.setTitle(text);
    std::strcpy(text, "xxxxx");
    EXPECT_STREQ(app.getTitle(), "first");
    app.setTitle("a much longer second title");
    EXPECT_STREQ(app.getTitle(), "a much longer second title");
}

TEST(ShellSettings, SetSizeTouchesOnlyTheCurrentSize)
{
    Recorder app;
    app.setSize(300, 200);
    EXPECT_EQ(app.getWidth(), 300);
    EXPECT_EQ(app.getHeight(), 200);
    EXPECT_EQ(app.getInfo().width, 640);
}

TEST(ShellSettings, ColourChannelsFollowTheDesktopDepth)
{
    struct Case { int depth, red, green, blue; };
    const Case cases[] = {{32, 8, 8, 8}, {24, 8, 8, 8}, {17, 8, 8, 8}, {16, 5, 6, 5},
                          {15, 5, 5, 5}, {8, 5, 6, 5}, {0, 5, 6, 5}};
    for (const Case& c : cases) {
        int red = 0, green = 0, blue = 0;
        ApplicationSDL::channelSizes(c.depth, red, green, blue);
        EXPECT_EQ(red, c.red) << c.depth;
        EXPECT_EQ(green, c.green) << c.depth;
        EXPECT_EQ(blue, c.blue) << c.depth;
    }
}

TEST(ShellSettings, ReplacementTimerIsOwned)
{
    Recorder app;
    FixedStepTimer* timer = new FixedStepTimer;
    app.setTimer(timer);
    EXPECT_EQ(app.getTimer(), timer);
}

TEST(ShellDisplay, OpensTheRequestedSizeAtTheDesktopDepth)
{
    Recorder app;
    ASSERT_TRUE(app.open(200, 150)) << SDL_GetError();
    EXPECT_TRUE(app.isGLReady());
    EXPECT_EQ(app.getWidth(), 200);
    EXPECT_EQ(app.getHeight(), 150);
    // The requested 8 bits were replaced by what the desktop runs at.
    const SDL_VideoInfo* video = SDL_GetVideoInfo();
    ASSERT_NE(video, nullptr);
    EXPECT_EQ(app.getInfo().bitsPerPixel, video->vfmt->BitsPerPixel);
    EXPECT_EQ(app.getBitsPerPixel(), video->vfmt->BitsPerPixel);
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 200);
    EXPECT_EQ(viewport[3], 150);
    EXPECT_TRUE(app.shutdownGL());
    EXPECT_FALSE(app.isGLReady());
}

TEST(ShellDisplay, SecondSetupIsRefusedAndKeepsTheMode)
{
    Recorder app;
    ASSERT_TRUE(app.open(200, 150));
    app.request(320, 240);
    EXPECT_FALSE(app.setupGL());
    EXPECT_EQ(app.getWidth(), 200);
    EXPECT_TRUE(app.isGLReady());
}

TEST(ShellDisplay, ShutdownWithoutAWindowIsRefused)
{
    Recorder app;
    EXPECT_FALSE(app.shutdownGL());
}

TEST(ShellDisplay, WindowedModeTurnsCompatScalingOff)
{
    unsetenv("SDL12COMPAT_OPENGL_SCALING");
    Recorder app;
    ASSERT_TRUE(app.open());
    const char* value = getenv("SDL12COMPAT_OPENGL_SCALING");
    ASSERT_NE(value, nullptr);
    EXPECT_STREQ(value, "0");
}

TEST(ShellDisplay, UsersOwnScalingSettingWins)
{
    setenv("SDL12COMPAT_OPENGL_SCALING", "1", 1);
    Recorder app;
    ASSERT_TRUE(app.open());
    EXPECT_STREQ(getenv("SDL12COMPAT_OPENGL_SCALING"), "1");
    app.shutdownGL();
    setenv("SDL12COMPAT_OPENGL_SCALING", "0", 1);
}

TEST(ShellDisplay, KeyStateOutsideTheTableIsNeitherPressedNorReleased)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    EXPECT_TRUE(app.keyReleased(SDLK_a));
    EXPECT_FALSE(app.keyPressed(SDLK_a));
    EXPECT_FALSE(app.keyPressed(-1));
    EXPECT_FALSE(app.keyReleased(-1));
    EXPECT_FALSE(app.keyReleased(1 << 20));
}

TEST(ShellLoop, FailedDisplayCallsNoHandler)
{
    NoDisplay app;
    EXPECT_FALSE(app.run(0, nullptr));
    EXPECT_TRUE(app.log.empty());
}

TEST(ShellLoop, InitThenResizeThenFramesUntilQuit)
{
    Recorder app;
    app.request(160, 120);
    app.quitAfterFrames = 2;
    EXPECT_TRUE(app.run(0, nullptr));
    // The window system may slip in pointer or resize events of its own; leave them out.
    Log steps;
    for (const std::string& entry : app.log)
        if (entry == "init" || entry == "update" || entry == "display" || entry == "quit")
            steps.push_back(entry);
    ASSERT_GE(app.log.size(), 2u);
    EXPECT_EQ(app.log[0], "init");
    EXPECT_EQ(app.log[1], "resize 160x120");
    // The quit pushed during frame 2 is seen at the start of frame 3.
    EXPECT_EQ(steps, (Log{"init", "update", "display", "update", "display", "quit"}));
    EXPECT_FALSE(app.isGLReady());
    EXPECT_EQ(app.getTimer()->getFramesProcessed(), 2u);
}

TEST(ShellLoop, FrameTimeComesFromTheTimer)
{
    Recorder app;
    app.setTimer(new FixedStepTimer);
    app.request(160, 120);
    app.quitAfterFrames = 3;
    EXPECT_TRUE(app.run(0, nullptr));
    EXPECT_EQ(app.lastSeconds, 0.5f);
    EXPECT_EQ(app.getTimer()->getTotalTime(), 1.5);
}

TEST(ShellLoop, WithoutATimerFramesAreDrawnButNotUpdated)
{
    Recorder app;
    app.setTimer(nullptr);
    ASSERT_TRUE(app.open());
    EXPECT_TRUE(app.handleEvents());
    EXPECT_TRUE(app.log.empty());
}

TEST(ShellEvents, AtMostFivePerFrame)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    for (int i = 0; i < 6; ++i)
        pushKey(SDL_KEYDOWN, static_cast<SDLKey>(SDLK_a + i));
    EXPECT_TRUE(app.handleEvents());
    EXPECT_EQ(app.log, (Log{"key 97", "key 98", "key 99", "key 100", "key 101"}));
    app.log.clear();
    EXPECT_TRUE(app.handleEvents());
    EXPECT_EQ(app.log, (Log{"key 102"}));
}

TEST(ShellEvents, QuitStillFinishesItsBatch)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    push(SDL_QUIT);
    pushKey(SDL_KEYDOWN, SDLK_b);
    EXPECT_FALSE(app.handleEvents());
    EXPECT_EQ(app.log, (Log{"quit", "key 98"}));
}

TEST(ShellEvents, SendQuitEndsTheNextFrame)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    app.sendQuit();
    EXPECT_FALSE(app.handleEvents());
    EXPECT_EQ(app.log, (Log{"quit"}));
}

TEST(ShellEvents, KeyIsCutToItsLowEightBits)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    pushKey(SDL_KEYDOWN, SDLK_UP);
    pushKey(SDL_KEYDOWN, SDLK_ESCAPE);
    app.handleEvents();
    EXPECT_EQ(app.log, (Log{"key " + std::to_string(SDLK_UP & 0xFF), "key 27"}));
}

TEST(ShellEvents, ReleasesAndOtherEventsCallNothing)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    SDL_EventState(SDL_ACTIVEEVENT, SDL_ENABLE);
    pushKey(SDL_KEYUP, SDLK_a);
    pushButton(SDL_MOUSEBUTTONUP, 3, 4, SDL_BUTTON_LEFT);
    push(SDL_ACTIVEEVENT);
    push(SDL_USEREVENT);
    EXPECT_TRUE(app.handleEvents());
    EXPECT_TRUE(app.log.empty());
}

TEST(ShellEvents, MouseAndResizeReachTheirHandlers)
{
    Recorder app;
    ASSERT_TRUE(app.open());
    SDL_EventState(SDL_MOUSEMOTION, SDL_ENABLE);
    pushButton(SDL_MOUSEBUTTONDOWN, 10, 20, SDL_BUTTON_RIGHT);
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = SDL_MOUSEMOTION;
    event.motion.x = 65535;
    event.motion.y = 7;
    SDL_PushEvent(&event);
    std::memset(&event, 0, sizeof event);
    event.type = SDL_VIDEORESIZE;
    event.resize.w = 300;
    event.resize.h = 200;
    SDL_PushEvent(&event);
    app.handleEvents();
    app.handleEvents();
    // The pointer of the window system may move in between; only the pushed events count.
    Log pushed;
    for (const std::string& entry : app.log)
        if (entry.rfind("move ", 0) != 0 || entry == "move 65535,7")
            pushed.push_back(entry);
    // Positions are unsigned: the largest stays positive.
    EXPECT_EQ(pushed, (Log{"button 10,20,3", "move 65535,7", "resize 300x200"}));
}
