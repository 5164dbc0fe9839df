// The eye: its lids follow a schedule of opening and blinks, its ball eases round towards what it watches.
#include "effects/Eye.h"

#include "effects/SceneKit.h"
#include "effects/SeaBedLayout.h"
#include "effects/SharedLayout.h"
#include "math/Easing.h"
#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/LightMgr.h"
#include "texture/Material.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

const char* const BALL_MATERIAL = "SeaBedEyeball";
const char* const LID_MATERIAL = "SeaBedEyelid";
const char* const GLINT_MATERIAL = "SeaBedEyeGlint";
// The socket's dark disc, in units of the ball's radius, and how dark it is.
const float SOCKET_RADIUS = 1.35f;
const float SOCKET_DEPTH = 0.1f;
const int SOCKET_STEPS = 24;
const float SOCKET_SHADE = 0.05f;

// Moves from towards to by at most step.
float approach(float from, float to, float step)
{
    if (to > from + step)
        return from + step;
    if (to < from - step)
        return from - step;
    return to;
}

}  // namespace

Eye::Eye()
    : centre(), radius(1.0f), opensAt(0.0f), blinks(), blinkCount(0), open(0.0f), yaw(0.0f), pitch(0.0f),
      ballMaterial(nullptr), lidMaterial(nullptr), glintMaterial(nullptr)
{
}

Eye::~Eye()
{
    release();
}

void Eye::place(const Vector3& c, float r)
{
    centre = c;
    radius = r;
}

void Eye::setSchedule(float opening, const float* blinkTimes, int count)
{
    opensAt = opening;
    blinkCount = std::clamp(count, 0, MAX_BLINKS);
    std::copy(blinkTimes, blinkTimes + blinkCount, blinks);
}

float Eye::openness(float t, float opening, const float* blinkTimes, int count)
{
    float amount = Easing::smoothstep(opening, opening + OPENING, t);
    for (int i = 0; i < count; ++i) {
        const float b = blinkTimes[i];
        const float shut = b + BLINK_CLOSING;
        const float reopen = shut + BLINK_SHUT;
        if (t < b || t > reopen + BLINK_OPENING)
            continue;
        const float lids =
            t < shut ? 1.0f - Easing::smoothstep(b, shut, t) : Easing::smoothstep(reopen, reopen + BLINK_OPENING, t);
        amount = std::min(amount, lids);
    }
    return amount;
}

void Eye::aim(const Vector3& from, const Vector3& target, float& yawOut, float& pitchOut)
{
    const Vector3 d = target - from;
    const float flat = std::sqrt(d.x * d.x + d.z * d.z);
    const float toDegrees = 1.0f / MathConstants::DEGREES_TO_RADIANS;
    // Straight behind the eye, or nothing to look at, still gives a turn within the limits.
    yawOut = std::clamp(std::atan2(d.x, d.z) * toDegrees, -MAX_YAW, MAX_YAW);
    pitchOut = std::clamp(std::atan2(d.y, flat) * toDegrees, -MAX_PITCH, MAX_PITCH);
}

void Eye::update(float t, float seconds, const Vector3& target)
{
    open = openness(t, opensAt, blinks, blinkCount);
    float wantYaw = 0.0f;
    float wantPitch = 0.0f;
    aim(centre, target, wantYaw, wantPitch);
    const float step = TURN_SPEED * std::fabs(seconds);
    yaw = approach(yaw, wantYaw, step);
    pitch = approach(pitch, wantPitch, step);
}

float Eye::getUpperLid() const
{
    return LID_SHUT + (UPPER_OPEN - LID_SHUT) * open;
}

float Eye::getLowerLid() const
{
    return LID_SHUT + (LOWER_OPEN - LID_SHUT) * open;
}

void Eye::load(const char* scene)
{
    ball.loadOrReport(scene, SeaBedLayout::EYEBALL_MESH);
    lid.loadOrReport(scene, SeaBedLayout::EYELID_MESH);
    ballMaterial =
        SceneKit::materialOrReport(scene, BALL_MATERIAL, SeaBedLayout::IRIS, Material::textured, Material::blendNone);
    // A wet ball: a tight highlight, and the iris glowing a little of itself in the dark.
    ballMaterial->setAmbient(Color(0.3f, 0.3f, 0.3f, 1.0f));
    ballMaterial->setDiffuse(Color(0.75f, 0.72f, 0.62f, 1.0f));
    ballMaterial->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    ballMaterial->setEmission(Color(0.14f, 0.16f, 0.08f, 1.0f));
    ballMaterial->setShininess(90.0f);
    // The lids are of the scene's rock; the scene reports that picture if it is missing.
    lidMaterial = SceneKit::wear(LID_MATERIAL, SceneKit::preloadTexture(SeaBedLayout::ROCK), Material::textured,
                                 Material::blendNone);
    lidMaterial->setAmbient(Color(0.25f, 0.18f, 0.16f, 1.0f));
    lidMaterial->setDiffuse(Color(0.5f, 0.36f, 0.32f, 1.0f));
    lidMaterial->setSpecular(Color(0.2f, 0.2f, 0.2f, 1.0f));
    lidMaterial->setShininess(20.0f);
    glintMaterial = SceneKit::materialOrReport(scene, GLINT_MATERIAL, SharedLayout::PARTICLE, Material::overlay,
                                               Material::blendAdd);
}

