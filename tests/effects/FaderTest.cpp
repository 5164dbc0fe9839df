// Colour fades: the opacity ramp and its clamps, what they draw, and the GL state they leave.
#include "effects/Fader.h"
#include "effects/TextureFader.h"
#include "runtime/EffectMgr.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstring>

namespace {

const Color white(1.0f, 1.0f, 1.0f, 1.0f);
const Color black(0.0f, 0.0f, 0.0f, 1.0f);

void expectPixel(int x, int y, int r, int g, int b, int tolerance = 0)
{
    unsigned char rgba[4];
    GLContext::readPixel(x, y, rgba);
    EXPECT_NEAR(rgba[0], r, tolerance) << "at " << x << "," << y;
    EXPECT_NEAR(rgba[1], g, tolerance) << "at " << x << "," << y;
    EXPECT_NEAR(rgba[2], b, tolerance) << "at " << x << "," << y;
}

void expectWholeFrame(int r, int g, int b, int tolerance = 0)
{
    int w = GLContext::width() - 1;
    int h = GLContext::height() - 1;
    expectPixel(0, 0, r, g, b, tolerance);
    expectPixel(w, 0, r, g, b, tolerance);
    expectPixel(0, h, r, g, b, tolerance);
    expectPixel(w, h, r, g, b, tolerance);
    expectPixel(w / 2, h / 2, r, g, b, tolerance);
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

}

TEST(FaderRamp, InitiateAimsFullCoverAtTheMiddle)
{
    Fader fader(white, 100, EffectTimer(141.5f, 143.5f));
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    EXPECT_EQ(fader.getRate(), 0.0f);
    fader.initiate();
    EXPECT_EQ(fader.getRate(), 1.0f);
    EXPECT_EQ(fader.getAlpha(), 0.0f);
}

TEST(FaderRamp, RisesToOneAtTheMiddleAndFallsToZeroAtTheEnd)
{
    Fader fader(white, 100, EffectTimer(35.0f, 36.0f));
    fader.initiate();
    const float expected[] = {0.5f, 1.0f, 0.5f, 0.0f};
    for (float alpha : expected) {
        fader.update(0.25f);
        EXPECT_EQ(fader.getAlpha(), alpha);
    }
    EXPECT_EQ(fader.getTimer().current, 36.0f);
}

TEST(FaderRamp, OvershootPastTheMiddleLandsOnExactlyOne)
{
    Fader fader = started(white, {0.7f});
    EXPECT_EQ(fader.getAlpha(), 1.0f);
    EXPECT_EQ(fader.getRate(), -2.0f);
    // The descent starts from 1, not from the dropped 1.4.
    fader.update(0.125f);
    EXPECT_EQ(fader.getAlpha(), 0.75f);
}

TEST(FaderRamp, GoingBelowZeroStopsTheFade)
{
    Fader fader = started(white, {0.5f, 0.75f});
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    EXPECT_EQ(fader.getRate(), 0.0f);
    fader.update(1.0f);
    EXPECT_EQ(fader.getAlpha(), 0.0f);
}

TEST(FaderRamp, LandingOnZeroKeepsDescending)
{
    Fader fader = started(white, {0.5f, 0.5f});
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    EXPECT_EQ(fader.getRate(), -2.0f);
}

TEST(FaderRamp, TimelineRetiresItAfterItsSpan)
{
    EffectMgr mgr;
    mgr.addEffect(new Fader(white, 100, EffectTimer(1.0f, 2.0f)));
    mgr.initiate();
    mgr.update(0.75f);
    EXPECT_EQ(mgr.getRunningCount(), 0u);
    mgr.update(0.25f);
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    // Its own clock reaches exactly its end and it still runs.
    mgr.update(0.75f);
    EXPECT_EQ(mgr.getRunningCount(), 1u);
    mgr.update(0.25f);
    EXPECT_EQ(mgr.getRunningCount(), 0u);
}

TEST(TextureFaderRamp, KeepsItsOwnCopyOfTheName)
{
    char name[] = "data/img/flash.png";
    TextureFader fader(name, white, 100, EffectTimer(0.0f, 1.0f));
    std::strcpy(name, "changed");
    EXPECT_STREQ(fader.getTextureName(), "data/img/flash.png");
    fader.shutdown();
    EXPECT_EQ(fader.getTextureName(), nullptr);
}

TEST(TextureFaderRamp, InitiateLeavesTheRateAtZero)
{
    TextureFader fader("flash.png", white, 100, EffectTimer(0.0f, 1.0f));
    fader.initiate();
    fader.update(0.5f);
    EXPECT_EQ(fader.getRate(), 0.0f);
    EXPECT_EQ(fader.getAlpha(), 0.0f);
    EXPECT_EQ(fader.getTimer().current, 0.5f);
}

class FaderDraw : public GLTest {};

TEST_F(FaderDraw, WhiteAtTheMiddleCoversABlackFrame)
{
    Fader fader = started(white, {0.5f});
    fader.display();
    expectWholeFrame(255, 255, 255);
}

TEST_F(FaderDraw, WhiteAtAQuarterIsMidGrey)
{
    Fader fader = started(white, {0.25f});
    fader.display();
    expectWholeFrame(128, 128, 128, 1);
}

TEST_F(FaderDraw, BlackAtTheMiddleCoversAWhiteFrame)
{
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    Fader fader = started(black, {0.5f});
    fader.display();
    expectWholeFrame(0, 0, 0);
}

TEST_F(FaderDraw, TheColoursOwnAlphaHasNoEffect)
{
    Fader fader = started(Color(1.0f, 0.0f, 1.0f, 0.0f), {0.5f});
    fader.display();
    expectWholeFrame(255, 0, 255);
}

TEST_F(FaderDraw, ClearFaderLeavesTheFrameAlone)
{
    Fader fader(white, 100, EffectTimer(0.0f, 1.0f));
    fader.initiate();
    fader.display();
    expectWholeFrame(0, 0, 0);
}

TEST_F(FaderDraw, CoversWhateverTheSceneLeftInTheMatrices)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-1, 1, -1, 1, 1, 100);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(5, -3, -40);
    glRotatef(70, 1, 0, 0);
    Fader fader = started(white, {0.5f});
    fader.display();
    expectWholeFrame(255, 255, 255);
}

