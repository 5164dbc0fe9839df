// A light infinitely far away: its position is the direction towards it (w = 0).
#pragma once

#include "scene/Light.h"

class DirectionalLight : public Light {
public:
    DirectionalLight() {}
    explicit DirectionalLight(const char* name) : Light(name) {}

    // DLIT: tag, name, the common light body.
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;

    void reorient(const Camera& camera) override;
    void uploadStates() override;
};
