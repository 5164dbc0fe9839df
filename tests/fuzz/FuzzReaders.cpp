// The reader entry points that fuzz targets and the regression suite feed with raw bytes.
#include "FuzzReaders.h"

#include "ScratchFile.h"

#include "config/VariableMgr.h"
#include "math/Matrix4.h"
#include "scene/BezierMesh.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/SphericalUV.h"
#include "scene/Terrain.h"
#include "scene/loadMeshMSH.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

typedef FuzzReaders::Outcome Outcome;

const char* const sharedDir = "/tmp/velmora-fuzz";
const char* const sharedTexture = "/tmp/velmora-fuzz/tiny.ctx";

std::istringstream streamOf(const uint8_t* data, size_t size)
{
    return std::istringstream(std::string(reinterpret_cast<const char*>(data), size), std::ios::binary);
}

// Registries are process-wide: every input starts from empty ones, so a long
// run neither grows nor lets one input's objects shape the next.
void clearRegistries()
{
    MaterialMgr::getHandle()->shutdown();
    CameraMgr::getHandle()->shutdown();
    LightMgr::getHandle()->shutdown();
    TextureMgr* textures = TextureMgr::getHandle();
    if (textures->getTextureCount() > 0) {
        textures->shutdown();
        textures->registerStandardLoaders();
    }
}

template <typename T>
std::string savedBytes(T& object)
{
    std::ostringstream out(std::ios::binary);
    if (!object.save(out))
        return std::string("\0unsaved", 8);
    return out.str();
}

// What was read saves, the saved form loads again into a fresh object and saves to the same bytes.
template <typename T>
bool roundTrips(T& object)
{
    const std::string first = savedBytes(object);
    T again;
    std::istringstream in(first, std::ios::binary);
    return again.load(in) && savedBytes(again) == first;
}

// --- configuration -------------------------------------------------------

Outcome configFile(const uint8_t* data, size_t size)
{
    std::string path = ScratchFile::write("cfg", data, size);
    VariableMgr variables;
    variables.load(path.c_str());
    // The keys the driver reads, read the way it reads them.
    static const char* const keys[] = {"Cursor",  "Fullscreen", "Width",     "Height", "BitsPerPixel", "DepthBuffer",
                                       "ShowFPS", "Sound",      "Frequency", "Volume", "Song"};
    size_t seen = 0;
    for (const char* key : keys) {
        const Variable* v = variables.find(key);
        if (!v)
            continue;
        seen += std::strlen(v->getString()) + static_cast<size_t>(v->getInteger() & 1) + v->getBoolean();
    }
    (void)seen;
    return variables.getCount() > 0 ? FuzzReaders::LOADED : FuzzReaders::REJECTED;
}

// --- meshes ----------------------------------------------------------------

// A loaded mesh saves, the saved form loads again and saves to the same bytes.
Outcome meshRoundTrip(Mesh& mesh)
{
    if (!roundTrips(mesh))
        return FuzzReaders::INCONSISTENT;
    SphericalUV().mapMesh(&mesh, 0);
    return FuzzReaders::LOADED;
}

// A .msh file as Mesh::load(file) reads it: the materials, then the MESH chunk.
Outcome meshFile(const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    Outcome result = FuzzReaders::REJECTED;
    if (MaterialMgr::getHandle()->load(in)) {
        Mesh mesh;
        if (mesh.load(in))
            result = meshRoundTrip(mesh);
    }
    clearRegistries();
    return result;
}

Outcome plainMeshFile(const uint8_t* data, size_t size)
{
    std::string path = ScratchFile::write("plainmsh", data, size);
    Mesh* mesh = loadMeshMSH(path.c_str());
    if (!mesh)
        return FuzzReaders::REJECTED;
    Outcome result = meshRoundTrip(*mesh);
    delete mesh;
    return result;
}

// Managers put loaded children at the head, so each save reverses the order
// of the file read: two rounds bring it back. The first reload may still
// change names (an empty name on disk keeps the name an object was built
// with), so the comparison starts from the first reloaded form.
template <typename Registry>
Outcome registryRoundTrip(Registry* registry)
{
    std::string saved[4] = {savedBytes(*registry)};
    for (int round = 1; round < 4; ++round) {
        clearRegistries();
        std::istringstream in(saved[round - 1], std::ios::binary);
        if (!registry->load(in))
            return FuzzReaders::INCONSISTENT;
        saved[round] = savedBytes(*registry);
    }
    return saved[1] == saved[3] ? FuzzReaders::LOADED : FuzzReaders::INCONSISTENT;
}

