// VariableMgr: the settings file with its kept quirks, the registry list, the saved form.
#include "config/VariableMgr.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <fstream>
#include <sstream>
#include <string>

namespace {

const std::string HEADER = "Settings Registry v0.1\nany notice at all\n";

class VariableFile : public ::testing::Test {
protected:
    std::string path = ::testing::TempDir() + "velmora_cfg_" + std::to_string(getpid());
    VariableMgr mgr;

    void TearDown() override { std::remove(path.c_str()); }

    const char* write(const std::string& text)
    {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
        return path.c_str();
    }

    std::string read()
    {
        std::stringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
};

}  // namespace

TEST_F(VariableFile, FinalNewlineOrNoRecordsReportFalseAfterLoadingEverything)
{
    EXPECT_FALSE(mgr.load(write(HEADER + "Width = 640\nHeight = 480\n")));
    EXPECT_EQ(mgr.getCount(), 2u);
    EXPECT_EQ(mgr.find("Height")->getInteger(), 480);
    VariableMgr other;
    EXPECT_TRUE(other.load(write(HEADER + "Width = 640\nHeight = 480")));
    EXPECT_EQ(other.getCount(), 2u);
    VariableMgr none;
    EXPECT_FALSE(none.load(write(HEADER)));
    EXPECT_TRUE(none.load(write("Settings Registry v0.1\nnotice without newline")));
    EXPECT_EQ(none.getCount(), 0u);
}

TEST_F(VariableFile, FirstLineMustMatchExactlyAndTheSecondIsNeverRead)
{
    for (const char* first : {"settings registry v0.1", "Settings Registry v0.1\r", "Settings Registry v0.10"})
        EXPECT_FALSE(mgr.load(write(std::string(first) + "\nn\nA = 1\n"))) << first;
    EXPECT_FALSE(mgr.load(write("")));
    EXPECT_FALSE(mgr.load((path + "_absent").c_str()));
    EXPECT_EQ(mgr.getCount(), 0u);
    mgr.load(write("Settings Registry v0.1\nHidden = 1\nShown = 2\n"));
    EXPECT_EQ(mgr.find("Hidden"), nullptr);
    EXPECT_NE(mgr.find("Shown"), nullptr);
}

TEST_F(VariableFile, LaterDuplicateHidesEarlierAndLookupIsCaseSensitive)
{
    mgr.load(write(HEADER + "Volume = 100\nVolume = 200\n"));
    EXPECT_EQ(mgr.getCount(), 2u);
    EXPECT_EQ(mgr.find("Volume")->getInteger(), 200);
    EXPECT_EQ(mgr.find("volume"), nullptr);
}

TEST_F(VariableFile, GluedEqualsSwallowsTheNextLineAndCarriageReturnsStayInValues)
{
    mgr.load(write(HEADER + "Width=800\nHeight = 480\n"));
    EXPECT_EQ(mgr.find("Width"), nullptr);
    EXPECT_EQ(mgr.find("Height"), nullptr);
    ASSERT_NE(mgr.find("Width=800\nHeight"), nullptr);
    mgr.load(write(HEADER + "Width = 800\r\nFullscreen = yes\r\n"));
    EXPECT_EQ(mgr.find("Width")->getInteger(), 800);
    EXPECT_FALSE(mgr.find("Fullscreen")->getBoolean());
}

TEST_F(VariableFile, BadRecordStopsButKeepsEarlierOnes)
{
    EXPECT_FALSE(mgr.load(write(HEADER + "A = 1\nB : 2\nC = 3\n")));
    EXPECT_EQ(mgr.getCount(), 1u);
    EXPECT_NE(mgr.find("A"), nullptr);
    EXPECT_EQ(mgr.find("C"), nullptr);
}

TEST_F(VariableFile, SaveRunsHeaderIntoNoticeSpacesRecordsAndIsNotReadBack)
{
    mgr.add(Variable("First", 1, false));
    mgr.add(Variable("Second", "two", false));
    ASSERT_TRUE(mgr.save(path.c_str()));
    EXPECT_EQ(read(), std::string(VariableMgr::IDENTIFICATION) + VariableMgr::NOTICE + "Second = two\n\nFirst = 1\n\n");
    VariableMgr other;
    EXPECT_FALSE(other.load(path.c_str()));
    EXPECT_EQ(other.getCount(), 0u);
    EXPECT_FALSE(mgr.save("/nonexistent-dir/velmora.cfg"));
}

TEST(VariableRegistry, AddReplacesValueButKeepsFlag)
{
    VariableMgr mgr;
    Variable local("Sound", "yes", true);
    EXPECT_TRUE(mgr.add(local));
    local.setString("changed");
    EXPECT_STREQ(mgr.find("Sound")->getString(), "yes");
    EXPECT_TRUE(mgr.add(Variable("Sound", "no", false)));
    EXPECT_EQ(mgr.getCount(), 1u);
    EXPECT_STREQ(mgr.find("Sound")->getString(), "no");
    EXPECT_TRUE(mgr.find("Sound")->getRuntimeFlag());
}

TEST(VariableRegistry, RemoveUnlinksTheFirstMatch)
{
    VariableMgr mgr;
    for (const char* name : {"A", "B", "C"})
        mgr.add(Variable(name, 1, false));
    EXPECT_TRUE(mgr.remove("B"));
    EXPECT_EQ(mgr.find("B"), nullptr);
    EXPECT_NE(mgr.find("A"), nullptr);
    EXPECT_TRUE(mgr.remove("C"));
    EXPECT_TRUE(mgr.remove("A"));
    EXPECT_FALSE(mgr.remove("A"));
    EXPECT_EQ(mgr.getCount(), 0u);
}
