// SceneHarness: the demo's frame steps without the demo, and what a run with no data may say.
#include "SceneHarness.h"

#include "MissingData.h"

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

void SceneHarness::forgetPictures()
{
    MaterialMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->registerStandardLoaders();
}

std::string SceneHarness::saidOnlyOnceEach(const MissingData& run, const char* scene, const char* const* files,
                                           size_t count)
{
    std::string why;
    size_t expected = 0;
    for (size_t i = 0; i < count; ++i) {
        const testing::AssertionResult once = run.saidOnce(scene, files[i]);
        if (!once)
            why += once.message() + std::string("\n");
        expected += SceneKit::missingMessage(scene, files[i]).size();
    }
    if (why.empty() && run.getErrors().size() != expected)
        why = "said more than its missing files:\n" + run.getErrors();
    return why;
}
