// The flipper land: loading its land and toys, moving land, play and camera with the song, drawing it all in bright daylight.
#include "effects/FlipperLand.h"

#include "effects/FlipperLandLayout.h"
#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"
#include "math/MathConstants.h"

#include "gl/GLF_checkError.h"
#include "scene/BezierMesh.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <cmath>
#include <iostream>

namespace {

using namespace FlipperLandLayout;

const char* const SCENE = "FlipperLand";
const char* const CAMERA_NAME = "FlipperCamera";
const char* const FIELD_MATERIAL = "FlipperField";
const char* const SKY_MATERIAL = "FlipperSky";
const char* const SHINE_MATERIAL = "FlipperShine";
const char* const SHADOW_MATERIAL = "FlipperShadow";
const char* const GLOW_MATERIAL = "FlipperGlow";
const char* const CAP_MATERIAL = "FlipperCap";
const char* const SUN_NAME = "FlipperSun";
const char* const FILL_NAME = "FlipperFill";
const char* const PIECE_FILES[FlipperLand::PIECE_COUNT] = {PADDLE_MESH, BUMPER_MESH, CAP_MESH, BALL_MESH};

// The haze below the sky's rim, matching its horizon.
const Color HAZE(0.62f, 0.88f, 1.0f, 1.0f);
const float SKY_RADIUS = 300.0f;
// The dome's rim sits this far below the camera: the haze under it stays out of sight.
const float SKY_DROP = 20.0f;
// The land's swells, the ring each kick sends out from the middle, and the still rim.
const BezierAnim::Wave WAVES[] = {{1.0f, 0.3f, 22.0f, 4.0f, 0.7f}, {-0.4f, 1.0f, 15.0f, 3.0f, 0.45f}};
const BezierAnim::Ripple KICK_RIPPLE = {0.9f, 3.0f, 14.0f, 1.2f};
const float STILL_RIM = 5.0f;
// Paddles are hinged on the outer side of their hollow, a pair astride the lane.
const float HINGE_OUT = 2.9f;
const float HINGE_ASIDE = 1.75f;
const float PADDLE_LENGTH = 3.0f;
// Shadows: how far above the ground they float, and how they grow and fade as the ball rises.
const float SHADOW_LIFT = 0.05f;

// A warm sun high over the land and a cool fill from the other side.
const SceneKit::LightSetup SUN = {Vector3(0.4f, 1.0f, 0.3f), Color(0.4f, 0.4f, 0.45f, 1.0f),
                                  Color(1.0f, 0.96f, 0.88f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f)};
const SceneKit::LightSetup FILL = {Vector3(-0.5f, 0.35f, -0.6f), Color(0.0f, 0.0f, 0.0f, 1.0f),
                                   Color(0.3f, 0.38f, 0.6f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f)};

void setColour(GLenum what, const Color& c, float scale)
{
    const float values[4] = {c.r * scale, c.g * scale, c.b * scale, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, what, values);
}

float groundHeight(const GroundSurface& ground, float x, float z)
{
    GroundPoint point;
    return ground.groundAt(x, z, point) ? point.height : 0.0f;
}

}  // namespace

FlipperLand::FlipperLand(short layer, const EffectTimer& timer)
    : Effect(layer, timer), sky(SKY_RADIUS), meshes(), lists(), fieldMaterial(nullptr), skyMaterial(nullptr),
      shineMaterial(nullptr), shadowMaterial(nullptr), glowMaterial(nullptr), capMaterial(nullptr)
{
}

FlipperLand::~FlipperLand()
{
    // The display lists went with shutdown; without it (the timeline ends with the scene
    // running) they go with the GL context.
    for (Mesh*& mesh : meshes) {
        delete mesh;
        mesh = nullptr;
    }
}

Vector3 FlipperLand::cameraAt(float t)
{
    // Round the land once and a bit over the scene, swinging in and out, dipping and climbing,
    // with one low swoop past the hollows in the middle of the section.
    const float swoop = std::exp(-(t - 10.5f) * (t - 10.5f) / 5.0f);
    const float angle = (40.0f + 16.0f * t + 25.0f * swoop) * MathConstants::DEGREES_TO_RADIANS;
    const float radius = 27.0f - 4.0f * std::sin(0.4f * t) - 3.0f * swoop;
    const float height = 12.5f + 3.5f * std::cos(0.55f * t) - 4.5f * swoop;
    return Vector3(radius * std::cos(angle), height, radius * std::sin(angle));
}

