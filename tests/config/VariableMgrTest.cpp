// VariableMgr: the settings file with its kept quirks, the registry list, the saved form.
#include "config/VariableMgr.h"

#include <gtest/gtest.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string HEADER = "Settings Registry v0.1\nany notice at all\n";

class VariableFile : public ::testing::Test {
protected:
    std::string path;

    void SetUp() override
    {
        const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
        path = ::testing::TempDir() + "velmora_cfg_" + info->name() + "_" + std::to_string(getpid());
    }

    void TearDown() override { std::remove(path.c_str()); }

    const char* write(const std::string& text)
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << text;
        return path.c_str();
    }

    std::string read()
    {
        std::ifstream in(path, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
};

}  // namespace

TEST_F(VariableFile, FinalNewlineReportsFalseAfterLoadingEverything)
{
    VariableMgr mgr;
    EXPECT_FALSE(mgr.load(write(HEADER + "Width = 640\nHeight = 480\n")));
    EXPECT_EQ(mgr.getCount(), 2u);
    ASSERT_NE(mgr.find("Width"), nullptr);
    EXPECT_EQ(mgr.find("Width")->getInteger(), 640);
    EXPECT_EQ(mgr.find("Height")->getInteger(), 480);
}

TEST_F(VariableFile, NoFinalNewlineReportsTrue)
{
    VariableMgr mgr;
    EXPECT_TRUE(mgr.load(write(HEADER + "Width = 640\nHeight = 480")));
    EXPECT_EQ(mgr.getCount(), 2u);
    EXPECT_STREQ(mgr.find("Height")->getString(), "480");
}

TEST_F(VariableFile, NoRecords)
{
    VariableMgr mgr;
    EXPECT_FALSE(mgr.load(write(HEADER)));
    EXPECT_EQ(mgr.getCount(), 0u);
    EXPECT_TRUE(mgr.load(write("Settings Registry v0.1\nnotice without newline")));
    EXPECT_EQ(mgr.getCount(), 0u);
}

TEST_F(VariableFile, FirstLineMustMatchExactly)
{
    VariableMgr mgr;
    EXPECT_FALSE(mgr.load(write("settings registry v0.1\nn\nA = 1\n")));
    EXPECT_FALSE(mgr.load(write("Settings Registry v0.2\nn\nA = 1\n")));
    EXPECT_FALSE(mgr.load(write("Settings Registry v0.1\r\nn\nA = 1\n")));
    EXPECT_FALSE(mgr.load(write("Settings Registry v0.10\nn\nA = 1\n")));
    EXPECT_FALSE(mgr.load(write("")));
    EXPECT_EQ(mgr.getCount(), 0u);
}

TEST_F(VariableFile, MissingFileFails)
{
    VariableMgr mgr;
    EXPECT_FALSE(mgr.load((path + "_absent").c_str()));
    EXPECT_FALSE(mgr.load(nullptr));
    EXPECT_EQ(mgr.getCount(), 0u);
}

TEST_F(VariableFile, SecondLineIsNeverRead)
{
    VariableMgr mgr;
    mgr.load(write("Settings Registry v0.1\nHidden = 1\nShown = 2\n"));
    EXPECT_EQ(mgr.find("Hidden"), nullptr);
    EXPECT_NE(mgr.find("Shown"), nullptr);
}

TEST_F(VariableFile, LaterDuplicateHidesEarlier)
{
    VariableMgr mgr;
    mgr.load(write(HEADER + "Volume = 100\nVolume = 200\n"));
    EXPECT_EQ(mgr.getCount(), 2u);
    EXPECT_EQ(mgr.find("Volume")->getInteger(), 200);
}

TEST_F(VariableFile, LookupIsCaseSensitive)
{
    VariableMgr mgr;
    mgr.load(write(HEADER + "Width = 800\n"));
    EXPECT_EQ(mgr.find("width"), nullptr);
    EXPECT_NE(mgr.find("Width"), nullptr);
}

TEST_F(VariableFile, GluedEqualsSwallowsTheNextLine)
{
    VariableMgr mgr;
    mgr.load(write(HEADER + "Width=800\nHeight = 480\n"));
    EXPECT_EQ(mgr.find("Width"), nullptr);
    EXPECT_EQ(mgr.find("Height"), nullptr);
    ASSERT_NE(mgr.find("Width=800\nHeight"), nullptr);
    EXPECT_STREQ(mgr.find("Width=800\nHeight")->getString(), "480");
}

