// LightRest: a scene's own lights share a name prefix, so the strangers are the rest.
#include "effects/LightRest.h"

#include "scene/Light.h"
#include "scene/LightMgr.h"

#include <cstring>

bool LightRest::remembers(const char* name) const
{
    for (int i = 0; i < count; ++i)
        if (names[i] == name)
            return true;
    return false;
}

void LightRest::dim(const char* ownPrefix)
{
    LightMgr* lights = LightMgr::getHandle();
    const size_t length = std::strlen(ownPrefix);
    for (int i = 0; lights->getLight(i); ++i) {
        Light* light = lights->getLight(i);
        const char* name = light->getName() ? light->getName() : "";
        if (!light->isOn() || std::strncmp(name, ownPrefix, length) == 0)
            continue;
        if (!remembers(name)) {
            if (count == CAPACITY)
                continue;
            names[count++] = name;
        }
        light->turnOff();
    }
}

void LightRest::restore()
{
    LightMgr* lights = LightMgr::getHandle();
    for (int i = 0; i < count; ++i) {
        Light* light = lights->find(names[i].c_str());
        if (light)
            light->turnOn();
        names[i].clear();
    }
    count = 0;
}
