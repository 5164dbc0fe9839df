// Cameras: the CAM0 chunk, limits, the UVN basis, the GL matrices, the frustum tests and the registry.
#include "ByteImage.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/Frustum.h"
#include "support/GLContext.h"
#include "support/VectorNear.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace bytes;

namespace {

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

// Looking down -z from the origin, 90 degrees, near 1, far 100: inside means |x|, |y| <= -z, 1 <= -z <= 100.
class FrustumGL : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        camera.lookAt(Vector3(0, 0, 0), Vector3(0, 0, -1));
        camera.setClipPlanes(1.0f, 100.0f);
        camera.setFOV(90.0f);
        camera.resize(100, 100);
    }
    const Frustum& frustum() const { return camera.getFrustum(); }
    Camera camera;
};

}  // namespace

TEST(CameraChunk, ByteImageAndBitForBitRoundTrip)
{
    Camera camera("Cam", Vector3(1, 2, 3), Vector3(4, 5, 6), 0.5f, 1000.0f, 60.0f);
    EXPECT_EQ(saved(camera), std::string("CAM0") + le16(3) + "Cam" + f32(60.0f) + f32(0.5f) + f32(1000.0f) + f32(1) +
                                 f32(2) + f32(3) + f32(4) + f32(5) + f32(6));
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
    expectNear(camera.getV(), Vector3(1, 0, 0), 1e-6f);
    expectNear(camera.getU(), Vector3(0, 0, 1), 1e-6f);
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

TEST_F(CameraRegistry, ACountPastTheEndKeepsTheCamerasReadBeforeTheCut)
{
    Camera early("early");
    std::istringstream in(std::string("CMGR") + le32(0x7fffffff) + saved(early));
    EXPECT_FALSE(cameras->load(in));
    EXPECT_NE(cameras->find("early"), nullptr);
}

TEST_F(FrustumGL, PointsOnEachSide)
{
    EXPECT_TRUE(frustum().isPointInside(Vector3(9.99f, -9.99f, -10)));
    const Vector3 outside[] = {{10.1f, 0, -10}, {-10.1f, 0, -10}, {0, 10.1f, -10}, {0, -10.1f, -10},
                               {0, 0, -0.5f},   {0, 0, 10},       {0, 0, -150}};
    for (const Vector3& p : outside)
        EXPECT_FALSE(frustum().isPointInside(p)) << p;
    EXPECT_EQ(frustum().getPointLocation(Vector3(0, 0, -10)), Frustum::INSIDE);
    EXPECT_EQ(frustum().getPointLocation(Vector3(20, 0, -10)), Frustum::OUTSIDE);
}

TEST_F(FrustumGL, SpheresThatTouchCountAsInsideButTheirLocationIsAlwaysIntersecting)
{
    // The right plane is x = -z; from (12, 0, -10) it lies 2 / sqrt(2) away.
    const float gap = 2.0f / std::sqrt(2.0f);
    EXPECT_TRUE(frustum().isSphereInside(Vector3(12, 0, -10), gap + 0.01f));
    EXPECT_FALSE(frustum().isSphereInside(Vector3(12, 0, -10), gap - 0.01f));
    EXPECT_TRUE(frustum().isSphereInside(Vector3(0, 0, 0.5f), 1.6f));
    EXPECT_FALSE(frustum().isSphereInside(Vector3(0, 0, 5), 1.0f));
    EXPECT_EQ(frustum().getSphereLocation(Vector3(1000, 1000, 1000), 0.5f), Frustum::INTERSECTING);
}

TEST_F(FrustumGL, Boxes)
{
    EXPECT_EQ(frustum().getBoxLocation(BoundingBox(Vector3(-1, -1, -11), Vector3(1, 1, -9))), Frustum::INSIDE);
    // Straddles the right plane.
    EXPECT_EQ(frustum().getBoxLocation(BoundingBox(Vector3(9, -1, -11), Vector3(12, 1, -9))), Frustum::INTERSECTING);
    // Wholly right of the frustum, and wholly behind the camera.
    EXPECT_FALSE(frustum().isBoxInside(BoundingBox(Vector3(12, -1, -11), Vector3(14, 1, -9))));
    EXPECT_EQ(frustum().getBoxLocation(BoundingBox(Vector3(-1, -1, 2), Vector3(1, 1, 3))), Frustum::OUTSIDE);
    // A box enclosing the whole frustum has corners behind every plane, yet it is inside.
    EXPECT_TRUE(frustum().isBoxInside(BoundingBox(Vector3(-500, -500, -500), Vector3(500, 500, 500))));
}
