// Choosing a loader by extension: prefix matching, case, the comma catch-all and the search order.
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>

TEST(ExtensionMatching, ItemIsComparedOverItsOwnLengthIgnoringCase)
{
    TextureLoader* tif = TextureMgr::getHandle()->findLoader("a.tif");
    ASSERT_NE(nullptr, tif);
    EXPECT_TRUE(tif->checkExtension("TIF"));
    EXPECT_TRUE(tif->checkExtension("tiff"));
    EXPECT_FALSE(tif->checkExtension("ti"));
    EXPECT_FALSE(tif->checkExtension(""));
    EXPECT_FALSE(tif->checkFilename("data/img/tif"));
    EXPECT_FALSE(tif->checkFilename("water.tif.bak"));
    EXPECT_FALSE(tif->checkFilename(nullptr));
    // A comma makes the list a catch-all once its first item fails.
    TextureLoader* internal = TextureMgr::getHandle()->findLoader("a.ctx");
    ASSERT_NE(nullptr, internal);
    EXPECT_TRUE(internal->checkExtension("jpeg"));
    EXPECT_TRUE(internal->checkFilename("odd."));
    EXPECT_FALSE(internal->checkFilename("noextension"));
}

TEST(ExtensionMatching, StandardLoadersAreFoundByExtension)
{
    TextureMgr* mgr = TextureMgr::getHandle();
    EXPECT_EQ(7, mgr->getLoaderCount());
    const struct {
        const char* file;
        const char* list;
    } cases[] = {
        {"a.png", "png"},  {"a.PNG", "png"},   {"a.jpg", "jpg"},     {"a.pcx", "pcx"},      {"a.tga", "tga"},
        {"a.tiff", "tif"}, {"a.tar.bw", "bw"}, {"a.mtx", "ctx,mtx"}, {"a.jpeg", "ctx,mtx"}, {"a.bwx", "bw"},
    };
    for (const auto& c : cases) {
        TextureLoader* loader = mgr->findLoader(c.file);
        ASSERT_NE(nullptr, loader) << c.file;
        EXPECT_STREQ(c.list, loader->getExtension()) << c.file;
    }
    EXPECT_EQ(nullptr, mgr->findLoader("nodot"));
}
