// The tunnel exit's content: a centre line that sways, then climbs straight towards the surface; the rocky tube
// along it up to the break, one slab of the breaking stretch, the camera's and ship's flights, and the pictures.
#include "TunnelExitContent.h"

#include "CameraPathFile.h"
#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"
#include "Noise.h"
#include "TunnelExitArt.h"

#include "math/Vector3.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"
#include "texture/MaterialMgr.h"
#include "tools/octree/OctreeBuilder.h"

#include <algorithm>
#include <memory>

namespace {

using namespace TunnelExitLayout;

// The climb: level up to CLIMB_FROM, at the full slope from CLIMB_TO on.
const double CLIMB_FROM = 58.0;
const double CLIMB_TO = 76.0;
const double SLOPE = 0.46630765815;  // tan 25 degrees
// The sway dies out before the climb, so the last stretch is straight.
const double SWAY_FADE_FROM = 40.0;
const double SWAY_FADE_TO = 66.0;
const double ARC_STEP = 0.05;
// Flight speeds: in the tube, racing at the hit, and slowing in the light.
const double SPEED_TUBE = 11.0;
const double SPEED_BURST = 26.0;
const double SPEED_LIGHT = 12.0;
const double RACE_FROM = 3.8;
// How far the camera rises after the hit, and how much of its gaze turns to the light.
const double CAMERA_LIFT = 6.0;
const double GAZE_TO_LIGHT = 0.75;
// Rock relief of the tube and the slab, as a share of the radius.
const double ROUGHNESS = 0.16;
const uint32_t RELIEF_SEED = 0xE817u;
// The slab: the cracks left between neighbours, its thickness and its grid.
const double GAP_ANGLE = 0.0105;  // radians on each side: about 0.1 units at the wall
const double GAP_ALONG = 0.06;
const double THICKNESS = 1.6;
const int SLAB_COLUMNS = 5;
const int SLAB_ROWS = 4;

Vec3 toVec3(const Vector3& v)
{
    return Vec3{v.x, v.y, v.z};
}

// The integral of smoothstep(a, b, x) from a to t.
double smoothstepIntegral(double a, double b, double t)
{
    if (t <= a)
        return 0.0;
    if (t >= b)
        return 0.5 * (b - a) + (t - b);
    const double u = (t - a) / (b - a);
    return (b - a) * (u * u * u - 0.5 * u * u * u * u);
}

// The path's key layout, the same for every track of the scene.
bool writePath(const char* file, const char* name, const CameraPathFile::Path& at, const CameraPathFile::Path& look)
{
    return CameraPathFile::write(file, name, SECONDS, TunnelExitContent::FRAMES_PER_SECOND, TunnelExitContent::KEY_STEP,
                                 at, look);
}

// Quads between two matching lines of points, wound to face along `facing`.
void strip(MeshBuilder& mesh, const std::vector<int>& a, const std::vector<int>& b, const std::vector<Vec3>& at,
           const Vec3& facing)
{
    for (size_t i = 0; i + 1 < a.size(); ++i) {
        const Vec3 n = (at[i + 1] - at[i]).cross(at[a.size() + i] - at[i]);
        if (n.dot(facing) >= 0.0)
            mesh.quad(a[i], a[i + 1], b[i + 1], b[i], -1);
        else
            mesh.quad(a[i], b[i], b[i + 1], a[i + 1], -1);
    }
}

}  // namespace

TunnelExitContent::TunnelExitContent()
{
    // Arc lengths from the tube's start; shifted afterwards so the break is at 0.
    const int count = static_cast<int>((BREAK_Z - START_Z) / ARC_STEP) + 1;
    arcs.resize(static_cast<size_t>(count));
    arcs[0] = 0.0;
    for (int i = 1; i < count; ++i) {
        const double z = START_Z + i * ARC_STEP;
        arcs[static_cast<size_t>(i)] = arcs[static_cast<size_t>(i - 1)] + (centre(z) - centre(z - ARC_STEP)).length();
    }
    const double atBreak = arcs.back();
    for (double& a : arcs)
        a -= atBreak;
}

double TunnelExitContent::climb(double z) const
{
    return SLOPE * smoothstepIntegral(CLIMB_FROM, CLIMB_TO, z);
}

