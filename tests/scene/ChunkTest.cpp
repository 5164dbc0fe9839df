// The chunk frame: the name record, tags, the stream-size guard and whole files read into memory.
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "scene/object/NamedObject.h"

#include "ByteImage.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
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
    std::istringstream in(std::string("\xff\x7f") + "abc");
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

TEST(ChunkFileRead, TheWholeFileInMemoryAndAnEmptyOrUnreadableOneFailsItsFirstRead)
{
    char directory[] = "/tmp/chunkfile-XXXXXX";
    ASSERT_NE(mkdtemp(directory), nullptr);
    const std::string whole = std::string(directory) + "/whole";
    const std::string empty = std::string(directory) + "/empty";
    std::ofstream(whole, std::ios::binary) << std::string("OCTT\0\1", 6);
    std::ofstream(empty, std::ios::binary).close();

    std::stringstream in;
    ASSERT_TRUE(ChunkFile::readIn(whole.c_str(), in));
    EXPECT_EQ(in.str(), std::string("OCTT\0\1", 6));
    EXPECT_TRUE(Chunk::readTag(in, "OCTT"));
    EXPECT_TRUE(Chunk::fits(in, 2, 1));
    EXPECT_FALSE(Chunk::fits(in, 3, 1));
    for (const char* unreadable : {empty.c_str(), static_cast<const char*>(directory)}) {
        std::stringstream nothing;
        EXPECT_TRUE(ChunkFile::readIn(unreadable, nothing)) << unreadable;
        EXPECT_FALSE(Chunk::readTag(nothing, "OCTT")) << unreadable;
    }
    std::stringstream none;
    EXPECT_FALSE(ChunkFile::readIn((std::string(directory) + "/missing").c_str(), none));
    EXPECT_FALSE(ChunkFile::readIn(nullptr, none));
    std::remove(whole.c_str());
    std::remove(empty.c_str());
    rmdir(directory);
}
