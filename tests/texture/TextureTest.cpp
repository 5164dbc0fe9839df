// Texture and MipMapTexture: ownership rules of create, lazy upload, filters by quality, level chain, pixels given back.
#include "TestImages.h"
#include "support/GLContext.h"

#include "texture/MipMapTexture.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <png.h>
#include <cstring>
#include <vector>

namespace {

unsigned char* filled(size_t size, unsigned char value)
{
    unsigned char* p = new unsigned char[size];
    std::memset(p, value, size);
    return p;
}

GLint boundParameter(GLenum name)
{
    GLint v = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &v);
    return v;
}

void drawQuad()
{
    glBegin(GL_QUADS);
    for (int corner = 0; corner < 4; ++corner) {
        float u = corner == 1 || corner == 2 ? 1.0f : 0.0f, v = corner >= 2 ? 1.0f : 0.0f;
        glTexCoord2f(u, v);
        glVertex2f(2 * u - 1, 2 * v - 1);
    }
    glEnd();
}

// What GL holds of the bound texture, as RGB rows.
Bytes heldByGL(const Texture& t)
{
    Bytes rgb(static_cast<size_t>(t.getWidth() * t.getHeight() * 3));
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    return rgb;
}

}  // namespace

TEST(TextureCreate, TakesThePixelsOnceAndRefusesNullOrUnknownCodes)
{
    Texture t("named");
    EXPECT_FALSE(t.create(1, 1, 8, 5, nullptr));
    unsigned char* first = filled(12, 1);
    unsigned char* second = filled(12, 2);
    EXPECT_FALSE(t.create(2, 2, 24, 0, second));
    EXPECT_FALSE(t.create(2, 2, 24, 9, second));
    EXPECT_TRUE(t.create(2, 2, 24, 7, first));
    EXPECT_FALSE(t.create("other", 2, 2, 24, 7, second));
    EXPECT_EQ(first, t.getDataPtr());
    EXPECT_STREQ("named", t.getName());
    delete[] second;
    // reset drops the pixels but keeps the size, and create works once more.
    t.reset();
    EXPECT_EQ(nullptr, t.getDataPtr());
    EXPECT_EQ(2, t.getWidth());
    EXPECT_FALSE(t.upload());
    EXPECT_TRUE(t.create(1, 1, 8, 5, filled(1, 0)));
}

class TextureGL : public GLTest {};

TEST_F(TextureGL, FirstBindUploadsAndADeletedObjectIsRecreated)
{
    Texture t("t", 2, 2, 24, 7, filled(12, 200));
    EXPECT_EQ(Texture::noName, t.getGLName());
    EXPECT_TRUE(t.bind());
    GLuint name = t.getGLName();
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    GLint internal = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &internal);
    // The component count is given as the internal format, and GL reports it back as given.
    EXPECT_EQ(3, internal);
    t.unbind();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    glDeleteTextures(1, &name);
    t.bind();
    EXPECT_TRUE(glIsTexture(t.getGLName()));
    t.unbind();
    EXPECT_TRUE(t.unload());
    EXPECT_EQ(Texture::noName, t.getGLName());
    EXPECT_FALSE(t.unload());
}

// Luminance with alpha stored as RGBA: the colour repeats the luminance, and a recreated object is stored so again.
TEST_F(TextureGL, AStorageFormatHoldsTheSamePixelsAcrossRecreation)
{
    Texture t("la", 1, 1, 16, 6, new unsigned char[2]{90, 40});
    t.setStorageFormat(GL_RGBA8);
    for (int pass = 0; pass < 2; ++pass) {
        t.bind();
        GLint internal = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &internal);
        EXPECT_EQ(GL_RGBA8, internal);
        unsigned char rgba[4];
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        EXPECT_EQ((std::vector<int>{90, 90, 90, 40}), std::vector<int>(rgba, rgba + 4));
        t.unbind();
        GLuint name = t.getGLName();
        glDeleteTextures(1, &name);
    }
}

// A picture from the cache gives its pixels back once GL holds it; an upload, or a bind that finds the object gone,
// reads them again from its file bit for bit. A reset texture reads nothing.
TEST_F(TextureGL, PixelsGivenBackComeAgainFromTheFile)
{
    const std::string path = scratchPath("given-back.png");
    const PngShape rgb = {2, 2, PNG_COLOR_TYPE_RGB, 8, {1, 2, 3, 40, 50, 60, 70, 80, 90, 200, 210, 220}, {}, {}};
    ASSERT_TRUE(writePng(path, rgb));
    Texture* t = TextureMgr::getHandle()->loadTexture(path.c_str(), 7);
    ASSERT_NE(nullptr, t);
    const Bytes original = pixelsOf(t);
    ASSERT_TRUE(t->upload());
    t->releasePixels();
    EXPECT_EQ(nullptr, t->getDataPtr());
    EXPECT_TRUE(glIsTexture(t->getGLName()));

    GLuint name = t->getGLName();
    glDeleteTextures(1, &name);
    EXPECT_TRUE(t->bind());
    EXPECT_EQ(original, heldByGL(*t));
    EXPECT_EQ(original, pixelsOf(t));

    t->unload();
    t->releasePixels();
    ASSERT_TRUE(t->upload());
    t->bind();
    EXPECT_EQ(original, heldByGL(*t));
    t->unbind();

    t->releasePixels();
    t->reset();
    EXPECT_FALSE(t->upload());
    EXPECT_FALSE(t->refill());
    TextureMgr::getHandle()->removeTexture(path.c_str());
}

TEST_F(TextureGL, UploadedAndUpdatedPixelsReachTheScreen)
{
    Texture t("p", 1, 1, 32, 8, new unsigned char[4]{10, 200, 30, 255});
    t.bind();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    drawQuad();
    unsigned char rgba[4];
    GLContext::readPixel(5, 5, rgba);
    EXPECT_EQ(10, rgba[0]);
    EXPECT_EQ(200, rgba[1]);
    t.getDataPtr()[0] = 250;
    t.updateSubTex();
    t.bind();
    drawQuad();
    GLContext::readPixel(5, 5, rgba);
    EXPECT_EQ(250, rgba[0]);
    t.unbind();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

TEST_F(TextureGL, NonSquareMipMapKeepsZeroSidedLevels)
{
    MipMapTexture t("mm", 256, 64, 24, 7, filled(256 * 64 * 3, 90));
    ASSERT_EQ(9, t.getLevelCount());
    EXPECT_EQ(2, t.getLevelWidth(7));
    EXPECT_EQ(0, t.getLevelHeight(7));
    EXPECT_EQ(1, t.getLevelWidth(8));
    EXPECT_EQ(0, std::memcmp(t.getLevel(0), t.getDataPtr(), 256 * 64 * 3));
    EXPECT_EQ(90, t.getLevel(3)[0]);
    EXPECT_EQ(nullptr, t.getLevel(9));
    t.reset();
    EXPECT_EQ(0, t.getLevelCount());
    EXPECT_FALSE(t.upload());
}

TEST_F(TextureGL, MipMapUploadLeavesMagnificationAtItsDefault)
{
    MipMapTexture t("mm", 4, 4, 8, 5, filled(16, 60));
    EXPECT_TRUE(t.bind());
    EXPECT_EQ(GL_LINEAR_MIPMAP_LINEAR, boundParameter(GL_TEXTURE_MIN_FILTER));
    EXPECT_EQ(GL_LINEAR, boundParameter(GL_TEXTURE_MAG_FILTER));
    EXPECT_EQ(GL_INVALID_ENUM, glGetError());
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(1, width);
    t.unbind();
}
