// The city street: racing at night down the streets of a city block, between lit towers, neon and traffic.
#pragma once

#include "effects/CityBlock.h"
#include "effects/CityLayout.h"
#include "effects/OneWayStreet.h"
#include "math/Color.h"
#include "runtime/Effect.h"

class CameraAnimation;

class CityStreet : public Effect {
public:
    CityStreet(short layer, const EffectTimer& timer);
    ~CityStreet() override;
    CityStreet(const CityStreet&) = delete;
    CityStreet& operator=(const CityStreet&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // Seconds into the race: the scene's own time, starting over when a long timeline outlasts the route.
    double getLap() const { return lap; }
    const CityBlock& getBlock() const { return block; }
    const OneWayStreet& getStreet() const { return street; }
    const CameraAnimation* getCameraAnimation() const { return cameraAnimation; }

    // How far the camera dips t seconds into the race, riding the song's kicks and crashes.
    static float bounce(double t);

private:
    double lap;
    CityBlock block;
    OneWayStreet street;
    CameraAnimation* cameraAnimation;
};
