// A GL context for the few engine loads that need one (mipmapped textures, lights), opened only when asked for.
#pragma once

class OffscreenGL {
public:
    // True when a context is current, opening a hidden one through SDL if none is.
    static bool ensure();
};
