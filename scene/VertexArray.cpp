// Vertex storage keeps one zeroed vertex past its capacity: immediate drawing
// sends three texture components starting at u, so the last vertex's call
// reaches into the next slot and must find memory that is ours.
#include "scene/VertexArray.h"

#include "scene/object/Chunk.h"

#include <GL/gl.h>
#include <GL/glext.h>

VertexArray::VertexArray() : numVertices(0), capacity(0), vertices(nullptr) {}

VertexArray::VertexArray(const VertexArray& other) : numVertices(0), capacity(0), vertices(nullptr)
{
    *this = other;
}

VertexArray& VertexArray::operator=(const VertexArray& other)
{
    if (this == &other)
        return *this;
    release();
    if (!other.vertices)
        return *this;
    allocate(other.capacity);
    for (int i = 0; i < other.numVertices; ++i)
        vertices[i] = other.vertices[i];
    numVertices = other.numVertices;
    return *this;
}

VertexArray::~VertexArray()
{
    release();
}

void VertexArray::allocate(int n)
{
    vertices = new Vertex[n + 1];
    capacity = n;
    numVertices = 0;
}

void VertexArray::release()
{
    delete[] vertices;
    vertices = nullptr;
    capacity = 0;
    numVertices = 0;
}

bool VertexArray::create(int n)
{
    if (n < 0)
        return false;
    release();
    allocate(n);
    return true;
}

bool VertexArray::resize(int n)
{
    if (n < 0)
        return false;
    Vertex* grown = new Vertex[n + 1];
    int kept = numVertices < n ? numVertices : n;
    for (int i = 0; i < kept; ++i)
        grown[i] = vertices[i];
    delete[] vertices;
    vertices = grown;
    capacity = n;
    numVertices = kept;
    return true;
}

void VertexArray::clear()
{
    numVertices = 0;
}

bool VertexArray::addVertex(const Vertex& vertex)
{
    if (numVertices >= capacity)
        return false;
    vertices[numVertices++] = vertex;
    return true;
}

bool VertexArray::addVertex(const Vector3& position)
{
    return addVertex(Vertex(position, Vector2(), Vector3()));
}

bool VertexArray::addVertex(const Vector3& position, const Vector2& uv)
{
    return addVertex(Vertex(position, uv, Vector3()));
}

bool VertexArray::addVertex(const Vector3& position, const Vector3& normal)
{
    return addVertex(Vertex(position, Vector2(), normal));
}

bool VertexArray::addVertex(const Vector3& position, const Vector2& uv, const Vector3& normal)
{
    return addVertex(Vertex(position, uv, normal));
}

bool VertexArray::load(std::istream& in)
{
    if (!Chunk::readTag(in, "VARR"))
        return false;
    int32_t count = 0;
    if (!Chunk::readInt(in, count))
        return false;
    // A count the stream cannot hold is a bad file, not an allocation.
    if (!Chunk::fits(in, count, Vertex::fileSize))
        return false;
    create(count);
    for (int i = 0; i < count; ++i) {
        if (!vertices[i].load(in))
            return false;
        numVertices = i + 1;
    }
    return Chunk::good(in);
}

bool VertexArray::save(std::ostream& out) const
{
    Chunk::writeTag(out, "VARR");
    Chunk::writeInt(out, numVertices);
    for (int i = 0; i < numVertices; ++i)
        if (!vertices[i].save(out))
            return false;
    return Chunk::good(out);
}

bool VertexArray::upload(int flags) const
{
    if (numVertices <= 0 || flags == 0)
        return false;
    const GLsizei stride = sizeof(Vertex);
    if (flags & POSITIONS) {
        glVertexPointer(3, GL_FLOAT, stride, &vertices[0].position);
        glEnableClientState(GL_VERTEX_ARRAY);
    }
    if (flags & NORMALS) {
        glNormalPointer(GL_FLOAT, stride, &vertices[0].normal);
        glEnableClientState(GL_NORMAL_ARRAY);
    }
    if (flags & TEXCOORDS) {
        glTexCoordPointer(2, GL_FLOAT, stride, &vertices[0].uv);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if (flags & TEXCOORDS_UNIT1) {
        glClientActiveTextureARB(GL_TEXTURE1_ARB);
        glTexCoordPointer(2, GL_FLOAT, stride, &vertices[0].uv);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glClientActiveTextureARB(GL_TEXTURE0_ARB);
    }
    return true;
}

void VertexArray::unload(int flags) const
{
    if (flags & POSITIONS)
        glDisableClientState(GL_VERTEX_ARRAY);
    if (flags & NORMALS)
        glDisableClientState(GL_NORMAL_ARRAY);
    if (flags & TEXCOORDS)
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    if (flags & TEXCOORDS_UNIT1) {
        glClientActiveTextureARB(GL_TEXTURE1_ARB);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glClientActiveTextureARB(GL_TEXTURE0_ARB);
    }
}
