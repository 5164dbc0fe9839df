// The sea bed's content: the floor sampled onto the terrain grid, the dive and the swim through timed waypoints, the meshes and pictures.
#include "SeaBedContent.h"

#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"
#include "Noise.h"
#include "SeaBedArt.h"
#include "SeaBedMeshes.h"

#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Lin3Track.h"
#include "scene/MeshAnimation.h"
#include "scene/Terrain.h"
#include "scene/Track.h"

#include <cmath>
#include <string>

namespace {

using namespace SeaBedLayout;

struct Waypoint {
    double t;
    Vec3 p;
};

// The dive: up under the bright surface, down through the shafts to the sand, along it past
// the kelp, then up to the eye in the rock face and down into the cave beneath it.
const Waypoint CAMERA[] = {
    {0.0, {8.0, 57.0, 112.0}},  {2.5, {7.0, 52.0, 106.0}},  {5.0, {4.0, 36.0, 94.0}},   {8.0, {0.0, 18.0, 79.0}},
    {11.0, {-4.0, 8.0, 60.0}},  {14.0, {-3.0, 6.0, 38.0}},  {17.0, {2.0, 6.0, 14.0}},   {20.0, {3.0, 7.0, -14.0}},
    {23.0, {5.0, 11.0, -44.0}}, {26.0, {7.0, 14.0, -58.0}}, {28.5, {5.0, 12.0, -65.0}}, {30.5, {3.0, 8.0, -73.0}},
    {31.8, {1.0, 5.5, -84.0}},  {32.6, {0.3, 4.6, -93.0}},  {33.0, {0.0, 4.4, -100.0}}, {34.0, {0.0, 4.0, -116.0}},
};
const Vec3 EYE{EYE_CENTRE.x, EYE_CENTRE.y, EYE_CENTRE.z};
const Waypoint TARGET[] = {
    {0.0, {6.0, 75.0, 85.0}},    {2.5, {4.0, 52.0, 80.0}},
    {5.0, {0.0, 10.0, 55.0}},    {8.0, {-3.0, 4.0, 45.0}},
    {11.0, {-2.0, 5.0, 30.0}},   {14.0, {2.0, 6.0, 10.0}},
    {17.0, {2.0, 6.0, -15.0}},   {20.0, {3.0, 9.0, -45.0}},
    {23.0, {11.0, 15.0, -88.0}}, {26.0, EYE},
    {28.5, {11.0, 15.0, -91.0}}, {30.5, {5.0, 9.5, -92.0}},
    {31.8, {0.0, 4.5, -110.0}},  {32.6, {0.0, 4.3, -125.0}},
    {33.0, {0.0, 4.2, -132.0}},  {34.0, {0.0, 4.0, -150.0}},
};
// The school crosses ahead of the camera on the sand, sweeps back across the way, and passes the rock face.
const Waypoint SCHOOL[] = {
    {0.0, {36.0, 28.0, 84.0}},   {4.0, {18.0, 21.0, 70.0}},   {8.0, {20.0, 12.0, 48.0}},    {11.0, {20.0, 8.0, 27.0}},
    {13.0, {6.0, 7.0, 16.0}},    {17.0, {-18.0, 8.0, 6.0}},   {21.0, {-22.0, 10.0, -20.0}}, {24.0, {-6.0, 12.0, -42.0}},
    {27.0, {14.0, 15.0, -58.0}}, {30.0, {30.0, 18.0, -70.0}}, {33.0, {46.0, 19.0, -78.0}},  {35.0, {56.0, 20.0, -80.0}},
};

template <size_t N>
Vec3 follow(const Waypoint (&keys)[N], double t)
{
    // Cubic Hermite with Catmull-Rom slopes taken over time, so uneven gaps between waypoints
    // do not jerk the speed.
    if (t <= keys[0].t)
        return keys[0].p;
    if (t >= keys[N - 1].t)
        return keys[N - 1].p;
    size_t i = 0;
    while (keys[i + 1].t < t)
        ++i;
    auto slope = [&](size_t k) {
        const size_t a = k > 0 ? k - 1 : k;
        const size_t b = k + 1 < N ? k + 1 : k;
        return (keys[b].p - keys[a].p) * (1.0 / (keys[b].t - keys[a].t));
    };
    const double h = keys[i + 1].t - keys[i].t;
    const double s = (t - keys[i].t) / h;
    const double s2 = s * s;
    const double s3 = s2 * s;
    return keys[i].p * (2.0 * s3 - 3.0 * s2 + 1.0) + slope(i) * (h * (s3 - 2.0 * s2 + s)) +
           keys[i + 1].p * (-2.0 * s3 + 3.0 * s2) + slope(i + 1) * (h * (s3 - s2));
}

Vector3 toVector(const Vec3& v)
{
    return Vector3(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

// Open tracks: the paths end where they end rather than bending back to their start.
void openTracks(Lin3Track* a, Lin3Track* b)
{
    for (Lin3Track* track : {a, b}) {
        if (track)
            track->setFlags(0);
    }
}

// Frames of the scene, one key every KEY_STEP, and one step beyond the end.
int lastKeyFrame()
{
    return static_cast<int>(SeaBedContent::SECONDS * SeaBedContent::FRAMES_PER_SECOND) + SeaBedContent::KEY_STEP;
}

}  // namespace

double SeaBedContent::floorHeight(double x, double z)
{
    static const Noise noise(0x5EAB3Du);
    // Rolling ground and, across the way, dunes with soft backs and steeper lee sides.
    const double rolling = 1.6 * noise.fbm(x / 40.0 + 64.0, z / 40.0 + 64.0, 64, 4);
    const double warp = 7.0 * noise.fbm(x / 60.0 + 16.0, z / 60.0, 64, 3);
    const double wave = Maths::wrap((z + 0.35 * x + warp) / 11.0, 1.0);
    const double crest = wave < 0.75 ? wave / 0.75 : (1.0 - wave) / 0.25;
    const double dunes =
        1.5 * Maths::smoothstep(0.0, 1.0, crest) * (0.6 + 0.4 * noise.fbm(x / 30.0, z / 30.0 + 9.0, 64, 2));
    // Low hills close the view far out to either side.
    const double sides = 7.0 * Maths::smoothstep(55.0, 120.0, std::fabs(x));
    double h = rolling + dunes + sides - 0.8;
    // Sand settles into a scoop before the cave.
    const double mouth = Maths::exp(-(x * x) / 120.0 - (z - CLIFF_Z - 6.0) * (z - CLIFF_Z - 6.0) / 90.0);
    h = Maths::mix(h, -0.6, mouth);
    // Behind the rock face the ground rises to a bank, except where the cave runs under it.
    // Under the cave the sand drops away below the cave's own floor.
    const double trench = 1.0 - Maths::smoothstep(CAVE_WIDTH + 3.0, CAVE_WIDTH + 8.0, std::fabs(x));
    h = Maths::mix(h, -4.0, trench * Maths::smoothstep(CLIFF_Z + 1.0, CLIFF_Z - 1.0, z));
    const double behind = Maths::smoothstep(CLIFF_Z - 13.0, CLIFF_Z - 20.0, z);
    return Maths::mix(h, Maths::mix(44.0, -4.0, trench), behind);
}

Vec3 SeaBedContent::cameraAt(double t)
{
    Vec3 p = follow(CAMERA, t);
    // Over the sand the camera never dips below its clearance; the cave's floor lies lower.
    if (p.z > CLIFF_Z + 4.0)
        p.y = std::fmax(p.y, floorHeight(p.x, p.z) + CAMERA_CLEARANCE);
    return p;
}

Vec3 SeaBedContent::targetAt(double t)
{
    return follow(TARGET, t);
}

Vec3 SeaBedContent::schoolAt(double t)
{
    return follow(SCHOOL, t);
}

bool SeaBedContent::writeTerrain(const char* file)
{
    Terrain terrain("SeaBed");
    const Vector3 origin(TERRAIN_ORIGIN, 0.0f, TERRAIN_ORIGIN);
    if (!terrain.create(TERRAIN_SIDE, TERRAIN_SIDE, origin, TERRAIN_SPACING, TERRAIN_SPACING, SAND_SCALE))
        return false;
    for (int r = 0; r < TERRAIN_SIDE; ++r) {
        for (int c = 0; c < TERRAIN_SIDE; ++c) {
            const double x = TERRAIN_ORIGIN + c * TERRAIN_SPACING;
            const double z = TERRAIN_ORIGIN + r * TERRAIN_SPACING;
            terrain.setHeight(c, r, static_cast<float>(floorHeight(x, z)));
        }
    }
    return terrain.save(file);
}

bool SeaBedContent::writeCamera(const char* file)
{
    // The file names the camera it flies; the registry only lends the name here.
    CameraMgr* cameras = CameraMgr::getHandle();
    cameras->add(new Camera(CAMERA_NAME));
    CameraAnimation animation;
    animation.setCamera(CAMERA_NAME);
    animation.setFramesPerSec(static_cast<float>(FRAMES_PER_SECOND));
    for (int frame = 0; frame <= lastKeyFrame(); frame += KEY_STEP) {
        const double t = frame / FRAMES_PER_SECOND;
        animation.addCameraPos(frame, toVector(cameraAt(t)));
        animation.addTargetPos(frame, toVector(targetAt(t)));
    }
    openTracks(animation.getPositionTrack(), animation.getTargetTrack());
    animation.setup();
    const bool ok = animation.save(file);
    cameras->remove(CAMERA_NAME);
    return ok;
}

bool SeaBedContent::writeSchool(const char* file)
{
    MeshAnimation animation;
    animation.setLabel("School");
    animation.setFramesPerSec(static_cast<float>(FRAMES_PER_SECOND));
    for (int frame = 0; frame <= lastKeyFrame(); frame += KEY_STEP)
        animation.addMeshPos(frame, toVector(schoolAt(frame / FRAMES_PER_SECOND)));
    openTracks(animation.getPositionTrack(), nullptr);
    animation.setup();
    return animation.save(file);
}

bool SeaBedContent::meshes(Forge& forge)
{
    // The files carry no materials: the scene dresses each mesh with its own.
    auto write = [&](const char* path, const std::function<void(MeshBuilder&)>& make) {
        MeshBuilder builder;
        make(builder);
        return MeshFile::write(forge, path, builder, false, {});
    };
    bool ok = write(FISH_MESH, SeaBedMeshes::fish);
    ok = write(KELP_MESH, SeaBedMeshes::kelp) && ok;
    ok = write(FAN_MESH, SeaBedMeshes::fan) && ok;
    ok = write(CLIFF_MESH, SeaBedMeshes::cliff) && ok;
    ok = write(CAVE_MESH, SeaBedMeshes::cave) && ok;
    ok = write(EYEBALL_MESH, SeaBedMeshes::eyeball) && ok;
    ok = write(EYELID_MESH, SeaBedMeshes::eyelid) && ok;
    for (int kind = 0; kind < ROCK_KINDS; ++kind)
        ok = write(ROCK_MESHES[kind], [kind](MeshBuilder& mesh) { SeaBedMeshes::rock(mesh, kind); }) && ok;
    return ok;
}

bool SeaBedContent::pictures(Forge& forge)
{
    const SeaBedArt art;
    bool ok = forge.savePicture(SAND, art.sand());
    ok = forge.savePicture(ROCK, art.rock()) && ok;
    ok = forge.savePicture(KELP, art.kelp()) && ok;
    ok = forge.savePicture(FAN, art.fan()) && ok;
    ok = forge.savePicture(FISH, art.fish()) && ok;
    ok = forge.savePicture(IRIS, art.iris()) && ok;
    ok = forge.savePicture(SHAFT, art.shaft()) && ok;
    ok = forge.savePicture(BUBBLE, art.bubble()) && ok;
    ok = forge.savePicture(SURFACE, art.surface()) && ok;
    for (int i = 0; i < CAUSTIC_FRAMES; ++i)
        ok = forge.savePicture(CAUSTICS[i], art.caustic(i, CAUSTIC_FRAMES)) && ok;
    return ok;
}

std::vector<ForgedFile> SeaBedContent::files() const
{
    std::vector<ForgedFile> list;
    for (const char* path : {TERRAIN, CAMERA_PATH, FISH_PATH, FISH_MESH, KELP_MESH, FAN_MESH, CLIFF_MESH, CAVE_MESH,
                             EYEBALL_MESH, EYELID_MESH})
        list.push_back(ForgedFile::file(path));
    for (const char* path : ROCK_MESHES)
        list.push_back(ForgedFile::file(path));
    const struct {
        TextureFile picture;
        int width, height;
    } pictures[] = {{SAND, 256, 256}, {ROCK, 256, 256}, {KELP, 64, 256},  {FAN, 128, 128},    {FISH, 128, 64},
                    {IRIS, 256, 256}, {SHAFT, 64, 256}, {BUBBLE, 32, 32}, {SURFACE, 256, 256}};
    for (const auto& p : pictures)
        list.push_back(ForgedFile::picture(p.picture, p.width, p.height));
    for (const TextureFile& frame : CAUSTICS)
        list.push_back(ForgedFile::picture(frame, 128, 128));
    return list;
}

bool SeaBedContent::build(Forge& forge)
{
    bool ok = forge.saveFile(TERRAIN, [](const std::string& path) { return writeTerrain(path.c_str()); });
    ok = forge.saveFile(CAMERA_PATH, [](const std::string& path) { return writeCamera(path.c_str()); }) && ok;
    ok = forge.saveFile(FISH_PATH, [](const std::string& path) { return writeSchool(path.c_str()); }) && ok;
    ok = meshes(forge) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
