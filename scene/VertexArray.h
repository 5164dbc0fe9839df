// Growable array of interleaved vertices, persisted as a VARR chunk and handed to GL as client arrays.
#pragma once

#include "scene/Vertex.h"

#include <istream>
#include <ostream>

class VertexArray {
public:
    // Client-array selection for upload/unload.
    enum { POSITIONS = 1, NORMALS = 2, TEXCOORDS = 4, TEXCOORDS_UNIT1 = 8 };

    VertexArray();
    VertexArray(const VertexArray& other);
    VertexArray& operator=(const VertexArray& other);
    ~VertexArray();

    // n default vertices of storage, none in use; false for a negative n.
    bool create(int n);
    // Grows (or shrinks) the storage, keeping the vertices that still fit.
    bool resize(int n);
    void clear();

    bool addVertex(const Vertex& vertex);
    bool addVertex(const Vector3& position);
    bool addVertex(const Vector3& position, const Vector2& uv);
    bool addVertex(const Vector3& position, const Vector3& normal);
    bool addVertex(const Vector3& position, const Vector2& uv, const Vector3& normal);

    int getNumVertices() const { return numVertices; }
    int getCapacity() const { return capacity; }
    Vertex* getVertices() { return vertices; }
    const Vertex* getVertices() const { return vertices; }
    Vertex& operator[](int i) { return vertices[i]; }
    const Vertex& operator[](int i) const { return vertices[i]; }

    bool load(std::istream& in);
    bool save(std::ostream& out) const;

    // Points the GL client arrays selected by flags at the vertices (stride 32).
    bool upload(int flags) const;
    void unload(int flags) const;

private:
    void allocate(int n);
    void release();

    int numVertices;
    int capacity;
    Vertex* vertices;
};
