// What the scene tests share: the GL fixture, the skip without the forged data, and a run without it.
#pragma once

#include "MissingData.h"
#include "SceneHarness.h"

#include "runtime/Effect.h"
#include "scene/CameraMgr.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <unistd.h>

// Skips a test that needs the forged data tree when `file` is not in the working directory.
#define SKIP_WITHOUT_DATA(file)  \
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

// Starts a scene where none of its files are, lets `started` look at it, draws `frames` frames `seconds` apart as
// the demo draws them and shuts it down; `run` keeps what it printed.
template <typename Scene, typename Started>
void runWithoutData(MissingData& run, const EffectTimer& span, int frames, float seconds, Started started)
{
    ASSERT_TRUE(run.entered());
    {
        Scene scene(0, span);
        scene.initiate();
        started(scene);
        for (int i = 0; i < frames; ++i) {
            scene.update(seconds);
            SceneHarness::drawFrame(scene);
        }
        scene.shutdown();
    }
    run.finish();
}
