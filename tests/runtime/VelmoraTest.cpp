// The demo driver: configuration, the fade schedule, the fixed GL state, keys and window resizing.
#include "runtime/Velmora.h"

#include "config/VariableMgr.h"
#include "effects/BlowUpLayout.h"
#include "effects/CityLayout.h"
#include "effects/CityStreet.h"
#include "effects/Credit.h"
#include "effects/Fader.h"
#include "effects/IslandsLayout.h"
#include "effects/TunnelLayout.h"
#include "runtime/EffectMgr.h"
#include "sound/MusicPlayer.h"
#include "sound/MusicPlayerMOD.h"
#include "sound/SongMeter.h"
#include "sound/Sound.h"
#include "text/Console.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <SDL/SDL.h>
#include <cxxabi.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <tuple>
#include <typeinfo>
#include <vector>

namespace {

const char* const HEADER = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";

// The schedule's table: start, end and layer of its 24 entries, in order.
struct Entry {
    float start, end;
    short layer;
};
const Entry TABLE[24] = {{0.0f, 8.875f, 4},     {8.875f, 17.75f, 3}, {17.75f, 26.625f, 2},  {26.625f, 35.5f, 1},
                         {35.0f, 36.0f, 100},   {35.5f, 68.5f, 0},   {68.0f, 69.0f, 100},   {68.5f, 76.0f, 0},
                         {75.5f, 76.5f, 100},   {76.0f, 109.0f, 0},  {108.5f, 109.5f, 100}, {109.0f, 142.5f, 0},
                         {141.5f, 143.5f, 100}, {142.5f, 150.5f, 0}, {150.0f, 151.0f, 100}, {150.5f, 168.5f, 0},
                         {168.0f, 169.0f, 100}, {168.5f, 201.5f, 0}, {199.5f, 203.5f, 100}, {201.5f, 214.5f, 0},
                         {214.5f, 247.5f, 0},   {247.5f, 259.5f, 0}, {259.5f, 289.5f, 0},   {259.5f, 289.5f, 1}};
// The class of each entry, in the table's order.
const char* const CLASSES[24] = {"Credit", "Credit",     "Credit",     "Credit",      "Fader", "Islands",
                                 "Fader",  "Logo",       "Fader",      "SeaBed",      "Fader", "UnderwaterTunnel",
                                 "Fader",  "TunnelExit", "Fader",      "FlipperLand", "Fader", "SpaceCraft",
                                 "Fader",  "Cockpit",    "CityStreet", "BlowUp",      "Swirl", "Greetings"};

std::string className(const Effect& effect)
{
    int status = 0;
    char* plain = abi::__cxa_demangle(typeid(effect).name(), nullptr, nullptr, &status);
    const std::string name = status == 0 && plain ? plain : typeid(effect).name();
    std::free(plain);
    return name;
}

// The schedule's pending effects in the order they were added, or the running ones in drawing order.
std::vector<const Effect*> scheduleOf(const EffectMgr& effects)
{
    std::vector<const Effect*> added;
    effects.forEachPending([&added](const Effect& effect) { added.insert(added.begin(), &effect); });
    return added;
}

std::vector<const Effect*> runningOf(const EffectMgr& effects)
{
    std::vector<const Effect*> running;
    effects.forEachRunning([&running](const Effect& effect) { running.push_back(&effect); });
    return running;
}

std::string consoleText()
{
    std::string text;
    for (int line = 1; line <= Console::getHandle()->getCurrentLine(); ++line)
        text += std::string(Console::getHandle()->getLine(line), Console::WIDTH) + "\n";
    return text;
}

// Each test starts from an empty registry; the demo is built inside a directory of its own.
class Driver : public ::testing::Test {
protected:
    std::string dir;

    void SetUp() override
    {
        VariableMgr::getHandle()->shutdown();
        char pattern[] = "/tmp/velmora-driver-XXXXXX";
        dir = mkdtemp(pattern) ? pattern : "/tmp";
    }

    void TearDown() override
    {
        std::remove((dir + "/velmora.cfg").c_str());
        rmdir(dir.c_str());
        VariableMgr::getHandle()->shutdown();
        // A quit shuts the texture cache down with its loaders; later demos need them back.
        TextureMgr::getHandle()->registerStandardLoaders();
    }

    void writeConfig(const std::string& text) { std::ofstream((dir + "/velmora.cfg").c_str()) << text; }

    // The constructor reads ./velmora.cfg, so it runs in the test's directory.
    template <typename Demo = Velmora>
    std::unique_ptr<Demo> build()
    {
        char home[4096];
        if (!getcwd(home, sizeof home) || chdir(dir.c_str()) != 0)
            return nullptr;
        std::unique_ptr<Demo> demo(new Demo());
        if (chdir(home) != 0)
            ADD_FAILURE() << "cannot return to " << home;
        return demo;
    }
};

// A demo whose window and frames the test drives by hand.
class OpenDemo : public Velmora {
public:
    using ApplicationSDL::handleEvents;

