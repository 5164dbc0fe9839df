// The SDL shell: video mode, GL attributes, the frame loop and event dispatch.
#include "runtime/ApplicationSDL.h"

#include "runtime/TimerLinux.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <malloc.h>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

// The allocator's own starting threshold for blocks in mappings of their own, kept from moving.
const int BIG_BLOCK_BYTES = 128 * 1024;
// Free memory at the top of the heap kept for the next frames rather than given back at once.
const int KEPT_TOP_BYTES = 64 * 1024 * 1024;

// SDL picks these by itself when it finds no X or Wayland display: the demo would then run unseen.
bool isWindowlessDriver(const std::string& driver)
{
    return driver == "offscreen" || driver == "dummy";
}

// True when SDL_VIDEODRIVER names the driver: a windowless run someone asked for.
bool driverWasAskedFor(const std::string& driver)
{
    const char* asked = std::getenv("SDL_VIDEODRIVER");
    return asked && std::string(asked).find(driver) != std::string::npos;
}

std::string videoDriverName()
{
    char driver[32] = "";
    return SDL_VideoDriverName(driver, sizeof driver) ? driver : "";
}

}  // namespace

ApplicationSDL::ApplicationSDL()
{
    timer = new TimerLinux();
}

ApplicationSDL::~ApplicationSDL()
{
    if (glReady)
        shutdownGL();
}

void ApplicationSDL::channelSizes(int bitsPerPixel, int& red, int& green, int& blue)
{
    // 8-8-8 above 16 bits, 5-5-5 at exactly 15, 5-6-5 for anything else.
    red = 5;
    green = 6;
    blue = 5;
    if (bitsPerPixel > 16) {
        red = green = blue = 8;
    } else if (bitsPerPixel == 15) {
        green = 5;
    }
}

bool ApplicationSDL::setupGL()
{
    if (glReady)
        return false;
    // sdl12-compat's scaled framebuffer would stretch a resized window instead of letting
    // the viewport follow it, and costs half the frame rate in software; full screen takes
    // the desktop's size, so it has nothing to scale either. The user's own setting wins.
    setenv("SDL12COMPAT_OPENGL_SCALING", "0", 0);
    // Big blocks (pictures, meshes, the renderer's textures) each in a mapping of its own, given back when freed:
    // left to itself the allocator raises this threshold once the first such block is freed, and what a scene held
    // then stays in the heap after the scene has ended. Fixing it fixes the trim threshold too, at 128 KiB: the
    // heap's top was then given back and taken again every frame, which doubled the sea scenes' frame times. The
    // timeline gives the heap back when a scene ends instead.
    mallopt(M_MMAP_THRESHOLD, BIG_BLOCK_BYTES);
    mallopt(M_TRIM_THRESHOLD, KEPT_TOP_BYTES);
    if (SDL_Init(SDL_INIT_VIDEO) < 0) {
        std::cerr << "ERROR! Couldn't init SDL: " << SDL_GetError() << '\n';
        return false;
    }
    if (!hasRealDisplay()) {
        std::cerr << "ERROR! Couldn't init SDL: " << NO_DISPLAY_REASON << '\n';
        SDL_Quit();
        return false;
    }
    atexit(SDL_Quit);

    // The desktop's depth always wins over the requested one, and in full screen its size:
    // without a window manager to enlarge it, a smaller full-screen window covers only part of the screen.
    const SDL_VideoInfo* video = SDL_GetVideoInfo();
    if (video && video->vfmt)
        info.bitsPerPixel = video->vfmt->BitsPerPixel;
    if (info.fullscreen && video && video->current_w > 0 && video->current_h > 0) {
        info.width = video->current_w;
        info.height = video->current_h;
    }

    Uint32 flags = info.fullscreen ? (SDL_OPENGL | SDL_FULLSCREEN) : (SDL_OPENGL | SDL_RESIZABLE);
    int red = 0, green = 0, blue = 0;
    channelSizes(info.bitsPerPixel, red, green, blue);
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, red);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, green);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, blue);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, info.depthBuffer);
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, info.stencilBuffer);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);

    if (!SDL_SetVideoMode(info.width, info.height, info.bitsPerPixel, flags)) {
        std::cerr << "ERROR! Couldn't set OpenGL mode: " << SDL_GetError() << '\n';
        SDL_Quit();
        return false;
    }

    currentWidth = info.width;
    currentHeight = info.height;
    currentBitsPerPixel = info.bitsPerPixel;
    currentDepthBits = info.depthBuffer;
    currentStencilBits = info.stencilBuffer;
    currentFullscreen = info.fullscreen;
    glReady = true;
    finishAtSwap = videoDriverName() == "offscreen";
    if (!info.cursor)
        SDL_ShowCursor(SDL_DISABLE);
    if (title)
        SDL_WM_SetCaption(title, NULL);
    return true;
}

bool ApplicationSDL::hasRealDisplay() const
{
    const std::string driver = videoDriverName();
    return windowlessAllowed || !isWindowlessDriver(driver) || driverWasAskedFor(driver);
}

bool ApplicationSDL::shutdownGL()
{
    if (!glReady)
        return false;
    SDL_Quit();
    glReady = false;
    return true;
}

void ApplicationSDL::swapBuffersGL()
{
    if (!glReady)
        return;
    if (finishAtSwap)
        glFinish();
    SDL_GL_SwapBuffers();
}

void ApplicationSDL::sendQuit()
{
    SDL_Event event;
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
}

bool ApplicationSDL::run(int, char**)
{
    if (!setupGL())
        return false;
    onInit();
    onResize(currentWidth, currentHeight);
    if (timer)
        timer->setup();
    // Never sleeps and never caps the rate.
    while (handleEvents()) {
        if (timer) {
            timer->update();
            onUpdate(static_cast<float>(timer->getDeltaTime()));
        }
        onDisplay();
        swapBuffersGL();
    }
    shutdownGL();
    glReady = false;
    return true;
}

bool ApplicationSDL::handleEvents()
{
    bool keepRunning = true;
    SDL_Event event;
    // A quit still lets the rest of the batch be dispatched.
    for (int taken = 0; taken < EVENTS_PER_FRAME && SDL_PollEvent(&event); ++taken) {
        switch (event.type) {
            case SDL_KEYDOWN:
                onKey(static_cast<unsigned char>(event.key.keysym.sym & 0xFF));
                break;
            case SDL_MOUSEMOTION:
                onMouseMove(event.motion.x, event.motion.y);
                break;
            case SDL_MOUSEBUTTONDOWN:
                onMouseButton(event.button.x, event.button.y, event.button.button);
                break;
            case SDL_QUIT:
                onQuit();
                keepRunning = false;
                break;
            case SDL_VIDEORESIZE:
                onResize(event.resize.w, event.resize.h);
                break;
            default:
                break;
        }
    }
    return keepRunning;
}

int ApplicationSDL::keyState(int key) const
{
    int count = 0;
    const Uint8* keys = SDL_GetKeyState(&count);
    if (!keys || key < 0 || key >= count)
        return -1;
    return keys[key];
}

bool ApplicationSDL::keyPressed(int key) const
{
    return keyState(key) == 1;
}

bool ApplicationSDL::keyReleased(int key) const
{
    return keyState(key) == 0;
}
