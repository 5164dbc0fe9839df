// Flat-shaded plates and boxes in local frames, mapped with a picture at a fixed scale: machinery made of panels.
#pragma once

#include "MeshBuilder.h"
#include "Random.h"

class PlateBuilder {
public:
    // A local frame: u along, v across, n outwards.
    struct Frame {
        Vec3 origin;
        Vec3 u;
        Vec3 v;
        Vec3 n;
        Vec3 at(double a, double b, double h) const { return origin + u * a + v * b + n * h; }
    };

    // `scale` is the picture's repeats per unit; boxes take their picture from places drawn from `seed`.
    PlateBuilder(MeshBuilder& mesh, double scale, uint64_t seed);

    // One flat quad facing `outward`, its picture running with (s, t) per corner.
    void face(const Vec3 (&p)[4], const Vec3& outward, const double (&st)[4][2], int material);
    // A quad in a frame at height h, mapped by its frame coordinates; `inward` turns it to face -n.
    void plate(const Frame& f, double u0, double u1, double v0, double v1, double h, int material, bool inward = false);
    // A box standing on the frame's plane from height h0 to h1; its underside is left out.
    void box(const Frame& f, double u0, double u1, double v0, double v1, double h0, double h1, int material);
    // A quad whose picture is the given rectangle of the texture (s0, t0 at the first corner).
    void decal(const Frame& f, double u0, double u1, double v0, double v1, double h, double s0, double t0, double s1,
               double t1, int material);

    MeshBuilder& mesh() { return builder; }
    double getScale() const { return scale; }

private:
    MeshBuilder& builder;
    double scale;
    Random random;
};
