// The logo sheet: its resting grid, the wave at phase 0, the phase wrap, and the view it covers.
#include "effects/Logo.h"

#include "scene/LightMgr.h"
#include "support/GLContext.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstring>

namespace {

const char* const LOGO = "data/img/logo.png";

class LogoTest : public GLTest {
protected:
    Logo logo{0, EffectTimer(68.5f, 76.0f)};

    void SetUp() override
    {
        GLTest::SetUp();
        // A white stand-in for the picture, under its name in the cache.
        unsigned char* pixels = new unsigned char[4 * 4 * 3];
        std::memset(pixels, 255, 4 * 4 * 3);
        TextureMgr::getHandle()->addTexture(new Texture(LOGO, 4, 4, 24, 7, pixels));
        logo.initiate();
    }
    void TearDown() override { TextureMgr::getHandle()->removeTexture(LOGO); }
};

}  // namespace

TEST_F(LogoTest, RestingGridStopsOneTwelfthShortOfThePicturesEdgesAndTheWaveStartsFromTheBottomRow)
{
    const Logo::GridVertex& first = logo.getVertex(0, 0);
    EXPECT_EQ(first.x + first.y + first.u, 0.0f);
    EXPECT_EQ(first.v, 1.0f);
    const Logo::GridVertex& last = logo.getVertex(11, 11);
    EXPECT_NEAR(last.u, 11.0f / 12.0f, 1e-6f);
    EXPECT_NEAR(last.v, 1.0f / 12.0f, 1e-6f);
    EXPECT_NEAR(last.x, 586.6667f, 1e-3f);
    EXPECT_EQ(last.y, 440.0f);
    logo.update(0.0f);
    EXPECT_NEAR(logo.getVertex(0, 0).x, -33.3333f, 1e-3f);
    EXPECT_NEAR(logo.getVertex(0, 0).y, -20.0f, 1e-3f);
    EXPECT_NEAR(logo.getVertex(11, 0).y, 495.443f, 1e-2f);
    EXPECT_NEAR(logo.getVertex(5, 7).u, 7.0f / 12.0f, 1e-5f);
}

TEST_F(LogoTest, PhaseWrapsOnlyAbove360)
{
    logo.update(8.0f);
    EXPECT_EQ(logo.getPhase(), 360.0f);
    logo.update(0.0f);
    EXPECT_EQ(logo.getPhase(), 360.0f);
    logo.update(1.0f);
    EXPECT_EQ(logo.getPhase(), 45.0f);
}

TEST_F(LogoTest, FillsTheViewInTheColourLeftCurrentAndGivesItsTextureBack)
{
    glEnable(GL_CULL_FACE);
    // The sheet sets no colour of its own: the white picture takes the colour left current.
    glColor3f(1.0f, 0.0f, 0.0f);
    LightMgr::getHandle()->turnLightingOff();
    logo.update(0.0f);
    logo.display();
    const int w = GLContext::width() - 1;
    const int h = GLContext::height() - 1;
    const int points[][2] = {{0, 0}, {w, 0}, {0, h}, {w, h}, {w / 2, h / 2}};
    for (const auto& p : points) {
        unsigned char rgba[4];
        GLContext::readPixel(p[0], p[1], rgba);
        EXPECT_EQ(rgba[0] * 1000000 + rgba[1] * 1000 + rgba[2], 255 * 1000000) << p[0] << "," << p[1];
    }
    EXPECT_TRUE(LightMgr::getHandle()->isLightingOn());
    LightMgr::getHandle()->turnLightingOff();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    logo.shutdown();
    EXPECT_EQ(TextureMgr::getHandle()->findTexture(LOGO), nullptr);
}
