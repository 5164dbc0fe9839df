// Cameras: the CAM0 chunk, setters, the UVN basis, the GL matrices of lookAt and resize, and the registry.
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Mesh.h"
#include "support/GLContext.h"
#include "ByteImage.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

using namespace bytes;

namespace {

std::string saved(Camera& camera)
{
    std::ostringstream out;
    EXPECT_TRUE(camera.save(out));
    return out.str();
}

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-6f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

// A camera that counts the calls the registry makes on it.
class CountingCamera : public Camera {
public:
    explicit CountingCamera(const char* name) : Camera(name) {}
    void resize(int width, int height) override
    {
        ++resizes;
        lastWidth = width;
        lastHeight = height;
    }
    int resizes = 0;
    int lastWidth = 0;
    int lastHeight = 0;
};

class CameraRegistry : public ::testing::Test {
protected:
    void SetUp() override
    {
        CameraMgr::getHandle()->shutdown();
        CameraMgr::getHandle()->onResize(0, 0);
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->shutdown();
        CameraMgr::getHandle()->onResize(0, 0);
    }
};

} // namespace

// ---- CAM0 --------------------------------------------------------------

TEST(CameraChunk, ByteImageIsTagNameThenNineFloats)
{
    Camera camera("Cam", Vector3(1, 2, 3), Vector3(4, 5, 6), 0.5f, 1000.0f, 60.0f);
    std::string expected = std::string("CAM0") + std::string("\x03\x00", 2) + "Cam"
        + f32(60.0f) + f32(0.5f) + f32(1000.0f)
        + f32(1) + f32(2) + f32(3) + f32(4) + f32(5) + f32(6);
    EXPECT_EQ(saved(camera), expected);
}

TEST(CameraChunk, RoundTripKeepsEveryBitAndLeavesTheBasisAlone)
{
    float nan;
    const uint32_t nanBits = 0x7fa00001u;
    std::memcpy(&nan, &nanBits, 4);
    Camera camera("odd", Vector3(nan, -0.0f, 1e-40f), Vector3(3, 2, 1), 1e-6f, 2e5f, 179.5f);
    std::string first = saved(camera);

    Camera copy("placeholder");
    std::istringstream in(first);
    ASSERT_TRUE(copy.load(in));
    EXPECT_STREQ(copy.getName(), "odd");
    EXPECT_EQ(saved(copy), first);
    // U, V, N are not stored: they wait for the next lookAt().
    EXPECT_EQ(copy.getN(), Vector3(0, 0, 1));
}

TEST(CameraChunk, DefaultsAndUnnamedRecords)
{
    Camera camera;
    EXPECT_STREQ(camera.getName(), "DefaultCamera");
    EXPECT_EQ(camera.getFOV(), 45.0f);
    EXPECT_EQ(camera.getNear(), 0.000001f);
    EXPECT_EQ(camera.getFar(), 200000.0f);
    EXPECT_EQ(camera.getTarget(), Vector3(0, 0, 100));
    // A record without a name keeps the name the camera was built with.
    std::string image = std::string("CAM0") + std::string(2, '\0') + std::string(36, '\0');
    std::istringstream in(image);
    ASSERT_TRUE(camera.load(in));
    EXPECT_STREQ(camera.getName(), "DefaultCamera");
    EXPECT_EQ(camera.getFOV(), 0.0f);
}

TEST(CameraChunk, BadRecordsFail)
{
    Camera camera("Cam", Vector3(1, 2, 3), Vector3(4, 5, 6), 0.5f, 1000.0f, 60.0f);
    std::string image = saved(camera);
    for (size_t n = 0; n < image.size(); ++n) {
        Camera target;
        std::istringstream in(image.substr(0, n));
        EXPECT_FALSE(target.load(in)) << n;
    }
    std::string wrong = image;
    wrong[3] = '1';
    Camera target;
    std::istringstream in(wrong);
    EXPECT_FALSE(target.load(in));
    std::string longName = std::string("CAM0") + std::string("\xff\x7f", 2) + std::string(40, 'a');
    std::istringstream in2(longName);
    EXPECT_FALSE(target.load(in2));
}

