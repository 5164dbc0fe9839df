// The city block's static geometry: towers and low blocks with lit facades and shop fronts, roads, crossings,
// sidewalks, roof details, street lamp poles and one-way signs; material indices are CityLayout's surfaces.
#pragma once

#include "MeshBuilder.h"

#include <cstdint>
#include <vector>

class Random;

class CityBlockMesh {
public:
    // Sides of a footprint, in the order its outline is walked.
    enum Side { NORTH, EAST, SOUTH, WEST, SIDES };

    // One building: its footprint, height, the facade and shop front it wears, and for each side
    // whether a street runs past it or how tall the neighbour standing against it is.
    struct Building {
        double x0;
        double z0;
        double x1;
        double z1;
        double height;
        int facade;
        int shop;
        bool street[SIDES];
        double beside[SIDES];
    };

    CityBlockMesh();
    void build(MeshBuilder& mesh) const;
    const std::vector<Building>& getBuildings() const { return buildings; }
    // Whether a point lies inside a building or within the margin of its walls and roof.
    bool inside(const Vec3& p, double margin) const;

    // An axis-aligned wall from (x0, z0) to (x1, z1) between two heights, facing the right-hand side of
    // someone walking from the first point to the second. The picture repeats every tile: u runs along
    // the wall from u0, v = v0 - y / tileHeight (pictures are stored top row first).
    static void wall(MeshBuilder& mesh, double x0, double z0, double x1, double z1, double y0, double y1, double u0,
                     double tileWidth, double v0, double tileHeight, int material);
    // A horizontal rectangle facing up, its picture repeating every tile metres (u along x, v along z).
    static void floor(MeshBuilder& mesh, double x0, double z0, double x1, double z1, double y, double tile,
                      int material);
    // A box without its bottom, every face in one material tiled by the metre.
    static void box(MeshBuilder& mesh, double x0, double y0, double z0, double x1, double y1, double z1, double tile,
                    int material);

private:
    void planBlock(int bx, int bz, Random& random);
    void streets(MeshBuilder& mesh) const;
    void sidewalks(MeshBuilder& mesh) const;
    void building(MeshBuilder& mesh, const Building& b, Random& random) const;
    void roof(MeshBuilder& mesh, const Building& b, Random& random) const;
    void lamps(MeshBuilder& mesh) const;
    void oneWaySigns(MeshBuilder& mesh) const;

    std::vector<Building> buildings;
};
