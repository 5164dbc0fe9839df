// Meshes: VARR, FARR and MESH chunks, .msh files, the headerless importer, drawing and spherical mapping.
#include "scene/FaceArray.h"
#include "scene/Mesh.h"
#include "scene/SphericalUV.h"
#include "scene/VertexArray.h"
#include "scene/loadMeshMSH.h"
#include "support/GLContext.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include "ByteImage.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

using namespace bytes;

namespace {

Face face(uint32_t a, uint32_t b, uint32_t c, Material* material = nullptr)
{
    Face f;
    f.create(3);
    f.indices[0] = a, f.indices[1] = b, f.indices[2] = c;
    f.normal.assign(0.0f, 0.0f, 1.0f);
    f.setMaterial(material);
    return f;
}

std::string tempPath(const char* name)
{
    return ::testing::TempDir() + "velmora_scene_" + name;
}

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

class MeshChunk : public ::testing::Test {
protected:
    void SetUp() override { MaterialMgr::getHandle()->shutdown(); }
    void TearDown() override { MaterialMgr::getHandle()->shutdown(); }
    static Material* registered(const char* name)
    {
        Material* material = new Material(name);
        MaterialMgr::getHandle()->add(material);
        return material;
    }
    // Limits from (-1, -2, -3) to (4, 5, 6); the other fields hold values whose bits a careless
    // conversion would change: a NaN payload, -0 and a denormal.
    static Mesh* builtMesh(Material* material)
    {
        VertexArray* vertices = new VertexArray();
        vertices->create(3);
        const Vector3 positions[3] = {{-1, -2, -3}, {4, 5, 6}, {0, 0, 0}};
        for (const Vector3& p : positions)
            vertices->addVertex(p, Vector2(fromBits(0x7fc12345u), -0.0f), Vector3(fromBits(1u), 1e30f, -3.25f));
        FaceArray* faces = new FaceArray();
        faces->create(2);
        faces->addFace(face(0, 1, 2, material));
        faces->addFace(face(0, 1, 2));
        Mesh* mesh = new Mesh();
        EXPECT_TRUE(mesh->create(vertices, faces));
        return mesh;
    }
};

std::vector<std::string> events;

// Logs its binds and leaves a colour behind that tells which state a face was drawn in.
struct LoggingMaterial : public Material {
    LoggingMaterial(const char* name, float red, float green) : Material(name), red(red), green(green) {}
    void bind() override { events.push_back(std::string("bind ") + getName()), glColor3f(red, green, 0.0f); }
    void unbind() override { events.push_back(std::string("unbind ") + getName()), glColor3f(0.0f, 0.0f, 1.0f); }
    float red, green;
};

Mesh* meshOf(const std::vector<Vector3>& points, const std::vector<Face>& faceList)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(static_cast<int>(points.size()));
    for (const Vector3& p : points)
        vertices->addVertex(p);
    FaceArray* faces = new FaceArray();
    faces->create(static_cast<int>(faceList.size()) + 1);
    for (const Face& f : faceList)
        faces->addFace(f);
    Mesh* mesh = new Mesh();
    mesh->create(vertices, faces);
    return mesh;
}

const std::vector<int> white = {255, 255, 255}, red = {255, 0, 0}, green = {0, 255, 0}, blue = {0, 0, 255};

// Pixel-space drawing on the 128 x 128 test window, unlit and untextured.
class MeshGL : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        events.clear();
        glMatrixMode(GL_PROJECTION);
        glOrtho(0, GLContext::width(), 0, GLContext::height(), -10, 10);
        glMatrixMode(GL_MODELVIEW);
        glDisable(GL_LIGHTING);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_CULL_FACE);
        glColor3f(1, 1, 1);
    }
    // Three squares side by side, two triangles each: columns 0-40, 40-80, 80-120.
    static Mesh* columns(Material* first, Material* second, Material* third)
    {
        Material* materials[3] = {first, second, third};
        std::vector<Vector3> points;
        std::vector<Face> faces;
        for (uint32_t i = 0; i < 3; ++i) {
            const float left = 40.0f * static_cast<float>(i);
            points.insert(points.end(), {{left, 0, 0}, {left + 40, 0, 0}, {left + 40, 100, 0}, {left, 100, 0}});
            faces.push_back(face(4 * i, 4 * i + 1, 4 * i + 2, materials[i]));
            faces.push_back(face(4 * i, 4 * i + 2, 4 * i + 3, materials[i]));
        }
        return meshOf(points, faces);
    }
    static std::vector<int> pixel(int x, int y)
    {
        unsigned char rgba[4];
        GLContext::readPixel(x, y, rgba);
        return {rgba[0], rgba[1], rgba[2]};
    }
};

}  // namespace

