// Mesh persistence (MESH chunk and .msh files) and drawing by material groups.
#include "scene/Mesh.h"

#include "math/Color.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <GL/gl.h>
#include <algorithm>
#include <cstdio>

namespace {

// One glBegin/glEnd of triangles per run of faces sharing a material, that
// material bound around the run; emit sends the face's vertices.
template <class EmitFace>
void drawInMaterialRuns(const FaceArray& faces, EmitFace emit)
{
    Material* current = faces.getNumFaces() > 0 ? faces[0].material : nullptr;
    if (current)
        current->bind();
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < faces.getNumFaces(); ++i) {
        const Face& face = faces[i];
        if (face.material != current) {
            glEnd();
            if (current)
                current->unbind();
            current = face.material;
            if (current)
                current->bind();
            glBegin(GL_TRIANGLES);
        }
        emit(face);
    }
    glEnd();
    if (current)
        current->unbind();
}
}  // namespace

Mesh::Mesh() : vertices(nullptr), faces(nullptr) {}

Mesh::Mesh(const Mesh& other) : DrawableObject(other), vertices(nullptr), faces(nullptr)
{
    if (other.vertices)
        vertices = new VertexArray(*other.vertices);
    if (other.faces)
        faces = new FaceArray(*other.faces);
}

Mesh& Mesh::operator=(const Mesh& other)
{
    if (this == &other)
        return *this;
    DrawableObject::operator=(other);
    destroyArrays();
    if (other.vertices)
        vertices = new VertexArray(*other.vertices);
    if (other.faces)
        faces = new FaceArray(*other.faces);
    return *this;
}

Mesh::~Mesh()
{
    destroyArrays();
}

void Mesh::destroyArrays()
{
    delete vertices;
    delete faces;
    vertices = nullptr;
    faces = nullptr;
}

void Mesh::reset()
{
    destroyArrays();
}

bool Mesh::create(VertexArray* newVertices, FaceArray* newFaces)
{
    if (vertices || faces || !newVertices || !newFaces)
        return false;
    vertices = newVertices;
    faces = newFaces;
    calcLimits();
    return true;
}

void Mesh::calcLimits()
{
    if (!vertices || vertices->getNumVertices() <= 0)
        return;
    Vector3 low = (*vertices)[0].position;
    Vector3 high = low;
    for (int i = 1; i < vertices->getNumVertices(); ++i) {
        const Vector3& p = (*vertices)[i].position;
        low.assign(std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z));
        high.assign(std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z));
    }
    limits.create(low, high);
}

bool Mesh::load(const char* file)
{
    if (vertices || faces || !file)
        return false;
    std::stringstream in;
    if (!ChunkFile::readIn(file, in))
        return false;
    if (!MaterialMgr::getHandle()->load(in)) {
        std::fputs("COULDN'N LOAD MATERIALS\n", stdout);
        return false;
    }
    if (!load(in)) {
        std::fputs("COULDN'N LOAD MESHDATA\n", stdout);
        return false;
    }
    calcLimits();
    return true;
}

bool Mesh::load(std::istream& in)
{
    if (vertices || faces)
        return false;
    if (!Chunk::readTag(in, "MESH"))
        return false;
    if (!limits.loadImage(in))
        return false;
    vertices = new VertexArray();
    faces = new FaceArray();
    if (!vertices->load(in) || !faces->load(in)) {
        destroyArrays();
        return false;
    }
    return Chunk::good(in);
}

bool Mesh::save(std::ostream& out)
{
    if (!vertices || !faces)
        return false;
    Chunk::writeTag(out, "MESH");
    limits.saveImage(out);
    if (!vertices->save(out) || !faces->save(out))
        return false;
    return Chunk::good(out);
}

bool Mesh::save(const char* file)
{
    if (!vertices || !faces || !file)
        return false;
    std::ofstream out;
    if (!ChunkFile::openOut(file, out))
        return false;
    // Materials go first so that loading can resolve the faces' names.
    if (!MaterialMgr::getHandle()->save(out))
        return false;
    return save(out);
}

bool Mesh::drawable(const Face& face) const
{
    const uint32_t count = static_cast<uint32_t>(vertices->getNumVertices());
    return face.indices[0] < count && face.indices[1] < count && face.indices[2] < count;
}

void Mesh::draw(int flags) const
{
    if (!vertices || !faces)
        return;
    drawInMaterialRuns(*faces, [&](const Face& face) {
        if (!drawable(face))
            return;
        // Every face is one triangle, whatever its index count.
        for (int j = 0; j < 3; ++j) {
            const Vertex& v = (*vertices)[static_cast<int>(face.indices[j])];
            // Three components from u: the third is the next vertex's position x.
            // The storage keeps a zeroed vertex past the last one for this read.
            if (flags & VertexArray::TEXCOORDS)
                glTexCoord3fv(&v.uv.x);
            glNormal3fv(&v.normal.x);
            glVertex3fv(&v.position.x);
        }
    });
}

bool Mesh::preLoad(int flags) const
{
    if (!vertices)
        return false;
    return vertices->upload(flags);
}

void Mesh::postUnload(int flags) const
{
    if (vertices)
        vertices->unload(flags);
}

void Mesh::drawLoaded() const
{
    if (!vertices || !faces)
        return;
    drawInMaterialRuns(*faces, [&](const Face& face) {
        if (!drawable(face))
            return;
        for (int j = 0; j < 3; ++j)
            glArrayElement(static_cast<GLint>(face.indices[j]));
    });
}

namespace {

// Inspection lines are drawn flat, in their own colour, whatever the scene left enabled.
void beginLines(const Color& colour)
{
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glColor4f(colour.r, colour.g, colour.b, colour.a);
    glBegin(GL_LINES);
}

void endLines()
{
    glEnd();
    glPopAttrib();
}

void line(const Vector3& from, const Vector3& to)
{
    glVertex3f(from.x, from.y, from.z);
    glVertex3f(to.x, to.y, to.z);
}

}  // namespace

void Mesh::drawFaceNormals(const Color& colour, float length) const
{
    if (!vertices || !faces)
        return;
    beginLines(colour);
    for (int i = 0; i < faces->getNumFaces(); ++i) {
        const Face& face = (*faces)[i];
        if (!drawable(face))
            continue;
        Vector3 middle;
        for (int j = 0; j < 3; ++j)
            middle += (*vertices)[static_cast<int>(face.indices[j])].position;
        middle /= 3.0f;
        line(middle, middle + face.normal * length);
    }
    endLines();
}

void Mesh::drawVertexNormals(const Color& colour, float length) const
{
    if (!vertices)
        return;
    beginLines(colour);
    for (int i = 0; i < vertices->getNumVertices(); ++i) {
        const Vertex& v = (*vertices)[i];
        line(v.position, v.position + v.normal * length);
    }
    endLines();
}
