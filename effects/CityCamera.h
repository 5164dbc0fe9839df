// The camera of the city's scenes: registered under its name, placed where it rests, flown along its forged path.
#pragma once

#include "math/Vector3.h"

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

    // Finds or makes the camera, places it, makes it the active one, and loads its path: the animation
    // (owned by the caller) or null after reporting the missing file in the scene's name.
    static CameraAnimation* start(const char* scene, const Setup& setup);
    // How far a camera flown along the path has come over the last `seconds` (nothing without a path).
    static Vector3 travel(const CameraAnimation* path, float seconds);
};
