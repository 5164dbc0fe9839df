// Loads a file through the engine's own load operations and prints what the engine ends up holding.
#include "EngineCheck.h"

#include "OffscreenGL.h"
#include "Printing.h"
#include "scene/BezierMesh.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/FaceArray.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/Terrain.h"
#include "scene/VertexArray.h"
#include "texture/MaterialMgr.h"
#include "texture/MipMapTexture.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <strings.h>
#include <cstring>
#include <vector>

namespace {

// Marks the faces the leaves below node list; false for an index past the face array.
bool reachFaces(const OctreeNode* node, std::vector<bool>& reached)
{
    if (node->hasChildren()) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i) {
            if (!reachFaces(node->getChild(i), reached))
                return false;
        }
        return true;
    }
    for (int i = 0; i < node->getNumFaces(); ++i) {
        uint32_t face = node->getFaceIndex(i);
        if (face >= reached.size())
            return false;
        reached[face] = true;
    }
    return true;
}

int keysOf(const Lin3Track* track)
{
    return track ? track->getNumKeys() : 0;
}

}  // namespace

EngineCheck::EngineCheck(std::ostream& output) : out(output) {}

bool EngineCheck::fail(const std::string& what)
{
    problem = what;
    return false;
}

void EngineCheck::clearRegistries()
{
    MaterialMgr::getHandle()->shutdown();
    CameraMgr::getHandle()->shutdown();
    LightMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->registerStandardLoaders();
}

bool EngineCheck::mipmapped(const std::string& name)
{
    const TextureLoader* loader = TextureMgr::getHandle()->findLoader(name.c_str());
    return loader && strcasecmp(loader->getExtension(), "ctx,mtx") == 0 && name.find(".ctx") == std::string::npos;
}

bool EngineCheck::needsGL(const ChunkFacts& facts) const
{
    if (facts.kind == ChunkFacts::LIGHT_SET)
        return true;
    for (const auto& texture : facts.textures) {
        if (mipmapped(texture.first))
            return true;
    }
    return false;
}

bool EngineCheck::checkChunks(const std::string& file, const ChunkFacts& facts)
{
    if (needsGL(facts) && !OffscreenGL::ensure())
        return fail("loading it needs an OpenGL context and none can be opened");
    bool ok = false;
    switch (facts.kind) {
        case ChunkFacts::MESH_FILE:
            ok = checkMesh(file);
            break;
        case ChunkFacts::OCTREE_FILE:
            ok = checkOctree(file);
            break;
        case ChunkFacts::CAMERA_ANIMATION:
            ok = checkCameraAnimation(file);
            break;
        case ChunkFacts::MESH_ANIMATION:
            ok = checkMeshAnimation(file);
            break;
        case ChunkFacts::BEZIER_MESH:
            ok = checkBezier(file);
            break;
        case ChunkFacts::TERRAIN:
            ok = checkTerrain(file);
            break;
        default:
            ok = checkSets(file, facts.kind);
            break;
    }
    clearRegistries();
    return ok;
}

bool EngineCheck::checkMesh(const std::string& file)
{
    Mesh mesh;
    if (!mesh.load(file.c_str()))
        return fail("the engine's Mesh::load refuses it");
    const VertexArray* vertices = mesh.getVertices();
    const FaceArray* faces = mesh.getFaces();
    int withMaterial = 0;
    for (int i = 0; i < faces->getNumFaces(); ++i)
        withMaterial += (*faces)[i].material ? 1 : 0;
    float low[3] = {mesh.getLimits().getMin().x, mesh.getLimits().getMin().y, mesh.getLimits().getMin().z};
    float high[3] = {mesh.getLimits().getMax().x, mesh.getLimits().getMax().y, mesh.getLimits().getMax().z};
    out << "engine: Mesh::load reads " << vertices->getNumVertices() << " vertices and " << faces->getNumFaces()
        << " faces, " << withMaterial << " of them with a registered material; limits " << Printing::numbers(low, 3)
        << " to " << Printing::numbers(high, 3) << "\n";
    return true;
}

bool EngineCheck::checkOctree(const std::string& file)
{
    Octree tree;
    if (!tree.load(file.c_str()))
        return fail("the engine's Octree::load refuses it");
    std::vector<bool> reached(static_cast<size_t>(tree.getFaces()->getNumFaces()), false);
    if (!reachFaces(tree.getRoot(), reached))
        return fail("a leaf of the loaded tree names a face past the face array");
    long long count = 0;
    for (bool r : reached)
        count += r ? 1 : 0;
    out << "engine: Octree::load reads " << tree.getVertices()->getNumVertices() << " vertices and " << reached.size()
        << " faces; its leaves reach " << count << " of them\n";
    if (count < static_cast<long long>(reached.size()))
        return fail(std::to_string(reached.size() - count) + " faces lie in no leaf of the loaded tree");
    return true;
}

bool EngineCheck::checkCameraAnimation(const std::string& file)
{
    CameraAnimation animation;
    if (!animation.load(file.c_str()))
        return fail("the engine's CameraAnimation::load refuses it");
    animation.setup();
    out << "engine: CameraAnimation::load reads " << keysOf(animation.getPositionTrack()) << " position and "
        << keysOf(animation.getTargetTrack()) << " target keys; last frame " << animation.getLastFrame() << " at "
        << Printing::real(animation.getFramesPerSec()) << " frames per second\n";
    return true;
}

