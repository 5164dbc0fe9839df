// A named viewpoint that loads the GL projection and model-view matrices and owns its frustum.
#pragma once

#include "math/Matrix4.h"
#include "math/Vector3.h"
#include "scene/Frustum.h"
#include "scene/object/NamedObject.h"

#include <istream>
#include <ostream>

class Camera : public NamedObject {
public:
    // Named "DefaultCamera".
    Camera();
    explicit Camera(const char* name);
    Camera(const char* name, const Vector3& position, const Vector3& target, float nearClip, float farClip, float fov);
    ~Camera() override;

    // CAM0: name, field of view, near, far, position, target.
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;

    // Applies the camera to the model-view matrix and refreshes the frustum;
    // true when OpenGL reported an error on the way.
    virtual bool lookAt();
    // Sets the projection for a window of that size, then applies the camera.
    virtual void resize(int width, int height);
    virtual void moveForward(float distance);
    virtual void moveBackward(float distance);
    virtual void moveLeft(float distance);
    virtual void moveRight(float distance);
    virtual void moveUp(float distance);
    virtual void moveDown(float distance);
    virtual void turnLeft(float degrees);
    virtual void turnRight(float degrees);
    virtual void lookUp(float degrees);
    virtual void lookDown(float degrees);
    virtual void rotate(const Vector3& axis, float degrees);
    // Stores only; takes effect at the next lookAt().
    virtual void lookAt(const Vector3& position, const Vector3& target);

    void setPosition(const Vector3& p) { position = p; }
    void setDirection(const Vector3& target_) { target = target_; }
    // Kept within 1..180 degrees (anything up to 0 becomes 1).
    void setFOV(float degrees);
    // The nearer of the two (never below 0.000001) and the farther.
    void setClipPlanes(float a, float b);

    const Vector3& getPosition() const { return position; }
    const Vector3& getTarget() const { return target; }
    float getFOV() const { return fov; }
    float getNear() const { return nearClip; }
    float getFar() const { return farClip; }
    const Vector3& getU() const { return u; }
    const Vector3& getV() const { return v; }
    const Vector3& getN() const { return n; }
    const Matrix4& getTransform() const { return transform; }
    const Matrix4& getInverse() const { return inverse; }
    const Matrix4& getProjection() const { return projection; }
    const Frustum& getFrustum() const { return frustum; }
    Frustum& getFrustum() { return frustum; }

    void calcUVN();
    void calcTransform();
    void calcInverse();
    void calcProjection(float aspect);

private:
    float halfHeightAtNear() const;
    void shift(const Vector3& offset);

    float fov;
    float nearClip;
    float farClip;
    Vector3 position;
    Vector3 target;
    Vector3 u;
    Vector3 v;
    Vector3 n;
    Matrix4 transform;
    Matrix4 inverse;
    Matrix4 projection;
    Frustum frustum;
};
