// What the cockpit, its planet and displays and their forged content agree on: files, the frame's parts, screens.
#pragma once

#include "math/Vector3.h"
#include "texture/TextureFormat.h"

namespace CockpitLayout {

constexpr const char* FRAME = "data/3d/cockpit.msh";
constexpr const char* CAMERA_NAME = "CockpitCamera";
constexpr TextureFile PANELS{"data/img/cockpitpanels.png", TEXTURE_RGB};
constexpr TextureFile INSTRUMENTS{"data/img/instruments.png", TEXTURE_RGB};
constexpr TextureFile FONT{"data/img/harmonixfont.png", TEXTURE_RGBA};
// The font's layout: cells of 16 × 24 texels, 16 to a row, from character 33 to 126, on 256 × 256.
constexpr int FONT_CELL_WIDTH = 16;
constexpr int FONT_CELL_HEIGHT = 24;
constexpr int FONT_COLUMNS = 16;
constexpr int FONT_FIRST = 33;
constexpr int FONT_LAST = 126;
constexpr int FONT_SIZE = 256;
constexpr TextureFile PLANET_SURFACE{"data/img/planet.png", TEXTURE_RGB};
constexpr TextureFile PLANET_CLOUDS{"data/img/planetclouds.png", TEXTURE_RGBA};
constexpr TextureFile PLANET_HALO{"data/img/planethalo.png", TEXTURE_RGB};

// The scene's length in seconds.
constexpr double SECONDS = 13.0;

// The frame's materials: plain metal, dark trim, and the amber-lit instrument faces.
enum FramePart { FRAME_METAL, FRAME_TRIM, FRAME_INSTRUMENTS, FRAME_PART_COUNT };
constexpr const char* FRAME_MATERIALS[FRAME_PART_COUNT] = {"CockpitMetal", "CockpitTrim", "CockpitInstruments"};

// The pilot's eye sits at the origin looking down -z; y is up. The dashboard slopes up and away from
// its near edge at DASH_BOTTOM along DASH_SLOPE (one step of it reaches the far edge, under the window).
inline const Vector3 DASH_BOTTOM(0.0f, -1.0f, -1.05f);
inline const Vector3 DASH_SLOPE(0.0f, 0.55f, -0.85f);
constexpr float DASH_HALF_WIDTH = 2.1f;
// The screens lie on the dashboard between these shares of the slope, a hair above it.
constexpr float SCREEN_LOW = 0.42f;
constexpr float SCREEN_HIGH = 0.9f;
constexpr float SCREEN_LIFT = 0.004f;
// Left and right edge of each screen along x.
enum { SCREEN_PATTERN, SCREEN_BARS, SCREEN_WAVE, SCREEN_COUNT };
constexpr float SCREEN_EDGES[SCREEN_COUNT][2] = {{-1.15f, -0.45f}, {-0.38f, 0.38f}, {0.45f, 1.15f}};
// The window's sill and the beam across its top.
constexpr float SILL_Y = -0.45f;
constexpr float BEAM_Y = 0.75f;
constexpr float WINDOW_Z = -2.05f;

// The planet ahead, drawn through the window: its radius and its distance at the start and at the end.
constexpr float PLANET_RADIUS = 640.0f;
constexpr float PLANET_START_DISTANCE = 4200.0f;
constexpr float PLANET_END_DISTANCE = 1000.0f;
inline const Vector3 PLANET_DIRECTION(-0.08f, 0.06f, -1.0f);

}  // namespace CockpitLayout
