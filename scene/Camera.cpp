// Camera basis, projection, GL application and the CAM0 chunk.
#include "scene/Camera.h"
#include "math/MathConstants.h"

#include "gl/GLF_checkError.h"
#include "math/Transform.h"
#include "scene/object/Chunk.h"

#include <GL/gl.h>
#include <GL/glu.h>
#include <cmath>
#include <iostream>

namespace {
const float smallestNear = 0.000001f;
}

Camera::Camera() : Camera("DefaultCamera") {}

Camera::Camera(const char* name)
    : NamedObject(name), fov(45.0f), nearClip(smallestNear), farClip(200000.0f), target(0.0f, 0.0f, 100.0f),
      u(1.0f, 0.0f, 0.0f), v(0.0f, 1.0f, 0.0f), n(0.0f, 0.0f, 1.0f)
{
}

Camera::Camera(const char* name, const Vector3& position_, const Vector3& target_, float nearClip_, float farClip_,
               float fov_)
    : Camera(name)
{
    position = position_;
    target = target_;
    nearClip = nearClip_;
    farClip = farClip_;
    fov = fov_;
}

Camera::~Camera() {}

bool Camera::load(std::istream& in)
{
    if (!Chunk::readTag(in, "CAM0"))
        return false;
    if (!NamedObject::load(in))
        return false;
    float values[9];
    if (!Chunk::readFloats(in, values, 9))
        return false;
    fov = values[0];
    nearClip = values[1];
    farClip = values[2];
    position.assign(values[3], values[4], values[5]);
    target.assign(values[6], values[7], values[8]);
    return Chunk::good(in);
}

bool Camera::save(std::ostream& out)
{
    Chunk::writeTag(out, "CAM0");
    if (!NamedObject::save(out))
        return false;
    const float values[9] = {fov, nearClip, farClip, position.x, position.y, position.z, target.x, target.y, target.z};
    Chunk::writeFloats(out, values, 9);
    return Chunk::good(out);
}

void Camera::setFOV(float degrees)
{
    if (degrees <= 0.0f)
        fov = 1.0f;
    else if (degrees >= 180.0f)
        fov = 180.0f;
    else
        fov = degrees;
}

void Camera::setClipPlanes(float a, float b)
{
    float nearer = a < b ? a : b;
    farClip = a < b ? b : a;
    nearClip = nearer < smallestNear ? smallestNear : nearer;
}

void Camera::calcUVN()
{
    n = target - position;
    n.normalize();
    // Looking straight up or down, world up is parallel to N: lean on x instead.
    Vector3 up = (n.x == 0.0f && n.z == 0.0f) ? Vector3(-n.y, 0.0f, 0.0f) : Vector3(0.0f, 1.0f, 0.0f);
    v = up - n * up.dot(n);
    v.normalize();
    u = n.cross(v);
    u.normalize();
    v = u.cross(n);
    v.normalize();
}

void Camera::calcTransform()
{
    RotateAxis(transform, u, v, n);
}

void Camera::calcInverse()
{
    // Transposing the inverse rotation gives the rotation itself again; the
    // animation code was written against this value, so it stays.
    InvRotateAxis(inverse, u, v, n);
    inverse = inverse.transpose();
}

float Camera::halfHeightAtNear() const
{
    return std::tan(fov * 0.5f * MathConstants::DEGREES_TO_RADIANS) * nearClip;
}

void Camera::calcProjection(float aspect)
{
    float t = halfHeightAtNear();
    float r = t * aspect;
    ::frustum(projection, -r, r, t, -t, nearClip, farClip);
}

bool Camera::lookAt()
{
    calcUVN();
    calcInverse();
    calcTransform();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    Vector3 centre = position + n;
    gluLookAt(position.x, position.y, position.z, centre.x, centre.y, centre.z, v.x, v.y, v.z);
    frustum.update();
    return GLF_checkError("Camera::lookAt()");
}

void Camera::resize(int width, int height)
{
    float aspect = static_cast<float>(width) / static_cast<float>(height != 0 ? height : 1);
    calcProjection(aspect);
    float t = halfHeightAtNear();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-t * aspect, t * aspect, -t, t, nearClip, farClip);
    if (GLF_checkError("Camera::resize()")) {
        std::cout << "New Window Size " << width << "x" << height << "\n"
                  << "FOV " << fov << "\n"
                  << "glFrustum(" << -t * aspect << "," << t * aspect << "," << -t << "," << t << "," << nearClip << ","
                  << farClip << ");\n";
        std::cout.flush();
    }
    lookAt();
}

void Camera::shift(const Vector3& offset)
{
    position += offset;
    target += offset;
}

void Camera::moveForward(float distance)
{
    shift(n * distance);
}
void Camera::moveBackward(float distance)
{
    shift(n * -distance);
}
void Camera::moveRight(float distance)
{
    shift(u * distance);
}
void Camera::moveLeft(float distance)
{
    shift(u * -distance);
}
void Camera::moveUp(float distance)
{
    shift(v * distance);
}
void Camera::moveDown(float distance)
{
    shift(v * -distance);
}

void Camera::turnLeft(float degrees)
{
    Matrix4 turn;
    RotateAroundY(turn, degrees);
    target = position + turn * (target - position);
    calcUVN();
}

void Camera::turnRight(float degrees)
{
    turnLeft(-degrees);
}

void Camera::rotate(const Vector3& axis, float degrees)
{
    Matrix4 turn;
    vectorRotate(turn, axis, degrees);
    target = position + turn * (target - position);
    calcUVN();
}

void Camera::lookUp(float degrees)
{
    rotate(u, degrees);
}

void Camera::lookDown(float degrees)
{
    rotate(u, -degrees);
}

void Camera::lookAt(const Vector3& position_, const Vector3& target_)
{
    position = position_;
    target = target_;
}
