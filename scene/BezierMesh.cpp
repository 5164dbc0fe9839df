// Bezier patch meshes: the BMSH chunk, tessellation with normals, and drawing culled by the camera.
#include "scene/BezierMesh.h"

#include "scene/Camera.h"
#include "scene/object/Chunk.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <GL/gl.h>
#include <algorithm>
#include <cstring>
#include <fstream>

namespace {

const char* const TAG = "BMSH";
// The sand repeats every eight units across the ground.
const float UV_SCALE = 0.125f;
// Derivatives are taken this far inside the patch, so that a collapsed edge
// (a peak where a whole row of points meets) still yields a normal.
const float EDGE_INSET = 0.001f;

void bernstein(float t, float b[4])
{
    const float s = 1.0f - t;
    b[0] = s * s * s;
    b[1] = 3.0f * t * s * s;
    b[2] = 3.0f * t * t * s;
    b[3] = t * t * t;
}

void bernsteinDerivative(float t, float d[4])
{
    const float s = 1.0f - t;
    d[0] = -3.0f * s * s;
    d[1] = 3.0f * s * s - 6.0f * t * s;
    d[2] = 6.0f * t * s - 3.0f * t * t;
    d[3] = 3.0f * t * t;
}

Vector3 combine(const BezierMesh::Patch& patch, const float bu[4], const float bv[4])
{
    Vector3 sum;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            sum += patch.points[row * 4 + column] * (bu[column] * bv[row]);
    return sum;
}

float clampInside(float t)
{
    if (t < EDGE_INSET)
        return EDGE_INSET;
    if (t > 1.0f - EDGE_INSET)
        return 1.0f - EDGE_INSET;
    return t;
}

bool readString(std::istream& in, std::string& text)
{
    int16_t length = 0;
    if (!Chunk::readShort(in, length) || length < 0 || !Chunk::fits(in, length, 1))
        return false;
    text.assign(static_cast<size_t>(length), '\0');
    if (length > 0)
        in.read(&text[0], length);
    return Chunk::good(in);
}

bool writeString(std::ostream& out, const char* text)
{
    size_t length = text ? std::strlen(text) : 0;
    if (length > 32767)
        length = 32767;
    if (!Chunk::writeShort(out, static_cast<int16_t>(length)))
        return false;
    if (length > 0)
        out.write(text, static_cast<std::streamsize>(length));
    return Chunk::good(out);
}

}  // namespace

BezierMesh::BezierMesh() : gridU(4), gridV(4), material(nullptr), drawnPatches(0) {}

BezierMesh::~BezierMesh() {}

bool BezierMesh::load(const char* file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return false;
    return load(in);
}

bool BezierMesh::save(const char* file)
{
    std::ofstream out(file, std::ios::binary);
    if (!out)
        return false;
    return save(out);
}

bool BezierMesh::load(std::istream& in)
{
    std::string name;
    std::string matName;
    int32_t count = 0;
    if (!Chunk::readTag(in, TAG) || !readString(in, name) || !readString(in, matName))
        return false;
    if (!Chunk::readInt(in, count) || !Chunk::fits(in, count, patchFileSize))
        return false;
    std::vector<Patch> loaded(static_cast<size_t>(count));
    for (Patch& patch : loaded) {
        float values[48];
        if (!Chunk::readFloats(in, values, 48))
            return false;
        for (int i = 0; i < 16; ++i)
            patch.points[i] = Vector3(values[i * 3], values[i * 3 + 1], values[i * 3 + 2]);
    }
    setName(name.c_str());
    materialName = matName;
    // A registered material of that name is taken at once; the scene may set another.
    material = matName.empty() ? nullptr : MaterialMgr::getHandle()->find(matName.c_str());
    patches.swap(loaded);
    tessellate();
    return true;
}

bool BezierMesh::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, TAG) || !writeString(out, getName()) || !writeString(out, materialName.c_str()))
        return false;
    if (!Chunk::writeInt(out, static_cast<int32_t>(patches.size())))
        return false;
    for (const Patch& patch : patches) {
        float values[48];
        for (int i = 0; i < 16; ++i) {
            values[i * 3] = patch.points[i].x;
            values[i * 3 + 1] = patch.points[i].y;
            values[i * 3 + 2] = patch.points[i].z;
        }
        if (!Chunk::writeFloats(out, values, 48))
            return false;
    }
    return Chunk::good(out);
}

