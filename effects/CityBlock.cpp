// The city block: its octree indexed once into runs of faces per leaf and surface, then drawn where it is seen.
#include "effects/CityBlock.h"

#include "effects/SceneKit.h"

#include "gl/TextureStateKeeper.h"
#include "scene/Camera.h"
#include "scene/Face.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"
#include "texture/Material.h"
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
const float SKY_RADIUS = 200.0f;
const float GROUND_REACH = 2000.0f;
const float GROUND_DEPTH = -0.05f;
const Color GROUND(0.025f, 0.022f, 0.03f, 1.0f);

// A node of the tree in walking order: the box and sphere round the faces below it, the index just past its
// subtree, and its leaf number (or -1).
struct TreeNode {
    Vector3 low;
    Vector3 high;
    Vector3 centre;
    float radius;
    int next;
    int leaf;
};

// Where a leaf's faces of one surface lie in the index array.
struct Run {
    int start;
    int count;
};

Color blend(const Color& a, const Color& b, float t)
{
    return Color(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0f);
}

// The surfaces too small to matter far away.
bool detail(int surface)
{
    return surface == METAL || surface == ONE_WAY;
}

// The picture with its smaller levels made by GL from the cached one, so the facades do not sparkle down
// the streets; a single level is sampled, which costs less to draw than blending two. Made while another scene
// draws, its texture state is left as found.
Texture* mipmapped(Texture* texture)
{
    const TextureStateKeeper kept;
    texture->upload();
    glBindTexture(GL_TEXTURE_2D, texture->getGLName());
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    texture->updateSubTex();
    glBindTexture(GL_TEXTURE_2D, texture->getGLName());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    // GL holds every level now; an upload reads the picture again.
    texture->releasePixels();
    return texture;
}

// The nodes of a subtree in walking order, each with its leaf number, and where its subtree ends.
void walk(const OctreeNode* node, std::vector<TreeNode>& nodes, std::vector<const OctreeNode*>& leaves)
{
    const size_t at = nodes.size();
    nodes.push_back(TreeNode{Vector3(), Vector3(), Vector3(), -1.0f, 0,
                             node->hasChildren() ? -1 : static_cast<int>(leaves.size())});
    if (!node->hasChildren())
        leaves.push_back(node);
    for (int i = 0; node->hasChildren() && i < OctreeNode::NUM_CHILDREN; ++i)
        walk(node->getChild(i), nodes, leaves);
    nodes[at].next = static_cast<int>(nodes.size());
}

}  // namespace

// The block as loaded once: the tree, its faces indexed by leaf and surface, and the surfaces' looks.
struct CityBlock::Data {
    std::unique_ptr<Octree> octree;
    int faceCount = 0;
    int leafCount = 0;
    std::vector<TreeNode> nodes;
    // Vertex indices of every face, surface by surface and, within a surface, leaf by leaf.
    std::vector<uint32_t> indices;
    // The run of each leaf for each surface: runs[leaf * SURFACE_COUNT + surface].
    std::vector<Run> runs;
    std::unique_ptr<TextureMaterial> materials[SURFACE_COUNT];
    // The pictures that could not be read, reported again by each scene that shares the block.
    std::vector<const char*> missing;

    // A surface's picture with its smaller levels, or the surface reported missing.
    void loadSurface(int surface, const char* scene);
    void index();
    int surfaceOf(const Face& face) const;
};

std::weak_ptr<CityBlock::Data> CityBlock::shared;

const Color CityBlock::ZENITH(0.008f, 0.01f, 0.035f, 1.0f);
const Color CityBlock::HORIZON(0.15f, 0.075f, 0.14f, 1.0f);

CityBlock::CityBlock() : tried(0), visibleCount(0), drawnFaces(0) {}

CityBlock::~CityBlock()
{
    release();
}

bool CityBlock::loadNext(const char* scene)
{
    if (triedAll())
        return false;
    if (tried == 0) {
        std::shared_ptr<Data> held = shared.lock();
        if (held) {
            for (const char* file : held->missing)
                std::cerr << SceneKit::missingMessage(scene, file);
            adopt(held);
            tried = PIECES;
            return true;
        }
        loading = std::make_shared<Data>();
    }
    loadPiece(tried++, scene);
    return true;
}

