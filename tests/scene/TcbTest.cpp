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

}  // namespace

TEST(TcbWeights, NoNeighboursMeansHalfEach)
{
    TCB cur;
    float ksm, ksp, kdm, kdp;
    TCB::tcb(nullptr, nullptr, &cur, nullptr, nullptr, ksm, ksp, kdm, kdp);
    EXPECT_EQ(ksm, 0.5f);
    EXPECT_EQ(ksp, 0.5f);
    EXPECT_EQ(kdm, 0.5f);
    EXPECT_EQ(kdp, 0.5f);
}

TEST(TcbWeights, UnevenSpacingWithAllThreeParameters)
{
    TCB prev = keyAt(0);
    TCB cur = keyAt(10);
    TCB next = keyAt(30);
    cur.setTension(0.5f);
    cur.setContinuity(-0.5f);
    cur.setBias(0.25f);
    // Worked by hand: fp = 5/6, fn = 7/6 after the continuity adjustment.
    float ksm, ksp, kdm, kdp;
    TCB::tcb(&prev, nullptr, &cur, nullptr, &next, ksm, ksp, kdm, kdp);
    EXPECT_NEAR(ksm, 75.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(ksp, 15.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(kdm, 35.0f / 192.0f, 1e-6f);
    EXPECT_NEAR(kdp, 63.0f / 192.0f, 1e-6f);
}

TEST(TcbWeights, OnlyTheCurrentKeysParametersCount)
{
    TCB prev = keyAt(0);
    TCB cur = keyAt(10);
    TCB next = keyAt(20);
    prev.setTension(0.9f);
    next.setBias(-0.7f);
    float ksm, ksp, kdm, kdp;
    TCB::tcb(&prev, nullptr, &cur, nullptr, &next, ksm, ksp, kdm, kdp);
    EXPECT_FLOAT_EQ(ksm, 0.5f);
    EXPECT_FLOAT_EQ(kdp, 0.5f);
}

TEST(TcbWeights, AlternatesMeasureAcrossTheSeam)
{
    TCB penultimate = keyAt(20);
    TCB last = keyAt(40);
    TCB first = keyAt(0);
    TCB second = keyAt(10);
    // Intervals 20 (penultimate to last) and 10 (first to second): dt = 15.
    float ksm, ksp, kdm, kdp;
    TCB::tcb(&penultimate, &last, &first, nullptr, &second, ksm, ksp, kdm, kdp);
    EXPECT_NEAR(ksm, 2.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(ksp, 2.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(kdm, 1.0f / 3.0f, 1e-6f);
    EXPECT_NEAR(kdp, 1.0f / 3.0f, 1e-6f);
}

TEST(TcbWeights, DegenerateFramesStayFinite)
{
    TCB a = keyAt(5), b = keyAt(5), c = keyAt(5);
    float ksm, ksp, kdm, kdp;
    TCB::tcb(&a, nullptr, &b, nullptr, &c, ksm, ksp, kdm, kdp);
    EXPECT_TRUE(std::isfinite(ksm) && std::isfinite(kdp));
    TCB low = keyAt(INT_MIN), mid = keyAt(0), high = keyAt(INT_MAX);
    TCB::tcb(&low, nullptr, &mid, nullptr, &high, ksm, ksp, kdm, kdp);
    EXPECT_TRUE(std::isfinite(ksm) && std::isfinite(kdp));
}

TEST(HermiteCubic, BasisFunctions)
{
    EXPECT_EQ(cubic(3.0f, 7.0f, -2.0f, 9.0f, 0.0f), 3.0f);
    EXPECT_EQ(cubic(3.0f, 7.0f, -2.0f, 9.0f, 1.0f), 9.0f);
    EXPECT_FLOAT_EQ(cubic(0.0f, 0.0f, 0.0f, 1.0f, 0.5f), 0.5f);
    EXPECT_FLOAT_EQ(cubic(0.0f, 1.0f, 0.0f, 0.0f, 0.5f), 0.125f);
    EXPECT_FLOAT_EQ(cubic(0.0f, 0.0f, 1.0f, 0.0f, 0.5f), -0.125f);
    // Tangents equal to the chord give a straight line.
    EXPECT_FLOAT_EQ(cubic(2.0f, 4.0f, 4.0f, 6.0f, 0.25f), 3.0f);
    Vector3 v = cubic(Vector3(0, 2, 0), Vector3(1, 4, 0), Vector3(0, 4, 1), Vector3(0, 6, 0), 0.5f);
    EXPECT_FLOAT_EQ(v.x, 0.125f);
    EXPECT_FLOAT_EQ(v.y, 4.0f);
    EXPECT_FLOAT_EQ(v.z, -0.125f);
}

TEST(TcbRecord, ByteLayout)
{
    TCB t;
    t.setFrame(0x01020304);
    t.setFlags(0xBEEF);
    t.setTension(1.0f);
    t.setEaseFrom(-2.0f);
    std::ostringstream out;
    ASSERT_TRUE(t.save(out));
    std::string bytes = out.str();
    ASSERT_EQ(bytes.size(), static_cast<size_t>(TCB::RECORD_SIZE));
    EXPECT_EQ(bytes.size(), 30u);
    EXPECT_EQ(bytes.substr(0, 10), std::string("TCB0\x04\x03\x02\x01\xEF\xBE", 10));
    EXPECT_EQ(bytes.substr(10, 4), std::string("\x00\x00\x80\x3F", 4));
    EXPECT_EQ(bytes.substr(26, 4), std::string("\x00\x00\x00\xC0", 4));
}

TEST(TcbRecord, RoundTripBitForBit)
{
    TCB t;
    t.setFrame(-123456);
    t.setFlags(31);
    t.setTension(-0.0f);
    t.setContinuity(1e-42f);
    t.setBias(0.1f);
    t.setEaseTo(32.0f);
    t.setEaseFrom(3.4028235e38f);
    std::stringstream io;
    ASSERT_TRUE(t.save(io));
    TCB back;
    ASSERT_TRUE(back.load(io));
    EXPECT_EQ(back.getFrame(), -123456);
    EXPECT_EQ(back.getFlags(), 31);
    EXPECT_TRUE(sameBits(back.getTension(), -0.0f));
    EXPECT_TRUE(sameBits(back.getContinuity(), 1e-42f));
    EXPECT_TRUE(sameBits(back.getBias(), 0.1f));
    EXPECT_TRUE(sameBits(back.getEaseTo(), 32.0f));
    EXPECT_TRUE(sameBits(back.getEaseFrom(), 3.4028235e38f));
}

TEST(TcbRecord, WrongTagOrShortRecordFails)
{
    TCB t;
    std::istringstream wrong(std::string("TCB1") + std::string(26, '\0'));
    EXPECT_FALSE(t.load(wrong));
    std::ostringstream out;
    keyAt(7).save(out);
    std::string full = out.str();
    for (size_t cut = 0; cut < full.size(); ++cut) {
        std::istringstream in(full.substr(0, cut));
        TCB partial;
        EXPECT_FALSE(partial.load(in)) << "cut at " << cut;
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
    EXPECT_EQ(b.getNextKey(), nullptr);
}

TEST(Lin3KeyFrame, CeilingOfTheTime)
{
    EXPECT_EQ(Lin3Key(2.1f, Vector3()).getFrame(), 3);
    EXPECT_EQ(Lin3Key(-2.5f, Vector3()).getFrame(), -2);
    EXPECT_EQ(Lin3Key(4.0f, Vector3()).getFrame(), 4);
    EXPECT_EQ(Lin3Key(-0.5f, Vector3()).getFrame(), 0);
    EXPECT_EQ(Lin3Key(1e20f, Vector3()).getFrame(), INT_MAX);
    EXPECT_EQ(Lin3Key(-1e20f, Vector3()).getFrame(), INT_MIN);
    EXPECT_EQ(Lin3Key(NAN, Vector3()).getFrame(), 0);
    EXPECT_EQ(Lin3Key(1, Vector3(1, 2, 3)).getPosition(), Vector3(1, 2, 3));
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
