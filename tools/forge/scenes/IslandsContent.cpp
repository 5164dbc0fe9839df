// The islands' mountains as Bezier patch grids, and the paths of the camera, the ship and the birds.
#include "IslandsContent.h"

#include "BirdMesh.h"
#include "Forge.h"
#include "IslandArt.h"
#include "MeshBuilder.h"
#include "MeshFile.h"
#include "SkyArt.h"

#include "effects/IslandsLayout.h"

#include "scene/BezierMesh.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/MeshAnimation.h"

#include <cmath>
#include <string>
#include <vector>

namespace {

using namespace IslandsLayout;

const double PI = 3.14159265358979;

struct Bump {
    double x;
    double z;
    double height;
    double sigma;
};

// Each mountain (in the order of the scene's list): how far it reaches, the water's level in
// its own frame (minus its offset's y) and the summits. The small summits carry the fire
// plumes, so they stand where the plumes burn.
struct MountainShape {
    double extent;
    double waterLevel;
    Bump bumps[3];
};

const MountainShape SHAPES[MOUNTAIN_COUNT] = {
    {8.0, 0.15, {{-1.0, -5.0, 1.9, 2.2}, {3.0, 2.0, 2.9, 3.0}, {-3.0, 3.0, 1.2, 2.5}}},
    {8.0, 0.15, {{-5.7, 5.4, 2.8, 2.0}, {2.0, -2.0, 3.9, 3.0}, {3.0, 4.0, 1.4, 2.5}}},
    {8.0, 0.15, {{3.0, 3.0, 1.5, 2.2}, {-2.0, -1.0, 3.4, 3.0}, {1.0, -4.0, 1.6, 2.5}}},
    {8.0, 0.15, {{-2.5, -2.0, 1.4, 2.2}, {2.0, 3.0, 2.4, 3.0}, {3.0, -3.0, 1.0, 2.0}}},
    {9.0, 0.3, {{0.0, 0.0, 4.6, 3.5}, {3.0, -2.0, 2.4, 2.5}, {-3.0, 3.0, 1.5, 2.5}}},
    {30.0, -0.5, {{0.0, 0.0, 15.0, 9.0}, {-5.0, 10.0, 9.0, 6.0}, {6.0, -11.0, 10.0, 7.0}}},
};

// The ground sinks this far below the water at a mountain's edge.
const double SEA_FLOOR = 0.8;
// Patches per side of a mountain.
const int PATCHES = 4;

// The ship's course: a half circle round the islands, radius and start angle.
const double COURSE_RADIUS = 34.0;
const double COURSE_START = 0.15 * PI;
const double COURSE_SWEEP = 0.75 * PI;

Vector3 toVector(const double p[3])
{
    return Vector3(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]));
}

}  // namespace

double IslandsContent::mountainExtent(int index)
{
    return SHAPES[index].extent;
}

double IslandsContent::mountainHeight(int index, double x, double z)
{
    const MountainShape& shape = SHAPES[index];
    double h = 0.0;
    for (const Bump& bump : shape.bumps) {
        const double dx = x - bump.x;
        const double dz = z - bump.z;
        h += (bump.height + shape.waterLevel + SEA_FLOOR) *
             std::exp(-(dx * dx + dz * dz) / (2.0 * bump.sigma * bump.sigma));
    }
    // Some ridges, so that the slopes are not glass-smooth.
    const double scale = shape.extent / 8.0;
    h *= 1.0 + 0.08 * std::sin(1.7 * x / scale + 0.6) * std::cos(1.3 * z / scale - 0.4);
    // Flatten towards a round rim so the edge sits under water and the island has no corners.
    const double rx = x / shape.extent;
    const double rz = z / shape.extent;
    const double edge = std::fmax(0.0, 1.0 - (rx * rx + rz * rz));
    return h * edge - SEA_FLOOR;
}

