// The blow-up: the city's night goes on under a rising camera while the drum fill gathers light at ground zero; on
// the crash a white flash, the blast, the power failing as the shock passes, and the smoke thinning to the quiet.
#include "effects/BlowUp.h"

#include "effects/CityCamera.h"
#include "effects/Dice.h"
#include "effects/OwnLights.h"
#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"

#include "gl/GLF_checkError.h"
#include "gl/OrthoView.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Light.h"
#include "scene/LightMgr.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

using namespace BlowUpLayout;

const char* const SCENE = "BlowUp";
const char* const SKY_LIGHT = "BlowUpSky";
const char* const FIRE_LIGHT = "BlowUpFire";
const float NEAR_CLIP = 0.5f;
const float FAR_CLIP = 440.0f;
const float FIELD_OF_VIEW = 50.0f;
const float FOG_START = 240.0f;
const float FOG_END = 430.0f;
// The light gathers from here to the crash, in a pillar this tall.
const float CHARGE_FROM = 1.5f;
const float PILLAR = 220.0f;
const uint32_t FLICKER_SEED = 0xb10fu;
const float FLASH_HOLD = 0.1f;

const Vector3 ZERO(static_cast<float>(ZERO_X), 0.0f, static_cast<float>(ZERO_Z));
// Without its path the camera looks at ground zero from above the city's edge.
const Vector3 REST_EYE(-40.0f, 260.0f, ZERO.z + 8.0f);
const Vector3 REST_TARGET = ZERO + Vector3(0.0f, 15.0f, 0.0f);
const CityCamera::Setup CAMERA = {CAMERA_NAME, CAMERA_PATH, REST_EYE, REST_TARGET, NEAR_CLIP, FAR_CLIP, FIELD_OF_VIEW};
const Color FIRE_LIT(1.0f, 0.6f, 0.4f, 1.0f);
const Color EMBERS(0.07f, 0.04f, 0.035f, 1.0f);

const SceneKit::LightSetup SKY = {Vector3(0.3f, 1.0f, 0.5f), Color(0.03f, 0.03f, 0.04f, 1.0f),
                                  Color(0.08f, 0.09f, 0.15f, 1.0f), Color(0.2f, 0.25f, 0.35f, 1.0f)};
const SceneKit::LightSetup FIRE_GLOW = {Vector3(0.0f, 0.3f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f),
                                        Color(1.0f, 0.5f, 0.2f, 1.0f), Color(1.0f, 0.7f, 0.4f, 1.0f)};

float smoothstep(float a, float b, float x)
{
    const float t = std::min(1.0f, std::max(0.0f, (x - a) / (b - a)));
    return t * t * (3.0f - 2.0f * t);
}

}  // namespace

BlowUp::BlowUp(short layer, const EffectTimer& timer)
    : Effect(layer, timer), kaboom(ZERO), cityCamera(CAMERA), rehearsed(false)
{
}

BlowUp::~BlowUp() = default;

bool BlowUp::preload()
{
    const bool loaded =
        block.loadNext(SCENE) || street.loadNext(SCENE) || kaboom.loadNext(SCENE) || cityCamera.loadNext(SCENE);
    if (loaded)
        return true;
    if (rehearsed)
        return false;
    rehearse();
    return false;
}

Color BlowUp::cityTint(float t)
{
    if (t < CHARGE_FROM)
        return Color(1.0f, 1.0f, 1.0f, 1.0f);
    if (t < CRASH) {
        // Brownouts on the fill's sixteenths, more of them as the crash nears.
        const int sixteenth = static_cast<int>(t * 8.0f);
        const bool dim = Dice::unit(sixteenth, 0, FLICKER_SEED) < 0.2 + 0.5 * (t - CHARGE_FROM) / (CRASH - CHARGE_FROM);
        const float k = dim ? 0.55f : 1.0f;
        return Color(k, k, k, 1.0f);
    }
    // After the crash only the fire lights the city, and it dies down.
    const float out = smoothstep(0.2f, 6.0f, t - static_cast<float>(CRASH));
    return Color(FIRE_LIT.r + (EMBERS.r - FIRE_LIT.r) * out, FIRE_LIT.g + (EMBERS.g - FIRE_LIT.g) * out,
                 FIRE_LIT.b + (EMBERS.b - FIRE_LIT.b) * out, 1.0f);
}

