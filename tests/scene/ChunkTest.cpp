// The chunk frame: the name record, tags and the stream-size guard.
#include "scene/object/Chunk.h"
#include "scene/object/NamedObject.h"

#include "ByteImage.h"

#include <gtest/gtest.h>
#include <sstream>

using bytes::saved;

TEST(NamedObjectFrame, NameIsLengthThenBytesAndAZeroLengthKeepsTheConstructedName)
{
    NamedObject light("Light"), unnamed;
    EXPECT_EQ(saved(light), std::string("\x05\x00Light", 7));
    EXPECT_EQ(saved(unnamed), std::string("\x00\x00", 2));
    std::istringstream in(std::string("\x00\x00", 2));
    EXPECT_TRUE(light.load(in));
    EXPECT_STREQ(light.getName(), "Light");
}

TEST(NamedObjectFrame, NameLongerThanTheFileFailsWithoutAllocating)
{
    NamedObject object("kept");
    std::istringstream in(std::string("\xff\x7f" "abc", 5));
    EXPECT_FALSE(object.load(in));
    EXPECT_STREQ(object.getName(), "kept");
}

TEST(NamedObjectFrame, CopiesNeverShareTheName)
{
    NamedObject a("alpha");
    NamedObject b(a);
    EXPECT_EQ(b.getName(), nullptr);
    NamedObject c("gamma");
    c = a;
    EXPECT_STREQ(c.getName(), "gamma");
}

TEST(ChunkFields, TagMismatchConsumesFourBytesAndPeekDoesNot)
{
    std::istringstream in("CAM0MESH");
    char tag[4];
    ASSERT_TRUE(Chunk::peekTag(in, tag));
    EXPECT_EQ(std::string(tag, 4), "CAM0");
    EXPECT_FALSE(Chunk::readTag(in, "MESH"));
    EXPECT_TRUE(Chunk::readTag(in, "MESH"));
}

TEST(ChunkFields, FitsRefusesCountsPastTheEnd)
{
    std::istringstream in(std::string(12, 'x'));
    EXPECT_TRUE(Chunk::fits(in, 3, 4));
    EXPECT_FALSE(Chunk::fits(in, 4, 4));
    EXPECT_FALSE(Chunk::fits(in, -1, 4));
    EXPECT_FALSE(Chunk::fits(in, 0x7fffffff, 0x7fffffff));
}
