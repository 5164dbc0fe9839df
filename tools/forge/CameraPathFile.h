// Camera paths for the demo's .cam files: a position and a look-at track of plain Catmull-Rom keys, sampled from functions of time.
#pragma once

#include "MeshBuilder.h"

#include <functional>
#include <string>

class CameraPathFile {
public:
    using Path = std::function<Vec3(double seconds)>;

    // Writes the CANI chunk naming the camera: open tracks (no tension, continuity or bias) with a key
    // every `step` frames from 0 to `seconds`, at `framesPerSecond`. An empty `look` writes the position
    // track alone, as an object's path. False when the file cannot be written.
    static bool write(const std::string& file, const char* camera, double seconds, double framesPerSecond, int step,
                      const Path& eye, const Path& look);
};
