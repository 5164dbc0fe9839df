// Indexed triangle mesh: owned vertex and face arrays, drawn grouped by material.
#pragma once

#include "scene/DrawableObject.h"
#include "scene/FaceArray.h"
#include "scene/VertexArray.h"

#include <istream>
#include <ostream>

class Color;

class Mesh : public DrawableObject {
public:
    Mesh();
    // Copies share nothing: both arrays are duplicated (the materials stay shared, they are not owned).
    Mesh(const Mesh& other);
    Mesh& operator=(const Mesh& other);
    ~Mesh() override;

    // A .msh file: the material registry (MMGR), then the MESH chunk.
    bool load(const char* file);
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;
    bool save(const char* file);

    // Adopts both arrays; false when the mesh has geometry or either is null.
    bool create(VertexArray* newVertices, FaceArray* newFaces);
    // Frees both arrays so that the mesh is empty and can be loaded again.
    void reset();
    void calcLimits();

    VertexArray* getVertices() { return vertices; }
    const VertexArray* getVertices() const { return vertices; }
    FaceArray* getFaces() { return faces; }
    const FaceArray* getFaces() const { return faces; }

    // The flags the scenes draw with: shaded, and shaded with texture coordinates.
    static constexpr int drawShaded = VertexArray::POSITIONS | VertexArray::NORMALS;
    static constexpr int drawTextured = drawShaded | VertexArray::TEXCOORDS;

    // Immediate mode; flags bit 4 sends texture coordinates.
    void draw(int flags) const;
    // Client arrays: preLoad, any number of drawLoaded, postUnload.
    bool preLoad(int flags) const;
    void drawLoaded() const;
    void postUnload(int flags) const;

    void drawFaceNormals(const Color& colour, float length) const;
    void drawVertexNormals(const Color& colour, float length) const;

private:
    void destroyArrays();
    // A face whose first three indices all name vertices of this mesh.
    bool drawable(const Face& face) const;

    VertexArray* vertices;
    FaceArray* faces;
};
