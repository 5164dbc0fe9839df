// TCB keys: spline weights, the Hermite polynomial, the TCB0 record and key frames from times.
#include "scene/Cubic.h"
#include "scene/Key.h"
#include "scene/Lin3Key.h"
#include "scene/TCB.h"

#include <gtest/gtest.h>
#include <climits>
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

namespace {

TCB keyAt(int frame)
{
    TCB t;
    t.setFrame(frame);
    return t;
}

bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

struct Weights {
    float ksm, ksp, kdm, kdp;
};

Weights weights(TCB* prev, TCB* prevAlt, TCB& cur, TCB* nextAlt, TCB* next)
{
    Weights w{};
    TCB::tcb(prev, prevAlt, &cur, nextAlt, next, w.ksm, w.ksp, w.kdm, w.kdp);
    return w;
}

}  // namespace

TEST(TcbWeights, NoNeighboursMeansHalfEach)
{
    TCB cur;
    Weights w = weights(nullptr, nullptr, cur, nullptr, nullptr);
    EXPECT_EQ(w.ksm, 0.5f);
    EXPECT_EQ(w.ksp, 0.5f);
    EXPECT_EQ(w.kdm, 0.5f);
    EXPECT_EQ(w.kdp, 0.5f);
}

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
    Weights w = weights(&prev, nullptr, cur, nullptr, &next);
    EXPECT_NEAR(w.ksm, 75.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.ksp, 15.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.kdm, 35.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(w.kdp, 63.0f / 192.0f, 1e-6f);
}

TEST(TcbWeights, AlternatesMeasureAcrossTheSeam)
{
    TCB penultimate = keyAt(20), last = keyAt(40), first = keyAt(0), second = keyAt(10);
    // Intervals 20 (penultimate to last) and 10 (first to second): dt = 15.
    Weights w = weights(&penultimate, &last, first, nullptr, &second);
    EXPECT_NEAR(w.ksm, 2.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(w.ksp, 2.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(w.kdm, 1.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(w.kdp, 1.0f / 3.0f, 1e-6f);
}

TEST(TcbWeights, DegenerateFramesStayFinite)
{
    TCB a = keyAt(5), b = keyAt(5), c = keyAt(5);
    Weights w = weights(&a, nullptr, b, nullptr, &c);
    EXPECT_TRUE(std::isfinite(w.ksm) && std::isfinite(w.kdp));
    TCB low = keyAt(INT_MIN), mid = keyAt(0), high = keyAt(INT_MAX);
    w = weights(&low, nullptr, mid, nullptr, &high);
    EXPECT_TRUE(std::isfinite(w.ksm) && std::isfinite(w.kdp));
}

TEST(HermiteCubic, BasisFunctions)
{
    EXPECT_EQ(cubic(3.0f, 7.0f, -2.0f, 9.0f, 0.0f), 3.0f);
    EXPECT_EQ(cubic(3.0f, 7.0f, -2.0f, 9.0f, 1.0f), 9.0f);
    EXPECT_FLOAT_EQ(cubic(0.0f, 1.0f, 0.0f, 0.0f, 0.5f), 0.125f);
    EXPECT_FLOAT_EQ(cubic(0.0f, 0.0f, 1.0f, 0.0f, 0.5f), -0.125f);
    // Tangents equal to the chord give a straight line.
    EXPECT_FLOAT_EQ(cubic(2.0f, 4.0f, 4.0f, 6.0f, 0.25f), 3.0f);
    Vector3 v = cubic(Vector3(0, 2, 0), Vector3(1, 4, 0), Vector3(0, 4, 1), Vector3(0, 6, 0), 0.5f);
    EXPECT_FLOAT_EQ(v.x, 0.125f);
    EXPECT_FLOAT_EQ(v.y, 4.0f);
    EXPECT_FLOAT_EQ(v.z, -0.125f);
}

TEST(TcbRecord, ByteLayoutAndBitForBitRoundTrip)
{
    TCB t;
    t.setFrame(0x01020304);
    t.setFlags(0xBEEF);
    t.setTension(1.0f);
    t.setContinuity(1e-42f);
    t.setBias(-0.0f);
    t.setEaseTo(32.0f);
    t.setEaseFrom(-2.0f);
    std::stringstream io;
    ASSERT_TRUE(t.save(io));
    const std::string bytes = io.str();
    ASSERT_EQ(bytes.size(), 30u);
    EXPECT_EQ(bytes.substr(0, 14), std::string("TCB0\x04\x03\x02\x01\xEF\xBE\x00\x00\x80\x3F", 14));
    EXPECT_EQ(bytes.substr(26, 4), std::string("\x00\x00\x00\xC0", 4));
    TCB back;
    ASSERT_TRUE(back.load(io));
    EXPECT_EQ(back.getFrame(), 0x01020304);
    EXPECT_EQ(back.getFlags() & 0xffff, 0xBEEF);
    EXPECT_TRUE(sameBits(back.getContinuity(), 1e-42f));
    EXPECT_TRUE(sameBits(back.getBias(), -0.0f));
    EXPECT_TRUE(sameBits(back.getEaseTo(), 32.0f));
    EXPECT_TRUE(sameBits(back.getEaseFrom(), -2.0f));
}

TEST(TcbRecord, WrongTagOrShortRecordFails)
{
    TCB t;
    std::istringstream wrong(std::string("TCB1") + std::string(26, '\0'));
    EXPECT_FALSE(t.load(wrong));
    std::ostringstream out;
    keyAt(7).save(out);
    const std::string full = out.str();
    for (size_t cut = 0; cut < full.size(); ++cut) {
        std::istringstream in(full.substr(0, cut));
        TCB partial;
        EXPECT_FALSE(partial.load(in)) << cut;
    }
}

TEST(KeyLinks, SetTcbCopiesParametersNotTheLink)
{
    Key a, b;
    a.setNextKey(&b);
    TCB source = keyAt(12);
    source.setBias(0.3f);
    a.setTCB(source);
    EXPECT_EQ(a.getFrame(), 12);
    EXPECT_EQ(a.getBias(), 0.3f);
    EXPECT_EQ(a.getNextKey(), &b);
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

TEST(Lin3KeyRecord, ValueFollowsTheTcbRecordAndTangentsAreNotStored)
{
    Lin3Key key(5, Vector3(1, 2, 3));
    key.setDD(Vector3(9, 9, 9));
    std::stringstream io;
    ASSERT_TRUE(key.save(io));
    EXPECT_EQ(io.str().size(), static_cast<size_t>(Lin3Key::RECORD_SIZE));
    EXPECT_EQ(io.str().substr(30, 4), std::string("\x00\x00\x80\x3F", 4));
    Lin3Key back;
    ASSERT_TRUE(back.load(io));
    EXPECT_EQ(back.getFrame(), 5);
    EXPECT_EQ(back.getPosition(), Vector3(1, 2, 3));
    EXPECT_EQ(back.getDD(), Vector3());
}
