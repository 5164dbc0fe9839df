// Writes the logo picture, or says which font it missed.
#include "LogoContent.h"

#include "Forge.h"
#include "LogoArt.h"

#include "effects/LogoLayout.h"

#include <iostream>

std::vector<ForgedFile> LogoContent::files() const
{
    return {ForgedFile::picture(LogoLayout::TEXTURE, LogoArt::size, LogoArt::size)};
}

bool LogoContent::build(Forge& forge)
{
    const Image logo = LogoArt().compose();
    if (logo.empty()) {
        std::cerr << "velmora-forge: cannot use the logo font\n";
        return false;
    }
    return forge.savePicture(LogoLayout::TEXTURE, logo);
}
