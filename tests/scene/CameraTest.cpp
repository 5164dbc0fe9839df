// Cameras: the CAM0 chunk, limits, the UVN basis, the GL matrices of lookAt and resize, and the registry.
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "support/GLContext.h"
#include "ByteImage.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <string>

using namespace bytes;

namespace {

void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-6f)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

// Counts the resizes the registry asks for.
class CountingCamera : public Camera {
public:
    explicit CountingCamera(const char* name) : Camera(name) {}
    void resize(int width, int) override
    {
        ++resizes;
        lastWidth = width;
    }
    int resizes = 0;
    int lastWidth = 0;
};

class CameraRegistry : public ::testing::Test {
protected:
    void SetUp() override { TearDown(); }
    void TearDown() override
    {
        cameras->shutdown();
        cameras->onResize(0, 0);
    }
    CameraMgr* cameras = CameraMgr::getHandle();
};

class CameraGL : public GLTest {};

} // namespace

TEST(CameraChunk, ByteImageAndBitForBitRoundTrip)
{
    Camera camera("Cam", Vector3(1, 2, 3), Vector3(4, 5, 6), 0.5f, 1000.0f, 60.0f);
    EXPECT_EQ(saved(camera), std::string("CAM0") + le16(3) + "Cam" + f32(60.0f) + f32(0.5f) + f32(1000.0f) + f32(1)
                                 + f32(2) + f32(3) + f32(4) + f32(5) + f32(6));
    Camera odd("odd", Vector3(fromBits(0x7fa00001u), -0.0f, 1e-40f), Vector3(3, 2, 1), 1e-6f, 2e5f, 179.5f);
    const std::string first = saved(odd);
    std::istringstream in(first);
    ASSERT_TRUE(camera.load(in));
    EXPECT_STREQ(camera.getName(), "odd");
    EXPECT_EQ(saved(camera), first);
}

TEST(CameraChunk, BadRecordsFail)
{
    Camera camera("Cam");
    std::string image = saved(camera);
    expectEveryPrefixFails<Camera>(image);
    image[3] = '1';
    for (const std::string& bad : {image, std::string("CAM0") + le16(0x7fff) + std::string(40, 'a')}) {
        std::istringstream in(bad);
        EXPECT_FALSE(camera.load(in));
    }
}

TEST(CameraSettings, FieldOfViewAndClipPlanesStayInRange)
{
    Camera camera;
    const float fovs[][2] = {{0.0f, 1.0f}, {-5.0f, 1.0f}, {0.5f, 0.5f}, {180.0f, 180.0f}, {500.0f, 180.0f}};
    for (const auto& fov : fovs) {
        camera.setFOV(fov[0]);
        EXPECT_EQ(camera.getFOV(), fov[1]) << fov[0];
    }
    camera.setClipPlanes(100.0f, 0.0f);
    EXPECT_EQ(camera.getNear(), 0.000001f);
    EXPECT_EQ(camera.getFar(), 100.0f);
}

TEST(CameraSettings, StraightDownUsesXAsUpAndTurnsSwingTheTarget)
{
    Camera camera;
    camera.lookAt(Vector3(0, 10, 0), Vector3(0, 0, 0));
    camera.calcUVN();
    EXPECT_EQ(camera.getN(), Vector3(0, -1, 0));
    expectNear(camera.getV(), Vector3(1, 0, 0));
    expectNear(camera.getU(), Vector3(0, 0, 1));
    camera.lookAt(Vector3(1, 0, 1), Vector3(1, 0, 11));
    camera.turnLeft(90.0f);
    // RotateAroundY turns +z towards +x.
    expectNear(camera.getTarget(), Vector3(11, 0, 1), 1e-4f);
}

TEST(CameraSettings, InverseEndsEqualToTheTransform)
{
    Camera camera;
    camera.lookAt(Vector3(1, 2, 3), Vector3(4, -1, 7));
    camera.calcUVN();
    camera.calcTransform();
    camera.calcInverse();
    EXPECT_EQ(camera.getInverse(), camera.getTransform());
    EXPECT_EQ(camera.getTransform()[9], camera.getN().y);
}

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
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    // Looking down -z from (1, 2, 3): the identity rotation and a translation by -position.
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1};
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(m[i], expected[i], 1e-6f) << i;
}

