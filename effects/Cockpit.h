// Inside the spacecraft's cockpit: amber instruments, the music displays, and the planet growing in the window.
#pragma once

#include "effects/CockpitLayout.h"
#include "effects/Harmonix.h"
#include "effects/Planet.h"
#include "effects/SpaceBackdrop.h"
#include "effects/TextureTwins.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"

class Camera;
class Light;
class Mesh;

class Cockpit : public Effect {
public:
    Cockpit(short layer, const EffectTimer& timer);
    ~Cockpit() override;
    Cockpit(const Cockpit&) = delete;
    Cockpit& operator=(const Cockpit&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // How far ahead the planet's centre is, `seconds` into the scene: from far to filling the window.
    static float planetDistance(float seconds);
    // Where the pilot's eye drifts to: a slow float of a few millimetres, no shake.
    static Vector3 eyeAt(float seconds);

    const Mesh* getFrame() const { return frame; }
    const Planet& getPlanet() const { return planet; }
    const Harmonix& getHarmonix() const { return harmonix; }

private:
    void loadFrame();
    void loadCamera();
    void loadLights();
    void drawFrame();
    void release();

    Mesh* frame;
    TextureTwins twins;
    SpaceBackdrop backdrop;
    Planet planet;
    Harmonix harmonix;
    Light* sun;
    Light* cabin[3];
};
