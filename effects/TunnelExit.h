// The tunnel exit: the last stretch of the fogged tunnel, its walls bursting away on the song's hit, and the flood of light.
#pragma once

#include "effects/TunnelExitLayout.h"
#include "math/Color.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"
#include "scene/Hemisphere.h"

#include <vector>

class Camera;
class CameraAnimation;
class Mesh;
class MeshAnimation;
class MulTextureMaterial;
class Octree;
class OctreeNode;
class TextureMaterial;

class TunnelExit : public Effect {
public:
    enum { SLAB_COUNT = TunnelExitLayout::RINGS * TunnelExitLayout::SECTORS, RAY_COUNT = 14, MOTE_COUNT = 120 };

    // Where a slab of the breaking stretch is at t seconds into the scene: moved by `offset`
    // (world units) and turned by `angle` degrees about `axis` through its own middle.
    struct SlabPose {
        Vector3 offset;
        Vector3 axis;
        float angle;
    };

    TunnelExit(short layer, const EffectTimer& timer);
    ~TunnelExit() override;
    TunnelExit(const TunnelExit&) = delete;
    TunnelExit& operator=(const TunnelExit&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // Still until the riser's last bars, trembling outwards, then thrown clear at the hit.
    static SlabPose slabPose(int ring, int sector, float t);
    // The middle of a slab at rest, and the way out from the tube's axis through it.
    static Vector3 slabCentre(int ring, int sector);
    static Vector3 slabOutwards(int sector);
    // How far the fog and the light have turned from the deep's teal to the surface's white-blue, 0 to 1.
    static float brightness(float t);
    // The shafts' strength (they flicker with the snare roll) and the flood of white at the hit.
    static float rayStrength(float t);
    static float flash(float t);

    float getTime() const;
    const Color& getFogColour() const { return fogColour; }
    const Octree* getTunnel() const { return tunnel; }
    const Mesh* getSlab() const { return slab; }
    const Mesh* getShip() const { return ship; }
    const MeshAnimation* getShipAnimation() const { return shipAnimation; }
    const CameraAnimation* getCameraAnimation() const { return cameraAnimation; }
    const MulTextureMaterial* getRockMaterial() const { return rockMaterial; }
    int getMoteCount() const { return moteCount; }
    int getLeafCount() const { return static_cast<int>(leaves.size()); }

private:
    void setupFog();
    void loadTunnel();
    void loadShip();
    void loadCamera();
    void loadMaterials();
    void compileLeaves(const OctreeNode* node);
    void compileLists();
    unsigned int compileDome(float fromElevation, int stacks) const;
    void drawLight(const Camera& camera);
    void drawTunnel(const Camera& camera);
    void drawSlabs(const Camera& camera);
    void drawShip();
    void scatterMotes();
    void drawMotes(const Camera& camera);
    void drawRays(const Camera& camera);
    void drawFlash();
    void release();

    // The octree's leaves, each sent to GL once as a display list and culled by its sphere.
    struct Leaf {
        Vector3 centre;
        float radius;
        unsigned int list;
        // From the camera, this frame.
        float distance;
    };

    Color fogColour;
    float fogDensity;
    Hemisphere dome;
    Octree* tunnel;
    std::vector<Leaf> leaves;
    Mesh* slab;
    Mesh* ship;
    MeshAnimation* shipAnimation;
    CameraAnimation* cameraAnimation;
    MulTextureMaterial* rockMaterial;
    TextureMaterial* lightMaterial;
    TextureMaterial* rayMaterial;
    TextureMaterial* moteMaterial;
    // Specks drifting in the water along the flight, which streak past as the camera races.
    Vector3 motes[MOTE_COUNT];
    int moteCount;
    unsigned int slabList;
    unsigned int shipList;
    // The whole dome, and only its middle: all that shows through the mouth until the walls crack.
    unsigned int domeList;
    unsigned int capList;
    // The turn from the tube's frame to the slabs', as GL takes it, made once.
    float slabFrame[16];
};
