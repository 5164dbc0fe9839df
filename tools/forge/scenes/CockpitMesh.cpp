// The cockpit is built in the pilot's own space (eye at the origin), so what the layout says of the dashboard and
// its screens is also where the scene draws the displays.
#include "CockpitMesh.h"

#include "effects/CockpitLayout.h"

namespace {

using namespace CockpitLayout;

const uint64_t SEED = 0xc0c4b17ull;
const double BEZEL = 0.025;
const double BEZEL_HEIGHT = 0.012;

Vec3 vec(const Vector3& v)
{
    return Vec3{v.x, v.y, v.z};
}

}  // namespace

CockpitMesh::CockpitMesh(MeshBuilder& mesh) : plates(mesh, PANEL_SCALE, SEED) {}

void CockpitMesh::beam(const Vec3& a, const Vec3& b, const Vec3& facing, double width, double depth, int material)
{
    const Vec3 u = (b - a).normalised();
    const Vec3 n = (facing - u * facing.dot(u)).normalised();
    const Vec3 v = n.cross(u);
    const Frame f{a, u, v, n};
    plates.box(f, 0.0, (b - a).length(), -width * 0.5, width * 0.5, -depth, 0.0, material);
}

void CockpitMesh::dashboard()
{
    const Vec3 slope = vec(DASH_SLOPE);
    const double length = slope.length();
    const Vec3 up = slope.normalised();
    const Vec3 normal = Vec3{1.0, 0.0, 0.0}.cross(up).normalised();
    const Frame dash{vec(DASH_BOTTOM), Vec3{1.0, 0.0, 0.0}, up, normal};
    // The instrument picture covers the whole slope, its top row under the window.
    plates.decal(dash, -DASH_HALF_WIDTH, DASH_HALF_WIDTH, 0.0, length, 0.0, 0.0, 1.0, 1.0, 0.0, FRAME_INSTRUMENTS);
    for (const auto& edges : SCREEN_EDGES) {
        const double x0 = edges[0], x1 = edges[1];
        const double v0 = SCREEN_LOW * length, v1 = SCREEN_HIGH * length;
        plates.box(dash, x0 - BEZEL, x1 + BEZEL, v1, v1 + BEZEL, 0.0, BEZEL_HEIGHT, FRAME_TRIM);
        plates.box(dash, x0 - BEZEL, x1 + BEZEL, v0 - BEZEL, v0, 0.0, BEZEL_HEIGHT, FRAME_TRIM);
        plates.box(dash, x0 - BEZEL, x0, v0, v1, 0.0, BEZEL_HEIGHT, FRAME_TRIM);
        plates.box(dash, x1, x1 + BEZEL, v0, v1, 0.0, BEZEL_HEIGHT, FRAME_TRIM);
    }
    // The padded near edge, and the panel under it.
    plates.box(dash, -DASH_HALF_WIDTH, DASH_HALF_WIDTH, -0.07, 0.0, -0.02, 0.035, FRAME_TRIM);
    const Frame front{vec(DASH_BOTTOM) + Vec3{0.0, -0.02, 0.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, -1.0, 0.0},
                      Vec3{0.0, 0.0, 1.0}};
    plates.plate(front, -DASH_HALF_WIDTH, DASH_HALF_WIDTH, 0.0, 0.6, 0.0, FRAME_METAL);
    // The glare shield along the far edge, under the window.
    const Vec3 far = vec(DASH_BOTTOM) + slope;
    const Frame shield{far, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 0.0, -1.0}, Vec3{0.0, 1.0, 0.0}};
    plates.box(shield, -DASH_HALF_WIDTH, DASH_HALF_WIDTH, -0.03, 0.2, -0.05, 0.03, FRAME_TRIM);
}

void CockpitMesh::window()
{
    for (double side : {-1.0, 1.0}) {
        // Pillars lean in towards the roof; thin mullions split the glass in three.
        const Vec3 foot{side * 1.6, SILL_Y, WINDOW_Z + 0.07};
        const Vec3 head{side * 1.2, BEAM_Y, WINDOW_Z - 0.05};
        beam(foot, head, Vec3{-side * 0.3, 0.0, 1.0}, 0.2, 0.14, FRAME_METAL);
        beam(Vec3{side * 0.62, SILL_Y, WINDOW_Z}, Vec3{side * 0.55, BEAM_Y, WINDOW_Z - 0.04}, Vec3{0.0, 0.0, 1.0},
             0.045, 0.05, FRAME_TRIM);
        // The side wall runs back from the pillar.
        const Vec3 wall[4] = {foot + Vec3{side * 0.1, 0.0, 0.0}, head + Vec3{side * 0.1, 0.0, 0.0},
                              Vec3{side * 1.75, BEAM_Y, -0.9}, Vec3{side * 2.05, SILL_Y, -0.9}};
        const double st[4][2] = {{0.0, 0.0}, {0.0, 1.9}, {1.9, 1.9}, {1.9, 0.0}};
        plates.face(wall, Vec3{-side, 0.0, 0.3}, st, FRAME_METAL);
        const Vec3 lower[4] = {wall[0], wall[3], Vec3{side * 2.05, -1.4, -0.9}, Vec3{side * 1.6, -1.4, WINDOW_Z}};
        plates.face(lower, Vec3{-side, 0.0, 0.3}, st, FRAME_METAL);
    }
    const Frame across{Vec3{0.0, BEAM_Y, WINDOW_Z}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}};
    plates.box(across, -1.9, 1.9, 0.0, 0.28, -0.1, 0.1, FRAME_METAL);
}

void CockpitMesh::roof()
{
    // The roof climbs back over the pilot; a console hangs from the beam with its lamps facing down and back.
    const double st[4][2] = {{0.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}, {0.0, 2.0}};
    const Vec3 roof[4] = {Vec3{-1.9, BEAM_Y + 0.28, WINDOW_Z + 0.1}, Vec3{1.9, BEAM_Y + 0.28, WINDOW_Z + 0.1},
                          Vec3{1.9, BEAM_Y + 0.55, -0.4}, Vec3{-1.9, BEAM_Y + 0.55, -0.4}};
    plates.face(roof, Vec3{0.0, -1.0, 0.2}, st, FRAME_METAL);
    const Frame hanging{Vec3{0.0, BEAM_Y, WINDOW_Z + 0.1}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0},
                        Vec3{0.0, -1.0, 0.0}};
    plates.box(hanging, -0.4, 0.4, 0.0, 0.3, 0.0, 0.09, FRAME_TRIM);
    const Frame lamps{Vec3{0.0, BEAM_Y - 0.09, WINDOW_Z + 0.4}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0},
                      Vec3{0.0, 0.0, 1.0}};
    // The lamps are the instrument picture's top rows.
    plates.decal(lamps, -0.38, 0.38, 0.005, 0.085, 0.002, 0.3, 0.1, 0.7, 0.0, FRAME_INSTRUMENTS);
}

void CockpitMesh::build()
{
    dashboard();
    window();
    roof();
}
