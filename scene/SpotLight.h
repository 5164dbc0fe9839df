// A positional light with a spot direction, exponent and cut-off angle.
#pragma once

#include "scene/Light.h"

class SpotLight : public Light {
public:
    SpotLight();
    explicit SpotLight(const char* name);

    // SLIT: tag, name, the common light body, direction, exponent, cut-off.
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;

    void reorient(const Camera& camera) override;
    void uploadStates() override;

    const Vector3& getDirection() const { return direction; }
    void setDirection(const Vector3& d) { direction = d; }
    float getExponent() const { return exponent; }
    void setExponent(float e) { exponent = e; }
    float getCutoff() const { return cutoff; }
    void setCutoff(float degrees) { cutoff = degrees; }
    // Places the light and aims it at the target (the direction is not normalised).
    void lookAt(const Vector3& position, const Vector3& target);

private:
    void sendDirection() const;

    Vector3 direction;
    float exponent;
    float cutoff;
};