void IslandsContent::buildMountain(int index, BezierMesh& mesh)
{
    const double extent = mountainExtent(index);
    const int points = PATCHES * 3 + 1;
    const double step = 2.0 * extent / (points - 1);
    std::vector<double> y(static_cast<size_t>(points * points));
    for (int r = 0; r < points; ++r)
        for (int c = 0; c < points; ++c)
            y[static_cast<size_t>(r * points + c)] = mountainHeight(index, -extent + step * r, -extent + step * c);
    // A point shared by two patches sits midway between its neighbours on
    // either side, so the slopes run smoothly across and no summit turns into a crease.
    for (int r = 3; r < points - 1; r += 3)
        for (int c = 0; c < points; ++c)
            y[static_cast<size_t>(r * points + c)] =
                0.5 * (y[static_cast<size_t>((r - 1) * points + c)] + y[static_cast<size_t>((r + 1) * points + c)]);
    for (int c = 3; c < points - 1; c += 3)
        for (int r = 0; r < points; ++r)
            y[static_cast<size_t>(r * points + c)] =
                0.5 * (y[static_cast<size_t>(r * points + c - 1)] + y[static_cast<size_t>(r * points + c + 1)]);
    for (int pa = 0; pa < PATCHES; ++pa) {
        for (int pb = 0; pb < PATCHES; ++pb) {
            BezierMesh::Patch patch;
            for (int row = 0; row < 4; ++row) {
                for (int column = 0; column < 4; ++column) {
                    // Rows run along x and columns along z, so the surface faces up.
                    const int r = pa * 3 + row;
                    const int c = pb * 3 + column;
                    patch.points[row * 4 + column] = Vector3(static_cast<float>(-extent + step * r),
                                                             static_cast<float>(y[static_cast<size_t>(r * points + c)]),
                                                             static_cast<float>(-extent + step * c));
                }
            }
            mesh.addPatch(patch);
        }
    }
}

void IslandsContent::shipPosition(double seconds, double out[3])
{
    const double a = COURSE_START + COURSE_SWEEP * seconds / SECONDS;
    out[0] = COURSE_RADIUS * std::cos(a);
    out[1] = 0.0;
    out[2] = COURSE_RADIUS * std::sin(a);
}

bool IslandsContent::mountains(Forge& forge)
{
    bool ok = true;
    for (int i = 0; i < MOUNTAIN_COUNT; ++i) {
        BezierMesh mesh;
        mesh.setName((std::string("Mountain") + std::to_string(i + 1)).c_str());
        mesh.setMaterialName("Sand4");
        buildMountain(i, mesh);
        ok = forge.saveFile(MOUNTAINS[i].file, [&mesh](const std::string& path) { return mesh.save(path.c_str()); }) &&
             ok;
    }
    return ok;
}

bool IslandsContent::shipPath(Forge& forge)
{
    MeshAnimation animation;
    animation.setLabel("Ship");
    animation.setFramesPerSec(static_cast<float>(SHIP_FRAMES_PER_SEC));
    for (int second = 0; second <= SECONDS + 1; ++second) {
        double p[3];
        shipPosition(second, p);
        animation.addMeshPos(second * SHIP_FRAMES_PER_SEC, toVector(p));
    }
    animation.setup();
    return forge.saveFile(SHIP_PATH, [&animation](const std::string& path) { return animation.save(path.c_str()); });
}

bool IslandsContent::cameraPath(Forge& forge)
{
    // The file names the camera it flies; the registry only lends the name here.
    CameraMgr* cameras = CameraMgr::getHandle();
    Camera* camera = new Camera(CAMERA_NAME);
    cameras->add(camera);
    CameraAnimation animation;
    animation.setCamera(CAMERA_NAME);
    animation.setFramesPerSec(static_cast<float>(SHIP_FRAMES_PER_SEC));
    // Every two seconds: behind and outside the ship, looking past it at the islands.
    for (int second = 0; second <= SECONDS + 2; second += 2) {
        double ship[3];
        shipPosition(second, ship);
        const double a = COURSE_START + COURSE_SWEEP * (second - 6.0) / SECONDS;
        const double radius = 52.0 - 10.0 * std::sin(PI * second / SECONDS);
        const double height = 9.0 - 4.0 * std::sin(PI * second / SECONDS);
        const double eye[3] = {radius * std::cos(a), height, radius * std::sin(a)};
        const double look[3] = {ship[0] * 0.75, 1.2, ship[2] * 0.75};
        animation.addCameraPos(second * SHIP_FRAMES_PER_SEC, toVector(eye));
        animation.addTargetPos(second * SHIP_FRAMES_PER_SEC, toVector(look));
    }
    animation.setup();
    const bool ok =
        forge.saveFile(CAMERA_PATH, [&animation](const std::string& path) { return animation.save(path.c_str()); });
    cameras->remove(CAMERA_NAME);
    return ok;
}

