// Mesh drawing read back from OpenGL: material groups, the first-three-indices rule,
// the three-component texture call, client arrays, normals display and spherical mapping.
#include "scene/Mesh.h"
#include "scene/SphericalUV.h"
#include "support/GLContext.h"
#include "texture/Material.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> events;

// Logs its binds and leaves a colour behind that tells which state a face was drawn in.
class LoggingMaterial : public Material {
public:
    LoggingMaterial(const char* name, float red, float green)
        : Material(name), red(red), green(green) {}
    void bind() override
    {
        events.push_back(std::string("bind ") + getName());
        glColor3f(red, green, 0.0f);
    }
    void unbind() override
    {
        events.push_back(std::string("unbind ") + getName());
        glColor3f(0.0f, 0.0f, 1.0f);
    }
    float red;
    float green;
};

Face face(uint32_t a, uint32_t b, uint32_t c, Material* material)
{
    Face f;
    f.create(3);
    f.indices[0] = a;
    f.indices[1] = b;
    f.indices[2] = c;
    f.setMaterial(material);
    return f;
}

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

    // Three squares side by side, each made of two triangles: columns 0-40, 40-80, 80-120.
    Mesh* columns(Material* first, Material* second, Material* third)
    {
        VertexArray* vertices = new VertexArray();
        vertices->create(12);
        Material* materials[3] = {first, second, third};
        FaceArray* faces = new FaceArray();
        faces->create(6);
        for (int i = 0; i < 3; ++i) {
            float left = 40.0f * i;
            uint32_t base = static_cast<uint32_t>(vertices->getNumVertices());
            vertices->addVertex(Vector3(left, 0, 0));
            vertices->addVertex(Vector3(left + 40, 0, 0));
            vertices->addVertex(Vector3(left + 40, 100, 0));
            vertices->addVertex(Vector3(left, 100, 0));
            faces->addFace(face(base, base + 1, base + 2, materials[i]));
            faces->addFace(face(base, base + 2, base + 3, materials[i]));
        }
        Mesh* mesh = new Mesh();
        mesh->create(vertices, faces);
        return mesh;
    }

    static std::vector<int> pixel(int x, int y)
    {
        unsigned char rgba[4];
        GLContext::readPixel(x, y, rgba);
        return {rgba[0], rgba[1], rgba[2]};
    }
};

const std::vector<int> red = {255, 0, 0};
const std::vector<int> green = {0, 255, 0};
const std::vector<int> blue = {0, 0, 255};
const std::vector<int> black = {0, 0, 0};

} // namespace

// ---- material groups --------------------------------------------------------

TEST_F(MeshGL, TwoMaterialsDrawThroughBothBinds)
{
    LoggingMaterial stone("stone", 1, 0);
    LoggingMaterial moss("moss", 0, 1);
    Mesh* mesh = columns(&stone, &moss, &stone);
    mesh->draw(0);
    std::vector<std::string> expected = {"bind stone", "unbind stone", "bind moss", "unbind moss",
                                         "bind stone", "unbind stone"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pixel(20, 50), red);
    EXPECT_EQ(pixel(60, 50), green);
    EXPECT_EQ(pixel(100, 50), red);
    delete mesh;
}

TEST_F(MeshGL, FaceWithoutMaterialDrawsUnbound)
{
    LoggingMaterial stone("stone", 1, 0);
    Mesh* mesh = columns(&stone, nullptr, nullptr);
    mesh->draw(0);
    std::vector<std::string> expected = {"bind stone", "unbind stone"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pixel(20, 50), red);
    // Drawn after the unbind, in the colour it left.
    EXPECT_EQ(pixel(60, 50), blue);
    EXPECT_EQ(pixel(100, 50), blue);
    delete mesh;
}

TEST_F(MeshGL, MeshStartingUnboundBindsOnlyWhereFacesAskForIt)
{
    LoggingMaterial moss("moss", 0, 1);
    Mesh* mesh = columns(nullptr, &moss, nullptr);
    mesh->draw(0);
    std::vector<std::string> expected = {"bind moss", "unbind moss"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pixel(20, 50), std::vector<int>({255, 255, 255}));
    EXPECT_EQ(pixel(60, 50), green);
    delete mesh;
}

TEST_F(MeshGL, ClientArrayDrawingGroupsTheSameWay)
{
    LoggingMaterial stone("stone", 1, 0);
    LoggingMaterial moss("moss", 0, 1);
    Mesh* mesh = columns(&stone, &moss, nullptr);
    ASSERT_TRUE(mesh->preLoad(VertexArray::POSITIONS));
    mesh->drawLoaded();
    mesh->postUnload(VertexArray::POSITIONS);
    std::vector<std::string> expected = {"bind stone", "unbind stone", "bind moss", "unbind moss"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pixel(20, 50), red);
    EXPECT_EQ(pixel(60, 50), green);
    EXPECT_EQ(pixel(100, 50), blue);
    delete mesh;
}

