// Mesh persistence: VARR, FARR and MESH chunks, .msh files and the headerless importer.
#include "scene/FaceArray.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"
#include "scene/loadMeshMSH.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include "ByteImage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>

using namespace bytes;

namespace {

// Values whose bits a careless conversion would change: NaN payload, -0, a denormal.
const float oddValues[] = {fromBits(0x7fc12345u), -0.0f, fromBits(0x00000001u), 1.0e30f, -3.25f};

VertexArray* oddVertices()
{
    VertexArray* vertices = new VertexArray();
    vertices->create(3);
    for (int i = 0; i < 3; ++i) {
        Vertex v;
        float* fields = &v.position.x;
        for (int k = 0; k < 8; ++k)
            fields[k] = oddValues[(i + k) % 5];
        vertices->addVertex(v);
    }
    return vertices;
}

Face triangle(uint32_t a, Material* material = nullptr)
{
    Face face;
    face.create(3);
    face.indices[0] = a, face.indices[1] = a + 1, face.indices[2] = a + 2;
    face.normal.assign(0.0f, 0.0f, 1.0f);
    face.setMaterial(material);
    return face;
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

    // Limits from (-1, -2, -3) to (4, 5, 6).
    static Mesh* builtMesh(Material* material)
    {
        VertexArray* vertices = oddVertices();
        (*vertices)[0].position.assign(-1, -2, -3);
        (*vertices)[1].position.assign(4, 5, 6);
        (*vertices)[2].position.assign(0, 0, 0);
        FaceArray* faces = new FaceArray();
        faces->create(1);
        faces->addFace(triangle(0, material));
        Mesh* mesh = new Mesh();
        EXPECT_TRUE(mesh->create(vertices, faces));
        return mesh;
    }
};

} // namespace

TEST(VertexArrayChunk, FieldOrderAndBitForBitRoundTrip)
{
    VertexArray one;
    one.create(1);
    one.addVertex(Vector3(1, 2, 3), Vector2(7, 8), Vector3(4, 5, 6));
    std::string expected = std::string("VARR") + le32(1);
    for (float f : {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f})
        expected += f32(f);
    EXPECT_EQ(saved(one), expected);

    VertexArray* original = oddVertices();
    const std::string first = saved(*original);
    VertexArray copy;
    std::istringstream in(first);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(std::memcmp(copy.getVertices(), original->getVertices(), 3 * sizeof(Vertex)), 0);
    EXPECT_EQ(saved(copy), first);
    delete original;
}

TEST_F(MeshChunk, FaceByteImagesWithAndWithoutMaterial)
{
    const std::string body = le16(3) + le32(1) + le32(2) + le32(3) + f32(0) + f32(0) + f32(1);
    FaceArray faces;
    faces.create(2);
    faces.addFace(triangle(1));
    faces.addFace(triangle(1, registered("Mat")));
    EXPECT_EQ(saved(faces), std::string("FARR") + le32(2) + le16(0) + body + le16(4) + body + le16(3) + "Mat");
}

TEST_F(MeshChunk, FaceRoundTripResolvesMaterialsByNameAndUnknownOnesToNull)
{
    Material* stone = registered("stone");
    FaceArray faces;
    faces.create(3);
    faces.addFace(triangle(0, stone));
    faces.addFace(triangle(2));
    Face quad = triangle(3, registered("ghost"));
    quad.create(4);
    quad.indices[3] = 0xfffffffeu;
    quad.normal.assign(oddValues[0], oddValues[1], oddValues[2]);
    faces.addFace(quad);
    const std::string first = saved(faces);

    FaceArray copy;
    std::istringstream in(first);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(copy[0].material, stone);
    EXPECT_EQ(copy[1].material, nullptr);
    EXPECT_EQ(copy[2].indices[3], 0xfffffffeu);
    EXPECT_EQ(saved(copy), first);

    MaterialMgr::getHandle()->shutdown();
    FaceArray orphan;
    std::istringstream again(first);
    ASSERT_TRUE(orphan.load(again));
    EXPECT_EQ(orphan[0].material, nullptr);
    EXPECT_EQ(orphan[0].flags, 4);
}

TEST_F(MeshChunk, EveryTruncationFailsAndABrokenMeshHasNoArrays)
{
    VertexArray* vertices = oddVertices();
    expectEveryPrefixFails<VertexArray>(saved(*vertices));
    delete vertices;
    FaceArray faces;
    faces.create(2);
    faces.addFace(triangle(1, registered("Mat")));
    faces.addFace(triangle(4));
    expectEveryPrefixFails<FaceArray>(saved(faces));
    Mesh* mesh = builtMesh(registered("hull"));
    expectEveryPrefixFails<Mesh>(saved(*mesh), [](Mesh& m) {
        EXPECT_EQ(m.getVertices(), nullptr);
        EXPECT_EQ(m.getFaces(), nullptr);
    });
    delete mesh;
}

