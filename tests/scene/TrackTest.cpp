// Key-frame tracks: TCB weights and records, sorted insertion, tangent set-up, evaluation, wrapping and LIN3.
#include "scene/Lin3Track.h"
#include "scene/TCB.h"

#include "ByteImage.h"
#include "support/VectorNear.h"

#include <gtest/gtest.h>
#include <climits>
#include <cmath>
#include <string>

using namespace bytes;

namespace {

Lin3Key* add(Track& track, int frame, const Vector3& value)
{
    Lin3Key* key = new Lin3Key(static_cast<float>(frame), value);
    track.insertKey(key);
    return key;
}

const Vector3 A(1, 2, 3);
const Vector3 B(11, -4, 7);

TCB keyAt(int frame)
{
    TCB t;
    t.setFrame(frame);
    return t;
}

struct Weights {
    float ksm, ksp, kdm, kdp;
};

Weights weights(TCB* prev, TCB& cur, TCB* next)
{
    Weights w{};
    TCB::tcb(prev, nullptr, &cur, nullptr, next, w.ksm, w.ksp, w.kdm, w.kdp);
    return w;
}

std::string header(uint16_t flags, uint32_t count)
{
    return "LIN3" + le16(flags) + le32(count);
}

std::string keyRecord(int frame, float x)
{
    Lin3Key key(static_cast<float>(frame), Vector3(x, 0, 0));
    return saved(key);
}

// A track with awkward bit patterns in its float fields.
void fill(Lin3Track& track)
{
    track.setFlags(0x8003);
    Lin3Key* a = new Lin3Key(-7, Vector3(-0.0f, 1e-40f, 0.1f));
    a->setContinuity(-1.0f / 3.0f);
    a->setBias(fromBits(1u));
    track.insertKey(a);
    track.insertKey(new Lin3Key(100, Vector3(3.4028235e38f, -1.17549435e-38f, 12345.678f)));
    track.insertKey(new Lin3Key(100, Vector3(1, 2, 3)));
}

}  // namespace

TEST(TcbWeights, UnevenSpacingWithAllThreeParametersOfTheCurrentKeyOnly)
{
    TCB prev = keyAt(0), cur = keyAt(10), next = keyAt(30);
    cur.setTension(0.5f);
    cur.setContinuity(-0.5f);
    cur.setBias(0.25f);
    // The neighbours' parameters must not count.
    prev.setTension(0.9f);
    next.setBias(-0.7f);
    // Worked by hand: fp = 5/6, fn = 7/6 after the continuity adjustment.
    Weights w = weights(&prev, cur, &next);
    EXPECT_NEAR(w.ksm, 75.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.ksp, 15.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.kdm, 35.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.kdp, 63.0f / 192.0f, 1e-6f);
}

TEST(TcbWeights, DegenerateFramesStayFinite)
{
    const int frames[2][3] = {{5, 5, 5}, {INT_MIN, 0, INT_MAX}};
    for (const auto& f : frames) {
        TCB a = keyAt(f[0]), b = keyAt(f[1]), c = keyAt(f[2]);
        Weights w = weights(&a, b, &c);
        EXPECT_TRUE(std::isfinite(w.ksm) && std::isfinite(w.kdp)) << f[0];
    }
}

