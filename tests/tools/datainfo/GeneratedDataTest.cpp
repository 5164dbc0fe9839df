// Every file the content tools generate loads through the engine's own loaders, as the scenes load it.
#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "EngineCheck.h"
#include "FileKind.h"
#include "ProgramRun.h"
#include "scene/BezierMesh.h"
#include "scene/CameraAnimation.h"
#include "scene/FaceArray.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/VertexArray.h"
#include "support/GLContext.h"
#include "texture/Material.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>

namespace {

// The format codes the scenes and the console ask for when they load these pictures themselves.
const std::map<std::string, std::set<int>> sceneFormats = {
    {"data/img/credits.png", {6}},  {"data/img/logo.png", {7}},     {"data/confont.png", {8}},
    {"data/conbg2.png", {7}},       {"data/img/window02.png", {8}}, {"data/img/skymoon2.png", {7}},
    {"data/img/particle.png", {7}}, {"data/img/ship.png", {7}},     {"data/img/sand4.png", {7}},
    {"data/img/water.png", {8}},    {"data/img/test.png", {7}},     {"data/img/water03.png", {7}},
};

ChunkFacts walk(const std::string& file)
{
    ChunkFacts facts;
    std::ifstream in(file, std::ios::binary);
    std::ostringstream printout;
    ChunkReader reader(in, printout);
    ChunkWalker walker(reader, facts);
    EXPECT_TRUE(walker.walk()) << file << ": " << reader.error();
    return facts;
}

std::vector<std::pair<std::string, ChunkFacts>> chunkFiles(ChunkFacts::Kind kind)
{
    std::vector<std::pair<std::string, ChunkFacts>> found;
    for (const std::string& file : generatedFiles()) {
        if (FileKind::detect(file) != FileKind::CHUNKS)
            continue;
        ChunkFacts facts = walk(file);
        if (facts.kind == kind)
            found.emplace_back(file, facts);
    }
    return found;
}

void markLeafFaces(const OctreeNode* node, std::vector<int>& hits)
{
    for (int i = 0; node->hasChildren() && i < OctreeNode::NUM_CHILDREN; ++i)
        markLeafFaces(node->getChild(i), hits);
    for (int i = 0; !node->hasChildren() && i < node->getNumFaces(); ++i) {
        uint32_t face = node->getFaceIndex(i);
        ASSERT_LT(face, hits.size());
        ++hits[face];
    }
}

} // namespace

class GeneratedData : public GLTest {
protected:
    void TearDown() override
    {
        EngineCheck::clearRegistries();
        GLTest::TearDown();
    }
};

TEST_F(GeneratedData, MeshesLoadWithTheirMaterialsAndTextures)
{
    auto meshes = chunkFiles(ChunkFacts::MESH_FILE);
    EXPECT_GE(meshes.size(), 6u);
    for (const auto& [file, facts] : meshes) {
        Mesh mesh;
        ASSERT_TRUE(mesh.load(file.c_str())) << file;
        const VertexArray& vertices = *mesh.getVertices();
        const FaceArray& faces = *mesh.getFaces();
        EXPECT_EQ(vertices.getNumVertices(), facts.vertices) << file;
        EXPECT_EQ(faces.getNumFaces(), facts.faces) << file;
        for (int i = 0; i < faces.getNumFaces(); ++i) {
            const Face& face = faces[i];
            for (int k = 0; k < 3; ++k)
                EXPECT_LT(face.indices[k], static_cast<uint32_t>(vertices.getNumVertices())) << file << " face " << i;
            // Every material a generated face names travels in the same file.
            if (face.flags & Face::HAS_MATERIAL) {
                EXPECT_NE(face.material, nullptr) << file << " face " << i;
            }
        }
        for (const auto& [texture, format] : facts.textures) {
            const Texture* loaded = TextureMgr::getHandle()->findTexture(texture.c_str());
            ASSERT_NE(loaded, nullptr) << file << " " << texture;
            EXPECT_EQ(loaded->getFormat(), format) << texture;
            EXPECT_NE(loaded->getDataPtr(), nullptr) << texture;
        }
        EngineCheck::clearRegistries();
    }
}

