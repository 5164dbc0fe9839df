// PVS: list upkeep for the potentially visible set.
#include "scene/PVS.h"

#include "scene/OctreeVisible.h"
#include "scene/object/Chunk.h"

PVS::~PVS()
{
    clear();
}

OctreeVisible* PVS::add()
{
    OctreeVisible* entry = new OctreeVisible();
    entry->setNext(first);
    if (first)
        first->setPrev(entry);
    first = entry;
    return entry;
}

void PVS::clear()
{
    while (first) {
        OctreeVisible* next = first->getNext();
        delete first;
        first = next;
    }
}

OctreeVisible* PVS::findNode(const OctreeNode* node) const
{
    for (OctreeVisible* e = first; e; e = e->getNext())
        if (e->getNode() == node)
            return e;
    return nullptr;
}

bool PVS::contains(const OctreeVisible* entry) const
{
    for (const OctreeVisible* e = first; e; e = e->getNext())
        if (e == entry)
            return true;
    return false;
}

void PVS::destroy(OctreeVisible* entry)
{
    if (!entry || !contains(entry))
        return;
    if (entry->getPrev())
        entry->getPrev()->setNext(entry->getNext());
    else
        first = entry->getNext();
    if (entry->getNext())
        entry->getNext()->setPrev(entry->getPrev());
    delete entry;
}

void PVS::destroy(const OctreeNode* node)
{
    destroy(findNode(node));
}

OctreeVisible* PVS::getNext(const OctreeVisible* entry) const
{
    return entry ? entry->getNext() : nullptr;
}

bool PVS::load(std::istream& in)
{
    return Chunk::good(in);
}

bool PVS::save(std::ostream& out) const
{
    return Chunk::good(out);
}
