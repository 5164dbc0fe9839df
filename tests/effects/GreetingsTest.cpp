// The closing roll: its text, the start of the roll, line entry and exit at their limits, the spacing, and its font.
#include "effects/Greetings.h"

#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "support/GLContext.h"
#include "text/Fonter.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <cstring>
#include <string>
#include <vector>

namespace {

const EffectTimer SPAN(259.5f, 289.5f);

// One roll shared by the cases: each construction loads a font that is never released.
Greetings& roll()
{
    static Greetings* greetings = new Greetings(1, SPAN);
    return *greetings;
}

}

TEST(GreetingsText, HeadingEmptyLinesAndClosingMessage)
{
    EXPECT_STREQ(Greetings::getLine(0), "[The Without Whoom Department]");
    for (int empty : {1, 5, 7, 10, 12, 16, 21, 26, 29})
        EXPECT_STREQ(Greetings::getLine(empty), "") << empty;
    EXPECT_STREQ(Greetings::getLine(17), "Ops....");
    EXPECT_STREQ(Greetings::getLine(22), "No M$Windows licences were harmed,");
    EXPECT_STREQ(Greetings::getLine(28), "see you next easter (hopefully)");
}

TEST(GreetingsText, TheThanksFillTheirLinesAndEveryLineFitsItsSlot)
{
    for (int i : {2, 3, 4, 6, 8, 9, 11, 13, 14, 15})
        EXPECT_GT(std::strlen(Greetings::getLine(i)), 0u) << i;
    for (int i = 0; i < Greetings::LINE_COUNT; ++i)
        EXPECT_LT(std::strlen(Greetings::getLine(i)), static_cast<size_t>(Greetings::LINE_SIZE)) << i;
    EXPECT_STREQ(Greetings::getLine(-1), "");
    EXPECT_STREQ(Greetings::getLine(30), "");
}

TEST(GreetingsFont, TheMissingFontIsReportedByTheOtherNameAndTheFallbackLoads)
{
    testing::internal::CaptureStdout();
    // Its font is never released, like every roll's.
    Greetings greetings(1, SPAN);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "Couldn't load arial.ttf\n");
    ASSERT_NE(greetings.getFont(), nullptr);
    EXPECT_TRUE(greetings.getFont()->isLoaded());
    EXPECT_EQ(greetings.getFont()->getType(), Fonter::TEXTURE);
    EXPECT_EQ(greetings.getFont()->getFaceSize(), 24u);
}

TEST(GreetingsRoll, StartsWithTheHeadingOneLineBelowTheScroll)
{
    Greetings& greetings = roll();
    greetings.resetRoll();
    EXPECT_EQ(greetings.getFirst(), 0);
    EXPECT_EQ(greetings.getLast(), 1);
    EXPECT_EQ(greetings.getScroll(), 0.0f);
    EXPECT_EQ(greetings.getLead(), -24.0f);
    EXPECT_NEAR(greetings.getSpeed(), 46.4f, 1e-4f);
    EXPECT_EQ(greetings.getSpacing(), 24.0f);
}

TEST(GreetingsRoll, ALongFrameLetsInOneLineOnly)
{
    Greetings& greetings = roll();
    greetings.resetRoll();
    greetings.update(10.0f);
    EXPECT_EQ(greetings.getLast(), 2);
    EXPECT_EQ(greetings.getFirst(), 0);
    EXPECT_NEAR(greetings.getLead(), 464.0f - 24.0f - 24.0f, 1e-3f);
}

TEST(GreetingsRoll, SpacingStaysTwentyFourWhileLinesEnterAndLeave)
{
    Greetings& greetings = roll();
    greetings.resetRoll();
    int entered = 0;
    int dropped = 0;
    int last = greetings.getLast();
    int first = greetings.getFirst();
    for (int frame = 0; frame < 30 * 60; ++frame) {
        greetings.update(1.0f / 60.0f);
        entered += greetings.getLast() - last;
        dropped += greetings.getFirst() - first;
        last = greetings.getLast();
        first = greetings.getFirst();
        // Once the roll has emptied, the range steps back without a line coming in.
        if (greetings.getFirst() == greetings.getLast())
            break;
        ASSERT_NEAR(greetings.getSpacing(), 24.0f, 0.05f) << "frame " << frame;
    }
    EXPECT_EQ(entered, 28);
    EXPECT_GT(dropped, 20);
}

