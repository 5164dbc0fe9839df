// Targa loader: checks the header and colour map and yields an empty image.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderTGA : public TextureLoader {
public:
    TextureLoaderTGA();

    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
