// Every seed and every saved finding of the fuzz targets, read through the same entry points in the ordinary suite.
#include "FuzzReaders.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <algorithm>
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

std::string dirOf(const char* kind, const char* reader)
{
    return std::string(VELMORA_FUZZ_DIR) + "/" + kind + "/" + reader;
}

class FuzzFiles : public ::testing::TestWithParam<const FuzzReaders::Reader*> {
protected:
    static void SetUpTestSuite() { FuzzReaders::prepare(); }
};

std::vector<const FuzzReaders::Reader*> allReaders()
{
    std::vector<const FuzzReaders::Reader*> readers;
    for (const FuzzReaders::Reader* r = FuzzReaders::begin(); r != FuzzReaders::end(); ++r)
        readers.push_back(r);
    return readers;
}

}  // namespace

TEST(FuzzReaderTable, EveryBuiltTargetHasAReaderAndSeeds)
{
    std::stringstream list(VELMORA_FUZZ_TARGETS);
    std::set<std::string> built, table;
    for (std::string name; std::getline(list, name, ',');)
        built.insert(name);
    for (const FuzzReaders::Reader* r : allReaders()) {
        table.insert(r->name);
        EXPECT_FALSE(filesIn(dirOf("corpus", r->name)).empty()) << r->name << " has no seed files";
    }
    EXPECT_EQ(built, table);
    EXPECT_EQ(FuzzReaders::find("nonesuch"), nullptr);
}

// Seeds are good files unless their name says "bad-"; each file under regressions/ once crashed or misled a reader.
TEST_P(FuzzFiles, SeedsLoadBadSeedsAreRefusedAndSavedFindingsStayHarmless)
{
    const FuzzReaders::Reader& reader = *GetParam();
    for (const std::string& file : filesIn(dirOf("corpus", reader.name))) {
        FuzzReaders::Outcome expected = file.rfind("bad-", 0) == 0 ? FuzzReaders::REJECTED : FuzzReaders::LOADED;
        EXPECT_EQ(feed(reader, bytesOf(dirOf("corpus", reader.name) + "/" + file)), expected) << file;
    }
    for (const std::string& file : filesIn(dirOf("regressions", reader.name)))
        EXPECT_NE(feed(reader, bytesOf(dirOf("regressions", reader.name) + "/" + file)), FuzzReaders::INCONSISTENT)
            << file;
}

// Readers whose files end with their last declared field must refuse any cut-off copy.
TEST_P(FuzzFiles, CutOffSeedsNeverCrashAndStrictReadersRefuseThem)
{
    static const std::set<std::string> strict = {"mesh",   "plainmesh", "materials", "lights", "cameras", "textures",
                                                 "octree", "bezier",    "terrain",   "png",    "bw"};
    const FuzzReaders::Reader& reader = *GetParam();
    for (const std::string& file : filesIn(dirOf("corpus", reader.name))) {
        std::string bytes = bytesOf(dirOf("corpus", reader.name) + "/" + file);
        for (size_t length = 0; length < bytes.size(); ++length) {
            FuzzReaders::Outcome outcome = feed(reader, bytes.substr(0, length));
            ASSERT_NE(outcome, FuzzReaders::INCONSISTENT) << file << " cut at " << length;
            if (strict.count(reader.name)) {
                ASSERT_EQ(outcome, FuzzReaders::REJECTED) << file << " cut at " << length;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Readers, FuzzFiles, ::testing::ValuesIn(allReaders()),
                         [](const ::testing::TestParamInfo<const FuzzReaders::Reader*>& info) {
                             return std::string(info.param->name);
                         });
