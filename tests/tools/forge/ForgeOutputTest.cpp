// The forge program end to end: the tree it writes, byte-identical twice, and each picture's layout rules.
#include "PngFile.h"

#include "ContentUnits.h"
#include "effects/CreditsLayout.h"
#include "effects/IslandsLayout.h"
#include "effects/SharedLayout.h"
#include "effects/TunnelLayout.h"
#include "scene/Mesh.h"
#include "text/Console.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

// Runs the forge; returns its exit status and what it printed.
int runForge(const std::string& arguments, std::string& output)
{
    FILE* pipe = popen((std::string(FORGE_EXE) + " " + arguments + " 2>&1").c_str(), "r");
    if (!pipe)
        return -1;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe))
        output += buffer;
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::map<std::string, std::string> readTree(const std::string& root)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream in(entry.path(), std::ios::binary);
        files[fs::relative(entry.path(), root).string()] = std::string(std::istreambuf_iterator<char>(in), {});
    }
    return files;
}

double alphaSum(const PngFile& png, int x0, int y0, int w, int h)
{
    double sum = 0.0;
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x)
            sum += png.pixel(x, y)[3];
    return sum / 255.0;
}

// Ink along the one-texel rim of a cell: filtering would pull it into the neighbour.
double rimSum(const PngFile& png, int x0, int y0, int w, int h)
{
    return alphaSum(png, x0, y0, w, 1) + alphaSum(png, x0, y0 + h - 1, w, 1) + alphaSum(png, x0, y0, 1, h) +
           alphaSum(png, x0 + w - 1, y0, 1, h);
}

// Mean step between neighbouring columns, and the step across the wrap-around seam.
void seamSteps(const PngFile& png, bool down, double& inside, double& seam)
{
    const int across = down ? png.height : png.width, along = down ? png.width : png.height;
    double sum = 0.0, wrap = 0.0;
    for (int j = 0; j < along; ++j)
        for (int i = 0; i < across; ++i) {
            const int n = (i + 1) % across;
            const uint8_t* a = down ? png.pixel(j, i) : png.pixel(i, j);
            const uint8_t* b = down ? png.pixel(j, n) : png.pixel(n, j);
            const double d = std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]);
            (n == 0 ? wrap : sum) += d;
        }
    inside = sum / ((double)(across - 1) * along);
    seam = wrap / along;
}

class ForgeOutput : public ::testing::Test {
protected:
    // Under ctest a set-up test made both runs; they count only when newer than the forge, else they are made here.
    static void SetUpTestSuite()
    {
        const fs::path runs(FORGE_RUNS);
        first = (runs / "a").string();
        second = (runs / "b").string();
        std::error_code error;
        const auto ready = fs::last_write_time(runs / "ready", error);
        if (error || ready < fs::last_write_time(FORGE_EXE, error) || error) {
            fs::remove_all(runs, error);
            fs::create_directories(first, error);
            fs::create_directories(second, error);
            std::string ignored;
            firstStatus = runForge(first, firstOutput);
            secondStatus = runForge(second, ignored);
            return;
        }
        std::ifstream log(runs / "a.log");
        firstOutput.assign(std::istreambuf_iterator<char>(log), {});
        std::ifstream(runs / "status") >> firstStatus >> secondStatus;
    }

    static PngFile load(const std::string& relative)
    {
        PngFile png;
        EXPECT_TRUE(png.read(first + "/" + relative)) << relative;
        return png;
    }

    static std::string first, second, firstOutput;
    static int firstStatus, secondStatus;
};

std::string ForgeOutput::first, ForgeOutput::second, ForgeOutput::firstOutput;
int ForgeOutput::firstStatus = -1, ForgeOutput::secondStatus = -1;

TEST_F(ForgeOutput, TwoRunsWriteByteIdenticalTreesAndReportThem)
{
    ASSERT_EQ(firstStatus, 0) << firstOutput;
    ASSERT_EQ(secondStatus, 0);
    const auto a = readTree(first), b = readTree(second);
    ASSERT_FALSE(a.empty());
    ASSERT_EQ(a.size(), b.size());
    for (const auto& [name, bytes] : a)
        EXPECT_TRUE(b.count(name) && b.at(name) == bytes) << name << " differs between runs";
    // The report counts exactly the files the run left behind, and the time it took.
    EXPECT_NE(firstOutput.find("velmora-forge: " + std::to_string(a.size()) + " files"), std::string::npos);
    EXPECT_NE(firstOutput.find(" MB in "), std::string::npos) << firstOutput;
}

