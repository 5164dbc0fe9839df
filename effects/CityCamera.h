// The camera of the city's scenes: registered, placed where it rests, flown along its path, rehearsing the scene.
#pragma once

#include "effects/SceneKit.h"
#include "math/Vector3.h"

#include <functional>
#include <initializer_list>

class Camera;
class CameraAnimation;

class CityCamera {
public:
    struct Setup {
        const char* name;
        const char* path;
        // Where it stands and looks without its path.
        Vector3 eye;
        Vector3 target;
        float nearClip;
        float farClip;
        float fieldOfView;
    };

    explicit CityCamera(const Setup& setup);
    ~CityCamera();
    CityCamera(const CityCamera&) = delete;
    CityCamera& operator=(const CityCamera&) = delete;

    // Loads the path ahead of the scene's start, a missing file reported in the scene's name; false when it
    // had been tried.
    bool loadNext(const char* scene);
    bool triedAll() const { return tried; }
    // Finds or makes the camera, places it, makes it the active one, and sets it on its path (loaded now if
    // it was not before).
    void start(const char* scene);
    void release();

    // A scene's own light (no scene on screen shares it): its name and how it is made.
    struct SceneLight {
        const char* name;
        const SceneKit::LightSetup& setup;
    };
    // Draws the scene once unseen (gl/UnseenDrawing), seen by a camera of its own standing where this one rests,
    // under the night with that fog and with the scene's lights made: the software renderer builds its code for
    // each new way of drawing the first time a draw meets it, and met here, before the scene starts, they do
    // not stall it. The lights stay registered, switched off, so the start finds them on the light units they
    // were met with.
    void rehearse(float fogStart, float fogEnd, std::initializer_list<SceneLight> lights,
                  const std::function<void(const Camera&)>& draw) const;

    // The path the camera flies, or null without it.
    CameraAnimation* getPath() const { return path; }

    // How far the camera flown along the path has come over the last `seconds` (nothing without a path).
    Vector3 travel(float seconds) const;

private:
    void place(Camera& camera) const;

    Setup setup;
    CameraAnimation* path;
    bool tried;
};
