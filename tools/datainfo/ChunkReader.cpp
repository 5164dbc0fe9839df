// Checked field reading for velmora-data's chunk walk.
#include "ChunkReader.h"

#include "scene/object/Chunk.h"

#include <cstring>
#include <sstream>

ChunkReader::ChunkReader(std::istream& input, std::ostream& output) : in(input), out(output), size(0)
{
    long long here = offset();
    size = here + Chunk::remaining(in);
}

long long ChunkReader::offset()
{
    std::streamoff here = in.tellg();
    return here < 0 ? 0 : static_cast<long long>(here);
}

bool ChunkReader::atEnd()
{
    return Chunk::good(in) && Chunk::remaining(in) == 0;
}

bool ChunkReader::cutShort(const char* what)
{
    std::ostringstream text;
    text << what << " cut short: the file ends at byte " << size;
    return fail(text.str());
}

bool ChunkReader::tag(const char* expected)
{
    long long at = offset();
    char found[4] = {0, 0, 0, 0};
    if (!Chunk::readTag(in, found)) {
        std::string what = std::string("tag ") + expected;
        return cutShort(what.c_str());
    }
    if (std::strncmp(found, expected, 4) == 0)
        return true;
    std::ostringstream text;
    text << "expected tag " << expected << " at byte " << at << ", found ";
    for (char c : found)
        text << (c >= 32 && c < 127 ? c : '?');
    return fail(text.str());
}

bool ChunkReader::peekTag(std::string& next)
{
    char found[4];
    if (Chunk::remaining(in) < 4 || !Chunk::peekTag(in, found))
        return false;
    next.assign(found, 4);
    return true;
}

bool ChunkReader::readInt(int32_t& value, const char* what)
{
    return Chunk::readInt(in, value) || cutShort(what);
}

bool ChunkReader::readShort(int16_t& value, const char* what)
{
    return Chunk::readShort(in, value) || cutShort(what);
}

bool ChunkReader::readByte(uint8_t& value, const char* what)
{
    return Chunk::readByte(in, value) || cutShort(what);
}

bool ChunkReader::readFloats(float* values, int count, const char* what)
{
    return Chunk::readFloats(in, values, static_cast<size_t>(count)) || cutShort(what);
}

bool ChunkReader::readName(std::string& name, const char* what)
{
    int16_t length = 0;
    if (!readShort(length, what))
        return false;
    name.clear();
    if (length <= 0)
        return true;
    if (!Chunk::fits(in, length, 1))
        return cutShort(what);
    name.resize(static_cast<size_t>(length));
    in.read(&name[0], length);
    return Chunk::good(in) || cutShort(what);
}

bool ChunkReader::readCount(int32_t& count, long long itemSize, const char* what)
{
    if (!readInt(count, what))
        return false;
    std::ostringstream text;
    text << what << " " << count;
    if (count < 0)
        return fail(text.str() + " is negative");
    if (!Chunk::fits(in, count, itemSize)) {
        text << " needs at least " << count * itemSize << " bytes, only " << Chunk::remaining(in) << " are left";
        return fail(text.str());
    }
    return true;
}

bool ChunkReader::skip(long long bytes, const char* what)
{
    if (bytes < 0 || !Chunk::fits(in, bytes, 1))
        return cutShort(what);
    in.seekg(bytes, std::ios::cur);
    return Chunk::good(in) || cutShort(what);
}

void ChunkReader::enter(const std::string& chunk)
{
    path.push_back(chunk);
}

void ChunkReader::leave()
{
    if (!path.empty())
        path.pop_back();
}

std::ostream& ChunkReader::line()
{
    for (size_t i = 1; i < path.size(); ++i)
        out << "  ";
    return out;
}

bool ChunkReader::fail(const std::string& what)
{
    if (!problem.empty())
        return false;
    std::string where;
    for (const std::string& part : path)
        where += (where.empty() ? "" : " > ") + part;
    problem = where.empty() ? what : where + ": " + what;
    return false;
}
