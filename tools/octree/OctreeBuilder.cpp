// OctreeBuilder: root cube, octant subdivision and triangle/box placement.
#include "tools/octree/OctreeBuilder.h"

#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/OctreeNode.h"
#include "scene/VertexArray.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

const int defaultMaxDepth = 6;
const int defaultMaxFacesPerLeaf = 32;

struct Triangle {
    Vector3 v[3];
};

// Separation of triangle and box along one axis, both projected onto it.
bool separated(const Vector3& axis, const Vector3* v, const Vector3& half)
{
    float p0 = axis.dot(v[0]);
    float p1 = axis.dot(v[1]);
    float p2 = axis.dot(v[2]);
    float r = half.x * std::fabs(axis.x) + half.y * std::fabs(axis.y) + half.z * std::fabs(axis.z);
    float lo = std::min(p0, std::min(p1, p2));
    float hi = std::max(p0, std::max(p1, p2));
    return lo > r || hi < -r;
}

// Separating axes of a triangle and an axis-aligned box: the box's three
// axes, the triangle's normal and the nine edge/axis cross products. The box
// is widened by a hair so that rounding never loses a face lying on a plane.
bool touches(const Triangle& t, const BoundingBox& box)
{
    Vector3 centre = (box.getMin() + box.getMax()) * 0.5f;
    Vector3 half = (box.getMax() - box.getMin()) * 0.5f;
    float slack = 1e-5f * std::max(1.0f, std::max(half.x, std::max(half.y, half.z)));
    half += Vector3(slack, slack, slack);

    Vector3 v[3] = {t.v[0] - centre, t.v[1] - centre, t.v[2] - centre};
    const Vector3 axes[3] = {Vector3(1, 0, 0), Vector3(0, 1, 0), Vector3(0, 0, 1)};
    for (const Vector3& a : axes)
        if (separated(a, v, half))
            return false;

    Vector3 edges[3] = {v[1] - v[0], v[2] - v[1], v[0] - v[2]};
    if (separated(edges[0].cross(edges[1]), v, half))
        return false;
    for (const Vector3& e : edges)
        for (const Vector3& a : axes)
            if (separated(e.cross(a), v, half))
                return false;
    return true;
}

class Placement {
public:
    Placement(const VertexArray& vertices, const FaceArray& faces, int maxDepth, int maxFacesPerLeaf)
        : maxDepth(maxDepth), maxFacesPerLeaf(maxFacesPerLeaf)
    {
        const int numVertices = vertices.getNumVertices();
        triangles.resize(static_cast<size_t>(std::max(0, faces.getNumFaces())));
        for (int f = 0; f < faces.getNumFaces(); ++f) {
            const Face& face = faces[f];
            bool valid = face.numIndices >= 3;
            for (int k = 0; k < 3 && valid; ++k)
                valid = face.indices[k] < static_cast<uint32_t>(numVertices);
            if (!valid)
                continue;
            for (int k = 0; k < 3; ++k)
                triangles[f].v[k] = vertices[static_cast<int>(face.indices[k])].position;
            placeable.push_back(static_cast<uint32_t>(f));
        }
    }

    const std::vector<uint32_t>& placeableFaces() const { return placeable; }

    void subdivide(OctreeNode* node, const std::vector<uint32_t>& list, int depth) const
    {
        if (static_cast<int>(list.size()) <= maxFacesPerLeaf || depth >= maxDepth) {
            makeLeaf(node, list);
            return;
        }
        std::vector<uint32_t> parts[OctreeNode::NUM_CHILDREN];
        bool progress = false;
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i) {
            BoundingBox region = OctreeNode::octant(*node, i);
            for (uint32_t f : list)
                if (touches(triangles[f], region))
                    parts[i].push_back(f);
            if (parts[i].size() < list.size())
                progress = true;
        }
        if (!progress) {
            makeLeaf(node, list);
            return;
        }
        keepStrays(*node, list, parts);
        node->createChildren();
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            subdivide(node->getChild(i), parts[i], depth + 1);
    }

private:
    static void makeLeaf(OctreeNode* node, const std::vector<uint32_t>& list)
    {
        node->createFaceIndices(static_cast<int>(list.size()));
        for (size_t i = 0; i < list.size(); ++i)
            node->setFaceIndex(static_cast<int>(i), list[i]);
    }

    // A face the overlap test lost to rounding goes to the octant of its centroid,
    // so that no face ever drops out of the tree.
    void keepStrays(const BoundingBox& box, const std::vector<uint32_t>& list, std::vector<uint32_t>* parts) const
    {
        std::vector<int> seen(triangles.size(), 0);
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            for (uint32_t f : parts[i])
                seen[f] = 1;
        Vector3 mid = (box.getMin() + box.getMax()) * 0.5f;
        for (uint32_t f : list) {
            if (seen[f])
                continue;
            const Triangle& t = triangles[f];
            Vector3 c = (t.v[0] + t.v[1] + t.v[2]) / 3.0f;
            int i = (c.x >= mid.x ? 4 : 0) | (c.y >= mid.y ? 2 : 0) | (c.z >= mid.z ? 1 : 0);
            std::vector<uint32_t>& part = parts[i];
            part.insert(std::upper_bound(part.begin(), part.end(), f), f);
        }
    }

    int maxDepth;
    int maxFacesPerLeaf;
    std::vector<Triangle> triangles;
    std::vector<uint32_t> placeable;
};

// The cube around every vertex, with a margin for faces on its boundary.
BoundingBox rootCube(const VertexArray& vertices)
{
    if (vertices.getNumVertices() <= 0)
        return BoundingBox(Vector3(), Vector3());
    Vector3 lo = vertices[0].position;
    Vector3 hi = lo;
    for (int i = 1; i < vertices.getNumVertices(); ++i) {
        const Vector3& p = vertices[i].position;
        lo.assign(std::min(lo.x, p.x), std::min(lo.y, p.y), std::min(lo.z, p.z));
        hi.assign(std::max(hi.x, p.x), std::max(hi.y, p.y), std::max(hi.z, p.z));
    }
    Vector3 centre = (lo + hi) * 0.5f;
    Vector3 size = hi - lo;
    float half = std::max(size.x, std::max(size.y, size.z)) * 0.5f;
    half += half * 1e-4f + 1e-6f;
    return BoundingBox(centre - Vector3(half, half, half), centre + Vector3(half, half, half));
}

}  // namespace

OctreeBuilder::OctreeBuilder() : maxDepth(defaultMaxDepth), maxFacesPerLeaf(defaultMaxFacesPerLeaf) {}

Octree* OctreeBuilder::build(const VertexArray& vertices, const FaceArray& faces) const
{
    Placement placement(vertices, faces, maxDepth, maxFacesPerLeaf);
    OctreeNode* root = new OctreeNode(rootCube(vertices), nullptr);
    placement.subdivide(root, placement.placeableFaces(), 0);

    Octree* tree = new Octree();
    tree->create(new VertexArray(vertices), new FaceArray(faces), root);
    return tree;
}

bool OctreeBuilder::write(const VertexArray& vertices, const FaceArray& faces, const char* file) const
{
    Octree* tree = build(vertices, faces);
    bool ok = tree->save(file);
    delete tree;
    return ok;
}
