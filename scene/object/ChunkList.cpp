// The head of a counted list, checked against what the stream can still hold.
#include "scene/object/ChunkList.h"

bool ChunkList::readHead(std::istream& in, const char* tag, long long smallestRecord, int32_t& count)
{
    count = 0;
    if (!Chunk::readTag(in, tag))
        return false;
    if (!Chunk::readInt(in, count))
        return false;
    return count <= 0 || Chunk::fits(in, count, smallestRecord);
}

bool ChunkList::writeHead(std::ostream& out, const char* tag, int32_t count)
{
    Chunk::writeTag(out, tag);
    return Chunk::writeInt(out, count);
}
