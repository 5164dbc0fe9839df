// Field-by-field reading and writing of one vertex record.
#include "scene/Vertex.h"

#include "scene/object/Chunk.h"

bool Vertex::load(std::istream& in)
{
    float values[8];
    if (!Chunk::readFloats(in, values, 8))
        return false;
    position.assign(values[0], values[1], values[2]);
    normal.assign(values[3], values[4], values[5]);
    uv.assign(values[6], values[7]);
    return true;
}

bool Vertex::save(std::ostream& out) const
{
    const float values[8] = {position.x, position.y, position.z, normal.x, normal.y, normal.z, uv.x, uv.y};
    return Chunk::writeFloats(out, values, 8);
}
