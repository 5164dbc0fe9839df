// GL state set by binding materials: blend and alpha test per mode, depth writes, faces, texgen, combine.
#include "support/GLContext.h"

#include "gl/GLEXT.h"
#include "texture/Material.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

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
        glDisable(GL_BLEND);
        glDisable(GL_ALPHA_TEST);
        glDepthMask(GL_TRUE);
        const GLfloat grey[4] = {0.5f, 0.5f, 0.5f, 0.5f};
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, grey);
    }

    void TearDown() override
    {
        glDisable(GL_BLEND);
        glDisable(GL_ALPHA_TEST);
        glDepthMask(GL_TRUE);
        for (GLenum unit : {GL_TEXTURE1_ARB, GL_TEXTURE0_ARB}) {
            glActiveTextureARB(unit);
            glDisable(GL_TEXTURE_2D);
            glDisable(GL_TEXTURE_GEN_S);
            glDisable(GL_TEXTURE_GEN_T);
            glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        }
    }

    static Texture* pixel(const char* name)
    {
        return new Texture(name, 1, 1, 8, 5, new unsigned char[1]{128});
    }
};

struct ModeState {
    GLenum alphaFunc;  // 0: no alpha test
    GLenum source;     // 0: no blending
    GLenum destination;
};

} // namespace

TEST_F(MaterialState, EachBlendModeSetsItsAlphaTestAndBlendFactors)
{
    const ModeState modes[12] = {
        {0, 0, 0},
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
    };
    for (int mode = 0; mode < 12; ++mode) {
        glBlendFunc(GL_ZERO, GL_ZERO);
        glAlphaFunc(GL_NEVER, 0.7f);
        Material m("m");
        m.setBlendMode(mode);
        m.bind();
        const ModeState& s = modes[mode];
        EXPECT_EQ(s.alphaFunc != 0, glIsEnabled(GL_ALPHA_TEST) == GL_TRUE) << mode;
        if (s.alphaFunc) {
            EXPECT_EQ(static_cast<GLint>(s.alphaFunc), getInt(GL_ALPHA_TEST_FUNC)) << mode;
            GLfloat ref = 0;
            glGetFloatv(GL_ALPHA_TEST_REF, &ref);
            EXPECT_FLOAT_EQ(0.1f, ref) << mode;
        }
        EXPECT_EQ(s.source != 0, glIsEnabled(GL_BLEND) == GL_TRUE) << mode;
        if (s.source) {
            EXPECT_EQ(static_cast<GLint>(s.source), getInt(GL_BLEND_SRC)) << mode;
            EXPECT_EQ(static_cast<GLint>(s.destination), getInt(GL_BLEND_DST)) << mode;
        }
        m.unbind();
        EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST)) << mode;
        EXPECT_FALSE(glIsEnabled(GL_BLEND)) << mode;
    }
}

TEST_F(MaterialState, ModesAboveElevenDoNothing)
{
    Material m("m");
    m.setBlendMode(12);
    m.bind();
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
    m.unbind();
}

TEST_F(MaterialState, DepthWriteBitClearsTheMaskWhileBound)
{
    Material m("m");
    m.setFlags(0x20000013);
    m.bind();
    EXPECT_EQ(GL_FALSE, getInt(GL_DEPTH_WRITEMASK));
    m.unbind();
    EXPECT_EQ(GL_TRUE, getInt(GL_DEPTH_WRITEMASK));
    Material plain("p");
    plain.bind();
    EXPECT_EQ(GL_TRUE, getInt(GL_DEPTH_WRITEMASK));
    plain.unbind();
}

TEST_F(MaterialState, OnlyFlagsExactlyOneOrTwoPickASingleSide)
{
    struct Case {
        unsigned long flags;
        bool front;
        bool back;
    } cases[] = {{1, true, false}, {2, false, true}, {0x41, true, true}, {0x10000003, true, true}, {3, true, true}};
    for (const Case& c : cases) {
        const GLfloat grey[4] = {0.5f, 0.5f, 0.5f, 0.5f};
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, grey);
        Material m("m");
        m.setFlags(c.flags);
        m.setDiffuse(Color(0.25f, 0.75f, 1.0f, 1.0f));
        m.setShininess(12.0f);
        m.bind();
        GLfloat front[4], back[4], shine[1];
        glGetMaterialfv(GL_FRONT, GL_DIFFUSE, front);
        glGetMaterialfv(GL_BACK, GL_DIFFUSE, back);
        EXPECT_EQ(c.front, front[1] == 0.75f) << std::hex << c.flags;
        EXPECT_EQ(c.back, back[1] == 0.75f) << std::hex << c.flags;
        glGetMaterialfv(c.front ? GL_FRONT : GL_BACK, GL_SHININESS, shine);
        EXPECT_EQ(12.0f, shine[0]);
        m.unbind();
    }
}

TEST_F(MaterialState, ColoursReachTheMaterial)
{
    Material m("m");
    m.setAmbient(Color(0.1f, 0.2f, 0.3f, 0.4f));
    m.setSpecular(Color(0.5f, 0.6f, 0.7f, 0.8f));
    m.setEmission(Color(0.9f, 0.0f, 0.1f, 1.0f));
    m.bind();
    GLfloat v[4];
    glGetMaterialfv(GL_FRONT, GL_AMBIENT, v);
    EXPECT_FLOAT_EQ(0.3f, v[2]);
    glGetMaterialfv(GL_BACK, GL_SPECULAR, v);
    EXPECT_FLOAT_EQ(0.8f, v[3]);
    glGetMaterialfv(GL_FRONT, GL_EMISSION, v);
    EXPECT_FLOAT_EQ(0.9f, v[0]);
    m.unbind();
}

