// The texture cache: sharing by exact name, loader registry, TMGR bytes and its kept 16/32-bit mismatch.
#include "TestImages.h"

#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureLoaderInternal.h"
#include "texture/TextureMgr.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

namespace {

class CountingLoader : public TextureLoader {
public:
    explicit CountingLoader(const char* list) : TextureLoader(list) {}
    Texture* loadTexture(const char* name, int format) override
    {
        ++loads;
        return new Texture(name, 1, 1, 8, format, new unsigned char[Texture::componentsOf(format)]());
    }
    bool reloadTexture(const char*, Texture*) override { return true; }
    bool saveTexture(const char*, Texture*) override { return true; }
    int loads = 0;
};

std::string bytesOf(std::initializer_list<int> values)
{
    std::string s;
    for (int v : values)
        s.push_back(static_cast<char>(v));
    return s;
}

// Each test starts from an empty cache and the standard loaders.
class Cache : public ::testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

    static void reset()
    {
        mgr()->shutdown();
        mgr()->registerStandardLoaders();
    }

    static TextureMgr* mgr() { return TextureMgr::getHandle(); }

    // A CTX1 file of one grey pixel per format code, for the real loader path.
    static std::string ctxFile(const char* name, int format = 5)
    {
        Texture t("src", 1, 1, 8, format, new unsigned char[4]{1, 2, 3, 4});
        std::string path = scratchPath(name);
        TextureLoaderInternal writer;
        EXPECT_TRUE(writer.saveTexture(path.c_str(), &t));
        return path;
    }
};

} // namespace

TEST_F(Cache, SameNameGivesTheSameTextureWhateverTheFormat)
{
    std::string path = ctxFile("shared.ctx");
    Texture* first = mgr()->loadTexture(path.c_str(), 5);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, mgr()->loadTexture(path.c_str(), 8));
    EXPECT_EQ(1, mgr()->getTextureCount());
    EXPECT_EQ(first, mgr()->findTexture(path.c_str()));
}

TEST_F(Cache, LetterCaseMakesADifferentEntry)
{
    CountingLoader* loader = new CountingLoader("fake");
    ASSERT_TRUE(mgr()->registerLoader(loader));
    Texture* lower = mgr()->loadTexture("a.fake", 7);
    Texture* upper = mgr()->loadTexture("A.fake", 7);
    ASSERT_NE(nullptr, lower);
    ASSERT_NE(nullptr, upper);
    EXPECT_NE(lower, upper);
    EXPECT_EQ(2, loader->loads);
    EXPECT_EQ(nullptr, mgr()->findTexture("a.FAKE"));
}

TEST_F(Cache, FailuresGiveNullAndCacheNothing)
{
    EXPECT_EQ(nullptr, mgr()->loadTexture(scratchPath("missing.png").c_str(), 7));
    EXPECT_EQ(nullptr, mgr()->loadTexture("nodot", 7));
    EXPECT_EQ(nullptr, mgr()->loadTexture(scratchPath("missing.xyz").c_str(), 7));
    EXPECT_EQ(0, mgr()->getTextureCount());
}

TEST_F(Cache, AddFindRemove)
{
    EXPECT_FALSE(mgr()->addTexture(nullptr));
    Texture* a = new Texture("dup");
    Texture* b = new Texture("dup");
    EXPECT_TRUE(mgr()->addTexture(a));
    EXPECT_TRUE(mgr()->addTexture(b));
    EXPECT_EQ(2, mgr()->getTextureCount());
    // Newest first.
    EXPECT_EQ(b, mgr()->findTexture("dup"));
    EXPECT_TRUE(mgr()->removeTexture("dup"));
    EXPECT_EQ(a, mgr()->findTexture("dup"));
    EXPECT_TRUE(mgr()->removeTexture("dup"));
    EXPECT_FALSE(mgr()->removeTexture("dup"));
    EXPECT_EQ(0, mgr()->getTextureCount());
}

TEST_F(Cache, LoaderRegistryComparesWholeListsIgnoringCase)
{
    EXPECT_FALSE(mgr()->registerLoader(nullptr));
    CountingLoader* same = new CountingLoader("PNG");
    EXPECT_FALSE(mgr()->registerLoader(same));
    delete same;
    EXPECT_EQ(7, mgr()->getLoaderCount());
    EXPECT_FALSE(mgr()->unregisterLoader("pn"));
    EXPECT_TRUE(mgr()->unregisterLoader("Png"));
    EXPECT_FALSE(mgr()->haveLoader("png"));
    EXPECT_EQ(6, mgr()->getLoaderCount());
    // With the PNG loader gone, the catch-all takes .png names.
    EXPECT_STREQ("ctx,mtx", mgr()->findLoader("x.png")->getExtension());
}

TEST_F(Cache, NewestLoaderIsAskedFirst)
{
    CountingLoader* loader = new CountingLoader("pngx");
    ASSERT_TRUE(mgr()->registerLoader(loader));
    EXPECT_EQ(loader, mgr()->findLoader("a.pngx"));
    EXPECT_STREQ("png", mgr()->findLoader("a.png")->getExtension());
}

TEST_F(Cache, ShutdownEmptiesBothLists)
{
    mgr()->addTexture(new Texture("x"));
    mgr()->shutdown();
    EXPECT_EQ(0, mgr()->getTextureCount());
    EXPECT_EQ(0, mgr()->getLoaderCount());
    EXPECT_EQ(nullptr, mgr()->findLoader("a.png"));
}