float BlowUp::flash(float t)
{
    // Full white for a moment on the crash, then fading.
    const float since = t - static_cast<float>(CRASH);
    if (since < 0.0f)
        return 0.0f;
    return since < FLASH_HOLD ? 1.0f : std::exp(-(since - FLASH_HOLD) / 0.35f);
}

float BlowUp::nightLight(float t)
{
    // The glow over the city goes with its power, leaving the dark the swirl begins in.
    return 1.0f - 0.85f * smoothstep(static_cast<float>(CRASH) + 1.0f, static_cast<float>(SECONDS) - 1.0f, t);
}

float BlowUp::charge(float t)
{
    const float c = smoothstep(CHARGE_FROM, static_cast<float>(CRASH), t);
    return t < CRASH ? c * c : 0.0f;
}

Vector3 BlowUp::shake(float t, float distance)
{
    const float since = t - static_cast<float>(CRASH);
    if (since < 0.0f)
        return Vector3();
    // A jolt at the crash, then the shock itself when it reaches the camera.
    float amount = 0.3f * std::exp(-since * 6.0f);
    if (distance < Kaboom::SHOCK_REACH) {
        const float hit = -Kaboom::SHOCK_SLOWING * std::log(1.0f - distance / Kaboom::SHOCK_REACH);
        if (since >= hit)
            amount += 1.4f * std::exp(-(since - hit) * 2.5f);
    }
    return Vector3(std::sin(t * 37.1f), 0.8f * std::sin(t * 43.7f + 1.0f), std::sin(t * 31.3f + 2.0f)) * amount;
}

void BlowUp::initiate()
{
    CityBlock::setupNight(FOG_START, FOG_END);
    block.load(SCENE);
    street.load(SCENE);
    kaboom.load(SCENE);
    if (!rehearsed)
        rehearse();
    cityCamera.start(SCENE);
    SceneKit::directionalLight(SKY_LIGHT, SKY);
    SceneKit::directionalLight(FIRE_LIGHT, FIRE_GLOW)->turnOff();
    street.update(CITY_SECONDS, Vector3());
}

void BlowUp::rehearse()
{
    // The blast brings several new ways of drawing at once: met before the scene starts, or as it starts when it
    // was started without its preload steps, they do not stall the crash.
    rehearsed = true;
    street.update(CITY_SECONDS, Vector3());
    cityCamera.rehearse(FOG_START, FOG_END, {{SKY_LIGHT, SKY}, {FIRE_LIGHT, FIRE_GLOW}}, [this](const Camera& camera) {
        // The light gathering before the crash, and the blast after it.
        draw(camera, static_cast<float>(CRASH) - 1.0f);
        draw(camera, static_cast<float>(CRASH) + 1.0f);
    });
}

void BlowUp::update(float seconds)
{
    updateTimer(seconds);
    const float t = getTime();
    Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    CameraAnimation* path = cityCamera.getPath();
    if (path)
        path->update(seconds);
    else if (camera)
        camera->lookAt(REST_EYE, REST_TARGET);
    if (camera) {
        const Vector3 offset = shake(t, (camera->getPosition() - ZERO).length());
        camera->setPosition(camera->getPosition() + offset);
        camera->setDirection(camera->getTarget() + offset * 0.5f);
    }
    street.update(CITY_SECONDS + t, cityCamera.travel(OneWayStreet::TRAIL_SECONDS));
    const float since = t - static_cast<float>(CRASH);
    street.setDarkness(ZERO, since < 0.0f ? -1.0f : Kaboom::shockRadius(since));
    // The fire lights the flying pieces from ground zero's side.
    Light* fire = LightMgr::getHandle()->find(FIRE_LIGHT);
    if (fire && camera && since >= 0.0f) {
        const float k = std::exp(-since / 3.0f);
        fire->setPosition(ZERO + Vector3(0.0f, 30.0f, 0.0f) - camera->getPosition());
        fire->setDiffuse(Color(FIRE_GLOW.diffuse.r * k, FIRE_GLOW.diffuse.g * k, FIRE_GLOW.diffuse.b * k, 1.0f));
        fire->uploadStates();
        fire->turnOn();
    }
}