TEST(Lin3KeyFrame, CeilingOfTheTimeClampedToTheIntRange)
{
    const struct {
        float time;
        int frame;
    } cases[] = {{2.1f, 3}, {-2.5f, -2}, {4.0f, 4}, {-0.5f, 0}, {1e20f, INT_MAX}, {-1e20f, INT_MIN}, {NAN, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(Lin3Key(c.time, Vector3()).getFrame(), c.frame) << c.time;
}

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

TEST(TrackEvaluate, BeforeTheFirstKeyGivesTheLastValueAndRepeatWrapsAtTheLastFrame)
{
    Lin3Track track;
    add(track, 10, A);
    add(track, 30, Vector3(-5, 8, 0));
    add(track, 100, B);
    track.setup();
    EXPECT_EQ(track.evaluate(5), B);
    track.setFlags(Track::REPEAT);
    track.setup();
    expectNear(track.evaluate(150), track.evaluate(50));
    expectNear(track.evaluate(275.5f), track.evaluate(75.5f));
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
    add(track, 10, B);
    track.setFlags(Track::CLOSED | Track::REPEAT);
    track.setup();
    // Penultimate and first coincide: the chords cancel.
    EXPECT_EQ(first->getDD(), (B - A) * 0.5f);
    EXPECT_TRUE(std::isfinite(track.evaluate(15).x));
}

TEST(Lin3Chunk, LayoutIsHeaderThenKeyRecordsAndRoundTripsBitForBit)
{
    Lin3Track track;
    fill(track);
    const std::string first = saved(track);
    ASSERT_EQ(first.size(), 10u + 3u * Lin3Key::RECORD_SIZE);
    // A key is a TCB0 record (frame, flags, five floats) followed by its value.
    EXPECT_EQ(first.substr(0, 18), header(0x8003, 3) + "TCB0" + le32(uint32_t(-7)));
    EXPECT_EQ(first.substr(28, 4), f32(fromBits(1u)));  // bias: tension and continuity come first
    EXPECT_EQ(first.substr(40, 4), f32(-0.0f));
    EXPECT_EQ(first.substr(10 + Lin3Key::RECORD_SIZE, 4), "TCB0");
    std::istringstream in(first);
    Lin3Track back;
    ASSERT_TRUE(back.load(in));
    EXPECT_EQ(saved(back), first);
}

// Frames and x values of the keys in list order.
std::string keysOf(const Track& track)
{
    std::string keys;
    for (const Key* k = track.getFirstKey(); k; k = k->getNextKey())
        keys += std::to_string(k->getFrame()) + ":" +
                std::to_string(static_cast<int>(static_cast<const Lin3Key*>(k)->getPosition().x)) + " ";
    return keys;
}

TEST(Lin3Chunk, LoadSortsKeysInAmongThoseAlreadyThereAndTakesTheCountRead)
{
    Lin3Track track;
    add(track, 20, Vector3(7, 0, 0));
    add(track, 1, Vector3(8, 0, 0));
    std::istringstream in(header(0, 3) + keyRecord(20, 1) + keyRecord(5, 2) + keyRecord(20, 3));
    ASSERT_TRUE(track.load(in));
    // File order among equal frames, each behind the keys that were there.
    EXPECT_EQ(keysOf(track), "1:8 5:2 20:7 20:1 20:3 ");
    EXPECT_EQ(track.getNumKeys(), 3);
}

TEST(Lin3Chunk, ZeroOrNegativeCountLoadsNothingButIsKept)
{
    for (uint32_t count : {0u, 0xffffffffu, 0x80000000u}) {
        std::istringstream in(header(2, count) + "trailing");
        Lin3Track track;
        EXPECT_TRUE(track.load(in)) << count;
        EXPECT_EQ(track.getNumKeys(), static_cast<int32_t>(count));
        EXPECT_EQ(track.getFirstKey(), nullptr);
        EXPECT_EQ(track.getFlags(), 2);
    }
}

TEST(Lin3Chunk, TruncatedAnywhereFailsKeepingTheKeysBeforeTheCut)
{
    Lin3Track track;
    fill(track);
    const std::string whole = saved(track);
    for (size_t n = 0; n < whole.size(); ++n) {
        Lin3Track partial;
        std::istringstream in(whole.substr(0, n));
        EXPECT_FALSE(partial.load(in)) << n;
        size_t wholeKeys = n < 10 ? 0 : (n - 10) / Lin3Key::RECORD_SIZE;
        int listed = 0;
        for (const Key* k = partial.getFirstKey(); k; k = k->getNextKey())
            ++listed;
        EXPECT_EQ(listed, static_cast<int>(wholeKeys)) << n;
        EXPECT_EQ(partial.getNumKeys(), n < 10 ? 0 : 3) << n;
    }
}

TEST(Lin3Chunk, ACountPastTheEndKeepsTheKeysReadBeforeTheCutAndWrongTagsFail)
{
    Lin3Track track;
    std::istringstream absurd(header(0, 0x7fffffff) + keyRecord(1, 1));
    EXPECT_FALSE(track.load(absurd));
    EXPECT_EQ(keysOf(track), "1:1 ");
    EXPECT_EQ(track.getNumKeys(), 0x7fffffff);
    Lin3Track other;
    std::istringstream wrongTrack("LIN2" + header(0, 0).substr(4));
    EXPECT_FALSE(other.load(wrongTrack));
    std::istringstream wrongKey(header(0, 2) + keyRecord(0, 0) + "TCB1" + keyRecord(1, 1).substr(4));
    EXPECT_FALSE(other.load(wrongKey));
    EXPECT_EQ(keysOf(other), "0:0 ");
}
