// What the blast over the city, its forged content and its tests agree on: files, where and when it blows.
#pragma once

#include "effects/CityLayout.h"
#include "texture/TextureFormat.h"

namespace BlowUpLayout {

constexpr const char* CAMERA_PATH = "data/3d/camera_blowup.cam";
constexpr const char* CAMERA_NAME = "BlowUpCamera";
// Chunks of the blown-out buildings: a lump of wall, a twisted girder.
constexpr int DEBRIS_KINDS = 2;
constexpr const char* DEBRIS_MESHES[DEBRIS_KINDS] = {"data/3d/debris_chunk.msh", "data/3d/debris_girder.msh"};
constexpr const char* DEBRIS_MATERIALS[DEBRIS_KINDS] = {"BlastChunk", "BlastGirder"};
// A puff of flame, drawn adding light; a puff of smoke, blended over what is behind it; the shock's edge.
constexpr TextureFile FIRE{"data/img/blast_fire.png", TEXTURE_RGB};
constexpr TextureFile SMOKE{"data/img/blast_smoke.png", TEXTURE_RGBA};
constexpr TextureFile SHOCK{"data/img/blast_shock.png", TEXTURE_RGB};

// The scene's length in seconds: two bars of drum fill, then the crash and a falling roar of noise.
// The crash is row 2012 of the song, 32 rows (four seconds) after the scene's first.
constexpr double SECONDS = 12.0;
constexpr double CRASH = 4.0;
// The city's clock went on for the whole street scene before this one.
constexpr double CITY_SECONDS = CityLayout::SECONDS;

// Ground zero: the crossing the race turned at on its 28th second, in the middle of downtown.
constexpr int ZERO_I = 3;
constexpr int ZERO_J = 3;
constexpr double ZERO_X = ZERO_I * CityLayout::PITCH;
constexpr double ZERO_Z = ZERO_J * CityLayout::PITCH;

}  // namespace BlowUpLayout