Vector3 FlipperLand::targetAt(float t)
{
    // A little ahead of the middle, towards the side the camera is swinging to.
    const float angle = (40.0f + 16.0f * t + 70.0f) * MathConstants::DEGREES_TO_RADIANS;
    return Vector3(3.0f * std::cos(angle), 0.5f, 3.0f * std::sin(angle));
}

void FlipperLand::paddlePlace(int station, int side, Vector3& hinge, Vector3& along)
{
    const Vector3& at = STATIONS[station];
    Vector3 out(at.x, 0.0f, at.z);
    out.normalize();
    const Vector3 across(-out.z, 0.0f, out.x);
    const float sign = side == 0 ? 1.0f : -1.0f;
    hinge = at + out * HINGE_OUT + across * (sign * HINGE_ASIDE);
    // Towards the hollow's inner side, just past the lane's middle: the pair closes like a V.
    along = (at - out * 0.3f - across * (sign * 0.35f)) - hinge;
    along.y = 0.0f;
    along.normalize();
}

void FlipperLand::initiate()
{
    glClearColor(HAZE.r, HAZE.g, HAZE.b, 1.0f);
    play.reset();
    loadLand();
    loadPieces();
    loadMaterials();
    loadCamera();
    SceneKit::directionalLight(SUN_NAME, SUN);
    SceneKit::directionalLight(FILL_NAME, FILL);
}

void FlipperLand::loadLand()
{
    BezierMesh* mesh = SceneKit::loadOrReport<BezierMesh>(SCENE, LAND);
    if (!mesh)
        return;
    if (land.create(*mesh, GRID)) {
        land.setWaves(WAVES, sizeof(WAVES) / sizeof(WAVES[0]));
        land.setRipple(KICK_RIPPLE);
        land.setEdge(STILL_RIM);
        land.setTextureSpan(2.0f * HALF_SIZE);
        land.update(0.0f, FlipperPlay::sinceKick(0.0f));
    } else {
        std::cerr << SCENE << ": '" << LAND << "' is not a land of square patches\n";
    }
    delete mesh;
}

void FlipperLand::loadPieces()
{
    for (int i = 0; i < PIECE_COUNT; ++i) {
        delete meshes[i];
        meshes[i] = SceneKit::loadOrReport<Mesh>(SCENE, PIECE_FILES[i]);
        if (!meshes[i])
            continue;
        // Small and never changing: each is sent to GL once, in its own display list.
        lists[i] = glGenLists(1);
        glNewList(lists[i], GL_COMPILE);
        meshes[i]->draw(Mesh::drawShaded);
        glEndList();
    }
}

void FlipperLand::loadMaterials()
{
    fieldMaterial = SceneKit::findOrMakeMaterial(SCENE, FIELD_MATERIAL, FIELD, Material::textured, Material::blendNone);
    fieldMaterial->setAmbient(Color(0.45f, 0.45f, 0.45f, 1.0f));
    fieldMaterial->setDiffuse(Color(0.85f, 0.85f, 0.85f, 1.0f));
    fieldMaterial->setSpecular(Color(0.15f, 0.15f, 0.15f, 1.0f));
    land.setMaterial(fieldMaterial);
    skyMaterial = SceneKit::findOrMakeMaterial(SCENE, SKY_MATERIAL, SKY, Material::textured, Material::blendNone);
    shineMaterial =
        SceneKit::findOrMakeMaterial(SCENE, SHINE_MATERIAL, SHINE, Material::reflective, Material::blendNone);
    shineMaterial->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    shineMaterial->setShininess(90.0f);
    shadowMaterial =
        SceneKit::findOrMakeMaterial(SCENE, SHADOW_MATERIAL, SHADOW, Material::overlay, Material::blendAlpha);
    glowMaterial = SceneKit::findOrMakeMaterial(SCENE, GLOW_MATERIAL, SharedLayout::PARTICLE, Material::overlay,
                                                Material::blendGlow);
    MaterialMgr* materials = MaterialMgr::getHandle();
    capMaterial = materials->find(CAP_MATERIAL);
    if (!capMaterial) {
        capMaterial = new Material(CAP_MATERIAL);
        capMaterial->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
        capMaterial->setShininess(60.0f);
        materials->add(capMaterial);
    }
}

