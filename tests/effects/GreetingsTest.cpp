// The closing roll: its text, the start of the roll, line entry and exit at their limits, the spacing, and its font.
#include "effects/Greetings.h"

#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "support/GLContext.h"
#include "support/OffscreenFrame.h"
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

}  // namespace

TEST(GreetingsRoll, TheFallbackFontLoadsAndLinesEnterTwentyFourApartAndTheTopNeverPassesTheLast)
{
    testing::internal::CaptureStdout();
    // Its font is never released, like every roll's.
    Greetings fallback(1, SPAN);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Couldn't load arial.ttf\n");
    ASSERT_NE(fallback.getFont(), nullptr);
    EXPECT_TRUE(fallback.getFont()->isLoaded());
    EXPECT_EQ(fallback.getFont()->getFaceSize(), 24u);
    Greetings& greetings = roll();
    greetings.resetRoll();
    EXPECT_EQ(greetings.getFirst() * 10 + greetings.getLast(), 1);
    EXPECT_EQ(greetings.getLead(), -24.0f);
    greetings.update(10.0f);
    EXPECT_EQ(greetings.getLast(), 2);
    EXPECT_EQ(greetings.getFirst(), 0);
    EXPECT_NEAR(greetings.getLead(), 464.0f - 24.0f - 24.0f, 1e-3f);
    greetings.resetRoll();
    int entered = 0;
    int last = greetings.getLast();
    bool emptied = false;
    for (int frame = 0; frame < 120 * 30; ++frame) {
        greetings.update(1.0f / 30.0f);
        ASSERT_LE(greetings.getFirst(), greetings.getLast());
        emptied = emptied || greetings.getFirst() == greetings.getLast();
        // Once empty, the range steps back to one line and empties again.
        if (emptied) {
            ASSERT_GE(greetings.getFirst(), greetings.getLast() - 1);
            continue;
        }
        entered += greetings.getLast() - last;
        last = greetings.getLast();
        ASSERT_NEAR(greetings.getSpacing(), 24.0f, 0.05f) << "frame " << frame;
    }
    EXPECT_TRUE(emptied);
    EXPECT_EQ(entered, 28);
    // Line 29 is the last to enter, so the last slot is never shown.
    const float lead = greetings.getLead();
    greetings.update(1.0f);
    EXPECT_EQ(greetings.getLast(), 29);
    EXPECT_NEAR(greetings.getLead(), lead + greetings.getSpeed(), 1e-3f);
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
            for (int x = 0; x < w; ++x)
                if (pixels[(y * w + x) * 4] > 64)
                    return true;
        }
        return false;
    }
};

}  // namespace

TEST_F(GreetingsGLTest, TheHeadingRisesIntoViewFromBelowTheBottomEdgeAndShutdownKeepsTheFont)
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
    // Once the roll has emptied, nothing is drawn.
    while (greetings.getFirst() != greetings.getLast())
        greetings.update(1.0f / 30.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    greetings.display();
    EXPECT_FALSE(rowsLit(0.0f, 480.0f));
    // The camera goes; the font is kept.
    greetings.shutdown();
    EXPECT_EQ(CameraMgr::getHandle()->find("GreetingsCamera"), nullptr);
    EXPECT_TRUE(greetings.getFont()->isLoaded());
}

namespace {

class GreetingsPicture : public GLTest {};

}  // namespace

// Glyphs made ahead in the roll's order: every frame of the roll is the one drawn with glyphs made as the lines
// first show, and the texture state of whatever drew before is left alone.
TEST_F(GreetingsPicture, GlyphsMadeAheadDrawTheSameRoll)
{
    OffscreenFrame frame(640, 480);
    ASSERT_TRUE(frame.isComplete());
    testing::internal::CaptureStdout();
    // Their fonts are never released, like every roll's.
    Greetings* ahead = new Greetings(1, SPAN);
    Greetings* asShown = new Greetings(1, SPAN);
    testing::internal::GetCapturedStdout();
    GLuint other = 0;
    glGenTextures(1, &other);
    glBindTexture(GL_TEXTURE_2D, other);
    EXPECT_FALSE(ahead->preload());
    EXPECT_EQ(ahead->getPreloadLead(), SPAN.start);
    GLint binding = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
    EXPECT_EQ(static_cast<GLuint>(binding), other);
    glDeleteTextures(1, &other);
    ahead->initiate();
    ahead->shutdown();
    asShown->initiate();
    asShown->shutdown();
    ahead->initiate();
    size_t compared = 0;
    for (int step = 0; step < 120; ++step) {
        ahead->update(0.25f);
        asShown->update(0.25f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        ahead->display();
        const std::vector<unsigned char> made = frame.read();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        asShown->display();
        const std::vector<unsigned char> shown = frame.read();
        compared += OffscreenFrame::countDifferences(made, std::vector<unsigned char>(made.size(), 0), 0) > 0;
        ASSERT_EQ(OffscreenFrame::countDifferences(made, shown, 0), 0u) << "step " << step;
    }
    ahead->shutdown();
    // Text was on screen for most of the roll.
    EXPECT_GT(compared, 100u);
    delete ahead;
    delete asShown;
}