bool IslandsContent::birdPath(Forge& forge)
{
    // A lazy loop over the middle of the islands, 20 seconds round, back where it began.
    MeshAnimation animation;
    animation.setLabel("Bird");
    animation.setFramesPerSec(static_cast<float>(BIRD_FRAMES_PER_SEC));
    const int keys = 10;
    const int loopFrames = 20 * BIRD_FRAMES_PER_SEC;
    for (int k = 0; k <= keys; ++k) {
        const double a = 2.0 * PI * k / keys;
        const Vector3 p(static_cast<float>(14.0 * std::cos(a)), static_cast<float>(7.0 + 1.5 * std::sin(2.0 * a)),
                        static_cast<float>(11.0 * std::sin(a)));
        animation.addMeshPos(k * loopFrames / keys, p);
    }
    animation.setup();
    return forge.saveFile(BIRD_PATH, [&animation](const std::string& path) { return animation.save(path.c_str()); });
}

bool IslandsContent::birds(Forge& forge)
{
    bool ok = true;
    // The upstroke pose first, then the downstroke; both drawn with clockwise front faces.
    for (int i = 0; i < 2; ++i) {
        MeshBuilder builder;
        BirdMesh(i == 0).build(builder);
        std::vector<Material*> materials(BirdMesh::MaterialCount);
        materials[BirdMesh::Body] =
            MeshFile::colourMaterial(BirdMesh::materialNames[BirdMesh::Body], MeshFile::grey(0.35f),
                                     Color(0.95f, 0.95f, 0.97f, 1.0f), MeshFile::grey(0.3f), 20.0f);
        materials[BirdMesh::WingTip] =
            MeshFile::colourMaterial(BirdMesh::materialNames[BirdMesh::WingTip], MeshFile::grey(0.1f),
                                     Color(0.25f, 0.25f, 0.28f, 1.0f), MeshFile::grey(0.2f), 20.0f);
        materials[BirdMesh::Beak] =
            MeshFile::colourMaterial(BirdMesh::materialNames[BirdMesh::Beak], Color(0.3f, 0.2f, 0.0f, 1.0f),
                                     Color(0.95f, 0.65f, 0.1f, 1.0f), MeshFile::grey(0.3f), 30.0f);
        ok = MeshFile::write(forge, BIRD_MESHES[i], builder, true, materials) && ok;
    }
    return ok;
}

bool IslandsContent::pictures(Forge& forge)
{
    const IslandArt art;
    bool ok = forge.savePicture(SAND, art.sand());
    ok = forge.savePicture(WATER, art.water()) && ok;
    ok = forge.savePicture(WINDOW, art.window()) && ok;
    SkyArt sky;
    ok = forge.savePicture(SKY, sky.compose()) && ok;
    return ok;
}

std::vector<ForgedFile> IslandsContent::files() const
{
    std::vector<ForgedFile> list;
    for (const Mountain& mountain : MOUNTAINS)
        list.push_back(ForgedFile::file(mountain.file));
    for (const char* path : {CAMERA_PATH, SHIP_PATH, BIRD_PATH, BIRD_MESHES[0], BIRD_MESHES[1]})
        list.push_back(ForgedFile::file(path));
    list.push_back(ForgedFile::picture(SAND, 512, 512));
    list.push_back(ForgedFile::picture(WATER, 256, 256));
    list.push_back(ForgedFile::picture(WINDOW, 256, 256));
    list.push_back(ForgedFile::picture(SKY, SkyArt::width, SkyArt::height));
    return list;
}

bool IslandsContent::build(Forge& forge)
{
    bool ok = mountains(forge);
    ok = shipPath(forge) && ok;
    ok = cameraPath(forge) && ok;
    ok = birdPath(forge) && ok;
    ok = birds(forge) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
