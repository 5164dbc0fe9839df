// A loaded mesh's triangles as flat vertex and index arrays: drawn with one call, and the source instance batches copy from.
#pragma once

#include "scene/BoundingBox.h"
#include "scene/Vertex.h"

#include <cstdint>
#include <vector>

class Mesh;

class IndexedMesh {
public:
    // The first three indices of every face that names vertices of the mesh; false when none does.
    bool build(const Mesh& mesh);
    // Reads the mesh file and keeps its triangles; false after the scenes' common message when it cannot.
    bool loadOrReport(const char* scene, const char* file);
    void clear();
    bool isEmpty() const { return indices.empty(); }

    // Positions, normals and texture coordinates from client arrays, one draw call.
    void draw() const;
    static void draw(const Vertex* vertices, const uint32_t* indices, int indexCount);

    int getVertexCount() const { return static_cast<int>(vertices.size()); }
    int getIndexCount() const { return static_cast<int>(indices.size()); }
    const Vertex* getVertices() const { return vertices.data(); }
    const uint32_t* getIndices() const { return indices.data(); }
    // The mesh's own limits.
    const BoundingBox& getBox() const { return box; }

private:
    std::vector<Vertex> vertices;
    std::vector<uint32_t> indices;
    BoundingBox box;
};
