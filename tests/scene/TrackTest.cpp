// Tracks: sorted insertion, tangent set-up (open and closed), evaluation and time wrapping.
#include "scene/Lin3Track.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

Lin3Key* add(Track& track, int frame, const Vector3& value)
{
    Lin3Key* key = new Lin3Key(static_cast<float>(frame), value);
    track.insertKey(key);
    return key;
}

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-5f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

const Vector3 A(1, 2, 3);
const Vector3 B(11, -4, 7);

}  // namespace

TEST(TrackKeys, InsertKeepsFrameOrderAndPutsAnEqualFrameAfterTheOldKey)
{
    Track track;
    Lin3Key* k20 = add(track, 20, A);
    Lin3Key* k5 = add(track, 5, A);
    Lin3Key* old = add(track, 10, A);
    Lin3Key* newer = add(track, 10, B);
    EXPECT_EQ(track.getFirstKey(), k5);
    EXPECT_EQ(k5->getNextKey(), old);
    EXPECT_EQ(old->getNextKey(), newer);
    EXPECT_EQ(newer->getNextKey(), k20);
    EXPECT_EQ(track.getNumKeys(), 4);
    EXPECT_EQ(track.getLastFrame(), 20);
    EXPECT_EQ(track.findKey(10), old);
}

TEST(TrackKeys, NullIgnoredAndLoadingDoesNotCount)
{
    Track track;
    track.insertKey(nullptr);
    track.insertKey(new Lin3Key(3, A), true);
    EXPECT_EQ(track.getNumKeys(), 0);
    EXPECT_NE(track.findKey(3), nullptr);
}

TEST(TrackEvaluate, EmptySingleKeyAndTwoKeysMeetingAtTheHermiteMidpoint)
{
    Lin3Track track;
    track.setup();
    EXPECT_EQ(track.evaluate(4), Vector3());
    Lin3Key* first = add(track, 0, A);
    first->setDD(Vector3(5, 5, 5));
    track.setup();
    EXPECT_EQ(first->getDD(), Vector3());
    EXPECT_EQ(track.evaluate(-100), A);
    Lin3Key* last = add(track, 10, B);
    track.setup();
    EXPECT_EQ(first->getDD(), B - A);
    EXPECT_EQ(last->getDS(), B - A);
    expectNear(track.evaluate(5), (A + B) * 0.5f);
    EXPECT_EQ(track.evaluate(0), A);
    EXPECT_EQ(track.evaluate(25), B);
}

TEST(TrackEvaluate, BeforeTheFirstKeyGivesTheLastValue)
{
    Lin3Track track;
    add(track, 50, A);
    add(track, 60, B);
    track.setup();
    EXPECT_EQ(track.evaluate(20), B);
}

TEST(TrackEvaluate, RepeatWrapsAtTheLastFrame)
{
    Lin3Track track;
    add(track, 0, A);
    add(track, 30, Vector3(-5, 8, 0));
    add(track, 100, B);
    track.setFlags(Track::REPEAT);
    track.setup();
    expectNear(track.evaluate(150), track.evaluate(50));
    expectNear(track.evaluate(275.5f), track.evaluate(75.5f));
    expectNear(track.evaluate(100), A);
    EXPECT_NE(track.evaluate(150), B);
}

TEST(TrackSetup, ClosedSeamUsesPenultimateToLastInterval)
{
    const Vector3 P1(10, 0, 0);
    const Vector3 P2(10, 10, 0);
    Lin3Track track;
    Lin3Key* first = add(track, 0, A);
    add(track, 10, P1);
    add(track, 20, P2);
    Lin3Key* last = add(track, 40, A);
    track.setFlags(Track::CLOSED);
    track.setup();
    // Intervals 20 (frames 20..40) and 10 (0..10): incoming weight 2/3, outgoing 1/3.
    Vector3 chords = (A - P2) + (P1 - A);
    expectNear(first->getDS(), chords * (2.0f / 3.0f));
    expectNear(first->getDD(), chords * (1.0f / 3.0f));
    // The last key stands for the same moment and gets the same tangents.
    expectNear(last->getDS(), first->getDS());
    expectNear(last->getDD(), first->getDD());
}

TEST(TrackSetup, ClosedTwoKeyTrackStaysFinite)
{
    Lin3Track track;
    Lin3Key* first = add(track, 0, A);
    Lin3Key* last = add(track, 10, B);
    track.setFlags(Track::CLOSED | Track::REPEAT);
    track.setup();
    // Penultimate and first coincide: the chords cancel.
    EXPECT_EQ(first->getDD(), (B - A) * 0.5f);
    EXPECT_TRUE(std::isfinite(track.evaluate(15).x));
    EXPECT_TRUE(std::isfinite(last->getDS().x));
}
