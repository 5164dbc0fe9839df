// Texture and MipMapTexture: ownership rules of create, lazy upload, filters by quality, level chain.
#include "support/GLContext.h"

#include "gl/GLEXT.h"
#include "texture/MipMapTexture.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <cstring>
#include <gtest/gtest.h>

namespace {

unsigned char* filled(size_t size, unsigned char value)
{
    unsigned char* p = new unsigned char[size];
    std::memset(p, value, size);
    return p;
}

GLint boundParameter(GLenum name)
{
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
}

} // namespace

TEST(TextureCreate, TakesThePixelsOnce)
{
    Texture t;
    EXPECT_EQ(Texture::noName, t.getGLName());
    EXPECT_EQ(nullptr, t.getDataPtr());
    unsigned char* first = filled(2 * 2 * 3, 1);
    EXPECT_TRUE(t.create(2, 2, 24, 7, first));
    EXPECT_EQ(first, t.getDataPtr());
    EXPECT_EQ(3, t.getComponents());
    unsigned char* second = filled(4, 2);
    EXPECT_FALSE(t.create(2, 2, 24, 7, second));
    EXPECT_FALSE(t.create("other", 2, 2, 24, 7, second));
    EXPECT_EQ(first, t.getDataPtr());
    EXPECT_EQ(nullptr, t.getName());
    delete[] second;
}

TEST(TextureCreate, RefusesNullPixels)
{
    Texture t("named");
    EXPECT_FALSE(t.create(1, 1, 8, 5, nullptr));
    EXPECT_FALSE(t.create("renamed", 1, 1, 8, 5, nullptr));
    EXPECT_STREQ("named", t.getName());
}

TEST(TextureCreate, NamedCreateSetsTheName)
{
    Texture t;
    EXPECT_TRUE(t.create("data/img/logo.png", 1, 1, 8, 8, filled(4, 0)));
    EXPECT_STREQ("data/img/logo.png", t.getName());
    EXPECT_EQ(4, t.getComponents());
}

TEST(TextureCreate, ComponentsAndGLFormatPerCode)
{
    const int components[] = {0, 1, 1, 1, 1, 1, 2, 3, 4, 0};
    const GLenum formats[] = {GL_RGB, GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA, GL_LUMINANCE, GL_LUMINANCE_ALPHA,
                              GL_RGB, GL_RGBA, GL_RGB};
    Texture t;
    for (int code = 0; code <= 9; ++code) {
        EXPECT_EQ(components[code], Texture::componentsOf(code)) << code;
        EXPECT_EQ(formats[code], t.getOpenGLFormat(code)) << code;
    }
    EXPECT_EQ(GL_RGB, static_cast<GLenum>(t.getOpenGLFormat(-3)));
}

TEST(TextureCreate, CodesOutsideTheTableAreRefused)
{
    Texture t;
    unsigned char* p = filled(4, 0);
    EXPECT_FALSE(t.create(1, 1, 8, 0, p));
    EXPECT_FALSE(t.create(1, 1, 8, 9, p));
    delete[] p;
}

TEST(TextureCreate, ResetDropsPixelsButKeepsTheSize)
{
    Texture t("r", 3, 2, 8, 5, filled(6, 1));
    t.reset();
    EXPECT_EQ(nullptr, t.getDataPtr());
    EXPECT_EQ(3, t.getWidth());
    EXPECT_EQ(2, t.getHeight());
    EXPECT_EQ(5, t.getFormat());
    EXPECT_FALSE(t.unload());
    EXPECT_FALSE(t.upload());
    // Empty again: create works once more.
    EXPECT_TRUE(t.create(1, 1, 8, 5, filled(1, 0)));
}

TEST(MipMapLevels, CountFollowsTheHalvingRule)
{
    EXPECT_EQ(2, MipMapTexture::countLevels(1, 1));
    EXPECT_EQ(2, MipMapTexture::countLevels(2, 2));
    EXPECT_EQ(3, MipMapTexture::countLevels(4, 4));
    EXPECT_EQ(9, MipMapTexture::countLevels(256, 256));
    EXPECT_EQ(9, MipMapTexture::countLevels(256, 64));
    EXPECT_EQ(9, MipMapTexture::countLevels(64, 256));
    EXPECT_EQ(3, MipMapTexture::countLevels(5, 3));
    EXPECT_EQ(3, MipMapTexture::countLevels(4, 1));
}

