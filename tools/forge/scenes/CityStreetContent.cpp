// The city street's content: the block built lot by lot and written through the octree builder, the camera's route
// rounded at its turns and timed so it passes a crossing on every bar, the car, and the pictures.
#include "CityStreetContent.h"

#include "CameraPathFile.h"
#include "CarMesh.h"
#include "CityArt.h"
#include "CityBlockMesh.h"
#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"

#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "tools/octree/OctreeBuilder.h"

#include <memory>

namespace {

using namespace CityLayout;

const int ARC_SAMPLES = 24;
const int OCTREE_DEPTH = 5;
const int FACES_PER_LEAF = 96;

Vec3 nodePoint(int k)
{
    return Vec3{ROUTE[k].i * PITCH, 0.0, ROUTE[k].j * PITCH};
}

Vec3 direction(int from, int to)
{
    return (nodePoint(to) - nodePoint(from)).normalised();
}

}  // namespace

CityStreetContent::CityStreetContent() : route(nodePoint(0))
{
    // Corners are cut by a quarter circle; the node's moment is the middle of that arc.
    nodes.push_back(0.0);
    for (int k = 1; k < ROUTE_NODES; ++k) {
        const Vec3 in = direction(k - 1, k);
        const Vec3 out = k + 1 < ROUTE_NODES ? direction(k, k + 1) : in;
        const Vec3 p = nodePoint(k);
        if (in.dot(out) > 0.5) {
            route.add(p);
            nodes.push_back(route.length());
            continue;
        }
        const Vec3 centre = p - in * CORNER_RADIUS + out * CORNER_RADIUS;
        for (int a = 0; a <= ARC_SAMPLES; ++a) {
            const double phi = 0.5 * Maths::pi * a / ARC_SAMPLES;
            route.add(centre - out * (CORNER_RADIUS * Maths::cos(phi)) + in * (CORNER_RADIUS * Maths::sin(phi)));
            if (a == ARC_SAMPLES / 2)
                nodes.push_back(route.length());
        }
    }
    const Vec3 last = direction(ROUTE_NODES - 2, ROUTE_NODES - 1);
    route.add(nodePoint(ROUTE_NODES - 1) + last * (PITCH * 0.5));
}

Vec3 CityStreetContent::routePoint(double s) const
{
    if (s <= 0.0)
        return route.front() + direction(0, 1) * s;
    if (s >= length())
        return route.back() + direction(ROUTE_NODES - 2, ROUTE_NODES - 1) * (s - length());
    return route.at(s);
}

double CityStreetContent::distanceAt(double t) const
{
    const int last = ROUTE_NODES - 1;
    const int k = static_cast<int>(Maths::clamp(t / BAR, 0.0, last - 1.0));
    if (t >= last * BAR)
        return nodes[last] + (length() - nodes[last]) * (t - last * BAR) / (SECONDS - last * BAR);
    return nodes[k] + (nodes[k + 1] - nodes[k]) * (t - k * BAR) / BAR;
}

double CityStreetContent::cameraHeight(double t) const
{
    const double fall = 1.0 - Maths::smoothstep(0.0, DROP_SECONDS, t);
    return CAMERA_HEIGHT + (DROP_HEIGHT - CAMERA_HEIGHT) * fall;
}

Vec3 CityStreetContent::cameraAt(double t) const
{
    const Vec3 ground = routePoint(distanceAt(t));
    return Vec3{ground.x, cameraHeight(t), ground.z};
}

Vec3 CityStreetContent::targetAt(double t) const
{
    // Looking steeply down while it drops, then level down the street.
    const Vec3 ahead = routePoint(distanceAt(t) + LOOK_AHEAD);
    const double height = CAMERA_HEIGHT * 0.8 + (cameraHeight(t) - CAMERA_HEIGHT) * 0.35;
    return Vec3{ahead.x, height, ahead.z};
}

