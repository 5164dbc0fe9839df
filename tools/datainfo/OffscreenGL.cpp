// A GL context for the few engine loads that need one, opened only when asked for.
#include "OffscreenGL.h"

#include <SDL/SDL.h>
#include <cstdlib>

bool OffscreenGL::ensure()
{
    SDL_Surface* screen = SDL_GetVideoSurface();
    if (screen && (screen->flags & SDL_OPENGL))
        return true;
    // A file report has nothing to show: SDL's offscreen driver keeps a window off the author's desktop.
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    setenv("SDL12COMPAT_OPENGL_SCALING", "0", 0);
    if (SDL_Init(SDL_INIT_VIDEO) < 0)
        return false;
    if (!SDL_SetVideoMode(16, 16, 0, SDL_OPENGL)) {
        SDL_Quit();
        return false;
    }
    std::atexit(SDL_Quit);
    return true;
}
