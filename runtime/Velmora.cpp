// The demo driver: reads the configuration, lays out the scene schedule and runs the frame.
#include "runtime/Velmora.h"

#include "config/VariableMgr.h"
#include "effects/Fader.h"
#include "math/Color.h"
#include "runtime/EffectMgr.h"

#include <GL/gl.h>
#include <cstdlib>
#include <ctime>

namespace {

const char* const CONFIG_FILE = "./velmora.cfg";
const char* const TITLE = "Velmora Deep / Quorvex Co";

bool readBoolean(const char* key, bool fallback)
{
    const Variable* variable = VariableMgr::getHandle()->find(key);
    return variable ? variable->getBoolean() : fallback;
}

int readInteger(const char* key, int fallback)
{
    const Variable* variable = VariableMgr::getHandle()->find(key);
    return variable ? variable->getInteger() : fallback;
}

}

Velmora::Velmora()
    : soundEnabled(false), showFPS(false), effects(nullptr)
{
    // A missing file leaves every key at its default.
    VariableMgr::getHandle()->load(CONFIG_FILE);

    AppInfo info;
    info.cursor = readBoolean("Cursor", true);
    info.fullscreen = readBoolean("Fullscreen", false);
    info.width = readInteger("Width", 640);
    info.height = readInteger("Height", 480);
    info.bitsPerPixel = readInteger("BitsPerPixel", 24);
    info.depthBuffer = readInteger("DepthBuffer", 16);
    info.stencilBuffer = 0;
    info.extra = 0;
    setInfo(info);

    showFPS = readBoolean("ShowFPS", showFPS);
    soundEnabled = readBoolean("Sound", soundEnabled);

    setTitle(TITLE);
    srand(static_cast<unsigned>(clock()));
}

Velmora::~Velmora()
{
    delete effects;
    effects = nullptr;
}

void Velmora::onInit()
{
    // The GL extensions are bound before anything else touches GL.
    setFixedGLState();
    // Texture quality, then the texture, material, light and camera registries and the
    // console, then the music when sound is on: each starts here, in that order.
    setupScenes();
}

void Velmora::setFixedGLState()
{
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClearDepth(1.0);
    glDepthFunc(GL_LESS);
    glEnable(GL_DEPTH_TEST);
    glCullFace(GL_BACK);
    glFrontFace(GL_CCW);
    glEnable(GL_CULL_FACE);
    glShadeModel(GL_SMOOTH);
    glDisable(GL_DITHER);
    glDisable(GL_COLOR_MATERIAL);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
}

void Velmora::setupScenes()
{
    delete effects;
    effects = new EffectMgr();

    const Color white(1.0f, 1.0f, 1.0f, 1.0f);
    const Color black(0.0f, 0.0f, 0.0f, 1.0f);
    // Each fade straddles a cut, on a layer above every scene. The numbers are the
    // schedule's entries; the scenes between them join as they are written.
    /* 5 */ effects->addEffect(new Fader(white, 100, EffectTimer(35.0f, 36.0f)));
    /* 7 */ effects->addEffect(new Fader(white, 100, EffectTimer(68.0f, 69.0f)));
    /* 9 */ effects->addEffect(new Fader(black, 100, EffectTimer(75.5f, 76.5f)));
    /* 11 */ effects->addEffect(new Fader(black, 100, EffectTimer(108.5f, 109.5f)));
    /* 13 */ effects->addEffect(new Fader(black, 100, EffectTimer(141.5f, 143.5f)));
    /* 15 */ effects->addEffect(new Fader(black, 100, EffectTimer(150.0f, 151.0f)));
    /* 17 */ effects->addEffect(new Fader(white, 100, EffectTimer(168.0f, 169.0f)));
    /* 19 */ effects->addEffect(new Fader(black, 100, EffectTimer(199.5f, 203.5f)));

    // Discards the span the additions gathered: the scene clock starts at 0.
    effects->initiate();
}

void Velmora::onUpdate(float seconds)
{
    if (effects)
        effects->update(seconds);
    // The console and, when sound is on, the sound system advance here.
}

void Velmora::onDisplay()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    // The active camera is applied and the lights re-aimed here, before the scenes draw.
    if (effects)
        effects->display();
    // With lighting off the console draws here.
    glDisable(GL_DEPTH_TEST);
    // The time and frame-rate read-out draws here when showFPS is set.
    glEnable(GL_DEPTH_TEST);
}

void Velmora::onResize(int width, int height)
{
    glViewport(0, 0, width, height);
    setSize(width, height);
    // The cameras follow the new aspect here.
}

void Velmora::onKey(unsigned char key)
{
    if (key == KEY_ESCAPE)
        sendQuit();
}

void Velmora::onMouseButton(int, int, int)
{
    // Any press toggles the console once it exists.
}

void Velmora::onMouseMove(int, int)
{
}

void Velmora::onActivate()
{
}

void Velmora::onDeactivate()
{
}

void Velmora::onQuit()
{
    // Sound (when on), the console, then the camera, light, material and texture
    // registries shut down here, the reverse of their start. The timeline itself goes
    // with the destructor, after run has returned.
}