// A whole registry's chunk: a material set on its own, as mesh and octree files carry it, lights or cameras.
template <typename Registry>
Outcome registrySet(Registry* registry, const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    Outcome result = registry->load(in) ? registryRoundTrip(registry) : FuzzReaders::REJECTED;
    clearRegistries();
    return result;
}

Outcome textureList(const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    Outcome result = TextureMgr::getHandle()->load(in) ? FuzzReaders::LOADED : FuzzReaders::REJECTED;
    clearRegistries();
    return result;
}

// A .bez file: one BMSH chunk, tessellated on loading.
Outcome bezierFile(const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    BezierMesh mesh;
    if (!mesh.load(in))
        return FuzzReaders::REJECTED;
    if (!roundTrips(mesh))
        return FuzzReaders::INCONSISTENT;
    // What a scene does with it before drawing: a finer grid and a move.
    mesh.setGridSize(2, 3);
    mesh.moveMesh(Vector3(1.0f, 2.0f, 3.0f));
    for (int i = 0; i < mesh.getNumPatches(); ++i)
        BezierMesh::normalAt(mesh.getPatch(i), 0.5f, 0.25f);
    return FuzzReaders::LOADED;
}

// A terrain file: one TERA chunk. It saves what it read bit for bit, builds its patches and
// answers lookups anywhere, inside the grid or far outside it.
Outcome terrainFile(const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    Terrain terrain;
    if (!terrain.load(in))
        return FuzzReaders::REJECTED;
    if (!roundTrips(terrain) || !terrain.buildPatches(3))
        return FuzzReaders::INCONSISTENT;
    const BoundingBox& limits = terrain.getLimits();
    float sum = 0.0f;
    for (const Vector3& p : {limits.getMin(), limits.getMax(), limits.getCentre(), Vector3(-1e30f, 0.0f, 1e30f)})
        sum += terrain.heightAt(p.x, p.z) + terrain.normalAt(p.x, p.z).y;
    (void)sum;
    // Seen from far above the middle every patch is in view.
    const float projection[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, -1, 0, 0, -0.2f, 0};
    const float lookingDown[16] = {1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, -1e6f, 1};
    Frustum frustum;
    frustum.extract(projection, lookingDown);
    frustum.setFarTest(false);
    terrain.cull(frustum, Vector3(), 1.0f);
    return FuzzReaders::LOADED;
}

// --- octrees ---------------------------------------------------------------

OctreeParseCode countNode(OctreeNode* node)
{
    node->markVisible();
    if (!node->PvsCanSee(node->getCentre()))
        return OCTREE_PARSE_STOP;
    return node->hasChildren() ? OCTREE_PARSE_CHILDREN : OCTREE_PARSE_STOP;
}

Outcome octreeFile(const uint8_t* data, size_t size)
{
    std::istringstream in = streamOf(data, size);
    Outcome result = FuzzReaders::REJECTED;
    if (MaterialMgr::getHandle()->load(in)) {
        Octree tree;
        if (tree.load(in)) {
            tree.parse(countNode);
            result = roundTrips(tree) ? FuzzReaders::LOADED : FuzzReaders::INCONSISTENT;
        } else if (!tree.isEmpty()) {
            // A failed load leaves no half-built parts behind.
            result = FuzzReaders::INCONSISTENT;
        }
    }
    clearRegistries();
    return result;
}

// --- animation paths -------------------------------------------------------

// A scene plays a path from its first frame to past its last.
template <typename Animation>
void play(Animation& animation)
{
    animation.setup();
    for (int step = 0; step < 4; ++step)
        animation.update(0.25f);
    animation.setFrame(animation.getLastFrame() + 1);
    animation.update(1.0f);
}

// One CANI chunk read as both classes that share the tag.
Outcome animationFile(const uint8_t* data, size_t size)
{
    CameraMgr::getHandle()->add(new Camera(FuzzReaders::animatedCameraName()));
    bool loaded = false, consistent = true;
    {
        std::istringstream in = streamOf(data, size);
        CameraAnimation path;
        if (path.load(in)) {
            loaded = true;
            consistent = roundTrips(path);
            play(path);
        }
    }
    {
        std::istringstream in = streamOf(data, size);
        MeshAnimation path;
        if (path.load(in)) {
            loaded = true;
            consistent = consistent && roundTrips(path);
            play(path);
            Matrix4 placed = path.placement();
            (void)placed;
        }
    }
    clearRegistries();
    if (!consistent)
        return FuzzReaders::INCONSISTENT;
    return loaded ? FuzzReaders::LOADED : FuzzReaders::REJECTED;
}

