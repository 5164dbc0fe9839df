// The terrain's quadtree: built once over the grid, walked against the frustum every frame.
#include "scene/TerrainQuad.h"

#include "scene/Frustum.h"
#include "scene/Terrain.h"
#include "scene/TerrainQuadPVS.h"

namespace {

// How far the curtains under coarse patches hang below their edges.
const float SKIRT_DEPTH = 1.0f;

// Grid lines a level keeps between first and last: every one, or every other one and the last.
std::vector<int> lines(int first, int last, int step)
{
    std::vector<int> kept;
    for (int i = first; i < last; i += step)
        kept.push_back(i);
    kept.push_back(last);
    return kept;
}

}  // namespace

TerrainQuad::TerrainQuad() : children(), ranges() {}

TerrainQuad::~TerrainQuad()
{
    for (TerrainQuad* child : children)
        delete child;
}

int TerrainQuad::build(const Terrain& terrain, int column0, int row0, int column1, int row1, int patchCells,
                       std::vector<Vertex>& vertices, std::vector<uint32_t> (&indices)[LEVELS])
{
    // The box spans the grid points at both ends of the cell range.
    Vector3 low = terrain.gridPoint(column0, row0);
    Vector3 high = terrain.gridPoint(column1, row1);
    high.y = low.y;
    for (int r = row0; r <= row1; ++r) {
        for (int c = column0; c <= column1; ++c) {
            const float y = terrain.gridPoint(c, r).y;
            low.y = y < low.y ? y : low.y;
            high.y = y > high.y ? y : high.y;
        }
    }
    box.create(low, high);

    const bool splitX = column1 - column0 > patchCells;
    const bool splitZ = row1 - row0 > patchCells;
    if (!splitX && !splitZ) {
        buildLeaf(terrain, column0, row0, column1, row1, vertices, indices);
        return 1;
    }
    const int xs[3] = {column0, splitX ? (column0 + column1) / 2 : column1, column1};
    const int zs[3] = {row0, splitZ ? (row0 + row1) / 2 : row1, row1};
    int leaves = 0;
    int next = 0;
    for (int j = 0; j < (splitZ ? 2 : 1); ++j) {
        for (int i = 0; i < (splitX ? 2 : 1); ++i) {
            children[next] = new TerrainQuad();
            leaves += children[next]->build(terrain, xs[i], zs[j], xs[i + 1], zs[j + 1], patchCells, vertices, indices);
            ++next;
        }
    }
    return leaves;
}

void TerrainQuad::buildLeaf(const Terrain& terrain, int column0, int row0, int column1, int row1,
                            std::vector<Vertex>& vertices, std::vector<uint32_t> (&indices)[LEVELS])
{
    const uint32_t block = static_cast<uint32_t>(vertices.size());
    const float scale = terrain.getTextureScale();
    for (int r = row0; r <= row1; ++r) {
        for (int c = column0; c <= column1; ++c) {
            const Vector3 p = terrain.gridPoint(c, r);
            vertices.emplace_back(p, Vector2(p.x * scale, p.z * scale), terrain.gridNormal(c, r));
        }
    }
    const uint32_t stride = static_cast<uint32_t>(column1 - column0 + 1);
    for (int level = FINE; level < LEVELS; ++level) {
        const std::vector<int> xs = lines(column0, column1, level + 1);
        const std::vector<int> zs = lines(row0, row1, level + 1);
        std::vector<uint32_t>& out = indices[level];
        ranges[level].first = static_cast<uint32_t>(out.size());
        // Two triangles a cell, counter-clockwise seen from above.
        for (size_t j = 0; j + 1 < zs.size(); ++j) {
            for (size_t i = 0; i + 1 < xs.size(); ++i) {
                const uint32_t left = static_cast<uint32_t>(xs[i] - column0);
                const uint32_t right = static_cast<uint32_t>(xs[i + 1] - column0);
                const uint32_t near = block + static_cast<uint32_t>(zs[j] - row0) * stride;
                const uint32_t far = block + static_cast<uint32_t>(zs[j + 1] - row0) * stride;
                const uint32_t cell[6] = {near + left, far + left, near + right, near + right, far + left, far + right};
                out.insert(out.end(), cell, cell + 6);
            }
        }
        if (level == COARSE)
            addSkirts(block, stride, column0, row0, xs, zs, vertices, out);
        ranges[level].count = static_cast<uint32_t>(out.size()) - ranges[level].first;
    }
}

