// Height-map terrain on a regular grid (the TERA chunk): height and normal lookup anywhere, and patches drawn where the camera sees them.
#pragma once

#include "math/Vector3.h"
#include "scene/DrawableObject.h"
#include "scene/TerrainQuad.h"
#include "scene/TerrainQuadPVS.h"
#include "scene/VertexArray.h"

#include <cstdint>
#include <istream>
#include <ostream>
#include <vector>

class Camera;
class Frustum;

// TERA body, little-endian, after the four tag bytes:
//   name            the NamedObject record: i16 length n, then n bytes
//   columns         i32, grid points along x, 2 to MAX_SIDE
//   rows            i32, grid points along z, 2 to MAX_SIDE
//   origin          3 x f32, where grid point (0, 0) stands; its y is added to every height
//   spacing         2 x f32, distance between grid points along x, then along z; finite and above 0
//   texture scale   f32, texture repeats per world unit (u = x * scale, v = z * scale); finite
//   heights         columns x rows f32, row by row (z outer, x inner); all finite
// The counts are checked against what the stream still holds before anything is allocated.
class Terrain : public DrawableObject {
public:
    // A million grid points at most: more than any scene needs, and a bound on what a file can make us build.
    static constexpr int MAX_SIDE = 1025;
    // Cells per side of a drawn patch unless buildPatches is told otherwise.
    static constexpr int DEFAULT_PATCH_CELLS = 16;
    // The client arrays the terrain is drawn with: positions, normals, texture coordinates on both units.
    static constexpr int DRAW_ARRAYS =
        VertexArray::POSITIONS | VertexArray::NORMALS | VertexArray::TEXCOORDS | VertexArray::TEXCOORDS_UNIT1;

    Terrain();
    explicit Terrain(const char* name);
    ~Terrain() override;
    Terrain(const Terrain&) = delete;
    Terrain& operator=(const Terrain&) = delete;

    // A flat grid at the origin's height; false (and left as it was) for sizes or spacings the chunk refuses.
    bool create(int columns, int rows, const Vector3& origin, float spacingX, float spacingZ, float textureScale);
    // Back to no grid at all.
    void destroy();

    // A file holding one TERA chunk. Only an empty terrain loads; a failed load leaves it empty.
    bool load(const char* file);
    bool load(std::istream& in) override;
    bool save(const char* file);
    bool save(std::ostream& out) override;

    bool isEmpty() const { return heights.empty(); }
    int getColumns() const { return columns; }
    int getRows() const { return rows; }
    const Vector3& getOrigin() const { return origin; }
    float getSpacingX() const { return spacingX; }
    float getSpacingZ() const { return spacingZ; }
    float getTextureScale() const { return textureScale; }

    // The stored height of a grid point, the origin's y not added; indices are clamped to the grid.
    float getHeight(int column, int row) const;
    void setHeight(int column, int row, float height);
    // World position of a grid point.
    Vector3 gridPoint(int column, int row) const;
    // Unit normal at a grid point from the neighbouring heights (one-sided along the edges).
    Vector3 gridNormal(int column, int row) const;

    // World height of the surface above (x, z), bilinear between the four grid points around it;
    // outside the grid the nearest edge point's value. 0 for an empty terrain.
    float heightAt(float x, float z) const;
    // Unit surface normal there, the four grid normals blended the same way; straight up when empty.
    Vector3 normalAt(float x, float z) const;

    // The quadtree of patches of at most patchCells cells a side, each with its own block of
    // vertices (the grid points along a patch's edges are repeated in its neighbour's block) and
    // its range of indices, and the visible list sized for every patch: all the memory drawing
    // will use. Client arrays send GL the span of vertices a call's indices cover, so a patch
    // that names only its own block costs only its own vertices.
    bool buildPatches(int patchCells = DEFAULT_PATCH_CELLS);
    const TerrainQuad* getQuadTree() const { return quadTree; }
    int getPatchCount() const { return patchCount; }
    const VertexArray& getVertices() const { return vertices; }
    const std::vector<uint32_t>& getIndices() const { return indices; }

    // Fills the visible list from the frustum, every patch fine, and returns how many patches it holds.
    int cull(const Frustum& frustum);
    // The same, patches lying wholly beyond coarseBeyond from the eye listed coarse.
    int cull(const Frustum& frustum, const Vector3& eye, float coarseBeyond);
    const TerrainQuadPVS& getVisible() const { return visible; }
    // How far off patches are drawn at every other grid point; never, unless set. A coarse patch
    // hangs a curtain from its edges, so the slivers where it meets a fine one show ground, not water.
    void setCoarseDistance(float distance) { coarseDistance = distance; }
    float getCoarseDistance() const { return coarseDistance; }
    // Culls against the camera's frustum and draws the visible patches with whatever material is bound.
    void draw(const Camera& camera);

private:
    bool validShape(int columns, int rows, const Vector3& origin, float spacingX, float spacingZ,
                    float textureScale) const;
    bool readHeights(std::istream& in, int count);
    // Grid coordinates of (x, z), clamped to the grid: cell index and fraction along each axis.
    void locate(float x, float z, int& column, int& row, float& fx, float& fz) const;
    void calcLimits();
    void releasePatches();

    int columns;
    int rows;
    Vector3 origin;
    float spacingX;
    float spacingZ;
    float textureScale;
    std::vector<float> heights;

    VertexArray vertices;
    std::vector<uint32_t> indices;
    TerrainQuad* quadTree;
    int patchCount;
    float coarseDistance;
    TerrainQuadPVS visible;
};
