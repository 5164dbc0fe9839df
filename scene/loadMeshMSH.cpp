// Reads vertex and face records of the headerless layout into a new mesh.
#include "scene/loadMeshMSH.h"

#include "scene/Mesh.h"
#include "scene/object/Chunk.h"

#include <fstream>

namespace {

const int vertexRecord = 32;
// Normal x, y, z, an unused float, three vertex indices.
const int faceRecord = 28;

bool readCount(std::istream& in, long long& count)
{
    int32_t raw = 0;
    if (!Chunk::readInt(in, raw))
        return false;
    count = static_cast<uint32_t>(raw);
    return true;
}

bool readVertices(std::istream& in, VertexArray& vertices)
{
    long long count = 0;
    if (!readCount(in, count) || !Chunk::fits(in, count, vertexRecord))
        return false;
    vertices.create(static_cast<int>(count));
    for (long long i = 0; i < count; ++i) {
        float values[8];
        if (!Chunk::readFloats(in, values, 8))
            return false;
        Vertex vertex(Vector3(values[0], values[1], values[2]), Vector2(values[6], values[7]),
                      Vector3(values[3], values[4], values[5]));
        vertex.normal.normalize();
        vertices.addVertex(vertex);
    }
    return true;
}

bool readFaces(std::istream& in, FaceArray& faces)
{
    long long count = 0;
    if (!readCount(in, count) || !Chunk::fits(in, count, faceRecord))
        return false;
    faces.create(static_cast<int>(count));
    for (long long i = 0; i < count; ++i) {
        float values[4];
        int32_t indices[3];
        if (!Chunk::readFloats(in, values, 4))
            return false;
        for (int j = 0; j < 3; ++j)
            if (!Chunk::readInt(in, indices[j]))
                return false;
        Face face;
        face.create(3);
        for (int j = 0; j < 3; ++j)
            face.indices[j] = static_cast<uint32_t>(indices[j]);
        face.normal.assign(values[0], values[1], values[2]);
        faces.addFace(face);
    }
    return true;
}

}  // namespace

Mesh* loadMeshMSH(const char* file)
{
    if (!file)
        return nullptr;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return nullptr;
    VertexArray* vertices = new VertexArray();
    FaceArray* faces = new FaceArray();
    if (!readVertices(in, *vertices) || !readFaces(in, *faces)) {
        delete vertices;
        delete faces;
        return nullptr;
    }
    Mesh* mesh = new Mesh();
    mesh->create(vertices, faces);
    return mesh;
}
