// The visible patch list: filled by the quadtree walk, drawn in runs of neighbouring index ranges.
#include "scene/TerrainQuadPVS.h"

#include <GL/gl.h>

TerrainQuadPVS::TerrainQuadPVS() : count(0) {}

void TerrainQuadPVS::reserve(int capacity)
{
    entries.assign(static_cast<size_t>(capacity > 0 ? capacity : 0), Entry{nullptr, TerrainQuad::FINE});
    count = 0;
}

bool TerrainQuadPVS::add(const TerrainQuad* patch, TerrainQuad::Level level)
{
    if (count >= getCapacity())
        return false;
    entries[static_cast<size_t>(count++)] = Entry{patch, level};
    return true;
}

int TerrainQuadPVS::getCount(TerrainQuad::Level level) const
{
    int listed = 0;
    for (int i = 0; i < count; ++i)
        listed += get(i).level == level ? 1 : 0;
    return listed;
}

long long TerrainQuadPVS::getTriangleCount() const
{
    long long indices = 0;
    for (int i = 0; i < count; ++i)
        indices += range(i).count;
    return indices / 3;
}

void TerrainQuadPVS::draw(const uint32_t* indices) const
{
    int i = 0;
    while (i < count) {
        const uint32_t first = range(i).first;
        uint32_t end = first + range(i).count;
        for (++i; i < count && range(i).first == end; ++i)
            end += range(i).count;
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(end - first), GL_UNSIGNED_INT, indices + first);
    }
}
