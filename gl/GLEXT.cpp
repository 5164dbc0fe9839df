// Extension detection: a bit per extension, set only when the driver's string names it exactly.
#include "gl/GLEXT.h"

#include <GL/gl.h>
#include <cstring>

uint32_t GLEXT::flags = 0;
uint32_t GLEXT::flagsWGL = 0;
uint32_t GLEXT::flagsGLX = 0;

namespace {

struct EnvExtension {
    const char* name;
    uint32_t bit;
};

// The texture-environment group, tested by bindAll in this order.
const EnvExtension envExtensions[] = {
    {"GL_ARB_texture_border_clamp", GLEXT::ARB_texture_border_clamp},
    {"GL_ARB_texture_cube_map", GLEXT::ARB_texture_cube_map},
    {"GL_ARB_texture_env_add", GLEXT::ARB_texture_env_add},
    {"GL_ARB_texture_env_combine", GLEXT::ARB_texture_env_combine},
    {"GL_ARB_texture_env_dot3", GLEXT::ARB_texture_env_dot3},
    {"GL_EXT_separate_specular_color", GLEXT::EXT_separate_specular_color},
    {"GL_EXT_texgen_reflection", GLEXT::EXT_texgen_reflection},
    {"GL_ATIX_texture_env_combine3", GLEXT::ATIX_texture_env_combine3},
    {"GL_ATI_texture_mirror_once", GLEXT::ATI_texture_mirror_once},
    {"GL_ATIX_texture_env_route", GLEXT::ATIX_texture_env_route},
    {"GL_ARB_texture_env_crossbar", GLEXT::ARB_texture_env_crossbar},
    {"GL_NV_texgen_reflection", GLEXT::NV_texgen_reflection},
};

}  // namespace

bool GLEXT::findExtension(const char* extensions, const char* name)
{
    if (!extensions || !name || !*name || std::strchr(name, ' '))
        return false;
    size_t length = std::strlen(name);
    const char* start = extensions;
    for (;;) {
        const char* hit = std::strstr(start, name);
        if (!hit)
            return false;
        const char* end = hit + length;
        // A prefix of a longer name is not a hit.
        if ((hit == extensions || hit[-1] == ' ') && (*end == ' ' || *end == '\0'))
            return true;
        start = end;
    }
}

bool GLEXT::hasExtension(const char* name)
{
    const GLubyte* text = glGetString(GL_EXTENSIONS);
    return findExtension(reinterpret_cast<const char*>(text), name);
}

bool GLEXT::bindOne(const char* name, uint32_t bit)
{
    if (!hasExtension(name))
        return false;
    flags |= bit;
    return true;
}

void GLEXT::bindAll()
{
    flags = 0;
    bindMultiTexture();
    bindTextureCompression();
    bindTransposeMatrix();
    bindVertexBlend();
    bindEnvmapBumpmapATI();
    bindPnTrianglesATI();
    bindVertexStreamsATI();
    bindCompiledVertexArrays();
    // bindDrawRangeElements is left out on purpose: its bit stays clear after bindAll.
    bindFogCoord();
    bindPointParameters();
    bindSecondaryColor();
    bindTextureObjects();
    bindBufferRegionKTX();
    bindVertexArray();
    bindTexture3D();
    for (const EnvExtension& e : envExtensions)
        bindOne(e.name, e.bit);
}

bool GLEXT::bindMultiTexture()
{
    return bindOne("GL_ARB_multitexture", ARB_multitexture);
}
bool GLEXT::bindTextureCompression()
{
    return bindOne("GL_ARB_texture_compression", ARB_texture_compression);
}
bool GLEXT::bindTransposeMatrix()
{
    return bindOne("GL_ARB_transpose_matrix", ARB_transpose_matrix);
}
bool GLEXT::bindVertexBlend()
{
    return bindOne("GL_ARB_vertex_blend", ARB_vertex_blend);
}
bool GLEXT::bindEnvmapBumpmapATI()
{
    return bindOne("GL_ATIX_envmap_bumpmap", ATIX_envmap_bumpmap);
}
bool GLEXT::bindPnTrianglesATI()
{
    return bindOne("GL_ATIX_pn_triangles", ATIX_pn_triangles);
}
bool GLEXT::bindVertexStreamsATI()
{
    return bindOne("GL_ATI_vertex_streams", ATI_vertex_streams);
}
bool GLEXT::bindCompiledVertexArrays()
{
    return bindOne("GL_EXT_compiled_vertex_array", EXT_compiled_vertex_array);
}
bool GLEXT::bindDrawRangeElements()
{
    return bindOne("GL_EXT_draw_range_elements", EXT_draw_range_elements);
}
bool GLEXT::bindFogCoord()
{
    return bindOne("GL_EXT_fog_coord", EXT_fog_coord);
}
bool GLEXT::bindPointParameters()
{
    return bindOne("GL_EXT_point_parameters", EXT_point_parameters);
}
bool GLEXT::bindSecondaryColor()
{
    return bindOne("GL_EXT_secondary_color", EXT_secondary_color);
}
bool GLEXT::bindTextureObjects()
{
    return bindOne("GL_EXT_texture_object", EXT_texture_object);
}
bool GLEXT::bindBufferRegionKTX()
{
    return bindOne("GL_KTX_buffer_region", KTX_buffer_region);
}
bool GLEXT::bindVertexArray()
{
    return bindOne("GL_EXT_vertex_array", EXT_vertex_array);
}
bool GLEXT::bindTexture3D()
{
    return bindOne("GL_EXT_texture3D", EXT_texture3D);
}

void GLEXT::bindAllGLX()
{
    flagsGLX = 0;
}

void GLEXT::bindAllWGL(void*)
{
    flagsWGL = 0;
    bindExtensionsStringARBWGL();
    bindExtensionsStringEXTWGL();
    bindSwapControlWGL();
    bindPixelFormatWGL();
    bindMakeCurrentReadWGL();
    bindPBufferWGL();
    bindRenderTextureWGL();
}

bool GLEXT::hasExtensionWGL(const char*, void*)
{
    return false;
}
bool GLEXT::bindExtensionsStringARBWGL()
{
    return hasExtension("WGL_ARB_extensions_string");
}
bool GLEXT::bindExtensionsStringEXTWGL()
{
    return hasExtension("WGL_EXT_extensions_string");
}
bool GLEXT::bindSwapControlWGL()
{
    return hasExtension("WGL_EXT_swap_control");
}
bool GLEXT::bindPixelFormatWGL()
{
    return false;
}
bool GLEXT::bindMakeCurrentReadWGL()
{
    return false;
}
bool GLEXT::bindPBufferWGL()
{
    return false;
}
bool GLEXT::bindRenderTextureWGL()
{
    return false;
}
