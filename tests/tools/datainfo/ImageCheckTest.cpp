// The CTX1 container check and conversion bit for bit through the engine's loaders.
#include "Converter.h"
#include "CtxReport.h"
#include "ProgramRun.h"
#include "scene/object/Chunk.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>

#include <zlib.h>
#include <cstring>
#include <memory>
#include <sstream>

namespace {

// A CTX1 file of a 4 x 4 RGBA image whose zlib stream packs only the first `packed` pixel bytes, then `tail`.
std::vector<unsigned char> container(size_t packed, const std::string& tail = "")
{
    std::vector<unsigned char> pixels(64, 7);
    std::ostringstream out;
    Chunk::writeTag(out, "CTX1");
    for (int32_t field : {4, 4, 8, 8})
        Chunk::writeInt(out, field);
    std::vector<unsigned char> stream(compressBound(static_cast<uLong>(packed)));
    uLongf length = static_cast<uLongf>(stream.size());
    compress2(stream.data(), &length, pixels.data(), static_cast<uLong>(packed), 9);
    out.write(reinterpret_cast<const char*>(stream.data()), static_cast<std::streamsize>(length));
    out << tail;
    const std::string bytes = out.str();
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
}

std::unique_ptr<Texture> load(const std::string& file, int format)
{
    return std::unique_ptr<Texture>(
        TextureMgr::getHandle()->findLoader(file.c_str())->loadTexture(file.c_str(), format));
}

}  // namespace

TEST(ContainerCheck, ShortStreamsTrailingBytesAndOversizedHeadersAreRefused)
{
    ScratchDir dir("ctx");
    const std::string file = dir.file("short.ctx");
    writeBytes(file, container(32));
    // The engine keeps going and leaves the missing pixels black; the check says so.
    std::unique_ptr<Texture> texture = load(file, 8);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->getDataPtr()[63], 0);
    std::ostringstream printout;
    CtxReport check(printout);
    EXPECT_FALSE(check.inspect(file));
    EXPECT_EQ(check.error(), "the zlib stream ends after 32 of 64 pixel bytes; the engine would leave the rest black");

    writeBytes(file, container(64, "junk"));
    EXPECT_FALSE(check.inspect(file));
    EXPECT_EQ(check.error(), "4 bytes follow the zlib stream");

    std::vector<unsigned char> bytes = container(64);
    bytes[5] = bytes[9] = 0x0f;  // a size the engine takes, far more pixels than the file holds
    writeBytes(file, bytes);
    EXPECT_FALSE(check.inspect(file));
    EXPECT_NE(check.error().find("bytes after it can hold"), std::string::npos) << check.error();
}

TEST(ImageInfo, TheEnginesVerdictIsPrintedBesideAFaultTheInspectionFinds)
{
    ScratchDir dir("verdicts");
    writeBytes(dir.file("short.ctx"), container(32));
    ProgramRun run = ProgramRun::run({"info", dir.file("short.ctx")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errLines(), 1);
    EXPECT_NE(run.out.find("engine: the \"ctx,mtx\" loader gives 4 x 4"), std::string::npos) << run.out;
    // 40 bytes of PNG whose header claims 100000 x 100000: both refuse it.
    std::vector<unsigned char> png = {0x89, 'P', 'N', 'G',  '\r', '\n', 0x1a, '\n', 0,    0, 0, 13, 'I', 'H', 'D',
                                      'R',  0,   1,   0x86, 0xa0, 0,    1,    0x86, 0xa0, 8, 2, 0,  0,   0};
    const uLong crc = crc32(0, png.data() + 12, 17);
    for (int shift = 24; shift >= 0; shift -= 8)
        png.push_back(static_cast<unsigned char>(crc >> shift));
    png.resize(40);
    writeBytes(dir.file("huge.png"), png);
    run = ProgramRun::run({"info", dir.file("huge.png")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errLines(), 1);
    EXPECT_NE(run.out.find("engine: the engine's \"png\" loader refuses it"), std::string::npos) << run.out;
}

TEST(Conversion, TheContainerHoldsTheEnginesPixelsBitForBit)
{
    ScratchDir dir("bits");
    for (int format : {5, 6, 7, 8}) {
        const std::string file = dir.file("water" + std::to_string(format) + ".ctx");
        std::ostringstream printout;
        Converter converter(printout);
        ASSERT_TRUE(converter.convert("data/img/water.png", file, format)) << converter.error();
        std::unique_ptr<Texture> direct = load("data/img/water.png", format);
        std::unique_ptr<Texture> stored = load(file, 1);
        ASSERT_TRUE(direct && stored);
        EXPECT_EQ(stored->getFormat(), format);
        EXPECT_EQ(stored->getWidth(), direct->getWidth());
        ASSERT_EQ(stored->getDataSize(), direct->getDataSize());
        EXPECT_EQ(std::memcmp(stored->getDataPtr(), direct->getDataPtr(), static_cast<size_t>(direct->getDataSize())),
                  0)
            << "format " << format;
    }
}