class TextureGL : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        GLEXT::bindAll();
        Texture::setTexQuality(0);
    }

    void TearDown() override { Texture::setTexQuality(0); }
};

TEST_F(TextureGL, FirstBindUploadsAndLaterBindsReuse)
{
    Texture t("t", 2, 2, 24, 7, filled(12, 200));
    EXPECT_EQ(Texture::noName, t.getGLName());
    EXPECT_TRUE(t.bind());
    GLuint name = t.getGLName();
    EXPECT_NE(Texture::noName, name);
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    GLint width = 0, internal = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &internal);
    EXPECT_EQ(2, width);
    // The component count is given as the internal format, and GL reports it back as given.
    EXPECT_EQ(3, internal);
    t.unbind();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    t.bind();
    EXPECT_EQ(name, t.getGLName());
    t.unbind();
}

TEST_F(TextureGL, ObjectDeletedBehindItsBackIsRecreated)
{
    Texture t("t", 1, 1, 8, 5, filled(1, 7));
    t.bind();
    GLuint name = t.getGLName();
    glDeleteTextures(1, &name);
    EXPECT_FALSE(glIsTexture(name));
    t.bind();
    EXPECT_TRUE(glIsTexture(t.getGLName()));
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(1, width);
    t.unbind();
}

TEST_F(TextureGL, QualityAboveOneFiltersLinearly)
{
    const GLint expected[] = {GL_NEAREST, GL_NEAREST, GL_LINEAR, GL_LINEAR};
    for (int quality = 0; quality <= 3; ++quality) {
        Texture::setTexQuality(quality);
        Texture t("q", 1, 1, 8, 5, filled(1, 0));
        EXPECT_TRUE(t.upload());
        glBindTexture(GL_TEXTURE_2D, t.getGLName());
        EXPECT_EQ(expected[quality], boundParameter(GL_TEXTURE_MIN_FILTER)) << quality;
        EXPECT_EQ(expected[quality], boundParameter(GL_TEXTURE_MAG_FILTER)) << quality;
        EXPECT_EQ(GL_REPEAT, boundParameter(GL_TEXTURE_WRAP_S));
        EXPECT_EQ(GL_REPEAT, boundParameter(GL_TEXTURE_WRAP_T));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    }
}

TEST_F(TextureGL, UnloadDeletesTheObject)
{
    Texture t("u", 1, 1, 8, 5, filled(1, 0));
    t.upload();
    GLuint name = t.getGLName();
    EXPECT_TRUE(t.unload());
    EXPECT_FALSE(glIsTexture(name));
    EXPECT_EQ(Texture::noName, t.getGLName());
    EXPECT_FALSE(t.unload());
}

TEST_F(TextureGL, UploadedPixelsReachTheScreen)
{
    Texture t("p", 1, 1, 32, 8, new unsigned char[4]{10, 200, 30, 255});
    t.bind();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(-1, -1);
    glTexCoord2f(1, 0);
    glVertex2f(1, -1);
    glTexCoord2f(1, 1);
    glVertex2f(1, 1);
    glTexCoord2f(0, 1);
    glVertex2f(-1, 1);
    glEnd();
    unsigned char rgba[4];
    GLContext::readPixel(5, 5, rgba);
    EXPECT_EQ(10, rgba[0]);
    EXPECT_EQ(200, rgba[1]);
    EXPECT_EQ(30, rgba[2]);

    // updateSubTex sends the changed buffer into the same object.
    t.getDataPtr()[0] = 250;
    t.updateSubTex();
    t.bind();
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(-1, -1);
    glTexCoord2f(1, 0);
    glVertex2f(1, -1);
    glTexCoord2f(1, 1);
    glVertex2f(1, 1);
    glTexCoord2f(0, 1);
    glVertex2f(-1, 1);
    glEnd();
    GLContext::readPixel(5, 5, rgba);
    EXPECT_EQ(250, rgba[0]);
    t.unbind();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

TEST_F(TextureGL, UnitBindLeavesTheUnitActiveAndUnbindReturnsToUnitZero)
{
    ASSERT_TRUE(GLEXT::isSupported(GLEXT::ARB_multitexture));
    Texture t("m", 1, 1, 8, 5, filled(1, 0));
    t.bind(GL_TEXTURE1_ARB);
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE_ARB, &active);
    EXPECT_EQ(GL_TEXTURE1_ARB, active);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    t.unbind(GL_TEXTURE1_ARB);
    glGetIntegerv(GL_ACTIVE_TEXTURE_ARB, &active);
    EXPECT_EQ(GL_TEXTURE0_ARB, active);
    glActiveTextureARB(GL_TEXTURE1_ARB);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    glActiveTextureARB(GL_TEXTURE0_ARB);
}

