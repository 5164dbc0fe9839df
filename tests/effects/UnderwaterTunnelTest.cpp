// The underwater tunnel: the angle's wrap, a start with and without its data, its fog, and what shutdown leaves.
#include "effects/UnderwaterTunnel.h"

#include "SceneTest.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "support/OffscreenFrame.h"
#include "texture/MulTextureMaterial.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

const EffectTimer SPAN(109.0f, 142.5f);
const float STEP = UnderwaterTunnel::TURN * 0.03125f;

}  // namespace

// One turn in 32 seconds; a full turn wraps to the start, but a very long frame is reduced only once.
TEST(UnderwaterTunnelAngle, WrapsOnceAtAFullTurn)
{
    const struct {
        int frames;
        float seconds;
        float angle;
    } cases[] = {
        {1, 1.0f, STEP}, {1, 32.0f, 0.0f}, {33, 1.0f, STEP}, {1, 70.0f, 70.0f * STEP - UnderwaterTunnel::TURN}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.frames * c.seconds);
        UnderwaterTunnel tunnel(0, SPAN);
        for (int i = 0; i < c.frames; ++i)
            tunnel.update(c.seconds);
        EXPECT_NEAR(tunnel.getAngle(), c.angle, 1e-4f);
    }
}

class UnderwaterTunnelTest : public SceneTest {};

TEST_F(UnderwaterTunnelTest, WithoutItsDataTheScenePrintsItsMessagesAndStillRuns)
{
    MissingData nothing;
    runWithoutData<UnderwaterTunnel>(nothing, SPAN, 2, 0.1f, [](UnderwaterTunnel& tunnel) {
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
    });
    EXPECT_FALSE(glIsEnabled(GL_FOG));
    const std::string& errors = nothing.getErrors();
    for (const char* message :
         {"Unable to load tunnel data\n", "Unable to load ship\n", "Unable to load ship animation\n",
          "UNABLE TO LOAD data/3d/leaf.msh\n", "UNABLE TO LOAD data/3d/fanholder2.msh\n"})
        EXPECT_NE(errors.find(message), std::string::npos) << message << errors;
    // The camera path's absence is not among the scene's messages.
    EXPECT_EQ(errors.find("camera_tunnel.cam"), std::string::npos) << errors;
    // The missing tunnel is reported at every frame.
    const std::string draw = "Unable to DRAW tunnel\n";
    const size_t first = errors.find(draw);
    ASSERT_NE(first, std::string::npos) << errors;
    EXPECT_NE(errors.find(draw, first + draw.size()), std::string::npos) << errors;
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}

// The capture program's contact sheet checks that the loaded scene draws.
TEST_F(UnderwaterTunnelTest, WithItsDataEverythingLoadsAndIsWiredTogether)
{
    SKIP_WITHOUT_DATA(TunnelLayout::OCTREE);
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
    ASSERT_NE(tunnel.getTunnelMaterial(), nullptr);
    EXPECT_EQ(tunnel.getTunnelMaterial()->getFlags(), 0x10000483ul);
    tunnel.shutdown();
    EXPECT_EQ(tunnel.getTunnel(), nullptr);
    EXPECT_EQ(LightMgr::getHandle()->find("TunnelLight1"), nullptr);
}

// The walls, the objects and the glows take the state they find: the colour left current tints the
// unlit walls, and the glows are fogged into the tunnel's own colour like everything else.
TEST_F(UnderwaterTunnelTest, WallsTakeTheColourLeftCurrentAndGlowsFadeIntoTheFog)
{
    SKIP_WITHOUT_DATA(TunnelLayout::OCTREE);
    UnderwaterTunnel tunnel(0, SPAN);
    tunnel.initiate();
    for (int i = 0; i < 5; ++i)
        tunnel.update(0.1f);
    const auto frame = [&](float red, float green, float blue) {
        glColor4f(red, green, blue, 1.0f);
        return SceneHarness::drawFrame(tunnel);
    };
    const std::vector<unsigned char> white = frame(1.0f, 1.0f, 1.0f);
    const std::vector<unsigned char> red = frame(1.0f, 0.0f, 0.0f);
    long greenWhite = 0, greenRed = 0;
    for (size_t i = 1; i < white.size(); i += 4) {
        greenWhite += white[i];
        greenRed += red[i];
    }
    EXPECT_LT(greenRed, greenWhite * 9 / 10) << "the walls did not take the current colour";
    tunnel.shutdown();
}

