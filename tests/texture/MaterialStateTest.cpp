// GL state set by binding materials: blend and alpha test per mode, depth writes, faces, texgen, combine.
#include "support/GLContext.h"

#include "gl/GLEXT.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

namespace {

GLint getInt(GLenum name)
{
    GLint v = 0;
    glGetIntegerv(name, &v);
    return v;
}
GLint envInt(GLenum name)
{
    GLint v = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, name, &v);
    return v;
}
GLint texGenMode(GLenum coord)
{
    GLint v = 0;
    glGetTexGeniv(coord, GL_TEXTURE_GEN_MODE, &v);
    return v;
}

class MaterialState : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        GLEXT::bindAll();
    }

    void TearDown() override
    {
        glDisable(GL_BLEND);
        glDepthMask(GL_TRUE);
        for (GLenum unit : {GL_TEXTURE1_ARB, GL_TEXTURE0_ARB}) {
            glActiveTextureARB(unit);
            glDisable(GL_TEXTURE_2D);
            glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        }
        delete first;
        delete second;
        GLTest::TearDown();
    }

    Texture* first = new Texture("first", 1, 1, 8, 5, new unsigned char[1]{128});
    Texture* second = new Texture("second", 1, 1, 8, 5, new unsigned char[1]{128});
};

}  // namespace

TEST_F(MaterialState, EachBlendModeSetsItsAlphaTestAndBlendFactors)
{
    // Alpha test function (0: none), source and destination factors (0: no blending); 12 does nothing.
    const GLenum modes[13][3] = {{0, 0, 0},
                                 {GL_GEQUAL, 0, 0},
                                 {0, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
                                 {GL_GREATER, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
                                 {0, GL_ONE_MINUS_DST_COLOR, GL_ONE_MINUS_SRC_COLOR},
                                 {GL_GREATER, GL_ONE_MINUS_DST_COLOR, GL_ONE_MINUS_SRC_COLOR},
                                 {0, GL_SRC_ALPHA, GL_ONE},
                                 {GL_GREATER, GL_SRC_ALPHA, GL_ONE},
                                 {0, GL_ONE, GL_SRC_COLOR},
                                 {GL_GREATER, GL_ONE, GL_SRC_COLOR},
                                 {0, GL_ONE, GL_ONE},
                                 {GL_GREATER, GL_ONE, GL_ONE},
                                 {0, 0, 0}};
    for (int mode = 0; mode < 13; ++mode) {
        SCOPED_TRACE(mode);
        glBlendFunc(GL_ZERO, GL_ZERO);
        glAlphaFunc(GL_NEVER, 0.7f);
        Material m("m");
        m.setBlendMode(mode);
        m.bind();
        EXPECT_EQ(modes[mode][0] != 0, glIsEnabled(GL_ALPHA_TEST) == GL_TRUE);
        if (modes[mode][0]) {
            EXPECT_EQ(static_cast<GLint>(modes[mode][0]), getInt(GL_ALPHA_TEST_FUNC));
            GLfloat ref = 0;
            glGetFloatv(GL_ALPHA_TEST_REF, &ref);
            EXPECT_FLOAT_EQ(0.1f, ref);
        }
        EXPECT_EQ(modes[mode][1] != 0, glIsEnabled(GL_BLEND) == GL_TRUE);
        if (modes[mode][1]) {
            EXPECT_EQ(static_cast<GLint>(modes[mode][1]), getInt(GL_BLEND_SRC));
            EXPECT_EQ(static_cast<GLint>(modes[mode][2]), getInt(GL_BLEND_DST));
        }
        m.unbind();
        EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
    }
}

TEST_F(MaterialState, DepthWriteBitClearsTheMaskWhileBoundButAMulTextureMaterialKeepsIt)
{
    Material m("m");
    m.setFlags(0x20000013);
    m.bind();
    EXPECT_EQ(GL_FALSE, getInt(GL_DEPTH_WRITEMASK));
    m.unbind();
    EXPECT_EQ(GL_TRUE, getInt(GL_DEPTH_WRITEMASK));
    // Its unbind binds the material again, so blending and the depth mask stay.
    MulTextureMaterial mul("mul");
    mul.setBlendMode(2);
    mul.setFlags(0x20000003);
    mul.bind();
    mul.unbind();
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(GL_FALSE, getInt(GL_DEPTH_WRITEMASK));
}

TEST_F(MaterialState, TextureCoordinateGenerationByTheFirstFlagSet)
{
    const struct {
        unsigned long flags;
        GLint mode;
    } cases[] = {{0x40, GL_SPHERE_MAP}, {0x400, GL_OBJECT_LINEAR}, {0x540, GL_SPHERE_MAP}, {0x500, GL_EYE_LINEAR}};
    for (const auto& c : cases) {
        TextureMaterial m("tm");
        m.setTexture(first);
        m.setFlags(c.flags);
        m.bind();
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_S)) << c.flags;
        EXPECT_EQ(c.mode, texGenMode(GL_T)) << c.flags;
        m.unbind();
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_T));
    }
}

