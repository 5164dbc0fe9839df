// The underwater tunnel's content: a Catmull-Rom centre line through fixed waypoints, a rocky tube around it,
// and the camera and ship flying along it, written as an octree and two animation paths.
#include "TunnelContent.h"

#include "CameraPathFile.h"
#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"
#include "Noise.h"
#include "SeaObjectMesh.h"
#include "TunnelArt.h"

#include "math/Vector3.h"
#include "scene/Mesh.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"
#include "tools/octree/OctreeBuilder.h"

#include <memory>

namespace {

// The tunnel winds through these, from its mouth to beyond the fan. The scene's objects and
// glows stand at fixed places beside them: the spike near the third, the leaf and two white
// glows near the sixth, the worm near the eighth, the magenta, yellow and cyan glows in the
// chamber at the ninth, a white glow near the twelfth and the fan at the fourteenth.
const Vec3 WAYPOINTS[] = {
    {-300.0, -196.0, 28.0}, {-258.0, -196.0, 24.0}, {-215.0, -197.0, 19.0}, {-187.0, -196.0, 6.0},
    {-160.0, -191.0, -6.0}, {-135.0, -195.0, 1.0},  {-90.0, -206.0, -12.0}, {-40.0, -195.0, -5.0},
    {5.0, -198.0, 3.0},     {55.0, -212.0, 16.0},   {108.0, -233.0, 32.0},  {158.0, -240.0, 20.0},
    {205.0, -245.0, 42.0},  {248.0, -242.0, 57.0},  {290.0, -242.0, 57.0},  {320.0, -242.0, 55.0},
};
const int WAYPOINT_COUNT = sizeof(WAYPOINTS) / sizeof(WAYPOINTS[0]);
const int SAMPLES_PER_SPAN = 96;
// The camera starts here along x and stops short of the fan, which turns ahead at the end.
const double CAMERA_START_X = -262.0;
const double CAMERA_END_X = 238.0;
const Vector3& FAN_HUB_POINT = TunnelLayout::OBJECT_POSITIONS[TunnelLayout::FAN];
const Vec3 FAN_HUB = {FAN_HUB_POINT.x, FAN_HUB_POINT.y, FAN_HUB_POINT.z};
// How far to the side the ship steers to pass the fan.
const double FAN_PASS = 4.0;
const double CHAMBER_X = 5.0;
const double FAN_X = FAN_HUB.x;
const uint32_t RELIEF_SEED = 0x7c3a91u;

Vec3 catmullRom(const Vec3& p0, const Vec3& p1, const Vec3& p2, const Vec3& p3, double t)
{
    const double t2 = t * t;
    const double t3 = t2 * t;
    return (p1 * 2.0 + (p2 - p0) * t + (p0 * 2.0 - p1 * 5.0 + p2 * 4.0 - p3) * t2 +
            (p1 * 3.0 - p0 - p2 * 3.0 + p3) * t3) *
           0.5;
}

double bell(double x, double centre, double width)
{
    const double d = (x - centre) / width;
    return Maths::exp(-d * d);
}

// The curve through every waypoint: ends are extended by mirroring, so it runs through the first and last.
Polyline centreLine()
{
    Polyline line(WAYPOINTS[0]);
    for (int i = 0; i + 1 < WAYPOINT_COUNT; ++i) {
        const Vec3& p1 = WAYPOINTS[i];
        const Vec3& p2 = WAYPOINTS[i + 1];
        const Vec3 p0 = i > 0 ? WAYPOINTS[i - 1] : p1 * 2.0 - p2;
        const Vec3 p3 = i + 2 < WAYPOINT_COUNT ? WAYPOINTS[i + 2] : p2 * 2.0 - p1;
        for (int k = i > 0 ? 0 : 1; k < SAMPLES_PER_SPAN; ++k)
            line.add(catmullRom(p0, p1, p2, p3, static_cast<double>(k) / SAMPLES_PER_SPAN));
    }
    line.add(WAYPOINTS[WAYPOINT_COUNT - 1]);
    return line;
}

// The path's key layout, the same for every track of the scene.
bool writePath(const char* file, const char* name, const CameraPathFile::Path& at, const CameraPathFile::Path& look)
{
    return CameraPathFile::write(file, name, TunnelContent::SECONDS, TunnelContent::FRAMES_PER_SECOND,
                                 TunnelContent::KEY_STEP, at, look);
}

}  // namespace

