// Flat arrays from a mesh's faces, and the one glDrawElements call that draws them.
#include "effects/IndexedMesh.h"

#include "effects/SceneKit.h"
#include "scene/Mesh.h"

#include <memory>

#include <GL/gl.h>

bool IndexedMesh::build(const Mesh& mesh)
{
    clear();
    const VertexArray* source = mesh.getVertices();
    const FaceArray* faces = mesh.getFaces();
    if (!source || !faces)
        return false;
    const int count = source->getNumVertices();
    vertices.assign(source->getVertices(), source->getVertices() + count);
    for (int i = 0; i < faces->getNumFaces(); ++i) {
        const Face& face = (*faces)[i];
        if (face.numIndices < 3)
            continue;
        const uint32_t* corner = face.indices;
        if (corner[0] >= static_cast<uint32_t>(count) || corner[1] >= static_cast<uint32_t>(count) ||
            corner[2] >= static_cast<uint32_t>(count))
            continue;
        indices.insert(indices.end(), corner, corner + 3);
    }
    box = mesh.getLimits();
    if (indices.empty())
        vertices.clear();
    return !indices.empty();
}

bool IndexedMesh::loadOrReport(const char* scene, const char* file)
{
    clear();
    std::unique_ptr<Mesh> mesh(SceneKit::loadOrReport<Mesh>(scene, file));
    return mesh && build(*mesh);
}

void IndexedMesh::clear()
{
    vertices.clear();
    indices.clear();
}

void IndexedMesh::draw() const
{
    draw(vertices.data(), indices.data(), getIndexCount());
}

void IndexedMesh::draw(const Vertex* vertices, const uint32_t* indices, int indexCount)
{
    if (indexCount <= 0)
        return;
    const GLsizei stride = sizeof(Vertex);
    glVertexPointer(3, GL_FLOAT, stride, &vertices[0].position);
    glNormalPointer(GL_FLOAT, stride, &vertices[0].normal);
    glTexCoordPointer(2, GL_FLOAT, stride, &vertices[0].uv);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glDrawElements(GL_TRIANGLES, indexCount, GL_UNSIGNED_INT, indices);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}
