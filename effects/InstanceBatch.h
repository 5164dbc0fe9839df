// Room for copies of one mesh, placed and bent on the processor each frame and drawn as one call.
#pragma once

#include "scene/Vertex.h"

#include <cstdint>
#include <vector>

class IndexedMesh;

class InstanceBatch {
public:
    InstanceBatch();

    // Room for capacity copies of the mesh: the only allocation the batch makes. The mesh must
    // outlive the batch's use of it.
    bool create(const IndexedMesh& mesh, int capacity);
    void release();

    // Starts a frame's fill: no copies.
    void clear() { count = 0; }
    // The next copy's vertices, in the mesh's order, for the caller to fill; null when full.
    Vertex* add();
    // The copies added since the last clear.
    void draw() const;

    int getCount() const { return count; }
    int getCapacity() const { return capacity; }
    // Vertices in one copy.
    int getStride() const { return stride; }
    // The copies' vertices, one copy after another.
    const Vertex* getVertices() const { return vertices.data(); }

private:
    std::vector<Vertex> vertices;
    std::vector<uint32_t> indices;
    int stride;
    int indicesPerCopy;
    int count;
    int capacity;
};
