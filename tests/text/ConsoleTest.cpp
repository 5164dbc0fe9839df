// The console: the line ring and its wrapping rules, colour codes, the flash, and where glyphs land.
#include "text/Console.h"

#include "support/GLContext.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <string>

namespace {

Console* console()
{
    return Console::getHandle();
}

// A line's stored bytes with the trailing blanks dropped.
std::string line(int number)
{
    std::string text(console()->getLine(number), Console::WIDTH);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

class ConsoleText : public ::testing::Test {
protected:
    void SetUp() override
    {
        console()->shutdown();
        console()->initiate();
    }
    void TearDown() override { console()->shutdown(); }
};

}  // namespace

TEST_F(ConsoleText, PrintStartsALineBeforeItsFirstCharacter)
{
    console()->print("hello\n", 32);
    EXPECT_EQ(console()->getCurrentLine(), 1);
    EXPECT_EQ(line(1), "hello");
    EXPECT_EQ(line(0), "");
    EXPECT_EQ(console()->getCursor(), 0);
    console()->printf("%d %s\n", 42, "more");
    EXPECT_EQ(line(2), "42 more");

    // A stored colour code leads the line; codes above 23 store nothing.
    console()->print("hi\n", 3);
    console()->print("ho\n", 24);
    EXPECT_EQ(line(3), std::string("\x03hi"));
    EXPECT_EQ(line(4), "ho");
}

TEST_F(ConsoleText, TheFirstWordDecidesEveryWrap)
{
    std::string text = "abcdefghij";
    for (int i = 0; i < 40; ++i)
        text += " x";
    console()->print(text.c_str(), 32);
    // cursor + 10 > 53 from column 44 on, whatever the word being written.
    EXPECT_EQ(line(1), text.substr(0, 44));
    EXPECT_EQ(line(2), text.substr(44, 44));
    EXPECT_EQ(line(3), text.substr(88));

    // A first word of the full width never triggers the rule: only the width wraps.
    console()->clear();
    const std::string wide(Console::WIDTH + 5, 'w');
    console()->print(wide.c_str(), 32);
    EXPECT_EQ(line(2), std::string(Console::WIDTH, 'w'));
    EXPECT_EQ(line(3), "wwwww");
}

TEST_F(ConsoleText, CarriageReturnWritesOverTheLineAndTheRingReusesSlots)
{
    console()->print("abcdef\rxy\n", 32);
    EXPECT_EQ(console()->getCurrentLine(), 1);
    EXPECT_EQ(line(1), "xy");
    for (int i = 2; i <= 300; ++i)
        console()->printf("line %d\n", i);
    EXPECT_EQ(line(299), "line 299");
    EXPECT_EQ(line(300 - Console::LINE_COUNT), "line 300");
}

TEST_F(ConsoleText, PutSwapsTheRolesOfNewlineAndReturn)
{
    console()->put('a');
    console()->put('\n');
    console()->put('b');
    EXPECT_EQ(console()->getCurrentLine(), 0);
    EXPECT_EQ(line(0), "b");
    console()->put('\r');
    EXPECT_EQ(console()->getCurrentLine(), 1);
    console()->put('\t');
    EXPECT_EQ(console()->getCursor(), 4);
    for (int i = 4; i < 50; ++i)
        console()->put('z');
    console()->put('\t');
    EXPECT_EQ(console()->getCursor(), 0);
    EXPECT_EQ(console()->getCurrentLine(), 1);

    // A full line of typing starts the next one.
    for (int i = 0; i < Console::WIDTH; ++i)
        console()->put('q');
    EXPECT_EQ(console()->getCurrentLine(), 2);
}

TEST_F(ConsoleText, ScrollbackIsLimitedByTheLinesWritten)
{
    console()->setScrollback(5);
    EXPECT_EQ(console()->getScroll(), 0);
    for (int i = 0; i < 10; ++i)
        console()->print("x\n", 32);
    console()->setVisibleLines(3);
    console()->setScrollback(5);
    EXPECT_EQ(console()->getScroll(), 5);
    console()->setScrollback(50);
    EXPECT_EQ(console()->getScroll(), 10);
    // While everything written fits in the view there is nothing to scroll back to.
    console()->setVisibleLines(20);
    console()->setScrollback(5);
    EXPECT_EQ(console()->getScroll(), 0);
}

TEST_F(ConsoleText, ShutdownForgetsTheMaterialsItMadeWithoutDeletingThem)
{
    Material* font = console()->getFontMaterial();
    Material* background = console()->getBackgroundMaterial();
    ASSERT_TRUE(font && background);
    ASSERT_EQ(MaterialMgr::getHandle()->find("ConsoleFontMaterial"), nullptr);
    console()->shutdown();
    EXPECT_EQ(console()->getFontMaterial(), nullptr);
    EXPECT_EQ(console()->getBackgroundMaterial(), nullptr);
    // Whole still: nothing holds them any more, so the test lets them go.
    EXPECT_STREQ(font->getName(), "ConsoleFontMaterial");
    EXPECT_STREQ(background->getName(), "ConsoleBackgroundMaterial");
    delete font;
    delete background;
}

TEST(ConsoleColour, CodesPickChannelsAndIntensity)
{
    EXPECT_EQ(Console::colorOf(3), Color(0.8f, 0.8f, 0.0f, 1.0f));
    EXPECT_EQ(Console::colorOf(3 + 8), Color(1.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(Console::colorOf(3 + 16), Color(0.6f, 0.6f, 0.0f, 1.0f));
    EXPECT_EQ(Console::colorOf(3 + 8 + 16), Color(1.0f, 1.0f, 0.0f, 1.0f));
}

namespace {

// Glyphs drawn solid: a plain registered font material, and one view unit per pixel.
class ConsoleDrawing : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        MaterialMgr::getHandle()->add(new Material("ConsoleFontMaterial"));
        console()->shutdown();
        console()->initiate();
        glViewport(0, 0, Console::VIEW_WIDTH, Console::VIEW_HEIGHT);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_LIGHTING);
    }
    void TearDown() override
    {
        console()->shutdown();
        MaterialMgr::getHandle()->shutdown();
    }

    static int channel(int x, int y, int c)
    {
        unsigned char rgba[4];
        GLContext::readPixel(x, y, rgba);
        return rgba[c];
    }
    static int red(int x, int y) { return channel(x, y, 0); }
    static int green(int x, int y) { return channel(x, y, 1); }
};

}  // namespace

