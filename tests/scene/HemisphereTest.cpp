// The sky dome: its points lie on the sphere, the seam closes, and the texture wraps it without a jump.
#include "scene/Hemisphere.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

TEST(HemisphereShape, PointsLieOnTheSphereTheSeamClosesAndTheTextureRunsFromTheZenith)
{
    const Hemisphere dome(200.0f);
    EXPECT_NEAR(dome.point(0.3f, 90.0f).y, 200.0f, 1e-3f);
    EXPECT_FLOAT_EQ(dome.point(0.125f, 0.0f).y, 0.0f);
    EXPECT_NEAR(dome.point(0.7f, 33.0f).length(), 200.0f, 1e-3f);
    EXPECT_NEAR((dome.point(0.0f, 40.0f) - dome.point(1.0f, 40.0f)).length(), 0.0f, 1e-3f);
    EXPECT_FLOAT_EQ(Hemisphere::texCoord(1.0f, 40.0f).x, 1.0f);
    EXPECT_FLOAT_EQ(Hemisphere::texCoord(0.5f, 90.0f).y, 0.0f);
    EXPECT_FLOAT_EQ(Hemisphere::texCoord(0.5f, 45.0f).y, 0.5f);
}

class HemisphereDrawTest : public GLTest {};

TEST_F(HemisphereDrawTest, DrawnFromInsideWithCullingOnItStillCoversTheView)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.1, 0.1, -0.1, 0.1, 0.1, 1000.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    // Looking straight up from the centre.
    glRotatef(-90.0f, 1.0f, 0.0f, 0.0f);
    glEnable(GL_CULL_FACE);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    Hemisphere(200.0f).draw(20, 20);
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    unsigned char rgba[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, rgba);
    EXPECT_EQ(rgba[0], 255);
}
