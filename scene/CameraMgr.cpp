// Camera registry: a singly linked list, newest first, found by exact name.
#include "scene/CameraMgr.h"

#include "scene/Camera.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "scene/object/ChunkList.h"

namespace {
// Tag, empty name and nine floats: the least a CAM0 record can take.
const int smallestCameraRecord = 4 + 2 + 9 * 4;
}  // namespace

CameraMgr* CameraMgr::getHandle()
{
    static CameraMgr instance;
    return &instance;
}

CameraMgr::CameraMgr() : width(0), height(0), numCameras(0), head(nullptr), active(nullptr) {}

CameraMgr::~CameraMgr()
{
    shutdown();
}

bool CameraMgr::add(Camera* camera)
{
    if (!camera)
        return false;
    if (camera->getName() && findNode(camera->getName()))
        return false;
    head = new Node{camera, head};
    ++numCameras;
    if (!active)
        active = head;
    return true;
}

bool CameraMgr::remove(const char* name)
{
    Node** link = &head;
    while (*link && !(*(*link)->camera == name))
        link = &(*link)->next;
    Node* found = *link;
    if (!found)
        return false;
    *link = found->next;
    if (active == found)
        active = nullptr;
    delete found->camera;
    delete found;
    --numCameras;
    return true;
}

CameraMgr::Node* CameraMgr::findNode(const char* name) const
{
    for (Node* node = head; node; node = node->next)
        if (*node->camera == name)
            return node;
    return nullptr;
}

Camera* CameraMgr::find(const char* name) const
{
    Node* node = findNode(name);
    return node ? node->camera : nullptr;
}

bool CameraMgr::activate(Node* node)
{
    if (!node)
        return false;
    if (width > 0 && height > 0)
        node->camera->resize(width, height);
    active = node;
    return true;
}

bool CameraMgr::setActiveCamera(const char* name)
{
    return activate(findNode(name));
}

bool CameraMgr::setActiveCamera(Camera* camera)
{
    Node* node = head;
    while (node && node->camera != camera)
        node = node->next;
    return activate(camera ? node : nullptr);
}

Camera* CameraMgr::getActiveCamera() const
{
    return active ? active->camera : nullptr;
}

bool CameraMgr::onResize(int newWidth, int newHeight)
{
    if (active)
        active->camera->resize(newWidth, newHeight);
    width = newWidth;
    height = newHeight;
    return true;
}

void CameraMgr::initiate() {}

void CameraMgr::shutdown()
{
    while (head) {
        Node* next = head->next;
        delete head->camera;
        delete head;
        head = next;
    }
    numCameras = 0;
    active = nullptr;
}

bool CameraMgr::load(std::istream& in)
{
    int32_t count = 0;
    if (!ChunkList::readHead(in, "CMGR", count))
        return false;
    return ChunkList::readItems(
        in, count, smallestCameraRecord, [](std::istream&) { return new Camera(); },
        [this](Camera* camera) {
            // A name already registered keeps the camera that has it.
            if (!add(camera))
                delete camera;
        });
}

bool CameraMgr::save(std::ostream& out)
{
    ChunkList::writeHead(out, "CMGR", numCameras);
    for (Node* node = head; node; node = node->next)
        if (!node->camera->save(out))
            return false;
    return Chunk::good(out);
}

bool CameraMgr::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool CameraMgr::save(const char* file)
{
    return ChunkFile::save(*this, file);
}
