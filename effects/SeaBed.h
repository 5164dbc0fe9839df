// The sea bed: the dive from under the surface down to the sand and along it, past kelp, rocks and a school of fish, to the eye in the rock face and the cave below it.
#pragma once

#include "effects/Eye.h"
#include "effects/FishSchool.h"
#include "effects/IndexedMesh.h"
#include "effects/InstanceBatch.h"
#include "effects/SeaBedLayout.h"
#include "effects/SwayingPlants.h"
#include "math/Color.h"
#include "runtime/Effect.h"

class Camera;
class CameraAnimation;
class MeshAnimation;
class MulTextureMaterial;
class ParticleCluster;
class PCInfoHelix;
class Terrain;
class Texture;
class TextureMaterial;

class SeaBed : public Effect {
public:
    enum {
        ROCK_KINDS = SeaBedLayout::ROCK_KINDS,
        VENT_COUNT = SeaBedLayout::VENT_COUNT,
        CAUSTIC_FRAMES = SeaBedLayout::CAUSTIC_FRAMES
    };
    // Frames of the caustic loop a second.
    static constexpr float CAUSTIC_RATE = 12.0f;

    SeaBed(short layer, const EffectTimer& timer);
    ~SeaBed() override;
    SeaBed(const SeaBed&) = delete;
    SeaBed& operator=(const SeaBed&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // Seconds since the scene began.
    float getTime() const { return timer.getCurrent() - timer.getStart(); }
    // The water's colour straight out at a height above the sand, darkening into the cave
    // (caveDepth: how far in, 0 outside); the fog and the clear colour take it.
    static Color waterColour(float height, float caveDepth);
    // The fog's density there: light near the surface, thicker on the sand, thickest in the cave.
    static float fogDensity(float height, float caveDepth);
    // The caustic picture shown at scene time t.
    static int causticFrame(float t);

    const Terrain* getTerrain() const { return terrain; }
    const CameraAnimation* getCameraAnimation() const { return cameraAnimation; }
    const MeshAnimation* getSchoolPath() const { return schoolPath; }
    const FishSchool& getSchool() const { return school; }
    const Eye& getEye() const { return eye; }
    const SwayingPlants& getKelp() const { return kelp; }
    const SwayingPlants& getFans() const { return fans; }
    const IndexedMesh& getRock(int kind) const { return rocks[kind]; }
    const IndexedMesh& getCliff() const { return cliff; }
    const IndexedMesh& getCave() const { return cave; }
    const ParticleCluster* getBubbles(int vent) const { return bubbles[vent]; }

private:
    void loadCamera();
    void loadLights();
    void loadFloor();
    void loadRocks();
    void loadPlants();
    void loadSchool();
    void loadBubbles();
    void loadLight();
    void plantKelp();
    void plantFans();

    void setWater(const Camera& camera);
    void drawBackdrop(const Camera& camera) const;
    void drawSurface(const Camera& camera) const;
    void drawFloor(Camera& camera);
    void drawRocks(const Camera& camera) const;
    void drawCave(const Camera& camera) const;
    void drawPlants(const Camera& camera);
    void drawSchool(const Camera& camera);
    void drawShafts(const Camera& camera) const;
    void drawBubbles(const Camera& camera);
    void release();

    Terrain* terrain;
    CameraAnimation* cameraAnimation;
    MeshAnimation* schoolPath;
    MulTextureMaterial* sandMaterial;
    Texture* caustics[CAUSTIC_FRAMES];
    TextureMaterial* rockMaterial;
    TextureMaterial* caveMaterial;
    TextureMaterial* kelpMaterial;
    TextureMaterial* fanMaterial;
    TextureMaterial* fishMaterial;
    TextureMaterial* shaftMaterial;
    TextureMaterial* surfaceMaterial;
    TextureMaterial* bubbleMaterial;
    IndexedMesh rocks[ROCK_KINDS];
    IndexedMesh cliff;
    IndexedMesh cave;
    IndexedMesh kelpMesh;
    IndexedMesh fanMesh;
    IndexedMesh fishMesh;
    InstanceBatch kelpBatch;
    InstanceBatch fanBatch;
    InstanceBatch fishBatch;
    SwayingPlants kelp;
    SwayingPlants fans;
    FishSchool school;
    Eye eye;
    ParticleCluster* bubbles[VENT_COUNT];
    // The emitters: a cluster does not own its own.
    PCInfoHelix* vents[VENT_COUNT];
    Color water;
};
