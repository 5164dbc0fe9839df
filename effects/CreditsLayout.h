// What the credits and their forged picture agree on: the file and how the credits are stacked in it.
#pragma once

#include "texture/TextureFormat.h"

namespace CreditsLayout {

// Luminance with alpha: white ink whose coverage is the alpha.
constexpr TextureFile TEXTURE{"data/img/credits.png", TEXTURE_LUMINANCE_ALPHA};
// One credit per quarter of the texture, top to bottom; sharp on the left half, blurred on the right.
constexpr int CREDIT_COUNT = 4;

}  // namespace CreditsLayout
