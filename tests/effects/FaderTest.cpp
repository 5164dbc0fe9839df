// Colour fades: the opacity ramp and its clamps, what they draw, and the GL state they leave.
#include "effects/Fader.h"
#include "effects/TextureFader.h"
#include "scene/LightMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstring>

namespace {

const Color white(1.0f, 1.0f, 1.0f, 1.0f);

// Checks the corners and the centre of the frame.
void expectWholeFrame(int r, int g, int b, int tolerance = 0)
{
    int w = GLContext::width() - 1;
    int h = GLContext::height() - 1;
    const int points[][2] = {{0, 0}, {w, 0}, {0, h}, {w, h}, {w / 2, h / 2}};
    for (const auto& p : points) {
        unsigned char rgba[4];
        GLContext::readPixel(p[0], p[1], rgba);
        SCOPED_TRACE(std::to_string(p[0]) + "," + std::to_string(p[1]));
        EXPECT_NEAR(rgba[0], r, tolerance);
        EXPECT_NEAR(rgba[1], g, tolerance);
        EXPECT_NEAR(rgba[2], b, tolerance);
    }
}

// The four quarter points, the centres of a 2 x 2 picture's texels: top left, top right, bottom left, bottom right.
void expectQuadrants(const unsigned char (&rgb)[4][3], int tolerance)
{
    int w = GLContext::width(), h = GLContext::height();
    const int points[][2] = {{w / 4, 3 * h / 4}, {3 * w / 4, 3 * h / 4}, {w / 4, h / 4}, {3 * w / 4, h / 4}};
    for (int i = 0; i < 4; ++i) {
        unsigned char rgba[4];
        GLContext::readPixel(points[i][0], points[i][1], rgba);
        SCOPED_TRACE("quadrant " + std::to_string(i));
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(rgba[c], rgb[i][c], tolerance);
    }
}

// A fader from 35 to 36 s, started and advanced by the given frame times.
Fader started(const Color& colour, std::initializer_list<float> frames)
{
    Fader fader(colour, 100, EffectTimer(35.0f, 36.0f));
    fader.initiate();
    for (float seconds : frames)
        fader.update(seconds);
    return fader;
}

}  // namespace

TEST(FaderRamp, RisesToOneAtTheMiddleAndFallsToZeroAtTheEnd)
{
    Fader fader = started(white, {});
    for (float alpha : {0.5f, 1.0f, 0.5f, 0.0f}) {
        fader.update(0.25f);
        EXPECT_EQ(fader.getAlpha(), alpha);
    }
    // Landing on 0 exactly still counts as descending; going below stops the fade.
    EXPECT_EQ(fader.getRate(), -2.0f);
    fader.update(0.25f);
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    EXPECT_EQ(fader.getRate(), 0.0f);
    // Overshooting the middle descends from exactly one.
    Fader overshot = started(white, {0.7f});
    EXPECT_EQ(overshot.getAlpha(), 1.0f);
    overshot.update(0.125f);
    EXPECT_EQ(overshot.getAlpha(), 0.75f);
}

TEST(TextureFaderRamp, KeepsItsOwnNameAndNeverRises)
{
    char name[] = "data/img/flash.png";
    TextureFader fader(name, white, 100, EffectTimer(0.0f, 1.0f));
    std::strcpy(name, "changed");
    EXPECT_STREQ(fader.getTextureName(), "data/img/flash.png");
    fader.initiate();
    fader.update(0.5f);
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    fader.shutdown();
}

class FaderDraw : public GLTest {};

TEST_F(FaderDraw, WhiteAtAQuarterIsMidGrey)
{
    started(white, {0.25f}).display();
    expectWholeFrame(128, 128, 128, 1);
}

TEST_F(FaderDraw, CoversWhateverTheSceneLeftAndRestoresItWithLightingLeftOff)
{
    glMatrixMode(GL_PROJECTION);
    glFrustum(-1, 1, -1, 1, 1, 100);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(5, -3, -40);
    glRotatef(70, 1, 0, 0);
    LightMgr::getHandle()->turnLightingOn();
    GLfloat before[32], after[32];
    glGetFloatv(GL_PROJECTION_MATRIX, before);
    glGetFloatv(GL_MODELVIEW_MATRIX, before + 16);

    started(white, {0.5f}).display();
    // Lit drawing would have darkened the quad to the ambient term.
    expectWholeFrame(255, 255, 255);

    glGetFloatv(GL_PROJECTION_MATRIX, after);
    glGetFloatv(GL_MODELVIEW_MATRIX, after + 16);
    EXPECT_EQ(0, std::memcmp(before, after, sizeof after));
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST) && glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND) || glIsEnabled(GL_COLOR_MATERIAL) || glIsEnabled(GL_LIGHTING));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
}

TEST_F(FaderDraw, LightingIsNotedAndTurnedOffThroughTheLightMgrAndLeftOff)
{
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOn();
    started(white, {0.5f}).display();
    EXPECT_FALSE(lights->isLightingOn());
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    // Only the manager's flag is asked: lighting it does not know about is left alone.
    glEnable(GL_LIGHTING);
    started(white, {0.5f}).display();
    EXPECT_FALSE(lights->isLightingOn());
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    glDisable(GL_LIGHTING);
}

TEST_F(FaderDraw, TextureFaderLaysItsCachedPictureTintedAtTheFadersOpacityAndRemovesItAtShutdown)
{
    // 2 x 2 RGB, first row red then green, second row blue then white.
    TextureMgr* cache = TextureMgr::getHandle();
    cache->addTexture(new Texture("fade.picture", 2, 2, 24, 7,
                                  new unsigned char[12]{255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}));
    TextureFader fader("fade.picture", Color(1.0f, 0.5f, 1.0f, 1.0f), 100, EffectTimer(35.0f, 36.0f));
    fader.initiate();
    EXPECT_EQ(fader.getTexture(), cache->findTexture("fade.picture"));
    // With a plain fader's rate it shows, first row at the top: half at a quarter of the span, whole at the middle.
    fader.Fader::initiate();
    const unsigned char quarter[4][3] = {{128, 0, 0}, {0, 64, 0}, {0, 0, 128}, {128, 64, 128}};
    const unsigned char middle[4][3] = {{255, 0, 0}, {0, 128, 0}, {0, 0, 255}, {255, 128, 255}};
    fader.update(0.25f);
    fader.display();
    expectQuadrants(quarter, 3);
    glClear(GL_COLOR_BUFFER_BIT);
    fader.update(0.25f);
    fader.display();
    expectQuadrants(middle, 3);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    fader.shutdown();
    EXPECT_EQ(cache->findTexture("fade.picture"), nullptr);
    EXPECT_EQ(fader.getTextureName(), nullptr);
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
}