TEST_F(MaterialState, TextureCoordinateGenerationByTheFirstFlagSet)
{
    struct Case {
        unsigned long flags;
        GLint mode;
    } cases[] = {{0x40, GL_SPHERE_MAP}, {0x100, GL_EYE_LINEAR}, {0x400, GL_OBJECT_LINEAR}, {0x540, GL_SPHERE_MAP},
                 {0x500, GL_EYE_LINEAR}};
    Texture* t = pixel("gen");
    for (const Case& c : cases) {
        TextureMaterial m("tm");
        m.setTexture(t);
        m.setFlags(c.flags);
        m.bind();
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_S)) << std::hex << c.flags;
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_T));
        EXPECT_EQ(c.mode, texGenMode(GL_S)) << std::hex << c.flags;
        EXPECT_EQ(c.mode, texGenMode(GL_T));
        m.unbind();
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_S));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_T));
    }
    delete t;
}

TEST_F(MaterialState, NoGenerationFlagsLeaveGenerationAlone)
{
    Texture* t = pixel("nogen");
    TextureMaterial m("tm");
    m.setTexture(t);
    m.setFlags(0x10000003);
    glEnable(GL_TEXTURE_GEN_S);
    m.bind();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_T));
    m.unbind();
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_S));
    delete t;
}

TEST_F(MaterialState, TextureMaterialWithoutTextureOnlySetsTheMaterial)
{
    TextureMaterial m("none");
    m.setFlags(0x40);
    m.setBlendMode(2);
    m.bind();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_GEN_S));
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    m.unbind();
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST_F(MaterialState, CombineStateOfBothUnitsPerTexBlendMode)
{
    ASSERT_TRUE(GLEXT::isSupported(GLEXT::ARB_multitexture));
    Texture* first = pixel("first");
    Texture* second = pixel("second");
    // A texture's first upload happens on whichever unit is active, so upload both beforehand.
    first->upload();
    second->upload();
    const GLint unit1Function[3] = {GL_ADD, GL_SUBTRACT_ARB, GL_MODULATE};
    for (int mode = 0; mode < 3; ++mode) {
        MulTextureMaterial m("mul");
        m.setTexture(first);
        m.setTexture2(second);
        m.setTexBlendMode(mode);
        m.setFlags(0x10000483);
        m.bind();
        EXPECT_EQ(GL_TEXTURE0_ARB, getInt(GL_ACTIVE_TEXTURE_ARB));
        for (int unit = 0; unit < 2; ++unit) {
            glActiveTextureARB(GL_TEXTURE0_ARB + unit);
            GLint function = unit == 0 ? GL_MODULATE : unit1Function[mode];
            EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D)) << unit;
            EXPECT_EQ(GL_COMBINE_ARB, envInt(GL_TEXTURE_ENV_MODE));
            EXPECT_EQ(function, envInt(GL_COMBINE_RGB_ARB)) << mode << "/" << unit;
            EXPECT_EQ(function, envInt(GL_COMBINE_ALPHA_ARB)) << mode << "/" << unit;
            EXPECT_EQ(GL_TEXTURE, envInt(GL_SOURCE0_RGB_ARB));
            EXPECT_EQ(GL_PREVIOUS_ARB, envInt(GL_SOURCE1_RGB_ARB));
            EXPECT_EQ(GL_CONSTANT_ARB, envInt(GL_SOURCE2_RGB_ARB));
            EXPECT_EQ(GL_SRC_COLOR, envInt(GL_OPERAND0_RGB_ARB));
            EXPECT_EQ(GL_SRC_COLOR, envInt(GL_OPERAND1_RGB_ARB));
            EXPECT_EQ(GL_SRC_ALPHA, envInt(GL_OPERAND2_RGB_ARB));
            EXPECT_EQ(GL_TEXTURE, envInt(GL_SOURCE0_ALPHA_ARB));
            EXPECT_EQ(GL_PREVIOUS_ARB, envInt(GL_SOURCE1_ALPHA_ARB));
            GLint operand0 = (unit == 1 && mode == 1) ? GL_ONE_MINUS_SRC_ALPHA : GL_SRC_ALPHA;
            EXPECT_EQ(operand0, envInt(GL_OPERAND0_ALPHA_ARB)) << mode << "/" << unit;
            EXPECT_EQ(GL_SRC_ALPHA, envInt(GL_OPERAND1_ALPHA_ARB));
            GLfloat scale = 0;
            glGetTexEnvfv(GL_TEXTURE_ENV, GL_RGB_SCALE_ARB, &scale);
            EXPECT_EQ(1.0f, scale);
            glGetTexEnvfv(GL_TEXTURE_ENV, GL_ALPHA_SCALE, &scale);
            EXPECT_EQ(1.0f, scale);
        }
        // Flags 0x400 (object linear, first texture) and 0x80 (sphere map, second).
        glActiveTextureARB(GL_TEXTURE0_ARB);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_S));
        EXPECT_EQ(GL_OBJECT_LINEAR, texGenMode(GL_S));
        glActiveTextureARB(GL_TEXTURE1_ARB);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_GEN_T));
        EXPECT_EQ(GL_SPHERE_MAP, texGenMode(GL_T));
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
    delete first;
    delete second;
}

TEST_F(MaterialState, UnbindingAMulTextureMaterialKeepsItsBlendingAndDepthMask)
{
    MulTextureMaterial m("mul");
    m.setBlendMode(2);
    m.setFlags(0x20000003);
    m.bind();
    m.unbind();
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(GL_FALSE, getInt(GL_DEPTH_WRITEMASK));
}
