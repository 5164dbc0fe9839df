// The flipper land's game: flippers fire on the song's stabs and tom run, bumpers light when hit, balls keep to the land.
#include "effects/FlipperPlay.h"

#include <gtest/gtest.h>
#include <cmath>
#include <set>

namespace {

using namespace FlipperLandLayout;

// A bowl with a hollow at each station, like the forged land in little.
class Bowl : public GroundSurface {
public:
    bool groundAt(float x, float z, GroundPoint& out) const override
    {
        if (std::fabs(x) > HALF_SIZE || std::fabs(z) > HALF_SIZE)
            return false;
        float h = 0.012f * (x * x + z * z);
        float dx = 0.024f * x;
        float dz = 0.024f * z;
        for (const Vector3& s : STATIONS) {
            const float ex = x - s.x;
            const float ez = z - s.z;
            const float g = 3.0f * std::exp(-(ex * ex + ez * ez) / 25.0f);
            h -= g;
            dx += g * 2.0f * ex / 25.0f;
            dz += g * 2.0f * ez / 25.0f;
        }
        out.height = h;
        out.normal = Vector3(-dx, 1.0f, -dz);
        out.normal.normalize();
        out.rise = 0.0f;
        return true;
    }
};

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

TEST(FlipperPlayMusic, TheKickClockRestartsOnEveryKick)
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
}

TEST(FlipperPlayMusic, PaddlesSnapUpAndFallBackWithinHalfASecond)
{
    EXPECT_EQ(FlipperPlay::paddleLift(-0.1f), 0.0f);
    EXPECT_EQ(FlipperPlay::paddleLift(0.0f), 0.0f);
    EXPECT_EQ(FlipperPlay::paddleLift(0.1f), FlipperPlay::PADDLE_LIFT);
    EXPECT_GT(FlipperPlay::paddleLift(0.3f), 0.0f);
    EXPECT_LT(FlipperPlay::paddleLift(0.3f), FlipperPlay::PADDLE_LIFT);
    EXPECT_EQ(FlipperPlay::paddleLift(0.5f), 0.0f);
}

// The whole section at thirty frames a second: balls fall in, roll to the hollows, get thrown,
// hit bumpers; none ever sinks into the ground or leaves the land.
TEST(FlipperPlayGame, BallsAreThrownHitBumpersAndStayOnTheLand)
{
    const Bowl bowl;
    FlipperPlay play;
    float brightest = 0.0f;
    for (int frame = 0; frame < 18 * 30; ++frame) {
        play.update(1.0f / 30.0f, bowl);
        for (int i = 0; i < FlipperPlay::BALL_COUNT; ++i) {
            const FlipperBall& ball = play.getBall(i);
            float clearance = 0.0f;
            ASSERT_TRUE(ball.clearance(bowl, clearance)) << frame << ' ' << i;
            ASSERT_GE(clearance, -1e-3f) << frame << ' ' << i;
        }
        for (int b = 0; b < FlipperPlay::BUMPER_COUNT; ++b)
            brightest = std::fmax(brightest, play.getBumperGlow(b));
    }
    EXPECT_NEAR(play.getTime(), 18.0f, 1e-3f);
    EXPECT_GE(play.getLaunches(), 8);
    EXPECT_GE(play.getBumperHits(), 3);
    EXPECT_GT(brightest, 0.9f);
}