void BlowUp::drawCharge(const Camera& camera, float t)
{
    const float c = charge(t);
    TextureMaterial* glow = street.getGlow();
    if (!glow || c <= 0.0f)
        return;
    // A light swelling at the crossing and a pillar of it rising, throbbing with the fill.
    const float beat = static_cast<int>(t * 8.0f) % 2 ? 0.75f : 1.0f;
    const Vector3 right = camera.getU();
    const Vector3 up = camera.getV();
    const Vector3 heart = ZERO + Vector3(0.0f, 6.0f, 0.0f);
    const float size = 6.0f + 50.0f * c;
    LightMgr::getHandle()->turnLightingOff();
    glDisable(GL_FOG);
    glDisable(GL_CULL_FACE);
    glow->bind();
    glBegin(GL_QUADS);
    glColor4f(1.0f * c * beat, 0.82f * c * beat, 0.55f * c * beat, 1.0f);
    const Vector3 corners[4] = {heart - right * size - up * size, heart + right * size - up * size,
                                heart + right * size + up * size, heart - right * size + up * size};
    static const float us[4] = {0.0f, 1.0f, 1.0f, 0.0f};
    static const float vs[4] = {1.0f, 1.0f, 0.0f, 0.0f};
    for (int k = 0; k < 4; ++k) {
        glTexCoord2f(us[k], vs[k]);
        glVertex3f(corners[k].x, corners[k].y, corners[k].z);
    }
    // The pillar faces the eye about its upright axis; the picture's middle band runs up it.
    Vector3 side = Vector3(0.0f, 1.0f, 0.0f).cross(camera.getPosition() - ZERO);
    side = side * ((1.5f + 6.0f * c) / std::max(side.length(), 1e-3f));
    const Vector3 top = ZERO + Vector3(0.0f, PILLAR, 0.0f);
    glColor4f(0.9f * c * c, 0.8f * c * c, 0.6f * c * c, 1.0f);
    glTexCoord2f(0.0f, 0.5f);
    glVertex3f(ZERO.x - side.x, ZERO.y, ZERO.z - side.z);
    glTexCoord2f(1.0f, 0.5f);
    glVertex3f(ZERO.x + side.x, ZERO.y, ZERO.z + side.z);
    glTexCoord2f(1.0f, 0.5f);
    glVertex3f(top.x + side.x, top.y, top.z + side.z);
    glTexCoord2f(0.0f, 0.5f);
    glVertex3f(top.x - side.x, top.y, top.z - side.z);
    glEnd();
    glow->unbind();
    glEnable(GL_CULL_FACE);
    glEnable(GL_FOG);
    LightMgr::getHandle()->turnLightingOn();
}

void BlowUp::drawFlash(float white)
{
    if (white < 0.01f)
        return;
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_FOG);
    glDisable(GL_TEXTURE_2D);
    LightMgr::getHandle()->turnLightingOff();
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    OrthoView::push(1.0, 1.0);
    glColor4f(white, white * 0.96f, white * 0.9f, 1.0f);
    glRectf(0.0f, 0.0f, 1.0f, 1.0f);
    OrthoView::pop();
    glDisable(GL_BLEND);
    LightMgr::getHandle()->turnLightingOn();
    glEnable(GL_FOG);
    glEnable(GL_DEPTH_TEST);
}

void BlowUp::display()
{
    const Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera)
        draw(*camera, getTime());
}

void BlowUp::draw(const Camera& camera, float t)
{
    const float night = nightLight(t);
    CityBlock::setNightLight(night);
    block.draw(camera, cityTint(t));
    CityBlock::drawSurroundings(camera, night);
    static const char* const ours[] = {SKY_LIGHT, FIRE_LIGHT, nullptr};
    {
        const OwnLights only(ours);
        street.drawCars(camera);
        kaboom.drawPieces(camera, t - static_cast<float>(CRASH));
    }
    street.drawLights(camera);
    drawCharge(camera, t);
    kaboom.draw(camera, t - static_cast<float>(CRASH));
    drawFlash(flash(t));
    GLF_checkError("BlowUp:display()");
}

void BlowUp::shutdown()
{
    block.release();
    street.release();
    kaboom.release();
    rehearsed = false;
    cityCamera.release();
    // The last scene in the city, and the last to draw the glow: their pictures go with it.
    CityBlock::releasePictures();
    OneWayStreet::releasePictures();
    SceneKit::releaseTextures({FIRE, SMOKE, SHOCK, SharedLayout::PARTICLE});
    CityBlock::endNight();
    LightMgr::getHandle()->remove(SKY_LIGHT);
    LightMgr::getHandle()->remove(FIRE_LIGHT);
}
