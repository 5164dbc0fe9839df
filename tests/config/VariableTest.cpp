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

bool loads(Variable& v, const std::string& text)
{
    std::istringstream in(text);
    return v.load(in);
}

}  // namespace

TEST(VariableConversion, SettersWriteFixedFormatsOnlyYesIsTrueAndIntegersTakeLeadingDigits)
{
    Variable v;
    v.setValue(0.5f);
    EXPECT_STREQ(v.getString(), "0.500000");
    v.setBoolean(true);
    EXPECT_STREQ(v.getString(), "yes");
    EXPECT_TRUE(v.getBoolean());
    v.setBoolean(false);
    EXPECT_STREQ(v.getString(), "no");
    EXPECT_TRUE(withText("YES").getBoolean());
    for (const char* text : {"1", "true", "on", "yes ", "yes\r"})
        EXPECT_FALSE(withText(text).getBoolean()) << text;
    EXPECT_EQ(withText("12abc").getInteger(), 12);
    EXPECT_EQ(withText("abc").getInteger(), 0);
    EXPECT_EQ(withText("800\r").getInteger(), 800);
    EXPECT_FLOAT_EQ(withText("0.25xyz").getFloat(), 0.25f);
}

TEST(VariableIdentity, UnsetReadsAsNothingCopiesOwnTheirTextAndNamesAreCaseSensitive)
{
    Variable v;
    EXPECT_EQ(v.getInteger(), 0);
    EXPECT_FALSE(v.getBoolean());
    EXPECT_FALSE(v == "Key");
    Variable a("Volume", 255, true);
    Variable b(a);
    EXPECT_STREQ(b.getName(), "Volume");
    EXPECT_TRUE(b.getRuntimeFlag());
    EXPECT_NE(b.getString(), a.getString());
    Variable c("Other", true, false);
    c = a;
    EXPECT_STREQ(c.getString(), "255");
    EXPECT_TRUE(a == "Volume");
    EXPECT_FALSE(a == "volume");
    // Setting a value from its own text must not read freed memory.
    c.setString(c.getString());
    EXPECT_STREQ(c.getString(), "255");
}

TEST(VariableRecord, NameSpaceEqualsValueWithEveryBlankKeptOverlongFieldsFailAndSaveWritesOneLine)
{
    Variable v("Old", "x", true);
    ASSERT_TRUE(loads(v, "Width = 800\n"));
    EXPECT_STREQ(v.getName(), "Width");
    EXPECT_STREQ(v.getString(), "800");
    EXPECT_FALSE(v.getRuntimeFlag());
    ASSERT_TRUE(loads(v, "Song = music.xm \n"));
    EXPECT_STREQ(v.getString(), "music.xm ");
    ASSERT_TRUE(loads(v, "Song =   two\r\n"));
    EXPECT_STREQ(v.getString(), "  two\r");
    ASSERT_TRUE(loads(v, "\nWidth = 800\n"));
    EXPECT_STREQ(v.getName(), "\nWidth");
    for (const char* text : {"Width : 800\n", "Width=800", "", "Width ="})
        EXPECT_FALSE(loads(v, text)) << text;
    ASSERT_TRUE(loads(v, std::string(127, 'n') + " = " + std::string(127, 'v') + "\n"));
    EXPECT_EQ(std::string(v.getString()).size(), 127u);
    EXPECT_FALSE(loads(v, std::string(128, 'n') + " = v\n"));
    EXPECT_FALSE(loads(v, "n = " + std::string(128, 'v') + "\n"));
    Variable song("Song", "data/music/velmora.xm", false);
    std::ostringstream out;
    ASSERT_TRUE(song.save(out));
    EXPECT_EQ(out.str(), "Song = data/music/velmora.xm\n");
}
