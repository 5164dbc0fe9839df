// The OpenGL state a face is drawn with: colours, shininess, blending and alpha test, depth writes.
#pragma once

#include "math/Color.h"
#include "scene/object/NamedObject.h"

#include <cstdint>

// 0 to 11; see Material::bind.
typedef int BlendMode;

class Material : public NamedObject {
public:
    // Flag bits.
    static constexpr unsigned long sphereMap = 0x40;
    static constexpr unsigned long eyeLinear = 0x100;
    static constexpr unsigned long objectLinear = 0x400;
    static constexpr unsigned long sphereMap2 = 0x80;
    static constexpr unsigned long eyeLinear2 = 0x200;
    static constexpr unsigned long objectLinear2 = 0x800;
    static constexpr unsigned long noDepthWrite = 0x20000000;
    // The rest of the word: the two low bits and the constructor's high bit. bind() compares the
    // whole word with 1 and 2 to pick the faces, so any of these makes both sides lit.
    static constexpr unsigned long bothFaces = 0x3;
    static constexpr unsigned long highDefault = 0x10000000;
    // Carried by the scenes' own materials; nothing reads it.
    static constexpr unsigned long sceneBit = 0x10;
    static constexpr unsigned long defaultFlags = highDefault | bothFaces;

    // The words the scenes make their materials with.
    static constexpr unsigned long textured = defaultFlags | sceneBit;             // opaque, both sides
    static constexpr unsigned long overlay = noDepthWrite | bothFaces | sceneBit;  // blended, writes no depth
    static constexpr unsigned long reflective = defaultFlags | sphereMap;          // sphere-mapped texture

    // Blend modes, one per row of the table in bind(): an alpha test, a blend function, or both.
    enum : int {
        blendNone = 0,
        blendAlphaTest = 1,
        blendAlpha = 2,
        blendAlphaTested = 3,
        blendInvert = 4,
        blendInvertTested = 5,
        blendGlow = 6,
        blendGlowTested = 7,
        blendModulate = 8,
        blendModulateTested = 9,
        blendAdd = 10,
        blendAddTested = 11
    };

    Material();
    explicit Material(const char* name);
    ~Material() override;

    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;
    virtual void bind();
    virtual void unbind();
    virtual void setDefaults();

    void setAmbient(const Color& c) { ambient = c; }
    void setDiffuse(const Color& c) { diffuse = c; }
    void setSpecular(const Color& c) { specular = c; }
    void setEmission(const Color& c) { emission = c; }
    void setShininess(float s) { shininess = s; }
    void setBlendMode(BlendMode mode) { blendMode = mode; }
    void setFlags(unsigned long f) { flags = static_cast<uint32_t>(f); }

    const Color& getAmbient() const { return ambient; }
    const Color& getDiffuse() const { return diffuse; }
    const Color& getSpecular() const { return specular; }
    const Color& getEmission() const { return emission; }
    float getShininess() const { return shininess; }
    BlendMode getBlendMode() const { return blendMode; }
    unsigned long getFlags() const { return flags; }

protected:
    void applyBlendMode() const;
    void undoBlendMode() const;

    uint32_t flags;
    BlendMode blendMode;
    Color ambient;
    Color diffuse;
    Color specular;
    Color emission;
    float shininess;
};