void CityBlock::loadPiece(int piece, const char* scene)
{
    if (piece < OCTREE_PIECE) {
        loading->loadSurface(piece, scene);
        return;
    }
    if (piece == OCTREE_PIECE) {
        loading->octree.reset(SceneKit::loadOrReport<Octree>(scene, OCTREE));
        return;
    }
    // A block that did not load is not shared: the next scene tries again and says so in its name.
    if (loading->octree) {
        loading->index();
        shared = loading;
        adopt(loading);
    }
    loading.reset();
}

bool CityBlock::load(const char* scene)
{
    while (loadNext(scene)) {
    }
    return data != nullptr;
}

void CityBlock::adopt(const std::shared_ptr<Data>& block)
{
    data = block;
    visible.assign(static_cast<size_t>(data->leafCount), 0);
}

void CityBlock::Data::loadSurface(int s, const char* scene)
{
    const TextureFile& picture = SURFACES[s].picture;
    Texture* texture = SceneKit::loadTexture(picture);
    if (!texture || !texture->getDataPtr()) {
        std::cerr << SceneKit::missingMessage(scene, picture.file);
        missing.push_back(picture.file);
        return;
    }
    materials[s].reset(new TextureMaterial(SURFACES[s].material));
    materials[s]->setTexture(mipmapped(texture));
    materials[s]->setFlags(Material::textured);
    materials[s]->setBlendMode(Material::blendNone);
}

void CityBlock::release()
{
    data.reset();
    loading.reset();
    tried = 0;
    visible.clear();
    visibleCount = 0;
    drawnFaces = 0;
}

void CityBlock::releasePictures()
{
    if (!shared.expired())
        return;
    for (const SurfaceInfo& surface : SURFACES)
        SceneKit::releaseTexture(surface.picture);
}

const Octree* CityBlock::getOctree() const
{
    return data ? data->octree.get() : nullptr;
}

int CityBlock::getFaceCount() const
{
    return data ? data->faceCount : 0;
}

int CityBlock::getLeafCount() const
{
    return data ? data->leafCount : 0;
}

int CityBlock::Data::surfaceOf(const Face& face) const
{
    if (!face.material || !face.material->getName())
        return -1;
    for (int s = 0; s < SURFACE_COUNT; ++s)
        if (std::strcmp(face.material->getName(), SURFACES[s].material) == 0)
            return s;
    return -1;
}

void CityBlock::Data::index()
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
            const int s = surfaceOf(face);
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
}

void CityBlock::draw(const Camera& camera, const Color& tint)
{
    drawnFaces = 0;
    visibleCount = 0;
    if (!data)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3& eye = camera.getPosition();
    const std::vector<TreeNode>& nodes = data->nodes;
    for (size_t n = 0; n < nodes.size();) {
        const TreeNode& node = nodes[n];
        if (node.radius < 0.0f || !frustum.isSphereInside(node.centre, node.radius) ||
            behindStreetWall(eye, node.low, node.high)) {
            n = static_cast<size_t>(node.next);
            continue;
        }
        if (node.leaf >= 0)
            visible[static_cast<size_t>(visibleCount++)] = static_cast<int>(n);
        ++n;
    }

    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    const VertexArray* vertices = data->octree->getVertices();
    vertices->upload(ARRAYS);
    for (int s = 0; s < SURFACE_COUNT; ++s) {
        bool bound = false;
        int from = 0;
        int count = 0;
        for (int k = 0; k < visibleCount; ++k) {
            const TreeNode& node = nodes[static_cast<size_t>(visible[static_cast<size_t>(k)])];
            const Run& run = data->runs[static_cast<size_t>(node.leaf * SURFACE_COUNT + s)];
            if (run.count == 0 || (detail(s) && (node.centre - eye).length() - node.radius > DETAIL_DISTANCE))
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
        if (bound && data->materials[s])
            data->materials[s]->unbind();
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
        TextureMaterial* material = data->materials[s].get();
        const float* plain = SURFACES[s].fallback;
        if (material) {
            material->bind();
            glColor4f(tint.r, tint.g, tint.b, 1.0f);
        } else {
            glDisable(GL_TEXTURE_2D);
            glColor4f(tint.r * plain[0], tint.g * plain[1], tint.b * plain[2], 1.0f);
        }
        bound = true;
    }
    glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT, &data->indices[static_cast<size_t>(from)]);
    drawnFaces += count / 3;
}

