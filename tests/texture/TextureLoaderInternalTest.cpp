// The CTX1 container: byte layout, save then load bit for bit, reload checks, .ctx versus .mtx, bad files.
#include "support/GLContext.h"
#include "TestImages.h"

#include "texture/MipMapTexture.h"
#include "texture/Texture.h"
#include "texture/TextureLoaderInternal.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <zlib.h>

namespace {

typedef std::unique_ptr<Texture> TexturePtr;

unsigned char* copyOf(const Bytes& b)
{
    unsigned char* p = new unsigned char[b.size()];
    std::memcpy(p, b.data(), b.size());
    return p;
}

Bytes pixelsOf(const Texture* t)
{
    return Bytes(t->getDataPtr(), t->getDataPtr() + t->getDataSize());
}

// 5 x 3 RGB with a pattern deflate cannot shrink to nothing.
Bytes pattern(size_t size)
{
    Bytes b(size);
    for (size_t i = 0; i < size; ++i)
        b[i] = static_cast<unsigned char>((i * 37 + i / 7) & 0xff);
    return b;
}

int32_t intAt(const Bytes& b, size_t at)
{
    return static_cast<int32_t>(b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (uint32_t(b[at + 3]) << 24));
}

void putInt(Bytes& b, size_t at, int32_t v)
{
    for (int i = 0; i < 4; ++i)
        b[at + i] = static_cast<unsigned char>((uint32_t(v) >> (8 * i)) & 0xff);
}

class Container : public ::testing::Test {
protected:
    std::string saved(const char* name, int w, int h, int bpp, int format, const Bytes& pixels)
    {
        Texture t("source", w, h, bpp, format, copyOf(pixels));
        std::string path = scratchPath(name);
        EXPECT_TRUE(loader.saveTexture(path.c_str(), &t));
        return path;
    }

    TextureLoaderInternal loader;
};

} // namespace

TEST_F(Container, FileIsHeaderThenOneZlibStreamAtLevelNine)
{
    Bytes pixels = pattern(5 * 3 * 3);
    Bytes file = readBytes(saved("layout.ctx", 5, 3, 24, 7, pixels));
    ASSERT_GT(file.size(), 20u);
    EXPECT_EQ(0, std::memcmp(file.data(), "CTX1", 4));
    EXPECT_EQ(5, intAt(file, 4));
    EXPECT_EQ(3, intAt(file, 8));
    EXPECT_EQ(24, intAt(file, 12));
    EXPECT_EQ(7, intAt(file, 16));
    // zlib header: deflate, and the level bits of the best compression.
    EXPECT_EQ(0x78, file[20]);
    EXPECT_EQ(0xda, file[21]);
    Bytes inflated(pixels.size());
    uLongf length = inflated.size();
    ASSERT_EQ(Z_OK, uncompress(inflated.data(), &length, file.data() + 20, file.size() - 20));
    EXPECT_EQ(pixels, inflated);
}

TEST_F(Container, SaveThenLoadIsIdenticalForEveryFormat)
{
    for (int format = 1; format <= 8; ++format) {
        int w = 33, h = 17;
        Bytes pixels = pattern(static_cast<size_t>(w) * h * Texture::componentsOf(format));
        std::string path = saved("trip.ctx", w, h, 8 * Texture::componentsOf(format) + 1, format, pixels);
        // The requested format is ignored: the file's own is used.
        TexturePtr t(loader.loadTexture(path.c_str(), 3));
        ASSERT_TRUE(t) << format;
        EXPECT_STREQ(path.c_str(), t->getName());
        EXPECT_EQ(w, t->getWidth());
        EXPECT_EQ(h, t->getHeight());
        EXPECT_EQ(8 * Texture::componentsOf(format) + 1, t->getBitsPerPixel());
        EXPECT_EQ(format, t->getFormat());
        EXPECT_EQ(pixels, pixelsOf(t.get()));
        EXPECT_EQ(Texture::noName, t->getGLName());
    }
}

TEST_F(Container, LargeBuffersCrossManyOutputBuffers)
{
    Bytes pixels = pattern(300 * 200 * 4);
    std::string path = saved("large.ctx", 300, 200, 32, 8, pixels);
    TexturePtr t(loader.loadTexture(path.c_str(), 8));
    ASSERT_TRUE(t);
    EXPECT_EQ(pixels, pixelsOf(t.get()));
}

TEST_F(Container, StreamEndingEarlyLeavesTheRestZero)
{
    Bytes header = readBytes(saved("short.ctx", 4, 4, 8, 5, pattern(16)));
    header.resize(20);
    Bytes few = {1, 2, 3, 4, 5};
    Bytes packed(64);
    uLongf length = packed.size();
    ASSERT_EQ(Z_OK, compress2(packed.data(), &length, few.data(), few.size(), 9));
    header.insert(header.end(), packed.begin(), packed.begin() + length);
    std::string path = scratchPath("short.ctx");
    ASSERT_TRUE(writeBytes(path, header));
    TexturePtr t(loader.loadTexture(path.c_str(), 5));
    ASSERT_TRUE(t);
    Bytes expected(16, 0);
    std::copy(few.begin(), few.end(), expected.begin());
    EXPECT_EQ(expected, pixelsOf(t.get()));
}

