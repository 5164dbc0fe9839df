// What the logo sheet and its forged picture agree on.
#pragma once

#include "texture/TextureFormat.h"

namespace LogoLayout {

constexpr TextureFile TEXTURE{"data/img/logo.png", TEXTURE_RGB};

}  // namespace LogoLayout
