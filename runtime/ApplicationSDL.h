// The application shell over SDL 1.2: window, GL context, frame loop and event dispatch.
#pragma once

#include "runtime/ApplicationGL.h"

class ApplicationSDL : public ApplicationGL {
public:
    // Creates the frame timer.
    ApplicationSDL();
    ~ApplicationSDL() override;

    // The arguments are not used. False only when the display could not be set up.
    bool run(int argc, char** argv) override;
    void sendQuit() override;
    bool setupGL() override;
    bool shutdownGL() override;
    void swapBuffersGL() override;
    bool keyPressed(int key) const override;
    bool keyReleased(int key) const override;

    // GL colour channel sizes for a desktop depth.
    static void channelSizes(int bitsPerPixel, int& red, int& green, int& blue);

    // At most this many events are dispatched per frame; the rest wait.
    static const int EVENTS_PER_FRAME = 5;
    // Why setupGL refuses to run when SDL found no display and fell back on a windowless driver.
    static constexpr const char* NO_DISPLAY_REASON = "no X11 or Wayland display to open a window on";

protected:
    // Dispatches one frame's events; false once a quit event was seen.
    bool handleEvents();
    // Offline renderers draw without a window: they accept SDL's windowless fallback.
    void allowWindowless(bool allowed) { windowlessAllowed = allowed; }

private:
    // Reads the key-state table entry, or -1 for a key outside it.
    int keyState(int key) const;
    // False when SDL fell back on a windowless driver by itself and no window was wanted without one.
    bool hasRealDisplay() const;

    // Without a window (SDL's offscreen driver) a swap flushes nothing, so
    // queued frames would pile up in memory: finish each frame instead.
    bool finishAtSwap = false;
    bool windowlessAllowed = false;
};
