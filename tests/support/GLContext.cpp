// The shared GL window of the test programs.
#include "support/GLContext.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <cstdlib>

namespace {
bool opened = false;
bool failed = false;
int openWidth = 0;
int openHeight = 0;
}  // namespace

bool GLContext::ensure(int width, int height)
{
    if (opened || failed)
        return opened;
    // Draw straight into the window: scaling would put a hidden framebuffer in between.
    setenv("SDL12COMPAT_OPENGL_SCALING", "0", 0);
    if (SDL_Init(SDL_INIT_VIDEO) < 0) {
        failed = true;
        return false;
    }
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 16);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(width, height, 0, SDL_OPENGL)) {
        failed = true;
        return false;
    }
    atexit(SDL_Quit);
    opened = true;
    openWidth = width;
    openHeight = height;
    return true;
}

int GLContext::width()
{
    return openWidth;
}
int GLContext::height()
{
    return openHeight;
}

void GLContext::readPixel(int x, int y, unsigned char rgba[4])
{
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
}

void GLTest::SetUp()
{
    ASSERT_TRUE(GLContext::ensure()) << "no OpenGL context: " << SDL_GetError();
    glViewport(0, 0, GLContext::width(), GLContext::height());
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void GLTest::TearDown()
{
    if (GLContext::ensure())
        glFinish();
}
