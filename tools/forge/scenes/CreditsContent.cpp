// Writes the credits texture, or says which fonts it missed.
#include "CreditsContent.h"

#include "CreditsArt.h"
#include "Forge.h"

#include "effects/CreditsLayout.h"

#include <iostream>

std::vector<ForgedFile> CreditsContent::files() const
{
    return {ForgedFile::picture(CreditsLayout::TEXTURE, 2 * CreditsArt::cellSize,
                                CreditsLayout::CREDIT_COUNT * CreditsArt::cellSize)};
}

bool CreditsContent::build(Forge& forge)
{
    const Image texture = CreditsArt().compose();
    if (texture.empty()) {
        std::cerr << "velmora-forge: cannot use the credit fonts\n";
        return false;
    }
    return forge.savePicture(CreditsLayout::TEXTURE, texture);
}