void Eye::release()
{
    ball.clear();
    lid.clear();
    // Registered materials belong to the registry.
    ballMaterial = nullptr;
    lidMaterial = nullptr;
    glintMaterial = nullptr;
}

void Eye::draw(const Camera& camera, const Vector3& light)
{
    if (!isLoaded())
        return;
    glPushMatrix();
    glTranslatef(centre.x, centre.y, centre.z);
    glScalef(radius, radius, radius);
    // The ball is scaled with the rest, so its normals are made unit again.
    glEnable(GL_NORMALIZE);

    drawSocket();
    glPushMatrix();
    glRotatef(yaw, 0.0f, 1.0f, 0.0f);
    glRotatef(-pitch, 1.0f, 0.0f, 0.0f);
    ballMaterial->bind();
    ball.draw();
    ballMaterial->unbind();
    glPopMatrix();

    lidMaterial->bind();
    glPushMatrix();
    glRotatef(getUpperLid(), 1.0f, 0.0f, 0.0f);
    lid.draw();
    glPopMatrix();
    glPushMatrix();
    glRotatef(180.0f, 0.0f, 0.0f, 1.0f);
    glRotatef(getLowerLid(), 1.0f, 0.0f, 0.0f);
    lid.draw();
    glPopMatrix();
    lidMaterial->unbind();

    glDisable(GL_NORMALIZE);
    glPopMatrix();
    if (open > 0.3f)
        drawGlint(camera, light);
}

void Eye::drawSocket() const
{
    // The hollow the ball sits in: a dark disc behind its middle, seen round its edge inside the rim.
    LightMgr::getHandle()->turnLightingOff();
    glColor4f(SOCKET_SHADE, SOCKET_SHADE * 1.1f, SOCKET_SHADE, 1.0f);
    glBegin(GL_TRIANGLE_FAN);
    glVertex3f(0.0f, 0.0f, -SOCKET_DEPTH);
    for (int i = 0; i <= SOCKET_STEPS; ++i) {
        const float a = MathConstants::TWO_PI * i / SOCKET_STEPS;
        glVertex3f(SOCKET_RADIUS * std::cos(a), SOCKET_RADIUS * std::sin(a), -SOCKET_DEPTH);
    }
    glEnd();
    LightMgr::getHandle()->turnLightingOn();
}

void Eye::drawGlint(const Camera& camera, const Vector3& light) const
{
    // The highlight sits where the ball's surface turns halfway between the light and the viewer.
    Vector3 toViewer = camera.getPosition() - centre;
    toViewer.normalize();
    Vector3 halfway = toViewer + light;
    halfway.normalize();
    const Vector3 at = centre + halfway * (radius * 1.02f);
    const float size = radius * 0.16f * std::min(1.0f, (open - 0.3f) * 3.0f);
    const Vector3 right = camera.getU() * size;
    const Vector3 up = camera.getV() * size;
    static const float black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    glintMaterial->bind();
    LightMgr::getHandle()->turnLightingOff();
    // Added light fogs towards black, or the whole quad would show as a square of fog.
    glPushAttrib(GL_FOG_BIT);
    glFogfv(GL_FOG_COLOR, black);
    glColor4f(0.9f, 1.0f, 1.0f, 1.0f);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(at.x - right.x - up.x, at.y - right.y - up.y, at.z - right.z - up.z);
    glTexCoord2f(1.0f, 0.0f);
    glVertex3f(at.x + right.x - up.x, at.y + right.y - up.y, at.z + right.z - up.z);
    glTexCoord2f(1.0f, 1.0f);
    glVertex3f(at.x + right.x + up.x, at.y + right.y + up.y, at.z + right.z + up.z);
    glTexCoord2f(0.0f, 1.0f);
    glVertex3f(at.x - right.x + up.x, at.y - right.y + up.y, at.z - right.z + up.z);
    glEnd();
    glPopAttrib();
    LightMgr::getHandle()->turnLightingOn();
    glintMaterial->unbind();
}
