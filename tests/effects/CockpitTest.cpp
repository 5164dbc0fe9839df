// The cockpit: the planet's approach and the pilot's float, the read-out's text, displays that follow the song
// (different levels, different bars; the same moment, the same frame), idle displays with no song, and a start
// with and without its data.
#include "effects/Cockpit.h"

#include "SceneTest.h"
#include "effects/Harmonix.h"
#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "sound/SongMeter.h"
#include "support/OffscreenFrame.h"

#include <gtest/gtest.h>
#include <cmath>
#include <string>
#include <vector>

namespace {

using namespace CockpitLayout;

const EffectTimer SPAN(201.5f, 214.5f);
const char* const SONG = "data/music/velmora.xm";

std::string cell(unsigned char note, unsigned char instrument)
{
    char text[Harmonix::CELL_CHARS];
    Harmonix::formatCell(note, instrument, text);
    return std::string(text, Harmonix::CELL_CHARS);
}

}  // namespace

TEST(CockpitMotion, ThePlanetComesFromAfarToFillTheWindowWithoutTurningBack)
{
    EXPECT_FLOAT_EQ(Cockpit::planetDistance(0.0f), PLANET_START_DISTANCE);
    EXPECT_NEAR(Cockpit::planetDistance(static_cast<float>(SECONDS)), PLANET_END_DISTANCE, 0.01f);
    float last = Cockpit::planetDistance(0.0f);
    for (float t = 0.1f; t <= SECONDS; t += 0.1f) {
        const float d = Cockpit::planetDistance(t);
        ASSERT_LT(d, last) << t;
        last = d;
    }
    // By the cut the planet's disc is wider than the view is high.
    const float halfView = 31.0f * MathConstants::DEGREES_TO_RADIANS;
    EXPECT_GT(std::asin(PLANET_RADIUS / Cockpit::planetDistance(static_cast<float>(SECONDS))), halfView);
    // The pilot floats a few millimetres at most: no shake.
    for (float t = 0.0f; t <= SECONDS; t += 0.25f)
        EXPECT_LT(Cockpit::eyeAt(t).length(), 0.02f);
}

TEST(HarmonixText, CellsReadAsATrackerWritesThem)
{
    EXPECT_EQ(cell(61, 1), "C-5 01");
    EXPECT_EQ(cell(62, 0x1f), "C#5 1F");
    EXPECT_EQ(cell(1, 0), "C-0 ..");
    EXPECT_EQ(cell(120, 16), "B-9 10");
    EXPECT_EQ(cell(0, 0), "... ..");
    // Releases of every kind look alike; codes between the notes and the releases show nothing.
    EXPECT_EQ(cell(255, 0), "=== ..");
    EXPECT_EQ(cell(253, 0), "=== ..");
    EXPECT_EQ(cell(121, 3), "... 03");
}

namespace {

class CockpitTest : public SceneTest {
protected:
    void TearDown() override
    {
        SongMeter::getHandle()->shutdown();
        SceneTest::TearDown();
    }
    // The cockpit stepped from its start to `seconds` past it, at thirty frames a second.
    static std::vector<unsigned char> at(float seconds, SongReading* reading = nullptr)
    {
        Cockpit cockpit(0, SPAN);
        cockpit.initiate();
        const float step = 1.0f / 30.0f;
        for (float t = 0.0f; t + step * 0.5f < seconds; t += step)
            cockpit.update(std::min(step, seconds - t));
        std::vector<unsigned char> pixels = SceneHarness::drawFrame(cockpit);
        if (reading)
            *reading = cockpit.getHarmonix().getReading();
        cockpit.shutdown();
        return pixels;
    }
};

}  // namespace

TEST_F(CockpitTest, TheBarsFollowTheSongsLevelsAndTheSameMomentDrawsTheSameFrame)
{
    SKIP_WITHOUT_DATA(FRAME);
    SKIP_WITHOUT_DATA(SONG);
    ASSERT_TRUE(SongMeter::getHandle()->initiate(SONG));
    SongReading first, second;
    // The kick drum strikes on the first row of the section; half a bar later only the pads ring.
    const std::vector<unsigned char> kick = at(2.0f, &first);
    const std::vector<unsigned char> pads = at(2.5f, &second);
    ASSERT_TRUE(first.valid);
    ASSERT_TRUE(second.valid);
    float change = 0.0f;
    for (int ch = 0; ch < first.channels; ++ch)
        change += std::fabs(first.levels[ch] - second.levels[ch]);
    ASSERT_GT(change, 0.2f) << "the song's levels differ between the two moments";
    // Only the displays and the planet's slow approach change in half a second; the bars' screen
    // is the middle of the dashboard's lower part.
    const int w = GLContext::width(), h = GLContext::height();
    size_t barsChanged = 0;
    for (int y = 0; y < h / 3; ++y)
        for (int x = w / 3; x < 2 * w / 3; ++x) {
            const size_t i = static_cast<size_t>((y * w + x) * 4);
            barsChanged += kick[i] != pads[i] || kick[i + 1] != pads[i + 1];
        }
    EXPECT_GT(barsChanged, 10u);
    EXPECT_EQ(OffscreenFrame::countDifferences(at(2.0f), kick, 0), 0u) << "two captures of one moment differ";
}

TEST_F(CockpitTest, WithNoSongTheDisplaysIdleQuietly)
{
    SKIP_WITHOUT_DATA(FRAME);
    SKIP_WITHOUT_DATA(SONG);
    SongMeter::getHandle()->shutdown();
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    Cockpit cockpit(0, SPAN);
    cockpit.initiate();
    for (int i = 0; i < 5; ++i) {
        cockpit.update(0.1f);
        SceneHarness::drawFrame(cockpit);
    }
    EXPECT_TRUE(cockpit.getHarmonix().isIdle());
    EXPECT_EQ(std::string(cockpit.getHarmonix().getLine(Harmonix::READOUT_ROWS / 2)),
              std::string(Harmonix::LINE_CHARS, ' '));
    cockpit.shutdown();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.find("OpenGL ERROR"), std::string::npos) << out;
}

TEST_F(CockpitTest, WithoutItsDataEachMissingPieceIsNamedOnceAndTheSceneStillRuns)
{
    SceneHarness::forgetPictures();
    MissingData nothing;
    runWithoutData<Cockpit>(nothing, SPAN, 3, 0.1f, [](Cockpit& cockpit) { EXPECT_EQ(cockpit.getFrame(), nullptr); });
    const char* const files[] = {FRAME,
                                 FONT.file,
                                 PLANET_SURFACE.file,
                                 PLANET_CLOUDS.file,
                                 PLANET_HALO.file,
                                 "data/img/nebula_up.png",
                                 "data/img/nebula_down.png"};
    // At the start, once each: nothing more while it runs.
    EXPECT_EQ(SceneHarness::saidOnlyOnceEach(nothing, "Cockpit", files, sizeof files / sizeof files[0]), "");
    EXPECT_EQ(nothing.getOutput().find("OpenGL ERROR"), std::string::npos) << nothing.getOutput();
}
