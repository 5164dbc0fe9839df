// The demo driver: reads the configuration, lays out the scene schedule and runs the frame.
#include "runtime/Velmora.h"

#include "config/VariableMgr.h"
#include "effects/BlowUp.h"
#include "effects/CityStreet.h"
#include "effects/Cockpit.h"
#include "effects/Credit.h"
#include "effects/Fader.h"
#include "effects/FlipperLand.h"
#include "effects/Greetings.h"
#include "effects/Islands.h"
#include "effects/Logo.h"
#include "effects/SeaBed.h"
#include "effects/SpaceCraft.h"
#include "effects/Swirl.h"
#include "effects/TunnelExit.h"
#include "effects/UnderwaterTunnel.h"
#include "gl/GLEXT.h"
#include "math/Color.h"
#include "runtime/EffectMgr.h"
#include "runtime/Timer.h"
#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "sound/MusicPlayerMOD.h"
#include "sound/SongMeter.h"
#include "sound/Sound.h"
#include "text/Console.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

const char* const CONFIG_FILE = "./velmora.cfg";
const char* const TITLE = "Velmora Deep / Quorvex Co";
const int TEXTURE_QUALITY = 2;
const int SOUND_CHANNELS = 32;
// Lines the open console shows: its newest line stays above the read-out's two rows.
const int CONSOLE_LINES = 37;
// Red and green at the console's default intensity: a dim yellow.
const int READOUT_COLOUR = 3;
const int TITLE_COLOUR = 15;
const int INFO_COLOUR = 7;
const int HINT_COLOUR = 3 + 16;

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

const char* glString(GLenum name)
{
    const GLubyte* text = glGetString(name);
    return text ? reinterpret_cast<const char*>(text) : "unknown";
}

}  // namespace

Velmora::Velmora() : soundEnabled(false), showFPS(false), effects(nullptr)
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
    GLEXT::bindAll();
    setFixedGLState();
    Texture::setTexQuality(TEXTURE_QUALITY);

    TextureMgr::getHandle()->initiate();
    MaterialMgr::getHandle()->initiate();
    LightMgr::getHandle()->initiate();
    LightMgr::getHandle()->turnLightingOn();
    CameraMgr::getHandle()->initiate();
    Console::getHandle()->initiate();

    if (soundEnabled)
        startSound();
    setupScenes();
    reportToConsole();
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

MusicPlayerMOD* Velmora::newMusicPlayer()
{
    return new MusicPlayerMOD();
}

void Velmora::startSound()
{
    Sound* sound = Sound::getHandle();
    if (!sound->initiate(readInteger("Frequency", 44100), SOUND_CHANNELS)) {
        // No device (or none that opens): the pictures carry on without music.
        std::printf("Sound: no audio output, playing silently\n");
        return;
    }
    const int volume = readInteger("Volume", Sound::MAX_GLOBAL_VOLUME);
    // Silent while the song starts, so its first mix does not click.
    sound->setGlobalVolume(0);
    const Variable* song = VariableMgr::getHandle()->find("Song");
    if (song) {
        // A player whose load fails is deliberately left as it is: neither registered nor deleted.
        MusicPlayerMOD* player = newMusicPlayer();
        if (player->load(song->getString())) {
            sound->addMusic(player);
            sound->setCurrentMusic(player);
            player->initiate();
            // The displays that follow the music read the song by the playing module's clock.
            SongMeter::getHandle()->initiate(song->getString(), player);
        }
    }
    sound->update();
    sound->setGlobalVolume(volume);
}

void Velmora::reportToConsole()
{
    Console* console = Console::getHandle();
    console->setVisibleLines(CONSOLE_LINES);
    // The first line drawn sits partly above the view: leave it empty.
    console->print("\n", INFO_COLOUR);
    console->print("Velmora Deep / Quorvex Co\n", TITLE_COLOUR);
    char line[Console::FORMAT_BUFFER_SIZE];
    std::snprintf(line, sizeof line, "Renderer: %s\n", glString(GL_RENDERER));
    console->print(line, INFO_COLOUR);
    std::snprintf(line, sizeof line, "GL %s\n", glString(GL_VERSION));
    console->print(line, INFO_COLOUR);
    std::snprintf(line, sizeof line, "Window: %d x %d, %d bits, %s\n", getWidth(), getHeight(), getBitsPerPixel(),
                  isFullscreen() ? "full screen" : "windowed");
    console->print(line, INFO_COLOUR);

    Sound* sound = Sound::getHandle();
    const MusicPlayer* music = sound->getCurrentMusic();
    if (!soundEnabled)
        std::snprintf(line, sizeof line, "Sound: off\n");
    else if (!sound->isInitialised())
        std::snprintf(line, sizeof line, "Sound: no audio output, silent\n");
    else if (music && music->getFilename())
        std::snprintf(line, sizeof line, "Sound: %d Hz, %s\n", sound->getMixRate(), music->getFilename());
    else
        std::snprintf(line, sizeof line, "Sound: %d Hz, no song\n", sound->getMixRate());
    console->print(line, INFO_COLOUR);

    std::snprintf(line, sizeof line, "Scenes: %u on the schedule\n", effects ? effects->getPendingCount() : 0u);
    console->print(line, INFO_COLOUR);
    console->print("Click to close the console, Escape to quit.\n", HINT_COLOUR);
}