// ---- setters and movement ------------------------------------------------

TEST(CameraSettings, FieldOfViewIsKeptWithinOneAndOneEighty)
{
    Camera camera;
    camera.setFOV(0.0f);
    EXPECT_EQ(camera.getFOV(), 1.0f);
    camera.setFOV(-5.0f);
    EXPECT_EQ(camera.getFOV(), 1.0f);
    camera.setFOV(0.5f);
    EXPECT_EQ(camera.getFOV(), 0.5f);
    camera.setFOV(180.0f);
    EXPECT_EQ(camera.getFOV(), 180.0f);
    camera.setFOV(500.0f);
    EXPECT_EQ(camera.getFOV(), 180.0f);
}

TEST(CameraSettings, ClipPlanesAreOrderedAndNearIsNeverZero)
{
    Camera camera;
    camera.setClipPlanes(100.0f, 0.0f);
    EXPECT_EQ(camera.getNear(), 0.000001f);
    EXPECT_EQ(camera.getFar(), 100.0f);
    camera.setClipPlanes(50.0f, 2.0f);
    EXPECT_EQ(camera.getNear(), 2.0f);
    EXPECT_EQ(camera.getFar(), 50.0f);
}

TEST(CameraSettings, StraightDownUsesXAsUp)
{
    Camera camera;
    camera.lookAt(Vector3(0, 10, 0), Vector3(0, 0, 0));
    camera.calcUVN();
    EXPECT_EQ(camera.getN(), Vector3(0, -1, 0));
    expectNear(camera.getV(), Vector3(1, 0, 0));
    expectNear(camera.getU(), Vector3(0, 0, 1));
}

TEST(CameraSettings, BasisIsRightHandedAndOrthonormal)
{
    Camera camera;
    camera.lookAt(Vector3(1, 2, 3), Vector3(-4, 7, 0.5f));
    camera.calcUVN();
    const Vector3& u = camera.getU();
    const Vector3& v = camera.getV();
    const Vector3& n = camera.getN();
    EXPECT_NEAR(u.dot(v), 0.0f, 1e-6f);
    EXPECT_NEAR(v.dot(n), 0.0f, 1e-6f);
    EXPECT_NEAR(u.length(), 1.0f, 1e-6f);
    expectNear(n.cross(v), u);
    EXPECT_GT(v.y, 0.0f);
}

TEST(CameraSettings, MovesShiftPositionAndTargetTogether)
{
    Camera camera;
    camera.lookAt(Vector3(0, 0, 0), Vector3(0, 0, 10));
    camera.calcUVN();
    camera.moveForward(2.0f);
    EXPECT_EQ(camera.getPosition(), Vector3(0, 0, 2));
    EXPECT_EQ(camera.getTarget(), Vector3(0, 0, 12));
    camera.moveBackward(2.0f);
    camera.moveUp(1.0f);
    EXPECT_EQ(camera.getPosition(), Vector3(0, 1, 0));
    camera.moveDown(1.0f);
    camera.moveRight(3.0f);
    expectNear(camera.getPosition(), camera.getU() * 3.0f);
    camera.moveLeft(3.0f);
    expectNear(camera.getPosition(), Vector3(0, 0, 0));
}

TEST(CameraSettings, TurnsSwingTheTargetAroundThePosition)
{
    Camera camera;
    camera.lookAt(Vector3(1, 0, 1), Vector3(1, 0, 11));
    camera.turnLeft(90.0f);
    // RotateAroundY turns +z towards +x.
    expectNear(camera.getTarget(), Vector3(11, 0, 1), 1e-4f);
    expectNear(camera.getN(), Vector3(1, 0, 0), 1e-6f);
    camera.turnRight(90.0f);
    expectNear(camera.getTarget(), Vector3(1, 0, 11), 1e-4f);
    camera.lookUp(30.0f);
    EXPECT_NEAR(camera.getTarget().distance(camera.getPosition()), 10.0f, 1e-4f);
    EXPECT_NEAR(camera.getN().y, 0.5f, 1e-5f);
    camera.lookDown(30.0f);
    expectNear(camera.getTarget(), Vector3(1, 0, 11), 1e-4f);
}

