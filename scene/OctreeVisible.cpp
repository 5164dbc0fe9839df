// OctreeVisible: the empty persistence hooks of a PVS entry.
#include "scene/OctreeVisible.h"

#include "scene/object/Chunk.h"

bool OctreeVisible::load(std::istream& in)
{
    return Chunk::good(in);
}

bool OctreeVisible::save(std::ostream& out) const
{
    return Chunk::good(out);
}
