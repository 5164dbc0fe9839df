// Octree: loading and saving the tree with its arrays, drawing the leaves, walking the nodes.
#include "scene/Octree.h"

#include "scene/Camera.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/VertexArray.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <GL/gl.h>

namespace {

const char* const tag = "OCTT";

}  // namespace

Octree::Octree() : root(nullptr), vertices(nullptr), faces(nullptr) {}

Octree::~Octree()
{
    destroy();
}

void Octree::destroy()
{
    delete root;
    delete vertices;
    delete faces;
    root = nullptr;
    vertices = nullptr;
    faces = nullptr;
}

bool Octree::create(VertexArray* newVertices, FaceArray* newFaces, OctreeNode* newRoot)
{
    if (!isEmpty() || !newVertices || !newFaces || !newRoot)
        return false;
    vertices = newVertices;
    faces = newFaces;
    root = newRoot;
    return true;
}

bool Octree::load(const char* fileName)
{
    if (!isEmpty())
        return false;
    std::stringstream in;
    if (!ChunkFile::readIn(fileName, in))
        return false;
    if (!MaterialMgr::getHandle()->load(in))
        return false;
    return load(in);
}

bool Octree::load(std::istream& in)
{
    if (!isEmpty())
        return false;
    if (!Chunk::readTag(in, tag))
        return false;
    vertices = new VertexArray();
    if (!vertices->load(in)) {
        destroy();
        return false;
    }
    faces = new FaceArray();
    if (!faces->load(in)) {
        destroy();
        return false;
    }
    root = new OctreeNode();
    if (!root->load(in)) {
        destroy();
        return false;
    }
    return Chunk::good(in);
}

bool Octree::save(const char* fileName) const
{
    if (!isComplete())
        return false;
    std::ofstream out;
    if (!ChunkFile::openOut(fileName, out))
        return false;
    if (!MaterialMgr::getHandle()->save(out))
        return false;
    return save(out);
}

bool Octree::save(std::ostream& out) const
{
    if (!isComplete())
        return false;
    if (!Chunk::writeTag(out, tag) || !vertices->save(out) || !faces->save(out) || !root->save(out))
        return false;
    return Chunk::good(out);
}

void Octree::render(const Camera& camera, OctreeRenderMode)
{
    if (!isComplete())
        return;
    Frustum frustum;
    frustum.update(camera);
    vertices->upload(UPLOAD_MASK);
    renderDefault(root, frustum);
    drawBatch();
    vertices->unload(UPLOAD_MASK);
}

void Octree::renderDefault(OctreeNode* node, const Frustum& frustum)
{
    if (!node)
        return;
    if (frustum.getSphereLocation(node->getCentre(), node->getRadius()) == Frustum::OUTSIDE)
        return;
    if (node->hasChildren()) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            renderDefault(node->getChild(i), frustum);
        return;
    }
    if (node->getNumFaces() > 0)
        gatherLeaf(node);
}

void Octree::renderFrontToBack(OctreeNode*, const Frustum&) {}

void Octree::renderBackToFront(OctreeNode*, const Frustum&) {}

bool Octree::drawable(uint32_t faceIndex) const
{
    if (faceIndex >= static_cast<uint32_t>(faces->getNumFaces()))
        return false;
    const Face& face = (*faces)[static_cast<int>(faceIndex)];
    const uint32_t count = static_cast<uint32_t>(vertices->getNumVertices());
    return face.indices[0] < count && face.indices[1] < count && face.indices[2] < count;
}

void Octree::drawLeafNode(OctreeNode* node)
{
    gatherLeaf(node);
    drawBatch();
}

void Octree::gatherLeaf(const OctreeNode* node)
{
    if (!node || !isComplete())
        return;
    for (int i = 0; i < node->getNumFaces(); ++i) {
        uint32_t index = node->getFaceIndex(i);
        // A damaged file may name faces or vertices that are not there; GL
        // would read past the arrays, so such faces are skipped.
        if (!drawable(index))
            continue;
        const Face& face = (*faces)[static_cast<int>(index)];
        if (runs.empty() || runs.back().material != face.material)
            runs.push_back(Run{face.material, batch.size(), 0});
        batch.insert(batch.end(), face.indices, face.indices + 3);
        runs.back().count += 3;
    }
}

void Octree::drawBatch()
{
    for (const Run& run : runs) {
        if (run.material)
            run.material->bind();
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(run.count), GL_UNSIGNED_INT, batch.data() + run.first);
        if (run.material)
            run.material->unbind();
    }
    // Drawn element by element, the last vertex's normal and texture coordinates would be current.
    if (!batch.empty()) {
        const Vertex& last = (*vertices)[static_cast<int>(batch.back())];
        glNormal3fv(&last.normal.x);
        glTexCoord2fv(&last.uv.x);
    }
    batch.clear();
    runs.clear();
}

void Octree::parse(OctreeParseCallback callback)
{
    if (!isComplete() || !callback)
        return;
    parseNode(root, callback);
}

void Octree::parseNode(OctreeNode* node, OctreeParseCallback callback)
{
    if (!node)
        return;
    OctreeParseCode code = callback(node);
    // A leaf has nothing to descend into, whatever the callback answered.
    if (!node->hasChildren())
        return;
    if (code == OCTREE_PARSE_CHILDREN) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            parseNode(node->getChild(i), callback);
    } else if (code == OCTREE_PARSE_CHILDREN_REVERSED) {
        for (int i = OctreeNode::NUM_CHILDREN - 1; i >= 0; --i)
            parseNode(node->getChild(i), callback);
    }
}

void Octree::buildPVS(OctreeNode*) {}

void Octree::buildQuickPVS(OctreeNode*) {}

bool Octree::buildLeafPVS(OctreeNode*, OctreeNode*)
{
    return true;
}

void Octree::destroyNodeAndChildrenFromPVS(PVS&, OctreeNode*) {}

void Octree::setupDummyPVS(OctreeNode*) {}
