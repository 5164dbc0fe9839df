// A textured material whose second texture is combined on the second texture unit.
#pragma once

#include "texture/TextureMaterial.h"

// 0 additive, 1 subtractive, 2 multiply.
typedef int TexBlendMode;

class MulTextureMaterial : public TextureMaterial {
public:
    MulTextureMaterial();
    explicit MulTextureMaterial(const char* name);
    ~MulTextureMaterial() override;

    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;
    void bind() override;
    void unbind() override;
    void setDefaults() override;

    void setTexture2(Texture* t) { texture2 = t; }
    Texture* getTexture2() const { return texture2; }
    void setTexBlendMode(TexBlendMode mode) { texBlendMode = mode; }
    TexBlendMode getTexBlendMode() const { return texBlendMode; }

    void setupTexBlend();
    void resetTexBlend();

private:
    TexBlendMode texBlendMode;
    Texture* texture2;
};