void FlipperLand::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->setClipPlanes(0.5f, 1000.0f);
        camera->setFOV(50.0f);
        cameras->add(camera);
    }
    cameras->find(CAMERA_NAME)->lookAt(cameraAt(0.0f), targetAt(0.0f));
    cameras->setActiveCamera(CAMERA_NAME);
}

void FlipperLand::update(float seconds)
{
    updateTimer(seconds);
    // Every frame, before the screen is cleared: the scene before this one sets its own on the way out.
    glClearColor(HAZE.r, HAZE.g, HAZE.b, 1.0f);
    const float t = timer.getCurrent() - timer.start;
    if (land.isCreated()) {
        land.update(t, FlipperPlay::sinceKick(t));
        play.update(seconds, land);
    }
    Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    if (camera)
        camera->lookAt(cameraAt(t), targetAt(t));
}

void FlipperLand::drawSky(const Camera& camera)
{
    // Round the camera, after the land, so only what the land leaves open is filled.
    const Vector3& eye = camera.getPosition();
    LightMgr::getHandle()->turnLightingOff();
    glDepthMask(GL_FALSE);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glPushMatrix();
    glTranslatef(eye.x, eye.y - SKY_DROP, eye.z);
    if (skyMaterial)
        skyMaterial->bind();
    // The horizon's row must not be blended with the zenith's across the picture's edge.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    sky.draw(32, 10);
    if (skyMaterial)
        skyMaterial->unbind();
    glPopMatrix();
    glDepthMask(GL_TRUE);
    LightMgr::getHandle()->turnLightingOn();
}

void FlipperLand::drawBumpers()
{
    if (!lists[BUMPER] && !lists[CAP])
        return;
    for (int i = 0; i < BUMPER_COUNT; ++i) {
        const Vector3& at = BUMPERS[i];
        const float glow = play.getBumperGlow(i);
        glPushMatrix();
        glTranslatef(at.x, groundHeight(land, at.x, at.z) - 0.1f, at.z);
        if (lists[BUMPER])
            glCallList(lists[BUMPER]);
        if (lists[CAP] && capMaterial) {
            // Lit from within when hit, fading as the glow does.
            capMaterial->bind();
            setColour(GL_AMBIENT, BUMPER_COLOURS[i], 0.4f);
            setColour(GL_DIFFUSE, BUMPER_COLOURS[i], 0.9f);
            setColour(GL_EMISSION, BUMPER_COLOURS[i], 0.15f + 0.85f * glow);
            glCallList(lists[CAP]);
            capMaterial->unbind();
        }
        glPopMatrix();
    }
    const float black[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);
}

void FlipperLand::drawPaddles()
{
    if (!lists[PADDLE])
        return;
    for (int station = 0; station < STATION_COUNT; ++station) {
        for (int side = 0; side < 2; ++side) {
            Vector3 hinge;
            Vector3 along;
            paddlePlace(station, side, hinge, along);
            const float hingeY = groundHeight(land, hinge.x, hinge.z);
            const Vector3 tip = hinge + along * PADDLE_LENGTH;
            const float tipY = groundHeight(land, tip.x, tip.z);
            // Lying along the ground, then lifted about the hinge.
            const float pitch = std::atan2(tipY - hingeY, PADDLE_LENGTH) / MathConstants::DEGREES_TO_RADIANS;
            const float yaw = std::atan2(-along.z, along.x) / MathConstants::DEGREES_TO_RADIANS;
            glPushMatrix();
            glTranslatef(hinge.x, hingeY + 0.02f, hinge.z);
            glRotatef(yaw, 0.0f, 1.0f, 0.0f);
            glRotatef(pitch + play.getPaddleLift(station), 0.0f, 0.0f, 1.0f);
            glCallList(lists[PADDLE]);
            glPopMatrix();
        }
    }
}

