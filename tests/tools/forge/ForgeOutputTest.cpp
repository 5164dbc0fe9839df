// The forge program end to end: the tree it writes, byte-identical twice, and each picture's layout rules.
#include "PngFile.h"

#include "scene/Mesh.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Expected {
    const char* path;
    int width;
    int height;
    int channels;
};

const Expected expectedFiles[] = {
    { "confont.png", 256, 256, 4 },
    { "conbg2.png", 256, 256, 3 },
    { "img/credits.png", 1024, 2048, 4 },
    { "img/logo.png", 1024, 1024, 3 },
    { "img/sand4.png", 512, 512, 3 },
    { "img/water.png", 256, 256, 4 },
    { "img/ship.png", 256, 256, 3 },
    { "img/particle.png", 128, 128, 3 },
    { "img/skymoon2.png", 2048, 1024, 3 },
    { "img/window02.png", 256, 256, 4 },
    { "img/test.png", 256, 256, 3 },
    { "img/water03.png", 256, 256, 3 },
    { "img/refmap.png", 256, 256, 3 },
};

std::string makeTempDir()
{
    std::string pattern = (fs::temp_directory_path() / "forge_run_XXXXXX").string();
    return mkdtemp(pattern.data()) ? pattern : std::string();
}

// Runs the forge; returns its exit status and what it printed.
int runForge(const std::string& arguments, std::string& output)
{
    const std::string command = std::string(FORGE_EXE) + " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
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

class ForgeOutput : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (useSharedRuns())
            return;
        first = makeTempDir();
        second = makeTempDir();
        ownRuns = true;
        firstStatus = runForge(first, firstOutput);
        std::string ignored;
        secondStatus = runForge(second, ignored);
    }

    // Under ctest a set-up test has already made both runs; they count only when
    // newer than the forge program, so a rebuilt forge is never judged by old output.
    static bool useSharedRuns()
    {
        const fs::path runs(FORGE_RUNS);
        std::error_code error;
        const auto ready = fs::last_write_time(runs / "ready", error);
        if (error)
            return false;
        const auto program = fs::last_write_time(FORGE_EXE, error);
        if (error || ready < program)
            return false;
        std::ifstream log(runs / "a.log");
        firstOutput.assign(std::istreambuf_iterator<char>(log), {});
        std::ifstream status(runs / "status");
        status >> firstStatus >> secondStatus;
        first = (runs / "a").string();
        second = (runs / "b").string();
        return true;
    }

    static void TearDownTestSuite()
    {
        if (!ownRuns)
            return;
        std::error_code error;
        fs::remove_all(first, error);
        fs::remove_all(second, error);
    }

    static PngFile load(const std::string& relative)
    {
        PngFile png;
        EXPECT_TRUE(png.read(first + "/data/" + relative)) << relative;
        return png;
    }

    static std::string first, second, firstOutput;
    static int firstStatus, secondStatus;
    static bool ownRuns;
};

std::string ForgeOutput::first, ForgeOutput::second, ForgeOutput::firstOutput;
int ForgeOutput::firstStatus = -1, ForgeOutput::secondStatus = -1;
bool ForgeOutput::ownRuns = false;

// Mean step between neighbouring columns, and the step across the wrap-around seam.
void seamSteps(const PngFile& png, double& inside, double& seam)
{
    double sum = 0.0, wrap = 0.0;
    for (int y = 0; y < png.height; ++y) {
        for (int x = 0; x < png.width; ++x) {
            const uint8_t* a = png.pixel(x, y);
            const uint8_t* b = png.pixel((x + 1) % png.width, y);
            double d = 0.0;
            for (int c = 0; c < 3; ++c)
                d += std::abs(a[c] - b[c]);
            if (x + 1 == png.width)
                wrap += d;
            else
                sum += d;
        }
    }
    inside = sum / ((double)(png.width - 1) * png.height);
    seam = wrap / png.height;
}

PngFile transposed(const PngFile& png)
{
    PngFile t;
    t.width = png.height;
    t.height = png.width;
    t.channels = png.channels;
    t.bytes.resize(png.bytes.size());
    for (int y = 0; y < png.height; ++y)
        for (int x = 0; x < png.width; ++x)
            for (int c = 0; c < png.channels; ++c)
                t.bytes[((size_t)x * t.width + y) * t.channels + c] = png.pixel(x, y)[c];
    return t;
}