TunnelContent::TunnelContent() : line(centreLine()), pathStart(0.0), pathEnd(0.0)
{
    for (size_t i = 0; i < line.size(); ++i) {
        if (line.point(i).x <= CAMERA_START_X)
            pathStart = line.distance(i);
        if (line.point(i).x <= CAMERA_END_X)
            pathEnd = line.distance(i);
    }
}

Vec3 TunnelContent::centre(double s) const
{
    return line.at(s);
}

void TunnelContent::frame(double s, Vec3& forward, Vec3& side, Vec3& up) const
{
    forward = (centre(s + 0.5) - centre(s - 0.5)).normalised();
    // The tunnel never runs straight up, so world up always gives a side.
    side = forward.cross(Vec3{0.0, 1.0, 0.0}).normalised();
    up = side.cross(forward).normalised();
}

double TunnelContent::baseRadius(const Vec3& c) const
{
    // A wide chamber for the three coloured glows, narrower round the fan.
    return 9.5 + 5.0 * bell(c.x, CHAMBER_X, 24.0) - 1.6 * bell(c.x, FAN_X, 20.0);
}

double TunnelContent::roughness(const Vec3& c) const
{
    return 0.17 * (1.0 - 0.85 * bell(c.x, FAN_X, 18.0));
}

double TunnelContent::relief(double s, double theta) const
{
    static const Noise noise(RELIEF_SEED);
    const double around = Maths::wrap(theta, 2.0 * Maths::pi) / (2.0 * Maths::pi);
    // Two tiling layers of different lengths, so the rock does not visibly repeat.
    const double coarse = noise.fbm(s / 14.0, around * 6.0, 6, 4);
    const double broad = noise.fbm(s / 41.0 + 0.37, around * 3.0, 3, 2);
    return Maths::clamp(0.7 * coarse + 0.5 * broad, -1.0, 1.0);
}

double TunnelContent::radius(double s, double theta) const
{
    const Vec3 c = centre(s);
    return baseRadius(c) * (1.0 + roughness(c) * relief(s, theta));
}

Vec3 TunnelContent::wall(double s, double theta) const
{
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s, forward, side, up);
    const Vec3 out = side * Maths::cos(theta) + up * Maths::sin(theta);
    return centre(s) + out * radius(s, theta);
}

double TunnelContent::nearest(const Vec3& p) const
{
    return line.nearest(p);
}

double TunnelContent::clearance(const Vec3& p) const
{
    const double s = nearest(p);
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s, forward, side, up);
    const Vec3 offset = p - centre(s);
    const double theta = Maths::atan2(offset.dot(up), offset.dot(side));
    return radius(s, theta) - offset.length();
}

double TunnelContent::cameraDistance(double t) const
{
    return pathStart + (pathEnd - pathStart) * Maths::clamp(t / SECONDS, 0.0, 1.0);
}

Vec3 TunnelContent::cameraAt(double t) const
{
    const double s = cameraDistance(t);
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s, forward, side, up);
    return centre(s) + up * CAMERA_RISE;
}

Vec3 TunnelContent::targetAt(double t) const
{
    const double s = cameraDistance(t) + LOOK_AHEAD;
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s, forward, side, up);
    const Vec3 ahead = centre(s) + up * (CAMERA_RISE * 0.3);
    // The last seconds look down at the fan turning below the way on.
    const double towardsFan = 0.8 * Maths::smoothstep(SECONDS - 9.0, SECONDS - 3.0, t);
    return ahead + (FAN_HUB - ahead) * towardsFan;
}

Vec3 TunnelContent::shipAt(double t) const
{
    const double s = cameraDistance(t) + SHIP_LEAD;
    Vec3 forward;
    Vec3 side;
    Vec3 up;
    frame(s, forward, side, up);
    // A slow sway from side to side, as if the ship were steered between the rocks; at the
    // end it keeps to one side, to pass the fan turning in the middle of the tunnel.
    const double sway = 1.2 * Maths::sin(t * 0.9) + FAN_PASS * Maths::smoothstep(SECONDS - 6.0, SECONDS - 1.0, t);
    return centre(s) - up * SHIP_DROP + side * sway;
}

