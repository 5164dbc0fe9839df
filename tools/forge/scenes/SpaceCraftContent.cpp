// The spacecraft's content: the hull built and sorted into an octree, a camera that starts low over the deck, pulls
// out to the whole ship and ends over the bow looking at the planet, and the scene's pictures.
#include "SpaceCraftContent.h"

#include "Forge.h"
#include "HullMesh.h"
#include "Maths.h"
#include "MeshFile.h"
#include "SpaceCraftArt.h"

#include "scene/CameraAnimation.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/object/Chunk.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "tools/octree/OctreeBuilder.h"

#include <algorithm>
#include <fstream>
#include <memory>

namespace {

using namespace SpaceCraftLayout;

// The camera's keys, evenly spaced over the scene: where it is and where it looks.
const int KEY_COUNT = 7;
const Vec3 EYE_KEYS[KEY_COUNT] = {
    {30.0, 31.0, 205.0},  {36.0, 34.0, 140.0},  {70.0, 48.0, 40.0},  {300.0, 150.0, -40.0},
    {200.0, 95.0, 330.0}, {100.0, 90.0, 110.0}, {30.0, 78.0, -50.0},
};
const Vec3 TARGET_KEYS[KEY_COUNT] = {
    {0.0, 25.0, 60.0}, {-4.0, 26.0, 0.0},      {0.0, 12.0, -40.0},        {0.0, 0.0, -10.0},
    {0.0, 0.0, 80.0},  {-60.0, -40.0, -500.0}, {-480.0, -200.0, -4100.0},
};

Vec3 catmullRom(const Vec3* keys, double t)
{
    const double span = SpaceCraftContent::SECONDS / (KEY_COUNT - 1);
    const double x = Maths::clamp(t / span, 0.0, KEY_COUNT - 1.0);
    const int i = std::min(static_cast<int>(x), KEY_COUNT - 2);
    const double s = x - i;
    const Vec3& p1 = keys[i];
    const Vec3& p2 = keys[i + 1];
    // The ends are mirrored, so the path starts and stops on its first and last keys.
    const Vec3 p0 = i > 0 ? keys[i - 1] : p1 * 2.0 - p2;
    const Vec3 p3 = i + 2 < KEY_COUNT ? keys[i + 2] : p2 * 2.0 - p1;
    const double s2 = s * s, s3 = s2 * s;
    return (p1 * 2.0 + (p2 - p0) * s + (p0 * 2.0 - p1 * 5.0 + p2 * 4.0 - p3) * s2 +
            (p1 * 3.0 - p0 - p2 * 3.0 + p3) * s3) *
           0.5;
}

Vector3 toVector(const Vec3& v)
{
    return Vector3(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

std::unique_ptr<Lin3Track> track(Vec3 (*at)(double))
{
    std::unique_ptr<Lin3Track> result(new Lin3Track());
    const int frames = static_cast<int>(SpaceCraftContent::SECONDS * FRAMES_PER_SECOND);
    for (int frame = 0; frame <= frames; frame += SpaceCraftContent::KEY_STEP)
        result->insertKey(new Lin3Key(static_cast<float>(frame), toVector(at(frame / double(FRAMES_PER_SECOND)))));
    result->setup();
    return result;
}

Material* hullMaterial(HullPart part)
{
    const char* name = HULL_MATERIALS[part];
    switch (part) {
        case HULL_PLATES:
            return MeshFile::colourMaterial(name, Color(0.3f, 0.31f, 0.34f, 1.0f), Color(0.82f, 0.83f, 0.86f, 1.0f),
                                            MeshFile::grey(0.3f), 24.0f);
        case HULL_DARK:
            return MeshFile::colourMaterial(name, Color(0.13f, 0.13f, 0.15f, 1.0f), Color(0.4f, 0.4f, 0.43f, 1.0f),
                                            MeshFile::grey(0.2f), 16.0f);
        case HULL_ACCENT:
            return MeshFile::colourMaterial(name, Color(0.22f, 0.09f, 0.07f, 1.0f), Color(0.66f, 0.24f, 0.16f, 1.0f),
                                            MeshFile::grey(0.2f), 20.0f);
        case HULL_WINDOWS: {
            Material* m =
                MeshFile::colourMaterial(name, MeshFile::grey(0.0f), MeshFile::grey(0.0f), MeshFile::grey(0.0f), 1.0f);
            m->setEmission(MeshFile::grey(1.0f));
            return m;
        }
        default: {
            Material* m =
                MeshFile::colourMaterial(name, MeshFile::grey(0.0f), MeshFile::grey(0.0f), MeshFile::grey(0.0f), 1.0f);
            m->setEmission(Color(0.75f, 0.9f, 1.0f, 1.0f));
            return m;
        }
    }
}

}  // namespace

Vec3 SpaceCraftContent::cameraAt(double t)
{
    return catmullRom(EYE_KEYS, t);
}

Vec3 SpaceCraftContent::targetAt(double t)
{
    return catmullRom(TARGET_KEYS, t);
}

Mesh* SpaceCraftContent::buildHull()
{
    MeshBuilder builder;
    HullMesh(builder).build();
    std::vector<Material*> materials;
    MaterialMgr* registry = MaterialMgr::getHandle();
    for (int part = 0; part < HULL_PART_COUNT; ++part)
        materials.push_back(hullMaterial(static_cast<HullPart>(part)));
    // Added last first, so the file lists them in their index order.
    for (auto it = materials.rbegin(); it != materials.rend(); ++it)
        registry->add(*it);
    return builder.build(false, materials);
}

bool SpaceCraftContent::writeHull(const char* file)
{
    MaterialMgr::getHandle()->shutdown();
    std::unique_ptr<Mesh> hull(buildHull());
    OctreeBuilder octree;
    octree.setMaxDepth(OCTREE_DEPTH);
    octree.setMaxFacesPerLeaf(FACES_PER_LEAF);
    const bool ok = hull && octree.write(*hull->getVertices(), *hull->getFaces(), file);
    MaterialMgr::getHandle()->shutdown();
    return ok;
}

bool SpaceCraftContent::writeCamera(const char* file)
{
    std::unique_ptr<Lin3Track> position = track(&SpaceCraftContent::cameraAt);
    std::unique_ptr<Lin3Track> target = track(&SpaceCraftContent::targetAt);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    Chunk::writeTag(out, "CANI");
    Chunk::writeFloat(out, static_cast<float>(FRAMES_PER_SECOND));
    CameraAnimation::writeName(out, CAMERA_NAME);
    return position->save(out) && target->save(out) && Chunk::good(out);
}

std::vector<ForgedFile> SpaceCraftContent::files() const
{
    return {
        ForgedFile::file(OCTREE),
        ForgedFile::file(CAMERA_PATH),
        ForgedFile::picture(PLATES, 512, 512),
        ForgedFile::picture(WINDOWS, 256, 256),
        ForgedFile::picture(NEBULA_UP, 512, 512),
        ForgedFile::picture(NEBULA_DOWN, 512, 512),
        ForgedFile::picture(GLOW, 128, 128),
    };
}

bool SpaceCraftContent::build(Forge& forge)
{
    bool ok = forge.saveFile(OCTREE, [](const std::string& path) { return writeHull(path.c_str()); });
    ok = forge.saveFile(CAMERA_PATH, [](const std::string& path) { return writeCamera(path.c_str()); }) && ok;
    const SpaceCraftArt art;
    ok = forge.savePicture(PLATES, art.plates()) && ok;
    ok = forge.savePicture(WINDOWS, art.windows()) && ok;
    ok = forge.savePicture(NEBULA_UP, art.nebula(true)) && ok;
    ok = forge.savePicture(NEBULA_DOWN, art.nebula(false)) && ok;
    ok = forge.savePicture(GLOW, art.glow()) && ok;
    return ok;
}
