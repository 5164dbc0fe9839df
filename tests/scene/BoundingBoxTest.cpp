// Bounding boxes: the two constructions, corners, containment, locations, neighbours and the 41-byte record.
#include "scene/BoundingBox.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>

namespace {

BoundingBox unitBox()
{
    return BoundingBox(Vector3(0, 0, 0), Vector3(1, 1, 1));
}

} // namespace

TEST(BoundingBoxConstruction, TwoCornersGiveTheSphereAroundTheBox)
{
    BoundingBox box(Vector3(-1, -2, -3), Vector3(1, 2, 3));
    EXPECT_EQ(box.getKind(), BoundingBox::FROM_CORNERS);
    EXPECT_EQ(box.getCentre(), Vector3(0, 0, 0));
    EXPECT_FLOAT_EQ(box.getRadius(), std::sqrt(4.0f + 16.0f + 36.0f) * 0.5f);
}

TEST(BoundingBoxConstruction, CentreAndRadiusKeepHalfTheSide)
{
    BoundingBox box;
    box.create(Vector3(1, 2, 3), 2.0f);
    EXPECT_EQ(box.getKind(), BoundingBox::FROM_SPHERE);
    EXPECT_EQ(box.getMin(), Vector3(-1, 0, 1));
    EXPECT_EQ(box.getMax(), Vector3(3, 4, 5));
    // Not the half diagonal that the corner construction would give.
    EXPECT_EQ(box.getRadius(), 2.0f);
}

TEST(BoundingBoxConstruction, CornersComeInTheFixedOrder)
{
    BoundingBox box(Vector3(1, 2, 3), Vector3(4, 5, 6));
    Vector3 corners[8];
    box.calcCorners(corners);
    const Vector3 expected[8] = {
        {1, 2, 3}, {1, 5, 3}, {4, 2, 3}, {4, 5, 3},
        {1, 2, 6}, {1, 5, 6}, {4, 2, 6}, {4, 5, 6},
    };
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(corners[i], expected[i]) << i;
}

TEST(BoundingBoxConstruction, GetCornerFollowsTheOctantBits)
{
    BoundingBox box(Vector3(1, 2, 3), Vector3(4, 5, 6));
    EXPECT_EQ(box.getCorner(0), Vector3(1, 2, 3));
    EXPECT_EQ(box.getCorner(1), Vector3(1, 2, 6));
    EXPECT_EQ(box.getCorner(2), Vector3(1, 5, 3));
    EXPECT_EQ(box.getCorner(4), Vector3(4, 2, 3));
    EXPECT_EQ(box.getCorner(7), Vector3(4, 5, 6));
}

TEST(BoundingBoxConstruction, MakeCubeGrowsAroundTheCentre)
{
    BoundingBox box(Vector3(0, 0, 0), Vector3(4, 2, 1));
    box.makeCube();
    EXPECT_EQ(box.getMin(), Vector3(0, -1, -1.5f));
    EXPECT_EQ(box.getMax(), Vector3(4, 3, 2.5f));
    EXPECT_EQ(box.getCentre(), Vector3(2, 1, 0.5f));
}

TEST(BoundingBoxConstruction, TranslationMovesEveryPoint)
{
    BoundingBox box = unitBox();
    BoundingBox moved = box + Vector3(10, 0, -1);
    EXPECT_EQ(box.getMin(), Vector3(0, 0, 0));
    EXPECT_EQ(moved.getMin(), Vector3(10, 0, -1));
    EXPECT_EQ(moved.getMax(), Vector3(11, 1, 0));
    EXPECT_EQ(moved.getCentre(), Vector3(10.5f, 0.5f, -0.5f));
    EXPECT_EQ(moved.getRadius(), box.getRadius());
    box += Vector3(10, 0, -1);
    EXPECT_EQ(box.getMax(), moved.getMax());
}

