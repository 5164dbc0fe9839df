// Two panels a wing, bent at the wrist; the poses differ only in those two angles.
#include "BirdMesh.h"

#include "Maths.h"

const char* const BirdMesh::materialNames[MaterialCount] = {"BirdBody", "BirdWingTip", "BirdBeak"};

BirdMesh::BirdMesh(bool wingsUp) : innerAngle(wingsUp ? 22.0 : -14.0), outerAngle(wingsUp ? 40.0 : -32.0) {}

void BirdMesh::wing(MeshBuilder& mesh, double side) const
{
    const double radian = Maths::pi / 180.0;
    const double a1 = innerAngle * radian;
    const double a2 = outerAngle * radian;
    const double root = 0.06;
    const double elbow = 0.45;
    const double tip = 0.95;
    // Span position and lift of a point at distance s from the body.
    auto place = [&](double x, double s) {
        if (s <= elbow) {
            const double d = s - root;
            return Vec3{x, 0.02 + d * Maths::sin(a1), side * (root + d * Maths::cos(a1))};
        }
        const double d1 = elbow - root;
        const double d2 = s - elbow;
        return Vec3{x, 0.02 + d1 * Maths::sin(a1) + d2 * Maths::sin(a2),
                    side * (root + d1 * Maths::cos(a1) + d2 * Maths::cos(a2))};
    };
    const Vec3 rootFront = place(0.14, root);
    const Vec3 rootBack = place(-0.1, root);
    const Vec3 elbowFront = place(0.12, elbow);
    const Vec3 elbowBack = place(-0.14, elbow);
    const Vec3 wingTip = place(-0.2, tip);
    const Vec3 tipBack = place(-0.22, 0.75);
    mesh.fan({rootFront, elbowFront, elbowBack, rootBack}, Body);
    mesh.fan({rootFront, rootBack, elbowBack, elbowFront}, Body);
    mesh.fan({elbowFront, wingTip, tipBack, elbowBack}, WingTip);
    mesh.fan({elbowFront, elbowBack, tipBack, wingTip}, WingTip);
}

void BirdMesh::build(MeshBuilder& mesh) const
{
    // Body from tail to head, thickest at the breast, with a neck before the head.
    mesh.tube({Vec3{-0.34, 0.01, 0.0}, Vec3{-0.2, 0.0, 0.0}, Vec3{-0.02, 0.0, 0.0}, Vec3{0.12, 0.01, 0.0},
               Vec3{0.22, 0.03, 0.0}, Vec3{0.28, 0.05, 0.0}, Vec3{0.34, 0.06, 0.0}, Vec3{0.38, 0.06, 0.0}},
              {0.02, 0.06, 0.085, 0.075, 0.05, 0.045, 0.05, 0.025}, 8, Body);
    mesh.cone(Vec3{0.37, 0.055, 0.0}, Vec3{0.5, 0.04, 0.0}, 0.018, 5, Beak);
    // A forked tail.
    const Vec3 a{-0.28, 0.015, 0.04};
    const Vec3 b{-0.28, 0.015, -0.04};
    const Vec3 c{-0.5, 0.0, -0.12};
    const Vec3 d{-0.44, 0.0, 0.0};
    const Vec3 e{-0.5, 0.0, 0.12};
    mesh.fan({a, b, c, d, e}, Body);
    mesh.fan({a, e, d, c, b}, Body);
    wing(mesh, 1.0);
    wing(mesh, -1.0);
}
