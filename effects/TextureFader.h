// A fader that lays a texture tinted with its colour over the screen instead of a flat colour.
#pragma once

#include "effects/Fader.h"

class Texture;

class TextureFader : public Fader {
public:
    TextureFader(const char* textureName, const Color& colour, short layer, const EffectTimer& timer);
    ~TextureFader() override;

    // Only fetches the texture: the rate stays 0, so the picture stays fully transparent.
    void initiate() override;
    void shutdown() override;
    void display() override;

    const char* getTextureName() const { return textureName; }

private:
    TextureFader(const TextureFader&) = delete;
    TextureFader& operator=(const TextureFader&) = delete;

    char* textureName;
    // Null until the texture cache hands one out; the flat colour is drawn meanwhile.
    Texture* texture;
};
