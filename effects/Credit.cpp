// The opening credits: picture fade, circling blur trail, shared texture and camera.
#include "effects/Credit.h"

#include "effects/CreditsLayout.h"

#include "gl/GLF_checkError.h"
#include "math/Matrix4.h"
#include "math/Transform.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cstdio>

namespace {

const char* const CAMERA_NAME = "CreditsCamera";
// The trail turns away from this point, rotated about the view axis.
const Vector3 TRAIL_ORIGIN(-100.0f, 0.0f, 601.0f);
// Each credit takes a quarter of the texture, top to bottom.
const float CREDIT_V = 1.0f / static_cast<float>(CreditsLayout::CREDIT_COUNT);
// The sharp pictures fill the left half of the texture, the blurred ones the right half; s falls from left to
// right across each quad.
const float PICTURE_S_LEFT = 0.5f;
const float PICTURE_S_RIGHT = 0.0f;
const float TRAIL_S_LEFT = 1.0f;
const float TRAIL_S_RIGHT = 0.5f;
// Ink is measured in bands of this many texel rows: narrower bands follow the text more closely but add edges,
// along which the renderer shades blocks of pixels twice; this height drew fastest.
const int INK_BAND_ROWS = 64;
// The credit texture is stored as RGBA: it samples to exactly the values luminance with alpha gives, and faster.
const int CREDIT_STORAGE = GL_RGBA8;

}  // namespace

Credit::Credit(int creditIndex, short layer, const EffectTimer& timer)
    : Effect(layer, timer), index(creditIndex), textAlpha(0.0f), textAlphaSpeed(0.0f), blurAlpha(0.0f),
      blurAlphaSpeed(0.0f), angle(0.0f), angleSpeed(0.0f), blurPos(0.0f, 0.0f, 0.0f), texture(nullptr)
{
}

float Credit::halfSpan() const
{
    return 0.5f * (timer.end - timer.start);
}

void Credit::initiate()
{
    const float span = timer.end - timer.start;
    const float half = halfSpan();
    textAlpha = 0.0f;
    blurAlpha = 0.0f;
    textAlphaSpeed = blurAlphaSpeed = 1.0f / half;
    blurPos = TRAIL_ORIGIN;
    // Odd and even credits turn their trails in opposite directions, one turn per credit.
    angle = 180.0f;
    angleSpeed = 360.0f / span;
    if (index % 2 != 0) {
        angle = 0.0f;
        angleSpeed = -360.0f / span;
    }

    texture = TextureMgr::getHandle()->loadTexture(CreditsLayout::TEXTURE.file, CreditsLayout::TEXTURE.format);
    if (!texture)
        std::printf("Credit::initiate() could not load %s\n", CreditsLayout::TEXTURE.file);
    else if (index == 0) {
        texture->setStorageFormat(CREDIT_STORAGE);
        texture->upload();
    }
    // The ink is measured in the pixels, which the last credit gave back when the credits last ended.
    if (texture)
        texture->refill();
    const float v = CREDIT_V * static_cast<float>(index);
    pictureInk.measure(texture, PICTURE_S_RIGHT, PICTURE_S_LEFT, v, v + CREDIT_V, INK_BAND_ROWS);
    trailInk.measure(texture, TRAIL_S_RIGHT, TRAIL_S_LEFT, v, v + CREDIT_V, INK_BAND_ROWS);

    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(0.0f, 0.0f, -50.0f), Vector3(0.0f, 0.0f, 1.0f));
        camera->setFOV(45.0f);
        camera->setClipPlanes(0.01f, 1000.0f);
        cameras->add(camera);
        if (!cameras->setActiveCamera(CAMERA_NAME))
            std::printf("Could not set active camera\n");
    }
    GLF_checkError("Credit::initiate();");
}

void Credit::shutdown()
{
    if (index != 3 || !texture)
        return;
    texture->unload();
    // Four megabytes no later scene reads: the texture stays in the cache and reads them again to be sent to GL.
    texture->releasePixels();
}

void Credit::update(float seconds)
{
    updateTimer(seconds);
    updateText(seconds);
    updateBlur(seconds);
}

void Credit::updateText(float seconds)
{
    textAlpha += textAlphaSpeed * seconds;
    if (textAlpha > 1.0f) {
        textAlpha = 1.0f;
        textAlphaSpeed = -1.0f / halfSpan();
    } else if (textAlpha < 0.0f) {
        textAlpha = 0.0f;
        textAlphaSpeed = 0.0f;
    }
}

