// The forged city block, drawn from its octree: the leaves the camera's frustum can see, surface by surface, unlit.
#pragma once

#include "effects/CityLayout.h"
#include "math/Color.h"
#include "math/Vector3.h"

#include <cstdint>
#include <vector>

class Camera;
class MipMapTexture;
class Octree;
class TextureMaterial;

class CityBlock {
public:
    CityBlock();
    ~CityBlock();
    CityBlock(const CityBlock&) = delete;
    CityBlock& operator=(const CityBlock&) = delete;

    // Loads the octree and the pictures of its surfaces. A missing piece is reported once in the scene's
    // name; without the octree nothing is drawn, without a picture its surface takes a plain colour.
    bool load(const char* scene);
    void release();

    // The leaves in view, one draw per run of neighbouring leaves of one surface; the pictures are
    // modulated by the tint. Texturing is left off and the depth and colour state as found.
    void draw(const Camera& camera, const Color& tint);

    // Whether a box lies wholly behind a wall of the street the eye stands in, below the lowest roof:
    // every block side is a continuous wall at least the lowest building tall, broken only where the
    // cross streets meet it, so what is seen through that wall's plane within one block side is hidden.
    static bool behindStreetWall(const Vector3& eye, const Vector3& low, const Vector3& high);

    const Octree* getOctree() const { return octree; }
    // Faces in the file, and those the last draw sent.
    int getFaceCount() const { return faceCount; }
    int getDrawnFaces() const { return drawnFaces; }
    // Leaves with faces, and how many the last draw found in view.
    int getLeafCount() const { return leafCount; }
    int getVisibleLeaves() const { return visibleCount; }

private:
    // A node of the tree in walking order: the box and sphere round the faces below it, the index just
    // past its subtree, and its leaf number (or -1).
    struct Node {
        Vector3 low;
        Vector3 high;
        Vector3 centre;
        float radius;
        int next;
        int leaf;
    };
    struct Run {
        int start;
        int count;
    };

    void index();
    void loadPictures(const char* scene);
    int surfaceOf(uint32_t face) const;
    // One draw of `count` indices from `from`, binding the surface first if it is not yet.
    void drawRun(int surface, int from, int count, const Color& tint, bool& bound);

    Octree* octree;
    int faceCount;
    int leafCount;
    int drawnFaces;
    int visibleCount;
    std::vector<Node> nodes;
    // Vertex indices of every face, surface by surface and, within a surface, leaf by leaf.
    std::vector<uint32_t> indices;
    // The run of each leaf for each surface: runs[leaf * SURFACE_COUNT + surface].
    std::vector<Run> runs;
    std::vector<int> visible;
    MipMapTexture* textures[CityLayout::SURFACE_COUNT];
    TextureMaterial* materials[CityLayout::SURFACE_COUNT];
};
