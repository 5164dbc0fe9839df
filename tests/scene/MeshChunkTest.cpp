// Mesh persistence: VARR, FARR and MESH chunks, .msh files and the headerless importer.
#include "scene/FaceArray.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"
#include "scene/loadMeshMSH.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include "ByteImage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

using namespace bytes;

namespace {

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
        faces->addFace(triangle(0, material));
        faces->addFace(triangle(0));
        Mesh* mesh = new Mesh();
        EXPECT_TRUE(mesh->create(vertices, faces));
        return mesh;
    }
};

} // namespace

TEST_F(MeshChunk, FaceByteImagesWithAndWithoutMaterial)
{
    const std::string body = le16(3) + le32(1) + le32(2) + le32(3) + f32(0) + f32(0) + f32(1);
    FaceArray faces;
    faces.create(2);
    faces.addFace(triangle(1));
    faces.addFace(triangle(1, registered("Mat")));
    EXPECT_EQ(saved(faces), std::string("FARR") + le32(2) + le16(0) + body + le16(4) + body + le16(3) + "Mat");
}

TEST_F(MeshChunk, MeshImageIsLimitsThenArraysAndRoundTripsBitForBit)
{
    Material* hull = registered("hull");
    Mesh* mesh = builtMesh(hull);
    const std::string image = saved(*mesh);
    const Vector3 centre = mesh->getLimits().getCentre();
    EXPECT_EQ(image.substr(0, 48), std::string("MESH") + std::string(4, '\0') + f32(mesh->getLimits().getRadius())
                                       + f32(centre.x) + f32(centre.y) + f32(centre.z) + f32(-1) + f32(-2) + f32(-3)
                                       + f32(4) + f32(5) + f32(6));
    // A vertex is position, normal, uv.
    EXPECT_EQ(image.substr(48, 40), "VARR" + le32(3) + f32(-1) + f32(-2) + f32(-3) + f32(fromBits(1u)) + f32(1e30f)
                                        + f32(-3.25f) + le32(0x7fc12345u) + f32(-0.0f));
    EXPECT_EQ(image.substr(48 + 8 + 3 * 32, 4), "FARR");

    Mesh copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(copy.getFaces()->getFaces()[0].material, hull);
    EXPECT_EQ(copy.getFaces()->getFaces()[1].material, nullptr);
    EXPECT_EQ(saved(copy), image);
    std::istringstream again(image);
    EXPECT_FALSE(copy.load(again));  // a mesh with geometry refuses a second load
    Mesh deep(*mesh);
    EXPECT_NE(deep.getVertices(), mesh->getVertices());
    delete mesh;
    EXPECT_EQ(saved(deep), image);

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
    EXPECT_EQ(vertices[0].normal, Vector3(0, 0, 1));
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
    for (const std::string& absurd : {le32(0xffffffffu), le32(0) + le32(0x80000000u)}) {
        writeFile(path, absurd + std::string(64, '\0'));
        EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
    }
}