TEST_F(Cache, ReloadAndSaveGoThroughTheLoaderOfTheName)
{
    std::string path = ctxFile("reload.ctx");
    Texture* t = mgr()->loadTexture(path.c_str(), 5);
    ASSERT_NE(nullptr, t);
    t->getDataPtr()[0] = 99;
    EXPECT_TRUE(t->reload());
    EXPECT_EQ(1, t->getDataPtr()[0]);
    EXPECT_FALSE(mgr()->reloadTexture(path.c_str(), nullptr));
    EXPECT_FALSE(mgr()->reloadTexture("nodot", t));
    t->getDataPtr()[0] = 42;
    EXPECT_TRUE(mgr()->saveTexture(path.c_str()));
    EXPECT_FALSE(mgr()->saveTexture("not-cached.ctx"));
    Texture copy;
    EXPECT_FALSE(mgr()->saveTexture("nodot", &copy));
    mgr()->removeTexture(path.c_str());
    Texture* again = mgr()->loadTexture(path.c_str(), 5);
    ASSERT_NE(nullptr, again);
    EXPECT_EQ(42, again->getDataPtr()[0]);
}

TEST_F(Cache, SaveWritesFormatAndSixteenBitNamesNewestFirst)
{
    mgr()->addTexture(new Texture("a.ctx", 1, 1, 8, 5, new unsigned char[1]()));
    mgr()->addTexture(new Texture("bc.png", 1, 1, 8, 8, new unsigned char[4]()));
    std::ostringstream out;
    EXPECT_TRUE(mgr()->save(out));
    std::string expected = "TMGR" + bytesOf({2, 0, 0, 0}) + bytesOf({8, 0, 0, 0}) + bytesOf({6, 0}) + "bc.png" +
                           bytesOf({5, 0, 0, 0}) + bytesOf({5, 0}) + "a.ctx";
    EXPECT_EQ(expected, out.str());
}

TEST_F(Cache, LoadReadsThirtyTwoBitNameLengths)
{
    std::string path = ctxFile("listed.ctx", 7);
    std::string name = path;
    std::string body = "TMGR" + bytesOf({1, 0, 0, 0}) + bytesOf({7, 0, 0, 0}) +
                       bytesOf({int(name.size()), 0, 0, 0}) + name;
    std::istringstream in(body);
    EXPECT_TRUE(mgr()->load(in));
    Texture* t = mgr()->findTexture(name.c_str());
    ASSERT_NE(nullptr, t);
    EXPECT_EQ(7, t->getFormat());
    // A second load of the same list skips the cached name.
    std::istringstream again(body);
    EXPECT_TRUE(mgr()->load(again));
    EXPECT_EQ(1, mgr()->getTextureCount());
}

TEST_F(Cache, WhatSaveWritesDoesNotLoadBack)
{
    mgr()->addTexture(new Texture("a.ctx", 1, 1, 8, 5, new unsigned char[1]()));
    std::stringstream file;
    ASSERT_TRUE(mgr()->save(file));
    mgr()->shutdown();
    mgr()->registerStandardLoaders();
    EXPECT_FALSE(mgr()->load(file));
    EXPECT_EQ(0, mgr()->getTextureCount());
}

TEST_F(Cache, EmptyOrNegativeCountsReadNothing)
{
    std::istringstream empty("TMGR" + bytesOf({0, 0, 0, 0}) + "rest");
    EXPECT_TRUE(mgr()->load(empty));
    std::istringstream negative("TMGR" + bytesOf({0xff, 0xff, 0xff, 0xff}));
    EXPECT_TRUE(mgr()->load(negative));
    std::ostringstream out;
    EXPECT_TRUE(mgr()->save(out));
    EXPECT_EQ("TMGR" + bytesOf({0, 0, 0, 0}), out.str());
}

TEST_F(Cache, BadListsFail)
{
    std::string name = ctxFile("bad-list.ctx");
    std::string entry = bytesOf({5, 0, 0, 0}) + bytesOf({int(name.size()), 0, 0, 0}) + name;
    std::string good = "TMGR" + bytesOf({1, 0, 0, 0}) + entry;
    for (size_t length = 0; length < good.size(); ++length) {
        std::istringstream in(good.substr(0, length));
        EXPECT_FALSE(mgr()->load(in)) << "cut at " << length;
    }
    EXPECT_EQ(0, mgr()->getTextureCount());
    std::istringstream wrongTag("TMGX" + good.substr(4));
    EXPECT_FALSE(mgr()->load(wrongTag));
    std::istringstream absurd("TMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + entry);
    EXPECT_FALSE(mgr()->load(absurd));
    std::istringstream longName("TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 0, 2, 0, 0}) + std::string(512, 'a'));
    EXPECT_FALSE(mgr()->load(longName));
    std::istringstream negativeName("TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}) + "abc.ctx");
    EXPECT_FALSE(mgr()->load(negativeName));
    std::istringstream noLoader("TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 5, 0, 0, 0}) + "nodot");
    EXPECT_FALSE(mgr()->load(noLoader));
    std::istringstream missing("TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 9, 0, 0, 0}) + "gone1.ctx");
    EXPECT_FALSE(mgr()->load(missing));
    EXPECT_FALSE(mgr()->load(scratchPath("no-such-list.tmg").c_str()));
}

TEST_F(Cache, FileWrappersRoundTheChunk)
{
    std::string path = scratchPath("list.tmg");
    EXPECT_TRUE(mgr()->save(path.c_str()));
    EXPECT_TRUE(mgr()->load(path.c_str()));
    EXPECT_FALSE(mgr()->save("/nonexistent-dir/list.tmg"));
}
