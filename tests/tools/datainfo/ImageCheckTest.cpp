// Kinds by content, the CTX1 container check and conversion bit for bit through the engine's loaders.
#include "Converter.h"
#include "CtxReport.h"
#include "FileKind.h"
#include "ProgramRun.h"
#include "scene/object/Chunk.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <zlib.h>

namespace {

// A CTX1 file of a w x h RGBA image whose zlib stream packs only the first `packed` pixel bytes, then `tail`.
std::vector<unsigned char> container(int w, int h, size_t packed, const std::string& tail = "")
{
    std::vector<unsigned char> pixels(static_cast<size_t>(w) * h * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(i * 7 + 1);
    std::ostringstream out;
    Chunk::writeTag(out, "CTX1");
    for (int32_t field : {w, h, 8, 8})
        Chunk::writeInt(out, field);
    std::vector<unsigned char> stream(compressBound(static_cast<uLong>(packed)));
    uLongf length = static_cast<uLongf>(stream.size());
    compress2(stream.data(), &length, pixels.data(), static_cast<uLong>(packed), 9);
    out.write(reinterpret_cast<const char*>(stream.data()), static_cast<std::streamsize>(length));
    out << tail;
    std::string bytes = out.str();
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
}

std::unique_ptr<Texture> load(const std::string& file, int format)
{
    return std::unique_ptr<Texture>(TextureMgr::getHandle()->findLoader(file.c_str())->loadTexture(file.c_str(), format));
}

} // namespace

TEST(FileKinds, TheFirstBytesDecideAndOnlyTargaGoesByName)
{
    struct Case {
        std::string head;
        const char* name;
        FileKind::Kind kind;
    } cases[] = {
        {"MMGR\1\0\0\0", "a.png", FileKind::CHUNKS},   {"CANI", "a.cam", FileKind::CHUNKS},
        {"BMSH", "a.bez", FileKind::CHUNKS},           {"CTX1", "a.mtx", FileKind::CTX1},
        {"\x89PNG\r\n\x1a\n", "a.tga", FileKind::PNG}, {"\xff\xd8\xff\xe0", "a.png", FileKind::JPEG},
        {std::string("II*\0", 4), "a.tif", FileKind::TIFF}, {std::string("\x0a\x05\x01\x08", 4), "a.pcx", FileKind::PCX},
        {std::string("\x01\xda\x01\x01", 4), "a.bw", FileKind::SGI}, {"Extended Module: x", "a.xm", FileKind::XM},
        {std::string("\0\0\x02\0", 4), "a.TGA", FileKind::TGA}, {std::string("\0\0\x02\0", 4), "a.dat", FileKind::UNKNOWN},
    };
    for (const Case& c : cases) {
        auto head = reinterpret_cast<const unsigned char*>(c.head.data());
        EXPECT_EQ(FileKind::detect(head, c.head.size(), c.name), c.kind) << c.name;
    }
    EXPECT_EQ(FileKind::detect(nullptr, 0, "a.png"), FileKind::EMPTY);
    EXPECT_EQ(FileKind::extension("dir.v2/file"), "");
}

TEST(ContainerCheck, AStreamThatStopsEarlyLoadsInTheEngineButIsRefusedHere)
{
    ScratchDir dir("short");
    std::string file = dir.file("short.ctx");
    writeBytes(file, container(4, 4, 32));
    // The engine keeps going and leaves the missing pixels black.
    std::unique_ptr<Texture> texture = load(file, 8);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->getDataPtr()[63], 0);
    std::ostringstream printout;
    CtxReport check(printout);
    EXPECT_FALSE(check.inspect(file));
    EXPECT_EQ(check.error(), "the zlib stream ends after 32 of 64 pixel bytes; the engine would leave the rest black");
}

TEST(ContainerCheck, TrailingBytesAndOversizedHeadersAreRefused)
{
    ScratchDir dir("oversized");
    std::string tail = dir.file("tail.ctx");
    writeBytes(tail, container(4, 4, 64, "junk"));
    std::ostringstream printout;
    CtxReport check(printout);
    EXPECT_FALSE(check.inspect(tail));
    EXPECT_EQ(check.error(), "4 bytes follow the zlib stream");

    std::vector<unsigned char> bytes = container(4, 4, 64);
    bytes[5] = 0x10; // width 4100
    bytes[9] = 0x10; // height 4100
    std::string huge = dir.file("huge.ctx");
    writeBytes(huge, bytes);
    EXPECT_FALSE(check.inspect(huge));
    EXPECT_NE(check.error().find("bytes after it can hold"), std::string::npos) << check.error();
}

TEST(Conversion, TheContainerHoldsTheEnginesPixelsBitForBit)
{
    ScratchDir dir("bits");
    for (int format : {5, 6, 7, 8}) {
        std::string file = dir.file("water" + std::to_string(format) + ".ctx");
        std::ostringstream printout;
        Converter converter(printout);
        ASSERT_TRUE(converter.convert("data/img/water.png", file, format)) << converter.error();
        std::unique_ptr<Texture> direct = load("data/img/water.png", format);
        std::unique_ptr<Texture> stored = load(file, 1);
        ASSERT_TRUE(direct && stored);
        EXPECT_EQ(stored->getFormat(), format);
        EXPECT_EQ(stored->getWidth(), direct->getWidth());
        EXPECT_EQ(stored->getHeight(), direct->getHeight());
        EXPECT_EQ(stored->getBitsPerPixel(), direct->getBitsPerPixel());
        ASSERT_EQ(stored->getDataSize(), direct->getDataSize());
        EXPECT_EQ(std::memcmp(stored->getDataPtr(), direct->getDataPtr(), static_cast<size_t>(direct->getDataSize())), 0)
            << "format " << format;
    }
}

TEST(Conversion, WithoutAFormatThePictureKeepsItsAlpha)
{
    ScratchDir dir("natural");
    std::ostringstream printout;
    Converter converter(printout);
    ASSERT_TRUE(converter.convert("data/img/water.png", dir.file("water.ctx"), 0));
    ASSERT_TRUE(converter.convert("data/img/ship.png", dir.file("ship.ctx"), 0));
    EXPECT_EQ(load(dir.file("water.ctx"), 1)->getFormat(), 8);
    EXPECT_EQ(load(dir.file("ship.ctx"), 1)->getFormat(), 7);
}
