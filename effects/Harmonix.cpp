// Harmonix: a reading of the song per update, drawn as amber light on dark glass: no picture is made per frame,
// the text is written into fixed lines and drawn from the glyph atlas.
#include "effects/Harmonix.h"

#include "effects/CockpitLayout.h"
#include "effects/SceneKit.h"
#include "scene/LightMgr.h"
#include "sound/SongMeter.h"
#include "texture/Texture.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

using namespace CockpitLayout;

const char* const SCENE = "Cockpit";
// The song's channels, as its composer lays them out: lead 9, arpeggio 11, bass 5, kick 0.
const int LEAD = 9, ARPEGGIO = 11, BASS = 5, KICK = 0;
// The stretch measured reaches a little beyond the span, for a clock that runs a little off.
const float MEASURE_MARGIN = 0.5f;

const float AMBER[3] = {1.0f, 0.56f, 0.1f};
const float BRIGHT[3] = {1.0f, 0.85f, 0.5f};
const float HOT[3] = {1.0f, 0.3f, 0.06f};
const float DIM[3] = {0.16f, 0.075f, 0.012f};
const float GLASS[3] = {0.03f, 0.018f, 0.006f};
// Content floats this far above the glass, inside the screen's frame.
const float CONTENT_LIFT = 0.0015f;
const float MARGIN = 0.03f;
// A channel's meter reads about half way when it plays at its mixed level: the lamps show it a little hotter.
const float BAR_GAIN = 1.5f;
const char* const NOTE_NAMES = "C-C#D-D#E-F-F#G-G#A-A#B-";
// libopenmpt's codes above the notes: fade, cut and release all end a note.
const unsigned char LAST_NOTE = 120;
const unsigned char FIRST_RELEASE = 253;
const char HEX[] = "0123456789ABCDEF";

void colour(const float c[3], float k)
{
    glColor4f(c[0] * k, c[1] * k, c[2] * k, 1.0f);
}

void rectangle(float x0, float y0, float x1, float y1)
{
    glVertex3f(x0, y0, CONTENT_LIFT);
    glVertex3f(x1, y0, CONTENT_LIFT);
    glVertex3f(x1, y1, CONTENT_LIFT);
    glVertex3f(x0, y1, CONTENT_LIFT);
}

}  // namespace

const int Harmonix::READOUT[READOUT_CHANNELS] = {LEAD, ARPEGGIO, BASS, KICK};

Harmonix::Harmonix(short layer, const EffectTimer& timer) : Effect(layer, timer), font(nullptr), lines(), header()
{
    readLines();
}

Harmonix::~Harmonix() {}

void Harmonix::formatNote(unsigned char note, char* out)
{
    if (note == 0 || (note > LAST_NOTE && note < FIRST_RELEASE)) {
        std::memcpy(out, "...", 3);
        return;
    }
    if (note >= FIRST_RELEASE) {
        std::memcpy(out, "===", 3);
        return;
    }
    const int n = note - 1;
    out[0] = NOTE_NAMES[(n % 12) * 2];
    out[1] = NOTE_NAMES[(n % 12) * 2 + 1];
    out[2] = static_cast<char>('0' + n / 12);
}

void Harmonix::formatCell(unsigned char note, unsigned char instrument, char* out)
{
    formatNote(note, out);
    out[3] = ' ';
    out[4] = instrument ? HEX[instrument >> 4] : '.';
    out[5] = instrument ? HEX[instrument & 15] : '.';
}

void Harmonix::initiate()
{
    font = SceneKit::preloadOrReport(SCENE, FONT);
    SongMeter* meter = SongMeter::getHandle();
    if (meter->isOpen())
        meter->prepare(timer.getStart() - MEASURE_MARGIN, timer.getEnd() + MEASURE_MARGIN);
    update(0.0f);
}

void Harmonix::shutdown()
{
    SongMeter::getHandle()->release();
    font = nullptr;
    // Only the cockpit has these displays.
    SceneKit::releaseTexture(FONT);
    reading.clear();
    readLines();
}

void Harmonix::update(float seconds)
{
    updateTimer(seconds);
    SongMeter* meter = SongMeter::getHandle();
    meter->measure(meter->songTime(timer.getCurrent()), reading);
    readLines();
}

void Harmonix::readLines()
{
    const SongMeter* meter = SongMeter::getHandle();
    for (int i = 0; i < READOUT_ROWS; ++i) {
        char* line = lines[i];
        std::memset(line, ' ', LINE_CHARS);
        line[LINE_CHARS] = '\0';
        const int row = reading.row - READOUT_ROWS / 2 + i;
        if (!reading.valid || row < 0 || row >= reading.rows)
            continue;
        line[0] = HEX[(row >> 4) & 15];
        line[1] = HEX[row & 15];
        for (int c = 0; c < READOUT_CHANNELS; ++c) {
            PatternCell cell;
            meter->cell(reading.pattern, row, READOUT[c], cell);
            formatCell(cell.note, cell.instrument, line + 3 + c * (CELL_CHARS + 1));
        }
    }
    if (reading.valid)
        std::snprintf(header, sizeof header, "ORD %02d  PAT %02d  ROW %02d", reading.order, reading.pattern,
                      reading.row);
    else
        std::snprintf(header, sizeof header, "NO SIGNAL");
}

