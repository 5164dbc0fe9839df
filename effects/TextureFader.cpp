// Texture-tinted fades.
#include "effects/TextureFader.h"

#include "texture/Texture.h"
#include "texture/TextureFormat.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cstring>

namespace {

char* copyName(const char* name)
{
    if (!name)
        return nullptr;
    size_t length = std::strlen(name) + 1;
    char* copy = new char[length];
    std::memcpy(copy, name, length);
    return copy;
}

}  // namespace

TextureFader::TextureFader(const char* name, const Color& colour, short layer, const EffectTimer& timer)
    : Fader(colour, layer, timer), textureName(copyName(name)), texture(nullptr)
{
}

TextureFader::~TextureFader()
{
    delete[] textureName;
}

void TextureFader::initiate()
{
    if (textureName)
        texture = TextureMgr::getHandle()->loadTexture(textureName, TEXTURE_RGB);
}

void TextureFader::shutdown()
{
    if (textureName)
        TextureMgr::getHandle()->removeTexture(textureName);
    texture = nullptr;
    delete[] textureName;
    textureName = nullptr;
}

void TextureFader::drawCover()
{
    if (texture)
        texture->bind();
    // The image's first row lies at the top of the screen.
    glBegin(GL_QUADS);
    glTexCoord2f(1.0f, 0.0f);
    glVertex2f(1.0f, 1.0f);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(0.0f, 1.0f);
    glTexCoord2f(0.0f, 1.0f);
    glVertex2f(0.0f, 0.0f);
    glTexCoord2f(1.0f, 1.0f);
    glVertex2f(1.0f, 0.0f);
    glEnd();
    if (texture)
        texture->unbind();
}
