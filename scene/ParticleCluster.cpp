// ParticleCluster: emission schedule, update with the dead-visit counter, billboard drawing.
#include "scene/ParticleCluster.h"

#include "math/Matrix4.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/ParticleInfo.h"

#include <GL/gl.h>

ParticleCluster::ParticleCluster()
    : speed(1.0f), respawn(false), count(0), active(0), dead(0), particles(nullptr), info(nullptr)
{
}

ParticleCluster::ParticleCluster(const char* name, int count_, ParticleInfo* info_, bool respawn_) : ParticleCluster()
{
    createCluster(name, count_, info_, respawn_);
}

ParticleCluster::ParticleCluster(const ParticleCluster& other)
    : NamedObject(other), speed(1.0f), respawn(false), count(0), active(0), dead(0), particles(nullptr), info(nullptr)
{
}

ParticleCluster::~ParticleCluster()
{
    delete[] particles;
}

bool ParticleCluster::createCluster(const char* name, int count_, ParticleInfo* info_, bool respawn_)
{
    if (particles || !info_ || count_ < EMIT_PER_UPDATE)
        return false;
    particles = new Particle[count_];
    count = count_;
    active = EMIT_PER_UPDATE;
    dead = 0;
    info = info_;
    respawn = respawn_;
    if (name)
        setName(name);
    for (int i = 0; i < EMIT_PER_UPDATE; ++i)
        info->create(particles[i]);
    return true;
}

void ParticleCluster::update(float dt)
{
    if (dead == count)
        return;
    int old = active;
    active = old + EMIT_PER_UPDATE < count ? old + EMIT_PER_UPDATE : count;
    for (int i = old; i < active; ++i)
        info->create(particles[i]);

    for (int i = 0; i < active; ++i) {
        Particle& p = particles[i];
        if (p.getLifetime() > 0.0f) {
            p.setPosition(p.getPosition() + p.getDirection() * dt * speed);
            p.updateLifetime(dt);
            p.updateColor(dt);
        } else if (respawn) {
            info->create(p);
        } else {
            // Counted at every visit, not once per death: the cluster ends when
            // the visits add up to the pool size, which the scenes' timing expects.
            ++dead;
        }
    }
}

void ParticleCluster::reset()
{
    dead = 0;
    active = 0;
    for (int i = 0; i < count; ++i)
        particles[i].setLifetime(0.0f);
}

void ParticleCluster::draw()
{
    // The camera's inverse rotation, handed to GL as stored: its rows become
    // GL's columns, so the shapes' x and y follow the camera's U and V.
    float billboard[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera) {
        const Matrix4& inverse = camera->getInverse();
        for (int i = 0; i < 16; ++i)
            billboard[i] = inverse[i];
    }

    glEnable(GL_COLOR_MATERIAL);
    for (int i = 0; i < count; ++i) {
        const Particle& p = particles[i];
        if (p.getLifetime() <= 0.0f)
            continue;
        glPushMatrix();
        glTranslatef(p.getPosition().x, p.getPosition().y, p.getPosition().z);
        glMultMatrixf(billboard);
        p.draw();
        glPopMatrix();
    }
    Particle::endDraw();
    glDisable(GL_COLOR_MATERIAL);
}

bool ParticleCluster::visible(const Frustum& frustum)
{
    if (!info)
        return true;
    return info->visible(frustum);
}
