// Instance batches: every copy's indices made once, pointing at its own slice of one vertex buffer.
#include "effects/InstanceBatch.h"

#include "effects/IndexedMesh.h"

InstanceBatch::InstanceBatch() : stride(0), indicesPerCopy(0), count(0), capacity(0) {}

bool InstanceBatch::create(const IndexedMesh& mesh, int copies)
{
    release();
    if (mesh.isEmpty() || copies <= 0)
        return false;
    stride = mesh.getVertexCount();
    indicesPerCopy = mesh.getIndexCount();
    capacity = copies;
    vertices.resize(static_cast<size_t>(stride) * copies);
    indices.resize(static_cast<size_t>(indicesPerCopy) * copies);
    for (int copy = 0; copy < copies; ++copy) {
        const uint32_t offset = static_cast<uint32_t>(copy * stride);
        for (int i = 0; i < indicesPerCopy; ++i)
            indices[static_cast<size_t>(copy) * indicesPerCopy + i] = mesh.getIndices()[i] + offset;
    }
    return true;
}

void InstanceBatch::release()
{
    vertices.clear();
    indices.clear();
    stride = 0;
    indicesPerCopy = 0;
    count = 0;
    capacity = 0;
}

Vertex* InstanceBatch::add()
{
    if (count >= capacity)
        return nullptr;
    return &vertices[static_cast<size_t>(count++) * stride];
}

void InstanceBatch::draw() const
{
    if (count > 0)
        IndexedMesh::draw(vertices.data(), indices.data(), count * indicesPerCopy);
}
