// Texture: pixels kept in memory, uploaded lazily and re-created whenever GL lost the object.
#include "texture/Texture.h"

#include "gl/GLEXT.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <GL/glext.h>

TexQuality Texture::texQuality = 0;

Texture::Texture() : width(0), height(0), bitsPerPixel(0), format(0), components(0), data(nullptr), glName(noName) {}

Texture::Texture(const char* name)
    : NamedObject(name), width(0), height(0), bitsPerPixel(0), format(0), components(0), data(nullptr), glName(noName)
{
}

Texture::Texture(const char* name, int w, int h, int bpp, int fmt, unsigned char* pixels)
    : NamedObject(name), width(0), height(0), bitsPerPixel(0), format(0), components(0), data(nullptr), glName(noName)
{
    // Not the virtual one: a derived class is not built yet.
    Texture::create(w, h, bpp, fmt, pixels);
}

Texture::~Texture()
{
    if (glName != noName)
        glDeleteTextures(1, &glName);
    delete[] data;
}

int Texture::componentsOf(int fmt)
{
    if (fmt >= 1 && fmt <= 5)
        return 1;
    if (fmt == 6)
        return 2;
    if (fmt == 7)
        return 3;
    if (fmt == 8)
        return 4;
    return 0;
}

unsigned int Texture::getOpenGLFormat(int fmt) const
{
    switch (fmt) {
        case 1:
            return GL_RED;
        case 2:
            return GL_GREEN;
        case 3:
            return GL_BLUE;
        case 4:
            return GL_ALPHA;
        case 5:
            return GL_LUMINANCE;
        case 6:
            return GL_LUMINANCE_ALPHA;
        case 8:
            return GL_RGBA;
        default:
            return GL_RGB;
    }
}

long long Texture::getDataSize() const
{
    if (!data)
        return 0;
    return static_cast<long long>(width) * height * components;
}

void Texture::store(int w, int h, int bpp, int fmt, unsigned char* pixels)
{
    width = w;
    height = h;
    bitsPerPixel = bpp;
    format = fmt;
    components = componentsOf(fmt);
    data = pixels;
}

bool Texture::create(int w, int h, int bpp, int fmt, unsigned char* pixels)
{
    if (data || !pixels)
        return false;
    // Codes outside 1 to 8 have no component count to size the buffer with.
    if (componentsOf(fmt) == 0 || w < 0 || h < 0)
        return false;
    store(w, h, bpp, fmt, pixels);
    return true;
}

bool Texture::create(const char* name, int w, int h, int bpp, int fmt, unsigned char* pixels)
{
    if (data || !pixels || componentsOf(fmt) == 0 || w < 0 || h < 0)
        return false;
    setName(name);
    store(w, h, bpp, fmt, pixels);
    return true;
}

bool Texture::isLive() const
{
    return glName != noName && glIsTexture(glName) == GL_TRUE;
}

void Texture::prepareUpload(int minFilter, int magFilter)
{
    if (!isLive())
        glGenTextures(1, &glName);
    glBindTexture(GL_TEXTURE_2D, glName);
    glEnable(GL_TEXTURE_2D);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, magFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
}

bool Texture::upload()
{
    if (!refill())
        return false;
    GLint filter = texQuality > 1 ? GL_LINEAR : GL_NEAREST;
    prepareUpload(filter, filter);
    const GLint internal = storageFormat != 0 ? storageFormat : components;
    glTexImage2D(GL_TEXTURE_2D, 0, internal, width, height, 0, getOpenGLFormat(format), GL_UNSIGNED_BYTE, data);
    glDisable(GL_TEXTURE_2D);
    return true;
}

bool Texture::reupload()
{
    return Texture::upload();
}

bool Texture::bind()
{
    if (!isLive())
        reupload();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, glName);
    return true;
}

void Texture::unbind()
{
    glDisable(GL_TEXTURE_2D);
}

void Texture::bind(unsigned int unit)
{
    if (!isLive())
        reupload();
    if (GLEXT::isSupported(GLEXT::ARB_multitexture))
        glActiveTextureARB(unit);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, glName);
}

void Texture::unbind(unsigned int unit)
{
    bool multi = GLEXT::isSupported(GLEXT::ARB_multitexture);
    if (multi)
        glActiveTextureARB(unit);
    glDisable(GL_TEXTURE_2D);
    if (multi)
        glActiveTextureARB(GL_TEXTURE0_ARB);
}

void Texture::updateSubTex()
{
    if (!isLive())
        reupload();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, glName);
    if (data)
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, getOpenGLFormat(format), GL_UNSIGNED_BYTE, data);
    glDisable(GL_TEXTURE_2D);
}

bool Texture::unload()
{
    if (glName == noName)
        return false;
    glDeleteTextures(1, &glName);
    glName = noName;
    return true;
}

void Texture::releasePixels()
{
    delete[] data;
    data = nullptr;
    pixelsInFile = true;
}

bool Texture::refill()
{
    if (data)
        return true;
    if (!pixelsInFile)
        return false;
    unsigned char* pixels = TextureLoader::allocPixels(width, height, format);
    if (!pixels)
        return false;
    store(width, height, bitsPerPixel, format, pixels);
    // A file changed or gone since leaves the picture black, as a damaged one would.
    reload();
    return true;
}

void Texture::reset()
{
    pixelsInFile = false;
    if (glName != noName)
        unload();
    delete[] data;
    data = nullptr;
}

bool Texture::reload()
{
    return TextureMgr::getHandle()->reloadTexture(getName(), this);
}

void Texture::setTexQuality(TexQuality quality)
{
    texQuality = quality;
}

TexQuality Texture::getTexQuality()
{
    return texQuality;
}