void Harmonix::beginScreen(int index, float& width, float& height) const
{
    const float x0 = SCREEN_EDGES[index][0];
    width = SCREEN_EDGES[index][1] - x0;
    height = DASH_SLOPE.length() * (SCREEN_HIGH - SCREEN_LOW);
    Vector3 up = DASH_SLOPE;
    up.normalize();
    const Vector3 across(1.0f, 0.0f, 0.0f);
    Vector3 normal = across.cross(up);
    normal.normalize();
    const Vector3 corner = DASH_BOTTOM + DASH_SLOPE * SCREEN_LOW + across * x0 + normal * SCREEN_LIFT;
    // Columns: across, up, the normal, the corner.
    const float m[16] = {across.x, across.y, across.z, 0.0f, up.x,     up.y,     up.z,     0.0f,
                         normal.x, normal.y, normal.z, 0.0f, corner.x, corner.y, corner.z, 1.0f};
    glPushMatrix();
    glMultMatrixf(m);
}

void Harmonix::endScreen() const
{
    glPopMatrix();
}

void Harmonix::drawGlass(float width, float height) const
{
    glDisable(GL_BLEND);
    glBegin(GL_QUADS);
    colour(GLASS, 1.0f);
    glVertex3f(0.0f, 0.0f, 0.0f);
    glVertex3f(width, 0.0f, 0.0f);
    colour(GLASS, 1.6f);
    glVertex3f(width, height, 0.0f);
    glVertex3f(0.0f, height, 0.0f);
    glEnd();
    glEnable(GL_BLEND);
}

void Harmonix::drawText(const char* text, int length, float x, float y, float charWidth, float charHeight) const
{
    if (!font)
        return;
    const float du = static_cast<float>(FONT_CELL_WIDTH) / FONT_SIZE;
    const float dv = static_cast<float>(FONT_CELL_HEIGHT) / FONT_SIZE;
    font->bind();
    glBegin(GL_QUADS);
    for (int i = 0; i < length && text[i]; ++i) {
        const int c = static_cast<unsigned char>(text[i]);
        if (c < FONT_FIRST || c > FONT_LAST)
            continue;
        const int glyph = c - FONT_FIRST;
        const float u = static_cast<float>(glyph % FONT_COLUMNS) * du;
        const float v = static_cast<float>(glyph / FONT_COLUMNS) * dv;
        const float left = x + static_cast<float>(i) * charWidth;
        glTexCoord2f(u, v + dv);
        glVertex3f(left, y, CONTENT_LIFT);
        glTexCoord2f(u + du, v + dv);
        glVertex3f(left + charWidth, y, CONTENT_LIFT);
        glTexCoord2f(u + du, v);
        glVertex3f(left + charWidth, y + charHeight, CONTENT_LIFT);
        glTexCoord2f(u, v);
        glVertex3f(left, y + charHeight, CONTENT_LIFT);
    }
    glEnd();
    font->unbind();
}

void Harmonix::drawReadout(float width, float height) const
{
    const float lineHeight = (height - 2.0f * MARGIN) / (READOUT_ROWS + 1.5f);
    const float charWidth = (width - 2.0f * MARGIN) / LINE_CHARS;
    const float top = height - MARGIN - lineHeight;
    colour(AMBER, 0.9f);
    drawText(header, static_cast<int>(std::strlen(header)), MARGIN, top, charWidth, lineHeight * 0.9f);
    // The row playing sits in the middle on a lit band.
    const float middle = top - lineHeight * (1.5f + READOUT_ROWS / 2);
    glBegin(GL_QUADS);
    colour(AMBER, reading.valid ? 0.28f : 0.08f);
    rectangle(MARGIN * 0.5f, middle - lineHeight * 0.1f, width - MARGIN * 0.5f, middle + lineHeight * 0.95f);
    glEnd();
    for (int i = 0; i < READOUT_ROWS; ++i) {
        const float y = top - lineHeight * (1.5f + i);
        const bool playing = i == READOUT_ROWS / 2;
        colour(playing ? BRIGHT : AMBER, playing ? 1.0f : 0.75f - 0.1f * std::abs(i - READOUT_ROWS / 2));
        drawText(lines[i], LINE_CHARS, MARGIN, y, charWidth, lineHeight * 0.85f);
    }
}

