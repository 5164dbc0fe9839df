// What the flipper land, its play and its forged content agree on: files, the land's size, where flippers and bumpers stand, the music's rows.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace FlipperLandLayout {

// The land at rest, as Bezier patches.
constexpr const char* LAND = "data/banim-1.bez";
constexpr const char* PADDLE_MESH = "data/3d/flipper.msh";
// The bumper's skirt and post; its cap, without a material: the scene colours it and lights it up.
constexpr const char* BUMPER_MESH = "data/3d/bumper.msh";
constexpr const char* CAP_MESH = "data/3d/bumpercap.msh";
// A unit ball without a material: each is drawn in its own colour.
constexpr const char* BALL_MESH = "data/3d/ball.msh";
constexpr TextureFile FIELD{"data/img/flipperfield.png", TEXTURE_RGB};
constexpr TextureFile SKY{"data/img/flippersky.png", TEXTURE_RGB};
// The balls' gloss, a sphere map; and the soft dark blot under each ball.
constexpr TextureFile SHINE{"data/img/flippershine.png", TEXTURE_RGB};
constexpr TextureFile SHADOW{"data/img/flippershadow.png", TEXTURE_RGBA};

constexpr double SECONDS = 18.0;
// The song's rows: 0.125 s, sixteen to a bar; the section's last bar is a tom run.
constexpr double ROW = 0.125;
constexpr int BAR_ROWS = 16;
constexpr int BARS = 9;

// The land spans -HALF_SIZE to HALF_SIZE on x and z in PATCHES x PATCHES square patches.
constexpr float HALF_SIZE = 24.0f;
constexpr int PATCHES = 6;

// Flipper stations lie in the four hollows; each is a pair of paddles hinged on the hollow's
// outer side, throwing the balls that roll down into it back up towards the middle.
constexpr int STATION_COUNT = 4;
inline const Vector3 STATIONS[STATION_COUNT] = {Vector3(13.0f, 0.0f, 0.0f), Vector3(0.0f, 0.0f, 13.0f),
                                                Vector3(-13.0f, 0.0f, 0.0f), Vector3(0.0f, 0.0f, -13.0f)};
// Bumpers: one on the middle's hill, four on the shoulders between the hollows.
constexpr int BUMPER_COUNT = 5;
inline const Vector3 BUMPERS[BUMPER_COUNT] = {Vector3(0.0f, 0.0f, 0.0f), Vector3(8.5f, 0.0f, 8.5f),
                                              Vector3(-8.5f, 0.0f, 8.5f), Vector3(-8.5f, 0.0f, -8.5f),
                                              Vector3(8.5f, 0.0f, -8.5f)};
inline const Color BUMPER_COLOURS[BUMPER_COUNT] = {Color(1.0f, 0.2f, 0.55f, 1.0f), Color(1.0f, 0.55f, 0.05f, 1.0f),
                                                   Color(0.15f, 0.8f, 1.0f, 1.0f), Color(0.55f, 1.0f, 0.1f, 1.0f),
                                                   Color(0.7f, 0.3f, 1.0f, 1.0f)};

constexpr int BALL_COUNT = 10;
constexpr float BALL_RADIUS = 0.8f;
inline const Color BALL_COLOURS[BALL_COUNT] = {Color(1.0f, 0.12f, 0.12f, 1.0f), Color(1.0f, 0.8f, 0.05f, 1.0f),
                                               Color(0.1f, 0.45f, 1.0f, 1.0f),  Color(0.1f, 0.9f, 0.3f, 1.0f),
                                               Color(1.0f, 0.3f, 0.8f, 1.0f),   Color(1.0f, 0.5f, 0.05f, 1.0f),
                                               Color(0.6f, 0.2f, 1.0f, 1.0f),   Color(0.05f, 0.85f, 0.9f, 1.0f),
                                               Color(1.0f, 1.0f, 1.0f, 1.0f),   Color(0.9f, 0.95f, 0.1f, 1.0f)};

}  // namespace FlipperLandLayout
