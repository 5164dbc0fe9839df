// The city street's content: the block as an octree, the camera's race along the route, the traffic's car and the pictures.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"
#include "Polyline.h"

#include "effects/CityLayout.h"

#include <vector>

class Forge;

class CityStreetContent : public ContentUnit {
public:
    static constexpr double FRAMES_PER_SECOND = 24.0;
    // Frames between two path keys.
    static const int KEY_STEP = 2;
    // The radius the camera swings round a corner with, and how far ahead along the route it looks.
    static constexpr double CORNER_RADIUS = 9.0;
    static constexpr double LOOK_AHEAD = 16.0;

    CityStreetContent();

    const char* name() const override { return "city"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // The route on the ground, by distance along it: straight down the streets' middles, rounded at the
    // turns, carried on straight before its start and past its end.
    Vec3 routePoint(double s) const;
    double length() const { return route.length(); }
    // The distance at which the route passes route node k (the middle of the arc where it turns).
    double nodeDistance(int k) const { return nodes[static_cast<size_t>(k)]; }
    // Distance along the route t seconds into the scene: node k is passed at k bars.
    double distanceAt(double t) const;
    double cameraHeight(double t) const;
    Vec3 cameraAt(double t) const;
    Vec3 targetAt(double t) const;

private:
    bool writeBlock(const std::string& path) const;
    bool writeCar(Forge& forge) const;
    bool pictures(Forge& forge) const;

    Polyline route;
    std::vector<double> nodes;
};
