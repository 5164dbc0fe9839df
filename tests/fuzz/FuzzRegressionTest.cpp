// Every seed and every saved finding of the fuzz targets, read through the same entry points in the ordinary suite.
#include "FuzzReaders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> filesIn(const std::string& dir)
{
    std::vector<std::string> files;
    DIR* d = opendir(dir.c_str());
    if (!d)
        return files;
    for (dirent* e = readdir(d); e; e = readdir(d))
        if (e->d_name[0] != '.')
            files.push_back(e->d_name);
    closedir(d);
    std::sort(files.begin(), files.end());
    return files;
}

std::string bytesOf(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

FuzzReaders::Outcome feed(const FuzzReaders::Reader& reader, const std::string& bytes)
{
    return reader.entry(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

const char* describe(FuzzReaders::Outcome outcome)
{
    switch (outcome) {
    case FuzzReaders::REJECTED: return "rejected";
    case FuzzReaders::LOADED: return "loaded";
    default: return "inconsistent";
    }
}

std::string corpusDir(const char* reader)
{
    return std::string(VELMORA_FUZZ_DIR) + "/corpus/" + reader;
}

// Readers whose files end with their last declared field: any cut-off copy
// of a good file must be refused.
bool cutFilesFail(const std::string& reader)
{
    static const std::set<std::string> strict = {"mesh", "plainmesh", "materials", "lights", "cameras",
                                                 "textures", "octree", "bezier", "png", "bw"};
    return strict.count(reader) > 0;
}

class FuzzFiles : public ::testing::TestWithParam<const FuzzReaders::Reader*> {
protected:
    static void SetUpTestSuite() { FuzzReaders::prepare(); }
};

std::string readerName(const ::testing::TestParamInfo<const FuzzReaders::Reader*>& info)
{
    return info.param->name;
}

std::vector<const FuzzReaders::Reader*> allReaders()
{
    std::vector<const FuzzReaders::Reader*> readers;
    for (const FuzzReaders::Reader* r = FuzzReaders::begin(); r != FuzzReaders::end(); ++r)
        readers.push_back(r);
    return readers;
}

} // namespace

TEST(FuzzReaderTable, EveryBuiltTargetHasAReaderAndSeeds)
{
    std::stringstream list(VELMORA_FUZZ_TARGETS);
    std::set<std::string> built;
    for (std::string name; std::getline(list, name, ',');)
        built.insert(name);
    std::set<std::string> table;
    for (const FuzzReaders::Reader* r = FuzzReaders::begin(); r != FuzzReaders::end(); ++r) {
        table.insert(r->name);
        EXPECT_EQ(FuzzReaders::find(r->name), r);
        EXPECT_FALSE(filesIn(corpusDir(r->name)).empty()) << r->name << " has no seed files";
    }
    EXPECT_EQ(built, table);
    EXPECT_EQ(FuzzReaders::find("nonesuch"), nullptr);
}

// Seeds are good files unless their name says "bad-".
TEST_P(FuzzFiles, SeedsLoadAndBadSeedsAreRefused)
{
    const FuzzReaders::Reader& reader = *GetParam();
    for (const std::string& file : filesIn(corpusDir(reader.name))) {
        FuzzReaders::Outcome expected = file.rfind("bad-", 0) == 0 ? FuzzReaders::REJECTED : FuzzReaders::LOADED;
        EXPECT_STREQ(describe(feed(reader, bytesOf(corpusDir(reader.name) + "/" + file))), describe(expected))
            << reader.name << "/" << file;
    }
}

TEST_P(FuzzFiles, CutOffSeedsNeverCrashAndStrictReadersRefuseThem)
{
    const FuzzReaders::Reader& reader = *GetParam();
    for (const std::string& file : filesIn(corpusDir(reader.name))) {
        std::string bytes = bytesOf(corpusDir(reader.name) + "/" + file);
        for (size_t length = 0; length < bytes.size(); ++length) {
            FuzzReaders::Outcome outcome = feed(reader, bytes.substr(0, length));
            ASSERT_NE(outcome, FuzzReaders::INCONSISTENT) << reader.name << "/" << file << " cut at " << length;
            if (cutFilesFail(reader.name)) {
                ASSERT_EQ(outcome, FuzzReaders::REJECTED) << reader.name << "/" << file << " cut at " << length;
            }
        }
    }
}

// Each file under regressions/<reader>/ once crashed or misled a reader.
TEST_P(FuzzFiles, SavedFindingsStayHarmless)
{
    const FuzzReaders::Reader& reader = *GetParam();
    std::string dir = std::string(VELMORA_FUZZ_DIR) + "/regressions/" + reader.name;
    for (const std::string& file : filesIn(dir))
        EXPECT_NE(feed(reader, bytesOf(dir + "/" + file)), FuzzReaders::INCONSISTENT) << reader.name << "/" << file;
}

INSTANTIATE_TEST_SUITE_P(Readers, FuzzFiles, ::testing::ValuesIn(allReaders()), readerName);

// The forge's files are what the demo reads: they must pass the same checks.
TEST(FuzzForgeOutput, MeshesPathsAndPicturesLoad)
{
    struct Source {
        const char* dir;
        const char* suffix;
        const char* reader;
    };
    const Source sources[] = {{"data/3d", ".msh", "mesh"},   {"data/3d", ".oct", "octree"},
                              {"data/3d", ".bez", "bezier"}, {"data", ".bez", "bezier"},
                              {"data/3d", ".cam", "animation"}, {"data/img", ".png", "png"},
                              {"data", ".png", "png"}};
    int seen = 0;
    FuzzReaders::prepare();
    for (const Source& source : sources) {
        for (const std::string& file : filesIn(source.dir)) {
            if (file.size() < 4 || file.compare(file.size() - 4, 4, source.suffix) != 0)
                continue;
            ++seen;
            std::string path = std::string(source.dir) + "/" + file;
            EXPECT_EQ(feed(*FuzzReaders::find(source.reader), bytesOf(path)), FuzzReaders::LOADED) << path;
        }
    }
    if (seen == 0)
        GTEST_SKIP() << "no forge output in the working directory";
}
