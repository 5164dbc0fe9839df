// Particle: life and colour over life, and drawing one shape with material runs.
#include "scene/Particle.h"

#include "scene/Mesh.h"
#include "texture/Material.h"

#include <GL/gl.h>

Material* Particle::lastMaterial = nullptr;

namespace {

// A flat card facing the viewer: texture corner and signed half-size per
// corner, top left first, counter-clockwise. A triangle takes the first three.
const float cardCorners[4][4] = {
    {0.0f, 0.0f, -1.0f, 1.0f},
    {0.0f, 1.0f, -1.0f, -1.0f},
    {1.0f, 1.0f, 1.0f, -1.0f},
    {1.0f, 0.0f, 1.0f, 1.0f},
};

void drawCard(GLenum mode, int corners, float sx, float sy)
{
    glBegin(mode);
    for (int i = 0; i < corners; ++i) {
        const float* c = cardCorners[i];
        glTexCoord2f(c[0], c[1]);
        glVertex3f(c[2] * sx, c[3] * sy, 0.0f);
    }
    glEnd();
}
}  // namespace

Particle::Particle()
    : type(PARTICLE_POINT), flags(0), lifetime(0.0f), info(nullptr), material(nullptr), mesh(nullptr),
      invLifetime(0.0f), age(0.0f), startColor(1.0f, 1.0f, 1.0f, 1.0f), endColor(1.0f, 1.0f, 1.0f, 1.0f),
      color(1.0f, 1.0f, 1.0f, 1.0f), position(), direction(), size(1.0f, 1.0f, 1.0f)
{
}

void Particle::setColors(const Color& start, const Color& end)
{
    startColor = start;
    color = start;
    endColor = end;
}

void Particle::setLifetime(float t)
{
    lifetime = t;
    age = 0.0f;
    invLifetime = t > 0.0f ? 1.0f / t : 0.0f;
}

void Particle::updateColor(float dt)
{
    age += invLifetime * dt;
    // Plain channel arithmetic: Color's constructor would clamp, and an age a
    // little past 1 in the last update of a life is allowed to show.
    color.r = startColor.r + (endColor.r - startColor.r) * age;
    color.g = startColor.g + (endColor.g - startColor.g) * age;
    color.b = startColor.b + (endColor.b - startColor.b) * age;
    color.a = startColor.a + (endColor.a - startColor.a) * age;
}

void Particle::draw() const
{
    if (material && material != lastMaterial) {
        if (lastMaterial)
            lastMaterial->unbind();
        material->bind();
        lastMaterial = material;
    }
    glColor4f(color.r, color.g, color.b, color.a);
    const float sx = size.x;
    const float sy = size.y;
    switch (type) {
        case PARTICLE_POINT:
            // The frame is already at the position: the point lands at twice the
            // offset, rotated. The plumes are tuned to it.
            glBegin(GL_POINTS);
            glVertex3f(position.x, position.y, position.z);
            glEnd();
            break;
        case PARTICLE_TRIANGLE:
            drawCard(GL_TRIANGLES, 3, sx, sy);
            break;
        case PARTICLE_QUAD:
        case PARTICLE_SPHERE:
            drawCard(GL_QUADS, 4, sx, sy);
            break;
        case PARTICLE_MESH:
            if (mesh)
                mesh->draw(7);
            break;
        default:
            break;
    }
}

void Particle::endDraw()
{
    if (!lastMaterial)
        return;
    lastMaterial->unbind();
    lastMaterial = nullptr;
}