TEST(CameraSettings, LookingStraightUpChangesTheAxisOfTheWayBack)
{
    Camera camera;
    camera.lookAt(Vector3(0, 0, 0), Vector3(0, 0, 10));
    camera.calcUVN();
    camera.lookUp(90.0f);
    EXPECT_NEAR(std::fabs(camera.getN().y), 1.0f, 1e-6f);
    // Straight up or down, U is rebuilt from the x lean, so the way down is another turn.
    camera.lookDown(90.0f);
    EXPECT_GT(camera.getTarget().distance(Vector3(0, 0, 10)), 1.0f);
}

TEST(CameraSettings, InverseEndsEqualToTheTransform)
{
    Camera camera;
    camera.lookAt(Vector3(1, 2, 3), Vector3(4, -1, 7));
    camera.calcUVN();
    camera.calcTransform();
    camera.calcInverse();
    EXPECT_EQ(camera.getInverse(), camera.getTransform());
    EXPECT_EQ(camera.getTransform()[3], 0.0f);
    EXPECT_EQ(camera.getTransform()[0], camera.getU().x);
    EXPECT_EQ(camera.getTransform()[9], camera.getN().y);
}

TEST(CameraSettings, ProjectionIsTheUnmirroredFrustum)
{
    Camera camera("p", Vector3(), Vector3(0, 0, 1), 1.0f, 100.0f, 90.0f);
    camera.calcProjection(2.0f);
    const Matrix4& p = camera.getProjection();
    // t = tan(45 degrees) * near = 1, r = 2.
    EXPECT_NEAR(p[0], 0.5f, 1e-6f);
    EXPECT_NEAR(p[5], 1.0f, 1e-6f);
    EXPECT_NEAR(p[10], -101.0f / 99.0f, 1e-5f);
    EXPECT_NEAR(p[11], -200.0f / 99.0f, 1e-5f);
    EXPECT_EQ(p[14], -1.0f);
}

// ---- GL matrices -----------------------------------------------------------

namespace {

class CameraGL : public GLTest {};

void readMatrix(GLenum which, float out[16])
{
    glGetFloatv(which, out);
}

} // namespace

TEST_F(CameraGL, LookAtLoadsTheViewOfPositionAlongN)
{
    Camera camera;
    camera.lookAt(Vector3(1, 2, 3), Vector3(1, 2, -7));
    glMatrixMode(GL_PROJECTION);
    EXPECT_FALSE(camera.lookAt());
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    float m[16];
    readMatrix(GL_MODELVIEW_MATRIX, m);
    // Looking down -z from (1, 2, 3): the identity rotation and a translation by -position.
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1};
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(m[i], expected[i], 1e-6f) << i;
}

TEST_F(CameraGL, LookAtAlongPlusZTurnsTheViewAround)
{
    Camera camera;
    camera.lookAt(Vector3(0, 0, 0), Vector3(0, 0, 5));
    camera.lookAt();
    float m[16];
    readMatrix(GL_MODELVIEW_MATRIX, m);
    // gluLookAt maps the viewing direction to -z: +z becomes -z, x is mirrored too.
    EXPECT_NEAR(m[0], -1.0f, 1e-6f);
    EXPECT_NEAR(m[5], 1.0f, 1e-6f);
    EXPECT_NEAR(m[10], -1.0f, 1e-6f);
    expectNear(camera.getU(), Vector3(-1, 0, 0));
}

