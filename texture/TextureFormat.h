// The pixel format codes every texture interface takes, and a picture file named with the code it is loaded in.
#pragma once

enum TextureFormat : int {
    TEXTURE_RED = 1,
    TEXTURE_GREEN = 2,
    TEXTURE_BLUE = 3,
    TEXTURE_ALPHA = 4,
    TEXTURE_LUMINANCE = 5,
    TEXTURE_LUMINANCE_ALPHA = 6,
    TEXTURE_RGB = 7,
    TEXTURE_RGBA = 8
};

// A picture a scene loads, and the format it asks the loader for: the forge paints the file
// with an alpha channel exactly when the format has one, so both sides read the same pixels.
struct TextureFile {
    const char* file;
    int format;

    constexpr bool hasAlpha() const
    {
        return format == TEXTURE_ALPHA || format == TEXTURE_LUMINANCE_ALPHA || format == TEXTURE_RGBA;
    }
};
