// The console overlay: the line ring with its wrapping rules, its materials and its drawing.
#include "text/Console.h"

#include "gl/OrthoView.h"
#include "scene/LightMgr.h"
#include "texture/MaterialMgr.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

const char BLANK = ' ';
const float CELL_WIDTH = 11.52f;
const float CELL_HEIGHT = 12.0f;
const float ROW_OFFSET = 0.8f;
// The font texture: cells of 16 x 24 texels, 16 to a row, 256 texels wide.
const float GLYPH_U = 16.0f / 256.0f;
const float GLYPH_V = 24.0f / 256.0f;
const int FIRST_GLYPH = 33;

bool isInk(int character)
{
    return static_cast<unsigned char>(character) > BLANK;
}

// The first word's length, scanned from the text's start and capped at the line width.
int firstWordLength(const char* text, int width)
{
    int n = 0;
    while (n < width && isInk(text[n]))
        ++n;
    return n;
}

}  // namespace

Console* Console::getHandle()
{
    static Console instance;
    return &instance;
}

Console::Console()
    : initiated(false), active(false), flash(1.0f), lineCount(0), scroll(0), currentLine(0), cursor(0), width(0),
      visibleLines(0), spare(0), buffer(nullptr), colour(1.0f, 1.0f, 1.0f, 1.0f), fontMaterial(nullptr),
      backgroundMaterial(nullptr)
{
}

Console::~Console()
{
    if (initiated)
        shutdown();
}

Material* Console::findOrMakeMaterial(const char* name, const Color& tint, const TextureFile& picture)
{
    Material* found = MaterialMgr::getHandle()->find(name);
    if (found)
        return found;
    TextureMaterial* material = new TextureMaterial(name);
    material->setAmbient(tint);
    material->setDiffuse(tint);
    material->setSpecular(tint);
    material->setShininess(20.0f);
    material->setBlendMode(Material::blendAlpha);
    material->setFlags(Material::overlay);
    material->setTexture(TextureMgr::getHandle()->loadTexture(picture.file, picture.format));
    return material;
}

void Console::initiate()
{
    if (initiated)
        return;
    width = WIDTH;
    lineCount = LINE_COUNT;
    buffer = new char[lineCount * width];
    std::memset(buffer, BLANK, static_cast<size_t>(lineCount * width));
    scroll = currentLine = cursor = visibleLines = spare = 0;
    fontMaterial = findOrMakeMaterial("ConsoleFontMaterial", Color(1.0f, 1.0f, 1.0f, 1.0f), FONT_TEXTURE);
    backgroundMaterial =
        findOrMakeMaterial("ConsoleBackgroundMaterial", Color(1.0f, 1.0f, 1.0f, 0.6f), BACKGROUND_TEXTURE);
    initiated = true;
}

void Console::shutdown()
{
    if (!initiated)
        return;
    delete[] buffer;
    buffer = nullptr;
    lineCount = scroll = currentLine = cursor = width = visibleLines = spare = 0;
    // Deliberately forgotten, not deleted, even when made here.
    fontMaterial = backgroundMaterial = nullptr;
    initiated = false;
}

void Console::activate()
{
    if (!initiated || active)
        return;
    flash = 0.0f;
    active = true;
}

void Console::deactivate()
{
    if (!initiated || !active)
        return;
    flash = 1.0f;
    active = false;
}

void Console::update(float seconds)
{
    if (!initiated || !active)
        return;
    flash += seconds;
    if (flash > 1.0f)
        flash = 1.0f;
}

int Console::slotOf(int line) const
{
    int slot = line % lineCount;
    return slot < 0 ? slot + lineCount : slot;
}

char* Console::lineAt(int line)
{
    return buffer + slotOf(line) * width;
}

const char* Console::getLine(int line) const
{
    if (!initiated)
        return nullptr;
    return buffer + slotOf(line) * width;
}

