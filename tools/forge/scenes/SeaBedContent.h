// The sea bed's content: the floor as a height map, the camera's dive and the school's swim as paths, its meshes and pictures.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"

#include "effects/SeaBedLayout.h"

#include <vector>

class Forge;

class SeaBedContent : public ContentUnit {
public:
    static constexpr double SECONDS = SeaBedLayout::SECONDS;
    static constexpr double FRAMES_PER_SECOND = SeaBedLayout::FRAMES_PER_SECOND;
    // Frames between two path keys.
    static constexpr int KEY_STEP = 6;
    // How high the camera keeps above the sand until it enters the cave.
    static constexpr double CAMERA_CLEARANCE = 2.5;

    const char* name() const override { return "seabed"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // Height of the sand at (x, z): rolling ground, dunes across the way, a scoop before the cave
    // and a bank behind the rock face, highest away from the cave's tube.
    static double floorHeight(double x, double z);

    // Where the camera is and looks, and where the middle of the school swims, t seconds in.
    static Vec3 cameraAt(double t);
    static Vec3 targetAt(double t);
    static Vec3 schoolAt(double t);

    static bool writeTerrain(const char* file);
    static bool writeCamera(const char* file);
    static bool writeSchool(const char* file);

private:
    bool meshes(Forge& forge);
    bool pictures(Forge& forge);
};
