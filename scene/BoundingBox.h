// Axis-aligned box with its bounding sphere: mesh limits, culling and the octree's regions.
#pragma once

#include "math/Vector3.h"

#include <cstdint>
#include <istream>
#include <ostream>

class BoundingBox {
public:
    // How the box was made: from two corners, or from a centre and a half side.
    enum { FROM_CORNERS = 0, FROM_SPHERE = 1 };
    // Location answers: outside, crossing the surface, wholly inside.
    enum { OUTSIDE = 0, INTERSECTING = 1, INSIDE = 2 };

    BoundingBox();
    BoundingBox(const Vector3& min, const Vector3& max);

    // Kind 0; the radius is half the diagonal, the sphere around the box.
    void create(const Vector3& min, const Vector3& max);
    // Kind 1; the radius stays r, half the side, not half the diagonal.
    void create(const Vector3& centre, float r);

    uint8_t getKind() const { return kind; }
    float getRadius() const { return radius; }
    const Vector3& getCentre() const { return centre; }
    const Vector3& getMin() const { return min; }
    const Vector3& getMax() const { return max; }

    // (minx,miny,minz), (minx,maxy,minz), (maxx,miny,minz), (maxx,maxy,minz), then the same at maxz.
    void calcCorners(Vector3 out[8]) const;
    // Corner by octant code, as the octree numbers its children: bit 2 upper x, bit 1 upper y, bit 0 upper z.
    Vector3 getCorner(int direction) const;

    // Containment, bounds inclusive.
    bool isPointInside(const Vector3& p) const;
    bool isSphereInside(const Vector3& centre, float r) const;
    bool isBoxInside(const BoundingBox& box) const;
    bool isLineInside(const Vector3& p1, const Vector3& p2) const;

    // OUTSIDE, INTERSECTING or INSIDE. A point on a face intersects.
    int getPointLocation(const Vector3& p) const;
    int getLineLocation(const Vector3& p1, const Vector3& p2) const;
    int getSphereLocation(const Vector3& centre, float r) const;
    int getBoxLocation(const BoundingBox& box) const;

    // Face neighbours: +1 when box lies against this box's upper face on that
    // axis, -1 against its lower face, 0 when the two do not share a face there.
    int adjacentX(const BoundingBox& box) const;
    int adjacentY(const BoundingBox& box) const;
    int adjacentZ(const BoundingBox& box) const;
    bool adjacent(const BoundingBox& box) const;

    // Grows the shorter sides to the longest one around the same centre.
    void makeCube();

    // Translation of the whole box.
    BoundingBox& operator+=(const Vector3& offset);
    BoundingBox operator+(const Vector3& offset) const;

    // Kind (1 byte), radius, centre, min, max: 41 bytes.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;
    // The mesh's 44-byte limits image: the kind is followed by three padding bytes.
    bool loadImage(std::istream& in);
    bool saveImage(std::ostream& out) const;

protected:
    bool loadFields(std::istream& in, int padding);
    bool saveFields(std::ostream& out, int padding) const;

    uint8_t kind;
    uint8_t padding[3];
    float radius;
    Vector3 centre;
    Vector3 min;
    Vector3 max;
};