void Console::store(char character)
{
    // Only a colour code written into the last column can leave the cursor at the width.
    if (cursor < width)
        lineAt(currentLine)[cursor] = character;
    if (++cursor >= width)
        cursor = 0;
}

void Console::linefeed()
{
    if (!initiated)
        return;
    cursor = 0;
    ++currentLine;
    std::memset(lineAt(currentLine), BLANK, static_cast<size_t>(width));
}

void Console::print(const char* text, int colourCode)
{
    if (!initiated || !text)
        return;
    scroll = 0;
    // The first word decides every wrap of the text, later words included.
    const int firstWord = firstWordLength(text, width);
    bool afterReturn = false;
    for (int i = 0; text[i]; ++i) {
        const char ch = text[i];
        if (firstWord != width && cursor + firstWord > width)
            cursor = 0;
        if (afterReturn)
            --currentLine;
        afterReturn = false;
        if (cursor == 0)
            linefeed();
        if (ch == '\n') {
            cursor = 0;
            continue;
        }
        if (ch == '\r') {
            cursor = 0;
            afterReturn = true;
            continue;
        }
        if ((i == 0 || cursor == 0) && colourCode <= LAST_COLOUR_CODE) {
            lineAt(currentLine)[cursor] = static_cast<char>(colourCode);
            ++cursor;
        }
        store(ch);
    }
}

void Console::printf(const char* format, ...)
{
    static char text[FORMAT_BUFFER_SIZE];
    if (!initiated || !format)
        return;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    print(text, 32);
}

void Console::put(int character)
{
    if (!initiated)
        return;
    scroll = 0;
    if (character == '\n') {
        cursor = 0;
        return;
    }
    if (character == '\r') {
        linefeed();
        return;
    }
    if (character == '\t') {
        ++cursor;
        for (int step = 0; step < 3 && cursor < width; ++step)
            ++cursor;
        if (cursor >= width)
            cursor = 0;
        return;
    }
    if (character < 0 || character > 255 || !std::isprint(character))
        return;
    lineAt(currentLine)[cursor] = static_cast<char>(character);
    if (++cursor >= width)
        linefeed();
}

void Console::erase()
{
    if (!initiated)
        return;
    scroll = 0;
    if (--cursor < 0)
        cursor = 0;
    lineAt(currentLine)[cursor] = BLANK;
}

void Console::clear()
{
    if (!initiated)
        return;
    std::memset(buffer, BLANK, static_cast<size_t>(lineCount * width));
    currentLine = 1;
    cursor = 0;
}

void Console::setScrollback(int lines)
{
    if (!initiated)
        return;
    if (currentLine <= visibleLines || lines < 0)
        lines = 0;
    if (lines > currentLine)
        lines = currentLine;
    scroll = lines;
}

void Console::setVisibleLines(int lines)
{
    if (initiated)
        visibleLines = lines;
}

Color Console::colorOf(int code)
{
    float level = 0.8f;
    if (code & 8)
        level = 1.0f;
    else if (code & 16)
        level = 0.6f;
    return Color(code & 1 ? level : 0.0f, code & 2 ? level : 0.0f, code & 4 ? level : 0.0f, 1.0f);
}

void Console::setColor(int code)
{
    if (!initiated)
        return;
    colour = colorOf(code);
    glColor4f(colour.r, colour.g, colour.b, colour.a);
}

Console::GlyphQuad Console::glyphQuad(int column, int row, int character)
{
    const int glyph = static_cast<unsigned char>(character) - FIRST_GLYPH;
    const float uLeft = static_cast<float>(glyph % 16) * GLYPH_U;
    const float vTop = static_cast<float>(glyph / 16) * GLYPH_V;
    float uRight = uLeft + GLYPH_U;
    if (uRight > 1.0f)
        uRight = 1.0f;
    const float vBottom = vTop + GLYPH_V;
    const float x = CELL_WIDTH * static_cast<float>(column) + CELL_WIDTH;
    const float y = CELL_HEIGHT * static_cast<float>(row) + ROW_OFFSET;
    GlyphQuad quad = {{uLeft, uLeft, uRight, uRight},
                      {vTop, vBottom, vBottom, vTop},
                      {x, x, x + CELL_WIDTH, x + CELL_WIDTH},
                      {y + CELL_HEIGHT, y, y, y + CELL_HEIGHT}};
    return quad;
}

