// What the spacecraft fly-by and its forged content agree on: files, the hull's material names, engines, lights, planet.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace SpaceCraftLayout {

constexpr const char* OCTREE = "data/3d/spacecraft.oct";
constexpr const char* CAMERA_PATH = "data/3d/camera_spacecraft.cam";
constexpr const char* CAMERA_NAME = "SpaceCraftCamera";
constexpr TextureFile PLATES{"data/img/hullplates.png", TEXTURE_RGB};
constexpr TextureFile WINDOWS{"data/img/hullwindows.png", TEXTURE_RGB};
constexpr TextureFile NEBULA_UP{"data/img/nebula_up.png", TEXTURE_RGB};
constexpr TextureFile NEBULA_DOWN{"data/img/nebula_down.png", TEXTURE_RGB};
// A soft round glow for the exhausts and the lights.
constexpr TextureFile GLOW{"data/img/spaceglow.png", TEXTURE_RGB};

// The scene's length in seconds and the camera path's key rate.
constexpr double SECONDS = 33.0;
constexpr int FRAMES_PER_SECOND = 24;

// The hull's materials by the names its file gives them; the scene lends them their pictures.
enum HullPart { HULL_PLATES, HULL_DARK, HULL_ACCENT, HULL_WINDOWS, HULL_GLOW, HULL_PART_COUNT };
constexpr const char* HULL_MATERIALS[HULL_PART_COUNT] = {"HullPlates", "HullDark", "HullAccent", "HullWindows",
                                                         "HullGlow"};
// The picture each part is drawn with; none for the glowing cores.
constexpr const TextureFile* HULL_PICTURES[HULL_PART_COUNT] = {&PLATES, &PLATES, &PLATES, &WINDOWS, nullptr};

// The hull runs along z, the nose towards -z, the engines' mouths at +z.
constexpr float NOSE_Z = -250.0f;
constexpr float STERN_Z = 232.0f;

struct Engine {
    Vector3 mouth;  // centre of the nozzle's open end
    float radius;
};
constexpr int ENGINE_COUNT = 7;
inline const Engine ENGINES[ENGINE_COUNT] = {
    {Vector3(0.0f, 0.0f, 246.0f), 13.0f},   {Vector3(-28.0f, 0.0f, 246.0f), 11.0f},
    {Vector3(28.0f, 0.0f, 246.0f), 11.0f},  {Vector3(-44.0f, 17.0f, 240.0f), 5.5f},
    {Vector3(44.0f, 17.0f, 240.0f), 5.5f},  {Vector3(-44.0f, -17.0f, 240.0f), 5.5f},
    {Vector3(44.0f, -17.0f, 240.0f), 5.5f},
};
// The first three are the main engines: a helix of sparks trails from each.
constexpr int MAIN_ENGINES = 3;

// Navigation lights: red to port (-x), green to starboard, white strobes on the masts and the nose.
enum Blink { BLINK_STEADY, BLINK_BEAT, BLINK_STROBE };
struct NavLight {
    Vector3 position;
    Color colour;
    Blink blink;
    float size;
};
constexpr int NAV_LIGHT_COUNT = 10;
inline const NavLight NAV_LIGHTS[NAV_LIGHT_COUNT] = {
    {Vector3(-56.0f, -7.0f, -121.0f), Color(1.0f, 0.15f, 0.1f, 1.0f), BLINK_BEAT, 3.0f},
    {Vector3(56.0f, -7.0f, -121.0f), Color(0.2f, 1.0f, 0.35f, 1.0f), BLINK_BEAT, 3.0f},
    {Vector3(-63.4f, -7.0f, 120.0f), Color(1.0f, 0.15f, 0.1f, 1.0f), BLINK_STEADY, 2.5f},
    {Vector3(63.4f, -7.0f, 120.0f), Color(0.2f, 1.0f, 0.35f, 1.0f), BLINK_STEADY, 2.5f},
    {Vector3(0.0f, 88.0f, 118.0f), Color(1.0f, 1.0f, 1.0f, 1.0f), BLINK_STROBE, 4.0f},
    {Vector3(-5.0f, 78.0f, 124.0f), Color(1.0f, 0.3f, 0.2f, 1.0f), BLINK_BEAT, 2.0f},
    {Vector3(5.0f, 74.0f, 112.0f), Color(1.0f, 0.3f, 0.2f, 1.0f), BLINK_BEAT, 2.0f},
    {Vector3(0.0f, 5.0f, -274.0f), Color(1.0f, 1.0f, 1.0f, 1.0f), BLINK_STROBE, 3.0f},
    {Vector3(0.0f, -40.0f, 40.0f), Color(1.0f, 0.15f, 0.1f, 1.0f), BLINK_STROBE, 3.0f},
    {Vector3(0.0f, 30.5f, 222.0f), Color(1.0f, 1.0f, 1.0f, 1.0f), BLINK_STEADY, 2.0f},
};

// Far ahead of the bow: the planet the cockpit scene then flies down to.
inline const Vector3 PLANET_CENTRE(-500.0f, -420.0f, -4200.0f);
constexpr float PLANET_RADIUS = 640.0f;
// Where the starlight comes from.
inline const Vector3 SUN_DIRECTION(-0.6f, 0.6f, 0.25f);

}  // namespace SpaceCraftLayout
