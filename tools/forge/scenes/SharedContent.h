// Content several scenes read: the ship and its texture, the particle glow, and the console's font and backdrop.
#pragma once

#include "ContentUnit.h"

class SharedContent : public ContentUnit {
public:
    const char* name() const override { return "shared"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

private:
    bool shipMesh(Forge& forge);
};