double TunnelExitContent::sway(double z) const
{
    return 1.0 - Maths::smoothstep(SWAY_FADE_FROM, SWAY_FADE_TO, z);
}

Vec3 TunnelExitContent::centre(double z) const
{
    const double fade = sway(z);
    return Vec3{3.5 * Maths::sin(z / 19.0) * fade, climb(z) + 1.2 * Maths::sin(z / 13.0) * fade, z};
}

void TunnelExitContent::frame(double z, Vec3& forward, Vec3& side, Vec3& up) const
{
    forward = (centre(z + 0.5) - centre(z - 0.5)).normalised();
    side = forward.cross(Vec3{0.0, 1.0, 0.0}).normalised();
    up = side.cross(forward).normalised();
}

double TunnelExitContent::relief(double z, double theta) const
{
    static const Noise noise(RELIEF_SEED);
    const double around = Maths::wrap(theta, 2.0 * Maths::pi) / (2.0 * Maths::pi);
    const double coarse = noise.fbm(z / 13.0, around * 6.0, 6, 4);
    const double broad = noise.fbm(z / 37.0 + 0.61, around * 3.0, 3, 2);
    const double taper = 1.0 - Maths::smoothstep(BREAK_Z - 12.0, BREAK_Z, z);
    return Maths::clamp(0.7 * coarse + 0.5 * broad, -1.0, 1.0) * taper;
}

double TunnelExitContent::radius(double z, double theta) const
{
    return RADIUS * (1.0 + ROUGHNESS * relief(z, theta));
}

double TunnelExitContent::arcAt(double z) const
{
    const double position = Maths::clamp((z - START_Z) / ARC_STEP, 0.0, static_cast<double>(arcs.size() - 1));
    const size_t i = std::min(static_cast<size_t>(position), arcs.size() - 2);
    const double f = position - static_cast<double>(i);
    return arcs[i] + (arcs[i + 1] - arcs[i]) * f;
}

double TunnelExitContent::zAtArc(double s) const
{
    if (s <= arcs.front())
        return START_Z;
    if (s >= arcs.back())
        return BREAK_Z;
    const size_t hi = static_cast<size_t>(std::upper_bound(arcs.begin(), arcs.end(), s) - arcs.begin());
    const size_t lo = hi - 1;
    const double f = (s - arcs[lo]) / (arcs[hi] - arcs[lo]);
    return START_Z + (static_cast<double>(lo) + f) * ARC_STEP;
}

double TunnelExitContent::clearance(const Vec3& p) const
{
    // The tube never turns far from +z, so the ring through p is near enough the one at its z.
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(p.z, forward, side, up);
    const Vec3 offset = p - centre(p.z);
    const double theta = Maths::atan2(offset.dot(up), offset.dot(side));
    return radius(p.z, theta) - offset.length();
}

Vec3 TunnelExitContent::flight(double s) const
{
    if (s <= 0.0)
        return centre(zAtArc(s));
    return toVec3(BREAK) + toVec3(AXIS) * s;
}

double TunnelExitContent::cameraDistance(double t) const
{
    const double travelled = SPEED_TUBE * t + (SPEED_BURST - SPEED_TUBE) * smoothstepIntegral(RACE_FROM, HIT, t) -
                             (SPEED_BURST - SPEED_LIGHT) * smoothstepIntegral(HIT, SECONDS, t);
    const double atHit = SPEED_TUBE * HIT + (SPEED_BURST - SPEED_TUBE) * smoothstepIntegral(RACE_FROM, HIT, HIT);
    return travelled - atHit - HIT_SHORT_OF_BREAK;
}

Vec3 TunnelExitContent::cameraAt(double t) const
{
    const double s = cameraDistance(t);
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s <= 0.0 ? zAtArc(s) : BREAK_Z, forward, side, up);
    const double lift = CAMERA_LIFT * Maths::smoothstep(HIT + 0.3, SECONDS, t);
    return flight(s) + up * CAMERA_RISE + Vec3{0.0, lift, 0.0};
}

Vec3 TunnelExitContent::targetAt(double t) const
{
    const Vec3 eye = cameraAt(t);
    const Vec3 ahead = flight(cameraDistance(t) + LOOK_AHEAD) + Vec3{0.0, CAMERA_RISE * 0.3, 0.0};
    const Vec3 light = eye + toVec3(LIGHT_DIRECTION) * LOOK_AHEAD;
    const double gaze = GAZE_TO_LIGHT * Maths::smoothstep(HIT - 0.2, HIT + 1.6, t);
    return ahead + (light - ahead) * gaze;
}

