// PCX loader: 8-bit palette images, RLE coded, palette in the file's last 768 bytes.
#pragma once

#include "texture/TextureLoader.h"

class TextureLoaderPCX : public TextureLoader {
public:
    TextureLoaderPCX();

    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;
};