void Velmora::setupScenes()
{
    delete effects;
    effects = new EffectMgr();

    const Color white(1.0f, 1.0f, 1.0f, 1.0f);
    const Color black(0.0f, 0.0f, 0.0f, 1.0f);
    // The schedule's entries by number, in its order; the scenes between them join as they
    // are written. Each fade straddles a cut, on a layer above every scene; the credits are
    // spaced 8.875 s apart, an earlier one drawn over a later one.
    /* 1 */ effects->addEffect(new Credit(0, 4, EffectTimer(0.0f, 8.875f)));
    /* 2 */ effects->addEffect(new Credit(1, 3, EffectTimer(8.875f, 17.75f)));
    /* 3 */ effects->addEffect(new Credit(2, 2, EffectTimer(17.75f, 26.625f)));
    /* 4 */ effects->addEffect(new Credit(3, 1, EffectTimer(26.625f, 35.5f)));
    /* 5 */ effects->addEffect(new Fader(white, 100, EffectTimer(35.0f, 36.0f)));
    /* 6 */ effects->addEffect(new Islands(0, EffectTimer(35.5f, 68.5f)));
    /* 7 */ effects->addEffect(new Fader(white, 100, EffectTimer(68.0f, 69.0f)));
    /* 8 */ effects->addEffect(new Logo(0, EffectTimer(68.5f, 76.0f)));
    /* 9 */ effects->addEffect(new Fader(black, 100, EffectTimer(75.5f, 76.5f)));
    /* 10 */ effects->addEffect(new SeaBed(0, EffectTimer(76.0f, 109.0f)));
    /* 11 */ effects->addEffect(new Fader(black, 100, EffectTimer(108.5f, 109.5f)));
    /* 12 */ effects->addEffect(new UnderwaterTunnel(0, EffectTimer(109.0f, 142.5f)));
    /* 13 */ effects->addEffect(new Fader(black, 100, EffectTimer(141.5f, 143.5f)));
    /* 14 */ effects->addEffect(new TunnelExit(0, EffectTimer(142.5f, 150.5f)));
    /* 15 */ effects->addEffect(new Fader(black, 100, EffectTimer(150.0f, 151.0f)));
    /* 16 */ effects->addEffect(new FlipperLand(0, EffectTimer(150.5f, 168.5f)));
    /* 17 */ effects->addEffect(new Fader(white, 100, EffectTimer(168.0f, 169.0f)));
    /* 18 */ effects->addEffect(new SpaceCraft(0, EffectTimer(168.5f, 201.5f)));
    /* 19 */ effects->addEffect(new Fader(black, 100, EffectTimer(199.5f, 203.5f)));
    /* 20 */ effects->addEffect(new Cockpit(0, EffectTimer(201.5f, 214.5f)));
    /* 21 */ effects->addEffect(new CityStreet(0, EffectTimer(214.5f, 247.5f)));
    /* 22 */ effects->addEffect(new BlowUp(0, EffectTimer(247.5f, 259.5f)));
    /* 23 */ effects->addEffect(new Swirl(0, EffectTimer(259.5f, 289.5f)));
    /* 24 */ effects->addEffect(new Greetings(1, EffectTimer(259.5f, 289.5f)));

    // Discards the span the additions gathered: the scene clock starts at 0.
    effects->initiate();
}

void Velmora::setupTest()
{
    delete effects;
    effects = new EffectMgr();
    // The street scene alone, for half an hour.
    effects->addEffect(new CityStreet(0, EffectTimer(0.0f, 1800.0f)));
    effects->initiate();
}

void Velmora::onUpdate(float seconds)
{
    if (effects)
        effects->update(seconds);
    Console::getHandle()->update(seconds);
    if (soundEnabled)
        Sound::getHandle()->update();
}

void Velmora::onDisplay()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (camera) {
        camera->lookAt();
        LightMgr::getHandle()->reorient(*camera);
    }
    if (effects)
        effects->display();
    LightMgr::getHandle()->turnLightingOff();
    Console::getHandle()->display();
    glDisable(GL_DEPTH_TEST);
    if (showFPS)
        drawReadout();
    glEnable(GL_DEPTH_TEST);
    LightMgr::getHandle()->turnLightingOn();
}

void Velmora::drawReadout()
{
    Console* console = Console::getHandle();
    const float sceneTime = effects ? effects->getTimer().current : 0.0f;
    console->printf(0, 2, READOUT_COLOUR, "TIME: %2.2f", sceneTime);
    console->printf(0, 1, READOUT_COLOUR, "FPS : %2.2f", timer ? timer->getFramesPerSec() : 0.0);
}

void Velmora::onResize(int width, int height)
{
    glViewport(0, 0, width, height);
    setSize(width, height);
    CameraMgr::getHandle()->onResize(width, height);
}

void Velmora::onKey(unsigned char key)
{
    if (key == KEY_ESCAPE)
        sendQuit();
}

void Velmora::onMouseButton(int, int, int)
{
    Console* console = Console::getHandle();
    if (console->isActive())
        console->deactivate();
    else
        console->activate();
}

void Velmora::onMouseMove(int, int) {}

void Velmora::onActivate() {}

void Velmora::onDeactivate() {}

void Velmora::onQuit()
{
    // The reverse of the start. The timeline itself goes with the destructor, after run has returned.
    SongMeter::getHandle()->shutdown();
    if (soundEnabled)
        Sound::getHandle()->shutdown();
    Console::getHandle()->shutdown();
    CameraMgr::getHandle()->shutdown();
    LightMgr::getHandle()->shutdown();
    MaterialMgr::getHandle()->shutdown();
    TextureMgr::getHandle()->shutdown();
}
