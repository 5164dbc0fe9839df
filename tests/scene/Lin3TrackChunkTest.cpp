// The LIN3 chunk: exact layout, bit-for-bit round trip, sorting on load and damaged input.
#include "scene/Lin3Track.h"

#include "ByteImage.h"

#include <gtest/gtest.h>
#include <cmath>
#include <sstream>
#include <string>

using namespace bytes;

namespace {

// A track with awkward bit patterns in every float field.
void fill(Lin3Track& track)
{
    track.setFlags(0x8003);
    Lin3Key* a = new Lin3Key(-7, Vector3(-0.0f, 1e-40f, 0.1f));
    a->setContinuity(-1.0f / 3.0f);
    track.insertKey(a);
    track.insertKey(new Lin3Key(100, Vector3(3.4028235e38f, -1.17549435e-38f, 12345.678f)));
    track.insertKey(new Lin3Key(100, Vector3(1, 2, 3)));
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

}  // namespace

TEST(Lin3Chunk, LayoutIsHeaderThenKeyRecordsAndRoundTripsBitForBit)
{
    Lin3Track track;
    fill(track);
    const std::string first = saved(track);
    ASSERT_EQ(first.size(), 10u + 3u * Lin3Key::RECORD_SIZE);
    EXPECT_EQ(first.substr(0, 14), header(0x8003, 3) + "TCB0");
    EXPECT_EQ(first.substr(10 + Lin3Key::RECORD_SIZE, 4), "TCB0");
    std::istringstream in(first);
    Lin3Track back;
    ASSERT_TRUE(back.load(in));
    EXPECT_EQ(back.getNumKeys(), 3);
    EXPECT_EQ(saved(back), first);
    float z = static_cast<const Lin3Key*>(back.getFirstKey())->getPosition().x;
    EXPECT_TRUE(std::signbit(z) && z == 0.0f);
}

TEST(Lin3Chunk, LoadSortsKeysKeepsFileOrderForEqualFramesAndReplacesOldKeys)
{
    Lin3Track track;
    fill(track);
    std::istringstream in(header(0, 3) + keyRecord(20, 1) + keyRecord(5, 2) + keyRecord(20, 3));
    ASSERT_TRUE(track.load(in));
    EXPECT_EQ(track.getNumKeys(), 3);
    const Key* k = track.getFirstKey();
    EXPECT_EQ(k->getFrame(), 5);
    k = k->getNextKey();
    EXPECT_EQ(static_cast<const Lin3Key*>(k)->getPosition().x, 1.0f);
    k = k->getNextKey();
    EXPECT_EQ(static_cast<const Lin3Key*>(k)->getPosition().x, 3.0f);
    EXPECT_EQ(k->getNextKey(), nullptr);
}

TEST(Lin3Chunk, ZeroOrNegativeCountLoadsNothing)
{
    for (uint32_t count : {0u, 0xffffffffu, 0x80000000u}) {
        std::istringstream in(header(2, count) + "trailing");
        Lin3Track track;
        EXPECT_TRUE(track.load(in)) << count;
        EXPECT_EQ(track.getNumKeys(), 0);
        EXPECT_EQ(track.getFirstKey(), nullptr);
        EXPECT_EQ(track.getFlags(), 2);
    }
}

TEST(Lin3Chunk, TruncatedAnywhereFailsWithTheCountMatchingTheList)
{
    Lin3Track track;
    fill(track);
    expectEveryPrefixFails<Lin3Track>(saved(track), [](Lin3Track& partial) {
        int listed = 0;
        for (const Key* k = partial.getFirstKey(); k; k = k->getNextKey())
            ++listed;
        EXPECT_EQ(partial.getNumKeys(), listed);
    });
}

TEST(Lin3Chunk, AbsurdCountOrWrongTagsFail)
{
    Lin3Track track;
    std::istringstream absurd(header(0, 0x7fffffff) + keyRecord(1, 1));
    EXPECT_FALSE(track.load(absurd));
    EXPECT_EQ(track.getFirstKey(), nullptr);
    std::istringstream wrongTrack("LIN2" + header(0, 0).substr(4));
    EXPECT_FALSE(track.load(wrongTrack));
    std::string key = keyRecord(1, 1);
    key[3] = '1';
    std::istringstream wrongKey(header(0, 2) + keyRecord(0, 0) + key);
    EXPECT_FALSE(track.load(wrongKey));
    EXPECT_EQ(track.getNumKeys(), 1);
}
