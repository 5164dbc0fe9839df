// PNG loader over libpng: palette, grey, tRNS and 16-bit images arrive as 8-bit RGB or RGBA.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderPNG : public TextureLoader {
public:
    TextureLoaderPNG();

    Texture* loadTexture(const char* name, int format) override;
    // Decodes into the texture's own buffer with its own format; the size must match.
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
