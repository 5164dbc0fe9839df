// The flipper land's game: stepping the balls, the flippers' throws on the stabs, bumpers, balls knocking together.
#include "effects/FlipperPlay.h"

#include "effects/GroundSurface.h"
#include "math/MathConstants.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace FlipperLandLayout;

// Stations fire across the land in turn: one side, then the far side.
const int STATION_ORDER[STATION_COUNT] = {0, 2, 1, 3};
// The stabs of every groove bar, and the rows of its kick drum.
const int STAB_ROWS[4] = {2, 5, 10, 13};
const int KICK_ROWS[4] = {0, 6, 10, 13};
const int GROOVE_BARS = 8;
// The last bar: kicks and the tom run's snares fire the stations in turn, its two toms fire all.
const int LAST_BAR_ROWS[8] = {0, 4, 8, 9, 10, 11, 12, 14};
const int LAST_BAR_STATIONS[8] = {0, 2, 1, 3, 0, 2, FlipperPlay::ALL_STATIONS, FlipperPlay::ALL_STATIONS};
const int LAST_BAR_KICKS[4] = {0, 4, 12, 14};
// A bumper throws a ball back out this fast, and a little upwards.
const float BUMPER_KICK = 5.5f;
const float BUMPER_LIFT = 3.0f;
const float BUMPER_BOUNCE = 0.8f;
const float BALL_BOUNCE = 0.9f;
const float GLOW_FADE = 2.0f;
// Throws go a little to one side of the bumper, so the ball glances off towards another hollow.
const float AIM_ASIDE = 0.9f;
// A frame longer than this many steps is stepped with longer steps.
const int MOST_STEPS = 120;

bool contains(const int* rows, int count, int row)
{
    return std::find(rows, rows + count, row) != rows + count;
}

bool isKick(int row)
{
    if (row < 0)
        return false;
    const int bar = row / BAR_ROWS;
    const int inBar = row % BAR_ROWS;
    if (bar < GROOVE_BARS)
        return contains(KICK_ROWS, 4, inBar);
    return bar == GROOVE_BARS && contains(LAST_BAR_KICKS, 4, inBar);
}

int rowAt(float t)
{
    return static_cast<int>(std::floor(t / static_cast<float>(ROW)));
}

}  // namespace

FlipperPlay::FlipperPlay() : glow(), fired(), time(0.0f), bumperHits(0), launches(0)
{
    reset();
}

void FlipperPlay::reset()
{
    time = 0.0f;
    bumperHits = 0;
    launches = 0;
    for (float& g : glow)
        g = 0.0f;
    for (float& f : fired)
        f = -1.0f;
    // Dropped from the sky in a loose spiral, turning as they fall, the low ones landing first.
    for (int i = 0; i < BALL_COUNT; ++i) {
        const float angle = 0.3f + static_cast<float>(i) * MathConstants::TWO_PI / BALL_COUNT;
        const float out = 5.0f + 4.5f * static_cast<float>(i % 3);
        const Vector3 at(out * std::cos(angle), 8.0f + 1.1f * static_cast<float>(i), out * std::sin(angle));
        const Vector3 spin(-std::sin(angle) * 1.5f, 0.0f, std::cos(angle) * 1.5f);
        balls[i] = FlipperBall(BALL_RADIUS);
        balls[i].place(at, spin);
    }
}

float FlipperPlay::paddleLift(float age)
{
    if (age < 0.0f)
        return 0.0f;
    // Snapped up, held a moment, let down more slowly.
    const float up = 0.06f;
    const float hold = 0.16f;
    const float down = 0.5f;
    if (age < up)
        return PADDLE_LIFT * age / up;
    if (age < hold)
        return PADDLE_LIFT;
    if (age < down) {
        const float t = (age - hold) / (down - hold);
        return PADDLE_LIFT * (1.0f - t * t * (3.0f - 2.0f * t));
    }
    return 0.0f;
}

float FlipperPlay::getPaddleLift(int station) const
{
    return fired[station] < 0.0f ? 0.0f : paddleLift(time - fired[station]);
}

float FlipperPlay::sinceKick(float t)
{
    const int row = rowAt(t);
    for (int r = row; r >= 0 && r > row - BAR_ROWS; --r)
        if (isKick(r))
            return t - static_cast<float>(r) * static_cast<float>(ROW);
    return 1e6f;
}

int FlipperPlay::stationForRow(int row)
{
    if (row < 0)
        return NO_STATION;
    const int bar = row / BAR_ROWS;
    const int inBar = row % BAR_ROWS;
    if (bar < GROOVE_BARS) {
        const int* stab = std::find(STAB_ROWS, STAB_ROWS + 4, inBar);
        if (stab == STAB_ROWS + 4)
            return NO_STATION;
        return STATION_ORDER[(static_cast<int>(stab - STAB_ROWS) + bar) % STATION_COUNT];
    }
    if (bar > GROOVE_BARS)
        return NO_STATION;
    const int* at = std::find(LAST_BAR_ROWS, LAST_BAR_ROWS + 8, inBar);
    return at == LAST_BAR_ROWS + 8 ? NO_STATION : LAST_BAR_STATIONS[at - LAST_BAR_ROWS];
}

void FlipperPlay::update(float seconds, const GroundSurface& ground)
{
    if (!(seconds > 0.0f))
        return;
    const int steps = std::min(MOST_STEPS, std::max(1, static_cast<int>(std::ceil(seconds / STEP))));
    const float dt = seconds / static_cast<float>(steps);
    for (int i = 0; i < steps; ++i) {
        const int before = rowAt(time);
        time += dt;
        // Every row whose time was passed in this step, in order.
        for (int row = before + 1; row <= rowAt(time); ++row) {
            const int station = stationForRow(row);
            if (station == ALL_STATIONS) {
                for (int s = 0; s < STATION_COUNT; ++s)
                    fire(s, ground);
            } else if (station != NO_STATION) {
                fire(station, ground);
            }
        }
        step(dt, ground);
    }
}

