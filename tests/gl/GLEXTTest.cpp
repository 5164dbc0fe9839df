// Extension detection: the whole-word match on any string, and the flag word set from the live driver.
#include "support/GLContext.h"

#include "gl/GLEXT.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

namespace {

const char* driverString = "GL_ARB_multitexture_foo GL_EXT_fog_coord GL_ARB_texture_env_add";

} // namespace

TEST(GLEXTMatch, CountsOnlyWholeNames)
{
    EXPECT_FALSE(GLEXT::findExtension(driverString, "GL_ARB_multitexture"));
    EXPECT_TRUE(GLEXT::findExtension(driverString, "GL_ARB_multitexture_foo"));
    EXPECT_TRUE(GLEXT::findExtension(driverString, "GL_EXT_fog_coord"));
    EXPECT_TRUE(GLEXT::findExtension(driverString, "GL_ARB_texture_env_add"));
    EXPECT_FALSE(GLEXT::findExtension(driverString, "EXT_fog_coord"));
    EXPECT_FALSE(GLEXT::findExtension(driverString, "GL_ARB_texture_env"));
}

TEST(GLEXTMatch, KeepsSearchingAfterAFalseHit)
{
    EXPECT_TRUE(GLEXT::findExtension("GL_A_bc GL_A_b", "GL_A_b"));
    EXPECT_TRUE(GLEXT::findExtension("xGL_A_b GL_A_b", "GL_A_b"));
    EXPECT_FALSE(GLEXT::findExtension("xGL_A_b GL_A_bc", "GL_A_b"));
}

TEST(GLEXTMatch, EmptyOrBlankNamesAreNeverPresent)
{
    EXPECT_FALSE(GLEXT::findExtension(driverString, ""));
    EXPECT_FALSE(GLEXT::findExtension(driverString, "GL_EXT_fog_coord GL_ARB_texture_env_add"));
    EXPECT_FALSE(GLEXT::findExtension(driverString, " "));
    EXPECT_FALSE(GLEXT::findExtension(nullptr, "GL_EXT_fog_coord"));
    EXPECT_FALSE(GLEXT::findExtension("", "GL_EXT_fog_coord"));
}

class GLEXTDriver : public GLTest {};

TEST_F(GLEXTDriver, BindAllSetsTheBitsOfOfferedExtensions)
{
    GLEXT::flags = 0xffffffffu;
    GLEXT::bindAll();
    // Mesa's llvmpipe offers these on every build the project runs on.
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::ARB_multitexture));
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::ARB_texture_env_combine));
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::ARB_texture_env_add));
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::EXT_separate_specular_color));
    // Names no Mesa driver offers stay clear: bindAll zeroed the word first.
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::ATIX_pn_triangles));
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::KTX_buffer_region));
    EXPECT_EQ(0u, GLEXT::flags & 0xf0000000u);
}

TEST_F(GLEXTDriver, EachBitFollowsTheDriverString)
{
    GLEXT::bindAll();
    EXPECT_EQ(GLEXT::hasExtension("GL_ARB_multitexture"), GLEXT::isSupported(GLEXT::ARB_multitexture));
    EXPECT_EQ(GLEXT::hasExtension("GL_EXT_texture3D"), GLEXT::isSupported(GLEXT::EXT_texture3D));
    EXPECT_EQ(GLEXT::hasExtension("GL_ARB_texture_cube_map"), GLEXT::isSupported(GLEXT::ARB_texture_cube_map));
    EXPECT_EQ(GLEXT::hasExtension("GL_NV_texgen_reflection"), GLEXT::isSupported(GLEXT::NV_texgen_reflection));
}

TEST_F(GLEXTDriver, DrawRangeElementsIsLeftOutOfBindAll)
{
    GLEXT::bindAll();
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::EXT_draw_range_elements));
    bool offered = GLEXT::hasExtension("GL_EXT_draw_range_elements");
    EXPECT_EQ(offered, GLEXT::bindDrawRangeElements());
    EXPECT_EQ(offered, GLEXT::isSupported(GLEXT::EXT_draw_range_elements));
    GLEXT::bindAll();
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::EXT_draw_range_elements));
}

TEST_F(GLEXTDriver, WindowSystemWordsGetNoBits)
{
    GLEXT::flagsGLX = 0x5;
    GLEXT::flagsWGL = 0x5;
    GLEXT::bindAllGLX();
    GLEXT::bindAllWGL(nullptr);
    EXPECT_EQ(0u, GLEXT::flagsGLX);
    EXPECT_EQ(0u, GLEXT::flagsWGL);
    EXPECT_FALSE(GLEXT::hasExtensionWGL("WGL_ARB_pbuffer", nullptr));
    EXPECT_FALSE(GLEXT::bindPBufferWGL());
}
