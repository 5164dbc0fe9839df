// The flipper land's content: a height field sampled into smooth Bezier patches, turned and extruded toy meshes, and the pictures.
#include "FlipperLandContent.h"

#include "FlipperLandArt.h"
#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"

#include "math/Color.h"
#include "scene/BezierMesh.h"
#include "texture/Material.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

using namespace FlipperLandLayout;

// A profile point of a turned shape: radius from the y axis, height.
using Profile = std::vector<std::pair<double, double>>;

const double PADDLE_HINGE_RADIUS = 0.5;
const double PADDLE_TIP_RADIUS = 0.25;
const int PADDLE_ARC = 10;
const int TURNED_SIDES = 20;
const int BALL_SIDES = 14;
const int BALL_STACKS = 10;

double bump(double x, double z, double cx, double cz, double width)
{
    const double dx = (x - cx) / width;
    const double dz = (z - cz) / width;
    return Maths::exp(-(dx * dx + dz * dz));
}

// A surface turned about +y from the profile, bottom to top, facing outwards.
void revolve(MeshBuilder& mesh, const Profile& profile, int sides, int material)
{
    mesh.surface(static_cast<int>(profile.size()), sides, true, material, [&](int row, int column) {
        const double a = -2.0 * Maths::pi * column / sides;
        const double r = profile[static_cast<size_t>(row)].first;
        return Vec3{r * Maths::cos(a), profile[static_cast<size_t>(row)].second, r * Maths::sin(a)};
    });
}

Color rgb(double r, double g, double b)
{
    return Color(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b), 1.0f);
}

// A toy's painted plastic: its colour, a little of it in the shade, a white gloss.
Material* plastic(const char* name, const Color& colour, float gloss)
{
    const Color shade(colour.r * 0.35f, colour.g * 0.35f, colour.b * 0.35f, 1.0f);
    return MeshFile::colourMaterial(name, shade, colour, MeshFile::grey(gloss), 40.0f);
}

}  // namespace

double FlipperLandContent::height(double x, double z)
{
    const double square = std::max(std::fabs(x), std::fabs(z)) / HALF_SIZE;
    double h = 4.5 * Maths::smoothstep(0.7, 1.0, square);
    h += 3.6 * bump(x, z, 0.0, 0.0, 6.5);
    for (const Vector3& s : STATIONS)
        h -= 3.2 * bump(x, z, s.x, s.z, 5.0);
    for (int i = 1; i < BUMPER_COUNT; ++i)
        h += 0.7 * bump(x, z, BUMPERS[i].x, BUMPERS[i].z, 3.5);
    for (double cx : {-17.0, 17.0})
        for (double cz : {-17.0, 17.0})
            h += 3.0 * bump(x, z, cx, cz, 5.5);
    return h + 0.25 * Maths::sin(x / 3.7) * Maths::cos(z / 4.3);
}

void FlipperLandContent::buildLand(BezierMesh& mesh)
{
    const int points = PATCHES * 3 + 1;
    const double step = 2.0 * HALF_SIZE / (points - 1);
    auto at = [points](int r, int c) { return static_cast<size_t>(r * points + c); };
    std::vector<double> y(static_cast<size_t>(points * points));
    for (int r = 0; r < points; ++r)
        for (int c = 0; c < points; ++c)
            y[at(r, c)] = height(-HALF_SIZE + step * r, -HALF_SIZE + step * c);
    // A point two patches share sits midway between its neighbours either side: the slopes run
    // on across the seam, and a ball rolls over it without a jolt.
    for (int r = 3; r < points - 1; r += 3)
        for (int c = 0; c < points; ++c)
            y[at(r, c)] = 0.5 * (y[at(r - 1, c)] + y[at(r + 1, c)]);
    for (int c = 3; c < points - 1; c += 3)
        for (int r = 0; r < points; ++r)
            y[at(r, c)] = 0.5 * (y[at(r, c - 1)] + y[at(r, c + 1)]);
    for (int pa = 0; pa < PATCHES; ++pa) {
        for (int pb = 0; pb < PATCHES; ++pb) {
            BezierMesh::Patch patch;
            for (int row = 0; row < 4; ++row) {
                for (int column = 0; column < 4; ++column) {
                    // Rows run along x and columns along z, so the surface faces up.
                    const int r = pa * 3 + row;
                    const int c = pb * 3 + column;
                    patch.points[row * 4 + column] =
                        Vector3(static_cast<float>(-HALF_SIZE + step * r), static_cast<float>(y[at(r, c)]),
                                static_cast<float>(-HALF_SIZE + step * c));
                }
            }
            mesh.addPatch(patch);
        }
    }
}

