// Shapes are functions of the position along the hull, so bow, stern and sheer stay smooth.
#include "ShipMesh.h"

#include "Maths.h"

#include <cmath>

namespace {

const int stations = 28;
const int sectionPoints = 9;
const double length = 6.0;

double stationZ(int i)
{
    return -length * 0.5 + length * i / (stations - 1);
}

}  // namespace

const char* const ShipMesh::materialNames[MaterialCount] = {"ShipMaterial", "ShipDeck", "ShipSail",
                                                            "ShipMast",     "ShipFlag", "ShipTrim"};

double ShipMesh::halfBeam(double t)
{
    if (t < 0.45)
        return 0.8 - 0.24 * Maths::pow((0.45 - t) / 0.45, 2.0);
    const double k = (t - 0.45) / 0.55;
    return 0.8 * std::sqrt(std::fmax(0.0, 1.0 - k * k * k));
}

double ShipMesh::deckHeight(double t)
{
    // A raised stern castle and a bow that sweeps up.
    return 0.5 + 0.35 * Maths::smoothstep(0.2, 0.08, t) + 0.3 * t * t * t;
}

double ShipMesh::keelDepth(double t)
{
    return -0.5 * (1.0 - t * t * t);
}

double ShipMesh::sectionWidth(double s)
{
    if (s <= 0.75)
        return Maths::pow(Maths::sin(s / 0.75 * Maths::pi * 0.5), 0.6);
    const double k = (s - 0.75) / 0.25;
    return 1.0 - 0.1 * k * k;  // tumblehome: the topsides lean in
}

void ShipMesh::hull(MeshBuilder& mesh) const
{
    const double trimStart = 0.86;
    auto point = [](int i, double s, double side) {
        const double t = (double)i / (stations - 1);
        const double keel = keelDepth(t);
        return Vec3{side * halfBeam(t) * sectionWidth(s), keel + (deckHeight(t) - keel) * s, stationZ(i)};
    };
    // Starboard faces +x with rows running to the bow; port runs them the other way.
    for (int side = 0; side < 2; ++side) {
        const double sign = side == 0 ? 1.0 : -1.0;
        auto row = [&](int r) { return side == 0 ? r : stations - 1 - r; };
        mesh.surface(stations, sectionPoints, false, Hull,
                     [&](int r, int c) { return point(row(r), trimStart * c / (sectionPoints - 1), sign); });
        mesh.surface(stations, 2, false, Trim,
                     [&](int r, int c) { return point(row(r), c == 0 ? trimStart : 1.0, sign); });
    }
    // Transom across the stern.
    std::vector<Vec3> transom;
    for (int c = 0; c < sectionPoints; ++c)
        transom.push_back(point(0, (double)c / (sectionPoints - 1), 1.0));
    for (int c = sectionPoints - 1; c >= 0; --c)
        transom.push_back(point(0, (double)c / (sectionPoints - 1), -1.0));
    mesh.fanFacing(transom, Vec3{0.0, 0.0, -1.0}, Hull);
    // The deck sits a little below the gunwale so the sides show as a low rail.
    const double rail = 0.1;
    mesh.surface(stations, 2, false, Deck, [&](int r, int c) {
        const double t = (double)r / (stations - 1);
        const double x = halfBeam(t) * sectionWidth(1.0) * 0.97;
        return Vec3{c == 0 ? x : -x, deckHeight(t) - rail, stationZ(r)};
    });
    // Inside face of the rail.
    for (int side = 0; side < 2; ++side) {
        const double sign = side == 0 ? 1.0 : -1.0;
        mesh.surface(stations, 2, false, Trim, [&](int r, int c) {
            const int i = side == 0 ? stations - 1 - r : r;
            const double t = (double)i / (stations - 1);
            const double x = sign * halfBeam(t) * sectionWidth(1.0) * 0.97;
            return Vec3{x, deckHeight(t) - (c == 0 ? rail : 0.0), stationZ(i)};
        });
    }
}

void ShipMesh::mast(MeshBuilder& mesh, double z, double height, double spread) const
{
    const double t = (z + length * 0.5) / length;
    const double foot = deckHeight(t) - 0.1;
    const double top = foot + height;
    mesh.tube({Vec3{0.0, foot, z}, Vec3{0.0, top, z}}, {0.075, 0.04}, 6, Mast);
    // Three yards; a square sail hangs below each of the upper two and the top one.
    const double levels[3] = {0.32, 0.62, 0.88};
    const double widths[3] = {1.0, 0.8, 0.56};
    double yardY[3];
    for (int k = 0; k < 3; ++k) {
        yardY[k] = foot + height * levels[k];
        const double w = spread * widths[k];
        mesh.tube({Vec3{-w, yardY[k], z + 0.06}, Vec3{w, yardY[k], z + 0.06}}, {0.028, 0.028}, 5, Mast);
    }
    for (int k = 0; k < 3; ++k) {
        const double upper = yardY[k];
        const double lower = k == 0 ? foot + 0.45 : yardY[k - 1] + 0.05;
        const double wTop = spread * widths[k] * 0.96;
        const double wBottom = k == 0 ? wTop * 1.04 : spread * widths[k - 1] * 0.9;
        // Sails belly forward, most in the middle.
        mesh.twoSided(5, 6, Sail, [&](int r, int c) {
            const double v = r / 4.0;
            const double u = c / 5.0;
            const double w = Maths::mix(wTop, wBottom, v);
            const double belly = 0.28 * Maths::sin(Maths::pi * u) * Maths::sin(Maths::pi * (0.15 + 0.85 * v));
            return Vec3{(u * 2.0 - 1.0) * w, Maths::mix(upper - 0.03, lower, v), z + 0.1 + belly};
        });
    }
}

void ShipMesh::rigging(MeshBuilder& mesh) const
{
    mast(mesh, -1.7, 3.0, 0.75);
    mast(mesh, 0.1, 4.3, 1.0);
    mast(mesh, 1.6, 3.7, 0.9);
    // Bowsprit and the jib between its tip and the foremast.
    const double bowY = deckHeight(1.0) - 0.05;
    const Vec3 tip{0.0, bowY + 0.75, length * 0.5 + 1.4};
    mesh.tube({Vec3{0.0, bowY - 0.1, length * 0.5 - 0.6}, tip}, {0.06, 0.03}, 5, Mast);
    const double foreT = (1.6 + length * 0.5) / length;
    const double foreFoot = deckHeight(foreT) - 0.1;
    const Vec3 head{0.0, foreFoot + 3.7 * 0.85, 1.62};
    const Vec3 tack{0.0, bowY + 0.35, length * 0.5 + 0.2};
    mesh.fan({tip, head, tack}, Sail);
    mesh.fan({tip, tack, head}, Sail);
    // A pennant streaming aft from the mainmast.
    const double mainTop = deckHeight((0.1 + length * 0.5) / length) - 0.1 + 4.3;
    const Vec3 a{0.0, mainTop + 0.02, 0.1};
    const Vec3 b{0.0, mainTop - 0.3, 0.1};
    const Vec3 c{0.05, mainTop - 0.12, -0.75};
    mesh.fan({a, b, c}, Flag);
    mesh.fan({a, c, b}, Flag);
}

void ShipMesh::build(MeshBuilder& mesh) const
{
    hull(mesh);
    rigging(mesh);
}
