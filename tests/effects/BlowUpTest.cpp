// The blow-up: everything keyed to the song's crash four seconds in, the camera's shake when the shock reaches it,
// and a start without its data that says once what is missing and still runs.
#include "effects/BlowUp.h"
#include "effects/BlowUpLayout.h"
#include "effects/CityLayout.h"

#include "gl/GLEXT.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "support/GLContext.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace {

const float CRASH = static_cast<float>(BlowUpLayout::CRASH);

bool white(const Color& c)
{
    return c.r == 1.0f && c.g == 1.0f && c.b == 1.0f;
}

}  // namespace

TEST(BlowUpTiming, TheFlashTheFireAndTheDarkComeOnTheCrash)
{
    // Row 2012 of the song, 32 rows after the scene's first (row 1980 at 247.5 s).
    EXPECT_EQ(247.5 + BlowUpLayout::CRASH, 2012 / 8.0);
    EXPECT_EQ(BlowUp::flash(CRASH - 0.01f), 0.0f);
    EXPECT_EQ(BlowUp::flash(CRASH), 1.0f);
    EXPECT_LT(BlowUp::flash(CRASH + 1.0f), 0.1f);
    // The light gathers over the fill and is gone in the flash.
    EXPECT_EQ(BlowUp::charge(1.0f), 0.0f);
    EXPECT_GT(BlowUp::charge(CRASH - 0.05f), 0.9f);
    EXPECT_LT(BlowUp::charge(2.5f), BlowUp::charge(3.5f));
    EXPECT_EQ(BlowUp::charge(CRASH), 0.0f);
    // The city is itself until the fill, flickers through it, then burns and goes dark.
    EXPECT_TRUE(white(BlowUp::cityTint(0.0f)));
    EXPECT_TRUE(white(BlowUp::cityTint(1.4f)));
    int flickers = 0;
    for (float t = 1.5f; t < CRASH; t += 0.125f)
        flickers += white(BlowUp::cityTint(t)) ? 0 : 1;
    EXPECT_GT(flickers, 2);
    EXPECT_GT(BlowUp::cityTint(CRASH + 0.1f).r, BlowUp::cityTint(CRASH + 0.1f).b);
    EXPECT_LT(BlowUp::cityTint(11.9f).r, 0.1f);
    EXPECT_LT(BlowUp::nightLight(11.9f), 0.2f);
    EXPECT_EQ(BlowUp::nightLight(CRASH), 1.0f);
}

TEST(BlowUpTiming, TheCameraShakesOnTheCrashAndAgainWhenTheShockReachesIt)
{
    const float distance = 300.0f;
    EXPECT_EQ(BlowUp::shake(CRASH - 0.1f, distance).length(), 0.0f);
    float before = 0.0f;
    float after = 0.0f;
    const float arrives = -Kaboom::SHOCK_SLOWING * std::log(1.0f - distance / Kaboom::SHOCK_REACH);
    for (float t = CRASH + arrives - 0.3f; t < CRASH + arrives; t += 0.01f)
        before = std::max(before, BlowUp::shake(t, distance).length());
    for (float t = CRASH + arrives; t < CRASH + arrives + 0.3f; t += 0.01f)
        after = std::max(after, BlowUp::shake(t, distance).length());
    EXPECT_GT(after, 4.0f * before);
    // Beyond the shock's reach only the crash's jolt is felt, and it dies away.
    EXPECT_LT(BlowUp::shake(CRASH + 3.0f, Kaboom::SHOCK_REACH + 10.0f).length(), 1e-3f);
}

namespace {

class BlowUpTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        GLEXT::bindAll();
        if (TextureMgr::getHandle()->getLoaderCount() == 0)
            TextureMgr::getHandle()->registerStandardLoaders();
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->remove(BlowUpLayout::CAMERA_NAME);
        GLTest::TearDown();
    }
};

}  // namespace

TEST_F(BlowUpTest, WithoutItsDataTheBlastSaysOnceWhatIsMissingAndStillRuns)
{
    char dir[] = "/tmp/blowup-empty-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    char* previous = getcwd(nullptr, 0);
    ASSERT_EQ(chdir(dir), 0);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    {
        BlowUp blast(0, EffectTimer(247.5f, 259.5f));
        blast.initiate();
        EXPECT_EQ(blast.getCameraAnimation(), nullptr);
        // Through the crash, so the fire, shock and smoke are drawn too.
        for (int i = 0; i < 12; ++i) {
            blast.update(0.5f);
            blast.display();
        }
        blast.shutdown();
        EXPECT_FALSE(glIsEnabled(GL_FOG));
        EXPECT_EQ(LightMgr::getHandle()->find("BlowUpFire"), nullptr);
    }
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(chdir(previous), 0);
    std::free(previous);
    rmdir(dir);
    EXPECT_EQ(out.find("OpenGL ERROR"), std::string::npos) << out;
    for (const char* file : {BlowUpLayout::CAMERA_PATH, BlowUpLayout::DEBRIS_MESHES[0], BlowUpLayout::DEBRIS_MESHES[1],
                             BlowUpLayout::FIRE.file, BlowUpLayout::SMOKE.file, BlowUpLayout::SHOCK.file,
                             CityLayout::OCTREE, CityLayout::CAR_MESH})
        EXPECT_NE(errors.find(std::string("BlowUp: couldn't load '") + file + "'\n"), std::string::npos)
            << file << errors;
    // One line each: the block's, the street's and the blast's own pieces, nothing per frame.
    const size_t lines = static_cast<size_t>(std::count(errors.begin(), errors.end(), '\n'));
    EXPECT_EQ(lines, 6u + 2u + CityLayout::SURFACE_COUNT + 5u) << errors;
}
