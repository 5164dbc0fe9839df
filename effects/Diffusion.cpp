// Feedback glow: the square is copied from the read buffer (whatever framebuffer is bound) and reused.
#include "effects/Diffusion.h"
#include "math/MathConstants.h"

#include "gl/OrthoView.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <cmath>
#include <vector>

namespace {

void quad(float u0, float v0, float u1, float v1)
{
    glBegin(GL_QUADS);
    glTexCoord2f(u0, v0);
    glVertex2f(0.0f, 0.0f);
    glTexCoord2f(u1, v0);
    glVertex2f(1.0f, 0.0f);
    glTexCoord2f(u1, v1);
    glVertex2f(1.0f, 1.0f);
    glTexCoord2f(u0, v1);
    glVertex2f(0.0f, 1.0f);
    glEnd();
}

}  // namespace

Diffusion::Diffusion(int strength_)
    : strength(strength_ < 1 ? 1 : (strength_ > MAX_STRENGTH ? MAX_STRENGTH : strength_)), texture(0),
      begun(false), viewport{0, 0, 0, 0}
{
}

Diffusion::~Diffusion()
{
    if (texture)
        glDeleteTextures(1, &texture);
}

bool Diffusion::initiate()
{
    if (texture)
        return true;
    glGenTextures(1, &texture);
    if (!texture)
        return false;
    // Black to begin with: the first frame lays back nothing.
    std::vector<unsigned char> black(SIZE * SIZE * 3, 0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, SIZE, SIZE, 0, GL_RGB, GL_UNSIGNED_BYTE, black.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

void Diffusion::copyOffset(int i, float& du, float& dv) const
{
    // A single copy stays centred: it only zooms.
    if (strength == 1) {
        du = dv = 0.0f;
        return;
    }
    const float angle = MathConstants::TWO_PI * static_cast<float>(i) / static_cast<float>(strength);
    du = std::cos(angle) * SPREAD / static_cast<float>(SIZE);
    dv = std::sin(angle) * SPREAD / static_cast<float>(SIZE);
}

void Diffusion::regionSize(int& w, int& h) const
{
    w = viewport[2] < SIZE ? viewport[2] : SIZE;
    h = viewport[3] < SIZE ? viewport[3] : SIZE;
}

void Diffusion::beginFlat()
{
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT | GL_TEXTURE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    glDisable(GL_LIGHTING);
    glDisable(GL_FOG);
    glDisable(GL_CULL_FACE);
    glDisable(GL_ALPHA_TEST);
    OrthoView::push(1.0, 1.0);
}

void Diffusion::endFlat()
{
    OrthoView::pop();
    glPopAttrib();
}

void Diffusion::layBack(int w, int h) const
{
    const float su = static_cast<float>(w) / SIZE;
    const float sv = static_cast<float>(h) / SIZE;
    const float zu = su * ZOOM * 0.5f;
    const float zv = sv * ZOOM * 0.5f;

    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glDisable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (int i = 0; i < strength; ++i) {
        // The first copy covers the square; the others join a running mean.
        if (i == 1)
            glEnable(GL_BLEND);
        float du = 0.0f;
        float dv = 0.0f;
        copyOffset(i, du, dv);
        glColor4f(FADE, FADE, FADE, copyWeight(i));
        quad(zu + du, zv + dv, su - zu + du, sv - zv + dv);
    }
    glDisable(GL_TEXTURE_2D);

    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    glColor4f(FLOOR, FLOOR, FLOOR, 0.0f);
    quad(0.0f, 0.0f, 1.0f, 1.0f);
    glBlendEquation(GL_FUNC_ADD);
}

void Diffusion::beginDiffusion()
{
    if (!texture)
        return;
    glGetIntegerv(GL_VIEWPORT, viewport);
    int w = 0;
    int h = 0;
    regionSize(w, h);
    if (w <= 0 || h <= 0)
        return;
    begun = true;
    glViewport(viewport[0], viewport[1], w, h);
    beginFlat();
    layBack(w, h);
    endFlat();
}

void Diffusion::endDiffusion()
{
    if (!begun)
        return;
    begun = false;
    int w = 0;
    int h = 0;
    regionSize(w, h);
    // From the bound read buffer: the window's back buffer, or the framebuffer
    // object a scaling SDL draws into.
    glBindTexture(GL_TEXTURE_2D, texture);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, viewport[0], viewport[1], w, h);
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);

    beginFlat();
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glDisable(GL_BLEND);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    quad(0.0f, 0.0f, static_cast<float>(w) / SIZE, static_cast<float>(h) / SIZE);
    endFlat();
    glBindTexture(GL_TEXTURE_2D, 0);
}
