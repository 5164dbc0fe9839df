// Height-map terrain: the TERA chunk, bilinear lookups clamped at the edges, and the patch arrays it is drawn from.
#include "scene/Terrain.h"

#include "scene/Camera.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const char* const TAG = "TERA";

bool isFinite(float v)
{
    return std::isfinite(v);
}

// Grid coordinate of a world coordinate along one axis, clamped to [0, points - 1]: the cell index
// and the fraction across it. A NaN lands on the first point.
void axis(float world, float start, float spacing, int points, int& cell, float& fraction)
{
    float at = (world - start) / spacing;
    const int last = points - 1;
    if (!(at > 0.0f))
        at = 0.0f;
    if (at >= static_cast<float>(last)) {
        cell = last - 1;
        fraction = 1.0f;
        return;
    }
    cell = std::min(static_cast<int>(at), last - 1);
    fraction = at - static_cast<float>(cell);
}

}  // namespace

Terrain::Terrain()
    : columns(0), rows(0), spacingX(1.0f), spacingZ(1.0f), textureScale(1.0f), quadTree(nullptr), patchCount(0),
      coarseDistance(std::numeric_limits<float>::infinity())
{
}

Terrain::Terrain(const char* name)
    : DrawableObject(name), columns(0), rows(0), spacingX(1.0f), spacingZ(1.0f), textureScale(1.0f), quadTree(nullptr),
      patchCount(0), coarseDistance(std::numeric_limits<float>::infinity())
{
}

Terrain::~Terrain()
{
    releasePatches();
}

bool Terrain::validShape(int c, int r, const Vector3& o, float sx, float sz, float scale) const
{
    if (c < 2 || r < 2 || c > MAX_SIDE || r > MAX_SIDE)
        return false;
    if (!isFinite(o.x) || !isFinite(o.y) || !isFinite(o.z) || !isFinite(scale))
        return false;
    return isFinite(sx) && isFinite(sz) && sx > 0.0f && sz > 0.0f;
}

bool Terrain::create(int c, int r, const Vector3& o, float sx, float sz, float scale)
{
    if (!validShape(c, r, o, sx, sz, scale))
        return false;
    destroy();
    columns = c;
    rows = r;
    origin = o;
    spacingX = sx;
    spacingZ = sz;
    textureScale = scale;
    heights.assign(static_cast<size_t>(c) * static_cast<size_t>(r), 0.0f);
    calcLimits();
    return true;
}

void Terrain::destroy()
{
    releasePatches();
    heights.clear();
    heights.shrink_to_fit();
    columns = 0;
    rows = 0;
}

void Terrain::releasePatches()
{
    delete quadTree;
    quadTree = nullptr;
    patchCount = 0;
    vertices.create(0);
    indices.clear();
    indices.shrink_to_fit();
    visible.reserve(0);
}

bool Terrain::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool Terrain::save(const char* file)
{
    return ChunkFile::save(*this, file);
}

bool Terrain::load(std::istream& in)
{
    if (!isEmpty() || !Chunk::readTag(in, TAG) || !NamedObject::load(in))
        return false;
    int32_t c = 0;
    int32_t r = 0;
    float values[6];
    if (!Chunk::readInt(in, c) || !Chunk::readInt(in, r) || !Chunk::readFloats(in, values, 6))
        return false;
    const Vector3 o(values[0], values[1], values[2]);
    if (!validShape(c, r, o, values[3], values[4], values[5]))
        return false;
    const int count = c * r;
    if (!Chunk::fits(in, count, 4) || !readHeights(in, count))
        return false;
    columns = c;
    rows = r;
    origin = o;
    spacingX = values[3];
    spacingZ = values[4];
    textureScale = values[5];
    calcLimits();
    return true;
}

bool Terrain::readHeights(std::istream& in, int count)
{
    std::vector<float> read(static_cast<size_t>(count));
    if (!Chunk::readFloats(in, read.data(), read.size()))
        return false;
    if (!std::all_of(read.begin(), read.end(), isFinite))
        return false;
    heights.swap(read);
    return true;
}

bool Terrain::save(std::ostream& out)
{
    if (isEmpty() || !Chunk::writeTag(out, TAG) || !NamedObject::save(out))
        return false;
    const float values[6] = {origin.x, origin.y, origin.z, spacingX, spacingZ, textureScale};
    if (!Chunk::writeInt(out, columns) || !Chunk::writeInt(out, rows) || !Chunk::writeFloats(out, values, 6))
        return false;
    return Chunk::writeFloats(out, heights.data(), heights.size());
}

float Terrain::getHeight(int column, int row) const
{
    if (isEmpty())
        return 0.0f;
    column = std::clamp(column, 0, columns - 1);
    row = std::clamp(row, 0, rows - 1);
    return heights[static_cast<size_t>(row) * columns + column];
}

