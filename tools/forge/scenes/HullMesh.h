// The great spacecraft's hull: a plated body with a dorsal trench, a command tower, side pods, docking bays and engines.
#pragma once

#include "MeshBuilder.h"
#include "PlateBuilder.h"
#include "Random.h"

class HullMesh {
public:
    // Texture repeats per unit of hull.
    static constexpr double PLATE_SCALE = 1.0 / 32.0;

    // Faces use the material indices of SpaceCraftLayout::HullPart; the nose points to -z.
    explicit HullMesh(MeshBuilder& mesh);
    void build();

    // Half width and half height of the body's octagonal section at z (0 beyond the ends).
    static double halfWidth(double z);
    static double halfHeight(double z);

private:
    using Frame = PlateBuilder::Frame;

    void face(const Vec3 (&p)[4], const Vec3& outward, const double (&st)[4][2], int material)
    {
        plates.face(p, outward, st, material);
    }
    void plate(const Frame& f, double u0, double u1, double v0, double v1, double h, int material)
    {
        plates.plate(f, u0, u1, v0, v1, h, material);
    }
    void box(const Frame& f, double u0, double u1, double v0, double v1, double h0, double h1, int material)
    {
        plates.box(f, u0, u1, v0, v1, h0, h1, material);
    }
    // Boxes of many sizes over a rectangle of a face: the hull's detail.
    void greebles(const Frame& f, double u0, double u1, double v0, double v1, double scale);
    // A row of lit windows just off the surface.
    void windows(const Frame& f, double u0, double u1, double v, double height);
    // A round tube along an axis with an outer wall from r0 to r1 and, when hollow, an inner wall.
    void nozzle(const Vec3& mouth, double radius, double length, int sides);

    void body();
    void trench();
    void sides();
    void bay(double side, double z0, double z1, double y0, double y1);
    void tower();
    void pods();
    void keel();
    void nose();
    void engines();
    void masts();

    MeshBuilder& mesh;
    PlateBuilder plates;
    Random random;
};
