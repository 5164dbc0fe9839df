// The city's camera: one set-up for the street and the blast.
#include "effects/CityCamera.h"

#include "effects/SceneKit.h"

#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Lin3Track.h"

#include <algorithm>

CameraAnimation* CityCamera::start(const char* scene, const Setup& setup)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(setup.name))
        cameras->add(new Camera(setup.name));
    Camera* camera = cameras->find(setup.name);
    camera->lookAt(setup.eye, setup.target);
    camera->setClipPlanes(setup.nearClip, setup.farClip);
    camera->setFOV(setup.fieldOfView);
    cameras->setActiveCamera(setup.name);

    CameraAnimation* animation = SceneKit::loadOrReport<CameraAnimation>(scene, setup.path);
    if (!animation)
        return nullptr;
    animation->setup();
    animation->setCamera(setup.name);
    animation->update(0.0f);
    return animation;
}

Vector3 CityCamera::travel(const CameraAnimation* path, float seconds)
{
    const Lin3Track* track = path ? path->getPositionTrack() : nullptr;
    if (!track)
        return Vector3();
    const float now = path->getCurrentFrame();
    const float before = std::max(0.0f, now - seconds * path->getFramesPerSec());
    return track->evaluate(now) - track->evaluate(before);
}