TEST_F(GeneratedData, OctreesLoadWithEveryFaceInALeaf)
{
    for (const auto& [file, facts] : chunkFiles(ChunkFacts::OCTREE_FILE)) {
        Octree tree;
        ASSERT_TRUE(tree.load(file.c_str())) << file;
        std::vector<int> hits(static_cast<size_t>(tree.getFaces()->getNumFaces()), 0);
        markLeafFaces(tree.getRoot(), hits);
        EXPECT_EQ(std::count(hits.begin(), hits.end(), 0), 0) << file << ": faces in no leaf";
        EngineCheck::clearRegistries();
    }
}

TEST_F(GeneratedData, AnimationPathsLoadIntoTheirClasses)
{
    for (const auto& [file, facts] : chunkFiles(ChunkFacts::CAMERA_ANIMATION)) {
        CameraAnimation animation;
        ASSERT_TRUE(animation.load(file.c_str())) << file;
        animation.setup();
        ASSERT_NE(animation.getTargetTrack(), nullptr) << file;
        EXPECT_GT(animation.getPositionTrack()->getNumKeys(), 1) << file;
        EXPECT_GT(animation.getLastFrame(), 0) << file;
    }
    for (const auto& [file, facts] : chunkFiles(ChunkFacts::MESH_ANIMATION)) {
        MeshAnimation animation;
        ASSERT_TRUE(animation.load(file.c_str())) << file;
        animation.setup();
        EXPECT_GT(animation.getPositionTrack()->getNumKeys(), 1) << file;
        EXPECT_GT(animation.getLastFrame(), 0) << file;
    }
}

TEST_F(GeneratedData, BezierMeshesLoadWithPatches)
{
    for (const auto& [file, facts] : chunkFiles(ChunkFacts::BEZIER_MESH)) {
        BezierMesh mesh;
        ASSERT_TRUE(mesh.load(file.c_str())) << file;
        EXPECT_GT(mesh.getNumPatches(), 0) << file;
    }
}

TEST_F(GeneratedData, PicturesLoadInTheFormatsTheScenesAskFor)
{
    // Materials inside chunk files ask for their own codes.
    std::map<std::string, std::set<int>> asked = sceneFormats;
    for (const std::string& file : generatedFiles()) {
        if (FileKind::detect(file) != FileKind::CHUNKS)
            continue;
        for (const auto& [texture, format] : walk(file).textures)
            asked[texture].insert(format);
    }
    int pictures = 0;
    for (const std::string& file : generatedFiles()) {
        if (!FileKind::isImage(FileKind::detect(file)))
            continue;
        ++pictures;
        std::set<int> formats = asked.count(file) ? asked[file] : std::set<int>{7};
        TextureLoader* loader = TextureMgr::getHandle()->findLoader(file.c_str());
        ASSERT_NE(loader, nullptr) << file;
        for (int format : formats) {
            std::unique_ptr<Texture> texture(loader->loadTexture(file.c_str(), format));
            ASSERT_NE(texture, nullptr) << file << " format " << format;
            EXPECT_EQ(texture->getFormat(), format) << file;
            EXPECT_GT(texture->getWidth(), 0) << file;
            EXPECT_EQ(texture->getDataSize(), static_cast<long long>(texture->getWidth()) * texture->getHeight() *
                                                  Texture::componentsOf(format))
                << file;
        }
    }
    EXPECT_GE(pictures, 10);
}

TEST_F(GeneratedData, TheCreditsLuminanceAlphaIsTheBlueAndAlphaOfTheFullColours)
{
    TextureLoader* loader = TextureMgr::getHandle()->findLoader("data/img/credits.png");
    std::unique_ptr<Texture> pair(loader->loadTexture("data/img/credits.png", 6));
    std::unique_ptr<Texture> full(loader->loadTexture("data/img/credits.png", 8));
    ASSERT_TRUE(pair && full);
    const unsigned char* la = pair->getDataPtr();
    const unsigned char* rgba = full->getDataPtr();
    long long pixels = static_cast<long long>(full->getWidth()) * full->getHeight();
    long long mismatches = 0;
    for (long long i = 0; i < pixels; ++i)
        mismatches += (la[2 * i] != rgba[4 * i + 2] || la[2 * i + 1] != rgba[4 * i + 3]) ? 1 : 0;
    EXPECT_EQ(mismatches, 0);
}
