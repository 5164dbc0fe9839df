// Planet: one sphere of arrays drawn twice (ground, then clouds a little above it) and a halo facing the viewer.
#include "effects/Planet.h"

#include "effects/CockpitLayout.h"
#include "effects/SceneKit.h"
#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <cmath>
#include <iostream>

namespace {

const float CLOUD_HEIGHT = 1.012f;
// The atmosphere's ring: inside this share of its card the picture is dark.
const float HALO_INNER = 0.68f;
const int HALO_SEGMENTS = 64;
const float HALO_COLOUR[4] = {0.34f, 0.56f, 0.92f, 1.0f};
const float GROUND_AMBIENT[4] = {0.025f, 0.03f, 0.045f, 1.0f};
const float GROUND_DIFFUSE[4] = {1.0f, 1.0f, 1.0f, 1.0f};
const float NO_SPECULAR[4] = {0.0f, 0.0f, 0.0f, 1.0f};

Texture* loadPicture(const char* scene, const TextureFile& picture)
{
    Texture* texture = SceneKit::preloadMipmapped(picture);
    if (!texture)
        std::cerr << SceneKit::missingMessage(scene, picture.file);
    return texture;
}

}  // namespace

Planet::Planet(short layer, const EffectTimer& timer, const char* sceneName)
    : Effect(layer, timer), scene(sceneName), centre(0.0f, 0.0f, -1.0f), radius(1.0f), turn(0.0f), cloudTurn(0.0f),
      surface(nullptr), clouds(nullptr), halo(nullptr)
{
}

Planet::~Planet() {}

void Planet::initiate()
{
    surface = loadPicture(scene, CockpitLayout::PLANET_SURFACE);
    clouds = loadPicture(scene, CockpitLayout::PLANET_CLOUDS);
    halo = loadPicture(scene, CockpitLayout::PLANET_HALO);
    makeSphere();
}

void Planet::shutdown()
{
    // The texture cache keeps the pictures.
    surface = clouds = halo = nullptr;
    points.clear();
    normals.clear();
    texCoords.clear();
    indices.clear();
    ring.clear();
}

void Planet::releasePictures()
{
    using namespace CockpitLayout;
    SceneKit::releaseTextures({PLANET_SURFACE, PLANET_CLOUDS, PLANET_HALO});
}

void Planet::makeSphere()
{
    points.clear();
    normals.clear();
    texCoords.clear();
    indices.clear();
    for (int stack = 0; stack <= STACKS; ++stack) {
        const float polar = MathConstants::PI * static_cast<float>(stack) / STACKS;
        for (int slice = 0; slice <= SLICES; ++slice) {
            // The seam column repeats with u = 1, so the picture wraps without a gap.
            const float azimuth = MathConstants::TWO_PI * static_cast<float>(slice) / SLICES;
            const float n[3] = {std::sin(polar) * std::cos(azimuth), std::cos(polar),
                                -std::sin(polar) * std::sin(azimuth)};
            for (float c : n) {
                points.push_back(c);
                normals.push_back(c);
            }
            texCoords.push_back(static_cast<float>(slice) / SLICES);
            texCoords.push_back(static_cast<float>(stack) / STACKS);
        }
    }
    ring.clear();
    for (int k = 0; k <= HALO_SEGMENTS; ++k) {
        const float a = MathConstants::TWO_PI * static_cast<float>(k) / HALO_SEGMENTS;
        ring.push_back(std::cos(a));
        ring.push_back(std::sin(a));
    }
    const int row = SLICES + 1;
    for (int stack = 0; stack < STACKS; ++stack) {
        for (int slice = 0; slice < SLICES; ++slice) {
            const unsigned short a = static_cast<unsigned short>(stack * row + slice);
            const unsigned short b = static_cast<unsigned short>(a + row);
            // Counter-clockwise seen from outside.
            for (unsigned short i : {a, b, static_cast<unsigned short>(a + 1), static_cast<unsigned short>(a + 1), b,
                                     static_cast<unsigned short>(b + 1)})
                indices.push_back(i);
        }
    }
}

void Planet::place(const Vector3& where, float size)
{
    centre = where;
    radius = size;
}

void Planet::update(float seconds)
{
    updateTimer(seconds);
    turn = std::fmod(turn + SPIN * seconds, 360.0f);
    cloudTurn = std::fmod(cloudTurn + CLOUD_SPIN * seconds, 360.0f);
}

void Planet::drawSphere(Texture* texture, float scale, float spin) const
{
    glPushMatrix();
    glTranslatef(centre.x, centre.y, centre.z);
    glRotatef(TILT, 0.0f, 0.0f, 1.0f);
    glRotatef(spin, 0.0f, 1.0f, 0.0f);
    glScalef(radius * scale, radius * scale, radius * scale);
    if (texture)
        texture->bind();
    glVertexPointer(3, GL_FLOAT, 0, points.data());
    glNormalPointer(GL_FLOAT, 0, normals.data());
    glTexCoordPointer(2, GL_FLOAT, 0, texCoords.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_SHORT, indices.data());
    if (texture)
        texture->unbind();
    glPopMatrix();
}

void Planet::drawHalo(const Camera& camera) const
{
    const Vector3 toEye = camera.getPosition() - centre;
    const float d = toEye.length();
    if (!halo || d <= radius * 1.001f)
        return;
    // A card just in front of the sphere, sized so its ring meets the edge the viewer sees.
    const float limb = (d - radius) * radius / std::sqrt(d * d - radius * radius);
    const float half = limb / HALO_EDGE;
    const Vector3 middle = centre + toEye * (radius / d);
    const Vector3 u = camera.getU() * half;
    const Vector3 v = camera.getV() * half;
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glColor4fv(HALO_COLOUR);
    halo->bind();
    // Only the ring where the picture has light: the dark middle would cost a pass over the
    // whole disc, which fills the view by the cockpit's end.
    glBegin(GL_TRIANGLE_STRIP);
    for (int k = 0; k <= HALO_SEGMENTS; ++k) {
        const float c = ring[static_cast<size_t>(2 * k)];
        const float s = ring[static_cast<size_t>(2 * k + 1)];
        for (const float r : {HALO_INNER, 1.0f}) {
            const Vector3 p = middle + u * (c * r) + v * (s * r);
            glTexCoord2f((c * r + 1.0f) * 0.5f, (s * r + 1.0f) * 0.5f);
            glVertex3f(p.x, p.y, p.z);
        }
    }
    glEnd();
    halo->unbind();
    glDisable(GL_BLEND);
}

void Planet::display()
{
    const Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (indices.empty() || !camera)
        return;
    // The air reaches a quarter of the radius beyond the ground.
    if (!camera->getFrustum().isSphereInside(centre, radius * 1.25f))
        return;
    glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    // The planet lies beyond everything else in its scenes: drawn after the solid things, it is
    // tested against them but writes no depth, which at its distance could not tell the clouds
    // from the ground anyway.
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    // Scaled normals must be made unit again for the light, and the material's colours hold only
    // while no colour stands in for them.
    glEnable(GL_NORMALIZE);
    glDisable(GL_COLOR_MATERIAL);
    glEnable(GL_CULL_FACE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, GROUND_AMBIENT);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, GROUND_DIFFUSE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, NO_SPECULAR);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, NO_SPECULAR);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    drawSphere(surface, 1.0f, turn);
    if (clouds) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        drawSphere(clouds, CLOUD_HEIGHT, cloudTurn);
        glDisable(GL_BLEND);
    }
    glPopClientAttrib();
    glDisable(GL_LIGHTING);
    drawHalo(*camera);
    glPopAttrib();
}
