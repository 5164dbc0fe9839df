// The underwater tunnel: the angle's wrap, a start with and without its data, fog, and what shutdown leaves.
#include "effects/UnderwaterTunnel.h"

#include "gl/GLEXT.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "support/GLContext.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const EffectTimer SPAN(109.0f, 142.5f);
const float STEP = UnderwaterTunnel::TURN * 0.03125f;

}

TEST(UnderwaterTunnelAngle, TurnsOnceInThirtyTwoSeconds)
{
    UnderwaterTunnel tunnel(0, SPAN);
    EXPECT_EQ(tunnel.getAngle(), 0.0f);
    tunnel.update(1.0f);
    EXPECT_FLOAT_EQ(tunnel.getAngle(), STEP);
    EXPECT_NEAR(tunnel.getTimer().getCurrent(), 110.0f, 1e-4f);
}

TEST(UnderwaterTunnelAngle, ReachingAFullTurnWrapsToTheStart)
{
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.update(32.0f);
    EXPECT_NEAR(tunnel.getAngle(), 0.0f, 1e-5f);
    EXPECT_LT(tunnel.getAngle(), UnderwaterTunnel::TURN);
}

TEST(UnderwaterTunnelAngle, StepsPastTheTurnKeepTheRemainder)
{
    UnderwaterTunnel tunnel(0, SPAN);
    for (int i = 0; i < 33; ++i)
        tunnel.update(1.0f);
    EXPECT_NEAR(tunnel.getAngle(), STEP, 1e-4f);
}

TEST(UnderwaterTunnelAngle, AVeryLongFrameIsReducedOnlyOnce)
{
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.update(70.0f);
    EXPECT_NEAR(tunnel.getAngle(), 70.0f * STEP - UnderwaterTunnel::TURN, 1e-4f);
    EXPECT_GT(tunnel.getAngle(), UnderwaterTunnel::TURN);
}

