// Texture-tinted fades.
#include "effects/TextureFader.h"

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
}

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
    // The texture cache is not wired in yet: the fader keeps its flat colour.
}

void TextureFader::shutdown()
{
    texture = nullptr;
    delete[] textureName;
    textureName = nullptr;
}

void TextureFader::display()
{
    bool lit = turnLightingOff();
    beginBlend();
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
    endBlend();
    if (lit)
        turnLightingOff();
}
