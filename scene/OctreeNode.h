// One box of the octree: its region, the faces of a leaf, eight children or none, and its PVS.
#pragma once

#include "scene/BoundingBox.h"
#include "scene/PVS.h"

#include <cstdint>
#include <istream>
#include <ostream>

class OctreeNode : public BoundingBox {
public:
    // Record flag bits.
    enum {
        HAS_CHILDREN = 1,
        HAS_FACES = 2,
        HAS_PVS = 4  // written for a non-empty set, carries no data, ignored on reading
    };
    enum { NUM_CHILDREN = 8 };
    // Deeper nesting in a file is taken as damage: no real tree comes near it,
    // and it keeps a hostile file from exhausting the stack.
    enum { MAX_LOAD_DEPTH = 48 };

    OctreeNode();
    OctreeNode(const BoundingBox& box, OctreeNode* father);
    ~OctreeNode();
    OctreeNode(const OctreeNode&) = delete;
    OctreeNode& operator=(const OctreeNode&) = delete;

    // The region of child i of box: bit 2 upper x half, bit 1 upper y, bit 0 upper z.
    static BoundingBox octant(const BoundingBox& box, int i);

    // One OCTN record with its nested children; refused when children exist.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;

    // The eight octant children as one array; false when they exist.
    bool createChildren();
    // n zeroed indices; false for a negative n or when indices exist.
    bool createFaceIndices(int n);
    // Stores at 0 <= i <= count: the bound is inclusive, so the array keeps one
    // spare slot past the count for that last position.
    void setFaceIndex(int i, unsigned long faceIndex);

    void setLimits(const BoundingBox& box);
    void setFather(OctreeNode* f) { father = f; }

    int getNumFaces() const { return numFaces; }
    const uint32_t* getFaceIndices() const { return faceIndices; }
    uint32_t getFaceIndex(int i) const { return faceIndices[i]; }
    OctreeNode* getFather() const { return father; }
    bool hasChildren() const { return children != nullptr; }
    OctreeNode* getChildren() const { return children; }
    OctreeNode* getChild(int i) const { return children ? &children[i] : nullptr; }
    PVS& getPVS() { return pvs; }
    const PVS& getPVS() const { return pvs; }
    uint32_t getVisNr() const { return visNr; }

    void markVisible() { visNr = curPvsVisNr; }
    // True for an empty set; otherwise whether a leaf of the set holds the point.
    bool PvsCanSee(const Vector3& point) const;

    // The box as white lines, for inspection.
    void draw() const;

    static uint32_t curPvsVisNr;

private:
    bool loadNode(std::istream& in, int depth);
    bool loadFaceIndices(std::istream& in);
    int depth() const;

    int32_t numFaces;
    uint32_t* faceIndices;
    OctreeNode* father;
    OctreeNode* children;
    PVS pvs;
    uint32_t visNr;
};