void BezierMesh::addPatch(const Patch& patch)
{
    patches.push_back(patch);
    surfaces.emplace_back();
    tessellate(patch, surfaces.back());
}

void BezierMesh::setGridSize(int u, int v)
{
    gridU = u < 1 ? 1 : u;
    gridV = v < 1 ? 1 : v;
    tessellate();
}

void BezierMesh::setMaterial(Material* m)
{
    material = m;
    if (m && m->getName())
        materialName = m->getName();
}

void BezierMesh::moveMesh(const Vector3& by)
{
    offset += by;
    tessellate();
}

Vector3 BezierMesh::evaluate(const Patch& patch, float u, float v)
{
    float bu[4];
    float bv[4];
    bernstein(u, bu);
    bernstein(v, bv);
    return combine(patch, bu, bv);
}

Vector3 BezierMesh::normalAt(const Patch& patch, float u, float v)
{
    u = clampInside(u);
    v = clampInside(v);
    float bu[4];
    float bv[4];
    float du[4];
    float dv[4];
    bernstein(u, bu);
    bernstein(v, bv);
    bernsteinDerivative(u, du);
    bernsteinDerivative(v, dv);
    Vector3 n = combine(patch, du, bv).cross(combine(patch, bu, dv));
    if (n.length() <= 0.0f)
        return Vector3(0.0f, 1.0f, 0.0f);
    return n.normalize();
}

void BezierMesh::tessellate()
{
    surfaces.assign(patches.size(), Surface());
    Vector3 low;
    Vector3 high;
    for (size_t i = 0; i < patches.size(); ++i) {
        tessellate(patches[i], surfaces[i]);
        const BoundingBox& box = surfaces[i].box;
        if (i == 0) {
            low = box.getMin();
            high = box.getMax();
            continue;
        }
        low =
            Vector3(std::min(low.x, box.getMin().x), std::min(low.y, box.getMin().y), std::min(low.z, box.getMin().z));
        high = Vector3(std::max(high.x, box.getMax().x), std::max(high.y, box.getMax().y),
                       std::max(high.z, box.getMax().z));
    }
    limits.create(low, high);
}

void BezierMesh::tessellate(const Patch& patch, Surface& surface) const
{
    const size_t count = static_cast<size_t>((gridU + 1) * (gridV + 1));
    surface.positions.resize(count);
    surface.normals.resize(count);
    surface.uvs.resize(count);
    Vector3 low;
    Vector3 high;
    size_t k = 0;
    for (int row = 0; row <= gridV; ++row) {
        const float v = static_cast<float>(row) / static_cast<float>(gridV);
        for (int column = 0; column <= gridU; ++column, ++k) {
            const float u = static_cast<float>(column) / static_cast<float>(gridU);
            const Vector3 local = evaluate(patch, u, v);
            const Vector3 p = local + offset;
            surface.positions[k] = p;
            surface.normals[k] = normalAt(patch, u, v);
            surface.uvs[k] = Vector2(local.x * UV_SCALE, local.z * UV_SCALE);
            if (k == 0) {
                low = p;
                high = p;
            }
            low = Vector3(std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z));
            high = Vector3(std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z));
        }
    }
    surface.box.create(low, high);
}

void BezierMesh::draw(const Camera* camera)
{
    drawnPatches = 0;
    if (material)
        material->bind();
    for (const Surface& surface : surfaces) {
        if (camera && !camera->getFrustum().isBoxInside(surface.box))
            continue;
        drawSurface(surface);
        ++drawnPatches;
    }
    if (material)
        material->unbind();
}

void BezierMesh::drawSurface(const Surface& surface) const
{
    const int stride = gridU + 1;
    for (int row = 0; row < gridV; ++row) {
        glBegin(GL_TRIANGLE_STRIP);
        for (int column = 0; column <= gridU; ++column) {
            // Next row first: with u to the right and v upwards the strip turns counter-clockwise.
            const size_t below = static_cast<size_t>(row * stride + column);
            const size_t above = below + static_cast<size_t>(stride);
            for (size_t k : {above, below}) {
                glNormal3f(surface.normals[k].x, surface.normals[k].y, surface.normals[k].z);
                glTexCoord2f(surface.uvs[k].x, surface.uvs[k].y);
                glVertex3f(surface.positions[k].x, surface.positions[k].y, surface.positions[k].z);
            }
        }
        glEnd();
    }
}
