// What the tunnel exit and its forged content agree on: files, the camera's name, where the walls break and the light lies.
#pragma once

#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace TunnelExitLayout {

constexpr const char* OCTREE = "data/3d/tunnelexit.oct";
constexpr const char* CAMERA_PATH = "data/3d/camera_exit.cam";
constexpr const char* SHIP_PATH = "data/3d/ship_exit.cam";
// One curved slab of the last stretch of wall, drawn turned round the tube for every piece that breaks away.
constexpr const char* SLAB_MESH = "data/3d/exitslab.msh";
constexpr const char* CAMERA_NAME = "TunnelExitCamera";
constexpr TextureFile ROCK{"data/img/exitrock.png", TEXTURE_RGB};
constexpr TextureFile CAUSTICS{"data/img/exitcaustics.png", TEXTURE_RGB};
// The light beyond the walls, painted on a dome: its middle is the bright window of the surface.
constexpr TextureFile LIGHT{"data/img/exitlight.png", TEXTURE_RGB};
// One shaft of light: bright along its middle, fading to both sides and towards its far end.
constexpr TextureFile RAY{"data/img/exitray.png", TEXTURE_RGB};

// The scene's length, and when the song's hit lands: three bars of noise riser and snare roll
// (48 rows of 0.125 s) after the cut, then everything at once; the chord rings out to the end.
constexpr double SECONDS = 8.0;
constexpr double HIT = 6.0;
constexpr double ROW = 0.125;

// The tube runs from the origin along +z and climbs at 25 degrees from z = 76 on. Where z = 80 the
// rock of the octree ends and the last, straight stretch is made of slabs: RINGS rings of SECTORS
// slabs each, RING_LENGTH long, round an axis along AXIS. SIDE and UP span the rings there (the
// angle round the tube runs from SIDE towards UP).
inline const Vector3 BREAK(0.0f, 6.0619996f, 80.0f);
inline const Vector3 AXIS(0.0f, 0.42261826f, 0.90630779f);
inline const Vector3 SIDE(-1.0f, 0.0f, 0.0f);
inline const Vector3 UP(0.0f, 0.90630779f, -0.42261826f);
constexpr float RADIUS = 9.5f;
constexpr float RING_LENGTH = 6.0f;
constexpr int RINGS = 4;
constexpr int SECTORS = 8;
// The rock's texture repeats this many times round the tube and once every V_LENGTH units along
// it; along the tube it is counted from the break, so the slabs carry on where the octree stops.
constexpr float U_REPEAT = 3.0f;
constexpr float V_LENGTH = 12.0f;

// Where the light comes from: the middle of the bright dome, above the way out.
inline const Vector3 LIGHT_DIRECTION(0.0f, 0.57357644f, 0.81915204f);

}  // namespace TunnelExitLayout
