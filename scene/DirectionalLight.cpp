// The DLIT chunk and the direction sent as a position with w = 0.
#include "scene/DirectionalLight.h"

#include "scene/object/Chunk.h"

bool DirectionalLight::load(std::istream& in)
{
    if (!Chunk::readTag(in, "DLIT"))
        return false;
    return Light::load(in);
}

bool DirectionalLight::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, "DLIT"))
        return false;
    return Light::save(out);
}

void DirectionalLight::reorient(const Camera&)
{
    sendPosition(0.0f);
}

void DirectionalLight::uploadStates()
{
    Light::uploadStates();
    sendPosition(0.0f);
}
