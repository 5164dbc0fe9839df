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
    static constexpr unsigned long defaultFlags = 0x10000003;

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
