// The view frustum taken from the GL matrices: the point, sphere and box tests.
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/Frustum.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

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

} // namespace

TEST_F(FrustumGL, PointsOnEachSide)
{
    EXPECT_TRUE(frustum().isPointInside(Vector3(9.99f, -9.99f, -10)));
    const Vector3 outside[] = {{10.1f, 0, -10}, {-10.1f, 0, -10}, {0, 10.1f, -10}, {0, -10.1f, -10},
                               {0, 0, -0.5f}, {0, 0, 10}, {0, 0, -150}};
    for (const Vector3& p : outside)
        EXPECT_FALSE(frustum().isPointInside(p)) << p;
    EXPECT_EQ(frustum().getPointLocation(Vector3(0, 0, -10)), Frustum::INSIDE);
    EXPECT_EQ(frustum().getPointLocation(Vector3(20, 0, -10)), Frustum::OUTSIDE);
}

TEST_F(FrustumGL, FarPlaneCountsOnlyWhileItsFlagIsSet)
{
    camera.getFrustum().setFarTest(false);
    EXPECT_TRUE(frustum().isPointInside(Vector3(0, 0, -150)));
    EXPECT_TRUE(frustum().isSphereInside(Vector3(0, 0, -300), 1.0f));
    EXPECT_FALSE(frustum().isPointInside(Vector3(0, 0, -0.5f)));
    camera.getFrustum().setFarTest(true);
    EXPECT_FALSE(frustum().isPointInside(Vector3(0, 0, -150)));
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
