// The material registry: a list of owned materials, newest first, read and written as MMGR.
#include "texture/MaterialMgr.h"

#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "scene/object/ChunkList.h"
#include "texture/Material.h"
#include "texture/MulTextureMaterial.h"
#include "texture/TextureMaterial.h"

#include <cstdio>
#include <cstring>

namespace {

// Tag, empty name, flags, blend mode, four colours and shininess: the smallest child.
const long long smallestChild = 4 + 2 + 2 + 4 + 64 + 4;

Material* materialFor(const char tag[4])
{
    if (std::strncmp(tag, "CMAT", 4) == 0)
        return new Material();
    if (std::strncmp(tag, "TMAT", 4) == 0)
        return new TextureMaterial();
    if (std::strncmp(tag, "MMAT", 4) == 0)
        return new MulTextureMaterial();
    return nullptr;
}

}  // namespace

MaterialMgr* MaterialMgr::getHandle()
{
    static MaterialMgr instance;
    return &instance;
}

MaterialMgr::MaterialMgr() : count(0), head(nullptr) {}

MaterialMgr::~MaterialMgr()
{
    shutdown();
}

bool MaterialMgr::add(Material* m)
{
    if (!m)
        return false;
    head = new Node{m, head};
    ++count;
    return true;
}

bool MaterialMgr::remove(const char* name)
{
    for (Node** link = &head; *link; link = &(*link)->next) {
        if (!(*(*link)->material == name))
            continue;
        Node* node = *link;
        *link = node->next;
        delete node->material;
        delete node;
        --count;
        return true;
    }
    return false;
}

Material* MaterialMgr::find(const char* name)
{
    for (Node* node = head; node; node = node->next)
        if (*node->material == name)
            return node->material;
    return nullptr;
}

const Material* MaterialMgr::find(const char* name) const
{
    return const_cast<MaterialMgr*>(this)->find(name);
}

void MaterialMgr::initiate() {}

void MaterialMgr::shutdown()
{
    while (head) {
        Node* node = head;
        head = node->next;
        delete node->material;
        delete node;
    }
    count = 0;
}

bool MaterialMgr::load(std::istream& in)
{
    int32_t n = 0;
    if (!ChunkList::readHead(in, "MMGR", n))
        return false;
    // The count covers only this load; older materials stay in the list.
    count = 0;
    auto make = [](std::istream& s) -> Material* {
        char tag[4];
        return Chunk::peekTag(s, tag) ? materialFor(tag) : nullptr;
    };
    return ChunkList::readItems(in, n, smallestChild, make, [this](Material* m) { add(m); });
}

bool MaterialMgr::save(std::ostream& out)
{
    Chunk::writeTag(out, "MMGR");
    Chunk::writeInt(out, count);
    for (Node* node = head; node; node = node->next) {
        if (!node->material->save(out)) {
            std::fputs("COULDN'T SAVE MATERIAL\n", stdout);
            return false;
        }
    }
    return true;
}

bool MaterialMgr::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool MaterialMgr::save(const char* file)
{
    return ChunkFile::save(*this, file);
}
