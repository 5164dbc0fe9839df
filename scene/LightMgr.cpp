// Light registry: a singly linked list, newest first; mixed DLIT/SLIT children chosen by peeking.
#include "scene/LightMgr.h"

#include "scene/DirectionalLight.h"
#include "scene/SpotLight.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "scene/object/ChunkList.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <cstring>

namespace {
// Tag, empty name and the common body: the least a light record can take.
const int smallestLightRecord = 4 + 2 + 73;

Light* createLight(const char tag[4])
{
    if (std::strncmp(tag, "DLIT", 4) == 0)
        return new DirectionalLight();
    if (std::strncmp(tag, "SLIT", 4) == 0)
        return new SpotLight();
    return nullptr;
}

// Peeks at the next record's tag and builds the light that reads it; null for any other tag.
Light* makeLight(std::istream& in)
{
    char tag[4];
    if (!Chunk::peekTag(in, tag))
        return nullptr;
    return createLight(tag);
}
}  // namespace

LightMgr* LightMgr::getHandle()
{
    static LightMgr instance;
    return &instance;
}

LightMgr::LightMgr() : lightingOn(0), numLights(0), head(nullptr) {}

LightMgr::~LightMgr()
{
    shutdown();
}

void LightMgr::initiate()
{
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 1);
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
    turnLightingOn();
}

void LightMgr::shutdown()
{
    while (head) {
        Node* next = head->next;
        head->light->shutdown();
        delete head->light;
        delete head;
        head = next;
    }
    numLights = 0;
}

void LightMgr::turnLightingOn()
{
    if (lightingOn)
        return;
    lightingOn = 1;
    glEnable(GL_LIGHTING);
}

void LightMgr::turnLightingOff()
{
    if (!lightingOn)
        return;
    lightingOn = 0;
    glDisable(GL_LIGHTING);
}

void LightMgr::toggleLighting()
{
    if (lightingOn)
        turnLightingOff();
    else
        turnLightingOn();
}

void LightMgr::reorient(const Camera& camera)
{
    for (Node* node = head; node; node = node->next)
        if (node->light->isOn())
            node->light->reorient(camera);
}

void LightMgr::link(Light* light)
{
    head = new Node{light, head};
    ++numLights;
}

bool LightMgr::add(Light* light)
{
    if (!light)
        return false;
    link(light);
    light->initiate();
    return true;
}

bool LightMgr::remove(const char* name)
{
    Node** place = &head;
    while (*place && !(*(*place)->light == name))
        place = &(*place)->next;
    Node* found = *place;
    if (!found)
        return false;
    *place = found->next;
    found->light->shutdown();
    delete found->light;
    delete found;
    --numLights;
    return true;
}

Light* LightMgr::find(const char* name) const
{
    for (Node* node = head; node; node = node->next)
        if (*node->light == name)
            return node->light;
    return nullptr;
}

Light* LightMgr::getLight(int i) const
{
    Node* node = head;
    for (int k = 0; node && k < i; ++k)
        node = node->next;
    return node && i >= 0 ? node->light : nullptr;
}

bool LightMgr::load(std::istream& in)
{
    int32_t count = 0;
    if (!ChunkList::readHead(in, "LMGR", count))
        return false;
    numLights = 0;
    return ChunkList::readItems(in, count, smallestLightRecord, makeLight, [this](Light* light) { link(light); });
}

bool LightMgr::save(std::ostream& out)
{
    // The count says how many records follow, so it never exceeds the list.
    int written = 0;
    for (Node* node = head; node && written < numLights; node = node->next)
        ++written;
    ChunkList::writeHead(out, "LMGR", written);
    Node* node = head;
    for (int i = 0; i < written; ++i, node = node->next)
        if (!node->light->save(out))
            return false;
    return Chunk::good(out);
}

bool LightMgr::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool LightMgr::save(const char* file)
{
    return ChunkFile::save(*this, file);
}
