// Builds an octree over a mesh's faces for the content tools and writes it as an .oct file.
//
// Rules: the root is the cube around all vertices (a little margin so faces on
// the boundary lie inside). A node with more faces than the per-leaf limit is
// split into its eight octants until the depth limit. A face that straddles
// octant planes goes to every child box its triangle touches (exact
// triangle/box overlap): the running program draws leaves only, so a face kept
// at an enclosing inner node would never be drawn. Inner nodes hold no faces.
// A split that leaves every child with all of its parent's faces gains nothing
// and is not made. Faces whose first three indices do not all name vertices
// cannot be placed and are left out of every leaf; only a face's first three
// indices count, as only they are drawn.
#pragma once

class FaceArray;
class Octree;
class OctreeNode;
class VertexArray;

class OctreeBuilder {
public:
    OctreeBuilder();

    void setMaxDepth(int depth) { maxDepth = depth < 0 ? 0 : depth; }
    int getMaxDepth() const { return maxDepth; }
    void setMaxFacesPerLeaf(int count) { maxFacesPerLeaf = count < 1 ? 1 : count; }
    int getMaxFacesPerLeaf() const { return maxFacesPerLeaf; }

    // A new octree holding copies of both arrays; the caller owns it.
    Octree* build(const VertexArray& vertices, const FaceArray& faces) const;
    // Builds and writes the file: the material registry as it stands, then the tree.
    bool write(const VertexArray& vertices, const FaceArray& faces, const char* file) const;

private:
    int maxDepth;
    int maxFacesPerLeaf;
};