void TunnelContent::buildTube(MeshBuilder& mesh) const
{
    const int rings = static_cast<int>(length() / RING_STEP) + 1;
    const double step = length() / (rings - 1);
    // Columns run round the ring and rows along the tunnel, so the surface faces inwards.
    mesh.surface(rings, SIDES, true, -1,
                 [&](int row, int column) { return wall(row * step, 2.0 * Maths::pi * column / SIDES); });
}

bool TunnelContent::writeTunnel(const char* file) const
{
    MeshBuilder builder;
    buildTube(builder);
    std::unique_ptr<Mesh> mesh(builder.build(false, {}));
    if (!mesh)
        return false;
    // The walls take the scene's material when drawn: the file carries none.
    MaterialMgr::getHandle()->shutdown();
    OctreeBuilder octree;
    octree.setMaxDepth(5);
    octree.setMaxFacesPerLeaf(400);
    return octree.write(*mesh->getVertices(), *mesh->getFaces(), file);
}

bool TunnelContent::writeCamera(const char* file) const
{
    return writePath(
        file, TunnelLayout::CAMERA_NAME, [this](double t) { return cameraAt(t); },
        [this](double t) { return targetAt(t); });
}

bool TunnelContent::writeShip(const char* file) const
{
    return writePath(
        file, "ship", [this](double t) { return shipAt(t); }, nullptr);
}

bool TunnelContent::objects(Forge& forge)
{
    // The meshes name the reflection map in their material: only its name and format are written.
    Texture reflection(TunnelLayout::REFLECTION.file, 1, 1, 24, TunnelLayout::REFLECTION.format,
                       new unsigned char[3]{0, 0, 0});
    bool ok = true;
    for (int i = 0; i < TunnelLayout::OBJECT_COUNT; ++i) {
        MeshBuilder builder;
        SeaObjectMesh(static_cast<SeaObjectMesh::Kind>(i)).build(builder);
        TextureMaterial* shell = new TextureMaterial(SeaObjectMesh::materialNames[SeaObjectMesh::Shell]);
        shell->setTexture(&reflection);
        shell->setFlags(Material::reflective);
        shell->setBlendMode(Material::blendNone);
        shell->setAmbient(MeshFile::grey(1.0f));
        shell->setDiffuse(MeshFile::grey(1.0f));
        ok = MeshFile::write(forge, TunnelLayout::OBJECT_FILES[i], builder, false, {shell}) && ok;
    }
    return ok;
}

bool TunnelContent::pictures(Forge& forge)
{
    const TunnelArt art;
    bool ok = forge.savePicture(TunnelLayout::ROCK, art.rock());
    ok = forge.savePicture(TunnelLayout::CAUSTICS, art.caustics()) && ok;
    ok = forge.savePicture(TunnelLayout::REFLECTION, art.reflection()) && ok;
    return ok;
}

std::vector<ForgedFile> TunnelContent::files() const
{
    std::vector<ForgedFile> list;
    for (const char* path : {TunnelLayout::OCTREE, TunnelLayout::CAMERA_PATH, TunnelLayout::SHIP_PATH})
        list.push_back(ForgedFile::file(path));
    for (const char* path : TunnelLayout::OBJECT_FILES)
        list.push_back(ForgedFile::file(path));
    for (const TextureFile& picture : {TunnelLayout::ROCK, TunnelLayout::CAUSTICS, TunnelLayout::REFLECTION})
        list.push_back(ForgedFile::picture(picture, 256, 256));
    return list;
}

bool TunnelContent::build(Forge& forge)
{
    using namespace TunnelLayout;
    bool ok = forge.saveFile(OCTREE, [&](const std::string& path) { return writeTunnel(path.c_str()); });
    ok = forge.saveFile(CAMERA_PATH, [&](const std::string& path) { return writeCamera(path.c_str()); }) && ok;
    ok = forge.saveFile(SHIP_PATH, [&](const std::string& path) { return writeShip(path.c_str()); }) && ok;
    ok = objects(forge) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
