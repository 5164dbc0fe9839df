// Extension detection: the whole-word match on any string, and the flag word set from the live driver.
#include "support/GLContext.h"

#include "gl/GLEXT.h"

#include <gtest/gtest.h>

TEST(GLEXTMatch, CountsOnlyWholeNames)
{
    const char* list = "GL_ARB_multitexture_foo GL_EXT_fog_coord GL_ARB_texture_env_add";
    EXPECT_FALSE(GLEXT::findExtension(list, "GL_ARB_multitexture"));
    EXPECT_TRUE(GLEXT::findExtension(list, "GL_ARB_texture_env_add"));
    EXPECT_FALSE(GLEXT::findExtension(list, "EXT_fog_coord"));
    EXPECT_FALSE(GLEXT::findExtension(list, "GL_EXT_fog_coord GL_ARB_texture_env_add"));
    // A false hit earlier in the string must not end the search.
    EXPECT_TRUE(GLEXT::findExtension("GL_A_bc GL_A_b", "GL_A_b"));
    EXPECT_TRUE(GLEXT::findExtension("xGL_A_b GL_A_b", "GL_A_b"));
    for (const char* name : {"", " "})
        EXPECT_FALSE(GLEXT::findExtension(list, name));
    EXPECT_FALSE(GLEXT::findExtension(nullptr, "GL_EXT_fog_coord"));
}

class GLEXTDriver : public GLTest {};

TEST_F(GLEXTDriver, BindAllClearsTheWordThenSetsOfferedBitsButDrawRangeElements)
{
    GLEXT::flags = 0xffffffffu;
    GLEXT::bindAll();
    // Mesa's llvmpipe offers these on every build the project runs on.
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::ARB_multitexture));
    EXPECT_TRUE(GLEXT::isSupported(GLEXT::ARB_texture_env_combine));
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::ATIX_pn_triangles));
    EXPECT_EQ(GLEXT::hasExtension("GL_EXT_texture3D"), GLEXT::isSupported(GLEXT::EXT_texture3D));
    EXPECT_FALSE(GLEXT::isSupported(GLEXT::EXT_draw_range_elements));
    bool offered = GLEXT::hasExtension("GL_EXT_draw_range_elements");
    EXPECT_EQ(offered, GLEXT::bindDrawRangeElements());
    EXPECT_EQ(offered, GLEXT::isSupported(GLEXT::EXT_draw_range_elements));
}
