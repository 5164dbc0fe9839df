// The underwater tunnel's geometry and paths: the winding tube as an octree, the camera's and the ship's flights.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"
#include "Polyline.h"

#include "effects/TunnelLayout.h"

#include <vector>

class Forge;

class TunnelContent : public ContentUnit {
public:
    // The scene's length in seconds and the paths' key rate.
    static constexpr double SECONDS = TunnelLayout::SECONDS;
    static constexpr double FRAMES_PER_SECOND = 24.0;
    // Frames between two path keys.
    static const int KEY_STEP = 6;
    // How far ahead of the camera the ship sails and the camera looks, along the tunnel.
    static constexpr double SHIP_LEAD = 10.0;
    static constexpr double LOOK_AHEAD = 16.0;
    // Above the centre line for the camera, below it for the ship.
    static constexpr double CAMERA_RISE = 1.5;
    static constexpr double SHIP_DROP = 2.2;
    // Tube resolution: ring spacing along the centre line and sides per ring.
    static constexpr double RING_STEP = 2.5;
    static const int SIDES = 20;

    TunnelContent();

    const char* name() const override { return "tunnel"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // The centre line by distance along it, from 0 to length().
    Vec3 centre(double s) const;
    double length() const { return line.length(); }
    // Forward, and the side and up directions square to it (up leans towards +y).
    void frame(double s, Vec3& forward, Vec3& side, Vec3& up) const;
    // Wall distance from the centre line at s, around the angle theta (0 along side, pi/2 up).
    double radius(double s, double theta) const;
    // The wall point at s and theta.
    Vec3 wall(double s, double theta) const;

    // The distance along the centre line whose point is nearest to p.
    double nearest(const Vec3& p) const;
    // How far p lies inside the wall (negative: outside), measured towards the nearest centre point.
    double clearance(const Vec3& p) const;

    // Where the camera is, looks and the ship sails, t seconds into the scene.
    double cameraDistance(double t) const;
    Vec3 cameraAt(double t) const;
    Vec3 targetAt(double t) const;
    Vec3 shipAt(double t) const;

    // The tube, facing inwards, without materials.
    void buildTube(MeshBuilder& mesh) const;

    bool writeTunnel(const char* file) const;
    bool writeCamera(const char* file) const;
    bool writeShip(const char* file) const;

private:
    bool objects(Forge& forge);
    bool pictures(Forge& forge);
    // Rock relief around the base radius: about -1 to 1.
    double relief(double s, double theta) const;
    double baseRadius(const Vec3& c) const;
    // Roughness falls away near the fan so its holder stands on the floor.
    double roughness(const Vec3& c) const;

    Polyline line;
    double pathStart;
    double pathEnd;
};