TEST_F(FaderDraw, UntexturedTextureFaderDrawsItsFlatColourWhenOpaque)
{
    // The ramp never rises on its own; drive it as a plain fader would be.
    TextureFader fader("flash.png", white, 100, EffectTimer(35.0f, 36.0f));
    fader.Fader::initiate();
    fader.update(0.5f);
    fader.display();
    expectWholeFrame(255, 255, 255);
}

TEST_F(FaderDraw, RestoresMatricesAndTheSceneState)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-1, 1, -1, 1, 1, 100);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(1, 2, 3);
    GLfloat projection[16], modelview[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);

    Fader fader = started(white, {0.5f});
    fader.display();

    GLfloat after[16];
    glGetFloatv(GL_PROJECTION_MATRIX, after);
    EXPECT_EQ(0, std::memcmp(projection, after, sizeof after));
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_EQ(0, std::memcmp(modelview, after, sizeof after));
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
}

TEST_F(FaderDraw, LeavesLightingOffOnceItWasOn)
{
    glEnable(GL_LIGHTING);
    Fader fader = started(white, {0.5f});
    fader.display();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    // Lit drawing would have darkened the quad to the ambient term.
    expectWholeFrame(255, 255, 255);
}

TEST_F(FaderDraw, DoesNotTouchLightingThatWasOff)
{
    glDisable(GL_LIGHTING);
    Fader fader = started(white, {0.5f});
    fader.display();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
}
