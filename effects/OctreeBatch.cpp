// OctreeBatch: faces grouped by leaf and material, boxes tested against the view's planes, lists drawn per material.
#include "effects/OctreeBatch.h"

#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

const int LIT_ARRAYS = VertexArray::POSITIONS | VertexArray::NORMALS | VertexArray::TEXCOORDS;
// Baked light has no use for the normals: the lists are smaller without them.
const int BAKED_ARRAYS = VertexArray::POSITIONS | VertexArray::TEXCOORDS;

bool opaque(const Material* material)
{
    return !material || material->getBlendMode() == Material::blendNone;
}

}  // namespace

OctreeBatch::OctreeBatch()
    : vertices(nullptr), baked(false), listBase(0), faceCount(0), visibleLeaves(0), visibleFaces(0)
{
}

OctreeBatch::~OctreeBatch() {}

int OctreeBatch::materialIndex(Material* material)
{
    const auto found = std::find(materials.begin(), materials.end(), material);
    if (found != materials.end())
        return static_cast<int>(found - materials.begin());
    materials.push_back(material);
    return static_cast<int>(materials.size()) - 1;
}

void OctreeBatch::orderMaterials()
{
    // Blended faces last, so what they blend over is already drawn.
    std::stable_partition(materials.begin(), materials.end(), opaque);
}

bool OctreeBatch::build(const Octree& tree, const MaterialChoice& drawWith)
{
    release();
    if (!tree.isComplete())
        return false;
    choose = drawWith;
    vertices = tree.getVertices();
    const FaceArray& faces = *tree.getFaces();
    for (int f = 0; f < faces.getNumFaces(); ++f)
        materialIndex(chosen(faces[f].material));
    orderMaterials();

    std::vector<uint8_t> taken(static_cast<size_t>(faces.getNumFaces()), 0);
    std::vector<const OctreeNode*> pending(1, tree.getRoot());
    while (!pending.empty()) {
        const OctreeNode* node = pending.back();
        pending.pop_back();
        if (node->hasChildren()) {
            // Pushed last to first, so the children are taken in their own order.
            for (int i = OctreeNode::NUM_CHILDREN - 1; i >= 0; --i)
                pending.push_back(node->getChild(i));
            continue;
        }
        addLeaf(tree, node->getFaceIndices(), node->getNumFaces(), taken);
    }
    visible.assign(leaves.size(), 0);
    order.assign(leaves.size(), 0);
    distances.assign(leaves.size(), 0.0f);
    return true;
}

void OctreeBatch::addLeaf(const Octree& tree, const uint32_t* faceIndices, int count, std::vector<uint8_t>& taken)
{
    const FaceArray& faces = *tree.getFaces();
    const uint32_t vertexCount = static_cast<uint32_t>(vertices->getNumVertices());
    std::vector<std::vector<uint32_t>> byMaterial(materials.size());
    Leaf leaf{Vector3(), Vector3(), static_cast<int>(runs.size()), 0};
    bool empty = true;
    for (int i = 0; i < count && faceIndices; ++i) {
        const uint32_t f = faceIndices[i];
        if (f >= taken.size() || taken[f])
            continue;
        const Face& face = faces[static_cast<int>(f)];
        if (face.numIndices < 3 || face.indices[0] >= vertexCount || face.indices[1] >= vertexCount ||
            face.indices[2] >= vertexCount)
            continue;
        taken[f] = 1;
        std::vector<uint32_t>& list = byMaterial[static_cast<size_t>(materialIndex(chosen(face.material)))];
        for (int k = 0; k < 3; ++k) {
            const Vector3& p = (*vertices)[static_cast<int>(face.indices[k])].position;
            list.push_back(face.indices[k]);
            if (empty) {
                leaf.min = leaf.max = p;
                empty = false;
            }
            leaf.min.assign(std::min(leaf.min.x, p.x), std::min(leaf.min.y, p.y), std::min(leaf.min.z, p.z));
            leaf.max.assign(std::max(leaf.max.x, p.x), std::max(leaf.max.y, p.y), std::max(leaf.max.z, p.z));
        }
    }
    if (empty)
        return;
    for (size_t m = 0; m < byMaterial.size(); ++m) {
        if (byMaterial[m].empty())
            continue;
        runs.push_back(Run{static_cast<int>(m), static_cast<uint32_t>(indices.size()),
                           static_cast<uint32_t>(byMaterial[m].size())});
        indices.insert(indices.end(), byMaterial[m].begin(), byMaterial[m].end());
        faceCount += static_cast<int>(byMaterial[m].size() / 3);
        ++leaf.runCount;
    }
    leaves.push_back(leaf);
}