TEST_F(MeshChunk, BadArrayRecordsFail)
{
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
    for (const std::string& image : vertexCases) {
        VertexArray vertices;
        std::istringstream in(image);
        EXPECT_FALSE(vertices.load(in)) << image.size();
        EXPECT_EQ(vertices.getCapacity(), 0);
    }
    for (const std::string& image : faceCases) {
        FaceArray faces;
        std::istringstream in(image);
        EXPECT_FALSE(faces.load(in)) << image.size();
    }
}

TEST_F(MeshChunk, MeshImageIsLimitsThenArraysAndRoundTrips)
{
    Mesh* mesh = builtMesh(registered("hull"));
    const std::string image = saved(*mesh);
    const Vector3 centre = mesh->getLimits().getCentre();
    const std::string expectedLimits = std::string("MESH") + std::string(4, '\0') + f32(mesh->getLimits().getRadius())
        + f32(centre.x) + f32(centre.y) + f32(centre.z) + f32(-1) + f32(-2) + f32(-3) + f32(4) + f32(5) + f32(6);
    EXPECT_EQ(image.substr(0, 48), expectedLimits);
    EXPECT_EQ(image.substr(48, 4), "VARR");
    EXPECT_EQ(image.substr(48 + 8 + 3 * 32, 4), "FARR");

    Mesh copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(saved(copy), image);
    std::istringstream again(image);
    EXPECT_FALSE(copy.load(again));  // a mesh with geometry refuses a second load
    Mesh deep(*mesh);
    EXPECT_NE(deep.getVertices(), mesh->getVertices());
    EXPECT_EQ(saved(deep), image);
    delete mesh;
    std::ostringstream out;
    EXPECT_FALSE(Mesh().save(out));
}

TEST_F(MeshChunk, MeshFileRoundTripThroughTheRegistry)
{
    Mesh* mesh = builtMesh(registered("deck"));
    const std::string path = tempPath("roundtrip.msh");
    ASSERT_TRUE(mesh->save(path.c_str()));
    delete mesh;
    MaterialMgr::getHandle()->shutdown();
    Mesh loaded;
    ASSERT_TRUE(loaded.load(path.c_str()));
    Material* deck = MaterialMgr::getHandle()->find("deck");
    ASSERT_NE(deck, nullptr);
    EXPECT_EQ(loaded.getFaces()->getFaces()[0].material, deck);
}

TEST_F(MeshChunk, MeshFileMessages)
{
    Mesh mesh;
    EXPECT_FALSE(mesh.load(tempPath("missing.msh").c_str()));
    const struct {
        std::string content;
        const char* message;
    } cases[] = {
        {"", "COULDN'N LOAD MATERIALS\n"},
        {std::string("MMGR") + le32(0) + "MESH" + std::string(10, '\0'), "COULDN'N LOAD MESHDATA\n"},
    };
    const std::string path = tempPath("bad.msh");
    for (const auto& c : cases) {
        writeFile(path, c.content);
        ::testing::internal::CaptureStdout();
        EXPECT_FALSE(mesh.load(path.c_str()));
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(mesh.getVertices(), nullptr);
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
    EXPECT_EQ(vertices[0].normal, Vector3(0, 0, 1));
    EXPECT_EQ(vertices[1].normal, Vector3(1, 0, 0));
    EXPECT_EQ(vertices[2].normal, Vector3(0, 0, 0));  // a zero normal stays zero
    EXPECT_EQ(vertices[1].uv, Vector2(1, 0));
    EXPECT_EQ(mesh->getFaces()->getFaces()[0].indices[2], 2u);
    EXPECT_EQ(mesh->getLimits().getMax(), Vector3(1, 1, 0));
    delete mesh;

    for (size_t n = 0; n < whole.size(); ++n) {
        writeFile(path, whole.substr(0, n));
        EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr) << n;
    }
    EXPECT_EQ(loadMeshMSH(tempPath("no_such_file").c_str()), nullptr);
    writeFile(path, le32(0xffffffffu) + std::string(64, '\0'));
    EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
    writeFile(path, le32(0) + le32(0x80000000u) + std::string(64, '\0'));
    EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
}
