// The logo scene's generated content: the logo picture.
#pragma once

#include "ContentUnit.h"

class LogoContent : public ContentUnit {
public:
    const char* name() const override { return "logo"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;
};
