// Saving and restoring the texture binding, the 2D enable and the pixel store around an upload.
#include "gl/TextureStateKeeper.h"

#include <GL/gl.h>

TextureStateKeeper::TextureStateKeeper() : binding(0), enabled(false)
{
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
    enabled = glIsEnabled(GL_TEXTURE_2D) == GL_TRUE;
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
}

TextureStateKeeper::~TextureStateKeeper()
{
    glPopClientAttrib();
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(binding));
    if (enabled)
        glEnable(GL_TEXTURE_2D);
    else
        glDisable(GL_TEXTURE_2D);
}