TEST_F(ForgeOutput, EveryPictureHasTheSizeItsUnitListsAndAlphaExactlyWhenItsFormatHasIt)
{
    int pictures = 0;
    for (const auto& unit : ContentUnits::all()) {
        for (const ForgedFile& file : unit->files()) {
            if (!file.isPicture())
                continue;
            SCOPED_TRACE(file.path);
            ++pictures;
            const PngFile png = load(file.path);
            EXPECT_EQ(png.width, file.width);
            EXPECT_EQ(png.height, file.height);
            EXPECT_EQ(png.channels, file.channels());
        }
    }
    EXPECT_GE(pictures, 13);
}

TEST_F(ForgeOutput, GlyphsAndCreditsAreInkInsideTheirCellsAndTheCreditsWhite)
{
    const PngFile png = load(Console::FONT_TEXTURE.file);
    ASSERT_EQ(png.channels, 4);
    for (int c = 33; c <= 126; ++c) {
        const int x0 = ((c - 33) % 16) * 16, y0 = ((c - 33) / 16) * 24;
        EXPECT_GT(alphaSum(png, x0, y0, 16, 24), 3.0) << "character " << c;
        EXPECT_EQ(rimSum(png, x0, y0, 16, 24), 0.0) << "character " << c << " touches its cell's edge";
    }
    const PngFile credits = load(CreditsLayout::TEXTURE.file);
    ASSERT_EQ(credits.channels, 4);
    // Read as luminance with alpha, the luminance comes from blue: it must be white throughout.
    for (size_t i = 2; i < credits.bytes.size(); i += 4)
        ASSERT_EQ(credits.bytes[i], 255);
    for (int i = 0; i < 4; ++i) {
        for (int half = 0; half < 2; ++half) {
            EXPECT_GT(alphaSum(credits, half * 512, i * 512, 512, 512), 2000.0) << "credit " << i << " half " << half;
            const double rim =
                rimSum(credits, half * 512, i * 512, 512, 512) + rimSum(credits, half * 512 + 1, i * 512 + 1, 510, 510);
            EXPECT_LT(rim, 2.0) << "credit " << i << " half " << half;
        }
    }
}

TEST_F(ForgeOutput, WrappingPicturesHaveNoSeams)
{
    for (const TextureFile& picture :
         {IslandsLayout::SAND, IslandsLayout::WATER, TunnelLayout::ROCK, TunnelLayout::CAUSTICS, IslandsLayout::SKY}) {
        const std::string name = picture.file;
        const PngFile png = load(name);
        for (bool down : {false, true}) {
            double inside = 0.0, seam = 0.0;
            seamSteps(png, down, inside, seam);
            // The sky wraps round the dome, not top to bottom.
            if (!down || name != IslandsLayout::SKY.file) {
                EXPECT_LT(seam, 2.5 * inside + 3.0) << name << (down ? " down" : " across");
            }
        }
    }
}

