// TextureMaterial: binds its texture and the coordinate generation its flags ask for; stored as TMAT.
#include "texture/TextureMaterial.h"

#include "scene/object/Chunk.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cstring>

TextureMaterial::TextureMaterial() : texture(nullptr) {}

TextureMaterial::TextureMaterial(const char* name) : Material(name), texture(nullptr) {}

TextureMaterial::~TextureMaterial() {}

void TextureMaterial::setDefaults()
{
    Material::setDefaults();
    texture = TextureMgr::getHandle()->findTexture("default");
}

void TextureMaterial::enableTexGen(unsigned long f, unsigned long sphere, unsigned long eye, unsigned long object)
{
    GLint mode = 0;
    if (f & sphere)
        mode = GL_SPHERE_MAP;
    else if (f & eye)
        mode = GL_EYE_LINEAR;
    else if (f & object)
        mode = GL_OBJECT_LINEAR;
    if (!mode)
        return;
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, mode);
    glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, mode);
    glEnable(GL_TEXTURE_GEN_S);
    glEnable(GL_TEXTURE_GEN_T);
}

void TextureMaterial::disableTexGen(unsigned long f, unsigned long sphere, unsigned long eye, unsigned long object)
{
    if (!(f & (sphere | eye | object)))
        return;
    glDisable(GL_TEXTURE_GEN_S);
    glDisable(GL_TEXTURE_GEN_T);
}

void TextureMaterial::bind()
{
    if (texture) {
        texture->bind();
        enableTexGen(flags, sphereMap, eyeLinear, objectLinear);
    }
    Material::bind();
}

void TextureMaterial::unbind()
{
    Material::unbind();
    if (!texture)
        return;
    texture->unbind();
    disableTexGen(flags, sphereMap, eyeLinear, objectLinear);
}

bool TextureMaterial::writeTextureRef(std::ostream& out, const Texture* t)
{
    const char* name = t ? t->getName() : nullptr;
    size_t length = name ? std::strlen(name) : 0;
    if (length > 32767)
        return false;
    Chunk::writeShort(out, static_cast<int16_t>(length));
    if (length == 0)
        return Chunk::good(out);
    out.write(name, static_cast<std::streamsize>(length));
    Chunk::writeInt(out, t->getFormat());
    return Chunk::good(out);
}

bool TextureMaterial::readTextureRef(std::istream& in, Texture*& t)
{
    int16_t length = 0;
    if (!Chunk::readShort(in, length))
        return false;
    if (length < 1)
        return true;
    if (!Chunk::fits(in, length, 1))
        return false;
    char* name = new char[length + 1];
    in.read(name, length);
    name[length] = '\0';
    int32_t format = 0;
    Texture* found = nullptr;
    if (Chunk::good(in) && Chunk::readInt(in, format))
        found = TextureMgr::getHandle()->loadTexture(name, format);
    delete[] name;
    if (!found)
        return false;
    t = found;
    return true;
}

bool TextureMaterial::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, "TMAT") || !Material::save(out))
        return false;
    return writeTextureRef(out, texture);
}

bool TextureMaterial::load(std::istream& in)
{
    if (!Chunk::readTag(in, "TMAT") || !Material::load(in))
        return false;
    return readTextureRef(in, texture) && Chunk::good(in);
}