void Harmonix::drawBars(float width, float height) const
{
    const int channels = reading.valid ? reading.channels : IDLE_CHANNELS;
    const float labelHeight = height * 0.1f;
    const float slot = (width - 2.0f * MARGIN) / static_cast<float>(channels);
    const float bottom = MARGIN + labelHeight;
    const float top = height - MARGIN - labelHeight;
    const float step = (top - bottom) / SEGMENTS;
    glBegin(GL_QUADS);
    for (int ch = 0; ch < channels; ++ch) {
        const float level = reading.valid ? reading.levels[ch] * BAR_GAIN * SEGMENTS : 0.0f;
        const float x0 = MARGIN + slot * (static_cast<float>(ch) + 0.15f);
        const float x1 = x0 + slot * 0.7f;
        for (int s = 0; s < SEGMENTS; ++s) {
            // Lit lamps climb from amber to pale, the top two run hot; a part-lit lamp glows part way.
            const float lit = std::min(1.0f, std::max(0.0f, level - static_cast<float>(s)));
            const float* hue = s >= SEGMENTS - 2 ? HOT : s >= SEGMENTS / 2 ? BRIGHT : AMBER;
            glColor4f(DIM[0] + (hue[0] - DIM[0]) * lit, DIM[1] + (hue[1] - DIM[1]) * lit,
                      DIM[2] + (hue[2] - DIM[2]) * lit, 1.0f);
            const float y0 = bottom + step * static_cast<float>(s);
            rectangle(x0, y0 + step * 0.12f, x1, y0 + step * 0.88f);
        }
    }
    glEnd();
    char label[3];
    colour(AMBER, 0.7f);
    for (int ch = 0; ch < channels; ++ch) {
        label[0] = HEX[((ch + 1) / 10) & 15];
        label[1] = HEX[(ch + 1) % 10];
        drawText(label, 2, MARGIN + slot * (static_cast<float>(ch) + 0.1f), MARGIN * 0.6f, slot * 0.4f,
                 labelHeight * 0.9f);
    }
    colour(AMBER, 0.8f);
    const char* title = "CHANNEL LEVELS";
    drawText(title, static_cast<int>(std::strlen(title)), MARGIN, height - MARGIN - labelHeight * 0.85f,
             (width - 2.0f * MARGIN) / 24.0f, labelHeight * 0.85f);
}

void Harmonix::drawWave(float width, float height) const
{
    const float middle = height * 0.5f;
    const float inner = width - 2.0f * MARGIN;
    glBegin(GL_LINES);
    colour(AMBER, 0.22f);
    for (int i = 0; i <= 8; ++i) {
        const float x = MARGIN + inner * static_cast<float>(i) / 8.0f;
        glVertex3f(x, MARGIN, CONTENT_LIFT);
        glVertex3f(x, height - MARGIN, CONTENT_LIFT);
    }
    for (int i = 0; i <= 4; ++i) {
        const float y = MARGIN + (height - 2.0f * MARGIN) * static_cast<float>(i) / 4.0f;
        glVertex3f(MARGIN, y, CONTENT_LIFT);
        glVertex3f(width - MARGIN, y, CONTENT_LIFT);
    }
    glEnd();
    // The trace twice: a wide soft line under a thin bright one, like a phosphor.
    const float reach = (height - 2.0f * MARGIN) * 0.5f;
    for (int pass = 0; pass < 2; ++pass) {
        glLineWidth(pass ? 1.2f : 3.5f);
        colour(pass ? BRIGHT : AMBER, pass ? 1.0f : 0.35f);
        glBegin(GL_LINE_STRIP);
        for (int i = 0; i < SongReading::WAVE_POINTS; ++i) {
            const float x = MARGIN + inner * static_cast<float>(i) / (SongReading::WAVE_POINTS - 1);
            const float sample = std::max(-1.0f, std::min(1.0f, reading.wave[i] * 1.8f));
            glVertex3f(x, middle + sample * reach, CONTENT_LIFT * 2.0f);
        }
        glEnd();
    }
    glLineWidth(1.0f);
}

void Harmonix::display()
{
    LightMgr* lights = LightMgr::getHandle();
    const bool lit = lights->isLightingOn();
    lights->turnLightingOff();
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT | GL_LINE_BIT);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glDepthFunc(GL_LEQUAL);
    for (int screen = 0; screen < SCREEN_COUNT; ++screen) {
        float width = 0.0f;
        float height = 0.0f;
        beginScreen(screen, width, height);
        drawGlass(width, height);
        glDepthMask(GL_FALSE);
        if (screen == SCREEN_PATTERN)
            drawReadout(width, height);
        else if (screen == SCREEN_BARS)
            drawBars(width, height);
        else
            drawWave(width, height);
        glDepthMask(GL_TRUE);
        endScreen();
    }
    glPopAttrib();
    if (lit)
        lights->turnLightingOn();
}
