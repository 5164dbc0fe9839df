// Plane extraction from the clip matrix and the frustum's point, sphere, line and box tests.
#include "scene/Frustum.h"

#include "scene/BoundingBox.h"

#include <GL/gl.h>

namespace {
const float tolerance = 0.000001f;
}

Frustum::Frustum() : farTest(1) {}

void Frustum::update()
{
    float p[16];
    float m[16];
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    extract(p, m);
}

void Frustum::extract(const float p[16], const float m[16])
{
    // In OpenGL's column-major arrays this product is projection x model-view.
    float c[16];
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k)
                sum += m[4 * i + k] * p[4 * k + j];
            c[4 * i + j] = sum;
        }
    }
    planes[LEFT].assign(c[3] + c[0], c[7] + c[4], c[11] + c[8], c[15] + c[12]);
    planes[RIGHT].assign(c[3] - c[0], c[7] - c[4], c[11] - c[8], c[15] - c[12]);
    planes[TOP].assign(c[3] - c[1], c[7] - c[5], c[11] - c[9], c[15] - c[13]);
    planes[BOTTOM].assign(c[3] + c[1], c[7] + c[5], c[11] + c[9], c[15] + c[13]);
    planes[NEAR_PLANE].assign(c[3] + c[2], c[7] + c[6], c[11] + c[10], c[15] + c[14]);
    planes[FAR_PLANE].assign(c[3] - c[2], c[7] - c[6], c[11] - c[10], c[15] - c[14]);
    for (int i = 0; i < PLANE_COUNT; ++i)
        planes[i].normalize();
}

void Frustum::update(const Camera&)
{
    update();
}

void Frustum::update(const Vector3&, const Vector3&, const Vector3&, const Vector3&)
{
    update();
}

bool Frustum::isPointInside(const Vector3& p) const
{
    for (int i = 0; i < planeCount(); ++i)
        if (planes[i].distance(p) < -tolerance)
            return false;
    return true;
}

bool Frustum::isSphereInside(const Vector3& centre, float radius) const
{
    for (int i = 0; i < planeCount(); ++i)
        if (planes[i].classifySphere(centre, radius) == Plane::BEHIND)
            return false;
    return true;
}

bool Frustum::isBoxInside(const BoundingBox& box) const
{
    Vector3 corners[8];
    box.calcCorners(corners);
    return locate(corners, 8) != OUTSIDE;
}

bool Frustum::isLineInside(const Vector3& p1, const Vector3& p2) const
{
    const Vector3 ends[2] = {p1, p2};
    return locate(ends, 2) != OUTSIDE;
}

int Frustum::getPointLocation(const Vector3& p) const
{
    return locate(&p, 1);
}

int Frustum::getLineLocation(const Vector3& p1, const Vector3& p2) const
{
    const Vector3 ends[2] = {p1, p2};
    return locate(ends, 2);
}

int Frustum::getBoxLocation(const BoundingBox& box) const
{
    Vector3 corners[8];
    box.calcCorners(corners);
    return locate(corners, 8);
}

int Frustum::getSphereLocation(const Vector3&, float) const
{
    return INTERSECTING;
}

int Frustum::locate(const Vector3* points, int count) const
{
    bool allInside = true;
    for (int i = 0; i < planeCount(); ++i) {
        int behind = 0;
        for (int j = 0; j < count; ++j) {
            float distance = planes[i].distance(points[j]);
            if (distance <= -tolerance)
                ++behind;
            if (distance <= tolerance)
                allInside = false;
        }
        if (behind == count)
            return OUTSIDE;
    }
    return allInside ? INSIDE : INTERSECTING;
}
