// Draws a loaded octree the fast way: each leaf's faces grouped by material into display lists, leaves culled by the view.
//
// The octree's own render visits every node and sends each face as its own primitive, which tens of thousands of
// faces cannot afford. Here every face belongs to one leaf (the first that lists it), a leaf's culling box grows to
// hold its faces whole, and a frame binds each material once for all visible leaves.
#pragma once

#include "math/Color.h"
#include "math/Plane.h"
#include "math/Vector3.h"

#include <cstdint>
#include <functional>
#include <vector>

class Camera;
class Frustum;
class Material;
class Octree;
class VertexArray;

class OctreeBatch {
public:
    enum { VIEW_PLANES = 6 };

    OctreeBatch();
    // Frees memory only: display lists go in release(), while GL is there.
    ~OctreeBatch();
    OctreeBatch(const OctreeBatch&) = delete;
    OctreeBatch& operator=(const OctreeBatch&) = delete;

    // The material a face is drawn with, given the one its file names.
    using MaterialChoice = std::function<Material*(Material*)>;

    // Groups a complete octree's faces by leaf and material; no GL. The octree must outlive
    // compile(). Faces naming vertices the array lacks are left out.
    bool build(const Octree& tree, const MaterialChoice& drawWith = MaterialChoice());
    // The colour a vertex is drawn in, from its normal and its face's material.
    using Shading = std::function<Color(const Vector3& normal, const Material* material)>;
    // Lights every vertex once, for lights that never move against the geometry: the batch is
    // then drawn unlit in these colours, which spares the lighting of every vertex every frame.
    // Call between build() and compile().
    void bake(const Shading& shade);
    bool isBaked() const { return baked; }

    // One display list per leaf and material, and the materials' textures sent to GL.
    bool compile();
    // Deletes the lists and forgets the grouping.
    void release();

    int getLeafCount() const { return static_cast<int>(leaves.size()); }
    int getFaceCount() const { return faceCount; }
    int getMaterialCount() const { return static_cast<int>(materials.size()); }
    // In drawing order.
    const Material* getMaterial(int i) const { return materials[static_cast<size_t>(i)]; }
    int getVisibleLeaves() const { return visibleLeaves; }
    int getVisibleFaces() const { return visibleFaces; }

    // Marks the leaves whose boxes are not wholly behind one of the planes (normals facing
    // inwards); returns how many. No GL.
    int cull(const Plane* planes, int count);
    int cull(const Frustum& frustum);
    // Puts the marked leaves in order of distance from the eye, nearest first, so that what lies
    // behind is mostly rejected by its depth before it is shaded.
    void sortFrom(const Vector3& eye);
    // Draws the marked leaves, opaque materials first, each material's leaves in the sorted order.
    void draw() const;

    // The planes of a camera's view for a picture of that aspect, without GL.
    static void viewPlanes(const Camera& camera, float aspect, Plane planes[VIEW_PLANES]);

private:
    struct Run {
        int material;
        uint32_t first;
        uint32_t count;
    };
    struct Leaf {
        Vector3 min;
        Vector3 max;
        int firstRun;
        int runCount;
    };

    void addLeaf(const Octree& tree, const uint32_t* faces, int count, std::vector<uint8_t>& taken);
    Material* chosen(Material* named) const { return choose ? choose(named) : named; }
    int materialIndex(Material* material);
    void orderMaterials();

    const VertexArray* vertices;
    MaterialChoice choose;
    std::vector<Material*> materials;
    std::vector<uint32_t> indices;
    // Baked colours, four bytes a vertex, kept until the lists hold them.
    bool baked;
    std::vector<uint8_t> colours;
    std::vector<Run> runs;
    std::vector<Leaf> leaves;
    std::vector<uint8_t> visible;
    // The visible leaves' indices, in drawing order, and their distances; sized once by build().
    std::vector<int> order;
    std::vector<float> distances;
    unsigned int listBase;
    int faceCount;
    int visibleLeaves;
    int visibleFaces;
};
