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

    std::string report(const char* where, bool& result)
    {
        testing::internal::CaptureStdout();
        result = GLF_checkError(where);
        return testing::internal::GetCapturedStdout();
    }
};

} // namespace

TEST_F(GLFCheckError, NoErrorPrintsNothing)
{
    bool result = true;
    EXPECT_EQ("", report("Quiet::display", result));
    EXPECT_FALSE(result);
}

TEST_F(GLFCheckError, InvalidEnumKeepsTheDoubleBlank)
{
    glEnable(0x1234);
    bool result = false;
    EXPECT_EQ("OpenGL ERROR detected in Swirl::display\nGLenum argument  out of range\n",
              report("Swirl::display", result));
    EXPECT_TRUE(result);
}

TEST_F(GLFCheckError, InvalidValue)
{
    glLineWidth(-1.0f);
    bool result = false;
    EXPECT_EQ("OpenGL ERROR detected in here\nNumeric argument out of range\n", report("here", result));
    EXPECT_TRUE(result);
}

TEST_F(GLFCheckError, InvalidOperation)
{
    glBegin(GL_TRIANGLES);
    glBegin(GL_TRIANGLES);
    glEnd();
    bool result = false;
    EXPECT_EQ("OpenGL ERROR detected in x\nOperation illegal in current state\n", report("x", result));
    EXPECT_TRUE(result);
}

TEST_F(GLFCheckError, StackUnderflowAndOverflow)
{
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    bool result = false;
    EXPECT_EQ("OpenGL ERROR detected in pop\nCommand would cause a stack underflow\n", report("pop", result));

    GLint depth = 0;
    glGetIntegerv(GL_MAX_MODELVIEW_STACK_DEPTH, &depth);
    for (GLint i = 0; i < depth; ++i)
        glPushMatrix();
    EXPECT_EQ("OpenGL ERROR detected in push\nCommand would cause a stack overflow\n", report("push", result));
    for (GLint i = 0; i < depth; ++i)
        glPopMatrix();
    while (glGetError() != GL_NO_ERROR) {
    }
}

TEST_F(GLFCheckError, ReadsOnlyOnePendingErrorPerCall)
{
    glEnable(0x1234);
    bool result = false;
    report("first", result);
    EXPECT_TRUE(result);
    EXPECT_EQ("", report("second", result));
    EXPECT_FALSE(result);
}
