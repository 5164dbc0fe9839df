// The cockpit: the sky and the planet lit by the star alone, then the frame lit from inside, then the displays.
#include "effects/Cockpit.h"

#include "effects/OwnLights.h"
#include "effects/SceneKit.h"
#include "gl/GLF_checkError.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/FaceArray.h"
#include "scene/Light.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

using namespace CockpitLayout;

const char* const SCENE = "Cockpit";
const char* const SUN_LIGHT = "CockpitSun";
const char* const CABIN_LIGHTS[3] = {"CockpitPlanetLight", "CockpitDashGlow", "CockpitFill"};
const char* const OWN_LIGHTS[] = {SUN_LIGHT, CABIN_LIGHTS[0], CABIN_LIGHTS[1], CABIN_LIGHTS[2], nullptr};
const float NEAR_CLIP = 0.05f;
const float FAR_CLIP = 9000.0f;
const float FIELD_OF_VIEW = 62.0f;
// The approach speeds up towards the end: distance falls as a power of the time.
const float APPROACH_EASE = 1.6f;

const SceneKit::LightSetup SUN = {Vector3(-0.7f, 0.35f, 0.6f), Color(0.0f, 0.0f, 0.0f, 1.0f),
                                  Color(1.0f, 0.97f, 0.93f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f)};
// Blue light through the window, amber from the instruments below, a little grey from behind.
const SceneKit::LightSetup CABIN[3] = {
    {Vector3(0.0f, 0.2f, -1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f), Color(0.2f, 0.35f, 0.6f, 1.0f),
     Color(0.3f, 0.4f, 0.6f, 1.0f)},
    {Vector3(0.0f, -1.0f, -0.25f), Color(0.05f, 0.03f, 0.01f, 1.0f), Color(0.55f, 0.3f, 0.08f, 1.0f),
     Color(0.0f, 0.0f, 0.0f, 1.0f)},
    {Vector3(0.2f, 0.6f, 1.0f), Color(0.06f, 0.06f, 0.07f, 1.0f), Color(0.3f, 0.3f, 0.34f, 1.0f),
     Color(0.0f, 0.0f, 0.0f, 1.0f)},
};
const Color PLANET_LIGHT = CABIN[0].diffuse;

// Seen from arm's length at about their own size: no smaller levels are needed.
const TextureFile* const FRAME_PICTURES[FRAME_PART_COUNT] = {&PANELS, &PANELS, &INSTRUMENTS};

}  // namespace

Cockpit::Cockpit(short layer, const EffectTimer& timer)
    : Effect(layer, timer), frame(nullptr), twins(SCENE, FRAME_MATERIALS, FRAME_PICTURES, FRAME_PART_COUNT, false),
      backdrop(SCENE), planet(layer, timer, SCENE), harmonix(layer, timer), sun(nullptr), cabin()
{
}

Cockpit::~Cockpit()
{
    delete frame;
}

float Cockpit::planetDistance(float seconds)
{
    const float s = std::min(1.0f, std::max(0.0f, seconds / static_cast<float>(SECONDS)));
    return PLANET_START_DISTANCE * std::pow(PLANET_END_DISTANCE / PLANET_START_DISTANCE, std::pow(s, APPROACH_EASE));
}

Vector3 Cockpit::eyeAt(float seconds)
{
    return Vector3(0.012f * std::sin(seconds * 0.5f), 0.008f * std::sin(seconds * 0.37f + 1.0f),
                   0.006f * std::sin(seconds * 0.23f));
}

void Cockpit::initiate()
{
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    backdrop.load();
    planet.initiate();
    harmonix.initiate();
    loadFrame();
    loadCamera();
    loadLights();
    update(0.0f);
}

void Cockpit::loadFrame()
{
    delete frame;
    frame = SceneKit::loadOrReport<Mesh>(SCENE, FRAME);
    if (!frame)
        return;
    // The file's materials hold the colours; each gets a textured twin of its own here.
    twins.make();
    FaceArray* faces = frame->getFaces();
    for (int i = 0; faces && i < faces->getNumFaces(); ++i) {
        Face& face = (*faces)[i];
        face.setMaterial(twins.twinOf(face.material));
    }
}

void Cockpit::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(0.0f, 0.0f, 0.0f), Vector3(0.0f, -0.11f, -1.0f));
        camera->setClipPlanes(NEAR_CLIP, FAR_CLIP);
        camera->setFOV(FIELD_OF_VIEW);
        cameras->add(camera);
    }
    cameras->setActiveCamera(CAMERA_NAME);
}

void Cockpit::loadLights()
{
    sun = SceneKit::directionalLight(SUN_LIGHT, SUN);
    for (int i = 0; i < 3; ++i)
        cabin[i] = SceneKit::directionalLight(CABIN_LIGHTS[i], CABIN[i]);
}

void Cockpit::update(float seconds)
{
    updateTimer(seconds);
    const float t = timer.getCurrent() - timer.getStart();
    planet.update(seconds);
    harmonix.update(seconds);
    Vector3 ahead = PLANET_DIRECTION;
    ahead.normalize();
    const float distance = planetDistance(t);
    planet.place(ahead * distance, PLANET_RADIUS);
    // The window's blue light grows with the planet.
    if (cabin[0]) {
        const float k = std::min(1.0f, 1.3f * PLANET_RADIUS / distance);
        cabin[0]->setDiffuse(Color(PLANET_LIGHT.r * k, PLANET_LIGHT.g * k, PLANET_LIGHT.b * k, 1.0f));
        cabin[0]->uploadStates();
    }
    Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    if (camera) {
        const Vector3 eye = eyeAt(t);
        const Vector3 look(0.03f * std::sin(t * 0.21f), -0.11f + 0.02f * std::sin(t * 0.3f), -1.0f);
        camera->lookAt(eye, eye + look);
    }
}

void Cockpit::drawFrame()
{
    if (!frame)
        return;
    // Its materials' colours hold only while no colour stands in for them.
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_COLOR_MATERIAL);
    frame->preLoad(Mesh::drawTextured);
    frame->drawLoaded();
    frame->postUnload(Mesh::drawTextured);
    glPopAttrib();
}

void Cockpit::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (!camera)
        return;
    // Lights an earlier scene left on rest while the cockpit is lit by its own; the cabin sees
    // only its own lights, the planet only the star.
    const OwnLights only(OWN_LIGHTS);
    if (sun)
        sun->turnOff();
    drawFrame();
    harmonix.display();
    // Sky and planet only where the frame leaves the view open.
    backdrop.draw(*camera);
    for (Light* light : cabin)
        if (light)
            light->turnOff();
    if (sun)
        sun->turnOn();
    planet.display();
    for (Light* light : cabin)
        if (light)
            light->turnOn();
    GLF_checkError("Cockpit:display()");
}

void Cockpit::release()
{
    delete frame;
    frame = nullptr;
    twins.forget();
}

void Cockpit::shutdown()
{
    // The last scene under the space sky and the planet: their pictures go with it.
    twins.releasePictures();
    SpaceBackdrop::releasePictures();
    Planet::releasePictures();
    release();
    backdrop.release();
    planet.shutdown();
    harmonix.shutdown();
    LightMgr* lights = LightMgr::getHandle();
    lights->remove(SUN_LIGHT);
    for (const char* name : CABIN_LIGHTS)
        lights->remove(name);
    sun = nullptr;
    std::fill(cabin, cabin + 3, nullptr);
}
