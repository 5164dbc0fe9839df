// SceneHarness: the demo's frame steps without the demo, and a working directory with no data in it.
#include "SceneHarness.h"

#include "effects/SceneKit.h"
#include "gl/GLEXT.h"
#include "runtime/Effect.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "support/GLContext.h"
#include "texture/MaterialMgr.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdlib>

void SceneHarness::prepare()
{
    GLEXT::bindAll();
    if (TextureMgr::getHandle()->getLoaderCount() == 0)
        TextureMgr::getHandle()->registerStandardLoaders();
    CameraMgr::getHandle()->onResize(GLContext::width(), GLContext::height());
}

std::vector<unsigned char> SceneHarness::drawFrame(Effect& effect)
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera) {
        camera->lookAt();
        LightMgr::getHandle()->reorient(*camera);
    }
    effect.display();
    std::vector<unsigned char> pixels(static_cast<size_t>(GLContext::width() * GLContext::height() * 4));
    glReadPixels(0, 0, GLContext::width(), GLContext::height(), GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

SceneHarness::Output SceneHarness::inEmptyDirectory(const std::function<void()>& body)
{
    // Pictures cached by earlier tests of this process would stand in for the missing files.
    MaterialMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->registerStandardLoaders();
    char dir[] = "/tmp/velmora-scene-empty-XXXXXX";
    Output output;
    if (!mkdtemp(dir)) {
        ADD_FAILURE() << "cannot make a directory";
        return output;
    }
    char* previous = getcwd(nullptr, 0);
    EXPECT_EQ(chdir(dir), 0);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    body();
    output.out = testing::internal::GetCapturedStdout();
    output.errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(chdir(previous), 0);
    std::free(previous);
    rmdir(dir);
    return output;
}

std::string SceneHarness::missingLines(const char* scene, const std::vector<std::string>& files)
{
    std::string lines;
    for (const std::string& file : files)
        lines += SceneKit::missingMessage(scene, file.c_str());
    return lines;
}
