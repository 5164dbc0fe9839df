// An eye in its socket: lids that open and blink on a schedule, a ball that turns its iris towards a point, a wet glint.
#pragma once

#include "effects/IndexedMesh.h"
#include "math/Vector3.h"

class Camera;
class Texture;
class TextureMaterial;

class Eye {
public:
    // How far the ball turns from looking straight out, in degrees, and how fast.
    static constexpr float MAX_YAW = 38.0f;
    static constexpr float MAX_PITCH = 24.0f;
    static constexpr float TURN_SPEED = 75.0f;
    // Seconds the lids take to open the first time, and the three parts of a blink.
    static constexpr float OPENING = 1.25f;
    static constexpr float BLINK_CLOSING = 0.1f;
    static constexpr float BLINK_SHUT = 0.06f;
    static constexpr float BLINK_OPENING = 0.2f;
    // Lid turns about the ball's side axis in degrees: shut, the two meet at the middle; open, they
    // fold back under the rim, the upper further than the lower.
    static constexpr float LID_SHUT = 4.0f;
    static constexpr float UPPER_OPEN = -74.0f;
    static constexpr float LOWER_OPEN = -58.0f;
    static constexpr int MAX_BLINKS = 8;

    Eye();
    ~Eye();
    Eye(const Eye&) = delete;
    Eye& operator=(const Eye&) = delete;

    // Where the ball's centre is and how large it is; at rest it looks along +z.
    void place(const Vector3& centre, float radius);
    // When the lids first open, and when they blink afterwards (at most MAX_BLINKS), in scene seconds.
    void setSchedule(float opensAt, const float* blinkTimes, int count);

    // How open the lids are at time t: 0 shut, 1 wide open.
    static float openness(float t, float opensAt, const float* blinkTimes, int count);
    // The turn that would look from the centre at the target, kept within the limits (degrees;
    // yaw to +x, pitch up).
    static void aim(const Vector3& centre, const Vector3& target, float& yaw, float& pitch);

    // The lids for time t; the ball turns towards the target by at most TURN_SPEED x seconds.
    void update(float t, float seconds, const Vector3& target);
    float getOpenness() const { return open; }
    float getYaw() const { return yaw; }
    float getPitch() const { return pitch; }
    float getUpperLid() const;
    float getLowerLid() const;

    // The ball, lid and pictures; one line on the error stream, with the scene's name, per missing piece.
    void load(const char* scene);
    bool isLoaded() const { return !ball.isEmpty() && !lid.isEmpty(); }
    // With the scene's lights on: the ball, both lids and, while open, the glint facing the camera.
    void draw(const Camera& camera, const Vector3& light);
    void release();

private:
    void drawSocket() const;
    void drawGlint(const Camera& camera, const Vector3& light) const;

    Vector3 centre;
    float radius;
    float opensAt;
    float blinks[MAX_BLINKS];
    int blinkCount;
    float open;
    float yaw;
    float pitch;
    IndexedMesh ball;
    IndexedMesh lid;
    TextureMaterial* ballMaterial;
    TextureMaterial* lidMaterial;
    TextureMaterial* glintMaterial;
};
