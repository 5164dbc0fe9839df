// The requested display settings handed to the application shell.
#pragma once

struct AppInfo {
    bool cursor = true;
    bool fullscreen = false;
    int width = 640;
    int height = 480;
    // The shell replaces it by the desktop's depth.
    int bitsPerPixel = 16;
    int depthBuffer = 16;
    int stencilBuffer = 0;
    // Copied along, read by nobody.
    int extra = 0;
};