TEST(UnderwaterTunnelLayout, ObjectsAndGlowsStandAtTheirPlaces)
{
    EXPECT_STREQ(UnderwaterTunnel::objectFile(0), "data/3d/leaf.msh");
    EXPECT_STREQ(UnderwaterTunnel::objectFile(4), "data/3d/fanholder2.msh");
    EXPECT_EQ(UnderwaterTunnel::objectPosition(2).x, -187.0f);
    // The fan and its holder share one place.
    EXPECT_EQ(UnderwaterTunnel::objectPosition(3).y, UnderwaterTunnel::objectPosition(4).y);
    EXPECT_EQ(UnderwaterTunnel::clusterPosition(6).x, -215.0f);
    EXPECT_EQ(UnderwaterTunnel::clusterColor(0), Color(1.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_EQ(UnderwaterTunnel::clusterColor(1), Color(1.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(UnderwaterTunnel::clusterColor(2), Color(0.0f, 1.0f, 1.0f, 1.0f));
}

namespace {

class UnderwaterTunnelTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        GLEXT::bindAll();
        if (TextureMgr::getHandle()->getLoaderCount() == 0)
            TextureMgr::getHandle()->registerStandardLoaders();
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->remove("TunnelCamera");
        glDisable(GL_FOG);
        GLTest::TearDown();
    }

    static bool haveData() { return access("data/3d/tunnel3.oct", R_OK) == 0; }

    // Runs a start, some frames and the end in an empty directory; returns the error stream.
    static std::string runWithoutData(std::string& out)
    {
        char dir[] = "/tmp/tunnel-empty-XXXXXX";
        if (!mkdtemp(dir))
            return "";
        char* previous = getcwd(nullptr, 0);
        if (chdir(dir) != 0) {
            std::free(previous);
            return "";
        }
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        {
            UnderwaterTunnel tunnel(0, SPAN);
            tunnel.initiate();
            EXPECT_EQ(tunnel.getTunnel(), nullptr);
            EXPECT_EQ(tunnel.getShip(), nullptr);
            EXPECT_EQ(tunnel.getShipAnimation(), nullptr);
            EXPECT_EQ(tunnel.getCameraAnimation(), nullptr);
            for (int i = 0; i < 2; ++i) {
                tunnel.update(0.1f);
                tunnel.display();
            }
            tunnel.shutdown();
        }
        out = testing::internal::GetCapturedStdout();
        std::string errors = testing::internal::GetCapturedStderr();
        EXPECT_EQ(chdir(previous), 0);
        std::free(previous);
        rmdir(dir);
        return errors;
    }
};

}

TEST_F(UnderwaterTunnelTest, WithoutItsDataTheScenePrintsItsMessagesAndStillRuns)
{
    std::string out;
    const std::string errors = runWithoutData(out);
    EXPECT_NE(errors.find("Unable to load tunnel data\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Unable to load ship\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Unable to load ship animation\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("UNABLE TO LOAD data/3d/leaf.msh\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("UNABLE TO LOAD data/3d/fanholder2.msh\n"), std::string::npos) << errors;
    // The missing tunnel is reported at every frame.
    const std::string draw = "Unable to DRAW tunnel\n";
    const size_t first = errors.find(draw);
    ASSERT_NE(first, std::string::npos) << errors;
    EXPECT_NE(errors.find(draw, first + draw.size()), std::string::npos) << errors;
    EXPECT_EQ(out.find("OpenGL ERROR"), std::string::npos) << out;
}

TEST_F(UnderwaterTunnelTest, WithItsDataEverythingLoadsAndAFrameDrawsCleanly)
{
    if (!haveData())
        GTEST_SKIP() << "no forged data tree in the working directory";
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.initiate();
    for (int i = 0; i < 3; ++i) {
        tunnel.update(1.0f / 30.0f);
        Camera* camera = CameraMgr::getHandle()->getActiveCamera();
        ASSERT_NE(camera, nullptr);
        camera->resize(GLContext::width(), GLContext::height());
        camera->lookAt();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        tunnel.display();
    }
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(errors, "");
    EXPECT_EQ(out, "");

    ASSERT_NE(tunnel.getTunnel(), nullptr);
    EXPECT_TRUE(tunnel.getTunnel()->isComplete());
    ASSERT_NE(tunnel.getShipAnimation(), nullptr);
    EXPECT_EQ(tunnel.getShipAnimation()->getMesh(), tunnel.getShip());
    ASSERT_NE(tunnel.getCameraAnimation(), nullptr);
    EXPECT_EQ(tunnel.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find("TunnelCamera"));
    EXPECT_EQ(CameraMgr::getHandle()->getActiveCamera(), CameraMgr::getHandle()->find("TunnelCamera"));
    for (int i = 0; i < UnderwaterTunnel::OBJECT_COUNT; ++i)
        EXPECT_NE(tunnel.getObject(i), nullptr) << i;
    for (int i = 0; i < UnderwaterTunnel::CLUSTER_COUNT; ++i)
        EXPECT_NE(tunnel.getCluster(i), nullptr) << i;
    ASSERT_NE(tunnel.getTunnelMaterial(), nullptr);
    EXPECT_EQ(tunnel.getTunnelMaterial()->getFlags(), 0x10000483ul);
    EXPECT_NE(LightMgr::getHandle()->find("TunnelLight1"), nullptr);
    EXPECT_NE(LightMgr::getHandle()->find("TunnelLight2"), nullptr);

    // The walls fill the view in front of the fog colour.
    unsigned char rgba[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() - 4, rgba);
    EXPECT_NE(rgba[1], 38) << "the wall at the top of the view is the bare clear colour";

    tunnel.shutdown();
    EXPECT_EQ(tunnel.getTunnel(), nullptr);
    EXPECT_EQ(LightMgr::getHandle()->find("TunnelLight1"), nullptr);
    EXPECT_FALSE(glIsEnabled(GL_FOG));
}

TEST_F(UnderwaterTunnelTest, StartFillsTheViewWithTealFog)
{
    std::string out;
    testing::internal::CaptureStderr();
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.initiate();
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(glIsEnabled(GL_FOG));
    GLint mode = 0;
    glGetIntegerv(GL_FOG_MODE, &mode);
    EXPECT_EQ(mode, GL_EXP);
    GLfloat density = 0.0f;
    glGetFloatv(GL_FOG_DENSITY, &density);
    EXPECT_FLOAT_EQ(density, 0.1f);
    GLfloat fog[4];
    glGetFloatv(GL_FOG_COLOR, fog);
    GLfloat clear[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    for (int i = 0; i < 4; ++i)
        EXPECT_FLOAT_EQ(fog[i], clear[i]);
    EXPECT_FLOAT_EQ(fog[2], 0.2f);
    tunnel.shutdown();
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[2], 0.0f);
}