TEST_F(ForgeOutput, MeshesLoadInTheEngineWithTheirMaterialsAndWinding)
{
    const struct {
        const char* path;
        bool clockwise;
        const char* material;
    } meshes[] = {
        {SharedLayout::SHIP_MESH, true, "ShipMaterial"},        {IslandsLayout::BIRD_MESHES[0], true, "BirdBody"},
        {IslandsLayout::BIRD_MESHES[1], true, "BirdBody"},      {TunnelLayout::OBJECT_FILES[0], false, "TunnelObject"},
        {TunnelLayout::OBJECT_FILES[1], false, "TunnelObject"}, {TunnelLayout::OBJECT_FILES[2], false, "TunnelObject"},
        {TunnelLayout::OBJECT_FILES[3], false, "TunnelObject"}, {TunnelLayout::OBJECT_FILES[4], false, "TunnelObject"},
    };
    // Texture names inside the files are relative to the demo's working directory.
    const fs::path previous = fs::current_path();
    fs::current_path(first);
    for (const auto& file : meshes) {
        SCOPED_TRACE(file.path);
        MaterialMgr::getHandle()->shutdown();
        Mesh mesh;
        ASSERT_TRUE(mesh.load(file.path));
        ASSERT_NE(MaterialMgr::getHandle()->find(file.material), nullptr);
        const FaceArray& faces = *mesh.getFaces();
        const VertexArray& vertices = *mesh.getVertices();
        EXPECT_GE(faces.getNumFaces(), 100);
        int agree = 0;
        for (int f = 0; f < faces.getNumFaces(); ++f) {
            const Face& face = faces[f];
            ASSERT_NE(face.material, nullptr) << "face " << f;
            const Vector3& a = vertices[(int)face.indices[0]].position;
            agree += (vertices[(int)face.indices[1]].position - a)
                         .cross(vertices[(int)face.indices[2]].position - a)
                         .dot(face.normal) > 0.0f;
        }
        // The stored normals point out; the index order runs against them exactly when the mesh is drawn clockwise.
        EXPECT_EQ(agree, file.clockwise ? 0 : faces.getNumFaces());
        for (int i = 0; i < vertices.getNumVertices(); ++i)
            ASSERT_NEAR(vertices[i].normal.length(), 1.0f, 1e-4f);
    }
    MaterialMgr::getHandle()->shutdown();
    fs::current_path(previous);
}

TEST(ForgeProgram, OnlyWritesOneUnitsFilesAndMissingMakesAgainWhatWasDeleted)
{
    const std::string root = "/tmp/forge-only-" + std::to_string(getpid());
    std::string output;
    ASSERT_EQ(runForge("--only islands " + root, output), 0) << output;
    std::set<std::string> expected;
    for (const ForgedFile& file : ContentUnits::find("islands")->files())
        expected.insert(file.path);
    std::set<std::string> written;
    for (const auto& [name, bytes] : readTree(root))
        written.insert(name);
    EXPECT_EQ(written, expected);

    fs::remove(fs::path(root) / IslandsLayout::SAND.file);
    output.clear();
    ASSERT_EQ(runForge("--missing " + root, output), 0) << output;
    EXPECT_TRUE(fs::exists(fs::path(root) / IslandsLayout::SAND.file));
    // The other units had every file missing, so they were forged too.
    EXPECT_TRUE(fs::exists(fs::path(root) / TunnelLayout::OCTREE));
    // Nothing missing: nothing forged, nothing said.
    output.clear();
    ASSERT_EQ(runForge("--missing " + root, output), 0);
    EXPECT_EQ(output, "");
    fs::remove_all(root);
}

TEST(ForgeProgram, AnUnknownUnitOrAnUnwritableRootIsAClearError)
{
    std::string output;
    EXPECT_EQ(runForge("--only nowhere /tmp/forge-nowhere", output), 2);
    EXPECT_NE(output.find("no unit named 'nowhere'"), std::string::npos) << output;
    for (const auto& unit : ContentUnits::all())
        EXPECT_NE(output.find(unit->name()), std::string::npos) << output;
    EXPECT_FALSE(fs::exists("/tmp/forge-nowhere"));
    output.clear();
    EXPECT_EQ(runForge("/proc/forge-cannot-write-here", output), 1);
    EXPECT_NE(output.find("could not write /proc/forge-cannot-write-here/data/"), std::string::npos) << output;
    EXPECT_NE(output.find("0 files"), std::string::npos) << output;
}

TEST(ForgeProgram, ListPrintsEveryUnitsFilesOnceWithTheirSizes)
{
    std::string output;
    ASSERT_EQ(runForge("--list", output), 0);
    std::set<std::string> lines;
    std::istringstream in(output);
    for (std::string line; std::getline(in, line);)
        EXPECT_TRUE(lines.insert(line).second) << line;
    size_t count = 0;
    for (const auto& unit : ContentUnits::all())
        for (const ForgedFile& file : unit->files()) {
            ++count;
            const std::string line = std::string(unit->name()) + " " + file.path + " " + std::to_string(file.width) +
                                     " " + std::to_string(file.height) + " " + std::to_string(file.format);
            EXPECT_TRUE(lines.count(line)) << line;
        }
    EXPECT_EQ(lines.size(), count);
}

}  // namespace
