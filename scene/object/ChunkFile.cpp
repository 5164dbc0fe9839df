// A null name is refused here rather than handed to the stream, which would not survive it.
#include "scene/object/ChunkFile.h"

bool ChunkFile::openIn(const char* file, std::ifstream& in)
{
    if (!file)
        return false;
    in.open(file, std::ios::binary);
    return in.is_open();
}

bool ChunkFile::readIn(const char* file, std::stringstream& in)
{
    std::ifstream disk;
    if (!openIn(file, disk))
        return false;
    // An empty or unreadable file leaves the stream failed: the first read says so.
    in << disk.rdbuf();
    return true;
}

bool ChunkFile::openOut(const char* file, std::ofstream& out)
{
    if (!file)
        return false;
    out.open(file, std::ios::binary | std::ios::trunc);
    return out.is_open();
}
