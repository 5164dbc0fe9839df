// The blast without GL: debris flies and falls under gravity and lands, spinning no faster than its limit; the shock
// ring only ever grows; fire and smoke live inside the scene and in their colours; the plan is the same every time.
#include "effects/BlowUpLayout.h"
#include "effects/Kaboom.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

const Vector3 CENTRE(static_cast<float>(BlowUpLayout::ZERO_X), 0.0f, static_cast<float>(BlowUpLayout::ZERO_Z));
const float AFTER = static_cast<float>(BlowUpLayout::SECONDS - BlowUpLayout::CRASH);

}  // namespace

TEST(Kaboom, DebrisRisesSlowsFallsUnderGravityAndComesToRestOnTheGroundSpinningWithinItsLimit)
{
    const Kaboom blast(CENTRE);
    ASSERT_FALSE(blast.getPieces().empty());
    const float dt = 0.01f;
    for (size_t i = 0; i < blast.getPieces().size(); ++i) {
        const Kaboom::Piece& piece = blast.getPieces()[i];
        const float landing = blast.landing(i);
        // Every piece is down before the scene ends.
        ASSERT_GT(landing, 0.0f);
        ASSERT_LT(landing, AFTER) << i;
        const Vector3 before = blast.piecePosition(i, -1.0f);
        EXPECT_EQ(before.y, piece.origin.y);
        float lastVy = piece.velocity.y + 1.0f;
        for (float t = 0.0f; t + dt < landing; t += dt) {
            const Vector3 a = blast.piecePosition(i, t);
            const Vector3 b = blast.piecePosition(i, t + dt);
            const float vy = (b.y - a.y) / dt;
            // Gravity takes g off the climb every second; sideways it keeps its speed.
            ASSERT_LT(vy, lastVy) << i << " at " << t;
            lastVy = vy;
            ASSERT_NEAR((b.x - a.x) / dt, piece.velocity.x, 1e-2f);
            ASSERT_GE(a.y, 0.0f);
        }
        EXPECT_NEAR(lastVy, piece.velocity.y - Kaboom::GRAVITY * landing, 0.3f) << i;
        const Vector3 rest = blast.piecePosition(i, landing + 0.5f);
        EXPECT_EQ(rest.y, 0.0f);
        const Vector3 later = blast.piecePosition(i, AFTER);
        EXPECT_EQ(later.x, rest.x);
        EXPECT_EQ(later.z, rest.z);
    }
    const float spinStep = 0.02f;
    for (size_t i = 0; i < blast.getPieces().size(); ++i) {
        EXPECT_LE(blast.getPieces()[i].spin, Kaboom::MAX_SPIN);
        EXPECT_NEAR(blast.getPieces()[i].axis.length(), 1.0f, 1e-4f);
        for (float t = 0.0f; t < AFTER; t += spinStep) {
            const float a = blast.pieceAngle(i, t);
            const float b = blast.pieceAngle(i, t + spinStep);
            ASSERT_GE(a, 0.0f);
            ASSERT_LT(a, 360.0f);
            // Turned by no more than the limit allows, allowing for the wrap at a full turn.
            const float turned = std::fmod(b - a + 360.0f, 360.0f);
            ASSERT_LE(turned, Kaboom::MAX_SPIN * spinStep + 1e-2f) << i << " at " << t;
            if (t > blast.landing(i)) {
                ASSERT_EQ(a, b) << i << " turning on the ground at " << t;
            }
        }
    }
}

TEST(Kaboom, TheShockGrowsAndFadesFireAndSmokeAreGoneBeforeTheQuietAndThePlanRepeats)
{
    EXPECT_EQ(Kaboom::shockRadius(-1.0f), 0.0f);
    EXPECT_EQ(Kaboom::shockRadius(0.0f), 0.0f);
    EXPECT_EQ(Kaboom::shockStrength(-0.5f), 0.0f);
    float last = 0.0f;
    for (float t = 0.005f; t < AFTER; t += 0.005f) {
        const float r = Kaboom::shockRadius(t);
        ASSERT_GT(r, last) << t;
        ASSERT_LT(r, Kaboom::SHOCK_REACH);
        last = r;
    }
    // Racing at first, far out over the city within two seconds, nearly still by the end.
    EXPECT_GT(Kaboom::shockRadius(0.1f) / 0.1f, 200.0f);
    EXPECT_GT(Kaboom::shockRadius(2.0f), 250.0f);
    for (float t = 0.1f; t < AFTER; t += 0.1f)
        ASSERT_LT(Kaboom::shockStrength(t + 0.1f), Kaboom::shockStrength(t));
    const Kaboom blast(CENTRE);
    Kaboom::Sprite s;
    for (size_t i = 0; i < blast.getFire().size(); ++i) {
        EXPECT_FALSE(blast.firePuff(i, -0.01f, s));
        const Kaboom::Puff& p = blast.getFire()[i];
        EXPECT_LT(p.start + p.life, AFTER);
        for (float t = p.start; t <= p.start + p.life; t += 0.1f) {
            ASSERT_TRUE(blast.firePuff(i, t, s));
            ASSERT_GT(s.size, 0.0f);
            ASSERT_LE(std::max(s.colour.r, std::max(s.colour.g, s.colour.b)), 1.0f);
            ASSERT_GE(std::min(s.colour.r, std::min(s.colour.g, s.colour.b)), 0.0f);
        }
    }
    // The street clusters burst later the further out they are, the centre first.
    EXPECT_EQ(blast.getCluster(0), 0);
    for (size_t i = 0; i < blast.getSmoke().size(); ++i) {
        const Kaboom::Puff& p = blast.getSmoke()[i];
        EXPECT_LE(p.start + p.life, Kaboom::SMOKE_GONE + 1e-4f);
        EXPECT_FALSE(blast.smokePuff(i, Kaboom::SMOKE_GONE + 0.01f, s));
        float highest = -1.0f;
        for (float t = p.start; t <= p.start + p.life; t += 0.1f) {
            ASSERT_TRUE(blast.smokePuff(i, t, s));
            ASSERT_LE(s.colour.a, 0.6f);
            // Smoke rises.
            ASSERT_GT(s.position.y, highest);
            highest = s.position.y;
        }
    }
    const Kaboom a(CENTRE);
    const Kaboom b(CENTRE);
    ASSERT_EQ(a.getFire().size(), b.getFire().size());
    ASSERT_EQ(a.getPieces().size(), b.getPieces().size());
    Kaboom::Sprite sa, sb;
    for (size_t i = 0; i < a.getFire().size(); ++i) {
        ASSERT_EQ(a.firePuff(i, 1.0f, sa), b.firePuff(i, 1.0f, sb));
        ASSERT_EQ(sa.position.x, sb.position.x);
    }
    for (size_t i = 0; i < a.getPieces().size(); ++i)
        ASSERT_EQ(a.piecePosition(i, 2.0f).y, b.piecePosition(i, 2.0f).y);
}
