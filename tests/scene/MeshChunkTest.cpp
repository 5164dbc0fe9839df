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
#include <sstream>
#include <string>

using namespace bytes;

namespace {

// Values whose bits a careless conversion would change: NaN payload, -0, a denormal.
const float oddValues[] = {fromBits(0x7fc12345u), -0.0f, fromBits(0x00000001u), 1.0e30f, -3.25f};

VertexArray oddVertices()
{
    VertexArray vertices;
    vertices.create(3);
    for (int i = 0; i < 3; ++i) {
        Vertex v;
        float* fields = &v.position.x;
        for (int k = 0; k < 8; ++k)
            fields[k] = oddValues[(i + k) % 5];
        vertices.addVertex(v);
    }
    return vertices;
}

Face triangle(uint32_t a, uint32_t b, uint32_t c, Material* material = nullptr)
{
    Face face;
    face.create(3);
    face.indices[0] = a;
    face.indices[1] = b;
    face.indices[2] = c;
    face.normal.assign(0.0f, 0.0f, 1.0f);
    face.setMaterial(material);
    return face;
}

template <class T>
std::string saved(const T& object)
{
    std::ostringstream out;
    EXPECT_TRUE(const_cast<T&>(object).save(out));
    return out.str();
}

template <class T>
void expectEveryPrefixFails(const std::string& whole)
{
    for (size_t n = 0; n < whole.size(); ++n) {
        T object;
        std::istringstream in(whole.substr(0, n));
        EXPECT_FALSE(object.load(in)) << n << " of " << whole.size() << " bytes loaded";
    }
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

    Material* registered(const char* name)
    {
        Material* material = new Material(name);
        MaterialMgr::getHandle()->add(material);
        return material;
    }

    static Mesh* builtMesh(Material* material)
    {
        VertexArray* vertices = new VertexArray(oddVertices());
        (*vertices)[0].position.assign(-1, -2, -3);
        (*vertices)[1].position.assign(4, 5, 6);
        (*vertices)[2].position.assign(0, 0, 0);
        FaceArray* faces = new FaceArray();
        faces->create(1);
        faces->addFace(triangle(0, 1, 2, material));
        Mesh* mesh = new Mesh();
        EXPECT_TRUE(mesh->create(vertices, faces));
        return mesh;
    }
};

} // namespace

TEST(VertexArrayChunk, RoundTripKeepsEveryBit)
{
    VertexArray original = oddVertices();
    std::string first = saved(original);
    ASSERT_EQ(first.size(), 4u + 4u + 3u * 32u);
    VertexArray copy;
    std::istringstream in(first);
    ASSERT_TRUE(copy.load(in));
    ASSERT_EQ(copy.getNumVertices(), 3);
    EXPECT_EQ(std::memcmp(copy.getVertices(), original.getVertices(), 3 * sizeof(Vertex)), 0);
    EXPECT_EQ(saved(copy), first);
}

TEST(VertexArrayChunk, FieldOrderIsPositionNormalUV)
{
    VertexArray vertices;
    vertices.create(1);
    vertices.addVertex(Vector3(1, 2, 3), Vector2(7, 8), Vector3(4, 5, 6));
    std::string expected = std::string("VARR") + le32(1);
    for (float f : {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f})
        expected += f32(f);
    EXPECT_EQ(saved(vertices), expected);
}

TEST(ArrayStorage, AddFailsWhenFullAndResizeKeepsContents)
{
    VertexArray vertices;
    vertices.create(2);
    EXPECT_TRUE(vertices.addVertex(Vector3(1, 0, 0)));
    EXPECT_TRUE(vertices.addVertex(Vector3(2, 0, 0), Vector3(0, 1, 0)));
    EXPECT_FALSE(vertices.addVertex(Vector3(3, 0, 0)));
    ASSERT_TRUE(vertices.resize(4));
    EXPECT_EQ(vertices.getNumVertices(), 2);
    EXPECT_EQ(vertices[1].normal, Vector3(0, 1, 0));
    EXPECT_TRUE(vertices.addVertex(Vector3(3, 0, 0)));
    Face face;
    EXPECT_TRUE(face.create(4));
    EXPECT_FALSE(face.create(5));
}

TEST_F(MeshChunk, FaceByteImagesWithAndWithoutMaterial)
{
    const std::string body = le16(3) + le32(1) + le32(2) + le32(3) + f32(0) + f32(0) + f32(1);
    FaceArray bare;
    bare.create(1);
    bare.addFace(triangle(1, 2, 3));
    EXPECT_EQ(saved(bare), std::string("FARR") + le32(1) + le16(0) + body);
    FaceArray dressed;
    dressed.create(1);
    dressed.addFace(triangle(1, 2, 3, registered("Mat")));
    EXPECT_EQ(saved(dressed), std::string("FARR") + le32(1) + le16(4) + body + le16(3) + "Mat");
}

