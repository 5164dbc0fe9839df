// The head of a counted list: its tag and count.
#include "scene/object/ChunkList.h"

bool ChunkList::readHead(std::istream& in, const char* tag, int32_t& count)
{
    count = 0;
    if (!Chunk::readTag(in, tag))
        return false;
    return Chunk::readInt(in, count);
}

bool ChunkList::writeHead(std::ostream& out, const char* tag, int32_t count)
{
    Chunk::writeTag(out, tag);
    return Chunk::writeInt(out, count);
}
