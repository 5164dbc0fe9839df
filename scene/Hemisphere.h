// A textured sky dome: the upper half of a sphere seen from inside, drawn solid.
#pragma once
#include "math/Vector2.h"
#include "math/Vector3.h"

class Hemisphere {
public:
    explicit Hemisphere(float radius = 1.0f);
    void setRadius(float r) { radius = r; }
    float getRadius() const { return radius; }

    // Slices round the horizon, stacks from the horizon to the zenith (each at
    // least 1 and 3); texture coordinates as texCoord gives them, the current
    // material's texture bound by the caller. Drawn from inside, both faces.
    void draw(int slices, int stacks) const;

    // The point at azimuth and elevation, in turns (0..1) and degrees (0..90).
    Vector3 point(float azimuthTurns, float elevationDegrees) const;
    // u is the azimuth in turns, so the seam column repeats at u = 0 and u = 1;
    // v runs from 0 at the zenith to 1 at the horizon.
    static Vector2 texCoord(float azimuthTurns, float elevationDegrees);

private:
    float radius;
};
