// Shapes from simple functions: a fish of elliptic rings, kelp of ribbons and blades, boulders of bent spheres, a rock face round a hole.
#include "SeaBedMeshes.h"

#include "Maths.h"
#include "Noise.h"

#include "effects/SeaBedLayout.h"

#include <cmath>

namespace {

using namespace SeaBedLayout;

const double TAU = 2.0 * Maths::pi;

// The fish's body: its height and width from nose (t = 0) to the root of the tail (t = 1).
double bodyShape(double t)
{
    return Maths::sin(Maths::pi * Maths::pow(t, 0.7)) * 0.88 + 0.12 * t;
}

// Where the cave's mouth meets the rock, at angle a round it; its floor is flat, just above the sand.
Vec3 mouthEdge(double a)
{
    const double floor = CAVE_MOUTH.y - 0.85 * CAVE_HEIGHT;
    return Vec3{CAVE_MOUTH.x + CAVE_WIDTH * Maths::cos(a), std::fmax(CAVE_MOUTH.y + CAVE_HEIGHT * Maths::sin(a), floor),
                0.0};
}

// Where the ray from the mouth at angle a leaves the rock face's rectangle.
Vec3 outerEdge(double a)
{
    const double dx = Maths::cos(a);
    const double dy = Maths::sin(a);
    const double halfWidth = 78.0;
    const double low = -8.0;
    // A ragged top, so that the face has no straight edge against the water.
    const double high = 50.0 + 6.0 * Maths::sin(a * 5.0) + 4.0 * Maths::sin(a * 11.0 + 1.0);
    double reach = 1e9;
    if (std::fabs(dx) > 1e-9)
        reach = std::fmin(reach, (dx > 0.0 ? halfWidth - CAVE_MOUTH.x : -halfWidth - CAVE_MOUTH.x) / dx);
    if (std::fabs(dy) > 1e-9)
        reach = std::fmin(reach, (dy > 0.0 ? high - CAVE_MOUTH.y : low - CAVE_MOUTH.y) / dy);
    return Vec3{CAVE_MOUTH.x + dx * reach, CAVE_MOUTH.y + dy * reach, 0.0};
}

// The eye's rim stands a little in front of the ball's middle.
const double RIM_RADIUS = EYE_RADIUS * 1.25;
const double RIM_THICKNESS = 1.5;
const double RIM_FORWARD = -0.5;
// Steps round the cave's mouth, shared by the rock face and the cave so their edges meet.
const int MOUTH_STEPS = 56;

}  // namespace

void SeaBedMeshes::grid(MeshBuilder& mesh, int rows, int columns, bool closeColumns,
                        const std::function<Vec3(int, int)>& point,
                        const std::function<void(int, int, double&, double&)>& uv)
{
    const int first = mesh.vertexCount();
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            double u = 0.0;
            double v = 0.0;
            uv(r, c, u, v);
            mesh.vertex(point(r, c), u, v);
        }
    }
    const int spans = closeColumns ? columns : columns - 1;
    for (int r = 0; r + 1 < rows; ++r) {
        for (int c = 0; c < spans; ++c) {
            const int c1 = (c + 1) % columns;
            mesh.quad(first + r * columns + c, first + r * columns + c1, first + (r + 1) * columns + c1,
                      first + (r + 1) * columns + c, -1);
        }
    }
}