void FlipperPlay::step(float dt, const GroundSurface& ground)
{
    for (FlipperBall& ball : balls)
        ball.step(ground, dt);
    hitBalls();
    hitBumpers(ground);
    keepOnLand();
    // Knocks from the others may have pushed a ball into the ground.
    for (FlipperBall& ball : balls)
        ball.meetGround(ground);
    for (float& g : glow)
        g = std::max(0.0f, g - GLOW_FADE * dt);
}

void FlipperPlay::fire(int station, const GroundSurface& ground)
{
    fired[station] = time;
    const Vector3& at = STATIONS[station];
    for (FlipperBall& ball : balls) {
        const Vector3& p = ball.getPosition();
        const float dx = p.x - at.x;
        const float dz = p.z - at.z;
        float gap = 0.0f;
        if (dx * dx + dz * dz > CATCH_RADIUS * CATCH_RADIUS || !ball.clearance(ground, gap) || gap > CATCH_HEIGHT)
            continue;
        // Each throw aims at the next bumper, glancing off to one side or the other.
        const Vector3& bumper = BUMPERS[(station + launches) % BUMPER_COUNT];
        GroundPoint base;
        const float height = ground.groundAt(bumper.x, bumper.z, base) ? base.height : 0.0f;
        Vector3 across(-(bumper.z - p.z), 0.0f, bumper.x - p.x);
        across.normalize();
        const float side = launches % 2 == 0 ? AIM_ASIDE : -AIM_ASIDE;
        throwBall(ball, Vector3(bumper.x, height + 1.0f, bumper.z) + across * side);
        ++launches;
    }
}

void FlipperPlay::throwBall(FlipperBall& ball, const Vector3& target)
{
    const Vector3& p = ball.getPosition();
    const float g = FlipperBall::GRAVITY;
    const Vector3 velocity((target.x - p.x) / FLIGHT, (target.y - p.y + 0.5f * g * FLIGHT * FLIGHT) / FLIGHT,
                           (target.z - p.z) / FLIGHT);
    ball.place(p, velocity);
}

void FlipperPlay::hitBumpers(const GroundSurface& ground)
{
    for (int i = 0; i < BUMPER_COUNT; ++i) {
        const Vector3& at = BUMPERS[i];
        GroundPoint base;
        if (!ground.groundAt(at.x, at.z, base))
            continue;
        for (FlipperBall& ball : balls) {
            const Vector3& p = ball.getPosition();
            const float r = ball.getRadius();
            if (p.y + r < base.height || p.y - r > base.height + BUMPER_HEIGHT)
                continue;
            Vector3 out(p.x - at.x, 0.0f, p.z - at.z);
            const float distance = out.length();
            if (distance >= BUMPER_RADIUS + r)
                continue;
            out = distance > 0.0f ? out / distance : Vector3(1.0f, 0.0f, 0.0f);
            ball.moveBy(out * (BUMPER_RADIUS + r - distance));
            const float into = ball.getVelocity().dot(out);
            if (into < 0.0f)
                ball.push(out * (-into * (1.0f + BUMPER_BOUNCE)));
            ball.push(out * BUMPER_KICK + Vector3(0.0f, BUMPER_LIFT, 0.0f));
            glow[i] = 1.0f;
            ++bumperHits;
        }
    }
}

void FlipperPlay::hitBalls()
{
    for (int i = 0; i < BALL_COUNT; ++i) {
        for (int j = i + 1; j < BALL_COUNT; ++j) {
            Vector3 apart = balls[j].getPosition() - balls[i].getPosition();
            const float reach = balls[i].getRadius() + balls[j].getRadius();
            const float distance = apart.length();
            if (distance >= reach)
                continue;
            apart = distance > 0.0f ? apart / distance : Vector3(0.0f, 1.0f, 0.0f);
            const Vector3 half = apart * (0.5f * (reach - distance));
            balls[i].moveBy(-half);
            balls[j].moveBy(half);
            const float closing = (balls[j].getVelocity() - balls[i].getVelocity()).dot(apart);
            if (closing >= 0.0f)
                continue;
            const Vector3 impulse = apart * (-0.5f * (1.0f + BALL_BOUNCE) * closing);
            balls[i].push(-impulse);
            balls[j].push(impulse);
        }
    }
}

void FlipperPlay::keepOnLand()
{
    for (FlipperBall& ball : balls) {
        const float r = ball.getRadius();
        const float edge = HALF_SIZE - r;
        const Vector3& p = ball.getPosition();
        const Vector3& v = ball.getVelocity();
        // An invisible rail round the rim: the ball comes back, slower.
        if (p.x > edge || p.x < -edge) {
            ball.moveBy(Vector3((p.x > 0.0f ? edge : -edge) - p.x, 0.0f, 0.0f));
            if (v.x * p.x > 0.0f)
                ball.push(Vector3(-1.5f * v.x, 0.0f, 0.0f));
        }
        if (p.z > edge || p.z < -edge) {
            ball.moveBy(Vector3(0.0f, 0.0f, (p.z > 0.0f ? edge : -edge) - p.z));
            if (v.z * p.z > 0.0f)
                ball.push(Vector3(0.0f, 0.0f, -1.5f * v.z));
        }
    }
}