    // GL is what is tested, not the window: SDL's offscreen fallback serves when the X server refuses a connection.
    OpenDemo() { allowWindowless(true); }

    bool open()
    {
        if (!setupGL())
            return false;
        onInit();
        onResize(getWidth(), getHeight());
        return true;
    }

    // Quarter-second frames: exact in binary.
    void advanceTo(float t)
    {
        while (getEffects()->getTimer().current < t)
            onUpdate(0.25f);
    }

    int centreRed()
    {
        unsigned char rgba[4];
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(getWidth() / 2, getHeight() / 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return rgba[0];
    }
};

}  // namespace

TEST_F(Driver, ConfigurationFillsTheDisplayRequest)
{
    auto demo = build();
    EXPECT_EQ(demo->getInfo().width * 1000 + demo->getInfo().height, 640480);
    EXPECT_EQ(demo->getInfo().depthBuffer, 16);
    EXPECT_FALSE(demo->isSoundEnabled());
    EXPECT_EQ(demo->getEffects(), nullptr);

    VariableMgr::getHandle()->shutdown();
    writeConfig(std::string(HEADER) +
                "Cursor = no\nFullscreen = YES\nWidth = 800\nHeight = 600\n"
                "BitsPerPixel = 16\nDepthBuffer = 24\nShowFPS = yes\nSound = Yes\n");
    demo = build();
    const AppInfo& info = demo->getInfo();
    EXPECT_FALSE(info.cursor);
    EXPECT_TRUE(info.fullscreen);
    EXPECT_EQ(info.width * 1000 + info.height, 800600);
    EXPECT_EQ(info.bitsPerPixel * 100 + info.depthBuffer, 1624);
    EXPECT_TRUE(demo->isShowingFPS() && demo->isSoundEnabled());
}

TEST_F(Driver, WithEverySceneWrittenTheScheduleIsTheWholeTable)
{
    auto demo = build();
    demo->setupScenes();
    EXPECT_EQ(demo->getEffects()->getTimer().current + demo->getEffects()->getTimer().end, 0.0f);
    const std::vector<const Effect*> schedule = scheduleOf(*demo->getEffects());
    ASSERT_EQ(schedule.size(), 24u);
    for (int row = 0; row < 24; ++row) {
        const Effect& effect = *schedule[static_cast<size_t>(row)];
        EXPECT_EQ(className(effect), CLASSES[row]) << "entry " << row + 1;
        EXPECT_EQ(effect.getTimer().start, TABLE[row].start) << "entry " << row + 1;
        EXPECT_EQ(effect.getTimer().end, TABLE[row].end) << "entry " << row + 1;
        EXPECT_EQ(effect.getLayer(), TABLE[row].layer) << "entry " << row + 1;
        const Credit* credit = dynamic_cast<const Credit*>(&effect);
        EXPECT_TRUE(!credit || credit->getIndex() == row) << "entry " << row + 1;
    }
    // The paths the forge makes for a scene cover exactly the span the schedule gives it.
    const auto length = [&](int row) { return TABLE[row].end - TABLE[row].start; };
    EXPECT_EQ(length(5), static_cast<float>(IslandsLayout::SECONDS));
    EXPECT_EQ(length(11), static_cast<float>(TunnelLayout::SECONDS));
    EXPECT_EQ(length(20), static_cast<float>(CityLayout::SECONDS));
    EXPECT_EQ(length(21), static_cast<float>(BlowUpLayout::SECONDS));
}

TEST_F(Driver, TheTestTimelineHoldsOneCityStreetForHalfAnHour)
{
    auto demo = build();
    demo->setupTest();
    const std::vector<const Effect*> schedule = scheduleOf(*demo->getEffects());
    ASSERT_EQ(schedule.size(), 1u);
    EXPECT_NE(dynamic_cast<const CityStreet*>(schedule[0]), nullptr);
    EXPECT_EQ(std::make_tuple(schedule[0]->getLayer(), schedule[0]->getTimer().start, schedule[0]->getTimer().end),
              std::make_tuple(short(0), 0.0f, 1800.0f));
    EXPECT_EQ(demo->getEffects()->getTimer().current + demo->getEffects()->getTimer().end, 0.0f);
    // Building the schedule afterwards replaces it.
    demo->setupScenes();
    EXPECT_GT(demo->getEffects()->getPendingCount(), 1u);
}

TEST_F(Driver, AtTheFirstCutTheFadeIsDrawnLast)
{
    auto demo = build<OpenDemo>();
    ASSERT_TRUE(demo->open()) << SDL_GetError();
    demo->advanceTo(35.0f);
    demo->onUpdate(0.2f);
    std::vector<const Effect*> running = runningOf(*demo->getEffects());
    ASSERT_EQ(running.size(), 2u);
    const Credit* credit = dynamic_cast<const Credit*>(running[0]);
    EXPECT_TRUE(credit && credit->getIndex() == 3);
    EXPECT_NE(dynamic_cast<const Fader*>(running[1]), nullptr);

    // Past the cut: the next scene (when it exists) under the same fade.
    demo->onUpdate(0.5f);
    running = runningOf(*demo->getEffects());
    ASSERT_FALSE(running.empty());
    EXPECT_EQ(running.back()->getTimer().start, 35.0f);
    EXPECT_NE(dynamic_cast<const Fader*>(running.back()), nullptr);
    for (size_t i = 0; i + 1 < running.size(); ++i)
        EXPECT_EQ(running[i]->getTimer().start, 35.5f);
}

TEST_F(Driver, SongPlaysWhenSoundIsOnAndStopsAtQuit)
{
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    const std::string song = std::string(VELMORA_BINARY_DIR) + "/data/music/velmora.xm";
    writeConfig(std::string(HEADER) + "Sound = yes\nVolume = 100\nSong = " + song + "\n");
    auto demo = build<OpenDemo>();
    ASSERT_TRUE(demo->open()) << SDL_GetError();
    Sound* sound = Sound::getHandle();
    EXPECT_EQ(sound->getGlobalVolume(), 100);
    MusicPlayer* music = sound->getCurrentMusic();
    ASSERT_NE(music, nullptr);
    EXPECT_EQ(song, music->getFilename());
    // SDL's audio thread plays it on.
    const float first = music->getCurrentLocation();
    for (int i = 0; i < 500 && music->getCurrentLocation() <= first; ++i)
        SDL_Delay(10);
    EXPECT_GT(music->getCurrentLocation(), first);
    // The displays that follow the music go by the playing module's clock, not the scene's.
    SongMeter* meter = SongMeter::getHandle();
    EXPECT_TRUE(meter->isOpen());
    EXPECT_LT(meter->songTime(1000.0), 100.0);
    demo->onUpdate(0.25f);
    demo->onQuit();
    EXPECT_FALSE(sound->isInitialised());
    EXPECT_FALSE(meter->isOpen());
}

namespace {

// A demo whose music player says when it is deleted.
class WatchedPlayerDemo : public OpenDemo {
public:
    class Player : public MusicPlayerMOD {
    public:
        explicit Player(bool& deleted) : deleted(deleted) {}
        ~Player() override { deleted = true; }

