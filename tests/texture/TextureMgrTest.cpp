// The texture cache: sharing by exact name, loader registry, TMGR bytes and its kept 16/32-bit mismatch.
#include "TestImages.h"

#include "texture/TextureMgr.h"

#include <gtest/gtest.h>

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

    // A TMGR list of one entry with a 32-bit name length.
    static std::string list(const std::string& name, int format = 5)
    {
        return "TMGR" + bytesOf({1, 0, 0, 0, format, 0, 0, 0, int(name.size()), 0, 0, 0}) + name;
    }
};

}  // namespace

TEST_F(Cache, SameNameGivesTheSameTextureWhateverTheFormatButCaseMatters)
{
    std::string path = ctxFile("shared.ctx", 5);
    Texture* first = mgr()->loadTexture(path.c_str(), 5);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, mgr()->loadTexture(path.c_str(), 8));
    EXPECT_EQ(nullptr, mgr()->loadTexture(scratchPath("missing.png").c_str(), 7));
    EXPECT_EQ(1, mgr()->getTextureCount());
    CountingLoader* loader = new CountingLoader("fake");
    ASSERT_TRUE(mgr()->registerLoader(loader));
    EXPECT_NE(mgr()->loadTexture("a.fake", 7), mgr()->loadTexture("A.fake", 7));
    EXPECT_EQ(2, loader->loads);
    EXPECT_EQ(nullptr, mgr()->findTexture("a.FAKE"));
}

TEST_F(Cache, SaveWritesSixteenBitNamesNewestFirstThatLoadCannotReadBack)
{
    mgr()->addTexture(new Texture("a.ctx", 1, 1, 8, 5, new unsigned char[1]()));
    mgr()->addTexture(new Texture("bc.png", 1, 1, 8, 8, new unsigned char[4]()));
    std::string file = saved(*mgr());
    EXPECT_EQ("TMGR" + bytesOf({2, 0, 0, 0, 8, 0, 0, 0, 6, 0}) + "bc.png" + bytesOf({5, 0, 0, 0, 5, 0}) + "a.ctx",
              file);
    reset();
    EXPECT_FALSE(loads(*mgr(), file));
    EXPECT_EQ(0, mgr()->getTextureCount());
}

TEST_F(Cache, LoadReadsThirtyTwoBitNameLengthsAndSkipsCachedNames)
{
    std::string path = ctxFile("listed.ctx", 7);
    EXPECT_TRUE(loads(*mgr(), list(path, 7)));
    Texture* t = mgr()->findTexture(path.c_str());
    ASSERT_NE(nullptr, t);
    EXPECT_EQ(7, t->getFormat());
    EXPECT_TRUE(loads(*mgr(), list(path, 7)));
    EXPECT_EQ(1, mgr()->getTextureCount());
}

TEST_F(Cache, BadListsFail)
{
    std::string good = list(ctxFile("bad-list.ctx", 5));
    for (size_t length = 0; length < good.size(); ++length)
        EXPECT_FALSE(loads(*mgr(), good.substr(0, length))) << "cut at " << length;
    EXPECT_EQ(0, mgr()->getTextureCount());
    const std::string bad[] = {
        "TMGX" + good.substr(4),
        "TMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + good.substr(8),
        "TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 0, 2, 0, 0}) + std::string(512, 'a'),
        "TMGR" + bytesOf({1, 0, 0, 0, 5, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}) + "abc.ctx",
        list("nodot"),
        list("gone1.ctx"),
    };
    for (const std::string& text : bad)
        EXPECT_FALSE(loads(*mgr(), text)) << text.substr(0, 12);
    EXPECT_FALSE(mgr()->load(scratchPath("no-such-list.tmg").c_str()));
}

TEST_F(Cache, ACountPastTheEndKeepsTheTexturesLoadedBeforeTheCut)
{
    std::string path = ctxFile("early.ctx", 5);
    EXPECT_FALSE(loads(*mgr(), "TMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + list(path).substr(8)));
    EXPECT_NE(nullptr, mgr()->findTexture(path.c_str()));
}
