// velmora-data as a program: every generated file passes, damaged copies fail with one line, never a crash.
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>

namespace {

std::string baseName(const std::string& file)
{
    return std::filesystem::path(file).filename().string();
}

// A damaged copy must be refused in one line that names it.
void expectRefused(const std::string& copy, const std::string& why)
{
    ProgramRun run = ProgramRun::run({"info", copy});
    EXPECT_EQ(run.status, 1) << why << "\n" << run.err;
    EXPECT_EQ(run.errLines(), 1) << why << "\n" << run.err;
    EXPECT_NE(run.err.find(copy), std::string::npos) << why << "\n" << run.err;
}

// Positions of the first occurrence of every engine tag, for flips that break the structure.
std::vector<size_t> tagPositions(const std::vector<unsigned char>& bytes)
{
    static const char* const tags[] = {"MMGR", "CMAT", "TMAT", "MMAT", "MESH", "VARR", "FARR", "OCTT",
                                       "OCTN", "CANI", "LIN3", "TCB0", "BMSH", "CMGR", "LMGR", "TMGR"};
    std::vector<size_t> found;
    for (const char* tag : tags) {
        auto at = std::search(bytes.begin(), bytes.end(), tag, tag + 4);
        if (at != bytes.end())
            found.push_back(static_cast<size_t>(at - bytes.begin()));
    }
    return found;
}

bool isChunkFile(const std::vector<unsigned char>& bytes)
{
    std::vector<size_t> tags = tagPositions(bytes);
    return std::find(tags.begin(), tags.end(), 0u) != tags.end();
}

bool startsWithContainer(const std::vector<unsigned char>& bytes)
{
    for (const char* tag : {"MMGR", "CMGR", "LMGR", "TMGR"}) {
        if (bytes.size() > 8 && std::memcmp(bytes.data(), tag, 4) == 0)
            return true;
    }
    return false;
}

} // namespace

TEST(DataInfoGeneratedFiles, TheDataTreeHoldsWhatTheScenesLoad)
{
    std::vector<std::string> files = generatedFiles();
    for (const char* needed : {"data/3d/ship.msh", "data/3d/leaf.msh", "data/3d/fan2.msh", "data/img/credits.png",
                               "data/img/logo.png", "data/confont.png", "data/conbg2.png", "data/music/velmora.xm"})
        EXPECT_NE(std::find(files.begin(), files.end(), needed), files.end()) << needed;
}

TEST(DataInfoGeneratedFiles, InfoOnEveryFileExitsZeroWithAPrintout)
{
    for (const std::string& file : generatedFiles()) {
        ProgramRun run = ProgramRun::run({"info", file});
        EXPECT_EQ(run.status, 0) << file << "\n" << run.err;
        EXPECT_EQ(run.err, "") << file;
        EXPECT_EQ(run.out.rfind(file + ": ", 0), 0u) << file << "\n" << run.out;
    }
}

TEST(DataInfoGeneratedFiles, AMeshFindsItsTexturesFromAnyWorkingDirectory)
{
    std::string mesh = std::filesystem::absolute("data/3d/leaf.msh").string();
    ProgramRun run = ProgramRun::run({"info", mesh}, std::filesystem::temp_directory_path().string());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("engine: Mesh::load reads"), std::string::npos) << run.out;
}

TEST(DataInfoDamagedCopies, EveryCutShortCopyIsRefused)
{
    ScratchDir dir("cut");
    for (const std::string& file : generatedFiles()) {
        std::vector<unsigned char> bytes = readBytes(file);
        std::set<size_t> cuts = {0, 1, 4, 21, bytes.size() / 3, bytes.size() / 2, bytes.size() - 1};
        for (size_t cut : cuts) {
            if (cut >= bytes.size())
                continue;
            std::string copy = dir.file(std::to_string(cut) + "-" + baseName(file));
            writeBytes(copy, std::vector<unsigned char>(bytes.begin(), bytes.begin() + static_cast<long>(cut)));
            expectRefused(copy, file + " cut at " + std::to_string(cut));
        }
    }
}

TEST(DataInfoDamagedCopies, BrokenTagsAndMagicAreRefused)
{
    ScratchDir dir("tags");
    for (const std::string& file : generatedFiles()) {
        std::vector<unsigned char> bytes = readBytes(file);
        std::vector<size_t> spots = {0};
        if (isChunkFile(bytes))
            spots = tagPositions(bytes);
        // The high byte of the first container's count.
        if (startsWithContainer(bytes))
            spots.push_back(7);
        for (size_t spot : spots) {
            std::vector<unsigned char> damaged = bytes;
            damaged[spot] ^= 0x55;
            std::string copy = dir.file(std::to_string(spot) + "-" + baseName(file));
            writeBytes(copy, damaged);
            expectRefused(copy, file + " flipped at " + std::to_string(spot));
        }
    }
}

TEST(DataInfoDamagedCopies, FlippedBytesInsidePicturesFailTheirChecksums)
{
    ScratchDir dir("flip");
    for (const std::string& file : generatedFiles()) {
        std::vector<unsigned char> bytes = readBytes(file);
        bool png = bytes.size() > 8 && std::memcmp(bytes.data(), "\x89PNG", 4) == 0;
        bool ctx = bytes.size() > 24 && std::memcmp(bytes.data(), "CTX1", 4) == 0;
        if (!png && !ctx)
            continue;
        for (size_t spot : {bytes.size() / 2, bytes.size() - 3}) {
            std::vector<unsigned char> damaged = bytes;
            damaged[spot] ^= 0x01;
            std::string copy = dir.file(std::to_string(spot) + "-" + baseName(file));
            writeBytes(copy, damaged);
            expectRefused(copy, file + " flipped at " + std::to_string(spot));
        }
    }
}

