// LightRest: a scene's own lights share a name prefix, so the strangers are the rest.
#include "effects/LightRest.h"

#include "scene/Light.h"
#include "scene/LightMgr.h"

#include <cstring>

LightRest::LightRest() : dimmed(), count(0) {}

void LightRest::dim(const char* ownPrefix)
{
    restore();
    LightMgr* lights = LightMgr::getHandle();
    const size_t length = std::strlen(ownPrefix);
    for (int i = 0; lights->getLight(i) && count < CAPACITY; ++i) {
        Light* light = lights->getLight(i);
        const char* name = light->getName();
        if (!light->isOn() || (name && std::strncmp(name, ownPrefix, length) == 0))
            continue;
        light->turnOff();
        dimmed[count++] = light;
    }
}

void LightRest::restore()
{
    for (int i = 0; i < count; ++i) {
        dimmed[i]->turnOn();
        dimmed[i] = nullptr;
    }
    count = 0;
}