void Terrain::setHeight(int column, int row, float height)
{
    if (column < 0 || row < 0 || column >= columns || row >= rows)
        return;
    heights[static_cast<size_t>(row) * columns + column] = height;
}

Vector3 Terrain::gridPoint(int column, int row) const
{
    return Vector3(origin.x + column * spacingX, origin.y + getHeight(column, row), origin.z + row * spacingZ);
}

Vector3 Terrain::gridNormal(int column, int row) const
{
    if (isEmpty())
        return Vector3(0.0f, 1.0f, 0.0f);
    column = std::clamp(column, 0, columns - 1);
    row = std::clamp(row, 0, rows - 1);
    const int left = std::max(column - 1, 0);
    const int right = std::min(column + 1, columns - 1);
    const int near = std::max(row - 1, 0);
    const int far = std::min(row + 1, rows - 1);
    const float slopeX = (getHeight(right, row) - getHeight(left, row)) / ((right - left) * spacingX);
    const float slopeZ = (getHeight(column, far) - getHeight(column, near)) / ((far - near) * spacingZ);
    return Vector3(-slopeX, 1.0f, -slopeZ).normalize();
}

void Terrain::locate(float x, float z, int& column, int& row, float& fx, float& fz) const
{
    axis(x, origin.x, spacingX, columns, column, fx);
    axis(z, origin.z, spacingZ, rows, row, fz);
}

float Terrain::heightAt(float x, float z) const
{
    if (isEmpty())
        return 0.0f;
    int c = 0;
    int r = 0;
    float fx = 0.0f;
    float fz = 0.0f;
    locate(x, z, c, r, fx, fz);
    const float near = getHeight(c, r) + (getHeight(c + 1, r) - getHeight(c, r)) * fx;
    const float far = getHeight(c, r + 1) + (getHeight(c + 1, r + 1) - getHeight(c, r + 1)) * fx;
    return origin.y + near + (far - near) * fz;
}

Vector3 Terrain::normalAt(float x, float z) const
{
    if (isEmpty())
        return Vector3(0.0f, 1.0f, 0.0f);
    int c = 0;
    int r = 0;
    float fx = 0.0f;
    float fz = 0.0f;
    locate(x, z, c, r, fx, fz);
    const Vector3 near = gridNormal(c, r) * (1.0f - fx) + gridNormal(c + 1, r) * fx;
    const Vector3 far = gridNormal(c, r + 1) * (1.0f - fx) + gridNormal(c + 1, r + 1) * fx;
    return (near * (1.0f - fz) + far * fz).normalize();
}

void Terrain::calcLimits()
{
    if (isEmpty())
        return;
    const auto range = std::minmax_element(heights.begin(), heights.end());
    const Vector3 low(origin.x, origin.y + *range.first, origin.z);
    const Vector3 high(origin.x + (columns - 1) * spacingX, origin.y + *range.second, origin.z + (rows - 1) * spacingZ);
    limits.create(low, high);
}

bool Terrain::buildPatches(int patchCells)
{
    if (isEmpty() || patchCells < 1)
        return false;
    releasePatches();
    std::vector<Vertex> blocks;
    std::vector<uint32_t> levels[TerrainQuad::LEVELS];
    quadTree = new TerrainQuad();
    patchCount = quadTree->build(*this, 0, 0, columns - 1, rows - 1, patchCells, blocks, levels);
    vertices.create(static_cast<int>(blocks.size()));
    for (const Vertex& v : blocks)
        vertices.addVertex(v);
    // One index array: every fine range, then every coarse one.
    quadTree->shift(TerrainQuad::COARSE, static_cast<uint32_t>(levels[TerrainQuad::FINE].size()));
    indices.reserve(levels[TerrainQuad::FINE].size() + levels[TerrainQuad::COARSE].size());
    for (const std::vector<uint32_t>& level : levels)
        indices.insert(indices.end(), level.begin(), level.end());
    visible.reserve(patchCount);
    return true;
}

int Terrain::cull(const Frustum& frustum)
{
    return cull(frustum, Vector3(), std::numeric_limits<float>::infinity());
}

int Terrain::cull(const Frustum& frustum, const Vector3& eye, float coarseBeyond)
{
    visible.clear();
    if (quadTree)
        quadTree->walk(frustum, eye, coarseBeyond, visible);
    return visible.getCount();
}

void Terrain::draw(const Camera& camera)
{
    if (cull(camera.getFrustum(), camera.getPosition(), coarseDistance) == 0)
        return;
    vertices.upload(DRAW_ARRAYS);
    visible.draw(indices.data());
    vertices.unload(DRAW_ARRAYS);
}
