// The open-sea scene: sky dome, sand mountains, waving water, the sailing ship, the birds and four fire plumes.
#pragma once
#include "effects/IslandsLayout.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"
#include "scene/Hemisphere.h"

class BezierMesh;
class Camera;
class CameraAnimation;
class FaceArray;
class Material;
class Mesh;
class MeshAnimation;
class ParticleCluster;
class ParticleInfo;
class Texture;
class VertexArray;

class Islands : public Effect {
public:
    // The water grid's vertices per side.
    static constexpr int WATER_SIZE = 20;
    static constexpr int NUM_CLUSTERS = IslandsLayout::PLUME_COUNT;
    static constexpr int NUM_BIRDS = 6;

    Islands(short layer, const EffectTimer& timer);
    ~Islands() override;
    Islands(const Islands&) = delete;
    Islands& operator=(const Islands&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float dt) override;
    void display() override;

    // What the scene holds, for its tests.
    int getMountainCount() const;
    int getBirdCount() const;
    const Mesh* getShip() const { return ship; }
    const MeshAnimation* getShipAnimation() const { return shipAnim; }
    const MeshAnimation* getBirdAnimation() const { return birdAnim; }
    const Mesh* getWater() const { return water; }
    float getWaterAngle() const { return waterAngle; }
    float getWaterPhase() const { return waterPhase; }

private:
    struct Bird {
        int mesh;
        Vector3 offset;
        Bird* next;
    };
    struct MountainNode {
        BezierMesh* mesh;
        MountainNode* next;
    };

    void loadBezierMeshes();
    void loadShip();
    void loadBirds();
    void loadCluster();
    void loadCameraAnims();
    void createWaterMesh();
    void updateWaterMesh(float dt);
    float waterFunc(float angle, int i, int j);
    void calcFaceNormals(VertexArray* vertices, FaceArray* faces);
    void calcBounds(VertexArray* vertices);
    void updateBirds(float dt);

    void drawIslands(Camera* camera);
    void drawBirds(Camera* camera);
    void drawShip(Camera* camera);
    void drawWater();
    void drawCluster(Camera* camera);

    void unloadBezierMeshes();
    void unloadShip();
    void unloadBirds();
    void unloadCluster();
    void unloadCameraAnims();
    void unloadWaterMesh();

    Material* skyMaterial;
    Texture* windowTexture;
    Hemisphere sky;
    Mesh* ship;
    MeshAnimation* shipAnim;
    CameraAnimation* cameraAnim;
    MeshAnimation* birdAnim;
    Mesh* birdMeshes[2];
    Bird* birds;
    ParticleCluster* clusters[NUM_CLUSTERS];
    ParticleInfo* clusterInfo[NUM_CLUSTERS];
    Mesh* water;
    float waterAngle;
    float waterPhase;
    float waterScroll;
    // The phase of the vertex waterFunc is computing.
    float vertexPhase;
    MountainNode* mountains;
};
