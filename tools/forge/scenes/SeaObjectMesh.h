// The tunnel's decorative objects: a leaf, a worm, a spiny urchin, a fan and the fan's holder.
#pragma once

#include "MeshBuilder.h"

class SeaObjectMesh {
public:
    // In the order the tunnel lists its objects.
    enum Kind { Leaf, Worm, Spike, Fan, FanHolder };
    // All of them wear the one reflective material.
    enum { Shell, MaterialCount };
    static const char* const materialNames[MaterialCount];

    explicit SeaObjectMesh(Kind kind);
    // Leaf, worm and spike are about one unit across (the scene scales them by 4);
    // the fan turns about the x axis at the origin and its holder stands below it.
    void build(MeshBuilder& mesh) const;

private:
    void leaf(MeshBuilder& mesh) const;
    void worm(MeshBuilder& mesh) const;
    void spike(MeshBuilder& mesh) const;
    void fan(MeshBuilder& mesh) const;
    void holder(MeshBuilder& mesh) const;
    Kind kind;
};