double alphaSum(const PngFile& png, int x0, int y0, int w, int h)
{
    double sum = 0.0;
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x)
            sum += png.pixel(x, y)[3];
    return sum / 255.0;
}

TEST_F(ForgeOutput, RunsCleanlyAndReportsItsWork)
{
    EXPECT_EQ(firstStatus, 0) << firstOutput;
    EXPECT_EQ(secondStatus, 0);
    // The report counts exactly the files the run left behind.
    const std::string count = "velmora-forge: " + std::to_string(readTree(first).size()) + " files";
    EXPECT_NE(firstOutput.find(count), std::string::npos) << firstOutput;
    EXPECT_NE(firstOutput.find(" MB in "), std::string::npos) << firstOutput;
}

TEST_F(ForgeOutput, TwoRunsWriteByteIdenticalTrees)
{
    const auto a = readTree(first);
    const auto b = readTree(second);
    ASSERT_FALSE(a.empty());
    ASSERT_EQ(a.size(), b.size());
    for (const auto& [name, bytes] : a) {
        const auto other = b.find(name);
        ASSERT_NE(other, b.end()) << name;
        EXPECT_TRUE(bytes == other->second) << name << " differs between runs";
    }
}

TEST_F(ForgeOutput, EveryPictureLoadsWithItsSizeAndChannels)
{
    for (const Expected& e : expectedFiles) {
        PngFile png;
        ASSERT_TRUE(png.read(first + "/data/" + e.path)) << e.path;
        EXPECT_EQ(png.width, e.width) << e.path;
        EXPECT_EQ(png.height, e.height) << e.path;
        EXPECT_EQ(png.channels, e.channels) << e.path;
    }
}

TEST_F(ForgeOutput, GlyphAtlasHasInkInsideEveryPrintableCell)
{
    const PngFile png = load("confont.png");
    ASSERT_EQ(png.channels, 4);
    for (int c = 33; c <= 126; ++c) {
        const int g = c - 33;
        const int x0 = (g % 16) * 16;
        const int y0 = (g / 16) * 24;
        EXPECT_GT(alphaSum(png, x0, y0, 16, 24), 3.0) << "character " << c;
        const double edge = alphaSum(png, x0, y0, 16, 1) + alphaSum(png, x0, y0 + 23, 16, 1)
            + alphaSum(png, x0, y0, 1, 24) + alphaSum(png, x0 + 15, y0, 1, 24);
        EXPECT_EQ(edge, 0.0) << "character " << c << " touches its cell's edge";
    }
}

TEST_F(ForgeOutput, CreditsAreWhiteInkInEightSeparateCells)
{
    const PngFile png = load("img/credits.png");
    ASSERT_EQ(png.channels, 4);
    // Read as luminance with alpha, the luminance comes from blue: it must be white throughout.
    for (size_t i = 2; i < png.bytes.size(); i += 4)
        ASSERT_EQ(png.bytes[i], 255);
    const int cell = 512;
    for (int i = 0; i < 4; ++i) {
        for (int half = 0; half < 2; ++half) {
            const int x0 = half * cell;
            const int y0 = i * cell;
            EXPECT_GT(alphaSum(png, x0, y0, cell, cell), 2000.0) << "credit " << i << " half " << half;
            // Filtering must not pull one credit's ink into its neighbour's quad.
            const double rim = alphaSum(png, x0, y0, cell, 2) + alphaSum(png, x0, y0 + cell - 2, cell, 2)
                + alphaSum(png, x0, y0, 2, cell) + alphaSum(png, x0 + cell - 2, y0, 2, cell);
            EXPECT_LT(rim, 2.0) << "credit " << i << " half " << half;
        }
    }
}

TEST_F(ForgeOutput, BlurredCreditsSpreadWiderThanSharpOnes)
{
    const PngFile png = load("img/credits.png");
    for (int i = 0; i < 4; ++i) {
        int sharp = 0, blurred = 0;
        for (int y = i * 512; y < (i + 1) * 512; ++y)
            for (int x = 0; x < 512; ++x) {
                sharp += png.pixel(x, y)[3] > 8;
                blurred += png.pixel(x + 512, y)[3] > 8;
            }
        EXPECT_GT(blurred, sharp * 3 / 2) << "credit " << i;
    }
}

