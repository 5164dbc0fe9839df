// A small saloon car for the city's traffic: body, glasshouse, wheels; nose towards +z, wheels on y = 0.
#pragma once

#include "MeshBuilder.h"

class CarMesh {
public:
    // Material indices used by build(): the painted body, the windows, tyres and bumpers.
    enum { Paint, Glass, Trim, MaterialCount };

    // A horizontal rectangle of a box: half its width, its back and front z, its height.
    struct Section {
        double halfWidth;
        double back;
        double front;
        double y;
    };

    void build(MeshBuilder& mesh) const;

    // A box without a floor, centred on x, whose top section may be smaller than its bottom one; the
    // sides take one material, the top another.
    static void box(MeshBuilder& mesh, double x, const Section& bottom, const Section& top, int sides, int lid);
};
