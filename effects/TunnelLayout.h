// What the underwater tunnel and its forged content agree on: files, the camera's name, where objects and glows stand.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace TunnelLayout {

constexpr const char* OCTREE = "data/3d/tunnel3.oct";
constexpr const char* SHIP_PATH = "data/3d/ship_tunnel.cam";
constexpr const char* CAMERA_PATH = "data/3d/camera_tunnel.cam";
constexpr const char* CAMERA_NAME = "TunnelCamera";
constexpr TextureFile ROCK{"data/img/test.png", TEXTURE_RGB};
constexpr TextureFile CAUSTICS{"data/img/water03.png", TEXTURE_RGB};
// The tunnel objects' meshes name it in their materials.
constexpr TextureFile REFLECTION{"data/img/refmap.png", TEXTURE_RGB};

// The scene's length in seconds: the paths cover it.
constexpr double SECONDS = 33.5;

constexpr int OBJECT_COUNT = 5;
constexpr const char* OBJECT_FILES[OBJECT_COUNT] = {
    "data/3d/leaf.msh", "data/3d/worm.msh", "data/3d/spike.msh", "data/3d/fan2.msh", "data/3d/fanholder2.msh",
};
inline const Vector3 OBJECT_POSITIONS[OBJECT_COUNT] = {
    Vector3(-135.0f, -200.0f, 5.0f), Vector3(-40.0f, -200.0f, 0.0f),  Vector3(-187.0f, -201.0f, 11.0f),
    Vector3(248.0f, -246.0f, 57.0f), Vector3(248.0f, -246.0f, 57.0f),
};
// Leaf, worm and spike turn and are drawn four times their size; the fan spins about its hub.
constexpr int SCALED_OBJECTS = 3;
constexpr int FAN = 3;

constexpr int CLUSTER_COUNT = 7;
inline const Vector3 CLUSTER_POSITIONS[CLUSTER_COUNT] = {
    Vector3(4.0f, -195.0f, -1.0f),    Vector3(5.0f, -190.0f, 2.0f),    Vector3(5.0f, -202.0f, -7.0f),
    Vector3(158.0f, -245.0f, 26.0f),  Vector3(-136.0f, -198.0f, 0.0f), Vector3(-135.0f, -200.0f, 4.0f),
    Vector3(-215.0f, -201.0f, 15.0f),
};
inline const Color CLUSTER_COLORS[CLUSTER_COUNT] = {
    Color(1.0f, 0.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 0.0f, 1.0f), Color(0.0f, 1.0f, 1.0f, 1.0f),
    Color(1.0f, 1.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f),
    Color(1.0f, 1.0f, 1.0f, 1.0f),
};

}  // namespace TunnelLayout
