// Full-screen colour fades across scene cuts.
#include "effects/Fader.h"

#include "gl/OrthoView.h"
#include "scene/LightMgr.h"

#include <GL/gl.h>

Fader::Fader(const Color& c, short layer, const EffectTimer& timer)
    : Effect(layer, timer), alpha(0.0f), rate(0.0f), colour{c.r, c.g, c.b, c.a}
{
}

void Fader::initiate()
{
    alpha = 0.0f;
    // Full cover is reached at the middle of the span.
    rate = 2.0f / (timer.end - timer.start);
}

void Fader::shutdown() {}

void Fader::update(float seconds)
{
    updateTimer(seconds);
    float next = alpha + rate * seconds;
    alpha = next;
    if (next >= 1.0f) {
        // The overshoot is dropped: the descent starts from exactly 1.
        alpha = 1.0f;
        rate = -rate;
    } else if (next < 0.0f) {
        // Stays clear until the timeline retires it.
        alpha = 0.0f;
        rate = 0.0f;
    }
}

bool Fader::turnLightingOff()
{
    LightMgr* lights = LightMgr::getHandle();
    if (!lights->isLightingOn())
        return false;
    lights->turnLightingOff();
    return true;
}

void Fader::display()
{
    bool lit = turnLightingOff();
    beginBlend();
    drawCover();
    endBlend();
    if (lit)
        turnLightingOff();
}

void Fader::drawCover()
{
    glBegin(GL_QUADS);
    glVertex2f(1.0f, 1.0f);
    glVertex2f(0.0f, 1.0f);
    glVertex2f(0.0f, 0.0f);
    glVertex2f(1.0f, 0.0f);
    glEnd();
}

void Fader::beginBlend()
{
    glEnable(GL_COLOR_MATERIAL);
    glDisable(GL_CULL_FACE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_DEPTH_TEST);
    OrthoView::push(1.0, 1.0);
    glColor4f(colour[0], colour[1], colour[2], alpha);
}

void Fader::endBlend()
{
    OrthoView::pop();
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glEnable(GL_CULL_FACE);
    glDisable(GL_COLOR_MATERIAL);
}
