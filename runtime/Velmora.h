// The demo: configuration, managers, music and the scene schedule.
#pragma once

#include "runtime/ApplicationSDL.h"

class EffectMgr;
class MusicPlayerMOD;

class Velmora : public ApplicationSDL {
public:
    // Reads ./velmora.cfg into the display request; opens nothing yet.
    Velmora();
    // Deletes the timeline and every effect it still holds.
    ~Velmora() override;

    void onInit() override;
    void onUpdate(float seconds) override;
    void onDisplay() override;
    void onResize(int width, int height) override;
    // Escape quits; nothing else is bound.
    void onKey(unsigned char key) override;
    void onMouseButton(int x, int y, int button) override;
    void onMouseMove(int x, int y) override;
    void onActivate() override;
    void onDeactivate() override;
    void onQuit() override;

    // Builds the whole timeline once; the scene clock starts at 0.
    void setupScenes();
    // A development aid: a one-scene timeline in place of the schedule. Nothing calls it.
    void setupTest();

    bool isSoundEnabled() const { return soundEnabled; }
    bool isShowingFPS() const { return showFPS; }
    EffectMgr* getEffects() const { return effects; }

    static const unsigned char KEY_ESCAPE = 27;
    // Printed after a display failure: where the demo can be watched instead.
    static constexpr const char* NO_DISPLAY_HINT =
        "To watch Velmora without a display, render it to a video: make video (or velmora-capture --video FILE)";

protected:
    // Offline renderers turn the music off: they must not open an audio device.
    void setSoundEnabled(bool enabled) { soundEnabled = enabled; }
    // The player the song is loaded into.
    virtual MusicPlayerMOD* newMusicPlayer();

private:
    // The state every scene may rely on when it starts.
    void setFixedGLState();
    // The output, the global volume and the song; a failed open leaves the demo silent.
    void startSound();
    // A few lines about the running program, so that opening the console shows something.
    void reportToConsole();
    // Scene time and frame rate at the bottom left.
    void drawReadout();

    bool soundEnabled;
    bool showFPS;
    EffectMgr* effects;
};
