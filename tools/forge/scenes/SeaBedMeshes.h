// The sea bed's meshes: the fish, a kelp strand, a sea fan, boulders, the rock face with its cave and eye socket, the eyeball and its lid.
#pragma once

#include "MeshBuilder.h"

#include <functional>

class SeaBedMeshes {
public:
    // About 1.4 long, nose towards +z, tail fin at the back; the skin's u runs nose to tail.
    static void fish(MeshBuilder& mesh);
    // A stem from the ground at y = 0 up to y = 14 with blades along it, alternating sides.
    static void kelp(MeshBuilder& mesh);
    // A fan about 2.4 wide and 2 high in the xy plane, standing on a short stalk at the origin.
    static void fan(MeshBuilder& mesh);
    // A boulder of one of three shapes, about two units across, its flat base a little below y = 0.
    static void rock(MeshBuilder& mesh, int kind);
    // The rock face across the end of the floor, facing +z, with the cave's mouth at its foot and
    // the raised rim of the eye's socket.
    static void cliff(MeshBuilder& mesh);
    // The cave behind the mouth: a tube into the rock, facing in.
    static void cave(MeshBuilder& mesh);
    // A unit sphere looking along +z, the iris picture projected onto its front.
    static void eyeball(MeshBuilder& mesh);
    // The upper lid: a shell just outside the unit ball over its top front quarter, edged by a
    // rounded lip along the equator. Turned half a turn about z it serves as the lower lid.
    static void eyelid(MeshBuilder& mesh);

    // The rock face's distance out from its base plane at (x, y): bulges and the eye's rim.
    static double cliffRelief(double x, double y);

    // A grid like MeshBuilder::surface with texture coordinates of its own.
    static void grid(MeshBuilder& mesh, int rows, int columns, bool closeColumns,
                     const std::function<Vec3(int, int)>& point,
                     const std::function<void(int, int, double&, double&)>& uv);
};