TEST(BoundingBoxContainment, BoundsAreInclusive)
{
    BoundingBox box = unitBox();
    EXPECT_TRUE(box.isPointInside(Vector3(0, 0, 0)));
    EXPECT_TRUE(box.isPointInside(Vector3(1, 1, 1)));
    EXPECT_FALSE(box.isPointInside(Vector3(1.0000001f, 0.5f, 0.5f)));
    EXPECT_FALSE(box.isPointInside(Vector3(0.5f, -0.0000001f, 0.5f)));
    EXPECT_TRUE(box.isSphereInside(Vector3(0.5f, 0.5f, 0.5f), 0.5f));
    EXPECT_FALSE(box.isSphereInside(Vector3(0.5f, 0.5f, 0.5f), 0.6f));
    EXPECT_TRUE(box.isBoxInside(BoundingBox(Vector3(0, 0, 0), Vector3(1, 0.5f, 1))));
    EXPECT_FALSE(box.isBoxInside(BoundingBox(Vector3(0, 0, 0), Vector3(1, 1.5f, 1))));
    EXPECT_TRUE(box.isLineInside(Vector3(0, 0, 0), Vector3(1, 1, 1)));
    EXPECT_FALSE(box.isLineInside(Vector3(0, 0, 0), Vector3(2, 1, 1)));
}

TEST(BoundingBoxLocation, Points)
{
    BoundingBox box = unitBox();
    EXPECT_EQ(box.getPointLocation(Vector3(0.5f, 0.5f, 0.5f)), BoundingBox::INSIDE);
    EXPECT_EQ(box.getPointLocation(Vector3(1, 0.5f, 0.5f)), BoundingBox::INTERSECTING);
    EXPECT_EQ(box.getPointLocation(Vector3(1.5f, 0.5f, 0.5f)), BoundingBox::OUTSIDE);
}

TEST(BoundingBoxLocation, Lines)
{
    BoundingBox box = unitBox();
    EXPECT_EQ(box.getLineLocation(Vector3(0.2f, 0.2f, 0.2f), Vector3(0.8f, 0.8f, 0.8f)), BoundingBox::INSIDE);
    // Both ends outside, the segment passes through.
    EXPECT_EQ(box.getLineLocation(Vector3(-1, 0.5f, 0.5f), Vector3(2, 0.5f, 0.5f)), BoundingBox::INTERSECTING);
    EXPECT_EQ(box.getLineLocation(Vector3(0.5f, 0.5f, 0.5f), Vector3(5, 5, 5)), BoundingBox::INTERSECTING);
    // Stops short of the box.
    EXPECT_EQ(box.getLineLocation(Vector3(-3, 0.5f, 0.5f), Vector3(-0.1f, 0.5f, 0.5f)), BoundingBox::OUTSIDE);
    // Parallel to a face, beside it.
    EXPECT_EQ(box.getLineLocation(Vector3(-1, 2, 0.5f), Vector3(2, 2, 0.5f)), BoundingBox::OUTSIDE);
    // Diagonal past a corner.
    EXPECT_EQ(box.getLineLocation(Vector3(1.5f, 0, 0.5f), Vector3(3, 1.5f, 0.5f)), BoundingBox::OUTSIDE);
}

TEST(BoundingBoxLocation, Spheres)
{
    BoundingBox box = unitBox();
    EXPECT_EQ(box.getSphereLocation(Vector3(0.5f, 0.5f, 0.5f), 0.25f), BoundingBox::INSIDE);
    EXPECT_EQ(box.getSphereLocation(Vector3(1.5f, 0.5f, 0.5f), 0.75f), BoundingBox::INTERSECTING);
    EXPECT_EQ(box.getSphereLocation(Vector3(1.5f, 0.5f, 0.5f), 0.25f), BoundingBox::OUTSIDE);
    // Off a corner: inside the slabs' reach on each axis, yet too far diagonally.
    EXPECT_EQ(box.getSphereLocation(Vector3(1.6f, 1.6f, 1.6f), 0.7f), BoundingBox::OUTSIDE);
    EXPECT_EQ(box.getSphereLocation(Vector3(0.5f, 0.5f, 0.5f), 5.0f), BoundingBox::INTERSECTING);
}