TEST_F(Container, ReloadFillsTheSameBuffer)
{
    std::string path = saved("reload.ctx", 4, 2, 8, 1, pattern(8));
    TexturePtr t(loader.loadTexture(path.c_str(), 1));
    ASSERT_TRUE(t);
    const unsigned char* buffer = t->getDataPtr();
    Bytes changed = {8, 7, 6, 5, 4, 3, 2, 1};
    saved("reload.ctx", 4, 2, 8, 1, changed);
    EXPECT_TRUE(loader.reloadTexture(path.c_str(), t.get()));
    EXPECT_EQ(buffer, t->getDataPtr());
    EXPECT_EQ(changed, pixelsOf(t.get()));
}

TEST_F(Container, ReloadWithAnyHeaderFieldDifferentFailsAndKeepsThePixels)
{
    std::string path = saved("mismatch.ctx", 4, 2, 8, 1, pattern(8));
    TexturePtr t(loader.loadTexture(path.c_str(), 1));
    ASSERT_TRUE(t);
    struct Change {
        int w, h, bpp, format;
    } changes[] = {{2, 4, 8, 1}, {4, 1, 8, 1}, {4, 2, 16, 1}, {4, 2, 8, 2}};
    for (const Change& c : changes) {
        saved("mismatch.ctx", c.w, c.h, c.bpp, c.format, Bytes(8, 0xee));
        EXPECT_FALSE(loader.reloadTexture(path.c_str(), t.get()));
        EXPECT_EQ(pattern(8), pixelsOf(t.get()));
    }
    EXPECT_FALSE(loader.reloadTexture(scratchPath("missing.ctx").c_str(), t.get()));
}

TEST_F(Container, BadFilesGiveNull)
{
    EXPECT_EQ(nullptr, loader.loadTexture(scratchPath("missing.ctx").c_str(), 7));
    std::string path = scratchPath("bad.ctx");
    ASSERT_TRUE(writeBytes(path, {}));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
    Bytes good = readBytes(saved("good.ctx", 8, 8, 24, 7, pattern(8 * 8 * 3)));
    Bytes v = good;
    v[3] = '2';
    ASSERT_TRUE(writeBytes(path, v));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
    // Header cut at every field boundary, and the stream cut halfway.
    for (size_t length : {size_t(2), size_t(4), size_t(8), size_t(12), size_t(16), size_t(20), size_t(20 + (good.size() - 20) / 2)}) {
        ASSERT_TRUE(writeBytes(path, Bytes(good.begin(), good.begin() + length)));
        EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7)) << "cut at " << length;
    }
    // A corrupt stream.
    v = good;
    v[20] = 0x13;
    ASSERT_TRUE(writeBytes(path, v));
    EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7));
}

TEST_F(Container, AbsurdHeadersAreRefusedBeforeAllocating)
{
    Bytes good = readBytes(saved("absurd.ctx", 8, 8, 24, 7, pattern(8 * 8 * 3)));
    std::string path = scratchPath("absurd-bad.ctx");
    struct Field {
        size_t at;
        int32_t value;
    } fields[] = {{16, 0}, {16, 9}, {16, -7}, {4, -8}, {8, 0}, {4, 0x7fffffff}, {8, 0x10000}, {4, 16384}};
    for (const Field& f : fields) {
        Bytes v = good;
        putInt(v, f.at, f.value);
        ASSERT_TRUE(writeBytes(path, v));
        EXPECT_EQ(nullptr, loader.loadTexture(path.c_str(), 7)) << f.at << "=" << f.value;
    }
}

TEST_F(Container, SavingNeedsPixelsAndAWritablePath)
{
    Texture empty;
    EXPECT_FALSE(loader.saveTexture(scratchPath("empty.ctx").c_str(), &empty));
    Texture t("x", 1, 1, 8, 5, new unsigned char[1]{9});
    EXPECT_FALSE(loader.saveTexture("/nonexistent-dir/x.ctx", &t));
}

class ContainerKind : public GLTest {
protected:
    TextureLoaderInternal loader;
};

TEST_F(ContainerKind, CtxGivesATextureAndMtxAMipMapTexture)
{
    Bytes pixels = pattern(16 * 8 * 3);
    Texture source("s", 16, 8, 24, 7, copyOf(pixels));
    std::string ctx = scratchPath("kind.ctx");
    std::string mtx = scratchPath("kind.mtx");
    ASSERT_TRUE(loader.saveTexture(ctx.c_str(), &source));
    ASSERT_TRUE(loader.saveTexture(mtx.c_str(), &source));
    TexturePtr plain(loader.loadTexture(ctx.c_str(), 7));
    TexturePtr mipmapped(loader.loadTexture(mtx.c_str(), 7));
    ASSERT_TRUE(plain);
    ASSERT_TRUE(mipmapped);
    EXPECT_EQ(nullptr, dynamic_cast<MipMapTexture*>(plain.get()));
    MipMapTexture* mip = dynamic_cast<MipMapTexture*>(mipmapped.get());
    ASSERT_NE(nullptr, mip);
    EXPECT_EQ(5, mip->getLevelCount());
    EXPECT_EQ(pixels, pixelsOf(mip));
}
