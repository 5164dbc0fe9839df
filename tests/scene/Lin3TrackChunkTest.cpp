// The LIN3 chunk: exact layout, bit-for-bit round trip, sorting on load and damaged input.
#include "scene/Lin3Track.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

namespace {

std::string saved(Lin3Track& track)
{
    std::ostringstream out;
    EXPECT_TRUE(track.save(out));
    return out.str();
}

// A track with awkward bit patterns in every float field.
void fill(Lin3Track& track)
{
    track.setFlags(0x8003);
    Lin3Key* a = new Lin3Key(-7, Vector3(-0.0f, 1e-40f, 0.1f));
    a->setFlags(31);
    a->setTension(0.1f);
    a->setContinuity(-1.0f / 3.0f);
    a->setEaseTo(32);
    a->setEaseFrom(32);
    track.insertKey(a);
    Lin3Key* b = new Lin3Key(100, Vector3(3.4028235e38f, -1.17549435e-38f, 12345.678f));
    b->setBias(0.75f);
    track.insertKey(b);
    Lin3Key* c = new Lin3Key(100, Vector3(1, 2, 3));
    track.insertKey(c);
}

std::string header(int16_t flags, int32_t count)
{
    std::string h = "LIN3";
    h.append(reinterpret_cast<const char*>(&flags), 2);
    h.append(reinterpret_cast<const char*>(&count), 4);
    return h;
}

std::string keyRecord(int frame, float x)
{
    Lin3Key key(static_cast<float>(frame), Vector3(x, 0, 0));
    std::ostringstream out;
    key.save(out);
    return out.str();
}

}  // namespace

TEST(Lin3Chunk, LayoutIsHeaderThenKeyRecords)
{
    Lin3Track track;
    fill(track);
    std::string bytes = saved(track);
    ASSERT_EQ(bytes.size(), 10u + 3u * Lin3Key::RECORD_SIZE);
    EXPECT_EQ(bytes.substr(0, 10), std::string("LIN3\x03\x80\x03\x00\x00\x00", 10));
    EXPECT_EQ(bytes.substr(10, 4), "TCB0");
    EXPECT_EQ(bytes.substr(10 + Lin3Key::RECORD_SIZE, 4), "TCB0");
}

TEST(Lin3Chunk, RoundTripBitForBit)
{
    Lin3Track track;
    fill(track);
    std::string first = saved(track);
    std::istringstream in(first);
    Lin3Track back;
    ASSERT_TRUE(back.load(in));
    EXPECT_EQ(back.getFlags(), 0x8003);
    EXPECT_EQ(back.getNumKeys(), 3);
    EXPECT_EQ(saved(back), first);
    const Lin3Key* k = static_cast<const Lin3Key*>(back.getFirstKey());
    float z = k->getPosition().x;
    EXPECT_TRUE(std::signbit(z) && z == 0.0f);
}

TEST(Lin3Chunk, LoadSortsKeysAndKeepsFileOrderForEqualFrames)
{
    std::string file = header(0, 3) + keyRecord(20, 1) + keyRecord(5, 2) + keyRecord(20, 3);
    std::istringstream in(file);
    Lin3Track track;
    ASSERT_TRUE(track.load(in));
    EXPECT_EQ(track.getNumKeys(), 3);
    const Key* k = track.getFirstKey();
    ASSERT_NE(k, nullptr);
    EXPECT_EQ(k->getFrame(), 5);
    k = k->getNextKey();
    EXPECT_EQ(static_cast<const Lin3Key*>(k)->getPosition().x, 1.0f);
    k = k->getNextKey();
    EXPECT_EQ(static_cast<const Lin3Key*>(k)->getPosition().x, 3.0f);
}

TEST(Lin3Chunk, LoadReplacesExistingKeys)
{
    Lin3Track track;
    fill(track);
    std::istringstream in(header(1, 1) + keyRecord(9, 4));
    ASSERT_TRUE(track.load(in));
    EXPECT_EQ(track.getNumKeys(), 1);
    EXPECT_EQ(track.getFirstKey()->getFrame(), 9);
    EXPECT_EQ(track.getFirstKey()->getNextKey(), nullptr);
}

TEST(Lin3Chunk, ZeroOrNegativeCountLoadsNothing)
{
    for (int32_t count : { 0, -1, -2147483647 - 1 }) {
        std::istringstream in(header(2, count) + "trailing");
        Lin3Track track;
        EXPECT_TRUE(track.load(in)) << count;
        EXPECT_EQ(track.getNumKeys(), 0);
        EXPECT_EQ(track.getFirstKey(), nullptr);
        EXPECT_EQ(track.getFlags(), 2);
    }
}

TEST(Lin3Chunk, TruncatedAnywhereFails)
{
    Lin3Track track;
    fill(track);
    std::string full = saved(track);
    for (size_t cut = 0; cut < full.size(); ++cut) {
        std::istringstream in(full.substr(0, cut));
        Lin3Track partial;
        EXPECT_FALSE(partial.load(in)) << "cut at " << cut;
        // Keys read before the cut stay, and the count says how many.
        int listed = 0;
        for (const Key* k = partial.getFirstKey(); k; k = k->getNextKey())
            ++listed;
        EXPECT_EQ(partial.getNumKeys(), listed);
    }
}

TEST(Lin3Chunk, AbsurdCountFailsBeforeReadingKeys)
{
    std::istringstream in(header(0, 0x7fffffff) + keyRecord(1, 1));
    Lin3Track track;
    EXPECT_FALSE(track.load(in));
    EXPECT_EQ(track.getFirstKey(), nullptr);
    EXPECT_EQ(track.getNumKeys(), 0);
}

TEST(Lin3Chunk, WrongTagsFail)
{
    Lin3Track track;
    std::istringstream wrongTrack("LIN2" + header(0, 0).substr(4));
    EXPECT_FALSE(track.load(wrongTrack));
    std::string key = keyRecord(1, 1);
    key[3] = '1';
    std::istringstream wrongKey(header(0, 2) + keyRecord(0, 0) + key);
    EXPECT_FALSE(track.load(wrongKey));
    EXPECT_EQ(track.getNumKeys(), 1);
}
