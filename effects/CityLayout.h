// What the city street, its forged block and its tests agree on: files, the street grid, lanes, lamps and the route.
#pragma once

#include "texture/TextureFormat.h"

namespace CityLayout {

constexpr const char* OCTREE = "data/3d/cityb.oct";
constexpr const char* CAMERA_PATH = "data/3d/camera_city.cam";
constexpr const char* CAMERA_NAME = "CityCamera";
constexpr const char* CAR_MESH = "data/3d/citycar.msh";
// The car's materials: the scene repaints the body for every car it draws.
constexpr const char* CAR_PAINT = "CityCarPaint";
constexpr const char* CAR_GLASS = "CityCarGlass";
constexpr const char* CAR_TRIM = "CityCarTrim";

// The scene's length in seconds (the path covers it), and the song's bar and beat there.
constexpr double SECONDS = 33.0;
constexpr double BAR = 2.0;
constexpr double BEAT = 0.5;

// The street grid, in metres with y up. Street i of each kind runs through i * PITCH: the "x streets"
// along x at z = j * PITCH, the "z streets" along z at x = i * PITCH. Each street is a road of two
// one-way lanes between raised sidewalks; the buildings stand flush with the sidewalks' outer edge.
constexpr int STREETS = 7;
constexpr double PITCH = 64.0;
constexpr double ROAD_HALF = 5.0;
constexpr double BLOCK_EDGE = 8.0;
constexpr double CURB = 0.15;
// Blocks b run from FIRST_BLOCK to LAST_BLOCK along each axis, covering [b * PITCH + BLOCK_EDGE,
// (b + 1) * PITCH - BLOCK_EDGE]: a ring of blocks beyond the outer streets closes the views.
constexpr int FIRST_BLOCK = -1;
constexpr int LAST_BLOCK = STREETS - 1;
constexpr int BLOCKS = LAST_BLOCK - FIRST_BLOCK + 1;
// Every facade on a street is at least this tall, so a sign below it always hangs on a wall; the
// ground floor's shop fronts reach the second height.
constexpr double MIN_HEIGHT = 12.0;
constexpr double SHOP_HEIGHT = 4.5;

// The direction traffic takes on each street: +1 towards growing x (or z), -1 the other way.
constexpr int xStreetDirection(int j)
{
    return j % 2 == 0 ? 1 : -1;
}
constexpr int zStreetDirection(int i)
{
    return i % 2 == 0 ? -1 : 1;
}

// Lanes run the whole length of their street and on past the city, where a car leaving the far end
// comes back in at the near one. Cars ride in slots a third of a pitch apart, all at one speed, so
// they keep their spacing; crossing streets are half a slot out of step, so they never meet.
constexpr double LANE_OFFSET = 2.0;
constexpr double LANE_START = -160.0;
constexpr int SLOTS = 33;
constexpr double SLOT = PITCH / 3.0;
constexpr double LANE_LENGTH = SLOTS * SLOT;
constexpr double CAR_SPEED = 12.0;
constexpr double CAR_LENGTH = 4.2;
constexpr double CAR_WIDTH = 1.8;
constexpr double CAR_HEIGHT = 1.4;
// Where the car's lights sit, from its centre on the road: half the track apart, at lamp height,
// headlights at the front and tail lights at the back.
constexpr double LIGHT_SPREAD = 0.62;
constexpr double LIGHT_HEIGHT = 0.68;

// Street lamps: on every stretch of street between two crossings, one lamp on each side, the poles
// at the curb with an arm reaching over the road.
constexpr double LAMP_ALONG[2] = {20.0, 44.0};
constexpr double LAMP_SIDE = 5.7;
constexpr double LAMP_REACH = 1.7;
constexpr double LAMP_HEIGHT = 7.5;
constexpr int LAMPS_PER_STREET = BLOCKS * 2;
constexpr int LAMP_COUNT = 2 * STREETS * LAMPS_PER_STREET;

// A lamp's pole foot on the ground and the unit step from it towards the road.
struct Lamp {
    double x;
    double z;
    double towardRoadX;
    double towardRoadZ;
};

// Lamps of the x streets first, street by street, then those of the z streets.
inline Lamp lamp(int k)
{
    const bool alongX = k < STREETS * LAMPS_PER_STREET;
    const int rest = alongX ? k : k - STREETS * LAMPS_PER_STREET;
    const int street = rest / LAMPS_PER_STREET;
    const int block = FIRST_BLOCK + rest % LAMPS_PER_STREET / 2;
    const double side = rest % 2 == 0 ? 1.0 : -1.0;
    const double along = block * PITCH + LAMP_ALONG[rest % 2];
    const double across = street * PITCH + side * LAMP_SIDE;
    if (alongX)
        return Lamp{along, across, 0.0, -side};
    return Lamp{across, along, -side, 0.0};
}

// The crossings the camera passes, one on every bar from the start: it drops out of the sky onto the
// first and races along the streets, turning where the route turns; after the last it runs on for
// another half pitch. The turns on the 8th, 16th and 24th second meet the song's crashes.
struct Node {
    int i;
    int j;
};
constexpr int ROUTE_NODES = 17;
constexpr Node ROUTE[ROUTE_NODES] = {{0, 2}, {1, 2}, {2, 2}, {3, 2}, {4, 2}, {4, 3}, {4, 4}, {3, 4}, {2, 4},
                                     {2, 3}, {2, 2}, {2, 1}, {3, 1}, {3, 2}, {3, 3}, {2, 3}, {1, 3}};
constexpr double CAMERA_HEIGHT = 2.2;
// The height it starts from, and the seconds it takes to come down.
constexpr double DROP_HEIGHT = 42.0;
constexpr double DROP_SECONDS = 3.5;

// The block's surfaces: the material the forged octree names and the picture the scene draws it with.
// Facade and shop pictures repeat every tile (metres along the wall by metres up it); the rest are
// mapped by the forge as it lays them. Every picture is square: the scene makes their smaller levels,
// which only a square picture has all of.
enum Surface {
    FACADE_GLASS,
    FACADE_FLATS,
    FACADE_BRICK,
    FACADE_STRIPS,
    SHOP_BRIGHT,
    SHOP_LATE,
    ROAD,
    CROSSING,
    SIDEWALK,
    ROOF,
    METAL,
    ONE_WAY,
    SURFACE_COUNT
};
constexpr int FACADE_KINDS = 4;
constexpr int SHOP_KINDS = 2;
struct SurfaceInfo {
    const char* material;
    TextureFile picture;
    int width;
    int height;
    // The colour drawn when the picture is missing.
    float fallback[3];
};
constexpr SurfaceInfo SURFACES[SURFACE_COUNT] = {
    {"CityGlass", {"data/img/city_glass.png", TEXTURE_RGB}, 512, 512, {0.1f, 0.12f, 0.2f}},
    {"CityFlats", {"data/img/city_flats.png", TEXTURE_RGB}, 512, 512, {0.12f, 0.1f, 0.1f}},
    {"CityBrick", {"data/img/city_brick.png", TEXTURE_RGB}, 512, 512, {0.14f, 0.08f, 0.07f}},
    {"CityStrips", {"data/img/city_strips.png", TEXTURE_RGB}, 512, 512, {0.1f, 0.11f, 0.12f}},
    {"CityShops", {"data/img/city_shops.png", TEXTURE_RGB}, 512, 512, {0.3f, 0.25f, 0.2f}},
    {"CityLateShops", {"data/img/city_lateshops.png", TEXTURE_RGB}, 512, 512, {0.2f, 0.12f, 0.15f}},
    {"CityRoad", {"data/img/city_road.png", TEXTURE_RGB}, 256, 256, {0.06f, 0.06f, 0.07f}},
    {"CityCrossing", {"data/img/city_crossing.png", TEXTURE_RGB}, 256, 256, {0.07f, 0.07f, 0.08f}},
    {"CitySidewalk", {"data/img/city_sidewalk.png", TEXTURE_RGB}, 256, 256, {0.12f, 0.11f, 0.11f}},
    {"CityRoof", {"data/img/city_roof.png", TEXTURE_RGB}, 256, 256, {0.07f, 0.07f, 0.08f}},
    {"CityMetal", {"data/img/city_metal.png", TEXTURE_RGB}, 64, 64, {0.15f, 0.15f, 0.16f}},
    {"CityOneWay", {"data/img/city_oneway.png", TEXTURE_RGB}, 256, 256, {0.8f, 0.8f, 0.8f}},
};
// Metres of wall one facade picture covers (eight windows across, eight floors up), and one shop picture.
constexpr double FACADE_TILE_WIDTH = 24.0;
constexpr double FACADE_TILE_HEIGHT = 28.0;
constexpr double SHOP_TILE_WIDTH = 16.0;

// The street's lights, drawn by the scene over the block: neon signs, the soft glow of every lamp and
// car light, the pools the lamps throw on the ground, the beams of the headlights and the trails of
// lights at speed.
constexpr TextureFile NEON{"data/img/city_neon.png", TEXTURE_RGB};
constexpr TextureFile POOL{"data/img/city_pool.png", TEXTURE_RGB};
constexpr TextureFile BEAM{"data/img/city_beam.png", TEXTURE_RGB};
constexpr TextureFile TRAIL{"data/img/city_trail.png", TEXTURE_RGB};
constexpr int NEON_SIZE = 512;
// The neon picture: four tall blade signs side by side across the top, then eight banners in two
// columns of four; in picture pixels from the top left.
constexpr int BLADE_SIGNS = 4;
constexpr int BLADE_WIDTH = 128;
constexpr int BLADE_HEIGHT = 384;
constexpr int BANNER_SIGNS = 8;
constexpr int BANNER_WIDTH = 256;
constexpr int BANNER_HEIGHT = 32;
// The colour each sign's tubes glow in: the forge paints them, the scene haloes them.
constexpr float BLADE_COLOURS[BLADE_SIGNS][3] = {
    {1.0f, 0.2f, 0.6f}, {0.2f, 0.85f, 1.0f}, {0.65f, 0.3f, 1.0f}, {1.0f, 0.35f, 0.15f}};
constexpr float BANNER_COLOURS[BANNER_SIGNS][3] = {{0.2f, 1.0f, 0.4f}, {1.0f, 0.8f, 0.2f}, {1.0f, 0.25f, 0.3f},
                                                   {0.3f, 0.6f, 1.0f}, {1.0f, 0.5f, 0.1f}, {1.0f, 0.3f, 0.9f},
                                                   {0.3f, 1.0f, 0.9f}, {0.9f, 0.4f, 1.0f}};

}  // namespace CityLayout