TEST_F(ForgeOutput, LogoKeepsItsHiddenTwelfthsPlain)
{
    const PngFile png = load("img/logo.png");
    // The sheet never shows the top twelfth or the right twelfth; the warm background
    // alone may be there, never the white or navy of the logo itself.
    for (int y = 0; y < png.height; ++y) {
        for (int x = 0; x < png.width; ++x) {
            if (y >= png.height / 12 && x < png.width * 11 / 12)
                continue;
            const uint8_t* p = png.pixel(x, y);
            ASSERT_GT(p[0], p[2]) << x << "," << y;
            ASSERT_LT(p[1] + 30, p[0] + 1) << x << "," << y;
        }
    }
    int navy = 0, white = 0;
    for (int y = png.height / 12; y < png.height; ++y)
        for (int x = 0; x < png.width * 11 / 12; ++x) {
            const uint8_t* p = png.pixel(x, y);
            navy += p[2] > p[0] + 40;
            white += p[0] > 240 && p[1] > 240 && p[2] > 200;
        }
    EXPECT_GT(navy, 20000);
    EXPECT_GT(white, 5000);
}

TEST_F(ForgeOutput, TilingPicturesHaveNoSeams)
{
    for (const char* name : { "img/sand4.png", "img/water.png", "img/test.png", "img/water03.png" }) {
        const PngFile png = load(name);
        double inside = 0.0, seam = 0.0;
        seamSteps(png, inside, seam);
        EXPECT_LT(seam, 2.5 * inside + 3.0) << name << " across";
        seamSteps(transposed(png), inside, seam);
        EXPECT_LT(seam, 2.5 * inside + 3.0) << name << " down";
    }
}

TEST_F(ForgeOutput, SkyWrapsRoundAndClosesAtTheZenith)
{
    const PngFile png = load("img/skymoon2.png");
    double inside = 0.0, seam = 0.0;
    seamSteps(png, inside, seam);
    EXPECT_LT(seam, 2.5 * inside + 3.0);
    // The first row is a single point on the dome: it must be one colour.
    int lo = 255, hi = 0;
    for (int x = 0; x < png.width; ++x) {
        lo = std::min<int>(lo, png.pixel(x, 0)[2]);
        hi = std::max<int>(hi, png.pixel(x, 0)[2]);
    }
    EXPECT_LE(hi - lo, 6);
    // The brightest 16 × 16 block is on the moon (stars are too small to fill one),
    // three eighths of the way round and low in the sky.
    const int block = 16;
    double best = -1.0;
    int bx = 0, by = 0;
    for (int y0 = 0; y0 + block <= png.height; y0 += block / 2)
        for (int x0 = 0; x0 + block <= png.width; x0 += block / 2) {
            double sum = 0.0;
            for (int y = y0; y < y0 + block; ++y)
                for (int x = x0; x < x0 + block; ++x)
                    sum += png.pixel(x, y)[0] + png.pixel(x, y)[1] + png.pixel(x, y)[2];
            if (sum > best) {
                best = sum;
                bx = x0 + block / 2;
                by = y0 + block / 2;
            }
        }
    EXPECT_NEAR(bx, 0.375 * png.width, 40);
    EXPECT_NEAR(by, (1.0 - 22.0 / 90.0) * png.height, 60);
    EXPECT_GT(best / (block * block), 450.0);
}

TEST_F(ForgeOutput, ParticleIsARoundGlowFadingToBlack)
{
    const PngFile png = load("img/particle.png");
    const int n = png.width;
    for (int i = 0; i < n; ++i) {
        ASSERT_EQ(png.pixel(i, 0)[0], 0);
        ASSERT_EQ(png.pixel(0, i)[0], 0);
        ASSERT_EQ(png.pixel(i, n - 1)[0], 0);
        ASSERT_EQ(png.pixel(n - 1, i)[0], 0);
    }
    EXPECT_GT(png.pixel(n / 2, n / 2)[0], 200);
    // Round: equal distance, equal light, whichever the direction.
    EXPECT_NEAR(png.pixel(n / 2 + 20, n / 2 - 1)[0], png.pixel(n / 2 - 1, n / 2 - 21)[0], 1);
    EXPECT_GT(png.pixel(n / 2 + 10, n / 2)[0], png.pixel(n / 2 + 30, n / 2)[0]);
}

