// The city block: its octree indexed once into runs of faces per leaf and surface, then drawn where it is seen.
#include "effects/CityBlock.h"

#include "effects/SceneKit.h"

#include "scene/Camera.h"
#include "scene/Face.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"
#include "texture/MipMapTexture.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <iostream>

namespace {

using namespace CityLayout;

const int ARRAYS = VertexArray::POSITIONS | VertexArray::TEXCOORDS;

// The nodes of a subtree in walking order, each with its leaf number, and where its subtree ends.
template <typename Node>
void walk(const OctreeNode* node, std::vector<Node>& nodes, std::vector<const OctreeNode*>& leaves)
{
    const size_t at = nodes.size();
    nodes.push_back(
        Node{Vector3(), Vector3(), Vector3(), -1.0f, 0, node->hasChildren() ? -1 : static_cast<int>(leaves.size())});
    if (!node->hasChildren())
        leaves.push_back(node);
    for (int i = 0; node->hasChildren() && i < OctreeNode::NUM_CHILDREN; ++i)
        walk(node->getChild(i), nodes, leaves);
    nodes[at].next = static_cast<int>(nodes.size());
}

}  // namespace

CityBlock::CityBlock()
    : octree(nullptr), faceCount(0), leafCount(0), drawnFaces(0), visibleCount(0), textures(), materials()
{
}

CityBlock::~CityBlock()
{
    release();
}

bool CityBlock::load(const char* scene)
{
    release();
    octree = SceneKit::loadOrReport<Octree>(scene, OCTREE);
    loadPictures(scene);
    if (!octree)
        return false;
    index();
    return true;
}

void CityBlock::loadPictures(const char* scene)
{
    for (int s = 0; s < SURFACE_COUNT; ++s) {
        const TextureFile& picture = SURFACES[s].picture;
        const Texture* plain = SceneKit::loadTexture(picture);
        if (!plain || !plain->getDataPtr()) {
            std::cerr << SceneKit::missingMessage(scene, picture.file);
            continue;
        }
        // The facades are seen at every distance down the streets: without smaller levels their windows
        // would sparkle. The cache keeps the plain picture; the levels are the block's own.
        const long long size = plain->getDataSize();
        unsigned char* pixels = new unsigned char[static_cast<size_t>(size)];
        std::memcpy(pixels, plain->getDataPtr(), static_cast<size_t>(size));
        textures[s] = new MipMapTexture(picture.file, plain->getWidth(), plain->getHeight(), plain->getBitsPerPixel(),
                                        plain->getFormat(), pixels);
        textures[s]->upload();
        // The upload asks for a mipmapping magnification filter, which GL refuses and reports: the
        // refusal is expected, so it is taken off the error queue here, not reported later as ours.
        for (int k = 0; k < 4 && glGetError() != GL_NO_ERROR; ++k) {
        }
        // One level at a time is enough at the distances the facades are seen, and costs less to draw.
        glBindTexture(GL_TEXTURE_2D, textures[s]->getGLName());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
        glBindTexture(GL_TEXTURE_2D, 0);
        materials[s] = new TextureMaterial(SURFACES[s].material);
        materials[s]->setTexture(textures[s]);
        materials[s]->setFlags(Material::textured);
        materials[s]->setBlendMode(Material::blendNone);
    }
}

int CityBlock::surfaceOf(uint32_t face) const
{
    const Face& f = (*octree->getFaces())[static_cast<int>(face)];
    if (!f.material || !f.material->getName())
        return -1;
    for (int s = 0; s < SURFACE_COUNT; ++s)
        if (std::strcmp(f.material->getName(), SURFACES[s].material) == 0)
            return s;
    return -1;
}