void OctreeBatch::bake(const Shading& shade)
{
    if (!vertices || listBase)
        return;
    baked = true;
    colours.assign(static_cast<size_t>(vertices->getNumVertices()) * 4, 255);
    for (const Run& run : runs) {
        const Material* material = materials[static_cast<size_t>(run.material)];
        for (uint32_t k = run.first; k < run.first + run.count; ++k) {
            const uint32_t v = indices[k];
            const Color c = shade((*vertices)[static_cast<int>(v)].normal, material);
            const float channels[4] = {c.r, c.g, c.b, c.a};
            for (int i = 0; i < 4; ++i)
                colours[v * 4 + i] =
                    static_cast<uint8_t>(std::lround(std::min(1.0f, std::max(0.0f, channels[i])) * 255.0f));
        }
    }
}

bool OctreeBatch::compile()
{
    if (runs.empty() || !vertices || listBase)
        return false;
    listBase = glGenLists(static_cast<GLsizei>(runs.size()));
    if (!listBase)
        return false;
    for (Material* material : materials) {
        TextureMaterial* textured = dynamic_cast<TextureMaterial*>(material);
        Texture* texture = textured ? textured->getTexture() : nullptr;
        if (texture && texture->getGLName() == Texture::noName)
            texture->upload();
    }
    const int arrays = baked ? BAKED_ARRAYS : LIT_ARRAYS;
    vertices->upload(arrays);
    if (baked) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, colours.data());
    }
    for (size_t r = 0; r < runs.size(); ++r) {
        glNewList(listBase + static_cast<GLuint>(r), GL_COMPILE);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(runs[r].count), GL_UNSIGNED_INT,
                       indices.data() + runs[r].first);
        glEndList();
    }
    vertices->unload(arrays);
    glDisableClientState(GL_COLOR_ARRAY);
    // The lists hold their own copies now.
    std::vector<uint8_t>().swap(colours);
    return true;
}

void OctreeBatch::release()
{
    if (listBase)
        glDeleteLists(listBase, static_cast<GLsizei>(runs.size()));
    listBase = 0;
    vertices = nullptr;
    choose = nullptr;
    baked = false;
    colours.clear();
    materials.clear();
    indices.clear();
    runs.clear();
    leaves.clear();
    visible.clear();
    order.clear();
    distances.clear();
    faceCount = visibleLeaves = visibleFaces = 0;
}

int OctreeBatch::cull(const Plane* planes, int count)
{
    visibleLeaves = visibleFaces = 0;
    for (size_t i = 0; i < leaves.size(); ++i) {
        const Leaf& leaf = leaves[i];
        bool inside = true;
        for (int p = 0; p < count && inside; ++p) {
            const Plane& plane = planes[p];
            // The corner farthest along the normal: if even it is behind, the whole box is.
            const Vector3 far(plane.a >= 0.0f ? leaf.max.x : leaf.min.x, plane.b >= 0.0f ? leaf.max.y : leaf.min.y,
                              plane.c >= 0.0f ? leaf.max.z : leaf.min.z);
            inside = plane.distance(far) >= 0.0f;
        }
        visible[i] = inside ? 1 : 0;
        if (!inside)
            continue;
        order[static_cast<size_t>(visibleLeaves)] = static_cast<int>(i);
        ++visibleLeaves;
        for (int r = 0; r < leaf.runCount; ++r)
            visibleFaces += static_cast<int>(runs[static_cast<size_t>(leaf.firstRun + r)].count / 3);
    }
    return visibleLeaves;
}