// ---- faces and vertices ------------------------------------------------------

TEST_F(MeshGL, FourIndexFaceDrawsItsFirstThree)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(4);
    vertices->addVertex(Vector3(0, 0, 0));
    vertices->addVertex(Vector3(100, 0, 0));
    vertices->addVertex(Vector3(100, 100, 0));
    vertices->addVertex(Vector3(0, 100, 0));
    FaceArray* faces = new FaceArray();
    faces->create(1);
    Face quad = face(0, 1, 2, nullptr);
    quad.create(4);
    quad.indices[3] = 3;
    faces->addFace(quad);
    Mesh mesh;
    mesh.create(vertices, faces);
    mesh.draw(0);
    EXPECT_EQ(pixel(80, 20), std::vector<int>({255, 255, 255}));
    EXPECT_EQ(pixel(20, 80), black);
}

TEST_F(MeshGL, FacesNamingMissingVerticesAreSkipped)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(3);
    vertices->addVertex(Vector3(0, 0, 0));
    vertices->addVertex(Vector3(100, 0, 0));
    vertices->addVertex(Vector3(100, 100, 0));
    FaceArray* faces = new FaceArray();
    faces->create(2);
    faces->addFace(face(0, 1, 7, nullptr));
    faces->addFace(face(0, 1, 2, nullptr));
    Mesh mesh;
    mesh.create(vertices, faces);
    mesh.draw(0);
    mesh.preLoad(VertexArray::POSITIONS);
    mesh.drawLoaded();
    mesh.postUnload(VertexArray::POSITIONS);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(pixel(80, 20), std::vector<int>({255, 255, 255}));
}

TEST_F(MeshGL, TextureCallTakesThreeComponentsFromU)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(4);
    vertices->addVertex(Vector3(0, 0, 0), Vector2(0.1f, 0.2f));
    vertices->addVertex(Vector3(10, 0, 0), Vector2(0.3f, 0.4f));
    vertices->addVertex(Vector3(10, 10, 0), Vector2(0.5f, 0.6f));
    vertices->addVertex(Vector3(7, 10, 0), Vector2(0.7f, 0.8f));
    FaceArray* faces = new FaceArray();
    faces->create(2);
    faces->addFace(face(0, 1, 2, nullptr));
    Mesh mesh;
    mesh.create(vertices, faces);

    mesh.draw(VertexArray::TEXCOORDS);
    float coords[4];
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coords);
    EXPECT_EQ(coords[0], 0.5f);
    EXPECT_EQ(coords[1], 0.6f);
    // The third component is the following vertex's position x.
    EXPECT_EQ(coords[2], 7.0f);

    // The last vertex reaches past the array into a zeroed slot.
    mesh.getFaces()->clear();
    mesh.getFaces()->addFace(face(1, 2, 3, nullptr));
    mesh.draw(VertexArray::TEXCOORDS);
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coords);
    EXPECT_EQ(coords[0], 0.7f);
    EXPECT_EQ(coords[2], 0.0f);

    // Without the flag no texture coordinate is sent.
    glTexCoord4f(9, 9, 9, 1);
    mesh.draw(0);
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coords);
    EXPECT_EQ(coords[0], 9.0f);
}

// ---- client arrays ------------------------------------------------------------

TEST_F(MeshGL, UploadPointsEachArrayIntoTheInterleavedVertices)
{
    VertexArray vertices;
    vertices.create(2);
    vertices.addVertex(Vector3(1, 2, 3));
    vertices.addVertex(Vector3(4, 5, 6));
    EXPECT_FALSE(vertices.upload(0));
    VertexArray empty;
    EXPECT_FALSE(empty.upload(7));

    ASSERT_TRUE(vertices.upload(7));
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_NORMAL_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    GLint stride = 0;
    glGetIntegerv(GL_VERTEX_ARRAY_STRIDE, &stride);
    EXPECT_EQ(stride, 32);
    glGetIntegerv(GL_TEXTURE_COORD_ARRAY_SIZE, &stride);
    EXPECT_EQ(stride, 2);
    void* pointer = nullptr;
    glGetPointerv(GL_NORMAL_ARRAY_POINTER, &pointer);
    EXPECT_EQ(pointer, static_cast<void*>(&vertices[0].normal));
    glGetPointerv(GL_TEXTURE_COORD_ARRAY_POINTER, &pointer);
    EXPECT_EQ(pointer, static_cast<void*>(&vertices[0].uv));
    vertices.unload(7);
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
}