TEST_F(TextureGL, WithoutMultitextureTheUnitIsNotChanged)
{
    GLEXT::flags = 0;
    Texture t("m", 1, 1, 8, 5, filled(1, 0));
    t.bind(GL_TEXTURE1_ARB);
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE_ARB, &active);
    EXPECT_EQ(GL_TEXTURE0_ARB, active);
    t.unbind(GL_TEXTURE1_ARB);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    GLEXT::bindAll();
}

TEST_F(TextureGL, NonSquareMipMapKeepsZeroSidedLevels)
{
    MipMapTexture t("mm", 256, 64, 24, 7, filled(256 * 64 * 3, 90));
    ASSERT_EQ(9, t.getLevelCount());
    EXPECT_EQ(256, t.getLevelWidth(0));
    EXPECT_EQ(64, t.getLevelHeight(0));
    EXPECT_EQ(2, t.getLevelWidth(7));
    EXPECT_EQ(0, t.getLevelHeight(7));
    EXPECT_EQ(1, t.getLevelWidth(8));
    EXPECT_EQ(0, t.getLevelHeight(8));
    // Level 0 is a same-size copy; deeper levels of a flat image stay flat.
    EXPECT_EQ(0, std::memcmp(t.getLevel(0), t.getDataPtr(), 256 * 64 * 3));
    EXPECT_EQ(90, t.getLevel(3)[0]);
    EXPECT_EQ(nullptr, t.getLevel(9));
}

TEST_F(TextureGL, OneByOneMipMapGetsTwoLevels)
{
    MipMapTexture t("one", 1, 1, 8, 5, filled(1, 5));
    EXPECT_EQ(2, t.getLevelCount());
}

TEST_F(TextureGL, MipMapUploadLeavesMagnificationAtItsDefault)
{
    Texture::setTexQuality(2);
    MipMapTexture t("mm", 4, 4, 8, 5, filled(16, 60));
    EXPECT_TRUE(t.bind());
    EXPECT_EQ(GL_LINEAR_MIPMAP_LINEAR, boundParameter(GL_TEXTURE_MIN_FILTER));
    EXPECT_EQ(GL_LINEAR, boundParameter(GL_TEXTURE_MAG_FILTER));
    EXPECT_EQ(GL_INVALID_ENUM, glGetError());
    while (glGetError() != GL_NO_ERROR) {
    }
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(1, width);
    t.unbind();
}

TEST_F(TextureGL, MipMapCreateOnceAndResetFreesLevels)
{
    MipMapTexture t;
    unsigned char* p = filled(4 * 4, 1);
    EXPECT_TRUE(t.create("m", 4, 4, 8, 5, p));
    EXPECT_STREQ("m", t.getName());
    EXPECT_FALSE(t.createMipMaps());
    unsigned char* q = filled(4, 1);
    EXPECT_FALSE(t.create(2, 2, 8, 5, q));
    delete[] q;
    t.reset();
    EXPECT_EQ(0, t.getLevelCount());
    EXPECT_EQ(nullptr, t.getDataPtr());
    EXPECT_FALSE(t.upload());
    EXPECT_FALSE(t.uploadMipMaps());
}