TEST_F(ForgeOutput, WindowIsClearOutsideAndTranslucentInside)
{
    const PngFile png = load("img/window02.png");
    EXPECT_EQ(png.pixel(2, 2)[3], 0);
    EXPECT_EQ(png.pixel(253, 2)[3], 0);
    const int glass = png.pixel(90, 200)[3];
    EXPECT_GT(glass, 180);
    EXPECT_LT(glass, 255);
    EXPECT_GT(png.pixel(90, 200)[0], png.pixel(90, 200)[2]); // warm light
}

struct MeshFile {
    const char* path;
    bool clockwise;
    const char* material;
};

const MeshFile meshFiles[] = {
    { "3d/ship.msh", true, "ShipMaterial" },
    { "3d/fugl1.msh", true, "BirdBody" },
    { "3d/fugl2.msh", true, "BirdBody" },
    { "3d/leaf.msh", false, "TunnelObject" },
    { "3d/worm.msh", false, "TunnelObject" },
    { "3d/spike.msh", false, "TunnelObject" },
    { "3d/fan2.msh", false, "TunnelObject" },
    { "3d/fanholder2.msh", false, "TunnelObject" },
};

TEST_F(ForgeOutput, MeshesLoadInTheEngineWithTheirMaterialsAndWinding)
{
    // Texture names inside the files are relative to the demo's working directory.
    char previous[4096];
    ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
    ASSERT_EQ(chdir(first.c_str()), 0);
    for (const MeshFile& file : meshFiles) {
        MaterialMgr::getHandle()->shutdown();
        Mesh mesh;
        const std::string path = std::string("data/") + file.path;
        ASSERT_TRUE(mesh.load(path.c_str())) << file.path;
        ASSERT_NE(MaterialMgr::getHandle()->find(file.material), nullptr) << file.path;
        const FaceArray& faces = *mesh.getFaces();
        const VertexArray& vertices = *mesh.getVertices();
        EXPECT_GE(faces.getNumFaces(), 100) << file.path;
        int agree = 0;
        for (int f = 0; f < faces.getNumFaces(); ++f) {
            const Face& face = faces[f];
            ASSERT_EQ(face.numIndices, 3);
            for (int k = 0; k < 3; ++k)
                ASSERT_LT(face.indices[k], (uint32_t)vertices.getNumVertices()) << file.path;
            ASSERT_NE(face.material, nullptr) << file.path << " face " << f;
            const Vector3& a = vertices[(int)face.indices[0]].position;
            const Vector3& b = vertices[(int)face.indices[1]].position;
            const Vector3& c = vertices[(int)face.indices[2]].position;
            agree += (b - a).cross(c - a).dot(face.normal) > 0.0f;
        }
        // The stored normals point out; the index order runs against them exactly when the mesh is drawn clockwise.
        EXPECT_EQ(agree, file.clockwise ? 0 : faces.getNumFaces()) << file.path;
        for (int i = 0; i < vertices.getNumVertices(); ++i)
            ASSERT_NEAR(vertices[i].normal.length(), 1.0f, 1e-4f) << file.path;
    }
    MaterialMgr::getHandle()->shutdown();
    ASSERT_EQ(chdir(previous), 0);
}

TEST(ForgeProgram, WrongUsageExitsWithTwo)
{
    std::string output;
    EXPECT_EQ(runForge("", output), 2);
    EXPECT_NE(output.find("usage"), std::string::npos);
}

TEST(ForgeProgram, UnwritableRootFailsAndSaysWhere)
{
    std::string output;
    EXPECT_EQ(runForge("/proc/forge-cannot-write-here", output), 1);
    EXPECT_NE(output.find("could not write /proc/forge-cannot-write-here/data/"), std::string::npos) << output;
    EXPECT_NE(output.find("0 files"), std::string::npos) << output;
}

} // namespace
