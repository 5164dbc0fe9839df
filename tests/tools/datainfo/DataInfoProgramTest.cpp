// velmora-data as a program: every generated file passes the engine's loaders, damaged copies fail with one line, never a crash.
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>

namespace {

// Writes a damaged copy; it must be refused in one line that names it (or, when `mayPass`, pass cleanly).
void expectRefused(const ScratchDir& dir, const std::string& file, const std::string& damage,
                   const std::vector<unsigned char>& bytes, bool mayPass = false)
{
    const std::string copy = dir.file(damage + "-" + std::filesystem::path(file).filename().string());
    writeBytes(copy, bytes);
    const ProgramRun run = ProgramRun::run({"info", copy});
    SCOPED_TRACE(file + " " + damage + "\n" + run.err);
    // A flip inside a number can leave a sound file; anything else must be a clean refusal.
    if (mayPass && run.status == 0) {
        EXPECT_EQ(run.errLines(), 0);
        return;
    }
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errLines(), 1);
    EXPECT_NE(run.err.find(copy), std::string::npos);
}

// The first occurrence of every engine tag: flipping one breaks the structure.
std::vector<size_t> tagPositions(const std::vector<unsigned char>& bytes)
{
    std::vector<size_t> found;
    for (const char* tag : {"MMGR", "CMAT", "TMAT", "MMAT", "MESH", "VARR", "FARR", "OCTT", "OCTN", "CANI", "LIN3",
                            "TCB0", "BMSH", "TERA", "CMGR", "LMGR", "TMGR"}) {
        auto at = std::search(bytes.begin(), bytes.end(), tag, tag + 4);
        if (at != bytes.end())
            found.push_back(static_cast<size_t>(at - bytes.begin()));
    }
    return found;
}

}  // namespace

TEST(DataInfoGeneratedFiles, InfoOnEveryFileExitsZeroWithAPrintout)
{
    const std::vector<std::string> files = generatedFiles();
    EXPECT_GE(files.size(), 30u);
    for (const std::string& file : files) {
        const ProgramRun run = ProgramRun::run({"info", file});
        EXPECT_EQ(run.status, 0) << file << "\n" << run.err;
        EXPECT_EQ(run.err, "") << file;
        EXPECT_EQ(run.out.rfind(file + ": ", 0), 0u) << file << "\n" << run.out;
        // Chunk files are loaded by the engine's own classes too, octree leaves checked for every face.
        const std::string ext = std::filesystem::path(file).extension().string();
        if (ext == ".msh" || ext == ".oct" || ext == ".cam" || ext == ".bez" || ext == ".ter") {
            EXPECT_NE(run.out.find("::load reads"), std::string::npos) << file << "\n" << run.out;
        }
    }
}

TEST(DataInfoDamagedCopies, CutShortFlippedAndScatteredCopiesAreRefusedCleanly)
{
    ScratchDir dir("damaged");
    unsigned seed = 12345;
    for (const std::string& file : generatedFiles()) {
        const std::vector<unsigned char> bytes = readBytes(file);
        ASSERT_GT(bytes.size(), 24u) << file;
        for (size_t cut : std::set<size_t>{0, 1, 4, 21, bytes.size() / 3, bytes.size() / 2, bytes.size() - 1})
            expectRefused(dir, file, "cut" + std::to_string(cut),
                          std::vector<unsigned char>(bytes.begin(), bytes.begin() + static_cast<long>(cut)));
        const auto flip = [&](size_t spot, unsigned mask, const char* name, bool mayPass) {
            std::vector<unsigned char> damaged = bytes;
            damaged[spot] ^= static_cast<unsigned char>(mask);
            expectRefused(dir, file, name + std::to_string(spot), damaged, mayPass);
        };
        // Every tag, the magic, and the high byte of a first container's count.
        std::vector<size_t> tags = tagPositions(bytes);
        for (size_t spot : std::find(tags.begin(), tags.end(), 0u) != tags.end() ? tags : std::vector<size_t>{0})
            flip(spot, 0x55, "tag", false);
        for (const char* tag : {"MMGR", "CMGR", "LMGR", "TMGR"})
            if (std::memcmp(bytes.data(), tag, 4) == 0)
                flip(7, 0x55, "count", false);
        // Inside pictures a single flipped bit must fail the checksums.
        if (std::memcmp(bytes.data(), "\x89PNG", 4) == 0 || std::memcmp(bytes.data(), "CTX1", 4) == 0)
            for (size_t spot : {bytes.size() / 2, bytes.size() - 3})
                flip(spot, 0x01, "bit", false);
        // Anywhere else a flip may leave a sound file, but never a crash.
        for (int i = 0; i < 6; ++i) {
            seed = seed * 1103515245u + 12345u;
            flip((seed >> 8) % bytes.size(), seed >> 24 | 1, "any", true);
        }
    }
}

TEST(DataInfoCommandLine, WrongCommandLinesExitTwoAndAMissingFileIsNamed)
{
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {}, {"list", "data/3d/ship.msh"}, {"info", "data/3d/ship.msh", "--format", "9"}, {"convert", "a.png"}}) {
        const ProgramRun run = ProgramRun::run(args);
        EXPECT_EQ(run.status, 2) << (args.empty() ? "" : args[0]);
        EXPECT_GE(run.errLines(), 1);
    }
    // One bad file among good ones fails the run, and the others are still reported.
    const ProgramRun run = ProgramRun::run({"info", "data/3d/no-such-file.msh", "data/img/logo.png"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "velmora-data: data/3d/no-such-file.msh: cannot be opened\n");
    EXPECT_NE(run.out.find("data/img/logo.png: PNG image"), std::string::npos);
}

TEST(DataInfoConvert, WritesMipmappedContainersAndRefusesOtherOutputsAndMisnamedPictures)
{
    ScratchDir dir("convert");
    ASSERT_EQ(ProgramRun::run({"convert", "data/img/credits.png", dir.file("c.mtx"), "--format", "6"}).status, 0);
    const ProgramRun levels = ProgramRun::run({"info", dir.file("c.mtx")});
    EXPECT_NE(levels.out.find("format 6"), std::string::npos) << levels.out;
    EXPECT_NE(levels.out.find("12 mipmap levels"), std::string::npos) << levels.out;
    const ProgramRun toPng = ProgramRun::run({"convert", "data/img/ship.png", dir.file("ship.png")});
    EXPECT_EQ(toPng.status, 1);
    EXPECT_NE(toPng.err.find("must end in .ctx or .mtx"), std::string::npos);
    // The engine picks texture loaders by name: a PNG called .jpg would never load in the demo.
    const std::string misnamed = dir.file("ship.jpg");
    std::filesystem::copy_file("data/img/ship.png", misnamed);
    const ProgramRun picture = ProgramRun::run({"info", misnamed});
    EXPECT_EQ(picture.status, 1);
    EXPECT_NE(picture.err.find("\"jpg\" loader"), std::string::npos) << picture.err;
}
