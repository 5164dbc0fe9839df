// The SLIT chunk and the spot states.
#include "scene/SpotLight.h"

#include "scene/object/Chunk.h"

#include <GL/gl.h>

SpotLight::SpotLight() : direction(0.0f, 0.0f, -1.0f), exponent(0.0f), cutoff(180.0f) {}

SpotLight::SpotLight(const char* name) : SpotLight()
{
    setName(name);
}

bool SpotLight::load(std::istream& in)
{
    if (!Chunk::readTag(in, "SLIT"))
        return false;
    if (!Light::load(in))
        return false;
    float values[5];
    if (!Chunk::readFloats(in, values, 5))
        return false;
    direction.assign(values[0], values[1], values[2]);
    exponent = values[3];
    cutoff = values[4];
    return Chunk::good(in);
}

bool SpotLight::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, "SLIT"))
        return false;
    if (!Light::save(out))
        return false;
    const float values[5] = {direction.x, direction.y, direction.z, exponent, cutoff};
    Chunk::writeFloats(out, values, 5);
    return Chunk::good(out);
}

void SpotLight::lookAt(const Vector3& position_, const Vector3& target)
{
    position = position_;
    direction = target - position_;
}

void SpotLight::sendDirection() const
{
    const float values[3] = {direction.x, direction.y, direction.z};
    glLightfv(static_cast<GLenum>(unit), GL_SPOT_DIRECTION, values);
}

void SpotLight::reorient(const Camera&)
{
    sendPosition(1.0f);
    sendDirection();
}

void SpotLight::uploadStates()
{
    Light::uploadStates();
    sendPosition(1.0f);
    sendDirection();
    glLightf(static_cast<GLenum>(unit), GL_SPOT_EXPONENT, exponent);
    glLightf(static_cast<GLenum>(unit), GL_SPOT_CUTOFF, cutoff);
}
