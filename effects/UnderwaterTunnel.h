// The underwater tunnel: an animated camera through a fogged octree tunnel, the ship ahead, objects and glows.
#pragma once

#include "effects/TunnelLayout.h"
#include "math/Color.h"
#include "math/MathConstants.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"

class Camera;
class CameraAnimation;
class Material;
class Mesh;
class MeshAnimation;
class MulTextureMaterial;
class Octree;
class ParticleCluster;
class PCInfoSphere;

class UnderwaterTunnel : public Effect {
public:
    enum { OBJECT_COUNT = TunnelLayout::OBJECT_COUNT, CLUSTER_COUNT = TunnelLayout::CLUSTER_COUNT };
    // One turn of the angle, in radians.
    static constexpr float TURN = MathConstants::TWO_PI;

    UnderwaterTunnel(short layer, const EffectTimer& timer);
    ~UnderwaterTunnel() override;
    UnderwaterTunnel(const UnderwaterTunnel&) = delete;
    UnderwaterTunnel& operator=(const UnderwaterTunnel&) = delete;

    // Loads whatever preload left, then wires the parts together.
    void initiate() override;
    // The textures through the cache, then the tunnel, the ship, the paths and the objects: one file a call.
    bool preload() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    float getAngle() const { return angle; }
    const Color& getColor() const { return colour; }
    const Octree* getTunnel() const { return tunnel; }
    const Mesh* getShip() const { return ship; }
    const MeshAnimation* getShipAnimation() const { return shipAnimation; }
    const CameraAnimation* getCameraAnimation() const { return cameraAnimation; }
    const MulTextureMaterial* getTunnelMaterial() const { return tunnelMaterial; }
    const Mesh* getObject(int i) const { return objects[i]; }
    const ParticleCluster* getCluster(int i) const { return clusters[i]; }

private:
    void setupFog();
    // Loads the next file; false once every one was tried (each is tried once, so each failure is told once).
    bool loadNextPiece();
    void loadPiece(int piece);
    void setupShip();
    void setupObjects();
    void loadCamera();
    void loadLights();
    void loadTunnelMaterial();
    void loadCluster();
    void drawTunnel(Camera* camera);
    void drawShip();
    void drawObjects(Camera* camera);
    void drawCluster(Camera* camera);
    void release();

    Color colour;
    Octree* tunnel;
    Mesh* ship;
    MeshAnimation* shipAnimation;
    CameraAnimation* cameraAnimation;
    MulTextureMaterial* tunnelMaterial;
    float angle;
    Mesh* objects[OBJECT_COUNT];
    ParticleCluster* clusters[CLUSTER_COUNT];
    // The emitters: a cluster does not own its own.
    PCInfoSphere* emitters[CLUSTER_COUNT];
    // Files tried so far.
    int piecesLoaded;
};
