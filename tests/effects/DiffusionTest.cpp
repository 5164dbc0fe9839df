// The feedback glow: strength limits, the copy ring, a frame laid back faded, haze dying out, and the viewport.
#include "effects/Diffusion.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cmath>

namespace {

class DiffusionTest : public GLTest {
protected:
    Diffusion diffusion{5};

    // One frame: clear, lay back, optionally draw a white square over the middle, keep and stretch.
    void frame(bool square)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        diffusion.beginDiffusion();
        if (square) {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glOrtho(0.0, 1.0, 0.0, 1.0, -1.0, 1.0);
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glDisable(GL_DEPTH_TEST);
            glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
            glRectf(0.25f, 0.25f, 0.75f, 0.75f);
        }
        diffusion.endDiffusion();
    }

    static int centreRed()
    {
        unsigned char rgba[4];
        GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, rgba);
        return rgba[0];
    }
};

}  // namespace

TEST(DiffusionCopies, OneToSixteenSitOnABalancedRingWithEqualShares)
{
    EXPECT_EQ(Diffusion(0).getStrength(), 1);
    EXPECT_EQ(Diffusion(-3).getStrength(), 1);
    EXPECT_EQ(Diffusion(16).getStrength(), 16);
    EXPECT_EQ(Diffusion(17).getStrength(), 16);
    Diffusion diffusion(5);
    float sumU = 0.0f, sumV = 0.0f, blended = 0.0f;
    for (int i = 0; i < 5; ++i) {
        float du = 0.0f, dv = 0.0f;
        diffusion.copyOffset(i, du, dv);
        EXPECT_NEAR(std::sqrt(du * du + dv * dv), Diffusion::SPREAD / Diffusion::SIZE, 1e-6f);
        sumU += du;
        sumV += dv;
        // Blending each copy over the last with its weight leaves their mean.
        blended = blended * (1.0f - Diffusion::copyWeight(i)) + 10.0f * (i + 1) * Diffusion::copyWeight(i);
    }
    // Off balance, the glow would drift across the screen.
    EXPECT_NEAR(sumU, 0.0f, 1e-6f);
    EXPECT_NEAR(sumV, 0.0f, 1e-6f);
    EXPECT_NEAR(blended, 30.0f, 1e-4f);
}

TEST_F(DiffusionTest, WithoutAStartNothingIsDrawnOrChanged)
{
    glViewport(0, 0, 90, 70);
    frame(true);
    glClear(GL_COLOR_BUFFER_BIT);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2] * 1000 + viewport[3], 90070);
    EXPECT_EQ(centreRed(), 0);
}

TEST_F(DiffusionTest, TheDrawingIsShownThenLaidBackFadedUntilTheHazeDiesOut)
{
    ASSERT_TRUE(diffusion.initiate());
    const unsigned texture = diffusion.getTexture();
    EXPECT_TRUE(diffusion.initiate());
    EXPECT_EQ(diffusion.getTexture(), texture);
    frame(false);
    EXPECT_EQ(centreRed(), 0);
    frame(true);
    EXPECT_EQ(centreRed(), 255);
    frame(false);
    const int faded = centreRed();
    EXPECT_NEAR(faded, 255.0f * Diffusion::FADE - 255.0f * Diffusion::FLOOR, 3.0f);
    frame(false);
    EXPECT_LT(centreRed(), faded);
    for (int i = 0; i < 200; ++i)
        frame(false);
    EXPECT_EQ(centreRed(), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(DiffusionTest, TheViewportIsTheSquareBetweenBeginAndEndAndRestoredAfter)
{
    ASSERT_TRUE(diffusion.initiate());
    glViewport(0, 0, 100, 60);
    diffusion.beginDiffusion();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    // No larger than the window's own viewport.
    EXPECT_EQ(viewport[2] * 1000 + viewport[3], 100060);
    diffusion.endDiffusion();
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2] * 1000 + viewport[3], 100060);
}
