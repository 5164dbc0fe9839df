// The closing text roll: the lines, the scroll with its entry and exit rules, and the drawing.
#include "effects/Greetings.h"

#include "gl/OrthoView.h"
#include "gl/TextureStateKeeper.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "text/Fonter.h"

#include <GL/gl.h>
#include <cstdio>

namespace {

const char* const CAMERA_NAME = "GreetingsCamera";
// 58 lines of 24 units over the effect's span.
const float ROLL_LENGTH = 1392.0f;
const float FONT_SIZE = 24.0f;
const float FONT_DEPTH = 1.0f;
// The last index a new line may take before the roll stops growing.
const int LAST_ENTRY = 28;

const char LINES[Greetings::LINE_COUNT][Greetings::LINE_SIZE] = {
    "[The Without Whoom Department]",
    "",
    "Greetings to the demo scene",
    "and to every party that keeps it going",
    "The Linux and Debian communities",
    "",
    "The SDL project",
    "",
    "The Mesa project and its llvmpipe",
    "The FreeType and FTGL projects",
    "",
    "The OpenMPT project",
    "",
    "The zlib and libpng projects",
    "The libjpeg-turbo and libtiff projects",
    "The GCC, CMake and GoogleTest projects",
    "",
    "Ops....",
    "We almost forgot to give the",
    "important info!",
    "Here it comes:",
    "",
    "No M$Windows licences were harmed,",
    "injured or abused in any way",
    "during the production period",
    "of this demo :)",
    "",
    "That's all folks,",
    "see you next easter (hopefully)",
    "",
};

}  // namespace

const char* const Greetings::FONT_FILE = "/usr/share/fonts/truetype/comic.ttf";
const char* const Greetings::FALLBACK_FONT_FILE = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

Greetings::Greetings(short layer, const EffectTimer& timer)
    : Effect(layer, timer), font(nullptr), first(0), last(0), scroll(0.0f), lead(0.0f), speed(0.0f), glyphsMade(false)
{
    font = new Fonter();
    if (font->loadTTF(FONT_FILE, Fonter::TEXTURE, FONT_SIZE, FONT_DEPTH))
        return;
    // The message names another font than the one tried; it is the program's own.
    std::printf("Couldn't load arial.ttf\n");
    // No system has the first font: a common one keeps the roll readable.
    font->loadTTF(FALLBACK_FONT_FILE, Fonter::TEXTURE, FONT_SIZE, FONT_DEPTH);
}

Greetings::~Greetings()
{
    if (font)
        shutdown();
}

const char* Greetings::getLine(int i)
{
    if (i < 0 || i >= LINE_COUNT)
        return "";
    return LINES[i];
}

void Greetings::resetRoll()
{
    lead = -SPACING;
    const float span = timer.end - timer.start;
    speed = ROLL_LENGTH / span;
    scroll = 0.0f;
    first = 0;
    last = 1;
}

void Greetings::initiate()
{
    resetRoll();
    // Not looked up first: a second roll adds a second camera of the same name, which the registry refuses.
    Camera* camera = new Camera(CAMERA_NAME);
    camera->setFOV(45.0f);
    camera->setClipPlanes(0.01f, 1000.0f);
    camera->lookAt(Vector3(0.0f, 0.0f, 1.0f), Vector3(0.0f, 0.0f, -1.0f));
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->add(camera))
        delete camera;
    cameras->setActiveCamera(CAMERA_NAME);
}

bool Greetings::preload()
{
    if (!font || !font->isLoaded() || glyphsMade)
        return false;
    // Measuring a line makes its missing glyphs; the font's texture is bound for that and put back.
    TextureStateKeeper kept;
    for (int i = 0; i < LINE_COUNT; ++i)
        font->getAdvance(getLine(i));
    glyphsMade = true;
    return false;
}

void Greetings::update(float seconds)
{
    updateTimer(seconds);
    scroll += seconds * speed;
    if (scroll >= TOP) {
        scroll -= SPACING;
        first += 1;
        if (first > last)
            first = last - 1;
    }
    lead += seconds * speed;
    if (lead >= 0.0f && last <= LAST_ENTRY) {
        last += 1;
        lead -= SPACING;
        if (last > LAST_ENTRY + 1)
            last = LAST_ENTRY + 1;
    }
}

float Greetings::getSpacing() const
{
    return (scroll - lead) / static_cast<float>(last - first);
}

void Greetings::display()
{
    LightMgr* lights = LightMgr::getHandle();
    const bool lightingWasOn = lights->isLightingOn();
    if (lightingWasOn)
        lights->turnLightingOff();

    OrthoView::push(640.0, 480.0);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_TEXTURE_2D);

    const float spacing = getSpacing();
    glTranslatef(24.0f, scroll, 1.0f);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    // A font that did not load has nothing to draw with.
    const bool drawable = font && font->isLoaded();
    for (int i = first; i < last && drawable; ++i) {
        glTranslatef(0.0f, -spacing, 0.0f);
        font->draw(getLine(i));
    }

    glDisable(GL_TEXTURE_2D);
    glDisable(GL_COLOR_MATERIAL);
    OrthoView::pop();

    if (lightingWasOn)
        lights->turnLightingOn();
}

void Greetings::shutdown()
{
    CameraMgr::getHandle()->remove(CAMERA_NAME);
    // The font is never released: the roll has always kept it to the end.
}
