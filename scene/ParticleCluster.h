// A fixed pool of particles fed by one emitter: emission, straight-line motion, ageing, billboard drawing.
#pragma once

#include "scene/Particle.h"
#include "scene/object/NamedObject.h"

class Frustum;
class ParticleInfo;

class ParticleCluster : public NamedObject {
public:
    // Emissions per update call, whatever the elapsed time.
    enum { EMIT_PER_UPDATE = 3 };

    ParticleCluster();
    // The empty cluster, then createCluster (its answer is not reported).
    ParticleCluster(const char* name, int count, ParticleInfo* info, bool respawn);
    // Copies the name part only (which starts unnamed): the copy has no pool.
    ParticleCluster(const ParticleCluster& other);
    ParticleCluster& operator=(const ParticleCluster&) = delete;
    // Destroys the pool, not the info.
    ~ParticleCluster() override;

    // Makes the pool and emits its first three particles. False when a pool
    // exists, info is null, or the pool has fewer than three entries (the first
    // emissions assume three).
    bool createCluster(const char* name, int count, ParticleInfo* info, bool respawn);

    // Emits up to three more, moves and ages the live ones, re-emits or counts
    // the dead; nothing once the dead-visit counter has reached the pool size.
    virtual void update(float dt);
    // Back to just before the first emission: nothing live, nothing counted.
    virtual void reset();
    // The live particles facing the active camera.
    virtual void draw();
    // True without an info; otherwise the info's answer.
    virtual bool visible(const Frustum& frustum);

    void setSpeed(float s) { speed = s; }
    float getSpeed() const { return speed; }
    bool getRespawn() const { return respawn; }
    int getCount() const { return count; }
    int getActive() const { return active; }
    int getDead() const { return dead; }
    ParticleInfo* getInfo() const { return info; }
    Particle* getParticles() const { return particles; }
    Particle& getParticle(int i) const { return particles[i]; }

private:
    float speed;
    bool respawn;
    int count;
    int active;
    int dead;
    Particle* particles;
    ParticleInfo* info;  // not owned
};