TEST(GreetingsRoll, StopsAtLineTwentyNineSoTheLastSlotIsNeverShown)
{
    Greetings& greetings = roll();
    greetings.resetRoll();
    for (int frame = 0; frame < 30 * 60; ++frame)
        greetings.update(1.0f / 60.0f);
    EXPECT_EQ(greetings.getLast(), 29);
    const float lead = greetings.getLead();
    greetings.update(1.0f);
    EXPECT_EQ(greetings.getLast(), 29);
    EXPECT_NEAR(greetings.getLead(), lead + greetings.getSpeed(), 1e-3f);
}

TEST(GreetingsRoll, TheTopLineNeverPassesTheLast)
{
    Greetings& greetings = roll();
    greetings.resetRoll();
    bool emptied = false;
    for (int frame = 0; frame < 120 * 30; ++frame) {
        greetings.update(1.0f / 30.0f);
        ASSERT_LE(greetings.getFirst(), greetings.getLast());
        // Once empty, the range steps back to one line and empties again.
        if (greetings.getFirst() == greetings.getLast())
            emptied = true;
        if (emptied) {
            ASSERT_GE(greetings.getFirst(), greetings.getLast() - 1);
        }
    }
    EXPECT_TRUE(emptied);
}

namespace {

class GreetingsGLTest : public GLTest {
protected:
    void TearDown() override
    {
        CameraMgr::getHandle()->remove("GreetingsCamera");
        GLTest::TearDown();
    }

    // Whether any pixel in the rows of the 640 x 480 roll between y0 and y1 is lit.
    static bool rowsLit(float y0, float y1)
    {
        const int w = GLContext::width();
        const int h = GLContext::height();
        std::vector<unsigned char> pixels(w * h * 4);
        glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        const int from = static_cast<int>(y0 / 480.0f * h);
        const int to = static_cast<int>(y1 / 480.0f * h);
        for (int y = from < 0 ? 0 : from; y < to && y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                if (pixels[(y * w + x) * 4] > 64)
                    return true;
            }
        }
        return false;
    }
};

}

TEST_F(GreetingsGLTest, StartMakesItsCameraActiveAndShutdownRemovesItButKeepsTheFont)
{
    Greetings& greetings = roll();
    greetings.initiate();
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    ASSERT_NE(camera, nullptr);
    EXPECT_STREQ(camera->getName(), "GreetingsCamera");
    EXPECT_FLOAT_EQ(camera->getFOV(), 45.0f);
    EXPECT_FLOAT_EQ(camera->getNear(), 0.01f);
    EXPECT_FLOAT_EQ(camera->getFar(), 1000.0f);
    greetings.shutdown();
    EXPECT_EQ(CameraMgr::getHandle()->find("GreetingsCamera"), nullptr);
    ASSERT_NE(greetings.getFont(), nullptr);
    EXPECT_TRUE(greetings.getFont()->isLoaded());
}

TEST_F(GreetingsGLTest, TheHeadingRisesIntoViewFromBelowTheBottomEdge)
{
    Greetings& greetings = roll();
    greetings.initiate();
    greetings.display();
    EXPECT_FALSE(rowsLit(0.0f, 480.0f));
    greetings.update(5.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    greetings.display();
    // The heading's baseline is 24 under the scroll of 232.
    EXPECT_TRUE(rowsLit(200.0f, 235.0f));
    EXPECT_FALSE(rowsLit(250.0f, 480.0f));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    greetings.shutdown();
}

TEST_F(GreetingsGLTest, AnEmptyRangeDrawsNothing)
{
    Greetings& greetings = roll();
    greetings.initiate();
    for (int frame = 0; frame < 120 * 30; ++frame) {
        greetings.update(1.0f / 30.0f);
        if (greetings.getFirst() == greetings.getLast())
            break;
    }
    ASSERT_EQ(greetings.getFirst(), greetings.getLast());
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    greetings.display();
    EXPECT_FALSE(rowsLit(0.0f, 480.0f));
    greetings.shutdown();
}