// --- texture files -----------------------------------------------------------

// Touches every byte, so a buffer shorter than its texture claims trips the sanitizer.
unsigned pixelSum(const Texture& t)
{
    unsigned sum = 0;
    const unsigned char* p = t.getDataPtr();
    const long long size = p ? t.getDataSize() : 0;
    for (long long i = 0; i < size; ++i)
        sum += p[i];
    return sum;
}

bool sizeAgrees(const Texture& t)
{
    long long expected = static_cast<long long>(t.getWidth()) * t.getHeight() * Texture::componentsOf(t.getFormat());
    return t.getDataSize() == expected && (expected == 0 || t.getDataPtr());
}

// Reading the same file again into the cleared texture gives the same pixels.
// Cleared to zero: a container whose stream ends early fills only the front
// of the buffer, on loading and on reloading alike.
bool reloadsTheSame(TextureMgr* textures, const std::string& path, Texture* t)
{
    std::vector<unsigned char> before(t->getDataPtr(), t->getDataPtr() + t->getDataSize());
    std::memset(t->getDataPtr(), 0, before.size());
    if (!textures->reloadTexture(path.c_str(), t))
        return false;
    // An empty picture loads too; its copy then has no buffer at all to compare.
    return std::equal(before.begin(), before.end(), t->getDataPtr());
}

struct ImageKind {
    const char* extension;
    std::vector<int> formats;  // the first decides acceptance; the others are tried after it
    bool reloads;
};

Outcome imageFile(const ImageKind& kind, const uint8_t* data, size_t size)
{
    std::string path = ScratchFile::write(kind.extension, data, size);
    TextureMgr* textures = TextureMgr::getHandle();
    Outcome result = FuzzReaders::REJECTED;
    for (size_t i = 0; i < kind.formats.size(); ++i) {
        Texture* t = textures->loadTexture(path.c_str(), kind.formats[i]);
        if (!t) {
            if (i == 0)
                break;
            continue;
        }
        result = FuzzReaders::LOADED;
        pixelSum(*t);
        if (!sizeAgrees(*t) || (kind.reloads && t->getDataSize() > 0 && !reloadsTheSame(textures, path, t)))
            result = FuzzReaders::INCONSISTENT;
        textures->removeTexture(path.c_str());
        if (result == FuzzReaders::INCONSISTENT)
            break;
    }
    clearRegistries();
    return result;
}

const ImageKind pngKind = {"png", {8, 1, 2, 3, 4, 5, 6, 7}, true};
const ImageKind jpegKind = {"jpg", {8, 1, 2, 3, 4, 5, 6, 7}, false};
const ImageKind tiffKind = {"tif", {8, 1, 2, 3, 4, 5, 6, 7}, true};
const ImageKind pcxKind = {"pcx", {8, 1, 2, 3, 4, 5, 6, 7}, true};
const ImageKind tgaKind = {"tga", {8, 1, 7}, false};

template <const ImageKind* kind>
Outcome imageOf(const uint8_t* data, size_t size)
{
    return imageFile(*kind, data, size);
}

Outcome bwFile(const uint8_t* data, size_t size)
{
    Outcome result = imageFile({"bw", {5, 1, 2, 3, 4}, false}, data, size);
    // Two- to four-component codes are refused whatever the file holds.
    std::string path = ScratchFile::write("bw", data, size);
    if (TextureMgr::getHandle()->loadTexture(path.c_str(), 8))
        result = FuzzReaders::INCONSISTENT;
    clearRegistries();
    return result;
}

int32_t headerField(const uint8_t* data, int index)
{
    const uint8_t* p = data + 4 + 4 * index;
    return static_cast<int32_t>(p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24));
}

// A tiny file whose stream ends early may claim hundreds of megabytes, and reloading and writing
// back (a level-9 deflate) pass over every byte several times: only pictures up to this size do,
// so that the run keeps its pace.
const long long maxRoundTripBytes = 1 << 20;

