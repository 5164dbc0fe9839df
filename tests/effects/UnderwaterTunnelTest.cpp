// The underwater tunnel: the angle's wrap, a start with and without its data, its fog, and what shutdown leaves.
#include "effects/UnderwaterTunnel.h"

#include "gl/GLEXT.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "support/GLContext.h"
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

// One turn in 32 seconds; a full turn wraps to the start, but a very long frame is reduced only once.
TEST(UnderwaterTunnelAngle, WrapsOnceAtAFullTurn)
{
    const struct { int frames; float seconds; float angle; } cases[] = {
        {1, 1.0f, STEP}, {1, 32.0f, 0.0f}, {33, 1.0f, STEP}, {1, 70.0f, 70.0f * STEP - UnderwaterTunnel::TURN}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.frames * c.seconds);
        UnderwaterTunnel tunnel(0, SPAN);
        for (int i = 0; i < c.frames; ++i)
            tunnel.update(c.seconds);
        EXPECT_NEAR(tunnel.getAngle(), c.angle, 1e-4f);
    }
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
};

}

TEST_F(UnderwaterTunnelTest, WithoutItsDataTheScenePrintsItsMessagesAndStillRuns)
{
    char dir[] = "/tmp/tunnel-empty-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    char* previous = getcwd(nullptr, 0);
    ASSERT_EQ(chdir(dir), 0);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    {
        UnderwaterTunnel tunnel(0, SPAN);
        tunnel.initiate();
        EXPECT_EQ(tunnel.getTunnel(), nullptr);
        EXPECT_EQ(tunnel.getShipAnimation(), nullptr);
        // Fog in the clear colour; its start is set although the exponential mode does not use it.
        GLint mode = 0;
        glGetIntegerv(GL_FOG_MODE, &mode);
        EXPECT_EQ(mode, GL_EXP);
        GLfloat fog[10];
        glGetFloatv(GL_FOG_DENSITY, fog);
        glGetFloatv(GL_FOG_START, fog + 1);
        glGetFloatv(GL_FOG_COLOR, fog + 2);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, fog + 6);
        EXPECT_EQ(std::vector<float>(fog, fog + 6), (std::vector<float>{0.1f, 190.0f, 0.1f, 0.15f, 0.2f, 1.0f}));
        EXPECT_EQ(std::vector<float>(fog + 2, fog + 6), std::vector<float>(fog + 6, fog + 10));
        for (int i = 0; i < 2; ++i) {
            tunnel.update(0.1f);
            tunnel.display();
        }
        tunnel.shutdown();
        EXPECT_FALSE(glIsEnabled(GL_FOG));
    }
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(chdir(previous), 0);
    std::free(previous);
    rmdir(dir);
    for (const char* message : {"Unable to load tunnel data\n", "Unable to load ship\n",
                                "Unable to load ship animation\n", "UNABLE TO LOAD data/3d/leaf.msh\n",
                                "UNABLE TO LOAD data/3d/fanholder2.msh\n"})
        EXPECT_NE(errors.find(message), std::string::npos) << message << errors;
    // The missing tunnel is reported at every frame.
    const std::string draw = "Unable to DRAW tunnel\n";
    const size_t first = errors.find(draw);
    ASSERT_NE(first, std::string::npos) << errors;
    EXPECT_NE(errors.find(draw, first + draw.size()), std::string::npos) << errors;
    EXPECT_EQ(out.find("OpenGL ERROR"), std::string::npos) << out;
}

// The capture program's scene-coverage run checks that the loaded scene draws.
TEST_F(UnderwaterTunnelTest, WithItsDataEverythingLoadsAndIsWiredTogether)
{
    if (access("data/3d/tunnel3.oct", R_OK) != 0)
        GTEST_SKIP() << "no forged data tree in the working directory";
    testing::internal::CaptureStderr();
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(tunnel.getTunnel(), nullptr);
    EXPECT_TRUE(tunnel.getTunnel()->isComplete());
    ASSERT_NE(tunnel.getShipAnimation(), nullptr);
    EXPECT_EQ(tunnel.getShipAnimation()->getMesh(), tunnel.getShip());
    ASSERT_NE(tunnel.getCameraAnimation(), nullptr);
    EXPECT_EQ(tunnel.getCameraAnimation()->getCamera(), CameraMgr::getHandle()->find("TunnelCamera"));
    EXPECT_NE(tunnel.getObject(UnderwaterTunnel::OBJECT_COUNT - 1), nullptr);
    ASSERT_NE(tunnel.getTunnelMaterial(), nullptr);
    EXPECT_EQ(tunnel.getTunnelMaterial()->getFlags(), 0x10000483ul);
    tunnel.shutdown();
    EXPECT_EQ(tunnel.getTunnel(), nullptr);
    EXPECT_EQ(LightMgr::getHandle()->find("TunnelLight1"), nullptr);
}
