// The view frustum as six planes taken from OpenGL's current matrices, with visibility tests.
#pragma once

#include "math/Plane.h"
#include "math/Vector3.h"

#include <cstdint>

class BoundingBox;
class Camera;

class Frustum {
public:
    enum { LEFT = 0, RIGHT, TOP, BOTTOM, NEAR_PLANE, FAR_PLANE, PLANE_COUNT };
    // Location answers, as the plane classifications use them.
    enum { OUTSIDE = 0, INTERSECTING = 1, INSIDE = 2 };

    Frustum();

    // Re-extracts the planes from the current projection and model-view matrices.
    void update();
    // Both read the GL matrices too; the arguments only say when to do it.
    void update(const Camera& camera);
    void update(const Vector3& position, const Vector3& u, const Vector3& v, const Vector3& n);
    // The same planes from matrices given as OpenGL keeps them (column-major), so culling can be
    // worked out with no GL context.
    void extract(const float projection[16], const float modelView[16]);

    // With the far test off only the first five planes count.
    void setFarTest(bool on) { farTest = on ? 1 : 0; }
    bool getFarTest() const { return farTest != 0; }
    const Plane& getPlane(int i) const { return planes[i]; }

    bool isPointInside(const Vector3& p) const;
    // A sphere that only touches the frustum counts as inside.
    bool isSphereInside(const Vector3& centre, float radius) const;
    // Conservative: false only when one plane has all eight corners behind it.
    bool isBoxInside(const BoundingBox& box) const;
    // Conservative like the box: false only when one plane has both ends behind it.
    bool isLineInside(const Vector3& p1, const Vector3& p2) const;

    int getPointLocation(const Vector3& p) const;
    int getLineLocation(const Vector3& p1, const Vector3& p2) const;
    int getBoxLocation(const BoundingBox& box) const;
    // Always INTERSECTING: the octree relies on visiting every node.
    int getSphereLocation(const Vector3& centre, float radius) const;

private:
    int planeCount() const { return farTest ? 6 : 5; }
    // OUTSIDE when all points lie behind one plane, INSIDE when all lie in front of every plane.
    int locate(const Vector3* points, int count) const;

    uint8_t farTest;
    Plane planes[PLANE_COUNT];
};