Vec3 TunnelExitContent::shipAt(double t) const
{
    const double s = cameraDistance(t) + SHIP_LEAD;
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s <= 0.0 ? zAtArc(s) : BREAK_Z, forward, side, up);
    // Steered from side to side between the rocks; out of the mouth it climbs towards the light.
    const double mouth = RINGS * RING_LENGTH;
    const double rise = s > mouth ? 0.3 * (s - mouth) : 0.0;
    return flight(s) - up * SHIP_DROP + side * (1.2 * Maths::sin(0.9 * t)) + Vec3{0.0, rise, 0.0};
}

void TunnelExitContent::buildTube(MeshBuilder& mesh) const
{
    const int rings = static_cast<int>((BREAK_Z - START_Z) / RING_STEP) + 1;
    const int columns = SIDES + 1;
    const int first = mesh.vertexCount();
    for (int r = 0; r < rings; ++r) {
        const double z = START_Z + r * RING_STEP;
        Vec3 forward;
        Vec3 side;
        Vec3 up;
        frame(z, forward, side, up);
        const Vec3 c = centre(z);
        const double v = arcAt(z) / V_LENGTH;
        // The seam's column is repeated so the texture runs on round it.
        for (int k = 0; k < columns; ++k) {
            const double theta = 2.0 * Maths::pi * k / SIDES;
            const Vec3 out = side * Maths::cos(theta) + up * Maths::sin(theta);
            mesh.vertex(c + out * radius(z, theta), U_REPEAT * k / SIDES, v);
        }
    }
    // Columns run round the ring and rows along the tube, so the surface faces inwards.
    for (int r = 0; r + 1 < rings; ++r)
        for (int k = 0; k < SIDES; ++k) {
            const int a = first + r * columns + k;
            mesh.quad(a, a + 1, a + columns + 1, a + columns, -1);
        }
}

void TunnelExitContent::joinSeam(VertexArray& vertices) const
{
    // The seam's column is there twice for the texture's sake; its normals are one, or the
    // caustics, mapped from the normals, would jump along it.
    const int columns = SIDES + 1;
    for (int first = 0; first + SIDES < vertices.getNumVertices(); first += columns) {
        Vector3 n = vertices[first].normal + vertices[first + SIDES].normal;
        n.normalize();
        vertices[first].normal = n;
        vertices[first + SIDES].normal = n;
    }
}

void TunnelExitContent::buildSlab(MeshBuilder& mesh) const
{
    static const Noise noise(RELIEF_SEED ^ 0x51ABu);
    const double sector = 2.0 * Maths::pi / SECTORS;
    const double from = GAP_ANGLE;
    const double to = sector - GAP_ANGLE;
    // Local frame: x and y span the ring (the angle turns from x to y) and z runs back along the axis,
    // so that the scene places it with a rotation (SIDE, UP, -AXIS) rather than a mirror image.
    auto point = [&](int row, int column, bool inner) {
        const double fu = static_cast<double>(column) / SLAB_COLUMNS;
        const double fv = static_cast<double>(row) / SLAB_ROWS;
        const double theta = from + (to - from) * fu;
        const double along = GAP_ALONG + (RING_LENGTH - 2.0 * GAP_ALONG) * fv;
        // The inner face meets its neighbours and the tube at the plain radius along every edge.
        const double taper = Maths::sin(Maths::pi * fu) * Maths::sin(Maths::pi * fv);
        const double bump = noise.fbm(fu * 2.0, fv * 2.0, 4, 3);
        const double rho = inner ? RADIUS * (1.0 + ROUGHNESS * bump * taper)
                                 : RADIUS + THICKNESS + 0.4 * noise.fbm(fu * 3.0 + 7.0, fv * 3.0, 4, 2);
        Vec3 p{rho * Maths::cos(theta), rho * Maths::sin(theta), -along};
        return std::make_pair(p, std::make_pair(U_REPEAT * theta / (2.0 * Maths::pi), along / V_LENGTH));
    };
    const int columns = SLAB_COLUMNS + 1;
    const int rows = SLAB_ROWS + 1;
    std::vector<Vec3> at;
    std::vector<int> inner;
    std::vector<int> outer;
    for (bool face : {true, false})
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < columns; ++c) {
                const auto p = point(r, c, face);
                (face ? inner : outer).push_back(mesh.vertex(p.first, p.second.first, p.second.second));
                at.push_back(p.first);
            }
    const int n = rows * columns;
    for (int r = 0; r + 1 < rows; ++r)
        for (int c = 0; c + 1 < columns; ++c) {
            const int k = r * columns + c;
            // Inside like the tube; outside mirrored, facing away from the axis.
            mesh.quad(inner[k], inner[k + 1], inner[k + columns + 1], inner[k + columns], -1);
            mesh.quad(outer[k], outer[k + columns], outer[k + columns + 1], outer[k + 1], -1);
        }
    // The four broken edges, each facing away from the slab's middle.
    auto edge = [&](bool alongRows, int fixed) {
        std::vector<int> a;
        std::vector<int> b;
        std::vector<Vec3> points;
        const int count = alongRows ? rows : columns;
        for (int i = 0; i < count; ++i) {
            const int k = alongRows ? i * columns + fixed : fixed * columns + i;
            a.push_back(inner[k]);
            b.push_back(outer[k]);
            points.push_back(at[k]);
        }
        for (int i = 0; i < count; ++i)
            points.push_back(at[n + (alongRows ? i * columns + fixed : fixed * columns + i)]);
        const int middle = (rows / 2) * columns + columns / 2;
        const int k0 = alongRows ? fixed : fixed * columns;
        strip(mesh, a, b, points, at[k0] - at[middle]);
    };
    edge(true, 0);
    edge(true, SLAB_COLUMNS);
    edge(false, 0);
    edge(false, SLAB_ROWS);
}

