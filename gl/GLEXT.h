// Which OpenGL extensions the driver offers, found once after the context exists.
#pragma once

#include <cstdint>

// Detection only: the entry points the program calls are linked straight from libGL.
class GLEXT {
public:
    // Bits of the GL flag word.
    enum : uint32_t {
        ARB_multitexture = 0x1,
        ARB_texture_compression = 0x2,
        ARB_transpose_matrix = 0x4,
        ARB_vertex_blend = 0x8,
        ATIX_envmap_bumpmap = 0x10,
        ATIX_pn_triangles = 0x20,
        ATI_vertex_streams = 0x40,
        EXT_compiled_vertex_array = 0x80,
        EXT_draw_range_elements = 0x100,
        EXT_fog_coord = 0x200,
        EXT_point_parameters = 0x400,
        EXT_secondary_color = 0x800,
        EXT_texture_object = 0x1000,
        KTX_buffer_region = 0x2000,
        EXT_vertex_array = 0x4000,
        EXT_texture3D = 0x8000,
        ARB_texture_border_clamp = 0x10000,
        ARB_texture_cube_map = 0x20000,
        ARB_texture_env_add = 0x40000,
        ARB_texture_env_combine = 0x80000,
        ARB_texture_env_dot3 = 0x100000,
        EXT_separate_specular_color = 0x200000,
        EXT_texgen_reflection = 0x400000,
        ATIX_texture_env_combine3 = 0x800000,
        ATI_texture_mirror_once = 0x1000000,
        ATIX_texture_env_route = 0x2000000,
        ARB_texture_env_crossbar = 0x4000000,
        NV_texgen_reflection = 0x8000000
    };

    // The GL flag word and the two window-system words (never given a bit here).
    static uint32_t flags;
    static uint32_t flagsWGL;
    static uint32_t flagsGLX;

    static bool isSupported(uint32_t bit) { return (flags & bit) != 0; }

    // Looks the name up in the current context's extension string.
    static bool hasExtension(const char* name);
    // The same test against any extension string, so it can be checked without a driver.
    static bool findExtension(const char* extensions, const char* name);

    static void bindAll();
    static bool bindMultiTexture();
    static bool bindTextureCompression();
    static bool bindTransposeMatrix();
    static bool bindVertexBlend();
    static bool bindEnvmapBumpmapATI();
    static bool bindPnTrianglesATI();
    static bool bindVertexStreamsATI();
    static bool bindCompiledVertexArrays();
    static bool bindDrawRangeElements();
    static bool bindFogCoord();
    static bool bindPointParameters();
    static bool bindSecondaryColor();
    static bool bindTextureObjects();
    static bool bindBufferRegionKTX();
    static bool bindVertexArray();
    static bool bindTexture3D();

    // The other windowing platform's half; nothing of it applies under GLX.
    static void bindAllGLX();
    static void bindAllWGL(void* context);
    static bool hasExtensionWGL(const char* name, void* context);
    static bool bindExtensionsStringARBWGL();
    static bool bindExtensionsStringEXTWGL();
    static bool bindSwapControlWGL();
    static bool bindPixelFormatWGL();
    static bool bindMakeCurrentReadWGL();
    static bool bindPBufferWGL();
    static bool bindRenderTextureWGL();

private:
    static bool bindOne(const char* name, uint32_t bit);
};
