// GL error reports: the exact texts, one pending error per call, silence when there is none.
#include "support/GLContext.h"

#include "gl/GLF_checkError.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <string>

namespace {

class GLFCheckError : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        while (glGetError() != GL_NO_ERROR) {
        }
    }

    std::string report(const char* where, bool expected)
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(expected, GLF_checkError(where));
        return testing::internal::GetCapturedStdout();
    }
};

}  // namespace

TEST_F(GLFCheckError, EachErrorHasItsText)
{
    glEnable(0x1234);
    // The double blank is the message as it has always been.
    EXPECT_EQ("OpenGL ERROR detected in Swirl::display\nGLenum argument  out of range\n",
              report("Swirl::display", true));
    EXPECT_EQ("", report("second", false));
    glLineWidth(-1.0f);
    EXPECT_EQ("OpenGL ERROR detected in here\nNumeric argument out of range\n", report("here", true));
    glBegin(GL_TRIANGLES);
    glBegin(GL_TRIANGLES);
    glEnd();
    EXPECT_EQ("OpenGL ERROR detected in x\nOperation illegal in current state\n", report("x", true));
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    EXPECT_EQ("OpenGL ERROR detected in pop\nCommand would cause a stack underflow\n", report("pop", true));
    GLint depth = 0;
    glGetIntegerv(GL_MAX_MODELVIEW_STACK_DEPTH, &depth);
    for (GLint i = 0; i < depth; ++i)
        glPushMatrix();
    EXPECT_EQ("OpenGL ERROR detected in push\nCommand would cause a stack overflow\n", report("push", true));
    for (GLint i = 0; i < depth; ++i)
        glPopMatrix();
    while (glGetError() != GL_NO_ERROR) {
    }
}