TEST_F(MaterialState, CombineStateOfBothUnitsPerTexBlendMode)
{
    ASSERT_TRUE(GLEXT::isSupported(GLEXT::ARB_multitexture));
    // A texture's first upload happens on whichever unit is active, so upload both beforehand.
    first->upload();
    second->upload();
    const GLint unit1Function[3] = {GL_ADD, GL_SUBTRACT_ARB, GL_MODULATE};
    for (int mode = 0; mode < 3; ++mode) {
        MulTextureMaterial m("mul");
        m.setTexture(first);
        m.setTexture2(second);
        m.setTexBlendMode(mode);
        // Object-linear coordinates for the first texture, sphere-mapped for the second.
        m.setFlags(0x10000483);
        m.bind();
        EXPECT_EQ(GL_TEXTURE0_ARB, getInt(GL_ACTIVE_TEXTURE_ARB));
        for (int unit = 0; unit < 2; ++unit) {
            SCOPED_TRACE(::testing::Message() << mode << "/" << unit);
            glActiveTextureARB(GL_TEXTURE0_ARB + unit);
            GLint function = unit == 0 ? GL_MODULATE : unit1Function[mode];
            EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
            EXPECT_EQ(GL_COMBINE_ARB, envInt(GL_TEXTURE_ENV_MODE));
            EXPECT_EQ(function, envInt(GL_COMBINE_RGB_ARB));
            EXPECT_EQ(function, envInt(GL_COMBINE_ALPHA_ARB));
            EXPECT_EQ(GL_PREVIOUS_ARB, envInt(GL_SOURCE1_RGB_ARB));
            EXPECT_EQ(GL_CONSTANT_ARB, envInt(GL_SOURCE2_RGB_ARB));
            EXPECT_EQ(GL_SRC_ALPHA, envInt(GL_OPERAND2_RGB_ARB));
            GLint operand0 = (unit == 1 && mode == 1) ? GL_ONE_MINUS_SRC_ALPHA : GL_SRC_ALPHA;
            EXPECT_EQ(operand0, envInt(GL_OPERAND0_ALPHA_ARB));
            EXPECT_EQ(unit == 0 ? GL_OBJECT_LINEAR : GL_SPHERE_MAP, texGenMode(GL_S));
        }
        glActiveTextureARB(GL_TEXTURE0_ARB);
        m.unbind();
        EXPECT_EQ(GL_TEXTURE0_ARB, getInt(GL_ACTIVE_TEXTURE_ARB));
        for (int unit = 1; unit >= 0; --unit) {
            glActiveTextureARB(GL_TEXTURE0_ARB + unit);
            EXPECT_EQ(GL_MODULATE, envInt(GL_TEXTURE_ENV_MODE)) << unit;
            EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D)) << unit;
            EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_S)) << unit;
        }
    }
}
