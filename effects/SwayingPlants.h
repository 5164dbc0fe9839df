// Plants rooted in the sand that lean with the current: kelp and sea fans, many copies of one mesh bent on the processor.
#pragma once

#include "math/Vector3.h"

#include <vector>

class Frustum;
class IndexedMesh;
class InstanceBatch;

class SwayingPlants {
public:
    struct Plant {
        Vector3 base;
        float yaw;  // degrees about y
        float scale;
        float phase;  // radians
    };

    // The mesh's height above its base, how far its top leans at most, and the current's direction.
    SwayingPlants(float height, float reach, const Vector3& current);

    // Room for that many plants, made before the scene runs.
    void reserve(int count);
    // False when the room is used up.
    bool add(const Plant& plant);
    int getCount() const { return static_cast<int>(plants.size()); }
    const Plant& getPlant(int i) const { return plants[static_cast<size_t>(i)]; }

    // Horizontal lean of a point at that height of the mesh at time t: most at the top, none at the root,
    // a wave running up the stem.
    Vector3 lean(float height, float t, float phase) const;
    // Works out once what each vertex of the mesh needs of the lean, so that filling takes no more
    // than a few products a vertex; without it fill works out the lean in full.
    void prepare(const IndexedMesh& mesh);
    // Fills the batch with the plants the frustum may see.
    void fill(InstanceBatch& batch, const IndexedMesh& mesh, float t, const Frustum& frustum) const;

private:
    // A vertex's share of the lean by its height, and its height's angles in the two waves.
    struct Bend {
        float weight;
        float withCos, withSin;
        float sideCos, sideSin;
    };
    float weight(float height) const;

    std::vector<Plant> plants;
    std::vector<Bend> bends;
    size_t room;
    float height;
    float reach;
    Vector3 along;
    Vector3 across;
};
