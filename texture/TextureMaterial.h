// A material with one texture (owned by the TextureMgr) and optional texture-coordinate generation.
#pragma once

#include "texture/Material.h"

class Texture;

class TextureMaterial : public Material {
public:
    TextureMaterial();
    explicit TextureMaterial(const char* name);
    ~TextureMaterial() override;

    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;
    void bind() override;
    void unbind() override;
    void setDefaults() override;

    void setTexture(Texture* t) { texture = t; }
    Texture* getTexture() const { return texture; }

protected:
    // Coordinate generation for the current unit by the first of the three flags that is set.
    static void enableTexGen(unsigned long flags, unsigned long sphere, unsigned long eye, unsigned long object);
    static void disableTexGen(unsigned long flags, unsigned long sphere, unsigned long eye, unsigned long object);
    // A texture reference in a chunk: 16-bit name length, the name, and the format code when named.
    static bool writeTextureRef(std::ostream& out, const Texture* t);
    static bool readTextureRef(std::istream& in, Texture*& t);

    Texture* texture;
};
