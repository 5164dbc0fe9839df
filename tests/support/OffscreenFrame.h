// A frame buffer object of its own size with colour and depth, for drawing whole frames in tests and reading them back.
#pragma once

#include <GL/gl.h>

#include <cstddef>
#include <vector>

class OffscreenFrame {
public:
    // Binds the new frame buffer and sets the viewport to it; needs a current context (GLContext).
    OffscreenFrame(int width, int height);
    // Binds the window's frame buffer again.
    ~OffscreenFrame();
    OffscreenFrame(const OffscreenFrame&) = delete;
    OffscreenFrame& operator=(const OffscreenFrame&) = delete;

    bool isComplete() const { return complete; }
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    // Every pixel as RGBA bytes, bottom row first.
    std::vector<unsigned char> read() const;
    // How many bytes differ between two frames by more than `tolerance`, and the largest difference.
    static size_t countDifferences(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b,
                                   int tolerance, int* largest = nullptr);

private:
    int width;
    int height;
    GLuint framebuffer = 0;
    GLuint colour = 0;
    GLuint depth = 0;
    bool complete = false;
};
