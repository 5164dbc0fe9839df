// The closing swirl: trail growth, the curve, and drawing into the feedback square.
#include "effects/Swirl.h"
#include "math/MathConstants.h"

#include "effects/Diffusion.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/VertexArray.h"

#include <GL/gl.h>
#include <cmath>

namespace {

const char* const CAMERA_NAME = "SwirlCamera";
const float DEGREES_PER_SECOND = 24.0f;
// Curve parameter between neighbouring trail points, in degrees.
const float POINT_SPACING = 0.16666667f;
const int DIFFUSION_STRENGTH = 5;
const int VIEW_SIZE = 256;

}  // namespace

Swirl::Swirl(short layer, const EffectTimer& timer)
    : Effect(layer, timer), angle(0.0f), stepTimer(0.0f), count(0), points(nullptr), diffusion(nullptr), ready(false)
{
}

Swirl::~Swirl()
{
    release();
}

Vector3 Swirl::curve(float a)
{
    const float r = a * MathConstants::DEGREES_TO_RADIANS;
    const double rd = r;
    const double x = static_cast<double>(0.3f) * std::cos(rd) - static_cast<double>(0.7f) * std::sin(rd * rd);
    const double y = static_cast<double>(0.2f) * std::cos(rd) + static_cast<double>(0.6f) * std::sin(rd);
    const double shifted = rd + static_cast<double>(MathConstants::PI);
    const double z = std::sin(rd) + std::cos(rd) + std::sin(shifted * shifted);
    return Vector3(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)) * 10.0f;
}

void Swirl::resetTrail()
{
    if (!points)
        points = new VertexArray();
    points->create(MAX_POINTS);
    for (int k = 0; k < MAX_POINTS; ++k)
        points->addVertex(curve(2.0f * static_cast<float>(k)));
    angle = 0.0f;
    stepTimer = 0.0f;
    count = 1;
}

void Swirl::initiate()
{
    resetTrail();

    CameraMgr* cameras = CameraMgr::getHandle();
    Camera* camera = new Camera(CAMERA_NAME);
    camera->lookAt(Vector3(0.0f, 10.0f, 35.0f), Vector3(0.0f, 0.0f, -1.0f));
    camera->setClipPlanes(0.1f, 100.0f);
    camera->setFOV(45.0f);
    // A camera of that name left from an earlier run stays registered and is used instead.
    if (!cameras->add(camera))
        delete camera;
    cameras->setActiveCamera(CAMERA_NAME);

    delete diffusion;
    diffusion = new Diffusion(DIFFUSION_STRENGTH);
    ready = diffusion->initiate();
}

void Swirl::update(float seconds)
{
    updateTimer(seconds);
    angle += seconds * DEGREES_PER_SECOND;
    stepTimer += seconds;
    // One point per update at most, however long the frame was.
    if (stepTimer >= STEP) {
        ++count;
        stepTimer -= STEP;
        if (count > MAX_POINTS - 1)
            count = MAX_POINTS;
    }
    if (!points)
        return;
    float a = angle;
    for (int i = 0; i < count && i < points->getNumVertices(); ++i) {
        (*points)[i].position = curve(a);
        a += POINT_SPACING;
    }
}

void Swirl::display()
{
    if (!points || !diffusion)
        return;
    LightMgr* lights = LightMgr::getHandle();
    const bool lightingWasOn = lights->isLightingOn();
    if (lightingWasOn)
        lights->turnLightingOff();

    diffusion->beginDiffusion();
    points->upload(VertexArray::POSITIONS);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glColor4f(0.25f, 0.5f, 0.5f, 0.5f);
    glPointSize(2.0f);
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera) {
        camera->resize(VIEW_SIZE, VIEW_SIZE);
        camera->lookAt();
    }
    glBegin(GL_POINTS);
    for (int i = 0; i < count; ++i)
        glArrayElement(i);
    glEnd();
    glPointSize(1.0f);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glDisable(GL_BLEND);
    points->unload(VertexArray::POSITIONS);
    diffusion->endDiffusion();

    // Off again, not on: the scene leaves lighting off behind it.
    if (lightingWasOn)
        lights->turnLightingOff();
}

void Swirl::release()
{
    delete diffusion;
    diffusion = nullptr;
    delete points;
    points = nullptr;
}

void Swirl::shutdown()
{
    release();
}