TEST_F(VariableFile, CarriageReturnsStayInValues)
{
    VariableMgr mgr;
    mgr.load(write(HEADER + "Width = 800\r\nFullscreen = yes\r\nSong = a.xm \r\n"));
    EXPECT_EQ(mgr.find("Width")->getInteger(), 800);
    EXPECT_FALSE(mgr.find("Fullscreen")->getBoolean());
    EXPECT_STREQ(mgr.find("Song")->getString(), "a.xm \r");
}

TEST_F(VariableFile, BadRecordStopsButKeepsEarlierOnes)
{
    VariableMgr mgr;
    EXPECT_FALSE(mgr.load(write(HEADER + "A = 1\nB : 2\nC = 3\n")));
    EXPECT_EQ(mgr.getCount(), 1u);
    EXPECT_NE(mgr.find("A"), nullptr);
    EXPECT_EQ(mgr.find("C"), nullptr);
}

TEST_F(VariableFile, LoadedVariablesHaveNoRuntimeFlag)
{
    VariableMgr mgr;
    mgr.load(write(HEADER + "A = 1"));
    EXPECT_FALSE(mgr.find("A")->getRuntimeFlag());
}

TEST_F(VariableFile, SaveRunsHeaderIntoNoticeAndSpacesRecords)
{
    VariableMgr mgr;
    mgr.add(Variable("First", 1, false));
    mgr.add(Variable("Second", "two", false));
    ASSERT_TRUE(mgr.save(path.c_str()));
    std::string expected = std::string(VariableMgr::IDENTIFICATION) + VariableMgr::NOTICE +
                           "Second = two\n\nFirst = 1\n\n";
    EXPECT_EQ(read(), expected);
}

TEST_F(VariableFile, SavedFormIsNotReadBack)
{
    VariableMgr mgr;
    mgr.add(Variable("Width", 800, false));
    ASSERT_TRUE(mgr.save(path.c_str()));
    VariableMgr other;
    EXPECT_FALSE(other.load(path.c_str()));
    EXPECT_EQ(other.getCount(), 0u);
}

TEST_F(VariableFile, SaveCreatesWithMode0664AndTruncates)
{
    mode_t old = umask(0);
    VariableMgr mgr;
    write(std::string(1000, 'x'));
    bool saved = mgr.save(path.c_str());
    umask(old);
    ASSERT_TRUE(saved);
    EXPECT_EQ(read(), std::string(VariableMgr::IDENTIFICATION) + VariableMgr::NOTICE);
    std::remove(path.c_str());
    umask(0);
    mgr.save(path.c_str());
    umask(old);
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0664u);
    EXPECT_FALSE(mgr.save("/nonexistent-dir/velmora.cfg"));
}

TEST(VariableRegistry, AddReplacesValueButKeepsFlag)
{
    VariableMgr mgr;
    EXPECT_TRUE(mgr.add(Variable("Sound", "yes", true)));
    EXPECT_TRUE(mgr.add(Variable("Sound", "no", false)));
    EXPECT_EQ(mgr.getCount(), 1u);
    EXPECT_STREQ(mgr.find("Sound")->getString(), "no");
    EXPECT_TRUE(mgr.find("Sound")->getRuntimeFlag());
}

TEST(VariableRegistry, AddKeepsACopy)
{
    VariableMgr mgr;
    Variable local("Depth", 16, false);
    mgr.add(local);
    local.setValue(32);
    EXPECT_EQ(mgr.find("Depth")->getInteger(), 16);
    EXPECT_NE(mgr.find("Depth"), &local);
}

TEST(VariableRegistry, RemoveUnlinksTheFirstMatch)
{
    VariableMgr mgr;
    mgr.add(Variable("A", 1, false));
    mgr.add(Variable("B", 2, false));
    mgr.add(Variable("C", 3, false));
    EXPECT_TRUE(mgr.remove("B"));
    EXPECT_EQ(mgr.getCount(), 2u);
    EXPECT_EQ(mgr.find("B"), nullptr);
    EXPECT_NE(mgr.find("A"), nullptr);
    EXPECT_TRUE(mgr.remove("C"));
    EXPECT_TRUE(mgr.remove("A"));
    EXPECT_FALSE(mgr.remove("A"));
    EXPECT_EQ(mgr.getCount(), 0u);
    const VariableMgr& constant = mgr;
    EXPECT_EQ(constant.find("A"), nullptr);
}

TEST(VariableRegistry, OneProcessWideInstance)
{
    VariableMgr* handle = VariableMgr::getHandle();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle, VariableMgr::getHandle());
}