TEST(DataInfoDamagedCopies, ScatteredFlipsNeverCrash)
{
    ScratchDir dir("scatter");
    unsigned seed = 12345;
    for (const std::string& file : generatedFiles()) {
        std::vector<unsigned char> bytes = readBytes(file);
        for (int i = 0; i < 6 && !bytes.empty(); ++i) {
            seed = seed * 1103515245u + 12345u;
            size_t spot = (seed >> 8) % bytes.size();
            std::vector<unsigned char> damaged = bytes;
            damaged[spot] = static_cast<unsigned char>(damaged[spot] ^ (seed >> 24 | 1));
            std::string copy = dir.file(std::to_string(spot) + "-" + baseName(file));
            writeBytes(copy, damaged);
            ProgramRun run = ProgramRun::run({"info", copy});
            // A flip inside a number can leave a sound file; anything else must be a clean refusal.
            ASSERT_TRUE(run.status == 0 || run.status == 1) << copy << " status " << run.status << "\n" << run.err;
            EXPECT_EQ(run.errLines(), run.status) << copy << "\n" << run.err;
        }
    }
}

TEST(DataInfoCommandLine, WrongCommandLinesExitTwoWithTheUsage)
{
    for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
             {}, {"info"}, {"list", "data/3d/ship.msh"}, {"info", "data/3d/ship.msh", "--format", "9"},
             {"convert", "data/img/ship.png"}}) {
        ProgramRun run = ProgramRun::run(args);
        EXPECT_EQ(run.status, 2) << (args.empty() ? "" : args[0]);
        EXPECT_GE(run.errLines(), 1);
    }
}

TEST(DataInfoCommandLine, AMissingFileIsRefusedByName)
{
    ProgramRun run = ProgramRun::run({"info", "data/3d/no-such-file.msh"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "velmora-data: data/3d/no-such-file.msh: cannot be opened\n");
}

TEST(DataInfoCommandLine, OneBadFileAmongGoodOnesFailsTheRun)
{
    ProgramRun run = ProgramRun::run({"info", "data/3d/ship.msh", "data/none.png", "data/img/logo.png"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errLines(), 1);
    EXPECT_NE(run.out.find("data/img/logo.png: PNG image"), std::string::npos);
}

TEST(DataInfoKinds, TheKindComesFromTheContentNotTheName)
{
    ScratchDir dir("kinds");
    std::string renamedMesh = dir.file("ship.bin");
    std::filesystem::copy_file("data/3d/ship.msh", renamedMesh);
    ProgramRun mesh = ProgramRun::run({"info", renamedMesh});
    EXPECT_EQ(mesh.status, 0) << mesh.err;
    EXPECT_NE(mesh.out.find("kind: mesh file"), std::string::npos);

    // The engine picks texture loaders by name: a PNG called .jpg would never load in the demo.
    std::string misnamed = dir.file("ship.jpg");
    std::filesystem::copy_file("data/img/ship.png", misnamed);
    ProgramRun picture = ProgramRun::run({"info", misnamed});
    EXPECT_EQ(picture.status, 1);
    EXPECT_NE(picture.err.find("\"jpg\" loader"), std::string::npos) << picture.err;
    // Conversion goes by the content, so the same file still converts.
    EXPECT_EQ(ProgramRun::run({"convert", misnamed, dir.file("ship.ctx")}).status, 0);
}

TEST(DataInfoConvert, WritesAContainerThatInfoAccepts)
{
    ScratchDir dir("convert");
    std::string plain = dir.file("ship.ctx");
    ProgramRun run = ProgramRun::run({"convert", "data/img/ship.png", plain});
    ASSERT_EQ(run.status, 0) << run.err;
    ProgramRun info = ProgramRun::run({"info", plain});
    EXPECT_EQ(info.status, 0) << info.err;
    EXPECT_NE(info.out.find("CTX1 256 x 256, bits per pixel 8, format 7"), std::string::npos) << info.out;

    std::string mipmapped = dir.file("credits.mtx");
    ASSERT_EQ(ProgramRun::run({"convert", "data/img/credits.png", mipmapped, "--format", "6"}).status, 0);
    ProgramRun levels = ProgramRun::run({"info", mipmapped});
    EXPECT_EQ(levels.status, 0) << levels.err;
    EXPECT_NE(levels.out.find("format 6"), std::string::npos) << levels.out;
    EXPECT_NE(levels.out.find("12 mipmap levels"), std::string::npos) << levels.out;
}

TEST(DataInfoConvert, RefusesWhatItCannotWrite)
{
    ScratchDir dir("refuse");
    ProgramRun toPng = ProgramRun::run({"convert", "data/img/ship.png", dir.file("ship.png")});
    EXPECT_EQ(toPng.status, 1);
    EXPECT_NE(toPng.err.find("must end in .ctx or .mtx"), std::string::npos);

    ProgramRun fromMesh = ProgramRun::run({"convert", "data/3d/ship.msh", dir.file("ship.ctx")});
    EXPECT_EQ(fromMesh.status, 1);
    EXPECT_EQ(fromMesh.errLines(), 1);

    std::string container = dir.file("logo.ctx");
    ASSERT_EQ(ProgramRun::run({"convert", "data/img/logo.png", container}).status, 0);
    ProgramRun reformat = ProgramRun::run({"convert", container, dir.file("again.ctx"), "--format", "8"});
    EXPECT_EQ(reformat.status, 1);
    EXPECT_NE(reformat.err.find("keeps its format 7"), std::string::npos) << reformat.err;
}
