// The rippling logo sheet: resting grid, the wave that displaces it and its drawing.
#include "effects/Logo.h"

#include "effects/LogoLayout.h"
#include "math/MathConstants.h"

#include "gl/OrthoView.h"
#include "scene/LightMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cmath>

namespace {

// Steps of the resting grid. A twelfth per step: the texture stops at 11/12 on each axis.
const float STEP_UV = 0.083333336f;
const float STEP_X = 53.333332f;
const float STEP_Y = 40.0f;
// The wave: degrees per second, 7.5 degrees of angle per row and column.
const float PHASE_SPEED = 45.0f;
const float ANGLE_STEP = 0.1308997f;
const float WAVE_MAJOR = 8.888888f;
const float WAVE_MINOR = 6.6666665f;
const float OFFSET_X = 17.777777f;
const float OFFSET_Y = 13.333333f;
const float BASE_X = -60.0f;
const float BASE_Y = -40.0f;
const float PITCH_X = 63.333332f;
const float PITCH_Y = 46.666668f;

}  // namespace

Logo::Logo(short layer, const EffectTimer& timer) : Effect(layer, timer), texture(nullptr), grid(), phase(0.0f) {}

void Logo::initiate()
{
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    // A missing picture is not reported: the sheet is drawn untextured.
    texture = TextureMgr::getHandle()->loadTexture(LogoLayout::TEXTURE.file, LogoLayout::TEXTURE.format);
    layOutGrid();
}

void Logo::layOutGrid()
{
    float y = 0.0f;
    float v = 1.0f;
    for (int row = 0; row < GRID; ++row) {
        float x = 0.0f;
        float u = 0.0f;
        for (int column = 0; column < GRID; ++column) {
            grid[row][column] = GridVertex{x, y, u, v};
            x += STEP_X;
            u += STEP_UV;
        }
        y += STEP_Y;
        v -= STEP_UV;
    }
}

void Logo::update(float seconds)
{
    updateTimer(seconds);
    phase += PHASE_SPEED * seconds;
    if (phase > 360.0f)
        phase -= 360.0f;

    const float radians = phase * MathConstants::DEGREES_TO_RADIANS;
    float rowAngle = radians;
    float baseY = BASE_Y;
    for (int row = 0; row < GRID; ++row) {
        const float sine = std::sin(rowAngle);
        const float s = sine * sine * sine;
        float columnAngle = radians;
        float baseX = BASE_X;
        for (int column = 0; column < GRID; ++column) {
            const float cosine = std::cos(rowAngle + columnAngle);
            const float k = cosine * cosine;
            grid[row][column].x = (WAVE_MAJOR * k - WAVE_MINOR * s) + OFFSET_X + baseX;
            grid[row][column].y = WAVE_MAJOR * s + WAVE_MINOR * k + OFFSET_Y + baseY;
            baseX += PITCH_X;
            columnAngle += ANGLE_STEP;
        }
        baseY += PITCH_Y;
        rowAngle += ANGLE_STEP;
    }
}

void Logo::display()
{
    LightMgr::getHandle()->turnLightingOff();
    if (texture)
        texture->bind();
    // No colour of its own: the sheet takes the colour left current.
    OrthoView::push(640.0, 480.0);

    glBegin(GL_QUADS);
    for (int row = 0; row + 1 < GRID; ++row) {
        for (int column = 0; column + 1 < GRID; ++column) {
            const GridVertex* corners[4] = {&grid[row][column], &grid[row][column + 1], &grid[row + 1][column + 1],
                                            &grid[row + 1][column]};
            for (const GridVertex* corner : corners) {
                glTexCoord2f(corner->u, corner->v);
                glVertex2f(corner->x, corner->y);
            }
        }
    }
    glEnd();

    OrthoView::pop();
    if (texture)
        texture->unbind();
    LightMgr::getHandle()->turnLightingOn();
}

void Logo::shutdown()
{
    if (!texture)
        return;
    TextureMgr::getHandle()->removeTexture(texture->getName());
    texture = nullptr;
}
