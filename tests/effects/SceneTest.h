// What the scene tests share: the GL fixture, the skip without the forged data, a run without it, and frames
// of a scene loaded ahead or not.
#pragma once

#include "MissingData.h"
#include "SceneHarness.h"

#include "effects/SceneKit.h"
#include "runtime/Effect.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Light.h"
#include "scene/LightMgr.h"
#include "support/GLContext.h"
#include "support/OffscreenFrame.h"

#include <GL/gl.h>
#include <unistd.h>
#include <cstdlib>
#include <vector>

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

// A plain white light from above, for lights that are not the scene's own.
inline const SceneKit::LightSetup WHITE_LIGHT = {Vector3(0.0f, 1.0f, 0.0f),
                                                 Color(0.1f, 0.1f, 0.1f, 1.0f),
                                                 Color(1.0f, 1.0f, 1.0f, 1.0f),
                                                 Color(1.0f, 1.0f, 1.0f, 1.0f),
                                                 {1.0f, 0.0f, 0.0f}};

// What a preload step could disturb of the GL state the scene on screen draws with.
inline std::vector<float> drawingState()
{
    std::vector<float> state;
    for (const GLenum capability :
         {GL_TEXTURE_2D, GL_FOG, GL_SCISSOR_TEST, GL_LIGHTING, GL_LIGHT0, GL_LIGHT1, GL_DEPTH_TEST, GL_BLEND})
        state.push_back(glIsEnabled(capability));
    GLint binding = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
    state.push_back(static_cast<float>(binding));
    for (const GLenum values : {GL_COLOR_CLEAR_VALUE, GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX}) {
        GLfloat read[16] = {};
        glGetFloatv(values, read);
        state.insert(state.end(), read, read + 16);
    }
    return state;
}

// Every third frame of a scene drawn for `frames` steps of `step` seconds, loaded ahead or not. Ahead, the steps
// run while another scene's state is set and its frame drawn: both must come through untouched.
template <typename Scene>
std::vector<unsigned char> framesOf(const EffectTimer& span, bool ahead, int frames, float step)
{
    OffscreenFrame frame(320, 240);
    EXPECT_TRUE(frame.isComplete());
    CameraMgr::getHandle()->onResize(frame.getWidth(), frame.getHeight());
    // As the demo sets it for every scene (the blast's flash leaves it on).
    glEnable(GL_DEPTH_TEST);
    Scene scene(0, span);
    if (ahead) {
        // The scene on screen: a picture bound, a light of its own on, its clear colour, a frame drawn.
        GLuint other = 0;
        glGenTextures(1, &other);
        glBindTexture(GL_TEXTURE_2D, other);
        glEnable(GL_TEXTURE_2D);
        const Light* light = SceneKit::directionalLight("OnScreen", WHITE_LIGHT);
        glClearColor(0.2f, 0.4f, 0.6f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glTranslatef(1.0f, 2.0f, 3.0f);
        const std::vector<float> before = drawingState();
        const std::vector<unsigned char> shown = frame.read();
        while (scene.preload()) {
        }
        EXPECT_EQ(drawingState(), before);
        EXPECT_TRUE(light->isOn());
        EXPECT_EQ(OffscreenFrame::countDifferences(frame.read(), shown, 0), 0u);
        LightMgr::getHandle()->remove("OnScreen");
        glDisable(GL_TEXTURE_2D);
        glDeleteTextures(1, &other);
        glLoadIdentity();
    }
    // Whatever a start draws at random, both runs draw the same.
    std::srand(19);
    testing::internal::CaptureStderr();
    scene.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::vector<unsigned char> seen;
    for (int i = 0; i < frames; ++i) {
        scene.update(step);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        Camera* camera = CameraMgr::getHandle()->getActiveCamera();
        camera->lookAt();
        LightMgr::getHandle()->reorient(*camera);
        scene.display();
        if (i % 3 == 0) {
            const std::vector<unsigned char> pixels = frame.read();
            seen.insert(seen.end(), pixels.begin(), pixels.end());
        }
    }
    scene.shutdown();
    return seen;
}