void FlipperLandContent::buildPaddle(MeshBuilder& mesh)
{
    // The outline: round the hinge's back, along one side, round the tip, back along the other.
    const double shrink = PADDLE_HINGE_RADIUS - PADDLE_TIP_RADIUS;
    const double lean = Maths::atan2(shrink, std::sqrt(PADDLE_LENGTH * PADDLE_LENGTH - shrink * shrink));
    std::vector<Vec3> outline;
    for (int i = 0; i <= PADDLE_ARC; ++i) {
        const double a = 0.5 * Maths::pi + lean + (Maths::pi - 2.0 * lean) * i / PADDLE_ARC;
        outline.push_back(Vec3{PADDLE_HINGE_RADIUS * Maths::cos(a), 0.0, PADDLE_HINGE_RADIUS * Maths::sin(a)});
    }
    for (int i = 0; i <= PADDLE_ARC; ++i) {
        const double a = -0.5 * Maths::pi + lean + (Maths::pi - 2.0 * lean) * i / PADDLE_ARC;
        outline.push_back(
            Vec3{PADDLE_LENGTH + PADDLE_TIP_RADIUS * Maths::cos(a), 0.0, PADDLE_TIP_RADIUS * Maths::sin(a)});
    }
    const Vec3 lift{0.0, PADDLE_THICKNESS, 0.0};
    const Vec3 middle{0.5 * PADDLE_LENGTH, 0.0, 0.0};
    // The red rubber round the edge, its normals smooth round the curve.
    std::vector<int> bottom;
    std::vector<int> top;
    for (const Vec3& p : outline) {
        bottom.push_back(mesh.vertex(p));
        top.push_back(mesh.vertex(p + lift));
    }
    const size_t n = outline.size();
    for (size_t i = 0; i < n; ++i) {
        const size_t j = (i + 1) % n;
        const Vec3 facing = (outline[i] + outline[j]) * 0.5 - middle;
        const Vec3 normal = (outline[j] - outline[i]).cross(lift);
        if (normal.dot(facing) >= 0.0)
            mesh.quad(bottom[i], bottom[j], top[j], top[i], 1);
        else
            mesh.quad(bottom[i], top[i], top[j], bottom[j], 1);
    }
    std::vector<Vec3> lid;
    for (const Vec3& p : outline)
        lid.push_back(p + lift);
    mesh.fanFacing(lid, lift, 0);
    // The pivot's cap on the hinge.
    const double t = PADDLE_THICKNESS;
    revolve(mesh, {{0.3, t}, {0.3, t + 0.12}, {0.22, t + 0.22}, {0.0, t + 0.26}}, 12, 2);
}

void FlipperLandContent::buildBumper(MeshBuilder& mesh)
{
    revolve(mesh, {{1.7, 0.0}, {1.7, 0.1}, {1.6, 0.2}, {0.85, 0.22}}, TURNED_SIDES, 0);
    revolve(mesh, {{0.8, 0.2}, {0.8, 1.15}}, TURNED_SIDES, 1);
}

void FlipperLandContent::buildCap(MeshBuilder& mesh)
{
    revolve(mesh, {{0.75, 1.08}, {1.3, 1.18}, {1.38, 1.33}, {1.22, 1.55}, {0.8, 1.72}, {0.0, 1.8}}, TURNED_SIDES, -1);
}

void FlipperLandContent::buildBall(MeshBuilder& mesh)
{
    Profile profile;
    for (int i = 0; i <= BALL_STACKS; ++i) {
        const double a = -0.5 * Maths::pi + Maths::pi * i / BALL_STACKS;
        profile.push_back({Maths::cos(a), Maths::sin(a)});
    }
    // The poles' radius is exactly 0: their degenerate triangles are dropped.
    profile.front().first = 0.0;
    profile.back().first = 0.0;
    revolve(mesh, profile, BALL_SIDES, -1);
}

bool FlipperLandContent::meshes(Forge& forge) const
{
    MeshBuilder paddle;
    buildPaddle(paddle);
    bool ok = MeshFile::write(
        forge, PADDLE_MESH, paddle, false,
        {plastic("FlipperTop", rgb(1.0, 0.86, 0.1), 0.6f), plastic("FlipperRubber", rgb(0.95, 0.08, 0.12), 0.3f),
         plastic("FlipperPivot", rgb(0.95, 0.95, 1.0), 0.9f)});
    MeshBuilder bumper;
    buildBumper(bumper);
    ok = MeshFile::write(forge, BUMPER_MESH, bumper, false,
                         {plastic("BumperSkirt", rgb(1.0, 0.95, 0.55), 0.5f),
                          plastic("BumperPost", rgb(0.85, 0.88, 0.95), 1.0f)}) &&
         ok;
    MeshBuilder cap;
    buildCap(cap);
    ok = MeshFile::write(forge, CAP_MESH, cap, false, {}) && ok;
    MeshBuilder ball;
    buildBall(ball);
    ok = MeshFile::write(forge, BALL_MESH, ball, false, {}) && ok;
    return ok;
}

bool FlipperLandContent::pictures(Forge& forge) const
{
    const FlipperLandArt art;
    bool ok = forge.savePicture(FIELD, art.field());
    ok = forge.savePicture(SKY, art.sky()) && ok;
    ok = forge.savePicture(SHINE, art.shine()) && ok;
    ok = forge.savePicture(SHADOW, art.shadow()) && ok;
    return ok;
}

std::vector<ForgedFile> FlipperLandContent::files() const
{
    std::vector<ForgedFile> list;
    for (const char* path : {LAND, PADDLE_MESH, BUMPER_MESH, CAP_MESH, BALL_MESH})
        list.push_back(ForgedFile::file(path));
    list.push_back(ForgedFile::picture(FIELD, FlipperLandArt::FIELD_SIZE, FlipperLandArt::FIELD_SIZE));
    list.push_back(ForgedFile::picture(SKY, FlipperLandArt::SKY_SIZE, FlipperLandArt::SKY_SIZE));
    list.push_back(ForgedFile::picture(SHINE, FlipperLandArt::SHINE_SIZE, FlipperLandArt::SHINE_SIZE));
    list.push_back(ForgedFile::picture(SHADOW, FlipperLandArt::SHADOW_SIZE, FlipperLandArt::SHADOW_SIZE));
    return list;
}

bool FlipperLandContent::build(Forge& forge)
{
    BezierMesh land;
    land.setName("FlipperLand");
    buildLand(land);
    bool ok = forge.saveFile(LAND, [&land](const std::string& path) { return land.save(path.c_str()); });
    ok = meshes(forge) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
