// SpaceBackdrop: the domes carry the nebula's colour, the points the stars' sharpness, which a picture would blur.
#include "effects/SpaceBackdrop.h"

#include "effects/SceneKit.h"
#include "effects/SpaceCraftLayout.h"
#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/Hemisphere.h"
#include "scene/LightMgr.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// Beyond everything the scenes draw and within their cameras' reach.
const float DOME_RADIUS = 8000.0f;
const float STAR_RADIUS = 7800.0f;
const int DOME_SLICES = 24;
const int DOME_STACKS = 8;
// More stars crowd into the nebula's band, which runs along this great circle.
const float BAND[3] = {0.35f / 1.0066f, 0.85f / 1.0066f, 0.4f / 1.0066f};

// The stars' own numbers, apart from rand(), which the particle emitters draw from.
struct StarDice {
    uint32_t state;
    float next()
    {
        state = state * 1664525u + 1013904223u;
        return static_cast<float>(state >> 8) / 16777216.0f;
    }
};

}  // namespace

SpaceBackdrop::SpaceBackdrop(const char* sceneName) : scene(sceneName), dome(nullptr), upper(nullptr), lower(nullptr) {}

SpaceBackdrop::~SpaceBackdrop()
{
    delete dome;
}

void SpaceBackdrop::starAt(int i, float out[3], float& brightness)
{
    StarDice dice{0x51a2u + static_cast<uint32_t>(i) * 2654435761u};
    for (int k = 0; k < 3; ++k)
        dice.next();
    // Half the stars are pulled towards the band.
    float z = 2.0f * dice.next() - 1.0f;
    const float a = MathConstants::TWO_PI * dice.next();
    const float r = std::sqrt(std::max(0.0f, 1.0f - z * z));
    float p[3] = {r * std::cos(a), z, r * std::sin(a)};
    if (i % 2) {
        const float d = p[0] * BAND[0] + p[1] * BAND[1] + p[2] * BAND[2];
        const float keep = 0.25f * (2.0f * dice.next() - 1.0f);
        for (int k = 0; k < 3; ++k)
            p[k] -= BAND[k] * (d - keep);
        const float l = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
        for (float& c : p)
            c /= l > 0.0f ? l : 1.0f;
    }
    for (int k = 0; k < 3; ++k)
        out[k] = p[k];
    const float u = dice.next();
    brightness = 0.18f + 0.82f * u * u * u * u;
}

void SpaceBackdrop::makeStars()
{
    positions.assign(STAR_COUNT * 3, 0.0f);
    colours.assign(STAR_COUNT * 4, 0);
    // The brightest go last, so that one call draws the small and one the large.
    std::vector<int> order;
    std::vector<float> light(STAR_COUNT);
    std::vector<float> where(STAR_COUNT * 3);
    for (int i = 0; i < STAR_COUNT; ++i)
        starAt(i, &where[i * 3], light[i]);
    for (int i = 0; i < STAR_COUNT; ++i)
        order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return light[a] < light[b]; });
    for (int k = 0; k < STAR_COUNT; ++k) {
        const int i = order[k];
        for (int c = 0; c < 3; ++c)
            positions[k * 3 + c] = where[i * 3 + c] * STAR_RADIUS;
        // Hot blue-white to cool orange, most of them nearly white.
        const float warmth = std::fmod(static_cast<float>(i) * 0.618034f, 1.0f);
        const float b = light[i] * 255.0f;
        colours[k * 4 + 0] = static_cast<unsigned char>(b * (0.78f + 0.22f * warmth));
        colours[k * 4 + 1] = static_cast<unsigned char>(b * (0.84f + 0.08f * warmth));
        colours[k * 4 + 2] = static_cast<unsigned char>(b * (1.0f - 0.35f * warmth * warmth));
        colours[k * 4 + 3] = 255;
    }
}

void SpaceBackdrop::load()
{
    release();
    dome = new Hemisphere(DOME_RADIUS);
    for (const TextureFile* picture : {&SpaceCraftLayout::NEBULA_UP, &SpaceCraftLayout::NEBULA_DOWN}) {
        // The sky is always seen larger than its picture: no smaller levels are needed.
        Texture* texture = SceneKit::preloadOrReport(scene, *picture);
        (picture == &SpaceCraftLayout::NEBULA_UP ? upper : lower) = texture;
    }
    makeStars();
}

void SpaceBackdrop::release()
{
    delete dome;
    dome = nullptr;
    // The texture cache keeps the pictures.
    upper = lower = nullptr;
    positions.clear();
    colours.clear();
}

void SpaceBackdrop::releasePictures()
{
    SceneKit::releaseTextures({SpaceCraftLayout::NEBULA_UP, SpaceCraftLayout::NEBULA_DOWN});
}

void SpaceBackdrop::draw(const Camera& camera) const
{
    if (!dome)
        return;
    LightMgr* lights = LightMgr::getHandle();
    const bool lit = lights->isLightingOn();
    lights->turnLightingOff();
    glPushAttrib(GL_ENABLE_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT | GL_POINT_BIT);
    // Drawn after the solid things, only where they left the view open.
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    glDisable(GL_FOG);
    glPushMatrix();
    const Vector3& eye = camera.getPosition();
    glTranslatef(eye.x, eye.y, eye.z);
    for (Texture* texture : {upper, lower}) {
        if (texture) {
            texture->bind();
            dome->draw(DOME_SLICES, DOME_STACKS);
            texture->unbind();
        }
        // The lower dome is the upper one mirrored below the horizon.
        glScalef(1.0f, -1.0f, 1.0f);
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, positions.data());
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colours.data());
    glPointSize(1.0f);
    glDrawArrays(GL_POINTS, 0, STAR_COUNT - BRIGHT_STARS);
    glPointSize(2.0f);
    glDrawArrays(GL_POINTS, STAR_COUNT - BRIGHT_STARS, BRIGHT_STARS);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glPopMatrix();
    glPopAttrib();
    if (lit)
        lights->turnLightingOn();
}