TEST_F(UnderwaterTunnelTest, AFarGlowAddsTheFogColourNotBlack)
{
    // With no data only the glows are left; untextured, each particle is a flat quad of its colour.
    MissingData nothing;
    ASSERT_TRUE(nothing.entered());
    {
        UnderwaterTunnel tunnel(0, SPAN);
        tunnel.initiate();
        for (int i = 0; i < 10; ++i)
            tunnel.update(0.05f);
        // The magenta glow, seen from 40 units away: the fog leaves almost nothing of its own colour.
        const Vector3 glow = TunnelLayout::CLUSTER_POSITIONS[0];
        Camera* camera = CameraMgr::getHandle()->getActiveCamera();
        ASSERT_NE(camera, nullptr);
        camera->lookAt(glow + Vector3(0.0f, 0.0f, 40.0f), glow);
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        camera->lookAt();
        tunnel.display();
        unsigned char centre[4];
        GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, centre);
        // Magenta has no green: green here is the fog's teal, added by the glow.
        EXPECT_GT(centre[1], 8) << int(centre[0]) << "," << int(centre[1]) << "," << int(centre[2]);
        tunnel.shutdown();
    }
}

// Loaded piece by piece while another scene draws, the tunnel leaves that scene's texture state alone, needs nothing
// more at its start, and draws what a tunnel loading everything at its start draws.
TEST_F(UnderwaterTunnelTest, LoadedAheadItDrawsWhatAFreshStartDraws)
{
    SKIP_WITHOUT_DATA(TunnelLayout::OCTREE);
    OffscreenFrame frame(320, 240);
    ASSERT_TRUE(frame.isComplete());
    const auto run = [&](bool ahead) {
        UnderwaterTunnel tunnel(0, SPAN);
        if (ahead) {
            GLuint other = 0;
            glGenTextures(1, &other);
            glBindTexture(GL_TEXTURE_2D, other);
            glEnable(GL_TEXTURE_2D);
            int steps = 1;
            while (tunnel.preload())
                ++steps;
            EXPECT_EQ(steps, 5 + 4 + UnderwaterTunnel::OBJECT_COUNT);
            EXPECT_NE(tunnel.getTunnel(), nullptr);
            EXPECT_NE(tunnel.getObject(UnderwaterTunnel::OBJECT_COUNT - 1), nullptr);
            GLint binding = 0;
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
            EXPECT_EQ(static_cast<GLuint>(binding), other);
            EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
            glDisable(GL_TEXTURE_2D);
            glDeleteTextures(1, &other);
        }
        // The glows are random: both runs draw the same ones.
        std::srand(19);
        testing::internal::CaptureStderr();
        tunnel.initiate();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_FALSE(tunnel.preload());
        CameraMgr::getHandle()->onResize(frame.getWidth(), frame.getHeight());
        std::vector<unsigned char> pixels;
        for (int i = 0; i < 30; ++i) {
            tunnel.update(0.1f);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            CameraMgr::getHandle()->getActiveCamera()->lookAt();
            tunnel.display();
        }
        pixels = frame.read();
        tunnel.shutdown();
        return pixels;
    };
    // The first start in a process makes the shared camera and materials that later starts find: both compared
    // runs come after one.
    run(false);
    const std::vector<unsigned char> ahead = run(true);
    const std::vector<unsigned char> fresh = run(false);
    EXPECT_EQ(OffscreenFrame::countDifferences(ahead, fresh, 0), 0u);
    EXPECT_GT(OffscreenFrame::countDifferences(ahead, std::vector<unsigned char>(ahead.size(), 0), 0),
              ahead.size() / 2);
}
