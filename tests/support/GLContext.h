// One SDL OpenGL window per test process, for tests that read GL state back.
#pragma once

#include <gtest/gtest.h>

class GLContext {
public:
    // Opens the window on first use; false when no GL can be had.
    static bool ensure(int width = 128, int height = 128);
    static int width();
    static int height();
    // One RGBA pixel of the current frame (before any swap).
    static void readPixel(int x, int y, unsigned char rgba[4]);
};

// Fails the test without a context; each test starts on a cleared frame with identity matrices.
class GLTest : public ::testing::Test {
protected:
    void SetUp() override;
    // llvmpipe can crash compiling work still queued when the context is torn down at exit.
    void TearDown() override;
};