int OctreeBatch::cull(const Frustum& frustum)
{
    Plane planes[VIEW_PLANES];
    const int count = frustum.getFarTest() ? Frustum::PLANE_COUNT : Frustum::FAR_PLANE;
    for (int i = 0; i < count; ++i)
        planes[i] = frustum.getPlane(i);
    return cull(planes, count);
}

void OctreeBatch::sortFrom(const Vector3& eye)
{
    for (int k = 0; k < visibleLeaves; ++k) {
        const Leaf& leaf = leaves[static_cast<size_t>(order[static_cast<size_t>(k)])];
        distances[static_cast<size_t>(k)] = ((leaf.min + leaf.max) * 0.5f - eye).length();
    }
    // Insertion sort: a few hundred leaves at most, already nearly in order from the last frame's view.
    for (int k = 1; k < visibleLeaves; ++k) {
        const int leaf = order[static_cast<size_t>(k)];
        const float d = distances[static_cast<size_t>(k)];
        int j = k - 1;
        for (; j >= 0 && distances[static_cast<size_t>(j)] > d; --j) {
            order[static_cast<size_t>(j + 1)] = order[static_cast<size_t>(j)];
            distances[static_cast<size_t>(j + 1)] = distances[static_cast<size_t>(j)];
        }
        order[static_cast<size_t>(j + 1)] = leaf;
        distances[static_cast<size_t>(j + 1)] = d;
    }
}

void OctreeBatch::draw() const
{
    if (!listBase)
        return;
    glPushAttrib(GL_ENABLE_BIT);
    if (baked)
        glDisable(GL_LIGHTING);
    for (size_t m = 0; m < materials.size(); ++m) {
        Material* material = materials[m];
        if (material)
            material->bind();
        for (int k = 0; k < visibleLeaves; ++k) {
            const Leaf& leaf = leaves[static_cast<size_t>(order[static_cast<size_t>(k)])];
            for (int r = leaf.firstRun; r < leaf.firstRun + leaf.runCount; ++r)
                if (runs[static_cast<size_t>(r)].material == static_cast<int>(m))
                    glCallList(listBase + static_cast<GLuint>(r));
        }
        if (material)
            material->unbind();
    }
    glPopAttrib();
}

void OctreeBatch::viewPlanes(const Camera& camera, float aspect, Plane planes[VIEW_PLANES])
{
    // The camera's own basis: forward n, up v, right u.
    const Vector3& eye = camera.getPosition();
    Vector3 n = camera.getTarget() - eye;
    n.normalize();
    const Vector3 lean = (n.x == 0.0f && n.z == 0.0f) ? Vector3(-n.y, 0.0f, 0.0f) : Vector3(0.0f, 1.0f, 0.0f);
    Vector3 v = lean - n * lean.dot(n);
    v.normalize();
    Vector3 u = n.cross(v);
    u.normalize();
    const float tanY = std::tan(camera.getFOV() * 0.5f * MathConstants::DEGREES_TO_RADIANS);
    const float tanX = tanY * aspect;
    const Vector3 normals[VIEW_PLANES] = {n * tanX + u, n * tanX - u, n * tanY - v, n * tanY + v, n, -n};
    for (int i = 0; i < VIEW_PLANES; ++i) {
        Vector3 normal = normals[i];
        normal.normalize();
        planes[i].assign(normal, -normal.dot(eye));
    }
    planes[Frustum::NEAR_PLANE].d -= camera.getNear();
    planes[Frustum::FAR_PLANE].d += camera.getFar();
}