TEST_F(MeshChunk, FaceByteImagesWithAndWithoutMaterial)
{
    const std::string body = le16(3) + le32(1) + le32(2) + le32(3) + f32(0) + f32(0) + f32(1);
    FaceArray faces;
    faces.create(2);
    faces.addFace(face(1, 2, 3));
    faces.addFace(face(1, 2, 3, registered("Mat")));
    EXPECT_EQ(saved(faces), std::string("FARR") + le32(2) + le16(0) + body + le16(4) + body + le16(3) + "Mat");
}

TEST_F(MeshChunk, MeshImageIsLimitsThenArraysAndRoundTripsBitForBit)
{
    Material* hull = registered("hull");
    Mesh* mesh = builtMesh(hull);
    const std::string image = saved(*mesh);
    const Vector3 centre = mesh->getLimits().getCentre();
    EXPECT_EQ(image.substr(0, 48), std::string("MESH") + std::string(4, '\0') + f32(mesh->getLimits().getRadius()) +
                                       f32(centre.x) + f32(centre.y) + f32(centre.z) + f32(-1) + f32(-2) + f32(-3) +
                                       f32(4) + f32(5) + f32(6));
    // A vertex is position, normal, uv.
    EXPECT_EQ(image.substr(48, 40), "VARR" + le32(3) + f32(-1) + f32(-2) + f32(-3) + f32(fromBits(1u)) + f32(1e30f) +
                                        f32(-3.25f) + le32(0x7fc12345u) + f32(-0.0f));
    EXPECT_EQ(image.substr(48 + 8 + 3 * 32, 4), "FARR");
    Mesh copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(copy.getFaces()->getFaces()[0].material, hull);
    EXPECT_EQ(copy.getFaces()->getFaces()[1].material, nullptr);
    EXPECT_EQ(saved(copy), image);
    std::istringstream again(image);
    EXPECT_FALSE(copy.load(again));  // a mesh with geometry refuses a second load
    delete mesh;
    // Unknown material names load as no material and keep the flag.
    MaterialMgr::getHandle()->shutdown();
    FaceArray orphans;
    std::istringstream faces(image.substr(48 + 8 + 3 * 32));
    ASSERT_TRUE(orphans.load(faces));
    EXPECT_EQ(orphans[0].material, nullptr);
    EXPECT_EQ(orphans[0].flags, 4);
}

TEST_F(MeshChunk, TruncatedOrDamagedChunksFailAndABrokenMeshHasNoArrays)
{
    Mesh* mesh = builtMesh(registered("hull"));
    const std::string image = saved(*mesh);
    delete mesh;
    expectEveryPrefixFails<Mesh>(image, [](Mesh& m) {
        EXPECT_EQ(m.getVertices(), nullptr);
        EXPECT_EQ(m.getFaces(), nullptr);
    });
    expectEveryPrefixFails<FaceArray>(image.substr(48 + 8 + 3 * 32));
    const std::string vertexCases[] = {
        std::string("VARX") + le32(0),
        std::string("VARR") + le32(0x7fffffff) + std::string(64, '\0'),
        std::string("VARR") + le32(0xffffffffu),
    };
    const std::string faceCases[] = {
        std::string("FARR") + le32(1) + le16(0) + le16(5) + std::string(32, '\0'),  // five indices
        std::string("FARR") + le32(0x10000000) + std::string(32, '\0'),
        std::string("FARR") + le32(1) + le16(4) + le16(0) + std::string(12, '\0') + le16(0xffff) + "abc",
        std::string("FARM") + le32(0),
    };
    for (const std::string& bad : vertexCases) {
        VertexArray vertices;
        std::istringstream in(bad);
        EXPECT_FALSE(vertices.load(in)) << bad.size();
        EXPECT_EQ(vertices.getCapacity(), 0);
    }
    for (const std::string& bad : faceCases) {
        FaceArray faces;
        std::istringstream in(bad);
        EXPECT_FALSE(faces.load(in)) << bad.size();
    }
}

