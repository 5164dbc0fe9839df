// What the islands scene and its forged content agree on: file names, formats, where the mountains and plumes stand.
#pragma once

#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace IslandsLayout {

constexpr TextureFile SAND{"data/img/sand4.png", TEXTURE_RGB};
constexpr TextureFile WATER{"data/img/water.png", TEXTURE_RGB};
constexpr TextureFile SKY{"data/img/skymoon2.png", TEXTURE_RGB};
constexpr TextureFile WINDOW{"data/img/window02.png", TEXTURE_RGBA};

constexpr const char* CAMERA_PATH = "data/3d/camera_islands.cam";
constexpr const char* SHIP_PATH = "data/3d/ship_island.cam";
constexpr const char* BIRD_PATH = "data/3d/bird_island.cam";
constexpr const char* BIRD_MESHES[2] = {"data/3d/fugl1.msh", "data/3d/fugl2.msh"};
constexpr const char* CAMERA_NAME = "IslandCamera";

// The paths' key rates, and the scene's length the paths cover.
constexpr int SHIP_FRAMES_PER_SEC = 24;
constexpr int BIRD_FRAMES_PER_SEC = 12;
constexpr int SECONDS = 33;

struct Mountain {
    const char* file;
    Vector3 offset;
};
constexpr int MOUNTAIN_COUNT = 6;
// Each mountain is moved by its offset; the water sits at -offset.y in the mountain's own frame.
inline const Mountain MOUNTAINS[MOUNTAIN_COUNT] = {
    {"data/3d/mountain1.bez", Vector3(10.0f, -0.15f, 10.0f)},
    {"data/3d/mountain2.bez", Vector3(10.0f, -0.15f, -10.0f)},
    {"data/3d/mountain3.bez", Vector3(-10.0f, -0.15f, -10.0f)},
    {"data/3d/mountain4.bez", Vector3(-10.0f, -0.15f, 10.0f)},
    {"data/3d/mountain6.bez", Vector3(-20.0f, -0.3f, 15.0f)},
    {"data/3d/mountain7.bez", Vector3(60.0f, 0.5f, 0.0f)},
};

constexpr int PLUME_COUNT = 4;
// The fire plumes burn on the small summits.
inline const Vector3 PLUMES[PLUME_COUNT] = {
    Vector3(-12.5f, 0.93f, 8.0f),
    Vector3(9.0f, 1.5f, 5.0f),
    Vector3(-7.0f, 1.0f, -7.0f),
    Vector3(4.3f, 2.3f, -4.6f),
};

}  // namespace IslandsLayout
