// The flipper land's game timing: flippers fire on the song's stabs and tom run, the kick clock, the paddles' swing.
#include "effects/FlipperPlay.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace FlipperLandLayout;

}  // namespace

TEST(FlipperPlayMusic, FlippersFireOnTheStabsAndAllAtOnceOnTheToms)
{
    for (int bar = 0; bar < 8; ++bar) {
        std::set<int> fired;
        for (int row = 0; row < BAR_ROWS; ++row) {
            const int station = FlipperPlay::stationForRow(bar * BAR_ROWS + row);
            const bool stab = row == 2 || row == 5 || row == 10 || row == 13;
            EXPECT_EQ(station != FlipperPlay::NO_STATION, stab) << bar << ' ' << row;
            if (stab)
                fired.insert(station);
        }
        // Every station once a bar.
        EXPECT_EQ(fired.size(), 4u) << bar;
    }
    EXPECT_EQ(FlipperPlay::stationForRow(8 * BAR_ROWS + 12), FlipperPlay::ALL_STATIONS);
    EXPECT_EQ(FlipperPlay::stationForRow(8 * BAR_ROWS + 14), FlipperPlay::ALL_STATIONS);
    EXPECT_EQ(FlipperPlay::stationForRow(8 * BAR_ROWS + 15), FlipperPlay::NO_STATION);
    EXPECT_EQ(FlipperPlay::stationForRow(9 * BAR_ROWS), FlipperPlay::NO_STATION);
    EXPECT_EQ(FlipperPlay::stationForRow(-1), FlipperPlay::NO_STATION);
}

TEST(FlipperPlayMusic, TheKickClockRestartsOnEveryKickAndPaddlesFallBackWithinHalfASecond)
{
    const float row = static_cast<float>(ROW);
    EXPECT_FLOAT_EQ(FlipperPlay::sinceKick(0.0f), 0.0f);
    EXPECT_NEAR(FlipperPlay::sinceKick(5.0f * row), 5.0f * row, 1e-5f);
    EXPECT_NEAR(FlipperPlay::sinceKick(6.0f * row + 0.01f), 0.01f, 1e-5f);
    EXPECT_NEAR(FlipperPlay::sinceKick(15.5f * row), 2.5f * row, 1e-5f);
    // The last bar: kicks on its first and fifth rows, the toms on its thirteenth and fifteenth.
    EXPECT_NEAR(FlipperPlay::sinceKick((128.0f + 3.0f) * row), 3.0f * row, 1e-4f);
    EXPECT_NEAR(FlipperPlay::sinceKick((128.0f + 14.5f) * row), 0.5f * row, 1e-4f);
    EXPECT_GT(FlipperPlay::sinceKick(-1.0f), 1000.0f);
    EXPECT_EQ(FlipperPlay::paddleLift(-0.1f), 0.0f);
    EXPECT_EQ(FlipperPlay::paddleLift(0.0f), 0.0f);
    EXPECT_EQ(FlipperPlay::paddleLift(0.1f), FlipperPlay::PADDLE_LIFT);
    EXPECT_GT(FlipperPlay::paddleLift(0.3f), 0.0f);
    EXPECT_LT(FlipperPlay::paddleLift(0.3f), FlipperPlay::PADDLE_LIFT);
    EXPECT_EQ(FlipperPlay::paddleLift(0.5f), 0.0f);
}
