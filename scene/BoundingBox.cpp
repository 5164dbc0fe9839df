// Box construction, containment, location and neighbour queries.
#include "scene/BoundingBox.h"

#include "scene/object/Chunk.h"

#include <algorithm>
#include <cmath>

namespace {

float component(const Vector3& v, int axis)
{
    return axis == 0 ? v.x : (axis == 1 ? v.y : v.z);
}

// Octree boxes meet at midpoints computed along different paths, so faces
// are matched with a tolerance that follows the size of the coordinates.
bool sameCoordinate(float a, float b)
{
    float scale = 1.0f + std::max(std::fabs(a), std::fabs(b));
    return std::fabs(a - b) <= 0.000001f * scale;
}

// Clips the segment against one slab; false once nothing of it is left.
bool clipSlab(float start, float delta, float low, float high, float& t0, float& t1)
{
    if (delta == 0.0f)
        return start >= low && start <= high;
    float a = (low - start) / delta;
    float b = (high - start) / delta;
    if (a > b)
        std::swap(a, b);
    t0 = std::max(t0, a);
    t1 = std::min(t1, b);
    return t0 <= t1;
}

}  // namespace

BoundingBox::BoundingBox() : kind(FROM_CORNERS), padding{0, 0, 0}, radius(0.0f) {}

BoundingBox::BoundingBox(const Vector3& min_, const Vector3& max_) : BoundingBox()
{
    create(min_, max_);
}

void BoundingBox::create(const Vector3& min_, const Vector3& max_)
{
    kind = FROM_CORNERS;
    min = min_;
    max = max_;
    centre = min + (max - min) * 0.5f;
    radius = min.distance(max) * 0.5f;
}

void BoundingBox::create(const Vector3& centre_, float r)
{
    kind = FROM_SPHERE;
    centre = centre_;
    min = centre - Vector3(r, r, r);
    max = centre + Vector3(r, r, r);
    radius = r;
}

void BoundingBox::calcCorners(Vector3 out[8]) const
{
    out[0].assign(min.x, min.y, min.z);
    out[1].assign(min.x, max.y, min.z);
    out[2].assign(max.x, min.y, min.z);
    out[3].assign(max.x, max.y, min.z);
    out[4].assign(min.x, min.y, max.z);
    out[5].assign(min.x, max.y, max.z);
    out[6].assign(max.x, min.y, max.z);
    out[7].assign(max.x, max.y, max.z);
}

Vector3 BoundingBox::getCorner(int direction) const
{
    return Vector3((direction & 4) ? max.x : min.x, (direction & 2) ? max.y : min.y, (direction & 1) ? max.z : min.z);
}

bool BoundingBox::isPointInside(const Vector3& p) const
{
    return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y && p.z >= min.z && p.z <= max.z;
}

bool BoundingBox::isSphereInside(const Vector3& c, float r) const
{
    return isPointInside(c - Vector3(r, r, r)) && isPointInside(c + Vector3(r, r, r));
}

bool BoundingBox::isBoxInside(const BoundingBox& box) const
{
    return isPointInside(box.min) && isPointInside(box.max);
}

bool BoundingBox::isLineInside(const Vector3& p1, const Vector3& p2) const
{
    return isPointInside(p1) && isPointInside(p2);
}

int BoundingBox::getPointLocation(const Vector3& p) const
{
    if (!isPointInside(p))
        return OUTSIDE;
    bool inner = p.x > min.x && p.x < max.x && p.y > min.y && p.y < max.y && p.z > min.z && p.z < max.z;
    return inner ? INSIDE : INTERSECTING;
}

int BoundingBox::getLineLocation(const Vector3& p1, const Vector3& p2) const
{
    if (isLineInside(p1, p2))
        return INSIDE;
    float t0 = 0.0f;
    float t1 = 1.0f;
    Vector3 delta = p2 - p1;
    for (int axis = 0; axis < 3; ++axis) {
        if (!clipSlab(component(p1, axis), component(delta, axis), component(min, axis), component(max, axis), t0, t1))
            return OUTSIDE;
    }
    return INTERSECTING;
}

