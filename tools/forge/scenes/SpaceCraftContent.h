// The spacecraft fly-by's content: the hull as an octree, the camera's long reveal, the plating, windows and sky.
#pragma once

#include "ContentUnit.h"
#include "MeshBuilder.h"

#include "effects/SpaceCraftLayout.h"

#include <vector>

class Forge;
class Mesh;

class SpaceCraftContent : public ContentUnit {
public:
    static constexpr double SECONDS = SpaceCraftLayout::SECONDS;
    // Frames between two keys of the camera path.
    static const int KEY_STEP = 6;
    // Octree limits: leaves small enough for the view to drop most of them close up.
    static const int OCTREE_DEPTH = 4;
    static const int FACES_PER_LEAF = 1000;

    const char* name() const override { return "spacecraft"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // The hull with its materials registered in the material registry (the caller empties it).
    static Mesh* buildHull();
    // Where the camera is and looks, t seconds into the scene.
    static Vec3 cameraAt(double t);
    static Vec3 targetAt(double t);

    static bool writeHull(const char* file);
    static bool writeCamera(const char* file);
};