void SeaBedMeshes::fish(MeshBuilder& mesh)
{
    const int rows = 10;
    const int columns = 8;
    const double nose = 0.7;
    const double root = -0.45;
    // Elliptic rings from the nose back, the belly a little lower than the back is high.
    grid(
        mesh, rows, columns, true,
        [&](int r, int c) {
            const double t = (double)r / (rows - 1);
            const double a = TAU * c / columns;
            const double s = bodyShape(t);
            return Vec3{0.1 * s * Maths::sin(a), -0.03 * s + 0.25 * s * Maths::cos(a), nose + (root - nose) * t};
        },
        [&](int r, int c, double& u, double& v) {
            u = 0.8 * r / (rows - 1);
            v = 0.5 - 0.5 * Maths::cos(TAU * c / columns);
        });
    // A forked tail fin: its tips reach further back than its middle. Fins are single sheets: the
    // scene draws the fish with both sides of every face lit.
    grid(
        mesh, 4, 5, false,
        [&](int r, int c) {
            const double f = r / 3.0;
            const double k = c / 2.0 - 1.0;
            return Vec3{0.0, k * (0.04 + 0.3 * f), root + 0.02 - f * (0.18 + 0.18 * std::fabs(k))};
        },
        [&](int r, int c, double& u, double& v) {
            u = 0.8 + 0.19 * r / 3.0;
            v = 0.5 + 0.15 * (c / 2.0 - 1.0);
        });
    // A low fin along the back.
    grid(
        mesh, 4, 3, false,
        [&](int r, int c) {
            const double f = r / 3.0;
            const double up = c / 2.0;
            const double z = 0.2 - 0.4 * f - 0.12 * up;
            const double t = (nose - z) / (nose - root);
            return Vec3{0.0, 0.2 * bodyShape(t) + up * 0.16 * Maths::sin(Maths::pi * (0.15 + 0.85 * f)), z};
        },
        [&](int r, int, double& u, double& v) {
            u = 0.3 + 0.3 * r / 3.0;
            v = 0.05;
        });
}

void SeaBedMeshes::kelp(MeshBuilder& mesh)
{
    const double height = 14.0;
    const int rows = 12;
    auto stemX = [&](double y) { return 0.3 * Maths::sin(y * 0.3); };
    // Two crossed ribbons make the stem, drawn from the opaque middle of the blade picture. Every
    // sheet is single: the scene lights both sides of the plants' faces.
    for (int turn = 0; turn < 2; ++turn) {
        const double sx = turn == 0 ? 1.0 : 0.0;
        const double sz = turn == 0 ? 0.0 : 1.0;
        grid(
            mesh, rows, 2, false,
            [&](int r, int c) {
                const double y = height * r / (rows - 1);
                const double w = (c - 0.5) * 0.16 * (1.0 - 0.5 * r / (rows - 1));
                return Vec3{stemX(y) + sx * w, y, sz * w};
            },
            [&](int r, int c, double& u, double& v) {
                u = 0.47 + 0.06 * c;
                v = (double)r / (rows - 1);
            });
    }
    // Blades on a spiral up the stem, reaching up and out, drooping at their tips and twisting.
    const int blades = 11;
    for (int i = 0; i < blades; ++i) {
        const double y0 = 1.6 + i * 1.1;
        const double angle = i * 2.4;
        const Vec3 out{Maths::cos(angle), 0.0, Maths::sin(angle)};
        const Vec3 across{-Maths::sin(angle), 0.0, Maths::cos(angle)};
        const double length = 3.6 - 0.14 * i;
        grid(
            mesh, 5, 3, false,
            [&](int r, int c) {
                const double s = r / 4.0;
                const double width = 0.62 * Maths::sin(Maths::pi * (0.1 + 0.8 * s));
                const double twist = 0.8 * s;
                const Vec3 side = across * Maths::cos(twist) + Vec3{0.0, 0.35 * Maths::sin(twist), 0.0};
                const Vec3 base{stemX(y0), y0, 0.0};
                return base + out * (length * 0.7 * s) + Vec3{0.0, length * (0.6 * s - 0.3 * s * s), 0.0} +
                       side * (width * (c - 1.0));
            },
            [&](int r, int c, double& u, double& v) {
                u = c / 2.0;
                v = r / 4.0;
            });
    }
}

void SeaBedMeshes::fan(MeshBuilder& mesh)
{
    grid(
        mesh, 5, 6, false,
        [&](int r, int c) {
            const double x = (c / 5.0 - 0.5) * 2.4;
            const double y = 2.0 * r / 4.0;
            return Vec3{x, y, 0.18 * (x / 1.2) * (x / 1.2) + 0.1 * y};
        },
        [&](int r, int c, double& u, double& v) {
            u = c / 5.0;
            v = 1.0 - r / 4.0;
        });
}

