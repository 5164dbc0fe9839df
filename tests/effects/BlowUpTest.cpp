// The blow-up's timing without GL: everything keyed to the song's crash four seconds in, and the camera's shake when
// the shock reaches it. (Its starts with and without data are with the city street's.)
#include "effects/BlowUp.h"
#include "effects/BlowUpLayout.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

const float CRASH = static_cast<float>(BlowUpLayout::CRASH);

bool white(const Color& c)
{
    return c.r == 1.0f && c.g == 1.0f && c.b == 1.0f;
}

}  // namespace

TEST(BlowUpTiming, TheFlashTheFireTheDarkAndTheShakeComeOnTheCrashAndTheShockAgain)
{
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
