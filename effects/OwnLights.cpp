// OwnLights: the other lights switched off for the stretch, kept in a fixed array so nothing is allocated per frame.
#include "effects/OwnLights.h"

#include "scene/Light.h"
#include "scene/LightMgr.h"

#include <cstring>

namespace {

bool named(const Light& light, const char* const* names)
{
    for (const char* const* name = names; *name; ++name)
        if (light.getName() && std::strcmp(light.getName(), *name) == 0)
            return true;
    return false;
}

}  // namespace

OwnLights::OwnLights(const char* const* names) : others(), silenced(0)
{
    LightMgr* lights = LightMgr::getHandle();
    for (int i = 0; i < lights->getNumLights() && silenced < MOST_OTHERS; ++i) {
        Light* light = lights->getLight(i);
        if (!light || !light->isOn() || named(*light, names))
            continue;
        light->turnOff();
        others[silenced++] = light;
    }
}

OwnLights::~OwnLights()
{
    for (int i = 0; i < silenced; ++i)
        others[i]->turnOn();
}
