// The CTX1 container: byte layout, save then load bit for bit, reload checks, .ctx versus .mtx, bad files.
#include "TestImages.h"
#include "support/GLContext.h"

#include "texture/MipMapTexture.h"
#include "texture/TextureLoaderInternal.h"

#include <gtest/gtest.h>
#include <zlib.h>
#include <algorithm>
#include <cstring>
#include <tuple>

namespace {

// A pattern deflate cannot shrink to nothing.
Bytes pattern(size_t size)
{
    Bytes b(size);
    for (size_t i = 0; i < size; ++i)
        b[i] = static_cast<unsigned char>((i * 37 + i / 7) & 0xff);
    return b;
}

void putInt(Bytes& b, size_t at, int32_t v)
{
    for (int i = 0; i < 4; ++i)
        b[at + i] = static_cast<unsigned char>((uint32_t(v) >> (8 * i)) & 0xff);
}

class Container : public ::testing::Test {
protected:
    Bytes saved(const char* name, int w, int h, int bpp, int format, const Bytes& pixels)
    {
        Texture t("source", w, h, bpp, format, copyOf(pixels));
        std::string path = scratchPath(name);
        EXPECT_TRUE(loader.saveTexture(path.c_str(), &t));
        return readBytes(path);
    }

    TextureLoaderInternal loader;
};

}  // namespace

TEST_F(Container, FileIsHeaderThenOneZlibStreamAtLevelNine)
{
    Bytes pixels = pattern(5 * 3 * 3);
    Bytes file = saved("layout.ctx", 5, 3, 24, 7, pixels);
    Bytes header = {'C', 'T', 'X', '1', 5, 0, 0, 0, 3, 0, 0, 0, 24, 0, 0, 0, 7, 0, 0, 0, 0x78, 0xda};
    ASSERT_GT(file.size(), header.size());
    EXPECT_EQ(header, Bytes(file.begin(), file.begin() + header.size()));
    Bytes inflated(pixels.size());
    uLongf length = inflated.size();
    ASSERT_EQ(Z_OK, uncompress(inflated.data(), &length, file.data() + 20, file.size() - 20));
    EXPECT_EQ(pixels, inflated);
}

TEST_F(Container, SaveThenLoadIsIdenticalForEveryFormat)
{
    for (int format = 1; format <= 8; ++format) {
        // 300 x 200 RGBA spans many inflate output buffers.
        int w = format == 8 ? 300 : 33, h = format == 8 ? 200 : 17, bpp = 8 * Texture::componentsOf(format) + 1;
        Bytes pixels = pattern(static_cast<size_t>(w) * h * Texture::componentsOf(format));
        saved("trip.ctx", w, h, bpp, format, pixels);
        // The requested format is ignored: the file's own is used.
        TexturePtr t(loader.loadTexture(scratchPath("trip.ctx").c_str(), 3));
        ASSERT_TRUE(t) << format;
        EXPECT_EQ(std::make_tuple(w, h, bpp, format),
                  std::make_tuple(t->getWidth(), t->getHeight(), t->getBitsPerPixel(), t->getFormat()));
        EXPECT_EQ(pixels, pixelsOf(t.get()));
    }
}

TEST_F(Container, ReloadFillsTheSameBufferOnlyWhenEveryHeaderFieldMatches)
{
    std::string path = scratchPath("reload.ctx");
    saved("reload.ctx", 4, 2, 8, 1, pattern(8));
    TexturePtr t(loader.loadTexture(path.c_str(), 1));
    ASSERT_TRUE(t);
    const unsigned char* buffer = t->getDataPtr();
    const struct {
        int w, h, bpp, format;
    } changes[] = {{2, 4, 8, 1}, {4, 1, 8, 1}, {4, 2, 16, 1}, {4, 2, 8, 2}};
    for (const auto& c : changes) {
        saved("reload.ctx", c.w, c.h, c.bpp, c.format, Bytes(8, 0xee));
        EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
        EXPECT_EQ(pattern(8), pixelsOf(t.get()));
    }
    saved("reload.ctx", 4, 2, 8, 1, Bytes(8, 0xee));
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(buffer, t->getDataPtr());
    EXPECT_EQ(Bytes(8, 0xee), pixelsOf(t.get()));
}