bool EngineCheck::checkMeshAnimation(const std::string& file)
{
    MeshAnimation animation;
    if (!animation.load(file.c_str()))
        return fail("the engine's MeshAnimation::load refuses it");
    animation.setup();
    out << "engine: MeshAnimation::load reads " << keysOf(animation.getPositionTrack()) << " keys; last frame "
        << animation.getLastFrame() << " at " << Printing::real(animation.getFramesPerSec()) << " frames per second\n";
    return true;
}

bool EngineCheck::checkBezier(const std::string& file)
{
    BezierMesh mesh;
    if (!mesh.load(file.c_str()))
        return fail("the engine's BezierMesh::load refuses it");
    out << "engine: BezierMesh::load reads " << mesh.getNumPatches() << " patches of material \""
        << mesh.getMaterialName() << "\"" << (mesh.getMaterial() ? "" : " (the scene registers it)") << "\n";
    return true;
}

bool EngineCheck::checkTerrain(const std::string& file)
{
    Terrain terrain;
    if (!terrain.load(file.c_str()))
        return fail("the engine's Terrain::load refuses it");
    terrain.buildPatches();
    const BoundingBox& limits = terrain.getLimits();
    const float low[3] = {limits.getMin().x, limits.getMin().y, limits.getMin().z};
    const float high[3] = {limits.getMax().x, limits.getMax().y, limits.getMax().z};
    out << "engine: Terrain::load reads " << terrain.getColumns() << " x " << terrain.getRows() << " points; limits "
        << Printing::numbers(low, 3) << " to " << Printing::numbers(high, 3) << "; " << terrain.getPatchCount()
        << " patches of at most " << Terrain::DEFAULT_PATCH_CELLS << " cells a side\n";
    return true;
}

bool EngineCheck::checkSets(const std::string& file, ChunkFacts::Kind kind)
{
    const char* path = file.c_str();
    switch (kind) {
        case ChunkFacts::MATERIAL_SET:
            if (!MaterialMgr::getHandle()->load(path))
                return fail("the engine's MaterialMgr::load refuses it");
            out << "engine: MaterialMgr::load reads " << MaterialMgr::getHandle()->getCount() << " materials\n";
            return true;
        case ChunkFacts::CAMERA_SET:
            if (!CameraMgr::getHandle()->load(path))
                return fail("the engine's CameraMgr::load refuses it");
            out << "engine: CameraMgr::load registers " << CameraMgr::getHandle()->getNumCameras() << " cameras\n";
            return true;
        case ChunkFacts::LIGHT_SET:
            if (!LightMgr::getHandle()->load(path))
                return fail("the engine's LightMgr::load refuses it");
            out << "engine: LightMgr::load reads " << LightMgr::getHandle()->getNumLights() << " lights\n";
            return true;
        case ChunkFacts::TEXTURE_SET:
            // The engine writes 16-bit name lengths here and reads 32-bit ones, so it never reads its own list back.
            out << "engine: not loaded; TextureMgr::load reads name lengths as 32 bits and cannot read this list\n";
            return true;
        default:
            out << "engine: no load check for this kind yet\n";
            return true;
    }
}

bool EngineCheck::checkImage(const std::string& file, FileKind::Kind kind, int format, Texture** keep, bool anyName)
{
    const char* wanted = FileKind::loaderExtensions(kind);
    std::string typical = wanted ? "image." + std::string(wanted, std::strcspn(wanted, ",")) : file;
    TextureLoader* loader = TextureMgr::getHandle()->findLoader(anyName ? typical.c_str() : file.c_str());
    if (!loader)
        return fail("the engine has no texture loader for this name");
    if (!wanted || strcasecmp(loader->getExtension(), wanted) != 0)
        return fail(std::string("holds a ") + FileKind::describe(kind) +
                    ", but the engine reads this name with its \"" + loader->getExtension() + "\" loader");
    // The container loader builds a mipmapped texture for every name without ".ctx".
    if (kind == FileKind::CTX1 && file.find(".ctx") == std::string::npos && !OffscreenGL::ensure())
        return fail("a mipmapped texture needs an OpenGL context and none can be opened");
    Texture* texture = loader->loadTexture(file.c_str(), format);
    if (!texture)
        return fail("the engine's \"" + std::string(loader->getExtension()) + "\" loader refuses it with format " +
                    std::to_string(format));
    out << "engine: the \"" << loader->getExtension() << "\" loader gives " << texture->getWidth() << " x "
        << texture->getHeight() << ", bits per pixel " << texture->getBitsPerPixel() << ", format "
        << texture->getFormat() << " (" << Printing::format(texture->getFormat()) << "), " << texture->getDataSize()
        << " bytes";
    const MipMapTexture* mipmaps = dynamic_cast<const MipMapTexture*>(texture);
    if (mipmaps)
        out << ", " << mipmaps->getLevelCount() << " mipmap levels";
    out << "\n";
    if (keep)
        *keep = texture;
    else
        delete texture;
    return true;
}
