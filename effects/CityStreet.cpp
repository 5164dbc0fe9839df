// The city street: the block and its street life under a night sky, seen from the camera racing along the route.
#include "effects/CityStreet.h"

#include "effects/CityCamera.h"
#include "effects/OwnLights.h"
#include "effects/SceneKit.h"

#include "gl/GLF_checkError.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"

#include <GL/gl.h>
#include <cmath>

namespace {

using namespace CityLayout;

const char* const SCENE = "CityStreet";
const char* const MOON_LIGHT = "CityMoon";
const char* const STREET_LIGHT = "CityStreetGlow";
const float NEAR_CLIP = 0.3f;
const float FAR_CLIP = 260.0f;
const float FIELD_OF_VIEW = 64.0f;
// Without its path the camera stands at the start of the route, looking down the first street.
const CityCamera::Setup CAMERA = {CAMERA_NAME,
                                  CAMERA_PATH,
                                  Vector3(0.0f, static_cast<float>(CAMERA_HEIGHT), static_cast<float>(2 * PITCH)),
                                  Vector3(40.0f, static_cast<float>(CAMERA_HEIGHT), static_cast<float>(2 * PITCH)),
                                  NEAR_CLIP,
                                  FAR_CLIP,
                                  FIELD_OF_VIEW};
const float FOG_START = 30.0f;
const float FOG_END = 235.0f;

// Cool light from the sky above, and the warm light of the street lamps, for the cars.
const SceneKit::LightSetup MOON = {Vector3(0.3f, 1.0f, 0.5f), Color(0.05f, 0.05f, 0.07f, 1.0f),
                                   Color(0.12f, 0.14f, 0.24f, 1.0f), Color(0.5f, 0.6f, 0.85f, 1.0f)};
const SceneKit::LightSetup STREET = {Vector3(-0.4f, 1.0f, -0.2f), Color(0.04f, 0.03f, 0.025f, 1.0f),
                                     Color(0.34f, 0.22f, 0.12f, 1.0f), Color(0.9f, 0.65f, 0.4f, 1.0f)};

}  // namespace

CityStreet::CityStreet(short layer, const EffectTimer& timer)
    : Effect(layer, timer), lap(0.0), cityCamera(CAMERA), rehearsed(false)
{
}

CityStreet::~CityStreet() = default;

bool CityStreet::preload()
{
    const bool loaded = block.loadNext(SCENE) || street.loadNext(SCENE) || cityCamera.loadNext(SCENE);
    if (loaded)
        return true;
    if (!rehearsed)
        rehearse();
    return false;
}

void CityStreet::initiate()
{
    CityBlock::setupNight(FOG_START, FOG_END);
    block.load(SCENE);
    street.load(SCENE);
    cityCamera.start(SCENE);
    SceneKit::directionalLight(MOON_LIGHT, MOON);
    SceneKit::directionalLight(STREET_LIGHT, STREET);
    lap = 0.0;
    street.update(lap, Vector3());
}

void CityStreet::update(float seconds)
{
    updateTimer(seconds);
    lap += seconds;
    // Run on for longer than the route (a timeline made for testing), the race starts over.
    const bool over = lap >= SECONDS;
    if (over)
        lap = std::fmod(lap, SECONDS);
    CameraAnimation* path = cityCamera.getPath();
    if (path && over) {
        path->setFrame(0);
        path->update(static_cast<float>(lap));
    } else if (path) {
        path->update(seconds);
    }
    Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    if (camera && path) {
        const Vector3 jolt(0.0f, -bounce(lap), 0.0f);
        camera->setPosition(camera->getPosition() + jolt);
        camera->setDirection(camera->getTarget() + jolt);
    }
    street.update(lap, cityCamera.travel(OneWayStreet::TRAIL_SECONDS));
}

float CityStreet::bounce(double t)
{
    // A small dip on every kick, a deeper one on the crashes every four bars.
    const double beat = std::fmod(t, BEAT);
    const double crash = std::fmod(t, 4.0 * BAR);
    return static_cast<float>(0.06 * std::exp(-12.0 * beat) + 0.3 * std::exp(-5.0 * crash));
}

void CityStreet::rehearse()
{
    rehearsed = true;
    street.update(0.0, Vector3());
    cityCamera.rehearse(FOG_START, FOG_END, {{MOON_LIGHT, MOON}, {STREET_LIGHT, STREET}},
                        [this](const Camera& camera) { draw(camera); });
}

void CityStreet::display()
{
    const Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera)
        draw(*camera);
}

void CityStreet::draw(const Camera& camera)
{
    block.draw(camera, Color(1.0f, 1.0f, 1.0f, 1.0f));
    CityBlock::drawSurroundings(camera, 1.0f);
    {
        static const char* const ours[] = {MOON_LIGHT, STREET_LIGHT, nullptr};
        const OwnLights only(ours);
        street.drawCars(camera);
    }
    street.drawLights(camera);
    GLF_checkError("CityStreet:display()");
}

void CityStreet::shutdown()
{
    block.release();
    street.release();
    cityCamera.release();
    rehearsed = false;
    CityBlock::endNight();
    LightMgr::getHandle()->remove(MOON_LIGHT);
    LightMgr::getHandle()->remove(STREET_LIGHT);
}