void SeaBedMeshes::rock(MeshBuilder& mesh, int kind)
{
    const Noise noise(0x80C0u + (uint32_t)kind * 77u);
    const double stretch[3][3] = {{1.4, 0.8, 1.0}, {1.0, 1.25, 0.9}, {1.3, 0.6, 1.2}};
    const double* s = stretch[kind % 3];
    const int rows = 9;
    const int columns = 13;
    // The last column repeats the first, so the texture does not smear across a seam.
    grid(
        mesh, rows, columns, false,
        [&](int r, int c) {
            const double lat = -Maths::pi * 0.5 + Maths::pi * r / (rows - 1);
            const double lon = -TAU * (c % (columns - 1)) / (columns - 1);
            const double around = (double)(c % (columns - 1)) / (columns - 1);
            const double bumps =
                0.22 * noise.fbm(around * 4.0, r * 0.45, 4, 3) + 0.12 * noise.ridged(around * 8.0, r * 0.9, 8, 2);
            const double radius = 1.0 + bumps;
            Vec3 p{radius * Maths::cos(lat) * Maths::cos(lon) * s[0], radius * Maths::sin(lat) * s[1],
                   radius * Maths::cos(lat) * Maths::sin(lon) * s[2]};
            // Boulders rest on a flattened base.
            p.y = std::fmax(p.y, -0.35 * s[1]);
            return p;
        },
        [&](int r, int c, double& u, double& v) {
            u = 2.0 * c / (columns - 1);
            v = (double)r / (rows - 1);
        });
}

double SeaBedMeshes::cliffRelief(double x, double y)
{
    static const Noise noise(0xC11Fu);
    // Buttresses, boulders and ledges, the face leaning back as it rises.
    const double buttresses = 1.6 * Maths::sin(x / 9.0 + 1.3 * noise.fbm(y / 20.0 + 7.0, x / 30.0, 64, 2));
    double relief = buttresses + 3.2 * noise.fbm(x / 14.0 + 32.0, y / 14.0 + 32.0, 64, 4) +
                    2.2 * noise.ridged(x / 8.0 + 32.0, y / 8.0 + 32.0, 64, 3) - 0.1 * std::fmax(y, 0.0);
    // A lip of rock overhangs the cave's mouth.
    const double mx = (x - CAVE_MOUTH.x) / CAVE_WIDTH;
    const double my = (y - CAVE_MOUTH.y) / CAVE_HEIGHT;
    const double mouth = std::sqrt(mx * mx + my * my);
    relief += 2.0 * Maths::exp(-(mouth - 1.0) * (mouth - 1.0) / 0.12) * Maths::smoothstep(-0.6, 0.2, my);
    // Round the eye the rock settles to a plane a little behind the ball's middle, which the rim meets.
    const double ex = x - EYE_CENTRE.x;
    const double ey = y - EYE_CENTRE.y;
    const double d = std::sqrt(ex * ex + ey * ey);
    const double settle = 1.0 - Maths::smoothstep(RIM_RADIUS, RIM_RADIUS + 4.5, d);
    return Maths::mix(relief, EYE_CENTRE.z - CLIFF_Z - 0.4, settle);
}

void SeaBedMeshes::cliff(MeshBuilder& mesh)
{
    const int rings = 30;
    auto wallPoint = [&](int r, int c) {
        const double a = -TAU * c / MOUTH_STEPS;
        const double s = Maths::pow((double)r / (rings - 1), 1.5);
        const Vec3 inner = mouthEdge(a);
        const Vec3 p = inner + (outerEdge(a) - inner) * s;
        // The mouth's own edge stays on the face's base plane, where the cave meets it.
        const double relief = r == 0 ? 0.0 : cliffRelief(p.x, p.y);
        return Vec3{p.x, p.y, CLIFF_Z + relief};
    };
    auto planar = [&](int r, int c, double& u, double& v) {
        const Vec3 p = wallPoint(r, c);
        u = p.x / 9.0;
        v = -p.y / 9.0;
    };
    grid(mesh, rings, MOUTH_STEPS, true, wallPoint, planar);

    // The socket's rim: a rough ring round the eye, standing out of the settled rock.
    const Noise noise(0x5C0Cu);
    const int segments = 32;
    const int sides = 8;
    grid(
        mesh, segments + 1, sides, true,
        [&](int r, int c) {
            const double phi = TAU * (r % segments) / segments;
            const double psi = -TAU * c / sides;
            const double thick =
                RIM_THICKNESS * (1.0 + 0.45 * noise.fbm(4.0 * (r % segments) / segments, 4.0 * c / sides, 4, 2));
            const double reach = RIM_RADIUS + thick * Maths::cos(psi);
            return Vec3{EYE_CENTRE.x + reach * Maths::cos(phi), EYE_CENTRE.y + reach * Maths::sin(phi),
                        EYE_CENTRE.z + RIM_FORWARD + thick * Maths::sin(psi)};
        },
        [&](int r, int c, double& u, double& v) {
            u = 3.0 * r / segments;
            v = (double)c / sides;
        });
}