TEST_F(ConsoleDrawing, ImmediateTextSkipsBlanksButKeepsTheirColumns)
{
    console()->printf(0, 1, 3, "%c %c", '#', '#');
    // Column c spans x 11.52 (c + 1) to 11.52 (c + 2); row 1 spans y 12.8 to 24.8.
    EXPECT_EQ(red(17, 18), 204);
    EXPECT_EQ(green(17, 18), 204);
    EXPECT_EQ(red(29, 18), 0);
    EXPECT_EQ(red(40, 18), 204);
    EXPECT_EQ(red(17, 10), 0);
    EXPECT_EQ(red(5, 18), 0);
}

TEST_F(ConsoleDrawing, NewestLineIsLowestAndScrollbackShowsOlderOnes)
{
    console()->setVisibleLines(39);
    for (int i = 1; i < 39; ++i)
        console()->print("\n", 32);
    console()->print("#\n", 2 + 8);
    console()->print(" #", 1 + 8);
    ASSERT_EQ(console()->getCurrentLine(), 40);
    console()->draw();
    // The newest line on row 1 (red, column 1), the one before on row 2 (green, column 0).
    EXPECT_EQ(red(29, 18), 255);
    EXPECT_EQ(green(17, 30), 255);
    glClear(GL_COLOR_BUFFER_BIT);
    console()->setScrollback(1);
    console()->draw();
    EXPECT_EQ(green(17, 18), 255);
    // Only the dim background remains where the newest line was.
    EXPECT_LT(red(29, 18), 160);
}

TEST_F(ConsoleDrawing, OpeningFlashesWhiteAndAClosedConsoleDrawsNothing)
{
    console()->display();
    EXPECT_EQ(red(64, 100), 0);
    console()->activate();
    console()->display();
    EXPECT_EQ(red(64, 100), 255);
    // The flash fades over one second of updates, then only the translucent background is left.
    console()->update(0.5f);
    EXPECT_EQ(console()->getFlash(), 0.5f);
    console()->update(0.75f);
    EXPECT_EQ(console()->getFlash(), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    console()->display();
    EXPECT_LT(red(64, 100), 160);
    // Reopening restarts it; closing ends it at once.
    console()->deactivate();
    console()->activate();
    console()->update(0.25f);
    console()->deactivate();
    EXPECT_EQ(console()->getFlash(), 1.0f);
}