void CityBlock::index()
{
    std::vector<const OctreeNode*> leaves;
    walk(octree->getRoot(), nodes, leaves);
    leafCount = static_cast<int>(leaves.size());
    const FaceArray& faces = *octree->getFaces();
    const VertexArray& vertices = *octree->getVertices();
    faceCount = faces.getNumFaces();
    const uint32_t vertexCount = static_cast<uint32_t>(vertices.getNumVertices());

    // A face straddling several leaves is drawn with the first of them, whose sphere grows to hold it.
    std::vector<int> owner(static_cast<size_t>(faceCount), -1);
    std::vector<int> surface(static_cast<size_t>(faceCount), -1);
    std::vector<int> counts(static_cast<size_t>(leafCount * SURFACE_COUNT), 0);
    std::vector<Vector3> low(nodes.size(), Vector3(1e30f, 1e30f, 1e30f));
    std::vector<Vector3> high(nodes.size(), Vector3(-1e30f, -1e30f, -1e30f));
    for (size_t n = 0; n < nodes.size(); ++n) {
        const int leaf = nodes[n].leaf;
        if (leaf < 0)
            continue;
        const OctreeNode* node = leaves[static_cast<size_t>(leaf)];
        for (int i = 0; i < node->getNumFaces(); ++i) {
            const uint32_t f = node->getFaceIndex(i);
            if (f >= static_cast<uint32_t>(faceCount) || owner[f] >= 0)
                continue;
            const Face& face = faces[static_cast<int>(f)];
            if (face.numIndices < 3 || face.indices[0] >= vertexCount || face.indices[1] >= vertexCount ||
                face.indices[2] >= vertexCount)
                continue;
            const int s = surfaceOf(f);
            if (s < 0)
                continue;
            owner[f] = leaf;
            surface[f] = s;
            ++counts[static_cast<size_t>(leaf * SURFACE_COUNT + s)];
            for (int k = 0; k < 3; ++k) {
                const Vector3& p = vertices[static_cast<int>(face.indices[k])].position;
                low[n] = Vector3(std::min(low[n].x, p.x), std::min(low[n].y, p.y), std::min(low[n].z, p.z));
                high[n] = Vector3(std::max(high[n].x, p.x), std::max(high[n].y, p.y), std::max(high[n].z, p.z));
            }
        }
    }

    // Surface by surface, leaf by leaf, so leaves next to each other in the walk share one draw.
    runs.assign(static_cast<size_t>(leafCount * SURFACE_COUNT), Run{0, 0});
    int start = 0;
    for (int s = 0; s < SURFACE_COUNT; ++s) {
        for (int leaf = 0; leaf < leafCount; ++leaf) {
            Run& run = runs[static_cast<size_t>(leaf * SURFACE_COUNT + s)];
            run.start = start;
            start += 3 * counts[static_cast<size_t>(leaf * SURFACE_COUNT + s)];
        }
    }
    indices.assign(static_cast<size_t>(start), 0u);
    std::vector<int> filled(runs.size(), 0);
    for (int f = 0; f < faceCount; ++f) {
        if (owner[static_cast<size_t>(f)] < 0)
            continue;
        const size_t slot =
            static_cast<size_t>(owner[static_cast<size_t>(f)] * SURFACE_COUNT + surface[static_cast<size_t>(f)]);
        for (int k = 0; k < 3; ++k)
            indices[static_cast<size_t>(runs[slot].start + filled[slot]++)] = faces[f].indices[k];
    }
    for (size_t slot = 0; slot < runs.size(); ++slot)
        runs[slot].count = filled[slot];

    // Spheres from the leaves up: a parent comes before its children in the walk.
    for (size_t n = nodes.size(); n-- > 0;) {
        for (size_t child = n + 1; nodes[n].leaf < 0 && child < static_cast<size_t>(nodes[n].next);
             child = static_cast<size_t>(nodes[child].next)) {
            low[n] = Vector3(std::min(low[n].x, low[child].x), std::min(low[n].y, low[child].y),
                             std::min(low[n].z, low[child].z));
            high[n] = Vector3(std::max(high[n].x, high[child].x), std::max(high[n].y, high[child].y),
                              std::max(high[n].z, high[child].z));
        }
        if (low[n].x > high[n].x)
            continue;
        nodes[n].low = low[n];
        nodes[n].high = high[n];
        nodes[n].centre = (low[n] + high[n]) * 0.5f;
        nodes[n].radius = (high[n] - low[n]).length() * 0.5f;
    }
    visible.assign(static_cast<size_t>(leafCount), 0);
}