void SeaBedMeshes::cave(MeshBuilder& mesh)
{
    // A tube back into the rock, narrowing and sinking as it goes, facing in, closed at its end.
    const int depths = 10;
    auto cavePoint = [&](int r, int c) {
        const double d = CAVE_LENGTH * r / (depths - 1);
        const double a = TAU * c / MOUTH_STEPS;
        const double narrow = 1.0 - 0.25 * d / CAVE_LENGTH;
        const Vec3 edge = mouthEdge(a);
        return Vec3{CAVE_MOUTH.x + 2.0 * Maths::sin(d * 0.06) + (edge.x - CAVE_MOUTH.x) * narrow,
                    CAVE_MOUTH.y - 0.06 * d + (edge.y - CAVE_MOUTH.y) * narrow, CLIFF_Z - d};
    };
    grid(mesh, depths, MOUTH_STEPS, true, cavePoint, [&](int r, int c, double& u, double& v) {
        u = 4.0 * c / MOUTH_STEPS;
        v = 0.1 * CAVE_LENGTH * r / (depths - 1);
    });
    std::vector<Vec3> end;
    for (int c = 0; c < MOUTH_STEPS; ++c)
        end.push_back(cavePoint(depths - 1, c));
    mesh.fanFacing(end, Vec3{0.0, 0.0, 1.0}, -1);
}

void SeaBedMeshes::eyeball(MeshBuilder& mesh)
{
    const int rows = 17;
    const int columns = 28;
    // The picture is laid on from straight in front, so it lands on the ball as the eye sees it.
    grid(
        mesh, rows, columns, true,
        [&](int r, int c) {
            const double lat = -Maths::pi * 0.5 + Maths::pi * r / (rows - 1);
            const double lon = TAU * c / columns;
            return Vec3{Maths::cos(lat) * Maths::sin(lon), Maths::sin(lat), Maths::cos(lat) * Maths::cos(lon)};
        },
        [&](int r, int c, double& u, double& v) {
            const double lat = -Maths::pi * 0.5 + Maths::pi * r / (rows - 1);
            const double lon = TAU * c / columns;
            u = 0.5 + 0.5 * Maths::cos(lat) * Maths::sin(lon);
            v = 0.5 - 0.5 * Maths::sin(lat);
        });
}

void SeaBedMeshes::eyelid(MeshBuilder& mesh)
{
    const double radius = 1.06;
    const double reach = Maths::pi * 100.0 / 180.0;
    const int rows = 8;
    const int columns = 15;
    grid(
        mesh, rows, columns, false,
        [&](int r, int c) {
            const double lat = Maths::pi * 0.49 * r / (rows - 1);
            const double lon = -reach + 2.0 * reach * c / (columns - 1);
            return Vec3{radius * Maths::cos(lat) * Maths::sin(lon), radius * Maths::sin(lat),
                        radius * Maths::cos(lat) * Maths::cos(lon)};
        },
        [&](int r, int c, double& u, double& v) {
            u = 0.6 * c / (columns - 1);
            v = 0.3 * r / (rows - 1);
        });
    // The lip along the lid's edge.
    std::vector<Vec3> spine;
    std::vector<double> radii;
    for (int i = 0; i <= 16; ++i) {
        const double lon = -reach + 2.0 * reach * i / 16.0;
        spine.push_back(Vec3{radius * Maths::sin(lon), 0.0, radius * Maths::cos(lon)});
        radii.push_back(0.07 * (0.4 + 0.6 * Maths::sin(Maths::pi * (0.1 + 0.8 * i / 16.0))));
    }
    mesh.tube(spine, radii, 6, -1);
}