TEST(BoundingBoxLocation, Boxes)
{
    BoundingBox box = unitBox();
    EXPECT_EQ(box.getBoxLocation(BoundingBox(Vector3(0.25f, 0.25f, 0.25f), Vector3(0.75f, 0.75f, 0.75f))),
              BoundingBox::INSIDE);
    EXPECT_EQ(box.getBoxLocation(BoundingBox(Vector3(0.5f, 0.5f, 0.5f), Vector3(2, 2, 2))),
              BoundingBox::INTERSECTING);
    EXPECT_EQ(box.getBoxLocation(BoundingBox(Vector3(-1, -1, -1), Vector3(2, 2, 2))),
              BoundingBox::INTERSECTING);
    EXPECT_EQ(box.getBoxLocation(BoundingBox(Vector3(0, 0, 1.5f), Vector3(1, 1, 2))),
              BoundingBox::OUTSIDE);
}

TEST(BoundingBoxNeighbours, FaceSharingBoxesAreAdjacentWithTheirSide)
{
    BoundingBox box = unitBox();
    BoundingBox right(Vector3(1, 0, 0), Vector3(2, 1, 1));
    BoundingBox below(Vector3(0, -1, 0), Vector3(1, 0, 1));
    BoundingBox front(Vector3(0.25f, 0.25f, 1), Vector3(0.5f, 0.5f, 1.5f));
    EXPECT_EQ(box.adjacentX(right), 1);
    EXPECT_EQ(right.adjacentX(box), -1);
    EXPECT_EQ(box.adjacentY(right), 0);
    EXPECT_EQ(box.adjacentY(below), -1);
    EXPECT_EQ(box.adjacentZ(front), 1);
    EXPECT_TRUE(box.adjacent(right));
    EXPECT_TRUE(box.adjacent(front));
}

TEST(BoundingBoxNeighbours, EdgeOrCornerContactAndGapsAreNotAdjacent)
{
    BoundingBox box = unitBox();
    BoundingBox edge(Vector3(1, 1, 0), Vector3(2, 2, 1));
    BoundingBox corner(Vector3(1, 1, 1), Vector3(2, 2, 2));
    BoundingBox gap(Vector3(1.1f, 0, 0), Vector3(2, 1, 1));
    BoundingBox overlapping(Vector3(0.5f, 0, 0), Vector3(2, 1, 1));
    EXPECT_FALSE(box.adjacent(edge));
    EXPECT_FALSE(box.adjacent(corner));
    EXPECT_FALSE(box.adjacent(gap));
    EXPECT_FALSE(box.adjacent(overlapping));
}

TEST(BoundingBoxNeighbours, RoundingDifferencesStillMeet)
{
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

TEST(BoundingBoxRecord, FortyOneBytesRoundTripBitForBit)
{
    BoundingBox box;
    box.create(Vector3(1.5f, -2.25f, 1e-39f), 3.0f);
    std::ostringstream out;
    ASSERT_TRUE(box.save(out));
    std::string image = out.str();
    ASSERT_EQ(image.size(), 41u);
    EXPECT_EQ(image[0], '\x01');
    float radius;
    std::memcpy(&radius, image.data() + 1, 4);
    EXPECT_EQ(radius, 3.0f);

    BoundingBox copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    std::ostringstream again;
    copy.save(again);
    EXPECT_EQ(again.str(), image);
    EXPECT_EQ(copy.getKind(), BoundingBox::FROM_SPHERE);
    EXPECT_EQ(copy.getCentre(), box.getCentre());
}

TEST(BoundingBoxRecord, ShortRecordFailsAndKeepsTheBox)
{
    BoundingBox box = unitBox();
    std::ostringstream out;
    box.save(out);
    std::string image = out.str();
    for (size_t n = 0; n < image.size(); ++n) {
        BoundingBox target(Vector3(5, 5, 5), Vector3(6, 6, 6));
        std::istringstream in(image.substr(0, n));
        EXPECT_FALSE(target.load(in)) << n;
        EXPECT_EQ(target.getMin(), Vector3(5, 5, 5));
    }
}
