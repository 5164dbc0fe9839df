// The shell's settings, title and timer ownership.
#include "runtime/ApplicationGL.h"

#include "runtime/Timer.h"

#include <cstring>

ApplicationGL::ApplicationGL()
    : title(nullptr), info(), glReady(false), unusedFlag(true), currentFullscreen(false), currentWidth(0),
      currentHeight(0), currentBitsPerPixel(0), currentDepthBits(0), currentStencilBits(0), timer(nullptr)
{
}

ApplicationGL::~ApplicationGL()
{
    delete timer;
    delete[] title;
}

bool ApplicationGL::keyPressed(int) const
{
    return false;
}

bool ApplicationGL::keyReleased(int) const
{
    return false;
}

void ApplicationGL::setInfo(const AppInfo& requested)
{
    info = requested;
}

void ApplicationGL::setTitle(const char* text)
{
    if (!text)
        return;
    size_t length = std::strlen(text) + 1;
    char* copy = new char[length];
    std::memcpy(copy, text, length);
    delete[] title;
    title = copy;
}

void ApplicationGL::setSize(int width, int height)
{
    currentWidth = width;
    currentHeight = height;
}

void ApplicationGL::setTimer(Timer* replacement)
{
    if (replacement == timer)
        return;
    delete timer;
    timer = replacement;
}