void TerrainQuad::addSkirts(uint32_t block, uint32_t stride, int column0, int row0, const std::vector<int>& xs,
                            const std::vector<int>& zs, std::vector<Vertex>& vertices, std::vector<uint32_t>& out)
{
    // Where a coarse patch meets a fine one, the fine edge's extra points leave slivers open; a
    // curtain hanging from each coarse edge fills what shows through them.
    const int lastX = xs.back() - column0;
    const int lastZ = zs.back() - row0;
    const struct {
        bool alongX;
        int fixed;
        Vector3 outward;
    } edges[4] = {{true, 0, Vector3(0.0f, 0.0f, -1.0f)},
                  {true, lastZ, Vector3(0.0f, 0.0f, 1.0f)},
                  {false, 0, Vector3(-1.0f, 0.0f, 0.0f)},
                  {false, lastX, Vector3(1.0f, 0.0f, 0.0f)}};
    for (const auto& edge : edges) {
        const std::vector<int>& along = edge.alongX ? xs : zs;
        const int first = edge.alongX ? column0 : row0;
        // The block's index of the edge point on grid line `line`.
        auto top = [&](int line) {
            const int at = line - first;
            return block + static_cast<uint32_t>(edge.alongX ? edge.fixed * static_cast<int>(stride) + at
                                                             : at * static_cast<int>(stride) + edge.fixed);
        };
        const uint32_t hung = static_cast<uint32_t>(vertices.size());
        for (int line : along) {
            Vertex low = vertices[top(line)];
            low.position.y -= SKIRT_DEPTH;
            vertices.push_back(low);
        }
        for (size_t i = 0; i + 1 < along.size(); ++i) {
            const uint32_t a = top(along[i]);
            const uint32_t b = top(along[i + 1]);
            const uint32_t c = hung + static_cast<uint32_t>(i);
            const uint32_t d = c + 1;
            // Wound to face out of the patch, towards the neighbour it borders.
            const Vector3 normal =
                (vertices[b].position - vertices[a].position).cross(vertices[c].position - vertices[a].position);
            const bool outwards = normal.dot(edge.outward) > 0.0f;
            const uint32_t quad[6] = {a, outwards ? b : c, outwards ? c : b, b, outwards ? d : c, outwards ? c : d};
            out.insert(out.end(), quad, quad + 6);
        }
    }
}

void TerrainQuad::shift(Level level, uint32_t offset)
{
    if (isLeaf()) {
        ranges[level].first += offset;
        return;
    }
    for (TerrainQuad* child : children) {
        if (child)
            child->shift(level, offset);
    }
}

void TerrainQuad::walk(const Frustum& frustum, const Vector3& eye, float coarseBeyond, TerrainQuadPVS& visible) const
{
    const int where = frustum.getBoxLocation(box);
    if (where == Frustum::OUTSIDE)
        return;
    if (where == Frustum::INSIDE || isLeaf()) {
        addLeaves(eye, coarseBeyond, visible);
        return;
    }
    for (const TerrainQuad* child : children) {
        if (child)
            child->walk(frustum, eye, coarseBeyond, visible);
    }
}

void TerrainQuad::addLeaves(const Vector3& eye, float coarseBeyond, TerrainQuadPVS& visible) const
{
    if (isLeaf()) {
        const bool far = eye.distance(box.getCentre()) - box.getRadius() > coarseBeyond;
        visible.add(this, far ? COARSE : FINE);
        return;
    }
    for (const TerrainQuad* child : children) {
        if (child)
            child->addLeaves(eye, coarseBeyond, visible);
    }
}
