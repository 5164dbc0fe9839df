// A seagull in one of two wing poses, facing +x with its wings along z.
#pragma once

#include "MeshBuilder.h"

class BirdMesh {
public:
    enum { Body, WingTip, Beak, MaterialCount };
    static const char* const materialNames[MaterialCount];

    // wingsUp: the upstroke pose (first file); otherwise the downstroke.
    explicit BirdMesh(bool wingsUp);
    void build(MeshBuilder& mesh) const;

private:
    void wing(MeshBuilder& mesh, double side) const;
    double innerAngle;
    double outerAngle;
};
