// The cockpit around the pilot: the sloping instrument dashboard with its screen bezels, the window's frame and roof.
#pragma once

#include "MeshBuilder.h"
#include "PlateBuilder.h"

class CockpitMesh {
public:
    // Picture repeats per unit of the metal panels.
    static constexpr double PANEL_SCALE = 1.6;

    // Faces use the material indices of CockpitLayout::FramePart.
    explicit CockpitMesh(MeshBuilder& mesh);
    void build();

private:
    using Frame = PlateBuilder::Frame;

    // A box of the given width and depth along the segment from a to b, its depth along `facing`.
    void beam(const Vec3& a, const Vec3& b, const Vec3& facing, double width, double depth, int material);
    void dashboard();
    void window();
    void roof();

    PlateBuilder plates;
};
