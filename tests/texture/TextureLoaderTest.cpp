// Choosing a loader by extension: prefix matching, case, the comma catch-all and the search order.
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>

namespace {

class FakeLoader : public TextureLoader {
public:
    explicit FakeLoader(const char* list) : TextureLoader(list) {}
    Texture* loadTexture(const char*, int) override { return nullptr; }
    bool reloadTexture(const char*, Texture*) override { return false; }
    bool saveTexture(const char*, Texture*) override { return false; }
};

} // namespace

TEST(ExtensionMatching, ItemIsComparedOverItsOwnLengthIgnoringCase)
{
    FakeLoader tif("tif");
    EXPECT_TRUE(tif.checkExtension("tif"));
    EXPECT_TRUE(tif.checkExtension("TIF"));
    EXPECT_TRUE(tif.checkExtension("tiff"));
    EXPECT_FALSE(tif.checkExtension("ti"));
    EXPECT_FALSE(tif.checkExtension(""));
    FakeLoader jpg("jpg");
    EXPECT_FALSE(jpg.checkExtension("jpeg"));
    FakeLoader png("png");
    EXPECT_TRUE(png.checkExtension("pngx"));
}

TEST(ExtensionMatching, ACommaMakesTheListACatchAllAfterItsFirstItemFails)
{
    FakeLoader internal("ctx,mtx");
    EXPECT_TRUE(internal.checkExtension("ctx"));
    EXPECT_TRUE(internal.checkExtension("mtx"));
    EXPECT_TRUE(internal.checkExtension("xyz"));
    EXPECT_TRUE(internal.checkExtension("jpeg"));
    EXPECT_TRUE(internal.checkExtension(""));
}

TEST(ExtensionMatching, FileNameNeedsADotAndUsesTheLastOne)
{
    FakeLoader png("png");
    EXPECT_TRUE(png.checkFilename("data/img/water.png"));
    EXPECT_TRUE(png.checkFilename("a.tar.PNG"));
    EXPECT_FALSE(png.checkFilename("data/img/png"));
    EXPECT_FALSE(png.checkFilename("water.png.bak"));
    EXPECT_FALSE(png.checkFilename(nullptr));
    FakeLoader internal("ctx,mtx");
    EXPECT_FALSE(internal.checkFilename("noextension"));
    EXPECT_TRUE(internal.checkFilename("odd."));
}

TEST(ExtensionMatching, ListIsKeptAsGiven)
{
    FakeLoader loader("ctx,mtx");
    EXPECT_STREQ("ctx,mtx", loader.getExtension());
}

TEST(LoaderChoice, StandardLoadersAreFoundByExtension)
{
    TextureMgr* mgr = TextureMgr::getHandle();
    struct Case {
        const char* file;
        const char* list;
    } cases[] = {
        {"a.png", "png"}, {"a.PNG", "png"},  {"a.jpg", "jpg"},      {"a.pcx", "pcx"},     {"a.tga", "tga"},
        {"a.tif", "tif"}, {"a.tiff", "tif"}, {"a.bw", "bw"},        {"a.ctx", "ctx,mtx"}, {"a.mtx", "ctx,mtx"},
        {"a.jpeg", "ctx,mtx"}, {"a.xyz", "ctx,mtx"}, {"a.bwx", "bw"},
    };
    for (const Case& c : cases) {
        TextureLoader* loader = mgr->findLoader(c.file);
        ASSERT_NE(nullptr, loader) << c.file;
        EXPECT_STREQ(c.list, loader->getExtension()) << c.file;
    }
    EXPECT_EQ(nullptr, mgr->findLoader("nodot"));
}

TEST(LoaderChoice, SevenLoadersAreRegisteredBeforeMain)
{
    TextureMgr* mgr = TextureMgr::getHandle();
    EXPECT_EQ(7, mgr->getLoaderCount());
    for (const char* list : {"ctx,mtx", "jpg", "pcx", "png", "tga", "tif", "bw"})
        EXPECT_TRUE(mgr->haveLoader(list)) << list;
    EXPECT_TRUE(mgr->haveLoader("CTX,MTX"));
    EXPECT_FALSE(mgr->haveLoader("ctx"));
}
