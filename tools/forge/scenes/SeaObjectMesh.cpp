// Organic shapes from simple functions: a folded, curled leaf, a ringed worm, an urchin of cones.
#include "SeaObjectMesh.h"

#include "Maths.h"

#include <cmath>

const char* const SeaObjectMesh::materialNames[MaterialCount] = {"TunnelObject"};

SeaObjectMesh::SeaObjectMesh(Kind kind) : kind(kind) {}

void SeaObjectMesh::leaf(MeshBuilder& mesh) const
{
    mesh.twoSided(16, 7, Shell, [](int r, int c) {
        const double t = r / 15.0;
        const double across = c / 3.0 - 1.0;
        const double width = 0.3 * Maths::pow(Maths::sin(Maths::pi * t), 0.7);
        // Folded along the midrib and curled up at both ends.
        const double y = 0.1 * std::fabs(across) * width / 0.3 + 0.16 * (2.0 * t - 1.0) * (2.0 * t - 1.0);
        return Vec3{across * width, y, t - 0.5};
    });
    mesh.tube({Vec3{0.0, 0.16, -0.5}, Vec3{0.0, 0.1, -0.62}, Vec3{0.0, 0.02, -0.7}}, {0.02, 0.016, 0.012}, 5, Shell);
}

void SeaObjectMesh::worm(MeshBuilder& mesh) const
{
    std::vector<Vec3> spine;
    std::vector<double> radii;
    const int n = 40;
    for (int i = 0; i < n; ++i) {
        const double t = (double)i / (n - 1);
        spine.push_back(Vec3{t - 0.5, 0.06 * Maths::sin(Maths::pi * t), 0.09 * Maths::sin(3.0 * Maths::pi * t)});
        // Ringed segments, tapering to both ends.
        const double taper = Maths::pow(Maths::sin(Maths::pi * (0.04 + 0.92 * t)), 0.5);
        radii.push_back(taper * (0.055 + 0.01 * Maths::cos(2.0 * Maths::pi * 10.0 * t)));
    }
    mesh.tube(spine, radii, 8, Shell);
}

void SeaObjectMesh::spike(MeshBuilder& mesh) const
{
    const double r = 0.22;
    // The lines of longitude run westwards so the sphere faces out.
    mesh.surface(9, 12, true, Shell, [&](int row, int c) {
        const double lat = -Maths::pi * 0.5 + Maths::pi * row / 8.0;
        const double lon = -2.0 * Maths::pi * c / 12.0;
        return Vec3{r * Maths::cos(lat) * Maths::cos(lon), r * Maths::sin(lat), r * Maths::cos(lat) * Maths::sin(lon)};
    });
    // Spines spread evenly over the sphere along a golden-angle spiral.
    const int count = 30;
    const double golden = Maths::pi * (3.0 - std::sqrt(5.0));
    for (int i = 0; i < count; ++i) {
        const double y = 1.0 - 2.0 * (i + 0.5) / count;
        const double ring = std::sqrt(1.0 - y * y);
        const Vec3 d{ring * Maths::cos(golden * i), y, ring * Maths::sin(golden * i)};
        const double reach = 0.42 + 0.12 * Maths::sin(i * 2.3);
        mesh.cone(d * (r * 0.9), d * (r + reach), 0.035, 5, Shell);
    }
}

void SeaObjectMesh::fan(MeshBuilder& mesh) const
{
    mesh.tube({Vec3{-0.15, 0.0, 0.0}, Vec3{0.15, 0.0, 0.0}}, {0.28, 0.28}, 12, Shell);
    mesh.cone(Vec3{0.15, 0.0, 0.0}, Vec3{0.5, 0.0, 0.0}, 0.24, 12, Shell);
    // Four twisted blades in the plane the fan turns in.
    for (int k = 0; k < 4; ++k) {
        const double phi = Maths::pi * 0.5 * k;
        const Vec3 radial{0.0, Maths::cos(phi), Maths::sin(phi)};
        const Vec3 tangent{0.0, -Maths::sin(phi), Maths::cos(phi)};
        mesh.twoSided(8, 4, Shell, [&](int r, int c) {
            const double t = r / 7.0;
            const double reach = 0.22 + 2.0 * t;
            const double twist = (38.0 - 22.0 * t) * Maths::pi / 180.0;
            const double chord = (0.55 - 0.2 * t) * (c / 3.0 - 0.5);
            const Vec3 across = tangent * Maths::cos(twist) + Vec3{1.0, 0.0, 0.0} * Maths::sin(twist);
            return radial * reach + across * chord;
        });
    }
}

void SeaObjectMesh::holder(MeshBuilder& mesh) const
{
    // Bearing behind the hub, a post down to the floor and a round foot.
    mesh.tube({Vec3{-0.65, 0.0, 0.0}, Vec3{-0.16, 0.0, 0.0}}, {0.17, 0.17}, 10, Shell);
    mesh.tube({Vec3{-0.4, 0.0, 0.0}, Vec3{-0.4, -3.5, 0.0}}, {0.12, 0.16}, 8, Shell);
    mesh.tube({Vec3{-0.4, -3.45, 0.0}, Vec3{-0.4, -3.6, 0.0}}, {0.8, 0.85}, 14, Shell);
}

void SeaObjectMesh::build(MeshBuilder& mesh) const
{
    switch (kind) {
        case Leaf:
            leaf(mesh);
            break;
        case Worm:
            worm(mesh);
            break;
        case Spike:
            spike(mesh);
            break;
        case Fan:
            fan(mesh);
            break;
        case FanHolder:
            holder(mesh);
            break;
    }
}
