// A fader that lays a texture tinted with its colour over the screen instead of a flat colour.
#pragma once

#include "effects/Fader.h"

class Texture;

class TextureFader : public Fader {
public:
    TextureFader(const char* textureName, const Color& colour, short layer, const EffectTimer& timer);
    ~TextureFader() override;

    // Only fetches the texture from the cache: the rate stays 0, so the picture stays
    // fully transparent.
    void initiate() override;
    // Takes the texture out of the cache and frees the name.
    void shutdown() override;

    const char* getTextureName() const { return textureName; }
    const Texture* getTexture() const { return texture; }

protected:
    void drawCover() override;

private:
    TextureFader(const TextureFader&) = delete;
    TextureFader& operator=(const TextureFader&) = delete;

    char* textureName;
    // Null until initiate, and when the cache had none to give.
    Texture* texture;
};
