// What the sea bed scene and its forged content agree on: files, the camera's name, where the floor's things stand, the eye's schedule.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace SeaBedLayout {

constexpr const char* TERRAIN = "data/3d/seabed.ter";
constexpr const char* CAMERA_PATH = "data/3d/camera_seabed.cam";
constexpr const char* FISH_PATH = "data/3d/fish_seabed.cam";
constexpr const char* CAMERA_NAME = "SeaBedCamera";

constexpr const char* FISH_MESH = "data/3d/fish.msh";
constexpr const char* KELP_MESH = "data/3d/kelp.msh";
constexpr const char* FAN_MESH = "data/3d/seafan.msh";
constexpr const char* CLIFF_MESH = "data/3d/seabed_cliff.msh";
constexpr const char* CAVE_MESH = "data/3d/seabed_cave.msh";
constexpr const char* EYEBALL_MESH = "data/3d/eyeball.msh";
constexpr const char* EYELID_MESH = "data/3d/eyelid.msh";
constexpr int ROCK_KINDS = 3;
constexpr const char* ROCK_MESHES[ROCK_KINDS] = {"data/3d/rock1.msh", "data/3d/rock2.msh", "data/3d/rock3.msh"};

constexpr TextureFile SAND{"data/img/seabed_sand.png", TEXTURE_RGB};
constexpr TextureFile ROCK{"data/img/seabed_rock.png", TEXTURE_RGB};
constexpr TextureFile KELP{"data/img/kelp.png", TEXTURE_RGBA};
constexpr TextureFile FAN{"data/img/seafan.png", TEXTURE_RGBA};
constexpr TextureFile FISH{"data/img/fish.png", TEXTURE_RGB};
constexpr TextureFile IRIS{"data/img/iris.png", TEXTURE_RGB};
constexpr TextureFile SHAFT{"data/img/lightshaft.png", TEXTURE_RGB};
constexpr TextureFile BUBBLE{"data/img/bubble.png", TEXTURE_RGB};
constexpr TextureFile SURFACE{"data/img/seasurface.png", TEXTURE_RGB};
// The caustic net shimmers through a loop of frames.
constexpr int CAUSTIC_FRAMES = 16;
constexpr TextureFile CAUSTICS[CAUSTIC_FRAMES] = {
    {"data/img/caustic00.png", TEXTURE_RGB}, {"data/img/caustic01.png", TEXTURE_RGB},
    {"data/img/caustic02.png", TEXTURE_RGB}, {"data/img/caustic03.png", TEXTURE_RGB},
    {"data/img/caustic04.png", TEXTURE_RGB}, {"data/img/caustic05.png", TEXTURE_RGB},
    {"data/img/caustic06.png", TEXTURE_RGB}, {"data/img/caustic07.png", TEXTURE_RGB},
    {"data/img/caustic08.png", TEXTURE_RGB}, {"data/img/caustic09.png", TEXTURE_RGB},
    {"data/img/caustic10.png", TEXTURE_RGB}, {"data/img/caustic11.png", TEXTURE_RGB},
    {"data/img/caustic12.png", TEXTURE_RGB}, {"data/img/caustic13.png", TEXTURE_RGB},
    {"data/img/caustic14.png", TEXTURE_RGB}, {"data/img/caustic15.png", TEXTURE_RGB},
};

// The scene's length in seconds (76 to 109 in the schedule); the paths cover it.
constexpr double SECONDS = 33.0;
constexpr int FRAMES_PER_SECOND = 24;
// A row of the song in seconds, and the rows of a bar: the sea bed's kick falls on rows 0 and 10 of each bar.
constexpr float ROW_SECONDS = 0.125f;
constexpr int BAR_ROWS = 16;

// The floor: a grid of 129 x 129 points two units apart over x and z in [-128, 128], sand
// repeating every twelve units. Heights lie around 0; the water's surface is far above.
constexpr int TERRAIN_SIDE = 129;
constexpr float TERRAIN_SPACING = 2.0f;
constexpr float TERRAIN_ORIGIN = -128.0f;
constexpr float SAND_SCALE = 1.0f / 12.0f;
constexpr float SURFACE_HEIGHT = 60.0f;

// The rock face that ends the floor: it stands across the way at this z, facing +z, with the
// cave mouth at its foot that leads into the dark, and the eye in the rock above and beside it.
constexpr float CLIFF_Z = -92.0f;
inline const Vector3 CAVE_MOUTH(0.0f, 4.5f, CLIFF_Z);
constexpr float CAVE_WIDTH = 6.5f;
constexpr float CAVE_HEIGHT = 5.5f;
constexpr float CAVE_LENGTH = 44.0f;
inline const Vector3 EYE_CENTRE(13.0f, 17.0f, CLIFF_Z + 1.5f);
constexpr float EYE_RADIUS = 4.4f;