TEST_F(MeshChunk, MeshFilesCarryTheirMaterialsAndSayWhatFailed)
{
    Mesh* mesh = builtMesh(registered("deck"));
    const std::string path = tempPath("roundtrip.msh");
    ASSERT_TRUE(mesh->save(path.c_str()));
    delete mesh;
    MaterialMgr::getHandle()->shutdown();
    Mesh loaded;
    ASSERT_TRUE(loaded.load(path.c_str()));
    ASSERT_NE(MaterialMgr::getHandle()->find("deck"), nullptr);
    EXPECT_EQ(loaded.getFaces()->getFaces()[0].material, MaterialMgr::getHandle()->find("deck"));
    Mesh other;
    EXPECT_FALSE(other.load(tempPath("missing.msh").c_str()));
    const struct {
        std::string content;
        const char* message;
    } cases[] = {
        {"", "COULDN'N LOAD MATERIALS\n"},
        {std::string("MMGR") + le32(0) + "MESH" + std::string(10, '\0'), "COULDN'N LOAD MESHDATA\n"},
    };
    for (const auto& c : cases) {
        writeFile(path, c.content);
        ::testing::internal::CaptureStdout();
        EXPECT_FALSE(other.load(path.c_str()));
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(other.getVertices(), nullptr);
    }
}

TEST(PlainMeshImport, ReadsRecordsNormalisesNormalsAndRefusesShortFiles)
{
    std::string whole = le32(3);
    const float records[3][8] = {{0, 0, 0, 0, 0, 2, 0, 0}, {1, 0, 0, 3, 0, 0, 1, 0}, {0, 1, 0, 0, 0, 0, 0, 1}};
    for (const auto& record : records)
        for (float f : record)
            whole += f32(f);
    whole += le32(1) + f32(0) + f32(0) + f32(1) + f32(123.0f) + le32(0) + le32(1) + le32(2);
    const std::string path = tempPath("plain.bin");
    writeFile(path, whole);
    Mesh* mesh = loadMeshMSH(path.c_str());
    ASSERT_NE(mesh, nullptr);
    const VertexArray& vertices = *mesh->getVertices();
    EXPECT_EQ(vertices[0].normal, Vector3(0, 0, 1));  // normalised
    EXPECT_EQ(vertices[2].normal, Vector3(0, 0, 0));  // a zero normal stays zero
    EXPECT_EQ(mesh->getFaces()->getFaces()[0].indices[2], 2u);
    EXPECT_EQ(mesh->getLimits().getMax(), Vector3(1, 1, 0));
    delete mesh;
    for (size_t n = 0; n < whole.size(); ++n) {
        writeFile(path, whole.substr(0, n));
        EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr) << n;
    }
    EXPECT_EQ(loadMeshMSH(tempPath("no_such_file").c_str()), nullptr);
    for (const std::string& absurd : {le32(0xffffffffu), le32(0) + le32(0x80000000u)}) {
        writeFile(path, absurd + std::string(64, '\0'));
        EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
    }
}

