// The city's camera: one set-up for the street and the blast.
#include "effects/CityCamera.h"

#include "effects/CityBlock.h"
#include "effects/SceneKit.h"

#include "gl/UnseenDrawing.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Light.h"
#include "scene/Lin3Track.h"

#include <GL/gl.h>
#include <algorithm>
#include <vector>

CityCamera::CityCamera(const Setup& setup_) : setup(setup_), path(nullptr), tried(false) {}

CityCamera::~CityCamera()
{
    release();
}

bool CityCamera::loadNext(const char* scene)
{
    if (tried)
        return false;
    tried = true;
    path = SceneKit::loadOrReport<CameraAnimation>(scene, setup.path);
    if (path)
        path->setup();
    return true;
}

void CityCamera::start(const char* scene)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(setup.name))
        cameras->add(new Camera(setup.name));
    place(*cameras->find(setup.name));
    cameras->setActiveCamera(setup.name);

    loadNext(scene);
    if (!path)
        return;
    path->setCamera(setup.name);
    path->update(0.0f);
}

void CityCamera::place(Camera& camera) const
{
    camera.lookAt(setup.eye, setup.target);
    camera.setClipPlanes(setup.nearClip, setup.farClip);
    camera.setFOV(setup.fieldOfView);
}

void CityCamera::rehearse(float fogStart, float fogEnd, std::initializer_list<SceneLight> lights,
                          const std::function<void(const Camera&)>& draw) const
{
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    const UnseenDrawing unseen;
    CityBlock::setupNight(fogStart, fogEnd);
    std::vector<Light*> made;
    for (const SceneLight& light : lights)
        made.push_back(SceneKit::directionalLight(light.name, light.setup));
    Camera camera(setup.name);
    place(camera);
    camera.resize(viewport[2], viewport[3]);
    draw(camera);
    for (Light* light : made)
        light->turnOff();
}

void CityCamera::release()
{
    delete path;
    path = nullptr;
    tried = false;
}

Vector3 CityCamera::travel(float seconds) const
{
    const Lin3Track* track = path ? path->getPositionTrack() : nullptr;
    if (!track)
        return Vector3();
    const float now = path->getCurrentFrame();
    const float before = std::max(0.0f, now - seconds * path->getFramesPerSec());
    return track->evaluate(now) - track->evaluate(before);
}
