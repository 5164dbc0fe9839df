// MulTextureMaterial: two textures on units 0 and 1 joined by the ARB combine environment; stored as MMAT.
#include "texture/MulTextureMaterial.h"

#include "gl/GLEXT.h"
#include "scene/object/Chunk.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <GL/glext.h>

namespace {

void setupCombine(GLenum function, GLenum alphaOperand0)
{
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE_ARB);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB_ARB, function);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_ALPHA_ARB, function);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_RGB_ARB, GL_TEXTURE);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE1_RGB_ARB, GL_PREVIOUS_ARB);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE2_RGB_ARB, GL_CONSTANT_ARB);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND0_RGB_ARB, GL_SRC_COLOR);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND1_RGB_ARB, GL_SRC_COLOR);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND2_RGB_ARB, GL_SRC_ALPHA);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_ALPHA_ARB, GL_TEXTURE);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE1_ALPHA_ARB, GL_PREVIOUS_ARB);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND0_ALPHA_ARB, alphaOperand0);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND1_ALPHA_ARB, GL_SRC_ALPHA);
    glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE_ARB, 1.0f);
    glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, 1.0f);
}

GLenum unit1Function(TexBlendMode mode)
{
    if (mode == 0)
        return GL_ADD;
    if (mode == 1)
        return GL_SUBTRACT_ARB;
    return GL_MODULATE;
}

bool multiTexture()
{
    return GLEXT::isSupported(GLEXT::ARB_multitexture);
}

}  // namespace

MulTextureMaterial::MulTextureMaterial() : texBlendMode(0), texture2(nullptr) {}

MulTextureMaterial::MulTextureMaterial(const char* name) : TextureMaterial(name), texBlendMode(0), texture2(nullptr) {}

MulTextureMaterial::~MulTextureMaterial() {}

void MulTextureMaterial::setDefaults()
{
    TextureMaterial::setDefaults();
    texBlendMode = 0;
    texture2 = nullptr;
}

void MulTextureMaterial::setupTexBlend()
{
    if (texture) {
        texture->bind(GL_TEXTURE0_ARB);
        enableTexGen(flags, sphereMap, eyeLinear, objectLinear);
    }
    // Without the second unit there is nothing to combine with.
    if (!multiTexture())
        return;
    if (texture2) {
        texture2->bind(GL_TEXTURE1_ARB);
        enableTexGen(flags, sphereMap2, eyeLinear2, objectLinear2);
    }
    glActiveTextureARB(GL_TEXTURE1_ARB);
    setupCombine(unit1Function(texBlendMode), texBlendMode == 1 ? GL_ONE_MINUS_SRC_ALPHA : GL_SRC_ALPHA);
    glActiveTextureARB(GL_TEXTURE0_ARB);
    setupCombine(GL_MODULATE, GL_SRC_ALPHA);
}

void MulTextureMaterial::resetTexBlend()
{
    if (multiTexture()) {
        glActiveTextureARB(GL_TEXTURE1_ARB);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        glActiveTextureARB(GL_TEXTURE0_ARB);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        if (texture2) {
            glActiveTextureARB(GL_TEXTURE1_ARB);
            disableTexGen(flags, sphereMap2, eyeLinear2, objectLinear2);
            texture2->unbind(GL_TEXTURE1_ARB);
        }
    }
    if (texture) {
        disableTexGen(flags, sphereMap, eyeLinear, objectLinear);
        texture->unbind(GL_TEXTURE0_ARB);
    }
}

void MulTextureMaterial::bind()
{
    setupTexBlend();
    Material::bind();
}

void MulTextureMaterial::unbind()
{
    // Binds again rather than undoing: blending and the depth mask stay in force, on purpose.
    Material::bind();
    resetTexBlend();
}

bool MulTextureMaterial::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, "MMAT") || !TextureMaterial::save(out))
        return false;
    Chunk::writeInt(out, texBlendMode);
    return writeTextureRef(out, texture2);
}

bool MulTextureMaterial::load(std::istream& in)
{
    if (!Chunk::readTag(in, "MMAT") || !TextureMaterial::load(in))
        return false;
    int32_t mode = 0;
    if (!Chunk::readInt(in, mode))
        return false;
    texBlendMode = mode;
    return readTextureRef(in, texture2) && Chunk::good(in);
}
