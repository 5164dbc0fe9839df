// The sky dome, drawn from inside with culling on, still covers the view.
#include "scene/Hemisphere.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

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
