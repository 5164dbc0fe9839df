// SGI one-channel image loader, verbatim or RLE; the bytes serve every one-channel format code.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderBW : public TextureLoader {
public:
    TextureLoaderBW();

    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