TEST_F(CameraGL, ResizeLoadsTheFrustumAndAppliesTheCamera)
{
    Camera camera("r", Vector3(0, 0, 0), Vector3(0, 0, -1), 1.0f, 100.0f, 90.0f);
    camera.resize(200, 100);
    float p[16];
    readMatrix(GL_PROJECTION_MATRIX, p);
    const Matrix4& mine = camera.getProjection();
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(p[4 * c + r], mine[4 * r + c], 1e-5f) << r << "," << c;
    EXPECT_NEAR(p[0], 0.5f, 1e-6f);
    EXPECT_NEAR(p[5], 1.0f, 1e-6f);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
}

TEST_F(CameraGL, ZeroHeightMeansAnAspectOfTheWidth)
{
    Camera camera("z", Vector3(0, 0, 0), Vector3(0, 0, -1), 1.0f, 100.0f, 90.0f);
    camera.resize(640, 0);
    float p[16];
    readMatrix(GL_PROJECTION_MATRIX, p);
    EXPECT_NEAR(p[0], 1.0f / 640.0f, 1e-8f);
    EXPECT_NEAR(p[5], 1.0f, 1e-6f);
}

TEST_F(CameraGL, MeshVisibilityFollowsTheFrustum)
{
    Camera camera("v", Vector3(0, 0, 0), Vector3(0, 0, -1), 1.0f, 100.0f, 90.0f);
    camera.resize(100, 100);
    VertexArray* vertices = new VertexArray();
    vertices->create(2);
    vertices->addVertex(Vector3(-1, -1, -11));
    vertices->addVertex(Vector3(1, 1, -9));
    Mesh mesh;
    mesh.create(vertices, new FaceArray());
    EXPECT_TRUE(mesh.isVisible(camera));
    camera.turnLeft(180.0f);
    camera.lookAt();
    EXPECT_FALSE(mesh.isVisible(camera));
}

// ---- registry ---------------------------------------------------------------

TEST_F(CameraRegistry, FirstCameraBecomesActiveAndNamesAreUnique)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    EXPECT_EQ(cameras->getActiveCamera(), nullptr);
    Camera* first = new Camera("first");
    Camera* second = new Camera("second");
    EXPECT_TRUE(cameras->add(first));
    EXPECT_TRUE(cameras->add(second));
    EXPECT_EQ(cameras->getActiveCamera(), first);
    Camera duplicate("first");
    EXPECT_FALSE(cameras->add(&duplicate));
    EXPECT_FALSE(cameras->add(nullptr));
    EXPECT_EQ(cameras->getNumCameras(), 2);
    EXPECT_EQ(cameras->find("second"), second);
    EXPECT_EQ(cameras->find("Second"), nullptr);
    ASSERT_NE(cameras->findNode("first"), nullptr);
    EXPECT_EQ(cameras->findNode("first")->camera, first);
}

TEST_F(CameraRegistry, ActivationResizesOnlyOnceTheWindowIsKnown)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    CountingCamera* a = new CountingCamera("a");
    CountingCamera* b = new CountingCamera("b");
    cameras->add(a);
    cameras->add(b);
    EXPECT_TRUE(cameras->setActiveCamera("b"));
    EXPECT_EQ(b->resizes, 0);
    EXPECT_EQ(cameras->getActiveCamera(), b);

    EXPECT_TRUE(cameras->onResize(320, 200));
    EXPECT_EQ(b->resizes, 1);
    EXPECT_EQ(a->resizes, 0);
    EXPECT_TRUE(cameras->setActiveCamera(a));
    EXPECT_EQ(a->resizes, 1);
    EXPECT_EQ(a->lastWidth, 320);
    EXPECT_EQ(a->lastHeight, 200);

    EXPECT_FALSE(cameras->setActiveCamera("nobody"));
    Camera stranger("stranger");
    EXPECT_FALSE(cameras->setActiveCamera(&stranger));
    EXPECT_FALSE(cameras->setActiveCamera(static_cast<Camera*>(nullptr)));
    EXPECT_EQ(cameras->getActiveCamera(), a);
}

