// UnseenDrawing: what is drawn inside reaches no pixel, and every state and matrix it changed comes back.
#include "support/GLContext.h"

#include "gl/UnseenDrawing.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

class UnseenDrawingTest : public GLTest {};

TEST_F(UnseenDrawingTest, AQuadOverTheWholeViewChangesNoPixelAndNoState)
{
    glClearColor(0.0f, 0.0f, 1.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0.5f, 0.0f, 0.0f);
    GLfloat modelview[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    {
        UnseenDrawing unseen;
        glEnable(GL_BLEND);
        glClearColor(1.0f, 0.0f, 0.0f, 1.0f);
        glLoadIdentity();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        glRectf(-1.0f, -1.0f, 1.0f, 1.0f);
    }
    unsigned char pixel[4];
    GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, pixel);
    EXPECT_EQ(pixel[0], 0);
    EXPECT_EQ(pixel[2], 255);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    GLfloat after[16], clear[4];
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(after[i], modelview[i]) << i;
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[0], 0.0f);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
}
