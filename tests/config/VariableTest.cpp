// Variable: text conversions, the odd boolean and integer rules, and the one-line record.
#include "config/Variable.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

Variable withText(const char* text)
{
    return Variable("Key", text, false);
}

}  // namespace

TEST(VariableConversion, SettersWriteFixedFormats)
{
    Variable v;
    v.setValue(0.5f);
    EXPECT_STREQ(v.getString(), "0.500000");
    v.setValue(2.25);
    EXPECT_STREQ(v.getString(), "2.250000");
    v.setValue(-42);
    EXPECT_STREQ(v.getString(), "-42");
    v.setBoolean(true);
    EXPECT_STREQ(v.getString(), "yes");
    EXPECT_TRUE(v.getBoolean());
    v.setBoolean(false);
    EXPECT_STREQ(v.getString(), "no");
    v.setValue(1e300);
    EXPECT_EQ(std::string(v.getString()).substr(0, 4), "1000");
}

TEST(VariableConversion, OnlyYesIsTrue)
{
    EXPECT_TRUE(withText("Yes").getBoolean());
    EXPECT_TRUE(withText("YES").getBoolean());
    EXPECT_FALSE(withText("1").getBoolean());
    EXPECT_FALSE(withText("true").getBoolean());
    EXPECT_FALSE(withText("on").getBoolean());
    EXPECT_FALSE(withText("yes ").getBoolean());
    EXPECT_FALSE(withText("yes\r").getBoolean());
}

TEST(VariableConversion, IntegerTakesLeadingDigits)
{
    EXPECT_EQ(withText("12abc").getInteger(), 12);
    EXPECT_EQ(withText("abc").getInteger(), 0);
    EXPECT_EQ(withText("  -7").getInteger(), -7);
    EXPECT_EQ(withText("800\r").getInteger(), 800);
    EXPECT_EQ(withText("3.9").getInteger(), 3);
    EXPECT_FLOAT_EQ(withText("0.25xyz").getFloat(), 0.25f);
    EXPECT_DOUBLE_EQ(withText("1e-3").getDouble(), 0.001);
}

TEST(VariableConversion, UnsetValueReadsAsNothing)
{
    Variable v;
    EXPECT_EQ(v.getName(), nullptr);
    EXPECT_EQ(v.getString(), nullptr);
    EXPECT_EQ(v.getInteger(), 0);
    EXPECT_EQ(v.getDouble(), 0.0);
    EXPECT_FALSE(v.getBoolean());
    EXPECT_FALSE(v.getRuntimeFlag());
    EXPECT_FALSE(v == "Key");
}

TEST(VariableIdentity, ConstructorsCopiesAndNames)
{
    Variable a("Volume", 255, true);
    EXPECT_STREQ(a.getString(), "255");
    EXPECT_TRUE(a.getRuntimeFlag());
    Variable b(a);
    EXPECT_STREQ(b.getName(), "Volume");
    EXPECT_STREQ(b.getString(), "255");
    EXPECT_TRUE(b.getRuntimeFlag());
    EXPECT_NE(b.getString(), a.getString());
    Variable c("Other", true, false);
    c = a;
    EXPECT_STREQ(c.getName(), "Volume");
    EXPECT_TRUE(c.getRuntimeFlag());
    EXPECT_TRUE(a == "Volume");
    EXPECT_FALSE(a == "volume");
    c.setString(c.getString());
    EXPECT_STREQ(c.getString(), "255");
    c.assign("Ratio", 0.5f, false);
    EXPECT_STREQ(c.getString(), "0.500000");
    EXPECT_FALSE(c.getRuntimeFlag());
}

TEST(VariableRecord, NameSpaceEqualsValue)
{
    Variable v("Old", "x", true);
    std::istringstream in("Width = 800\n");
    ASSERT_TRUE(v.load(in));
    EXPECT_STREQ(v.getName(), "Width");
    EXPECT_STREQ(v.getString(), "800");
    EXPECT_FALSE(v.getRuntimeFlag());
}

TEST(VariableRecord, ValueKeepsEveryBlankAndCarriageReturn)
{
    Variable v;
    std::istringstream trailing("Song = music.xm \n");
    ASSERT_TRUE(v.load(trailing));
    EXPECT_STREQ(v.getString(), "music.xm ");
    std::istringstream leading("Song =   two\r\n");
    ASSERT_TRUE(v.load(leading));
    EXPECT_STREQ(v.getString(), "  two\r");
    std::istringstream spaced("Song    = x\n");
    ASSERT_TRUE(v.load(spaced));
    EXPECT_STREQ(v.getName(), "Song");
    EXPECT_STREQ(v.getString(), "x");
}

TEST(VariableRecord, BlankLineBecomesPartOfTheName)
{
    Variable v;
    std::istringstream in("\nWidth = 800\n");
    ASSERT_TRUE(v.load(in));
    EXPECT_STREQ(v.getName(), "\nWidth");
}

TEST(VariableRecord, MissingEqualsFails)
{
    Variable v;
    std::istringstream colon("Width : 800\n");
    EXPECT_FALSE(v.load(colon));
    std::istringstream glued("Width=800");
    EXPECT_FALSE(v.load(glued));
    std::istringstream empty("");
    EXPECT_FALSE(v.load(empty));
    std::istringstream cut("Width =");
    EXPECT_FALSE(v.load(cut));
}

TEST(VariableRecord, FieldLengthLimits)
{
    Variable v;
    std::istringstream longest(std::string(127, 'n') + " = " + std::string(127, 'v') + "\n");
    ASSERT_TRUE(v.load(longest));
    EXPECT_EQ(std::string(v.getName()).size(), 127u);
    EXPECT_EQ(std::string(v.getString()).size(), 127u);
    std::istringstream longName(std::string(128, 'n') + " = v\n");
    EXPECT_FALSE(v.load(longName));
    std::istringstream longValue("n = " + std::string(128, 'v') + "\n");
    EXPECT_FALSE(v.load(longValue));
}

TEST(VariableRecord, SaveWritesOneLine)
{
    Variable v("Song", "data/music/velmora.xm", false);
    std::ostringstream out;
    ASSERT_TRUE(v.save(out));
    EXPECT_EQ(out.str(), "Song = data/music/velmora.xm\n");
    std::istringstream in(out.str());
    Variable back;
    ASSERT_TRUE(back.load(in));
    EXPECT_STREQ(back.getString(), "data/music/velmora.xm");
}
