// MipMapTexture: the level chain is scaled in software with GLU and uploaded level by level.
#include "texture/MipMapTexture.h"

#include <GL/gl.h>
#include <GL/glu.h>

MipMapTexture::MipMapTexture() : levelCount(0), levels(nullptr) {}

MipMapTexture::MipMapTexture(const char* name) : Texture(name), levelCount(0), levels(nullptr) {}

MipMapTexture::MipMapTexture(const char* name, int w, int h, int bpp, int fmt, unsigned char* pixels)
    : Texture(name), levelCount(0), levels(nullptr)
{
    MipMapTexture::create(name, w, h, bpp, fmt, pixels);
}

MipMapTexture::~MipMapTexture()
{
    MipMapTexture::reset();
}

int MipMapTexture::countLevels(int w, int h)
{
    int count = 1;
    do {
        w /= 2;
        h /= 2;
        ++count;
    } while (w > 1 || h > 1);
    return count;
}

const unsigned char* MipMapTexture::getLevel(int level) const
{
    if (level < 0 || level >= levelCount)
        return nullptr;
    return levels[level];
}

bool MipMapTexture::create(int w, int h, int bpp, int fmt, unsigned char* pixels)
{
    if (!Texture::create(w, h, bpp, fmt, pixels))
        return false;
    return createMipMaps();
}

bool MipMapTexture::create(const char* name, int w, int h, int bpp, int fmt, unsigned char* pixels)
{
    setName(name);
    return create(w, h, bpp, fmt, pixels);
}

void MipMapTexture::freeLevels()
{
    for (int i = 0; i < levelCount; ++i)
        delete[] levels[i];
    delete[] levels;
    levels = nullptr;
    levelCount = 0;
}

void MipMapTexture::reset()
{
    Texture::reset();
    freeLevels();
}

bool MipMapTexture::scaleLevel(int level)
{
    // Tightly packed rows on both sides, whatever the caller left in the pixel store.
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    GLenum glFormat = getOpenGLFormat(format);
    return gluScaleImage(glFormat, width, height, GL_UNSIGNED_BYTE, data, getLevelWidth(level), getLevelHeight(level),
                         GL_UNSIGNED_BYTE, levels[level]) == 0;
}

bool MipMapTexture::createMipMaps()
{
    if (!data || levels)
        return false;
    int count = countLevels(width, height);
    levels = new unsigned char*[count]();
    levelCount = count;
    for (int i = 0; i < count; ++i) {
        // No clamping to 1: the shorter side of a non-square texture reaches 0 at the deepest levels.
        long long size = static_cast<long long>(getLevelWidth(i)) * getLevelHeight(i) * components;
        levels[i] = new unsigned char[size]();
        if (!scaleLevel(i)) {
            freeLevels();
            return false;
        }
    }
    return true;
}

bool MipMapTexture::uploadMipMaps()
{
    if (levelCount == 0)
        return false;
    GLenum glFormat = getOpenGLFormat(format);
    for (int i = 0; i < levelCount; ++i)
        glTexImage2D(GL_TEXTURE_2D, i, components, getLevelWidth(i), getLevelHeight(i), 0, glFormat, GL_UNSIGNED_BYTE,
                     levels[i]);
    return true;
}

bool MipMapTexture::upload()
{
    if (levelCount == 0)
        return false;
    // GL refuses this value for magnification and keeps its default; that is the intended result.
    prepareUpload(GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR_MIPMAP_LINEAR);
    uploadMipMaps();
    glDisable(GL_TEXTURE_2D);
    return true;
}

bool MipMapTexture::reupload()
{
    return MipMapTexture::upload();
}

void MipMapTexture::updateSubTex()
{
    if (!isLive())
        reupload();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, glName);
    GLenum glFormat = getOpenGLFormat(format);
    for (int i = 0; i < levelCount; ++i) {
        // On a scaling error GL_TEXTURE_2D is left enabled, as the caller finds it after a failed update.
        if (!scaleLevel(i))
            return;
        glTexSubImage2D(GL_TEXTURE_2D, i, 0, 0, getLevelWidth(i), getLevelHeight(i), glFormat, GL_UNSIGNED_BYTE,
                        levels[i]);
    }
    glDisable(GL_TEXTURE_2D);
}
