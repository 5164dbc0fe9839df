// JPEG loader over libjpeg; every pixel arrives as 8-bit R, G, B.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderJPG : public TextureLoader {
public:
    TextureLoaderJPG();

    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