bool CityStreetContent::writeBlock(const std::string& path) const
{
    MeshBuilder builder;
    CityBlockMesh().build(builder);
    MaterialMgr* registry = MaterialMgr::getHandle();
    registry->shutdown();
    // The faces name their surfaces; the scene dresses each name with its picture.
    std::vector<Material*> materials;
    for (int k = SURFACE_COUNT - 1; k >= 0; --k)
        registry->add(new Material(SURFACES[k].material));
    for (int k = 0; k < SURFACE_COUNT; ++k)
        materials.push_back(registry->find(SURFACES[k].material));
    std::unique_ptr<Mesh> mesh(builder.build(false, materials));
    OctreeBuilder octree;
    octree.setMaxDepth(OCTREE_DEPTH);
    octree.setMaxFacesPerLeaf(FACES_PER_LEAF);
    const bool ok = mesh && octree.write(*mesh->getVertices(), *mesh->getFaces(), path.c_str());
    mesh.reset();
    registry->shutdown();
    return ok;
}

bool CityStreetContent::writeCar(Forge& forge) const
{
    MeshBuilder builder;
    CarMesh().build(builder);
    std::vector<Material*> materials(CarMesh::MaterialCount);
    materials[CarMesh::Paint] =
        MeshFile::colourMaterial(CAR_PAINT, MeshFile::grey(0.3f), MeshFile::grey(0.6f), MeshFile::grey(0.9f), 60.0f);
    materials[CarMesh::Glass] = MeshFile::colourMaterial(CAR_GLASS, Color(0.02f, 0.03f, 0.05f, 1.0f),
                                                         Color(0.04f, 0.05f, 0.08f, 1.0f), MeshFile::grey(1.0f), 90.0f);
    materials[CarMesh::Trim] =
        MeshFile::colourMaterial(CAR_TRIM, MeshFile::grey(0.03f), MeshFile::grey(0.05f), MeshFile::grey(0.2f), 20.0f);
    return MeshFile::write(forge, CAR_MESH, builder, false, materials);
}

bool CityStreetContent::pictures(Forge& forge) const
{
    const CityArt art;
    bool ok = true;
    for (int k = 0; k < FACADE_KINDS; ++k)
        ok = forge.savePicture(SURFACES[FACADE_GLASS + k].picture, art.facade(FACADE_GLASS + k)) && ok;
    ok = forge.savePicture(SURFACES[SHOP_BRIGHT].picture, art.shops(false)) && ok;
    ok = forge.savePicture(SURFACES[SHOP_LATE].picture, art.shops(true)) && ok;
    ok = forge.savePicture(SURFACES[ROAD].picture, art.road()) && ok;
    ok = forge.savePicture(SURFACES[CROSSING].picture, art.crossing()) && ok;
    ok = forge.savePicture(SURFACES[SIDEWALK].picture, art.sidewalk()) && ok;
    ok = forge.savePicture(SURFACES[ROOF].picture, art.roof()) && ok;
    ok = forge.savePicture(SURFACES[METAL].picture, art.metal()) && ok;
    ok = forge.savePicture(SURFACES[ONE_WAY].picture, art.oneWay()) && ok;
    ok = forge.savePicture(NEON, art.neon()) && ok;
    ok = forge.savePicture(POOL, art.pool()) && ok;
    ok = forge.savePicture(BEAM, art.beam()) && ok;
    ok = forge.savePicture(TRAIL, art.trail()) && ok;
    return ok;
}

std::vector<ForgedFile> CityStreetContent::files() const
{
    std::vector<ForgedFile> list;
    for (const char* path : {OCTREE, CAMERA_PATH, CAR_MESH})
        list.push_back(ForgedFile::file(path));
    for (const SurfaceInfo& surface : SURFACES)
        list.push_back(ForgedFile::picture(surface.picture, surface.width, surface.height));
    list.push_back(ForgedFile::picture(NEON, NEON_SIZE, NEON_SIZE));
    list.push_back(ForgedFile::picture(POOL, 128, 128));
    list.push_back(ForgedFile::picture(BEAM, 128, 128));
    list.push_back(ForgedFile::picture(TRAIL, 128, 32));
    return list;
}

bool CityStreetContent::build(Forge& forge)
{
    bool ok = forge.saveFile(OCTREE, [this](const std::string& path) { return writeBlock(path); });
    ok = forge.saveFile(CAMERA_PATH, [this](const std::string& path) {
        return CameraPathFile::write(
            path, CAMERA_NAME, SECONDS, FRAMES_PER_SECOND, KEY_STEP, [this](double t) { return cameraAt(t); },
            [this](double t) { return targetAt(t); });
    }) && ok;
    ok = writeCar(forge) && ok;
    ok = pictures(forge) && ok;
    return ok;
}
