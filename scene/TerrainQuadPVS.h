// The terrain patches visible this frame: a list sized once for every patch, filled by the quadtree walk and drawn.
#pragma once

#include "scene/TerrainQuad.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class TerrainQuadPVS {
public:
    struct Entry {
        const TerrainQuad* patch;
        TerrainQuad::Level level;
    };

    TerrainQuadPVS();

    // Room for that many patches; the only allocation the list ever makes.
    void reserve(int capacity);
    void clear() { count = 0; }
    // False when the list is full.
    bool add(const TerrainQuad* patch, TerrainQuad::Level level);

    int getCount() const { return count; }
    int getCapacity() const { return static_cast<int>(entries.size()); }
    const Entry& get(int i) const { return entries[static_cast<size_t>(i)]; }
    // Patches listed at a level.
    int getCount(TerrainQuad::Level level) const;
    // Triangles of the listed patches at their levels.
    long long getTriangleCount() const;

    // Draws the listed patches' triangles from the index array with the client arrays already set;
    // patches whose ranges follow one another go to GL as one call.
    void draw(const uint32_t* indices) const;

private:
    const TerrainQuad::Range& range(int i) const { return get(i).patch->getRange(get(i).level); }

    std::vector<Entry> entries;
    int count;
};
