// TCB keys: spline weights, the TCB0 record and key frames from times.
#include "scene/Lin3Key.h"
#include "scene/TCB.h"

#include "ByteImage.h"

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
    const std::string image = io.str();
    ASSERT_EQ(image.size(), 30u);
    EXPECT_EQ(image.substr(0, 14), std::string("TCB0\x04\x03\x02\x01\xEF\xBE\x00\x00\x80\x3F", 14));
    EXPECT_EQ(image.substr(26, 4), std::string("\x00\x00\x00\xC0", 4));
    TCB back;
    ASSERT_TRUE(back.load(io));
    EXPECT_EQ(back.getFlags() & 0xffff, 0xBEEF);
    EXPECT_TRUE(sameBits(back.getContinuity(), 1e-42f));
    EXPECT_TRUE(sameBits(back.getBias(), -0.0f));
    EXPECT_EQ(bytes::saved(back), image);
}

TEST(TcbRecord, WrongTagOrShortRecordFails)
{
    TCB t;
    std::istringstream wrong(std::string("TCB1") + std::string(26, '\0'));
    EXPECT_FALSE(t.load(wrong));
    bytes::expectEveryPrefixFails<TCB>(bytes::saved(t));
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