void CityBlock::setupNight(float fogStart, float fogEnd)
{
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, fogStart);
    glFogf(GL_FOG_END, fogEnd);
    glHint(GL_FOG_HINT, GL_NICEST);
    glEnable(GL_FOG);
    setNightLight(1.0f);
}

void CityBlock::setNightLight(float light)
{
    // The far streets sink into the city's own glow, the colour of the sky at the horizon.
    const float fog[4] = {HORIZON.r * light, HORIZON.g * light, HORIZON.b * light, 1.0f};
    glClearColor(ZENITH.r * light, ZENITH.g * light, ZENITH.b * light, 1.0f);
    glFogfv(GL_FOG_COLOR, fog);
}

void CityBlock::endNight()
{
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
}

void CityBlock::drawSurroundings(const Camera& camera, float light)
{
    // Drawn after the block, where nothing nearer stands: a band of sky round the eye, the glow low down and
    // deep night above it (higher up the clear colour is the sky), and dark open ground round the city.
    static const float ELEVATIONS[] = {0.0f, 0.1f, 0.25f, 0.5f};
    static const float SHADES[] = {0.0f, 0.4f, 0.8f, 1.0f};
    const int bands = sizeof(ELEVATIONS) / sizeof(ELEVATIONS[0]) - 1;
    const int segments = 24;
    const Vector3 eye = camera.getPosition();
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    glDepthMask(GL_FALSE);
    LightMgr::getHandle()->turnLightingOff();
    // The sky at the far plane, in the clear depth the block left.
    glDisable(GL_FOG);
    glDepthRange(1.0, 1.0);
    glDepthFunc(GL_LEQUAL);
    for (int b = 0; b < bands; ++b) {
        glBegin(GL_TRIANGLE_STRIP);
        for (int s = 0; s <= segments; ++s) {
            const float a = 6.2831855f * static_cast<float>(s) / segments;
            for (int edge = 1; edge >= 0; --edge) {
                const float e = ELEVATIONS[b + edge];
                const Color c = blend(HORIZON, ZENITH, SHADES[b + edge]);
                glColor4f(c.r * light, c.g * light, c.b * light, 1.0f);
                glVertex3f(eye.x + SKY_RADIUS * std::cos(e) * std::cos(a), eye.y + SKY_RADIUS * std::sin(e),
                           eye.z + SKY_RADIUS * std::cos(e) * std::sin(a));
            }
        }
        glEnd();
    }
    glDepthFunc(GL_LESS);
    glDepthRange(0.0, 1.0);
    glEnable(GL_FOG);
    // The ground as a frame round the city's sidewalks, just below the roads that run on out over it.
    const float low = static_cast<float>(FIRST_BLOCK * PITCH + ROAD_HALF);
    const float high = static_cast<float>((LAST_BLOCK + 1) * PITCH - ROAD_HALF);
    const float far = GROUND_REACH;
    glColor4f(GROUND.r * light, GROUND.g * light, GROUND.b * light, 1.0f);
    glBegin(GL_QUADS);
    const float strips[4][4] = {
        {-far, -far, far, low}, {-far, high, far, far}, {-far, low, low, high}, {high, low, far, high}};
    for (const auto& r : strips) {
        glVertex3f(r[0], GROUND_DEPTH, r[1]);
        glVertex3f(r[0], GROUND_DEPTH, r[3]);
        glVertex3f(r[2], GROUND_DEPTH, r[3]);
        glVertex3f(r[2], GROUND_DEPTH, r[1]);
    }
    glEnd();
    LightMgr::getHandle()->turnLightingOn();
    glDepthMask(GL_TRUE);
    glEnable(GL_CULL_FACE);
}
