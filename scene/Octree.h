// Static scenery as shared vertex and face arrays under a tree of boxes, loaded from .oct files.
#pragma once

#include "scene/OctreeNode.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <ostream>
#include <vector>

class Camera;
class FaceArray;
class Frustum;
class Material;
class VertexArray;

// Traversal orders; every one of them draws with the default traversal.
enum OctreeRenderMode : int {
    OCTREE_RENDER_DEFAULT = 0,
    OCTREE_RENDER_FRONT_TO_BACK = 1,
    OCTREE_RENDER_BACK_TO_FRONT = 2
};

// A parse callback's answer; any other value stops the walk below the node
// (the fixed underlying type makes every int a valid answer).
enum OctreeParseCode : int { OCTREE_PARSE_CHILDREN = 0, OCTREE_PARSE_CHILDREN_REVERSED = 1, OCTREE_PARSE_STOP = 2 };

typedef OctreeParseCode (*OctreeParseCallback)(OctreeNode* node);

class Octree {
public:
    // The client arrays a leaf is drawn from: positions, normals, texture coordinates.
    enum { UPLOAD_MASK = 7 };

    Octree();
    ~Octree();
    Octree(const Octree&) = delete;
    Octree& operator=(const Octree&) = delete;

    // An .oct file: the material registry, then the OCTT chunk. Only an empty octree loads.
    bool load(const char* fileName);
    bool load(std::istream& in);
    // Only a complete octree saves.
    bool save(const char* fileName) const;
    bool save(std::ostream& out) const;

    // Adopts the three parts, as a content tool assembles a tree; false unless
    // the octree is empty and all three are given.
    bool create(VertexArray* newVertices, FaceArray* newFaces, OctreeNode* newRoot);
    // Back to empty.
    void destroy();

    bool isEmpty() const { return !root && !vertices && !faces; }
    bool isComplete() const { return root && vertices && faces; }
    OctreeNode* getRoot() const { return root; }
    const VertexArray* getVertices() const { return vertices; }
    const FaceArray* getFaces() const { return faces; }

    // Draws the whole tree; the mode is accepted and every mode draws the same.
    void render(const Camera& camera, OctreeRenderMode mode);
    void renderDefault(OctreeNode* node, const Frustum& frustum);
    void renderFrontToBack(OctreeNode* node, const Frustum& frustum);
    void renderBackToFront(OctreeNode* node, const Frustum& frustum);
    // Each face of the leaf as its own triangle from the uploaded arrays, with its material bound around it.
    // Faces in a row that share a material go to GL in one call between one bind and one unbind, which draws
    // the same triangles in the same order; the last vertex's normal and texture coordinates are left current.
    void drawLeafNode(OctreeNode* node);

    void parse(OctreeParseCallback callback);

    // Nothing fills a PVS: every set stays empty and sees everything.
    void buildPVS(OctreeNode* node);
    void buildQuickPVS(OctreeNode* node);
    bool buildLeafPVS(OctreeNode* leaf, OctreeNode* node);
    void destroyNodeAndChildrenFromPVS(PVS& pvs, OctreeNode* node);
    void setupDummyPVS(OctreeNode* node);

private:
    // Faces in a row sharing a material: `count` indices of the batch from `first`.
    struct Run {
        Material* material;
        size_t first;
        size_t count;
    };

    void parseNode(OctreeNode* node, OctreeParseCallback callback);
    // A face whose first three indices name vertices of the array.
    bool drawable(uint32_t faceIndex) const;
    // Adds the leaf's faces to the batch; drawBatch sends the batch to GL and empties it.
    void gatherLeaf(const OctreeNode* node);
    void drawBatch();

    OctreeNode* root;
    VertexArray* vertices;
    FaceArray* faces;
    // Kept from frame to frame so that drawing allocates nothing once the first frame is drawn.
    std::vector<uint32_t> batch;
    std::vector<Run> runs;
};