    private:
        bool& deleted;
    };

    Player* player = nullptr;
    bool deleted = false;

protected:
    MusicPlayerMOD* newMusicPlayer() override { return player = new Player(deleted); }
};

}  // namespace

TEST_F(Driver, ASongThatFailsToLoadLeavesItsPlayerNeitherRegisteredNorDeleted)
{
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    writeConfig(std::string(HEADER) + "Sound = yes\nSong = " + dir + "/no-such-song.xm\n");
    auto demo = build<WatchedPlayerDemo>();
    ASSERT_TRUE(demo->open()) << SDL_GetError();
    ASSERT_NE(demo->player, nullptr);
    EXPECT_TRUE(Sound::getHandle()->isInitialised());
    EXPECT_EQ(Sound::getHandle()->getCurrentMusic(), nullptr);
    demo->onQuit();
    EXPECT_FALSE(demo->deleted);
    // What the demo leaves behind on purpose.
    delete demo->player;
}

TEST_F(Driver, AnOutputThatWillNotOpenLeavesTheDemoSilentAndAClickTogglesTheConsole)
{
    Console::getHandle()->shutdown();
    writeConfig(std::string(HEADER) + "Sound = yes\nFrequency = 0\n");
    auto demo = build<OpenDemo>();
    ASSERT_TRUE(demo->open()) << SDL_GetError();
    EXPECT_FALSE(Sound::getHandle()->isInitialised());
    EXPECT_EQ(Sound::getHandle()->getCurrentMusic(), nullptr);
    std::string text = consoleText();
    EXPECT_NE(text.find("Renderer: "), std::string::npos) << text;
    EXPECT_NE(text.find("Window: 640 x 480"), std::string::npos) << text;
    EXPECT_NE(text.find("Sound: no audio output"), std::string::npos) << text;

    SDL_EventState(SDL_ACTIVEEVENT, SDL_IGNORE);
    while (SDL_PollEvent(nullptr))
        demo->handleEvents();
    EXPECT_FALSE(Console::getHandle()->isActive());
    SDL_Event event = {};
    const Uint8 kinds[] = {SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP, SDL_MOUSEMOTION, SDL_MOUSEBUTTONDOWN};
    const bool expected[] = {true, true, true, false};
    for (int i = 0; i < 4; ++i) {
        event.type = kinds[i];
        SDL_PushEvent(&event);
        demo->handleEvents();
        EXPECT_EQ(Console::getHandle()->isActive(), expected[i]) << "after event " << i;
    }
    demo->advanceTo(1.0f);
    demo->onDisplay();
    demo->onQuit();
}

TEST_F(Driver, InitSetsTheFixedStateAndFadesFlashTheirColourAtEachCut)
{
    auto demo = build<OpenDemo>();
    ASSERT_TRUE(demo->open()) << SDL_GetError();
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST) && glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_DITHER) || glIsEnabled(GL_COLOR_MATERIAL));
    const GLenum queries[] = {
        GL_DEPTH_FUNC,         GL_CULL_FACE_MODE, GL_FRONT_FACE, GL_SHADE_MODEL, GL_PERSPECTIVE_CORRECTION_HINT,
        GL_POLYGON_SMOOTH_HINT};
    const GLint expected[] = {GL_LESS, GL_BACK, GL_CCW, GL_SMOOTH, GL_NICEST, GL_NICEST};
    for (int i = 0; i < 6; ++i) {
        GLint value = 0;
        glGetIntegerv(queries[i], &value);
        EXPECT_EQ(value, expected[i]) << "query " << i;
    }
    GLfloat clear[5] = {-1, -1, -1, -1, -1};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, clear + 4);
    EXPECT_EQ(clear[0] + clear[1] + clear[2] + clear[3] + clear[4], 2.0f);
    // A grey background tells a black fade from an empty frame.
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    const bool whiteFade[24] = {false, false, false, false, true,  false, true,  false, false,
                                false, false, false, false, false, false, false, true};
    for (int row = 0; row < 24; ++row) {
        if (TABLE[row].layer != 100)
            continue;
        // Full cover comes one frame before the scene clock reaches the middle.
        demo->advanceTo((TABLE[row].start + TABLE[row].end) / 2 - 0.25f);
        demo->onDisplay();
        EXPECT_EQ(demo->centreRed(), whiteFade[row] ? 255 : 0) << "fade from " << TABLE[row].start;
    }
    // The logo scene sets its own clear colour.
    demo->advanceTo(290.0f);
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    demo->onDisplay();
    EXPECT_NEAR(demo->centreRed(), 128, 1);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
}

