// The tunnel exit's content: the last stretch of tube as an octree, the slab its breaking walls are made of, the flights and pictures.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"

#include "effects/TunnelExitLayout.h"

#include <vector>

class Forge;
class VertexArray;

class TunnelExitContent : public ContentUnit {
public:
    static constexpr double SECONDS = TunnelExitLayout::SECONDS;
    static constexpr double HIT = TunnelExitLayout::HIT;
    static constexpr double FRAMES_PER_SECOND = 24.0;
    // Frames between two path keys.
    static const int KEY_STEP = 4;
    // The tube starts behind the camera's first place and ends where the slabs begin.
    static constexpr double START_Z = -12.0;
    static constexpr double BREAK_Z = 80.0;
    // Ring spacing along z and sides per ring of the octree's tube.
    static constexpr double RING_STEP = 2.0;
    static const int SIDES = 24;
    // Above the centre line for the camera, below it for the ship; how far the ship leads.
    static constexpr double CAMERA_RISE = 1.2;
    static constexpr double SHIP_DROP = 2.4;
    static constexpr double SHIP_LEAD = 15.0;
    static constexpr double LOOK_AHEAD = 16.0;
    // Where the camera is when the walls burst: a few units short of the first slabs.
    static constexpr double HIT_SHORT_OF_BREAK = 4.0;

    TunnelExitContent();

    const char* name() const override { return "tunnelexit"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // The centre line of the octree's tube by z, and its frame: forward, and side and up square
    // to it (the way TunnelExitLayout's SIDE and UP are taken).
    Vec3 centre(double z) const;
    void frame(double z, Vec3& forward, Vec3& side, Vec3& up) const;
    // Wall distance from the centre line at z around the angle theta.
    double radius(double z, double theta) const;
    // How far p lies inside the tube's wall (negative: outside), for points beside the octree's part.
    double clearance(const Vec3& p) const;

    // The line the camera and ship fly along, by distance: the centre line, then straight on
    // along the axis of the slabs and out; s = 0 at the break.
    Vec3 flight(double s) const;
    // The flight distance at time t: slow in the tube, racing at the hit, slowing in the light.
    double cameraDistance(double t) const;
    Vec3 cameraAt(double t) const;
    Vec3 targetAt(double t) const;
    Vec3 shipAt(double t) const;

    // The tube to the break, facing inwards; the slab, closed, in the axis's frame.
    void buildTube(MeshBuilder& mesh) const;
    void buildSlab(MeshBuilder& mesh) const;

    bool writeTunnel(const char* file) const;
    bool writeCamera(const char* file) const;
    bool writeShip(const char* file) const;

private:
    bool pictures(Forge& forge) const;
    double climb(double z) const;
    double sway(double z) const;
    // Distance along the centre line from the break (negative inside the octree's tube).
    double arcAt(double z) const;
    double zAtArc(double s) const;
    // Rock relief about -1 to 1, tapering to nothing at the break so the slabs meet the tube.
    double relief(double z, double theta) const;
    // Gives the twice-made seam column of every ring of the built tube one normal.
    void joinSeam(VertexArray& vertices) const;

    std::vector<double> arcs;
};