int BoundingBox::getSphereLocation(const Vector3& c, float r) const
{
    if (isSphereInside(c, r))
        return INSIDE;
    float squared = 0.0f;
    for (int axis = 0; axis < 3; ++axis) {
        float value = component(c, axis);
        float nearest = std::max(component(min, axis), std::min(value, component(max, axis)));
        squared += (value - nearest) * (value - nearest);
    }
    return squared > r * r ? OUTSIDE : INTERSECTING;
}

int BoundingBox::getBoxLocation(const BoundingBox& box) const
{
    if (isBoxInside(box))
        return INSIDE;
    for (int axis = 0; axis < 3; ++axis) {
        if (component(box.min, axis) > component(max, axis) || component(box.max, axis) < component(min, axis))
            return OUTSIDE;
    }
    return INTERSECTING;
}

namespace {

// The two ranges overlap over more than a single value.
bool overlaps(float lowA, float highA, float lowB, float highB)
{
    return lowB < highA && highB > lowA && !sameCoordinate(lowB, highA) && !sameCoordinate(highB, lowA);
}

int adjacentOn(int axis, const Vector3& minA, const Vector3& maxA, const Vector3& minB, const Vector3& maxB)
{
    for (int other = 0; other < 3; ++other) {
        if (other == axis)
            continue;
        if (!overlaps(component(minA, other), component(maxA, other), component(minB, other), component(maxB, other)))
            return 0;
    }
    if (sameCoordinate(component(minB, axis), component(maxA, axis)))
        return 1;
    if (sameCoordinate(component(maxB, axis), component(minA, axis)))
        return -1;
    return 0;
}

}  // namespace

int BoundingBox::adjacentX(const BoundingBox& box) const
{
    return adjacentOn(0, min, max, box.min, box.max);
}

int BoundingBox::adjacentY(const BoundingBox& box) const
{
    return adjacentOn(1, min, max, box.min, box.max);
}

int BoundingBox::adjacentZ(const BoundingBox& box) const
{
    return adjacentOn(2, min, max, box.min, box.max);
}

bool BoundingBox::adjacent(const BoundingBox& box) const
{
    return adjacentX(box) != 0 || adjacentY(box) != 0 || adjacentZ(box) != 0;
}

void BoundingBox::makeCube()
{
    Vector3 extent = max - min;
    float half = std::max(extent.x, std::max(extent.y, extent.z)) * 0.5f;
    Vector3 middle = min + extent * 0.5f;
    create(middle - Vector3(half, half, half), middle + Vector3(half, half, half));
}

BoundingBox& BoundingBox::operator+=(const Vector3& offset)
{
    centre += offset;
    min += offset;
    max += offset;
    return *this;
}

BoundingBox BoundingBox::operator+(const Vector3& offset) const
{
    BoundingBox moved(*this);
    moved += offset;
    return moved;
}

bool BoundingBox::loadFields(std::istream& in, int paddingBytes)
{
    uint8_t newKind = 0;
    if (!Chunk::readByte(in, newKind))
        return false;
    char skipped[3];
    if (paddingBytes > 0)
        in.read(skipped, paddingBytes);
    float values[10];
    if (!Chunk::readFloats(in, values, 10))
        return false;
    kind = newKind;
    radius = values[0];
    centre.assign(values[1], values[2], values[3]);
    min.assign(values[4], values[5], values[6]);
    max.assign(values[7], values[8], values[9]);
    return Chunk::good(in);
}

bool BoundingBox::saveFields(std::ostream& out, int paddingBytes) const
{
    Chunk::writeByte(out, kind);
    if (paddingBytes > 0)
        out.write(reinterpret_cast<const char*>(padding), paddingBytes);
    const float values[10] = {radius, centre.x, centre.y, centre.z, min.x, min.y, min.z, max.x, max.y, max.z};
    Chunk::writeFloats(out, values, 10);
    return Chunk::good(out);
}

bool BoundingBox::load(std::istream& in)
{
    return loadFields(in, 0);
}

bool BoundingBox::save(std::ostream& out) const
{
    return saveFields(out, 0);
}

bool BoundingBox::loadImage(std::istream& in)
{
    return loadFields(in, 3);
}

bool BoundingBox::saveImage(std::ostream& out) const
{
    return saveFields(out, 3);
}