TEST_F(MeshChunk, FaceRoundTripResolvesMaterialsByName)
{
    Material* stone = registered("stone");
    Material* glass = registered("glass");
    FaceArray faces;
    faces.create(3);
    faces.addFace(triangle(0, 1, 2, stone));
    faces.addFace(triangle(2, 1, 0));
    Face quad = triangle(3, 4, 5, glass);
    quad.create(4);
    quad.indices[3] = 0xfffffffeu;
    quad.normal.assign(oddValues[0], oddValues[1], oddValues[2]);
    faces.addFace(quad);
    std::string first = saved(faces);

    FaceArray copy;
    std::istringstream in(first);
    ASSERT_TRUE(copy.load(in));
    ASSERT_EQ(copy.getNumFaces(), 3);
    EXPECT_EQ(copy[0].material, stone);
    EXPECT_EQ(copy[1].material, nullptr);
    EXPECT_EQ(copy[2].material, glass);
    EXPECT_EQ(copy[2].indices[3], 0xfffffffeu);
    EXPECT_EQ(saved(copy), first);
}

TEST_F(MeshChunk, UnknownMaterialLoadsAsNullAndKeepsItsFlag)
{
    std::string image = std::string("FARR") + le32(1) + le16(4) + le16(3)
        + le32(0) + le32(1) + le32(2) + f32(0) + f32(1) + f32(0) + le16(5) + "ghost";
    FaceArray faces;
    std::istringstream in(image);
    ASSERT_TRUE(faces.load(in));
    EXPECT_EQ(faces[0].material, nullptr);
    EXPECT_EQ(faces[0].flags, 4);
}

TEST_F(MeshChunk, EveryTruncationFailsAndABrokenMeshHasNoArrays)
{
    expectEveryPrefixFails<VertexArray>(saved(oddVertices()));
    FaceArray faces;
    faces.create(2);
    faces.addFace(triangle(1, 2, 3, registered("Mat")));
    faces.addFace(triangle(4, 5, 6));
    expectEveryPrefixFails<FaceArray>(saved(faces));
    Mesh* mesh = builtMesh(registered("hull"));
    std::string image = saved(*mesh);
    delete mesh;
    for (size_t n = 0; n < image.size(); ++n) {
        Mesh copy;
        std::istringstream in(image.substr(0, n));
        EXPECT_FALSE(copy.load(in)) << n;
        EXPECT_EQ(copy.getVertices(), nullptr);
        EXPECT_EQ(copy.getFaces(), nullptr);
    }
}

TEST_F(MeshChunk, BadArrayRecordsFail)
{
    const struct {
        const char* what;
        std::string image;
    } vertexCases[] = {
        {"wrong tag", std::string("VARX") + le32(0)},
        {"huge count", std::string("VARR") + le32(0x7fffffff) + std::string(64, '\0')},
        {"negative count", std::string("VARR") + le32(0xffffffffu)},
    }, faceCases[] = {
        {"five indices", std::string("FARR") + le32(1) + le16(0) + le16(5) + std::string(32, '\0')},
        {"huge count", std::string("FARR") + le32(0x10000000) + std::string(32, '\0')},
        {"name past the end", std::string("FARR") + le32(1) + le16(4) + le16(0) + std::string(12, '\0')
                                  + le16(0xffff) + "abc"},
        {"wrong tag", std::string("FARM") + le32(0)},
    };
    for (const auto& c : vertexCases) {
        VertexArray vertices;
        std::istringstream in(c.image);
        EXPECT_FALSE(vertices.load(in)) << c.what;
        EXPECT_EQ(vertices.getCapacity(), 0) << c.what;
    }
    for (const auto& c : faceCases) {
        FaceArray faces;
        std::istringstream in(c.image);
        EXPECT_FALSE(faces.load(in)) << c.what;
    }
}

