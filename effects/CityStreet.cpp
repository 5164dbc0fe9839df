// The city street: the block and its street life under a night sky, seen from the camera racing along the route.
#include "effects/CityStreet.h"

#include "effects/SceneKit.h"

#include "gl/GLF_checkError.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Track.h"

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
const float FOG_START = 30.0f;
const float FOG_END = 235.0f;
const float SKY_RADIUS = 200.0f;

// Cool light from the sky above, and the warm light of the street lamps, for the cars.
const SceneKit::LightSetup MOON = {Vector3(0.3f, 1.0f, 0.5f),
                                   Color(0.05f, 0.05f, 0.07f, 1.0f),
                                   Color(0.12f, 0.14f, 0.24f, 1.0f),
                                   Color(0.5f, 0.6f, 0.85f, 1.0f),
                                   {1.0f, 0.0f, 0.0f}};
const SceneKit::LightSetup STREET = {Vector3(-0.4f, 1.0f, -0.2f),
                                     Color(0.04f, 0.03f, 0.025f, 1.0f),
                                     Color(0.34f, 0.22f, 0.12f, 1.0f),
                                     Color(0.9f, 0.65f, 0.4f, 1.0f),
                                     {1.0f, 0.0f, 0.0f}};

Color blend(const Color& a, const Color& b, float t)
{
    return Color(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0f);
}

}  // namespace

const Color CityStreet::ZENITH(0.008f, 0.01f, 0.035f, 1.0f);
const Color CityStreet::HORIZON(0.15f, 0.075f, 0.14f, 1.0f);

CityStreet::CityStreet(short layer, const EffectTimer& timer) : Effect(layer, timer), lap(0.0), cameraAnimation(nullptr)
{
}

CityStreet::~CityStreet()
{
    delete cameraAnimation;
}

void CityStreet::initiate()
{
    setupFog();
    block.load(SCENE);
    street.load(SCENE);
    loadCamera();
    SceneKit::directionalLight(MOON_LIGHT, MOON);
    SceneKit::directionalLight(STREET_LIGHT, STREET);
    lap = 0.0;
    street.update(lap, Vector3());
}

void CityStreet::setupFog()
{
    // The far streets sink into the city's own glow, the colour of the sky at the horizon.
    const float fog[4] = {HORIZON.r, HORIZON.g, HORIZON.b, 1.0f};
    glClearColor(ZENITH.r, ZENITH.g, ZENITH.b, 1.0f);
    glFogfv(GL_FOG_COLOR, fog);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, FOG_START);
    glFogf(GL_FOG_END, FOG_END);
    glHint(GL_FOG_HINT, GL_NICEST);
    glEnable(GL_FOG);
}

void CityStreet::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        cameras->add(camera);
    }
    Camera* camera = cameras->find(CAMERA_NAME);
    // Without its path the camera stands at the start of the route, looking down the first street.
    camera->lookAt(Vector3(0.0f, static_cast<float>(CAMERA_HEIGHT), static_cast<float>(2 * PITCH)),
                   Vector3(40.0f, static_cast<float>(CAMERA_HEIGHT), static_cast<float>(2 * PITCH)));
    camera->setClipPlanes(NEAR_CLIP, FAR_CLIP);
    camera->setFOV(FIELD_OF_VIEW);
    cameras->setActiveCamera(CAMERA_NAME);

    delete cameraAnimation;
    cameraAnimation = SceneKit::loadOrReport<CameraAnimation>(SCENE, CAMERA_PATH);
    if (!cameraAnimation)
        return;
    cameraAnimation->setup();
    cameraAnimation->setCamera(CAMERA_NAME);
    cameraAnimation->update(0.0f);
}

Vector3 CityStreet::cameraAgo(float seconds) const
{
    const Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    const Lin3Track* path = cameraAnimation ? cameraAnimation->getPositionTrack() : nullptr;
    if (!path)
        return camera ? camera->getPosition() : Vector3();
    const float frame = cameraAnimation->getCurrentFrame() - seconds * cameraAnimation->getFramesPerSec();
    return path->evaluate(frame < 0.0f ? 0.0f : frame);
}

void CityStreet::update(float seconds)
{
    updateTimer(seconds);
    lap += seconds;
    // Run on for longer than the route (a timeline made for testing), the race starts over.
    const bool over = lap >= SECONDS;
    if (over)
        lap = std::fmod(lap, SECONDS);
    if (cameraAnimation && over) {
        cameraAnimation->setFrame(0);
        cameraAnimation->update(static_cast<float>(lap));
    } else if (cameraAnimation) {
        cameraAnimation->update(seconds);
    }
    const Vector3 now = cameraAgo(0.0f);
    street.update(lap, now - cameraAgo(OneWayStreet::TRAIL_SECONDS));
}

void CityStreet::drawSky(const Camera& camera)
{
    // A dome round the eye, drawn behind everything: the city's glow low down, deep night above.
    // Only the band near the horizon: above it the clear colour is the sky.
    static const float ELEVATIONS[] = {-0.5f, 0.0f, 0.1f, 0.25f, 0.5f};
    static const float SHADES[] = {0.0f, 0.0f, 0.4f, 0.8f, 1.0f};
    const int bands = sizeof(ELEVATIONS) / sizeof(ELEVATIONS[0]) - 1;
    const int segments = 24;
    const Vector3 eye = camera.getPosition();
    glDisable(GL_FOG);
    glDisable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    LightMgr::getHandle()->turnLightingOff();
    for (int b = 0; b < bands; ++b) {
        glBegin(GL_TRIANGLE_STRIP);
        for (int s = 0; s <= segments; ++s) {
            const float a = 6.2831855f * static_cast<float>(s) / segments;
            for (int edge = 1; edge >= 0; --edge) {
                const float e = ELEVATIONS[b + edge];
                const Color c = blend(HORIZON, ZENITH, SHADES[b + edge]);
                glColor4f(c.r, c.g, c.b, 1.0f);
                glVertex3f(eye.x + SKY_RADIUS * std::cos(e) * std::cos(a), eye.y + SKY_RADIUS * std::sin(e),
                           eye.z + SKY_RADIUS * std::cos(e) * std::sin(a));
            }
        }
        glEnd();
    }
    LightMgr::getHandle()->turnLightingOn();
    glEnable(GL_CULL_FACE);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_FOG);
}

void CityStreet::display()
{
    const Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (!camera)
        return;
    drawSky(*camera);
    block.draw(*camera, Color(1.0f, 1.0f, 1.0f, 1.0f));
    street.drawCars(*camera);
    street.drawLights(*camera);
    GLF_checkError("CityStreet:display()");
}

void CityStreet::shutdown()
{
    block.release();
    street.release();
    delete cameraAnimation;
    cameraAnimation = nullptr;
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    LightMgr::getHandle()->remove(MOON_LIGHT);
    LightMgr::getHandle()->remove(STREET_LIGHT);
}
