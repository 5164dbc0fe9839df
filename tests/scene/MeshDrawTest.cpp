// Mesh drawing read back from OpenGL: material groups, the first-three-indices rule,
// the three-component texture call, client arrays and spherical mapping.
#include "scene/Mesh.h"
#include "scene/SphericalUV.h"
#include "support/GLContext.h"
#include "texture/Material.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace {

std::vector<std::string> events;

// Logs its binds and leaves a colour behind that tells which state a face was drawn in.
struct LoggingMaterial : public Material {
    LoggingMaterial(const char* name, float red, float green) : Material(name), red(red), green(green) {}
    void bind() override { events.push_back(std::string("bind ") + getName()), glColor3f(red, green, 0.0f); }
    void unbind() override { events.push_back(std::string("unbind ") + getName()), glColor3f(0.0f, 0.0f, 1.0f); }
    float red, green;
};

Face face(uint32_t a, uint32_t b, uint32_t c, Material* material = nullptr)
{
    Face f;
    f.create(3);
    f.indices[0] = a;
    f.indices[1] = b;
    f.indices[2] = c;
    f.setMaterial(material);
    return f;
}

Mesh* meshOf(std::initializer_list<Vector3> points, std::initializer_list<Face> faceList)
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
        VertexArray* vertices = new VertexArray();
        vertices->create(12);
        Material* materials[3] = {first, second, third};
        FaceArray* faces = new FaceArray();
        faces->create(6);
        for (uint32_t i = 0; i < 3; ++i) {
            float left = 40.0f * static_cast<float>(i);
            vertices->addVertex(Vector3(left, 0, 0));
            vertices->addVertex(Vector3(left + 40, 0, 0));
            vertices->addVertex(Vector3(left + 40, 100, 0));
            vertices->addVertex(Vector3(left, 100, 0));
            faces->addFace(face(4 * i, 4 * i + 1, 4 * i + 2, materials[i]));
            faces->addFace(face(4 * i, 4 * i + 2, 4 * i + 3, materials[i]));
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

} // namespace

TEST_F(MeshGL, TwoMaterialsDrawThroughBothBinds)
{
    LoggingMaterial stone("stone", 1, 0);
    LoggingMaterial moss("moss", 0, 1);
    Mesh* mesh = columns(&stone, &moss, &stone);
    mesh->draw(0);
    std::vector<std::string> expected = {"bind stone", "unbind stone", "bind moss", "unbind moss",
                                         "bind stone", "unbind stone"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(pixel(60, 50), green);
    EXPECT_EQ(pixel(100, 50), red);
    delete mesh;
}

TEST_F(MeshGL, FaceWithoutMaterialDrawsUnboundInBothPaths)
{
    LoggingMaterial stone("stone", 1, 0);
    Mesh* mesh = columns(&stone, nullptr, nullptr);
    mesh->draw(0);
    std::vector<std::string> expected = {"bind stone", "unbind stone"};
    EXPECT_EQ(events, expected);
    // Drawn after the unbind, in the colour it left.
    EXPECT_EQ(pixel(60, 50), blue);

    events.clear();
    ASSERT_TRUE(mesh->preLoad(VertexArray::POSITIONS));
    mesh->drawLoaded();
    mesh->postUnload(VertexArray::POSITIONS);
    EXPECT_EQ(events, expected);
    delete mesh;
}

TEST_F(MeshGL, FourIndexFacesDrawTheirFirstThreeAndFacesNamingMissingVerticesAreSkipped)
{
    Face quad = face(0, 1, 2);
    quad.create(4);
    quad.indices[3] = 3;
    Mesh* mesh = meshOf({Vector3(0, 0, 0), Vector3(100, 0, 0), Vector3(100, 100, 0), Vector3(0, 100, 0)},
                        {face(0, 3, 7), quad});
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
    Mesh* mesh = meshOf({Vector3(0, 0, 0), Vector3(10, 0, 0), Vector3(10, 10, 0), Vector3(7, 10, 0)},
                        {face(0, 1, 2)});
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
    Mesh* mesh = meshOf({Vector3(3, 5, 5), Vector3(-1, 5, 5), Vector3(1, 7, 5), Vector3(1, 3, 5), Vector3(1, 5, 7),
                         Vector3(1, 5, 3)},
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