void Console::drawCharacter(int column, int row, int character)
{
    const GlyphQuad quad = glyphQuad(column, row, character);
    glBegin(GL_QUADS);
    for (int corner = 0; corner < 4; ++corner) {
        glTexCoord2f(quad.u[corner], quad.v[corner]);
        glVertex2f(quad.x[corner], quad.y[corner]);
    }
    glEnd();
}

void Console::beginDraw()
{
    OrthoView::push(VIEW_WIDTH, VIEW_HEIGHT);
}

void Console::endDraw()
{
    OrthoView::pop();
}

void Console::drawBackground()
{
    if (backgroundMaterial)
        backgroundMaterial->bind();
    glColor4f(1.0f, 1.0f, 1.0f, 0.6f);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(0.0f, VIEW_HEIGHT);
    glTexCoord2f(0.0f, 1.0f);
    glVertex2f(0.0f, 0.0f);
    glTexCoord2f(1.0f, 1.0f);
    glVertex2f(VIEW_WIDTH, 0.0f);
    glTexCoord2f(1.0f, 0.0f);
    glVertex2f(VIEW_WIDTH, VIEW_HEIGHT);
    glEnd();
    if (backgroundMaterial)
        backgroundMaterial->unbind();
}

void Console::drawLines()
{
    drawBackground();
    if (fontMaterial)
        fontMaterial->bind();
    const int first = currentLine - visibleLines > 0 ? currentLine - visibleLines : 0;
    for (int line = first, row = TOP_ROW; line <= currentLine; ++line, --row) {
        const char* text = buffer + slotOf(line - scroll > 0 ? line - scroll : 0) * width;
        const bool coded = static_cast<unsigned char>(text[0]) <= LAST_COLOUR_CODE;
        setColor(coded ? text[0] : PLAIN_COLOUR);
        const int start = coded ? 1 : 0;
        for (int column = 0; start + column < width; ++column) {
            if (isInk(text[start + column]))
                drawCharacter(column, row, text[start + column]);
        }
    }
    if (fontMaterial)
        fontMaterial->unbind();
}

void Console::drawFlash()
{
    if (flash >= 1.0f)
        return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f - flash);
    glBegin(GL_QUADS);
    glVertex2f(0.0f, VIEW_HEIGHT);
    glVertex2f(0.0f, 0.0f);
    glVertex2f(VIEW_WIDTH, 0.0f);
    glVertex2f(VIEW_WIDTH, VIEW_HEIGHT);
    glEnd();
    glDisable(GL_BLEND);
}

void Console::display()
{
    if (!initiated || !active)
        return;
    LightMgr* lights = LightMgr::getHandle();
    const bool lit = lights->isLightingOn();
    if (lit)
        lights->turnLightingOff();
    beginDraw();
    drawLines();
    drawFlash();
    endDraw();
    if (lit)
        lights->turnLightingOn();
}

void Console::draw()
{
    if (!initiated)
        return;
    beginDraw();
    drawLines();
    endDraw();
}

void Console::printf(int column, int row, int colourMask, const char* format, ...)
{
    static char text[FORMAT_BUFFER_SIZE];
    if (!initiated || !format)
        return;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    beginDraw();
    if (fontMaterial)
        fontMaterial->bind();
    setColor(colourMask);
    for (int i = 0; text[i]; ++i) {
        if (!std::isspace(static_cast<unsigned char>(text[i])))
            drawCharacter(column + i, row, text[i]);
    }
    if (fontMaterial)
        fontMaterial->unbind();
    endDraw();
}