TEST_F(Container, BadFilesGiveNull)
{
    EXPECT_FALSE(loader.loadTexture(scratchPath("missing.ctx").c_str(), 7));
    Bytes good = saved("good.ctx", 8, 8, 24, 7, pattern(8 * 8 * 3));
    EXPECT_FALSE(loadBytes(loader, patched(good, {{3, '2'}}), "magic.ctx", 7));
    EXPECT_FALSE(loadBytes(loader, patched(good, {{20, 0x13}}), "stream.ctx", 7));
    // Header cut at every field boundary, and the stream cut halfway.
    for (size_t length : {size_t(0), size_t(2), size_t(4), size_t(8), size_t(12), size_t(16), size_t(20),
                          size_t(20 + (good.size() - 20) / 2)})
        EXPECT_FALSE(loadBytes(loader, Bytes(good.begin(), good.begin() + length), "cut.ctx", 7)) << length;
    // Absurd formats and sizes are refused before allocating.
    const struct {
        size_t at;
        int32_t value;
    } fields[] = {{16, 0}, {16, 9}, {16, -7}, {4, -8}, {8, -1}, {4, 0x7fffffff}, {8, 0x10000}, {4, 16385}};
    for (const auto& f : fields) {
        Bytes v = good;
        putInt(v, f.at, f.value);
        EXPECT_FALSE(loadBytes(loader, v, "absurd.ctx", 7)) << f.at << "=" << f.value;
    }
}

TEST_F(Container, AStreamEndingEarlyLoadsWhateverTheHeaderSizeAndTheRestStaysZero)
{
    Bytes good = saved("early.ctx", 8, 8, 24, 7, pattern(8 * 8 * 3));
    // 4096 x 4096 RGB from 192 pixel bytes, then 16384 x 0: an empty image is no reason to refuse.
    for (const auto& size : {std::make_pair(4096, 4096), std::make_pair(16384, 0)}) {
        Bytes v = good;
        putInt(v, 4, size.first);
        putInt(v, 8, size.second);
        TexturePtr t = loadBytes(loader, v, "early.ctx", 7);
        ASSERT_TRUE(t) << size.first << " x " << size.second;
        ASSERT_EQ(static_cast<long long>(size.first) * size.second * 3, t->getDataSize());
        if (size.second == 0)
            continue;
        const unsigned char* data = t->getDataPtr();
        EXPECT_EQ(pattern(8 * 8 * 3), Bytes(data, data + 8 * 8 * 3));
        EXPECT_TRUE(std::all_of(data + 8 * 8 * 3, data + t->getDataSize(), [](unsigned char b) { return b == 0; }));
    }
}

class ContainerGL : public GLTest {};

TEST_F(ContainerGL, CtxGivesATextureAndMtxAMipMapTexture)
{
    TextureLoaderInternal loader;
    Bytes pixels = pattern(16 * 8 * 3);
    Texture source("s", 16, 8, 24, 7, copyOf(pixels));
    std::string ctx = scratchPath("kind.ctx"), mtx = scratchPath("kind.mtx");
    ASSERT_TRUE(loader.saveTexture(ctx.c_str(), &source) && loader.saveTexture(mtx.c_str(), &source));
    TexturePtr plain(loader.loadTexture(ctx.c_str(), 7)), mipmapped(loader.loadTexture(mtx.c_str(), 7));
    ASSERT_TRUE(plain);
    EXPECT_EQ(nullptr, dynamic_cast<MipMapTexture*>(plain.get()));
    MipMapTexture* mip = dynamic_cast<MipMapTexture*>(mipmapped.get());
    ASSERT_NE(nullptr, mip);
    EXPECT_EQ(5, mip->getLevelCount());
    EXPECT_EQ(pixels, pixelsOf(mip));
}