void FlipperLand::drawShadows()
{
    if (!shadowMaterial)
        return;
    LightMgr::getHandle()->turnLightingOff();
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(-1.0f, -2.0f);
    shadowMaterial->bind();
    glBegin(GL_QUADS);
    for (int i = 0; i < BALL_COUNT; ++i) {
        const FlipperBall& ball = play.getBall(i);
        const Vector3& p = ball.getPosition();
        GroundPoint below;
        if (!land.groundAt(p.x, p.z, below))
            continue;
        // Wider and fainter the higher the ball: its height reads from the blot.
        const float above = std::fmax(0.0f, p.y - ball.getRadius() - below.height);
        const float size = ball.getRadius() * (1.1f + 0.12f * above);
        const float alpha = 0.85f / (1.0f + 0.35f * above);
        Vector3 across = below.normal.cross(Vector3(0.0f, 0.0f, 1.0f));
        across.normalize();
        const Vector3 down = across.cross(below.normal);
        const Vector3 centre(p.x, below.height, p.z);
        const Vector3 middle = centre + below.normal * SHADOW_LIFT;
        glColor4f(1.0f, 1.0f, 1.0f, alpha);
        // Counter-clockwise seen from above.
        const float corners[4][4] = {{-1, -1, 0, 0}, {-1, 1, 0, 1}, {1, 1, 1, 1}, {1, -1, 1, 0}};
        for (const auto& c : corners) {
            const Vector3 q = middle + across * (c[0] * size) + down * (c[1] * size);
            glTexCoord2f(c[2], c[3]);
            glVertex3f(q.x, q.y, q.z);
        }
    }
    glEnd();
    shadowMaterial->unbind();
    glDisable(GL_POLYGON_OFFSET_FILL);
    LightMgr::getHandle()->turnLightingOn();
}

void FlipperLand::drawBalls()
{
    if (!lists[BALL])
        return;
    if (shineMaterial)
        shineMaterial->bind();
    glEnable(GL_RESCALE_NORMAL);
    for (int i = 0; i < BALL_COUNT; ++i) {
        const FlipperBall& ball = play.getBall(i);
        const Vector3& p = ball.getPosition();
        setColour(GL_AMBIENT, BALL_COLOURS[i], 0.45f);
        setColour(GL_DIFFUSE, BALL_COLOURS[i], 1.0f);
        glPushMatrix();
        glTranslatef(p.x, p.y, p.z);
        glScalef(ball.getRadius(), ball.getRadius(), ball.getRadius());
        glCallList(lists[BALL]);
        glPopMatrix();
    }
    glDisable(GL_RESCALE_NORMAL);
    if (shineMaterial)
        shineMaterial->unbind();
}

void FlipperLand::drawGlows(const Camera& camera)
{
    if (!glowMaterial)
        return;
    const Vector3& right = camera.getU();
    const Vector3& up = camera.getV();
    LightMgr::getHandle()->turnLightingOff();
    glowMaterial->bind();
    glBegin(GL_QUADS);
    for (int i = 0; i < BUMPER_COUNT; ++i) {
        const float glow = play.getBumperGlow(i);
        if (glow <= 0.01f)
            continue;
        const Vector3& at = BUMPERS[i];
        const Vector3 centre(at.x, groundHeight(land, at.x, at.z) + 1.5f, at.z);
        const float size = 1.5f + 2.5f * glow;
        const Color& c = BUMPER_COLOURS[i];
        glColor4f(c.r, c.g, c.b, glow);
        const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        for (const auto& k : corners) {
            const Vector3 q = centre + right * (k[0] * size) + up * (k[1] * size);
            glTexCoord2f(0.5f + 0.5f * k[0], 0.5f + 0.5f * k[1]);
            glVertex3f(q.x, q.y, q.z);
        }
    }
    glEnd();
    glowMaterial->unbind();
    LightMgr::getHandle()->turnLightingOn();
}

void FlipperLand::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    // The toys before the land: the ground they hide is never shaded. Shadows after, on it.
    drawBumpers();
    drawPaddles();
    drawBalls();
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    land.draw(camera);
    drawShadows();
    if (camera) {
        drawSky(*camera);
        drawGlows(*camera);
    }
    GLF_checkError("FlipperLand:display()");
}

void FlipperLand::release()
{
    for (int i = 0; i < PIECE_COUNT; ++i) {
        if (lists[i])
            glDeleteLists(lists[i], 1);
        lists[i] = 0;
        delete meshes[i];
        meshes[i] = nullptr;
    }
    // Registered materials belong to the registry.
    land.setMaterial(nullptr);
    fieldMaterial = nullptr;
    skyMaterial = nullptr;
    shineMaterial = nullptr;
    shadowMaterial = nullptr;
    glowMaterial = nullptr;
    capMaterial = nullptr;
}

void FlipperLand::shutdown()
{
    release();
    // The glow's picture stays for the city after it.
    SceneKit::releaseTextures({FIELD, SKY, SHINE, SHADOW});
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    LightMgr::getHandle()->remove(SUN_NAME);
    LightMgr::getHandle()->remove(FILL_NAME);
}