// Fog and clear colour: pale near the surface, deep teal along the floor, and in the cave the
// dark teal the tunnel begins with.
inline const Color SURFACE_WATER(0.30f, 0.62f, 0.66f, 1.0f);
inline const Color FLOOR_WATER(0.06f, 0.27f, 0.30f, 1.0f);
inline const Color CAVE_WATER(0.10f, 0.15f, 0.20f, 1.0f);

// The eye, in scene seconds from the start: it opens, blinks, and watches the camera go in.
constexpr float EYE_OPENS = 22.0f;
constexpr int EYE_BLINKS = 3;
constexpr float EYE_BLINK_TIMES[EYE_BLINKS] = {25.5f, 28.75f, 30.25f};

// The school: how many fish, and the radius around its path they keep within.
constexpr int FISH_COUNT = 36;
constexpr float SCHOOL_RADIUS = 5.0f;

// Things on the floor; heights come from the terrain where they stand.
struct Rock {
    float x, z, scale, yaw;
    int kind;
};
constexpr int ROCK_COUNT = 14;
constexpr Rock ROCKS[ROCK_COUNT] = {
    {16.0f, 38.0f, 2.2f, 20.0f, 0},    {-20.0f, 18.0f, 3.0f, 70.0f, 1},  {22.0f, -6.0f, 2.6f, 130.0f, 2},
    {-13.0f, -32.0f, 1.8f, 200.0f, 0}, {19.0f, -44.0f, 3.4f, 250.0f, 1}, {-26.0f, -62.0f, 3.0f, 300.0f, 2},
    {30.0f, 70.0f, 2.5f, 45.0f, 2},    {-34.0f, 60.0f, 3.5f, 160.0f, 0}, {9.0f, -74.0f, 1.6f, 80.0f, 1},
    {-9.0f, 52.0f, 1.2f, 10.0f, 2},    {40.0f, 10.0f, 4.0f, 100.0f, 0},  {-45.0f, -20.0f, 4.5f, 220.0f, 1},
    {-16.0f, -84.0f, 3.2f, 140.0f, 0}, {20.0f, -84.0f, 2.8f, 30.0f, 2},
};

// Kelp grows in clumps; the strands of a clump scatter within its spread.
struct Clump {
    float x, z;
    int count;
    float spread;
};
constexpr int CLUMP_COUNT = 11;
constexpr Clump KELP_CLUMPS[CLUMP_COUNT] = {
    {-14.0f, 50.0f, 5, 5.0f},  {13.0f, 28.0f, 6, 5.0f},  {-22.0f, 5.0f, 7, 6.0f},   {25.0f, 12.0f, 5, 5.0f},
    {-12.0f, -18.0f, 4, 4.0f}, {21.0f, -28.0f, 6, 5.0f}, {-25.0f, -45.0f, 6, 6.0f}, {12.0f, -58.0f, 4, 4.0f},
    {31.0f, 45.0f, 6, 6.0f},   {-36.0f, 32.0f, 6, 6.0f}, {-30.0f, -80.0f, 5, 5.0f},
};

// Sea fans stand alone, each turned across the current.
struct Fan {
    float x, z, yaw, scale;
};
constexpr int FAN_COUNT = 10;
constexpr Fan FANS[FAN_COUNT] = {
    {10.0f, 44.0f, 30.0f, 1.2f},   {-8.0f, 26.0f, -20.0f, 1.0f},  {17.0f, 2.0f, 60.0f, 1.4f},
    {-16.0f, -6.0f, 10.0f, 1.1f},  {8.0f, -24.0f, -40.0f, 0.9f},  {-18.0f, -38.0f, 20.0f, 1.3f},
    {15.0f, -66.0f, 0.0f, 1.2f},   {-10.0f, -78.0f, 45.0f, 1.0f}, {6.0f, 62.0f, -60.0f, 1.0f},
    {26.0f, -80.0f, -10.0f, 1.5f},
};

// Bubbles rise from vents in the sand.
constexpr int VENT_COUNT = 4;
inline const Vector3 VENTS[VENT_COUNT] = {
    Vector3(5.0f, 0.0f, 24.0f),
    Vector3(-6.0f, 0.0f, -12.0f),
    Vector3(9.0f, 0.0f, -42.0f),
    Vector3(-5.0f, 0.0f, -86.0f),
};

// Light shafts fall from the surface: where they meet the floor, and how wide they are.
struct Shaft {
    float x, z, width;
};
constexpr int SHAFT_COUNT = 10;
constexpr Shaft SHAFTS[SHAFT_COUNT] = {
    {-6.0f, 74.0f, 6.0f},  {12.0f, 56.0f, 4.0f},  {-16.0f, 34.0f, 8.0f}, {7.0f, 12.0f, 5.0f},  {-11.0f, -8.0f, 6.0f},
    {15.0f, -28.0f, 4.5f}, {-4.0f, -50.0f, 7.0f}, {9.0f, 88.0f, 5.0f},   {22.0f, 30.0f, 6.0f}, {-24.0f, -24.0f, 5.0f},
};

}  // namespace SeaBedLayout
