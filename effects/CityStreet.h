// The city street: racing at night down the streets of a city block, between lit towers, neon and traffic.
#pragma once

#include "effects/CityBlock.h"
#include "effects/CityCamera.h"
#include "effects/CityLayout.h"
#include "effects/OneWayStreet.h"
#include "math/Color.h"
#include "runtime/Effect.h"

class Camera;
class CameraAnimation;

class CityStreet : public Effect {
public:
    CityStreet(short layer, const EffectTimer& timer);
    ~CityStreet() override;
    CityStreet(const CityStreet&) = delete;
    CityStreet& operator=(const CityStreet&) = delete;

    // Loads what preload left, then sets the street going.
    void initiate() override;
    // The block's pictures and octree, the car and the lights' pictures, the camera's path: one a call.
    bool preload() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // Seconds into the race: the scene's own time, starting over when a long timeline outlasts the route.
    double getLap() const { return lap; }
    const CityBlock& getBlock() const { return block; }
    const OneWayStreet& getStreet() const { return street; }
    const CameraAnimation* getCameraAnimation() const { return cityCamera.getPath(); }

    // How far the camera dips t seconds into the race, riding the song's kicks and crashes.
    static float bounce(double t);

private:
    void draw(const Camera& camera);
    // Draws the street once unseen, from where the race starts.
    void rehearse();

    double lap;
    CityBlock block;
    OneWayStreet street;
    CityCamera cityCamera;
    bool rehearsed;
};
