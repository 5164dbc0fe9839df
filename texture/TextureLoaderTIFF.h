// TIFF loader over libtiff; the RGBA raster is taken bottom row first, as libtiff delivers it.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderTIFF : public TextureLoader {
public:
    TextureLoaderTIFF();

    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
