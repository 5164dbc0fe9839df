// The feedback glow: strength limits, the copy ring, a frame laid back faded, haze dying out, and the viewport.
#include "effects/Diffusion.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cmath>

namespace {

class DiffusionTest : public GLTest {
protected:
    // A white square over the middle of the drawing square, in its own pixels.
    static void drawSquare(float from, float to)
    {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(0.0, 1.0, 0.0, 1.0, -1.0, 1.0);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
        glDisable(GL_DEPTH_TEST);
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        glRectf(from, from, to, to);
        glPopMatrix();
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
    }

    // One frame: clear, lay back, optionally draw, keep and stretch.
    static void frame(Diffusion& diffusion, bool square)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        diffusion.beginDiffusion();
        if (square)
            drawSquare(0.25f, 0.75f);
        diffusion.endDiffusion();
    }

    static int centreRed()
    {
        unsigned char rgba[4];
        GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, rgba);
        return rgba[0];
    }
};

}

TEST(DiffusionStrength, IsKeptBetweenOneAndSixteenCopies)
{
    EXPECT_EQ(Diffusion(5).getStrength(), 5);
    EXPECT_EQ(Diffusion(0).getStrength(), 1);
    EXPECT_EQ(Diffusion(-3).getStrength(), 1);
    EXPECT_EQ(Diffusion(100).getStrength(), Diffusion::MAX_STRENGTH);
}

TEST(DiffusionCopies, SitOnABalancedRingSoTheGlowDoesNotDrift)
{
    Diffusion diffusion(5);
    float sumU = 0.0f;
    float sumV = 0.0f;
    for (int i = 0; i < 5; ++i) {
        float du = 0.0f;
        float dv = 0.0f;
        diffusion.copyOffset(i, du, dv);
        EXPECT_NEAR(std::sqrt(du * du + dv * dv), Diffusion::SPREAD / Diffusion::SIZE, 1e-6f);
        sumU += du;
        sumV += dv;
    }
    EXPECT_NEAR(sumU, 0.0f, 1e-6f);
    EXPECT_NEAR(sumV, 0.0f, 1e-6f);
}

TEST(DiffusionCopies, ASingleCopyOnlyZooms)
{
    Diffusion diffusion(1);
    float du = 1.0f;
    float dv = 1.0f;
    diffusion.copyOffset(0, du, dv);
    EXPECT_EQ(du, 0.0f);
    EXPECT_EQ(dv, 0.0f);
}

TEST(DiffusionCopies, WeightsGiveEveryCopyAnEqualShare)
{
    // Blending each copy over the last with its weight leaves their mean.
    const float values[5] = {10.0f, 20.0f, 30.0f, 40.0f, 50.0f};
    float blended = 0.0f;
    for (int i = 0; i < 5; ++i)
        blended = blended * (1.0f - Diffusion::copyWeight(i)) + values[i] * Diffusion::copyWeight(i);
    EXPECT_NEAR(blended, 30.0f, 1e-4f);
}

TEST_F(DiffusionTest, StartsOnceWithABlackTexture)
{
    Diffusion diffusion(5);
    ASSERT_TRUE(diffusion.initiate());
    const unsigned texture = diffusion.getTexture();
    EXPECT_NE(texture, 0u);
    EXPECT_TRUE(diffusion.initiate());
    EXPECT_EQ(diffusion.getTexture(), texture);
    frame(diffusion, false);
    EXPECT_EQ(centreRed(), 0);
}

TEST_F(DiffusionTest, TheDrawingIsShownAndLaidBackFadedUnderTheNextFrame)
{
    Diffusion diffusion(5);
    ASSERT_TRUE(diffusion.initiate());
    frame(diffusion, true);
    EXPECT_EQ(centreRed(), 255);
    frame(diffusion, false);
    const int faded = centreRed();
    EXPECT_NEAR(faded, 255.0f * Diffusion::FADE - 255.0f * Diffusion::FLOOR, 3.0f);
    frame(diffusion, false);
    EXPECT_LT(centreRed(), faded);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(DiffusionTest, FaintHazeDiesOutInsteadOfStayingForever)
{
    Diffusion diffusion(5);
    ASSERT_TRUE(diffusion.initiate());
    frame(diffusion, true);
    for (int i = 0; i < 200; ++i)
        frame(diffusion, false);
    EXPECT_EQ(centreRed(), 0);
}

TEST_F(DiffusionTest, TheViewportIsTheSquareBetweenBeginAndEndAndRestoredAfter)
{
    Diffusion diffusion(5);
    ASSERT_TRUE(diffusion.initiate());
    glViewport(0, 0, 100, 60);
    diffusion.beginDiffusion();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    // No larger than the window's own viewport.
    EXPECT_EQ(viewport[2], 100);
    EXPECT_EQ(viewport[3], 60);
    diffusion.endDiffusion();
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 100);
    EXPECT_EQ(viewport[3], 60);
}

TEST_F(DiffusionTest, WithoutAStartNothingIsDrawnOrChanged)
{
    Diffusion diffusion(5);
    glViewport(0, 0, 90, 70);
    diffusion.beginDiffusion();
    drawSquare(0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    diffusion.endDiffusion();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 90);
    EXPECT_EQ(centreRed(), 0);
}
