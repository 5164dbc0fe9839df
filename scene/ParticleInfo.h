// Particle emitters: the shared start values and the six emission shapes, each with a fixed random draw order.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "scene/BoundingBox.h"
#include "scene/Particle.h"

#include <cstdint>

class Frustum;
class Material;

// The plane a flat emitter lies in; any value other than XY and XZ means YZ.
typedef uint32_t PCInfoPlane;
enum { PCINFO_PLANE_XY = 0, PCINFO_PLANE_XZ = 1, PCINFO_PLANE_YZ = 2 };

class ParticleInfo {
public:
    ParticleInfo(ParticleType type, float minLifetime, float maxLifetime, const Vector3& size, const Color& startColor,
                 const Color& endColor, const BoundingBox& region);
    virtual ~ParticleInfo();

    // Type, size, a random lifetime and the colours, then the shape's place and
    // direction, then the material: one emission.
    virtual void create(Particle& particle) = 0;
    // Whether the region's bounding sphere meets the frustum.
    virtual bool visible(const Frustum& frustum) const;

    // A draw of rand() scaled to [0, 1); every random value of an emission is one of these.
    static float random();
    // a + u (b - a) with one draw.
    static float uniform(float a, float b);
    // 2u - 1 with one draw.
    static float signedRandom();

    ParticleType type;
    float minLifetime;
    float maxLifetime;
    Vector3 size;
    Color startColor;
    Color endColor;
    Material* material;  // not owned; the scene sets it
    BoundingBox region;
    PCInfoPlane plane;
    float turns;

protected:
    // The shared first half of create().
    void begin(Particle& particle);
    void end(Particle& particle) const;
};

// From the region's centre into the upper half space.
class PCInfoPoint : public ParticleInfo {
public:
    using ParticleInfo::ParticleInfo;
    void create(Particle& particle) override;
};

// Anywhere on the region's lower face in the plane, moving along the plane's normal either way.
class PCInfoRect : public ParticleInfo {
public:
    PCInfoRect(ParticleType type, float minLifetime, float maxLifetime, const Vector3& size, const Color& startColor,
               const Color& endColor, const BoundingBox& region, PCInfoPlane plane);
    void create(Particle& particle) override;
};

// Anywhere in the region, moving away from the world origin.
class PCInfoCube : public ParticleInfo {
public:
    using ParticleInfo::ParticleInfo;
    void create(Particle& particle) override;
};

// A band around the centre in the plane, moving along the plane's normal either way.
class PCInfoCircle : public ParticleInfo {
public:
    PCInfoCircle(ParticleType type, float minLifetime, float maxLifetime, const Vector3& size, const Color& startColor,
                 const Color& endColor, const BoundingBox& region, PCInfoPlane plane);
    void create(Particle& particle) override;
};

// On a helix about the plane's normal, moving along that normal.
class PCInfoHelix : public ParticleInfo {
public:
    PCInfoHelix(ParticleType type, float minLifetime, float maxLifetime, const Vector3& size, const Color& startColor,
                const Color& endColor, const BoundingBox& region, PCInfoPlane plane, float turns);
    void create(Particle& particle) override;

    // The plane functions: the offset from the flattened centre for parameter t.
    Vector3 fXY(float t) const;
    Vector3 fXZ(float t) const;
    Vector3 fYZ(float t) const;
};

// On the region's sphere, moving along the signs of the way out.
class PCInfoSphere : public ParticleInfo {
public:
    using ParticleInfo::ParticleInfo;
    void create(Particle& particle) override;
};
