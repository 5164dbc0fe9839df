// The blow-up: the camera rises over the city as light gathers at ground zero, and on the song's crash it all blows.
#pragma once

#include "effects/BlowUpLayout.h"
#include "effects/CityBlock.h"
#include "effects/CityCamera.h"
#include "effects/Kaboom.h"
#include "effects/OneWayStreet.h"
#include "math/Color.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"

class Camera;
class CameraAnimation;

class BlowUp : public Effect {
public:
    BlowUp(short layer, const EffectTimer& timer);
    ~BlowUp() override;
    BlowUp(const BlowUp&) = delete;
    BlowUp& operator=(const BlowUp&) = delete;

    // Loads what preload left, draws the scene once unseen if preload did not, then sets the blast up.
    void initiate() override;
    // The block (the street's, while the street holds it), the car and the lights' pictures, the debris and the
    // blast's pictures, the camera's path: one a call.
    bool preload() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // Seconds since the scene began.
    float getTime() const { return timer.getCurrent() - timer.getStart(); }
    const CityBlock& getBlock() const { return block; }
    const Kaboom& getKaboom() const { return kaboom; }
    const CameraAnimation* getCameraAnimation() const { return cityCamera.getPath(); }

    // What the city looks like t seconds into the scene: its colour (flickering in the fill, fire-lit
    // after the crash and darkening), how much white covers the screen, and how far the camera is
    // thrown off its path when it stands that far from ground zero.
    static Color cityTint(float t);
    static float flash(float t);
    static Vector3 shake(float t, float distance);
    // How bright the night sky and fog are (1 as in the street), dimming to near black by the end.
    static float nightLight(float t);
    // How much light has gathered at ground zero before the crash, 0 to 1.
    static float charge(float t);

private:
    // The scene t seconds in, seen by the camera.
    void draw(const Camera& camera, float t);
    void drawCharge(const Camera& camera, float t);
    void drawFlash(float white);
    // Draws the scene once unseen, before the crash and after it, from where the camera rests.
    void rehearse();

    CityBlock block;
    OneWayStreet street;
    Kaboom kaboom;
    CityCamera cityCamera;
    bool rehearsed;
};
