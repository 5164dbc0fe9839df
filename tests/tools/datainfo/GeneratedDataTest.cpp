// The generated pictures load through the engine's own loaders in the format codes the scenes and mesh materials ask for.
#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "ContentUnits.h"
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

// Every file the forge's units list, with the format its scene loads it in (0 for other files).
std::map<std::string, int> listedFiles()
{
    std::map<std::string, int> listed;
    for (const auto& unit : ContentUnits::all())
        for (const ForgedFile& file : unit->files())
            listed[file.path] = file.format;
    return listed;
}

ChunkFacts walk(const std::string& file)
{
    ChunkFacts facts;
    std::ifstream in(file, std::ios::binary);
    std::ostringstream printout;
    ChunkReader reader(in, printout);
    EXPECT_TRUE(ChunkWalker(reader, facts).walk()) << file << ": " << reader.error();
    return facts;
}

}  // namespace

class GeneratedData : public GLTest {
protected:
    void TearDown() override
    {
        EngineCheck::clearRegistries();
        GLTest::TearDown();
    }
};

TEST_F(GeneratedData, TheTreeHoldsExactlyWhatTheUnitsList)
{
    const std::map<std::string, int> listed = listedFiles();
    std::set<std::string> found;
    for (const std::string& file : generatedFiles())
        if (file.rfind("data/music/", 0) != 0)
            found.insert(file);
    for (const auto& [path, format] : listed)
        EXPECT_TRUE(found.count(path)) << path << " is listed but missing";
    for (const std::string& file : found)
        EXPECT_TRUE(listed.count(file)) << file << " is in the tree but no unit lists it";
}

TEST_F(GeneratedData, PicturesLoadInTheFormatsTheScenesAskFor)
{
    // Each picture in the format its unit lists; materials inside chunk files ask for their own codes.
    std::map<std::string, std::set<int>> asked;
    for (const auto& [path, format] : listedFiles())
        if (format != 0)
            asked[path].insert(format);
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
                                                  Texture::componentsOf(format))
                << file;
        }
    }
    EXPECT_GE(pictures, 10);
}