void CityBlock::draw(const Camera& camera, const Color& tint)
{
    drawnFaces = 0;
    visibleCount = 0;
    if (!octree)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3& eye = camera.getPosition();
    for (size_t n = 0; n < nodes.size();) {
        const Node& node = nodes[n];
        if (node.radius < 0.0f || !frustum.isSphereInside(node.centre, node.radius) ||
            behindStreetWall(eye, node.low, node.high)) {
            n = static_cast<size_t>(node.next);
            continue;
        }
        if (node.leaf >= 0)
            visible[static_cast<size_t>(visibleCount++)] = node.leaf;
        ++n;
    }

    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    const VertexArray* vertices = octree->getVertices();
    vertices->upload(ARRAYS);
    for (int s = 0; s < SURFACE_COUNT; ++s) {
        bool bound = false;
        int from = 0;
        int count = 0;
        for (int k = 0; k < visibleCount; ++k) {
            const Run& run = runs[static_cast<size_t>(visible[static_cast<size_t>(k)] * SURFACE_COUNT + s)];
            if (run.count == 0)
                continue;
            if (count > 0 && from + count == run.start) {
                count += run.count;
                continue;
            }
            drawRun(s, from, count, tint, bound);
            from = run.start;
            count = run.count;
        }
        drawRun(s, from, count, tint, bound);
        if (bound && materials[s])
            materials[s]->unbind();
    }
    vertices->unload(ARRAYS);
    lights->turnLightingOn();
}

bool CityBlock::behindStreetWall(const Vector3& eye, const Vector3& low, const Vector3& high)
{
    if (eye.y >= MIN_HEIGHT)
        return false;
    const float eyeAt[2] = {eye.z, eye.x};
    const float lowAt[2] = {low.z, low.x};
    const float highAt[2] = {high.z, high.x};
    const float lowAlong[2] = {low.x, low.z};
    const float highAlong[2] = {high.x, high.z};
    const float eyeAlong[2] = {eye.x, eye.z};
    // Across and along a street running along x, then along z.
    for (int axis = 0; axis < 2; ++axis) {
        const int street = static_cast<int>(std::floor(eyeAt[axis] / PITCH + 0.5f));
        const float centre = static_cast<float>(street * PITCH);
        if (street < 0 || street >= STREETS || std::fabs(eyeAt[axis] - centre) >= BLOCK_EDGE)
            continue;
        for (int side = -1; side <= 1; side += 2) {
            const float wall = centre + side * static_cast<float>(BLOCK_EDGE);
            // Strictly behind: the street's own facades stand in the wall's plane.
            const float near = side > 0 ? lowAt[axis] : -highAt[axis];
            if (near <= side * wall + 0.05f)
                continue;
            float from = 1e30f;
            float to = -1e30f;
            float top = -1e30f;
            for (int corner = 0; corner < 8; ++corner) {
                const float across = corner & 1 ? highAt[axis] : lowAt[axis];
                const float along = corner & 2 ? highAlong[axis] : lowAlong[axis];
                const float y = corner & 4 ? high.y : low.y;
                const float t = (wall - eyeAt[axis]) / (across - eyeAt[axis]);
                const float at = eyeAlong[axis] + t * (along - eyeAlong[axis]);
                from = std::min(from, at);
                to = std::max(to, at);
                top = std::max(top, eye.y + t * (y - eye.y));
            }
            const int block = static_cast<int>(std::floor(from / PITCH));
            if (top < MIN_HEIGHT && block >= FIRST_BLOCK && block <= LAST_BLOCK && from >= block * PITCH + BLOCK_EDGE &&
                to <= (block + 1) * PITCH - BLOCK_EDGE)
                return true;
        }
    }
    return false;
}

void CityBlock::drawRun(int s, int from, int count, const Color& tint, bool& bound)
{
    if (count == 0)
        return;
    if (!bound) {
        // A surface without its picture is drawn in its plain colour.
        const float* plain = SURFACES[s].fallback;
        if (materials[s]) {
            materials[s]->bind();
            glColor4f(tint.r, tint.g, tint.b, 1.0f);
        } else {
            glDisable(GL_TEXTURE_2D);
            glColor4f(tint.r * plain[0], tint.g * plain[1], tint.b * plain[2], 1.0f);
        }
        bound = true;
    }
    glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT, &indices[static_cast<size_t>(from)]);
    drawnFaces += count / 3;
}

void CityBlock::release()
{
    delete octree;
    octree = nullptr;
    for (int s = 0; s < SURFACE_COUNT; ++s) {
        delete materials[s];
        materials[s] = nullptr;
        delete textures[s];
        textures[s] = nullptr;
    }
    nodes.clear();
    indices.clear();
    runs.clear();
    visible.clear();
    faceCount = 0;
    leafCount = 0;
    drawnFaces = 0;
    visibleCount = 0;
}
