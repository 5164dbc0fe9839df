// The game on the flipper land: balls rolling and bouncing, flippers throwing them on the song's stabs, bumpers lighting up when hit.
#pragma once

#include "effects/FlipperBall.h"
#include "effects/FlipperLandLayout.h"

class GroundSurface;

class FlipperPlay {
public:
    enum {
        BALL_COUNT = FlipperLandLayout::BALL_COUNT,
        BUMPER_COUNT = FlipperLandLayout::BUMPER_COUNT,
        STATION_COUNT = FlipperLandLayout::STATION_COUNT,
        // What stationForRow answers for a row that fires every station at once, and for one that fires none.
        ALL_STATIONS = STATION_COUNT,
        NO_STATION = -1
    };
    // The balls move in steps no longer than this.
    static constexpr float STEP = 1.0f / 120.0f;
    // Paddles swing up by this many degrees when they fire.
    static constexpr float PADDLE_LIFT = 50.0f;
    // A bumper: its post's radius and height above the ground.
    static constexpr float BUMPER_RADIUS = 1.35f;
    static constexpr float BUMPER_HEIGHT = 1.7f;
    // How near a flipper's hollow, and how near the ground, a ball must be to be thrown.
    static constexpr float CATCH_RADIUS = 3.6f;
    static constexpr float CATCH_HEIGHT = 0.8f;
    // A throw's time in the air, to the bumper it is aimed at.
    static constexpr float FLIGHT = 1.3f;

    FlipperPlay();

    // Balls in the air above the land, falling in; paddles down, bumpers dark, the clock at 0.
    void reset();
    // Advances by `seconds` of scene time over the ground.
    void update(float seconds, const GroundSurface& ground);

    float getTime() const { return time; }
    const FlipperBall& getBall(int i) const { return balls[i]; }
    // 1 when just hit, fading to 0 within half a second.
    float getBumperGlow(int i) const { return glow[i]; }
    int getBumperHits() const { return bumperHits; }
    int getLaunches() const { return launches; }
    // How far a station's paddles are lifted now, in degrees.
    float getPaddleLift(int station) const;
    // The paddles' lift `age` seconds after they fired.
    static float paddleLift(float age);

    // The song: seconds since the last kick at time t into the scene (large before the first),
    // and which station a row fires (NO_STATION, a station, or ALL_STATIONS).
    static float sinceKick(float t);
    static int stationForRow(int row);

private:
    void step(float dt, const GroundSurface& ground);
    void fire(int station, const GroundSurface& ground);
    void throwBall(FlipperBall& ball, const Vector3& target);
    void hitBumpers(const GroundSurface& ground);
    void hitBalls();
    void keepOnLand();

    FlipperBall balls[BALL_COUNT];
    float glow[BUMPER_COUNT];
    float fired[STATION_COUNT];
    float time;
    int bumperHits;
    int launches;
};