TEST_F(MeshGL, SecondUnitCoordinatesLeaveUnitZeroSelected)
{
    VertexArray vertices;
    vertices.create(1);
    vertices.addVertex(Vector3(1, 2, 3));
    ASSERT_TRUE(vertices.upload(VertexArray::TEXCOORDS_UNIT1));
    GLint active = 0;
    glGetIntegerv(GL_CLIENT_ACTIVE_TEXTURE, &active);
    EXPECT_EQ(active, GL_TEXTURE0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    glClientActiveTexture(GL_TEXTURE1);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    glClientActiveTexture(GL_TEXTURE0);
    vertices.unload(VertexArray::TEXCOORDS_UNIT1);
    glClientActiveTexture(GL_TEXTURE1);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    glClientActiveTexture(GL_TEXTURE0);
}

// ---- normals display ----------------------------------------------------------

TEST_F(MeshGL, NormalsAreDrawnInTheirColourWithLightingRestored)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(3);
    // Half-pixel coordinates put the lines on pixel centres.
    vertices->addVertex(Vector3(10.5f, 10.5f, 0), Vector3(1, 0, 0));
    vertices->addVertex(Vector3(40.5f, 10.5f, 0), Vector3(1, 0, 0));
    vertices->addVertex(Vector3(10.5f, 40.5f, 0), Vector3(1, 0, 0));
    FaceArray* faces = new FaceArray();
    faces->create(1);
    Face f = face(0, 1, 2, nullptr);
    f.normal.assign(0, 1, 0);
    faces->addFace(f);
    Mesh mesh;
    mesh.create(vertices, faces);
    glEnable(GL_LIGHTING);
    mesh.drawFaceNormals(Color(0, 1, 0, 1), 50.0f);
    mesh.drawVertexNormals(Color(1, 0, 0, 1), 30.0f);
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    glDisable(GL_LIGHTING);
    // The face normal rises from the centroid (20.5, 20.5).
    EXPECT_EQ(pixel(20, 50), green);
    // The vertex normal of (40.5, 10.5) runs to (70.5, 10.5).
    EXPECT_EQ(pixel(60, 10), red);
}

// ---- spherical mapping -----------------------------------------------------------

TEST(SphericalMapping, LongitudeAndElevationOverAFullTurn)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(6);
    vertices->addVertex(Vector3(2, 0, 0));
    vertices->addVertex(Vector3(-2, 0, 0));
    vertices->addVertex(Vector3(0, 2, 0));
    vertices->addVertex(Vector3(0, -2, 0));
    vertices->addVertex(Vector3(0, 0, 2));
    vertices->addVertex(Vector3(0, 0, -2));
    Mesh mesh;
    mesh.create(vertices, new FaceArray());
    ASSERT_EQ(mesh.getLimits().getCentre(), Vector3(0, 0, 0));
    SphericalUV mapper;
    mapper.mapMesh(&mesh, 12345);
    const VertexArray& v = *mesh.getVertices();
    EXPECT_FLOAT_EQ(v[0].uv.x, 0.25f);
    EXPECT_FLOAT_EQ(v[0].uv.y, 0.0f);
    EXPECT_FLOAT_EQ(v[1].uv.x, -0.25f);
    // Straight up is a quarter turn, not a half: v spans -0.25..0.25.
    EXPECT_FLOAT_EQ(v[2].uv.y, 0.25f);
    EXPECT_FLOAT_EQ(v[3].uv.y, -0.25f);
    EXPECT_FLOAT_EQ(v[4].uv.x, 0.0f);
    EXPECT_FLOAT_EQ(v[4].uv.y, 0.0f);
    EXPECT_FLOAT_EQ(v[5].uv.x, 0.5f);
}

TEST(SphericalMapping, MeasuresFromTheCentreOfTheLimits)
{
    VertexArray* vertices = new VertexArray();
    vertices->create(2);
    vertices->addVertex(Vector3(10, 5, 5));
    vertices->addVertex(Vector3(12, 5, 5));
    Mesh mesh;
    mesh.create(vertices, new FaceArray());
    SphericalUV mapper;
    mapper.mapMesh(&mesh, 0);
    EXPECT_FLOAT_EQ((*mesh.getVertices())[0].uv.x, -0.25f);
    EXPECT_FLOAT_EQ((*mesh.getVertices())[1].uv.x, 0.25f);
}

TEST(SphericalMapping, NothingHappensWithoutVertices)
{
    SphericalUV mapper;
    mapper.mapMesh(nullptr, 0);
    Mesh empty;
    mapper.mapMesh(&empty, 0);
    EXPECT_EQ(empty.getVertices(), nullptr);
}
