// One pooled particle: its shape, life, colours and motion, drawn as a camera-facing shape.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"

#include <cstdint>

class Material;
class Mesh;
class ParticleInfo;

// Values above MESH draw nothing.
typedef uint32_t ParticleType;
enum {
    PARTICLE_POINT = 0,
    PARTICLE_TRIANGLE = 1,
    PARTICLE_QUAD = 2,
    PARTICLE_SPHERE = 3,  // drawn as the quad
    PARTICLE_MESH = 4
};

class Particle {
public:
    // Dead, white, unit size, at the origin.
    Particle();

    void setType(ParticleType t) { type = t; }
    void setMesh(Mesh* m) { mesh = m; }
    void setFlags(uint16_t f) { flags = f; }
    void setInfo(ParticleInfo* i) { info = i; }
    void setMaterial(Material* m) { material = m; }
    void setPosition(const Vector3& p) { position = p; }
    void setDirection(const Vector3& d) { direction = d; }
    void setSize(const Vector3& s) { size = s; }
    // The start and current colour become start, the end colour end.
    void setColors(const Color& start, const Color& end);
    void setColor(const Color& c) { color = c; }
    // Age restarts at 0; a life of 0 or less never fades and is never drawn.
    void setLifetime(float t);

    void updateLifetime(float dt) { lifetime -= dt; }
    // Ages by dt and blends start to end by the age, without clamping.
    void updateColor(float dt);

    // In the billboard frame the cluster has set up; binds the material when it changes.
    void draw() const;
    // Unbinds the material the last draw left bound.
    static void endDraw();

    ParticleType getType() const { return type; }
    uint16_t getFlags() const { return flags; }
    float getLifetime() const { return lifetime; }
    float getInvLifetime() const { return invLifetime; }
    float getAge() const { return age; }
    ParticleInfo* getInfo() const { return info; }
    Material* getMaterial() const { return material; }
    Mesh* getMesh() const { return mesh; }
    const Color& getStartColor() const { return startColor; }
    const Color& getEndColor() const { return endColor; }
    const Color& getColor() const { return color; }
    const Vector3& getPosition() const { return position; }
    const Vector3& getDirection() const { return direction; }
    const Vector3& getSize() const { return size; }
    bool isAlive() const { return lifetime > 0.0f; }

    // The material bound by particle drawing most recently; null when none is.
    static Material* lastMaterial;

private:
    ParticleType type;
    uint16_t flags;
    float lifetime;
    ParticleInfo* info;
    Material* material;
    Mesh* mesh;
    float invLifetime;
    float age;
    Color startColor;
    Color endColor;
    Color color;
    Vector3 position;
    Vector3 direction;
    Vector3 size;
};