TEST_F(CameraRegistry, RemovingTheActiveCameraClearsIt)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    cameras->add(new Camera("one"));
    cameras->add(new Camera("two"));
    EXPECT_TRUE(cameras->remove("two"));
    EXPECT_EQ(cameras->getActiveCamera()->getName(), std::string("one"));
    EXPECT_TRUE(cameras->remove("one"));
    EXPECT_EQ(cameras->getActiveCamera(), nullptr);
    EXPECT_FALSE(cameras->remove("one"));
    EXPECT_EQ(cameras->getNumCameras(), 0);
}

TEST_F(CameraRegistry, SaveWritesFrontFirstAndLoadKeepsRegisteredNames)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    cameras->add(new Camera("older", Vector3(1, 0, 0), Vector3(0, 0, 0), 1, 10, 30));
    cameras->add(new Camera("newer", Vector3(2, 0, 0), Vector3(0, 0, 0), 1, 10, 40));
    std::ostringstream out;
    ASSERT_TRUE(cameras->save(out));
    std::string image = out.str();
    ASSERT_EQ(image.substr(0, 8), std::string("CMGR") + le32(2));
    EXPECT_EQ(image.substr(8, 11), std::string("CAM0\x05\x00newer", 11));

    cameras->shutdown();
    std::istringstream in(image);
    ASSERT_TRUE(cameras->load(in));
    EXPECT_EQ(cameras->getNumCameras(), 2);
    // Loading links each at the front, so the file's first camera is registered first.
    EXPECT_STREQ(cameras->getActiveCamera()->getName(), "newer");
    EXPECT_EQ(cameras->find("older")->getFOV(), 30.0f);
    std::ostringstream again;
    cameras->save(again);
    EXPECT_EQ(again.str().size(), image.size());

    // A second load of the same names adds nothing.
    std::istringstream repeat(image);
    ASSERT_TRUE(cameras->load(repeat));
    EXPECT_EQ(cameras->getNumCameras(), 2);
}

TEST_F(CameraRegistry, BadContainersFailButKeepWhatLoaded)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    Camera good("good", Vector3(), Vector3(0, 0, 1), 1, 10, 30);
    std::ostringstream one;
    good.save(one);
    std::string image = std::string("CMGR") + le32(2) + one.str() + "CAMX" + std::string(40, '\0');
    std::istringstream in(image);
    EXPECT_FALSE(cameras->load(in));
    EXPECT_NE(cameras->find("good"), nullptr);

    std::istringstream wrongTag(std::string("CMGX") + le32(0));
    EXPECT_FALSE(cameras->load(wrongTag));
    std::istringstream empty("");
    EXPECT_FALSE(cameras->load(empty));
    std::istringstream huge(std::string("CMGR") + le32(0x7fffffff) + one.str());
    EXPECT_FALSE(cameras->load(huge));
    std::istringstream none(std::string("CMGR") + le32(0));
    EXPECT_TRUE(cameras->load(none));
    std::istringstream negative(std::string("CMGR") + le32(0xfffffff0u));
    EXPECT_TRUE(cameras->load(negative));
    EXPECT_FALSE(cameras->load("/nonexistent/cameras.cmgr"));
}

TEST_F(CameraRegistry, FileRoundTrip)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    cameras->add(new Camera("fly", Vector3(1, 2, 3), Vector3(4, 5, 6), 0.1f, 500, 70));
    std::string path = ::testing::TempDir() + "velmora_scene_cameras.bin";
    ASSERT_TRUE(cameras->save(path.c_str()));
    cameras->shutdown();
    ASSERT_TRUE(cameras->load(path.c_str()));
    Camera* fly = cameras->find("fly");
    ASSERT_NE(fly, nullptr);
    EXPECT_EQ(fly->getTarget(), Vector3(4, 5, 6));
    EXPECT_EQ(fly->getNear(), 0.1f);
}