// The container takes its format from the file, reloads in place and writes
// back what it read.
bool containerHolds(TextureMgr* textures, const std::string& path, Texture* t, const uint8_t* data)
{
    if (t->getWidth() != headerField(data, 0) || t->getHeight() != headerField(data, 1) ||
        t->getBitsPerPixel() != headerField(data, 2) || t->getFormat() != headerField(data, 3))
        return false;
    if (t->getDataSize() > maxRoundTripBytes)
        return true;
    if (!reloadsTheSame(textures, path, t))
        return false;
    std::string copy = ScratchFile::write("copy.ctx", nullptr, 0);
    if (!textures->saveTexture(copy.c_str(), t))
        return false;
    Texture* back = textures->loadTexture(copy.c_str(), 8);
    bool same = back && back->getWidth() == t->getWidth() && back->getHeight() == t->getHeight() &&
                back->getBitsPerPixel() == t->getBitsPerPixel() && back->getFormat() == t->getFormat() &&
                back->getDataSize() == t->getDataSize() &&
                std::memcmp(back->getDataPtr(), t->getDataPtr(), t->getDataSize()) == 0;
    textures->removeTexture(copy.c_str());
    return same;
}

Outcome containerFile(const uint8_t* data, size_t size)
{
    std::string path = ScratchFile::write("ctx", data, size);
    TextureMgr* textures = TextureMgr::getHandle();
    Texture* t = textures->loadTexture(path.c_str(), 8);
    Outcome result = FuzzReaders::REJECTED;
    if (t) {
        pixelSum(*t);
        bool good = size >= 20 && sizeAgrees(*t) && containerHolds(textures, path, t, data);
        result = good ? FuzzReaders::LOADED : FuzzReaders::INCONSISTENT;
    }
    clearRegistries();
    return result;
}

const FuzzReaders::Reader readers[] = {
    {"config", configFile},
    {"mesh", meshFile},
    {"plainmesh", plainMeshFile},
    {"materials", [](const uint8_t* d, size_t n) { return registrySet(MaterialMgr::getHandle(), d, n); }},
    {"lights", [](const uint8_t* d, size_t n) { return registrySet(LightMgr::getHandle(), d, n); }},
    {"cameras", [](const uint8_t* d, size_t n) { return registrySet(CameraMgr::getHandle(), d, n); }},
    {"textures", textureList},
    {"octree", octreeFile},
    {"bezier", bezierFile},
    {"terrain", terrainFile},
    {"animation", animationFile},
    {"png", imageOf<&pngKind>},
    {"jpeg", imageOf<&jpegKind>},
    {"tiff", imageOf<&tiffKind>},
    {"pcx", imageOf<&pcxKind>},
    {"tga", imageOf<&tgaKind>},
    {"bw", bwFile},
    {"ctx", containerFile},
};

// The shared texture: 2 x 2 RGBA, written by the engine's container writer.
void writeSharedTexture()
{
    mkdir(sharedDir, 0777);
    std::string staging = ScratchFile::write("shared.ctx", nullptr, 0);
    static const unsigned char pixels[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 128};
    unsigned char* copy = new unsigned char[sizeof pixels];
    std::memcpy(copy, pixels, sizeof pixels);
    Texture texture("shared", 2, 2, 32, 8, copy);
    if (!TextureMgr::getHandle()->saveTexture(staging.c_str(), &texture))
        return;
    std::ifstream in(staging.c_str(), std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    ScratchFile::publish(sharedTexture, bytes.str());
}

}  // namespace

void FuzzReaders::prepare()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    int null = open("/dev/null", O_RDONLY);
    if (null >= 0) {
        dup2(null, STDIN_FILENO);
        close(null);
    }
    writeSharedTexture();
    clearRegistries();
}

const FuzzReaders::Reader* FuzzReaders::find(const char* name)
{
    for (const Reader* r = begin(); r != end(); ++r)
        if (name && std::strcmp(r->name, name) == 0)
            return r;
    return nullptr;
}

const FuzzReaders::Reader* FuzzReaders::begin()
{
    return readers;
}

const FuzzReaders::Reader* FuzzReaders::end()
{
    return readers + sizeof readers / sizeof readers[0];
}

const char* FuzzReaders::sharedTexturePath()
{
    return sharedTexture;
}

const char* FuzzReaders::animatedCameraName()
{
    return "fuzzcam";
}
