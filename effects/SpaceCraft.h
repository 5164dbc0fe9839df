// The spacecraft fly-by: a long, slow camera along a great hull among stars, engines glowing, lights blinking.
#pragma once

#include "effects/OctreeBatch.h"
#include "effects/Planet.h"
#include "effects/SpaceBackdrop.h"
#include "effects/SpaceCraftLayout.h"
#include "effects/TextureTwins.h"
#include "math/Color.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"

class Camera;
class CameraAnimation;
class Material;
class Octree;
class ParticleCluster;
class ParticleInfo;
class Texture;

class SpaceCraft : public Effect {
public:
    enum { CLUSTER_COUNT = SpaceCraftLayout::ENGINE_COUNT + SpaceCraftLayout::MAIN_ENGINES };
    // The song's first row of this section, in scene seconds: beats are counted from it.
    static constexpr float MUSIC_START = 168.5f;

    SpaceCraft(short layer, const EffectTimer& timer);
    ~SpaceCraft() override;
    SpaceCraft(const SpaceCraft&) = delete;
    SpaceCraft& operator=(const SpaceCraft&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // How bright a navigation light of that kind is at a scene time: 0 to 1.
    static float blink(SpaceCraftLayout::Blink kind, float sceneSeconds);
    // The hull's colour where its face looks along `normal`: the star and the fill as GL would light it.
    static Color starlight(const Vector3& normal, const Material* material);
    // The engines' throb: 1 on the kick drum, falling away between kicks; about 0.2 at rest.
    static float throb(float sceneSeconds);

    const Octree* getHull() const { return hull; }
    const OctreeBatch& getBatch() const { return batch; }
    const CameraAnimation* getCameraAnimation() const { return cameraAnimation; }
    const Planet& getPlanet() const { return planet; }
    const ParticleCluster* getCluster(int i) const { return clusters[i]; }
    const SpaceBackdrop& getBackdrop() const { return backdrop; }

private:
    void loadHull();
    void loadCamera();
    void loadLights();
    void loadExhausts();
    void drawHull(Camera& camera);
    void drawGlows(const Camera& camera) const;
    void drawCard(const Camera& camera, const Vector3& where, float size, float r, float g, float b) const;
    void release();

    Octree* hull;
    OctreeBatch batch;
    CameraAnimation* cameraAnimation;
    SpaceBackdrop backdrop;
    Planet planet;
    TextureTwins twins;
    Texture* glow;
    ParticleCluster* clusters[CLUSTER_COUNT];
    ParticleInfo* emitters[CLUSTER_COUNT];
};