bool TunnelExitContent::writeTunnel(const char* file) const
{
    MeshBuilder builder;
    buildTube(builder);
    std::unique_ptr<Mesh> mesh(builder.build(false, {}));
    if (!mesh)
        return false;
    joinSeam(*mesh->getVertices());
    // The walls take the scene's material when drawn: the file carries none.
    MaterialMgr::getHandle()->shutdown();
    OctreeBuilder octree;
    octree.setMaxDepth(4);
    octree.setMaxFacesPerLeaf(300);
    return octree.write(*mesh->getVertices(), *mesh->getFaces(), file);
}

bool TunnelExitContent::writeCamera(const char* file) const
{
    return writePath(
        file, CAMERA_NAME, [this](double t) { return cameraAt(t); }, [this](double t) { return targetAt(t); });
}

bool TunnelExitContent::writeShip(const char* file) const
{
    return writePath(
        file, "ship", [this](double t) { return shipAt(t); }, nullptr);
}

bool TunnelExitContent::pictures(Forge& forge) const
{
    const TunnelExitArt art;
    bool ok = forge.savePicture(ROCK, art.rock());
    ok = forge.savePicture(CAUSTICS, art.caustics()) && ok;
    ok = forge.savePicture(LIGHT, art.light()) && ok;
    ok = forge.savePicture(RAY, art.ray()) && ok;
    return ok;
}

std::vector<ForgedFile> TunnelExitContent::files() const
{
    std::vector<ForgedFile> list;
    for (const char* path : {OCTREE, CAMERA_PATH, SHIP_PATH, SLAB_MESH})
        list.push_back(ForgedFile::file(path));
    for (const TextureFile& picture : {ROCK, CAUSTICS, LIGHT})
        list.push_back(ForgedFile::picture(picture, TunnelExitArt::SIZE, TunnelExitArt::SIZE));
    list.push_back(ForgedFile::picture(RAY, TunnelExitArt::RAY_SIZE, TunnelExitArt::RAY_SIZE));
    return list;
}

bool TunnelExitContent::build(Forge& forge)
{
    bool ok = forge.saveFile(OCTREE, [&](const std::string& path) { return writeTunnel(path.c_str()); });
    ok = forge.saveFile(CAMERA_PATH, [&](const std::string& path) { return writeCamera(path.c_str()); }) && ok;
    ok = forge.saveFile(SHIP_PATH, [&](const std::string& path) { return writeShip(path.c_str()); }) && ok;
    MeshBuilder slab;
    buildSlab(slab);
    ok = MeshFile::write(forge, SLAB_MESH, slab, false, {}) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
