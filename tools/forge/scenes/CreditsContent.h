// The credits' generated content: the one texture holding all four credits.
#pragma once

#include "ContentUnit.h"

class CreditsContent : public ContentUnit {
public:
    const char* name() const override { return "credits"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;
};
