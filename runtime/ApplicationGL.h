// The application shell's interface: display settings, title, frame timer and event handlers.
#pragma once

#include "runtime/AppInfo.h"

class Timer;

class ApplicationGL {
public:
    ApplicationGL();
    // Deletes the frame timer.
    virtual ~ApplicationGL();

    virtual bool run(int argc, char** argv) = 0;
    virtual void onDisplay() = 0;
    virtual void onUpdate(float seconds) = 0;
    virtual void onResize(int width, int height) = 0;
    virtual void onKey(unsigned char key) = 0;
    virtual void onMouseButton(int x, int y, int button) = 0;
    virtual void onMouseMove(int x, int y) = 0;
    virtual void onInit() = 0;
    virtual void onQuit() = 0;
    virtual void onActivate() = 0;
    virtual void onDeactivate() = 0;
    virtual void sendQuit() = 0;
    virtual bool setupGL() = 0;
    virtual bool shutdownGL() = 0;
    virtual void swapBuffersGL() = 0;
    virtual bool keyPressed(int key) const;
    virtual bool keyReleased(int key) const;

    // Takes effect at the next run.
    void setInfo(const AppInfo& info);
    // Applied to the window when it opens, not to an open one.
    void setTitle(const char* title);
    void setSize(int width, int height);
    Timer* getTimer() const { return timer; }

    const AppInfo& getInfo() const { return info; }
    const char* getTitle() const { return title; }
    bool isGLReady() const { return glReady; }
    bool isFullscreen() const { return currentFullscreen; }
    int getWidth() const { return currentWidth; }
    int getHeight() const { return currentHeight; }
    int getBitsPerPixel() const { return currentBitsPerPixel; }
    int getDepthBits() const { return currentDepthBits; }
    int getStencilBits() const { return currentStencilBits; }

protected:
    // Swaps in another frame clock (a fixed-step one for offline capture); owns it.
    void setTimer(Timer* replacement);

    char* title;
    AppInfo info;
    bool glReady;
    bool unusedFlag;
    bool currentFullscreen;
    int currentWidth;
    int currentHeight;
    int currentBitsPerPixel;
    int currentDepthBits;
    int currentStencilBits;
    Timer* timer;

private:
    ApplicationGL(const ApplicationGL&) = delete;
    ApplicationGL& operator=(const ApplicationGL&) = delete;
};
