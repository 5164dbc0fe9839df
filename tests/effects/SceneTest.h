// The scenes' GL fixture: the demo's set-up before each test; the cameras and the fog gone after it.
#pragma once

#include "SceneHarness.h"

#include "scene/CameraMgr.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <unistd.h>

// Skips a test that needs the forged data tree when `file` is not in the working directory.
#define SKIP_WITHOUT_DATA(file) \
    if (access(file, R_OK) != 0) \
    GTEST_SKIP() << "no forged data tree in the working directory"

class SceneTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        SceneHarness::prepare();
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->shutdown();
        glDisable(GL_FOG);
        GLTest::TearDown();
    }
};
