// The chunk frame: byte images, names, and the stream-size guard.
#include "scene/object/Chunk.h"
#include "scene/object/NamedObject.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {
template <class T>
std::string bytes(T& object)
{
    std::ostringstream out;
    EXPECT_TRUE(object.save(out));
    return out.str();
}
}

TEST(NamedObjectFrame, NameIsLengthThenBytesAndAZeroLengthKeepsTheConstructedName)
{
    NamedObject light("Light"), unnamed;
    EXPECT_EQ(bytes(light), std::string("\x05\x00Light", 7));
    EXPECT_EQ(bytes(unnamed), std::string("\x00\x00", 2));
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
    EXPECT_TRUE("alpha" == a);
    EXPECT_FALSE(a == "Alpha");
}

TEST(ChunkFields, LittleEndianOnEveryHost)
{
    std::ostringstream out;
    Chunk::writeInt(out, 0x01020304);
    Chunk::writeShort(out, -2);
    Chunk::writeFloat(out, 1.0f);
    EXPECT_EQ(out.str(), std::string("\x04\x03\x02\x01\xfe\xff\x00\x00\x80\x3f", 10));
    std::istringstream in(out.str());
    int32_t i = 0;
    int16_t s = 0;
    float f = 0;
    EXPECT_TRUE(Chunk::readInt(in, i) && Chunk::readShort(in, s) && Chunk::readFloat(in, f));
    EXPECT_EQ(i, 0x01020304);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(Chunk::remaining(in), 0);
    EXPECT_FALSE(Chunk::readByte(in, *reinterpret_cast<uint8_t*>(&s)));
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