void Credit::updateBlur(float seconds)
{
    blurAlpha += blurAlphaSpeed * seconds;
    if (blurAlpha >= 1.0f) {
        blurAlpha = 1.0f;
        blurAlphaSpeed = -1.0f / halfSpan();
    } else if (blurAlpha <= 0.0f) {
        blurAlpha = 0.0f;
        blurAlphaSpeed = 1.0f / halfSpan();
    }
    angle += angleSpeed * seconds;
    if (angle > 360.0f)
        angle -= 360.0f;
    else if (angle < 0.0f)
        angle += 360.0f;
    Matrix4 rotation;
    RotateAroundZ(rotation, angle);
    blurPos = rotation * TRAIL_ORIGIN;
}

void Credit::display()
{
    glPushMatrix();
    glLoadIdentity();
    Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    if (camera)
        camera->lookAt();
    else
        std::printf("No active camera\n");
    glTranslatef(0.0f, 0.0f, 450.0f);

    LightMgr* lights = LightMgr::getHandle();
    const bool lit = lights->isLightingOn();
    if (lit)
        lights->turnLightingOff();
    glDisable(GL_CULL_FACE);
    glDepthFunc(GL_ALWAYS);
    glDepthMask(GL_FALSE);
    glEnable(GL_COLOR_MATERIAL);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);

    if (texture)
        texture->bind();
    drawCredit();
    drawBlur();
    if (texture)
        texture->unbind();

    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glDisable(GL_COLOR_MATERIAL);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glEnable(GL_CULL_FACE);
    if (lit)
        lights->turnLightingOn();
    glPopMatrix();
    GLF_checkError("Credit::display();");
}

void Credit::drawCredit()
{
    const float v = CREDIT_V * static_cast<float>(index);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(1.0f, 1.0f, 1.0f, textAlpha);
    glBegin(GL_QUADS);
    drawCovered(pictureInk, PICTURE_S_LEFT, PICTURE_S_RIGHT, v, Vector3(0.0f, 0.0f, 0.0f));
    glEnd();
    glDisable(GL_BLEND);
}

void Credit::drawBlur()
{
    const float v = CREDIT_V * static_cast<float>(index);
    float alpha = blurAlpha;
    const float alphaStep = -alpha / TRAIL_LENGTH;
    Vector3 offset(0.0f, 0.0f, 0.0f);
    Vector3 direction = offset - blurPos;
    direction.normalize();
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBegin(GL_QUADS);
    for (int copy = 0; copy < TRAIL_LENGTH; ++copy) {
        glColor4f(1.0f, 0.9f, 0.7f, alpha);
        drawBlurQuad(v, offset);
        alpha += alphaStep;
        offset += direction * TRAIL_STEP;
    }
    glEnd();
    glDisable(GL_BLEND);
}

void Credit::drawBlurQuad(float v, const Vector3& o)
{
    drawCovered(trailInk, TRAIL_S_LEFT, TRAIL_S_RIGHT, v, o);
}

void Credit::drawCovered(const InkCover& cover, float sLeft, float sRight, float v, const Vector3& o) const
{
    // Each box's corners lie on the whole quad's lines: with nothing cut the whole quad comes out exactly.
    const auto x = [&](float s) { return -HALF_WIDTH + (sLeft - s) / (sLeft - sRight) * (2.0f * HALF_WIDTH); };
    const auto y = [&](float t) { return HALF_HEIGHT - (t - v) / CREDIT_V * (2.0f * HALF_HEIGHT); };
    const bool falling = sLeft > sRight;
    for (const InkCover::Box& box : cover.getBoxes()) {
        const float left = falling ? box.sHigh : box.sLow;
        const float right = falling ? box.sLow : box.sHigh;
        glTexCoord2f(left, box.tLow);
        glVertex3f(x(left) + o.x, y(box.tLow) + o.y, o.z);
        glTexCoord2f(right, box.tLow);
        glVertex3f(x(right) + o.x, y(box.tLow) + o.y, o.z);
        glTexCoord2f(right, box.tHigh);
        glVertex3f(x(right) + o.x, y(box.tHigh) + o.y, o.z);
        glTexCoord2f(left, box.tHigh);
        glVertex3f(x(left) + o.x, y(box.tHigh) + o.y, o.z);
    }
}