TEST_F(CameraGL, ResizeLoadsTheFrustumAndZeroHeightMeansTheWidth)
{
    Camera camera("r", Vector3(0, 0, 0), Vector3(0, 0, -1), 1.0f, 100.0f, 90.0f);
    camera.resize(200, 100);
    float p[16];
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    const Matrix4& mine = camera.getProjection();
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(p[i], mine[4 * (i % 4) + i / 4], 1e-5f) << i;
    // t = tan(45 degrees) * near = 1, r = 2.
    const float expected[16] = {0.5f, 0, 0, 0, 0, 1, 0, 0, 0, 0, -101.0f / 99.0f, -1, 0, 0, -200.0f / 99.0f, 0};
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(p[i], expected[i], 1e-5f) << i;
    camera.resize(640, 0);
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    EXPECT_NEAR(p[0], 1.0f / 640.0f, 1e-8f);
}

TEST_F(CameraRegistry, FirstCameraBecomesActiveNamesAreUniqueAndResizesWaitForTheWindow)
{
    CountingCamera* a = new CountingCamera("a");
    CountingCamera* b = new CountingCamera("b");
    EXPECT_TRUE(cameras->add(a));
    EXPECT_TRUE(cameras->add(b));
    EXPECT_EQ(cameras->getActiveCamera(), a);
    Camera duplicate("a");
    EXPECT_FALSE(cameras->add(&duplicate));
    EXPECT_EQ(cameras->getNumCameras(), 2);
    EXPECT_TRUE(cameras->setActiveCamera("b"));
    EXPECT_EQ(b->resizes, 0);
    EXPECT_TRUE(cameras->onResize(320, 200));
    EXPECT_EQ(b->resizes, 1);
    EXPECT_TRUE(cameras->setActiveCamera(a));
    EXPECT_EQ(a->lastWidth, 320);
    EXPECT_FALSE(cameras->setActiveCamera("nobody"));
    EXPECT_FALSE(cameras->setActiveCamera(&duplicate));
    EXPECT_TRUE(cameras->remove("a"));
    EXPECT_EQ(cameras->getActiveCamera(), nullptr);
}

TEST_F(CameraRegistry, SaveWritesFrontFirstAndLoadKeepsRegisteredNames)
{
    cameras->add(new Camera("older", Vector3(1, 0, 0), Vector3(0, 0, 0), 1, 10, 30));
    cameras->add(new Camera("newer", Vector3(2, 0, 0), Vector3(0, 0, 0), 1, 10, 40));
    const std::string image = saved(*cameras);
    EXPECT_EQ(image.substr(0, 19), std::string("CMGR") + le32(2) + "CAM0" + le16(5) + "newer");
    cameras->shutdown();
    std::istringstream in(image);
    ASSERT_TRUE(cameras->load(in));
    // Loading links each at the front, so the file's first camera is registered first.
    EXPECT_STREQ(cameras->getActiveCamera()->getName(), "newer");
    EXPECT_EQ(cameras->find("older")->getFOV(), 30.0f);
    std::istringstream repeat(image);
    ASSERT_TRUE(cameras->load(repeat));
    EXPECT_EQ(cameras->getNumCameras(), 2);
}

TEST_F(CameraRegistry, BadContainersFailButKeepWhatLoaded)
{
    Camera good("good");
    const std::string one = saved(good);
    std::istringstream in(std::string("CMGR") + le32(2) + one + "CAMX" + std::string(40, '\0'));
    EXPECT_FALSE(cameras->load(in));
    EXPECT_NE(cameras->find("good"), nullptr);
    const struct {
        std::string image;
        bool loads;
    } cases[] = {
        {std::string("CMGX") + le32(0), false},
        {"", false},
        {std::string("CMGR") + le32(0x7fffffff) + one, false},
        {std::string("CMGR") + le32(0xfffffff0u), true},
    };
    for (const auto& c : cases) {
        std::istringstream bad(c.image);
        EXPECT_EQ(cameras->load(bad), c.loads) << c.image.size();
    }
    EXPECT_FALSE(cameras->load("/nonexistent/cameras.cmgr"));
}
