// The cockpit scene's content: the frame round the pilot, its panels and instruments, the displays' font, the planet.
#pragma once

#include "ContentUnit.h"

class Forge;

class CockpitContent : public ContentUnit {
public:
    const char* name() const override { return "cockpit"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

private:
    bool frame(Forge& forge);
    bool font(Forge& forge);
};
