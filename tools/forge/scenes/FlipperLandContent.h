// The flipper land's content: the land as Bezier patches, the paddle, bumper and ball meshes, and its pictures.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"

#include "effects/FlipperLandLayout.h"

class BezierMesh;
class Forge;

class FlipperLandContent : public ContentUnit {
public:
    // The paddle: hinge to tip, and how thick it stands.
    static constexpr double PADDLE_LENGTH = 3.0;
    static constexpr double PADDLE_THICKNESS = 0.35;

    const char* name() const override { return "flipperland"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // The land's height at rest: a hill in the middle, a hollow for each flipper station, mounds
    // under the bumpers, hills in the corners and a rim rising all round.
    static double height(double x, double z);
    // The land as PATCHES x PATCHES patches whose control points stand evenly on the ground,
    // rows along x and columns along z, sharing their edges smoothly.
    static void buildLand(BezierMesh& mesh);

    // A pinball paddle hinged at the origin, pointing along +x, lying on y = 0.
    static void buildPaddle(MeshBuilder& mesh);
    // The bumper's skirt and post, and its cap (drawn in the cap's own, lit-up colour).
    static void buildBumper(MeshBuilder& mesh);
    static void buildCap(MeshBuilder& mesh);
    // A unit ball.
    static void buildBall(MeshBuilder& mesh);

private:
    bool meshes(Forge& forge) const;
    bool pictures(Forge& forge) const;
};
