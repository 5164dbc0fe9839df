// One node of the terrain's quadtree: a box over a block of grid cells, four children or, at a leaf, one drawn patch.
#pragma once

#include "scene/BoundingBox.h"
#include "scene/Vertex.h"

#include <cstdint>
#include <vector>

class Frustum;
class Terrain;
class TerrainQuadPVS;

class TerrainQuad {
public:
    enum { CHILD_COUNT = 4 };
    // A patch is drawn at every grid point, or far off at every other one.
    enum Level { FINE = 0, COARSE = 1, LEVELS = 2 };

    // Where a patch's triangles lie in the terrain's index array at each level.
    struct Range {
        uint32_t first;
        uint32_t count;
    };

    TerrainQuad();
    ~TerrainQuad();
    TerrainQuad(const TerrainQuad&) = delete;
    TerrainQuad& operator=(const TerrainQuad&) = delete;

    // Covers the cells [column0, column1) x [row0, row1), splitting in halves until neither side is
    // longer than patchCells. Each leaf appends its own block of grid points to vertices and its
    // triangles at each level to that level's indices, so a patch's triangles name only its block
    // and the leaves' ranges follow one another in walk order: neighbouring patches at one level draw
    // as one run over exactly the vertices they use. Returns the leaf count.
    int build(const Terrain& terrain, int column0, int row0, int column1, int row1, int patchCells,
              std::vector<Vertex>& vertices, std::vector<uint32_t> (&indices)[LEVELS]);
    // Moves every leaf's ranges at a level by offset, once the levels' indices are joined in one array.
    void shift(Level level, uint32_t offset);

    bool isLeaf() const { return children[0] == nullptr; }
    const TerrainQuad* getChild(int i) const { return children[i]; }
    // Encloses every grid point of the node, heights included.
    const BoundingBox& getBox() const { return box; }
    const Range& getRange(Level level) const { return ranges[level]; }

    // Adds the leaves below this node that the frustum may see, in walk order, each at the level its
    // distance from the eye asks for: coarse when its box lies wholly beyond coarseBeyond. A node wholly
    // inside hands over all its leaves without testing them one by one.
    void walk(const Frustum& frustum, const Vector3& eye, float coarseBeyond, TerrainQuadPVS& visible) const;
    void addLeaves(const Vector3& eye, float coarseBeyond, TerrainQuadPVS& visible) const;

private:
    void buildLeaf(const Terrain& terrain, int column0, int row0, int column1, int row1, std::vector<Vertex>& vertices,
                   std::vector<uint32_t> (&indices)[LEVELS]);
    // Curtains hanging from a coarse patch's four edges: lowered copies of its edge points join the block.
    static void addSkirts(uint32_t block, uint32_t stride, int column0, int row0, const std::vector<int>& xs,
                          const std::vector<int>& zs, std::vector<Vertex>& vertices, std::vector<uint32_t>& out);

    BoundingBox box;
    TerrainQuad* children[CHILD_COUNT];
    Range ranges[LEVELS];
};
