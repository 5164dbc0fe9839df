// Files several scenes read: the ship, its planks and sails, and the soft glow every particle cluster draws.
#pragma once

#include "texture/TextureFormat.h"

namespace SharedLayout {

constexpr const char* SHIP_MESH = "data/3d/ship.msh";
constexpr TextureFile SHIP_TEXTURE{"data/img/ship.png", TEXTURE_RGB};
constexpr TextureFile PARTICLE{"data/img/particle.png", TEXTURE_RGB};

}  // namespace SharedLayout
