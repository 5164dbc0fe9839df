// TextureStateKeeper: an upload between frames leaves the binding, the 2D enable and the pixel store as found.
#include "support/GLContext.h"

#include "gl/TextureStateKeeper.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

class TextureStateKeeperTest : public GLTest {};

TEST_F(TextureStateKeeperTest, PutsBackTheBindingTheEnableAndThePixelStore)
{
    GLuint names[2];
    glGenTextures(2, names);
    for (const bool enabledBefore : {true, false}) {
        glBindTexture(GL_TEXTURE_2D, names[0]);
        enabledBefore ? glEnable(GL_TEXTURE_2D) : glDisable(GL_TEXTURE_2D);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        {
            TextureStateKeeper kept;
            glBindTexture(GL_TEXTURE_2D, names[1]);
            enabledBefore ? glDisable(GL_TEXTURE_2D) : glEnable(GL_TEXTURE_2D);
            glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        }
        GLint binding = 0, alignment = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
        glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
        EXPECT_EQ(static_cast<GLuint>(binding), names[0]);
        EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D) == GL_TRUE, enabledBefore);
        EXPECT_EQ(alignment, 4);
    }
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glDeleteTextures(2, names);
}
