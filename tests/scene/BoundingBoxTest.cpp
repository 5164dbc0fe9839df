// Bounding boxes: the two constructions, containment, locations, neighbours and the 41-byte record.
#include "scene/BoundingBox.h"

#include "ByteImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

BoundingBox unit(Vector3(0, 0, 0), Vector3(1, 1, 1));

}  // namespace

TEST(BoundingBoxConstruction, CornersGiveHalfTheDiagonalButCentreAndRadiusHalfTheSide)
{
    BoundingBox corners(Vector3(-1, -2, -3), Vector3(1, 2, 3));
    EXPECT_EQ(corners.getKind(), BoundingBox::FROM_CORNERS);
    EXPECT_EQ(corners.getCentre(), Vector3(0, 0, 0));
    EXPECT_FLOAT_EQ(corners.getRadius(), std::sqrt(4.0f + 16.0f + 36.0f) * 0.5f);
    BoundingBox sphere;
    sphere.create(Vector3(1, 2, 3), 2.0f);
    EXPECT_EQ(sphere.getKind(), BoundingBox::FROM_SPHERE);
    EXPECT_EQ(sphere.getMin(), Vector3(-1, 0, 1));
    EXPECT_EQ(sphere.getMax(), Vector3(3, 4, 5));
    EXPECT_EQ(sphere.getRadius(), 2.0f);
}

TEST(BoundingBoxContainment, BoundsAreInclusive)
{
    EXPECT_TRUE(unit.isPointInside(Vector3(0, 0, 0)));
    EXPECT_TRUE(unit.isPointInside(Vector3(1, 1, 1)));
    EXPECT_FALSE(unit.isPointInside(Vector3(1.0000001f, 0.5f, 0.5f)));
    EXPECT_FALSE(unit.isPointInside(Vector3(0.5f, -0.0000001f, 0.5f)));
    EXPECT_TRUE(unit.isSphereInside(Vector3(0.5f, 0.5f, 0.5f), 0.5f));
    EXPECT_FALSE(unit.isSphereInside(Vector3(0.5f, 0.5f, 0.5f), 0.6f));
    EXPECT_TRUE(unit.isBoxInside(BoundingBox(Vector3(0, 0, 0), Vector3(1, 0.5f, 1))));
    EXPECT_FALSE(unit.isBoxInside(BoundingBox(Vector3(0, 0, 0), Vector3(1, 1.5f, 1))));
}

TEST(BoundingBoxLocation, PointsLinesSpheresAndBoxes)
{
    const auto IN = BoundingBox::INSIDE, CUT = BoundingBox::INTERSECTING, OUT = BoundingBox::OUTSIDE;
    EXPECT_EQ(unit.getPointLocation(Vector3(1, 0.5f, 0.5f)), CUT);
    const struct {
        Vector3 a, b;
        int expected;
    } lines[] = {
        {{0.2f, 0.2f, 0.2f}, {0.8f, 0.8f, 0.8f}, IN},
        {{-1, 0.5f, 0.5f}, {2, 0.5f, 0.5f}, CUT},      // both ends outside, passing through
        {{-3, 0.5f, 0.5f}, {-0.1f, 0.5f, 0.5f}, OUT},  // stops short
        {{-1, 2, 0.5f}, {2, 2, 0.5f}, OUT},            // parallel to a face, beside it
        {{1.5f, 0, 0.5f}, {3, 1.5f, 0.5f}, OUT},       // diagonal past a corner
    };
    for (const auto& l : lines)
        EXPECT_EQ(unit.getLineLocation(l.a, l.b), l.expected) << l.a << " " << l.b;
    EXPECT_EQ(unit.getSphereLocation(Vector3(1.5f, 0.5f, 0.5f), 0.75f), CUT);
    // Off a corner: within reach on each axis, yet too far diagonally.
    EXPECT_EQ(unit.getSphereLocation(Vector3(1.6f, 1.6f, 1.6f), 0.7f), OUT);
    EXPECT_EQ(unit.getSphereLocation(Vector3(0.5f, 0.5f, 0.5f), 5.0f), CUT);
    EXPECT_EQ(unit.getBoxLocation(BoundingBox(Vector3(0.25f, 0.25f, 0.25f), Vector3(0.75f, 0.75f, 0.75f))), IN);
    EXPECT_EQ(unit.getBoxLocation(BoundingBox(Vector3(-1, -1, -1), Vector3(2, 2, 2))), CUT);
}

TEST(BoundingBoxNeighbours, OnlyFaceSharingBoxesAreAdjacentAndRoundingDifferencesStillMeet)
{
    EXPECT_EQ(unit.adjacentY(BoundingBox(Vector3(1, 0, 0), Vector3(2, 1, 1))), 0);
    EXPECT_FALSE(unit.adjacent(BoundingBox(Vector3(1, 1, 0), Vector3(2, 2, 1))));     // edge contact
    EXPECT_FALSE(unit.adjacent(BoundingBox(Vector3(0.5f, 0, 0), Vector3(2, 1, 1))));  // overlap
    // Faces computed along different paths differ in the last bits.
    float summed = std::nextafter(std::nextafter(0.3f, 1.0f), 1.0f);
    BoundingBox box(Vector3(0, 0, 0), Vector3(summed, 1, 1));
    BoundingBox next(Vector3(0.3f, 0, 0), Vector3(1, 1, 1));
    EXPECT_EQ(box.adjacentX(next), 1);
    EXPECT_EQ(next.adjacentX(box), -1);
    // Far coordinates keep a tolerance of their own size.
    BoundingBox farBox(Vector3(0, 0, 0), Vector3(100000.0f, 1, 1));
    BoundingBox farNext(Vector3(100000.0f + 0.0078125f, 0, 0), Vector3(200000.0f, 1, 1));
    EXPECT_EQ(farBox.adjacentX(farNext), 1);
}

TEST(BoundingBoxRecord, FortyOneBytesRoundTripBitForBitAndAShortRecordKeepsTheBox)
{
    BoundingBox box;
    box.create(Vector3(1.5f, -2.25f, 1e-39f), 3.0f);
    const std::string image = bytes::saved(box);
    EXPECT_EQ(image.substr(0, 5), "\x01" + bytes::f32(3.0f));
    ASSERT_EQ(image.size(), 41u);
    BoundingBox copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(bytes::saved(copy), image);
    bytes::expectEveryPrefixFails<BoundingBox>(image, [](BoundingBox& b) { EXPECT_EQ(b.getMin(), Vector3()); });
}