TEST_F(MeshChunk, MeshImageIsLimitsThenArraysAndRoundTrips)
{
    Mesh* mesh = builtMesh(registered("hull"));
    std::string image = saved(*mesh);
    const BoundingBox& limits = mesh->getLimits();
    std::string expectedLimits = std::string("MESH") + std::string(4, '\0') + f32(limits.getRadius())
        + f32(limits.getCentre().x) + f32(limits.getCentre().y) + f32(limits.getCentre().z)
        + f32(-1) + f32(-2) + f32(-3) + f32(4) + f32(5) + f32(6);
    EXPECT_EQ(image.substr(0, 48), expectedLimits);
    EXPECT_EQ(image.substr(48, 4), "VARR");
    EXPECT_EQ(image.substr(48 + 8 + 3 * 32, 4), "FARR");

    Mesh copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_EQ(copy.getFaces()->getFaces()[0].material, MaterialMgr::getHandle()->find("hull"));
    EXPECT_EQ(saved(copy), image);
    // A mesh with geometry refuses a second load and a second create.
    std::istringstream again(image);
    EXPECT_FALSE(mesh->load(again));
    VertexArray* otherVertices = new VertexArray();
    FaceArray* otherFaces = new FaceArray();
    EXPECT_FALSE(mesh->create(otherVertices, otherFaces));
    delete otherVertices;
    delete otherFaces;
    delete mesh;
    std::ostringstream out;
    EXPECT_FALSE(Mesh().save(out));
    EXPECT_TRUE(out.str().empty());
}

TEST_F(MeshChunk, CopiesShareNoArrays)
{
    Mesh* mesh = builtMesh(nullptr);
    Mesh copy(*mesh);
    ASSERT_NE(copy.getVertices(), nullptr);
    EXPECT_NE(copy.getVertices(), mesh->getVertices());
    EXPECT_NE(copy.getFaces(), mesh->getFaces());
    (*copy.getVertices())[0].position.x = 99.0f;
    EXPECT_EQ((*mesh->getVertices())[0].position.x, -1.0f);
    Mesh assigned;
    assigned = *mesh;
    EXPECT_EQ(saved(assigned), saved(*mesh));
    delete mesh;
}

TEST_F(MeshChunk, MeshFileRoundTripThroughTheRegistry)
{
    Mesh* mesh = builtMesh(registered("deck"));
    std::string path = tempPath("roundtrip.msh");
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
    std::string path = tempPath("bad.msh");
    for (const auto& c : cases) {
        writeFile(path, c.content);
        ::testing::internal::CaptureStdout();
        EXPECT_FALSE(mesh.load(path.c_str()));
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(mesh.getVertices(), nullptr);
    }
}

namespace {

std::string plainMesh()
{
    std::string s = le32(3);
    const float records[3][8] = {
        {0, 0, 0, 0, 0, 2, 0, 0},
        {1, 0, 0, 3, 0, 0, 1, 0},
        {0, 1, 0, 0, 0, 0, 0, 1},
    };
    for (const auto& record : records)
        for (float f : record)
            s += f32(f);
    return s + le32(1) + f32(0) + f32(0) + f32(1) + f32(123.0f) + le32(0) + le32(1) + le32(2);
}

} // namespace

TEST(PlainMeshImport, ReadsRecordsAndNormalisesNormals)
{
    std::string path = tempPath("plain.bin");
    writeFile(path, plainMesh());
    Mesh* mesh = loadMeshMSH(path.c_str());
    ASSERT_NE(mesh, nullptr);
    const VertexArray& vertices = *mesh->getVertices();
    ASSERT_EQ(vertices.getNumVertices(), 3);
    EXPECT_EQ(vertices[0].normal, Vector3(0, 0, 1));
    EXPECT_EQ(vertices[1].normal, Vector3(1, 0, 0));
    EXPECT_EQ(vertices[2].normal, Vector3(0, 0, 0));  // a zero normal stays zero
    EXPECT_EQ(vertices[1].uv, Vector2(1, 0));
    const Face& face = mesh->getFaces()->getFaces()[0];
    EXPECT_EQ(face.indices[2], 2u);
    EXPECT_EQ(face.normal, Vector3(0, 0, 1));
    EXPECT_EQ(mesh->getLimits().getMax(), Vector3(1, 1, 0));
    delete mesh;
}

TEST(PlainMeshImport, ShortFilesAndAbsurdCountsGiveNull)
{
    std::string whole = plainMesh();
    std::string path = tempPath("plain_cut.bin");
    for (size_t n = 0; n < whole.size(); ++n) {
        writeFile(path, whole.substr(0, n));
        Mesh* mesh = loadMeshMSH(path.c_str());
        EXPECT_EQ(mesh, nullptr) << n;
        delete mesh;
    }
    EXPECT_EQ(loadMeshMSH(tempPath("no_such_file").c_str()), nullptr);
    writeFile(path, le32(0xffffffffu) + std::string(64, '\0'));
    EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
    writeFile(path, le32(0) + le32(0x80000000u) + std::string(64, '\0'));
    EXPECT_EQ(loadMeshMSH(path.c_str()), nullptr);
}