TEST_F(MeshGL, EachMaterialRunIsBoundAndAFaceWithoutOneDrawsUnboundInBothPaths)
{
    LoggingMaterial stone("stone", 1, 0);
    LoggingMaterial moss("moss", 0, 1);
    Mesh* mesh = columns(&stone, &moss, &stone);
    mesh->draw(0);
    EXPECT_EQ(events, (std::vector<std::string>{"bind stone", "unbind stone", "bind moss", "unbind moss", "bind stone",
                                                "unbind stone"}));
    EXPECT_EQ(pixel(60, 50), green);
    EXPECT_EQ(pixel(100, 50), red);
    delete mesh;

    events.clear();
    mesh = columns(&stone, nullptr, nullptr);
    mesh->draw(0);
    const std::vector<std::string> once = {"bind stone", "unbind stone"};
    EXPECT_EQ(events, once);
    // Drawn after the unbind, in the colour it left.
    EXPECT_EQ(pixel(60, 50), blue);
    events.clear();
    ASSERT_TRUE(mesh->preLoad(VertexArray::POSITIONS));
    mesh->drawLoaded();
    mesh->postUnload(VertexArray::POSITIONS);
    EXPECT_EQ(events, once);
    delete mesh;
}

TEST_F(MeshGL, FourIndexFacesDrawTheirFirstThreeAndFacesNamingMissingVerticesAreSkipped)
{
    Face quad = face(0, 1, 2);
    quad.create(4);
    quad.indices[3] = 3;
    Mesh* mesh =
        meshOf({Vector3(0, 0, 0), Vector3(100, 0, 0), Vector3(100, 100, 0), Vector3(0, 100, 0)}, {face(0, 3, 7), quad});
    mesh->draw(0);
    mesh->preLoad(VertexArray::POSITIONS);
    mesh->drawLoaded();
    mesh->postUnload(VertexArray::POSITIONS);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(pixel(80, 20), white);
    EXPECT_EQ(pixel(20, 80), std::vector<int>({0, 0, 0}));
    delete mesh;
}

TEST_F(MeshGL, TextureCallTakesThreeComponentsFromU)
{
    Mesh* mesh = meshOf({Vector3(0, 0, 0), Vector3(10, 0, 0), Vector3(10, 10, 0), Vector3(7, 10, 0)}, {face(0, 1, 2)});
    VertexArray& v = *mesh->getVertices();
    for (int i = 0; i < 4; ++i)
        v[i].uv = Vector2(0.1f + 0.2f * static_cast<float>(i), 0.2f + 0.2f * static_cast<float>(i));
    mesh->draw(VertexArray::TEXCOORDS);
    float coords[4];
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coords);
    EXPECT_FLOAT_EQ(coords[0], 0.5f);
    // The third component is the following vertex's position x.
    EXPECT_EQ(coords[2], 7.0f);
    // The last vertex reaches past the array into a zeroed slot.
    mesh->getFaces()->clear();
    mesh->getFaces()->addFace(face(1, 2, 3));
    mesh->draw(VertexArray::TEXCOORDS);
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coords);
    EXPECT_FLOAT_EQ(coords[0], 0.7f);
    EXPECT_EQ(coords[2], 0.0f);
    delete mesh;
}

TEST(SphericalMapping, ElevationIsDividedByAFullTurnFromTheCentreOfTheLimits)
{
    // Centred on (1, 5, 5), so a mapping measured from the origin would go wrong.
    Mesh* mesh = meshOf(
        {Vector3(3, 5, 5), Vector3(-1, 5, 5), Vector3(1, 7, 5), Vector3(1, 3, 5), Vector3(1, 5, 7), Vector3(1, 5, 3)},
        {});
    ASSERT_EQ(mesh->getLimits().getCentre(), Vector3(1, 5, 5));
    SphericalUV().mapMesh(mesh, 12345);
    const VertexArray& v = *mesh->getVertices();
    EXPECT_FLOAT_EQ(v[0].uv.x, 0.25f);
    EXPECT_FLOAT_EQ(v[1].uv.x, -0.25f);
    // Straight up is a quarter turn, not a half: v spans -0.25..0.25.
    EXPECT_FLOAT_EQ(v[2].uv.y, 0.25f);
    EXPECT_FLOAT_EQ(v[3].uv.y, -0.25f);
    EXPECT_FLOAT_EQ(v[4].uv.x, 0.0f);
    EXPECT_FLOAT_EQ(v[5].uv.x, 0.5f);
    delete mesh;
    SphericalUV().mapMesh(nullptr, 0);
}
