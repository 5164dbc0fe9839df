// The generated pictures load through the engine's own loaders in the format codes the scenes and mesh materials ask for.
#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "EngineCheck.h"
#include "FileKind.h"
#include "ProgramRun.h"
#include "support/GLContext.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

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
    EXPECT_TRUE(ChunkWalker(reader, facts).walk()) << file << ": " << reader.error();
    return facts;
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

TEST_F(GeneratedData, PicturesLoadInTheFormatsTheScenesAskFor)
{
    // Materials inside chunk files ask for their own codes.
    std::map<std::string, std::set<int>> asked = sceneFormats;
    for (const std::string& file : generatedFiles())
        if (FileKind::detect(file) == FileKind::CHUNKS)
            for (const auto& [texture, format] : walk(file).textures)
                asked[texture].insert(format);
    int pictures = 0;
    for (const std::string& file : generatedFiles()) {
        if (!FileKind::isImage(FileKind::detect(file)))
            continue;
        ++pictures;
        TextureLoader* loader = TextureMgr::getHandle()->findLoader(file.c_str());
        ASSERT_NE(loader, nullptr) << file;
        for (int format : asked.count(file) ? asked[file] : std::set<int>{7}) {
            std::unique_ptr<Texture> texture(loader->loadTexture(file.c_str(), format));
            ASSERT_NE(texture, nullptr) << file << " format " << format;
            EXPECT_EQ(texture->getFormat(), format) << file;
            EXPECT_GT(texture->getWidth(), 0) << file;
            EXPECT_EQ(texture->getDataSize(), static_cast<long long>(texture->getWidth()) * texture->getHeight() *
                                                  Texture::componentsOf(format)) << file;
        }
    }
    EXPECT_GE(pictures, 10);
}