namespace {

// Has its own window resized from outside, then checks the first frame at the new size.
class ResizeProbe : public Velmora {
public:
    std::string title = "velmora-resize-" + std::to_string(getpid());
    bool requested = false;
    bool checked = false;
    unsigned char corner[4] = {0, 0, 0, 0};
    GLint viewport[4] = {0, 0, 0, 0};
    Uint32 began = 0;
    Uint32 lastTry = 0;

    ResizeProbe() { setTitle(title.c_str()); }

    void onUpdate(float seconds) override
    {
        Velmora::onUpdate(seconds);
        Uint32 now = SDL_GetTicks();
        if (!began)
            began = now;
        // The window's name may reach the X server a little after it opens: keep asking.
        if (!requested && now - lastTry >= 50) {
            lastTry = now;
            std::string command = "xdotool search --name '^" + title + "$' windowsize 720 540 >/dev/null 2>&1";
            requested = std::system(command.c_str()) == 0;
        }
        // A safety net only: a window system that never resizes must not hang the test.
        if (now - began > 20000)
            sendQuit();
    }

    void onDisplay() override
    {
        Velmora::onDisplay();
        if (getWidth() != 720 || getHeight() != 540 || checked)
            return;
        // A quad over the whole viewport reaches the new corner only if the viewport followed.
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glDisable(GL_LIGHTING);
        glDisable(GL_TEXTURE_2D);
        glDisable(GL_DEPTH_TEST);
        glColor3f(0.0f, 1.0f, 0.0f);
        glRectf(-1.0f, -1.0f, 1.0f, 1.0f);
        glEnable(GL_DEPTH_TEST);
        glGetIntegerv(GL_VIEWPORT, viewport);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(719, 539, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, corner);
        checked = true;
        sendQuit();
    }
};

}  // namespace

TEST_F(Driver, ResizedWindowIsFilledByTheNextFrame)
{
    ASSERT_NE(getenv("DISPLAY"), nullptr) << "needs an X server: run under xvfb-run";
    ResizeProbe demo;
    EXPECT_TRUE(demo.run(0, nullptr));
    ASSERT_TRUE(demo.requested) << "xdotool could not resize the window";
    ASSERT_TRUE(demo.checked) << "onResize never saw the new size";
    EXPECT_EQ(demo.viewport[2] * 1000 + demo.viewport[3], 720540);
    EXPECT_EQ(demo.corner[0], 0);
    EXPECT_EQ(demo.corner[1], 255);
}
