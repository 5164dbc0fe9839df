// The islands scene's generated content: the mountains, the camera, ship and bird paths, the birds and the pictures.
#pragma once

#include "ContentUnit.h"

class BezierMesh;
class Forge;

class IslandsContent : public ContentUnit {
public:
    const char* name() const override { return "islands"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // Height above the water of mountain `index` (0..5) at a point in its own frame.
    static double mountainHeight(int index, double x, double z);
    // Half the side of the square a mountain covers.
    static double mountainExtent(int index);
    // Builds mountain `index` as a grid of patches sampled from mountainHeight.
    static void buildMountain(int index, BezierMesh& mesh);

    // The ship's position at a time in seconds of the scene.
    static void shipPosition(double seconds, double out[3]);

private:
    bool mountains(Forge& forge);
    bool shipPath(Forge& forge);
    bool cameraPath(Forge& forge);
    bool birdPath(Forge& forge);
    bool birds(Forge& forge);
    bool pictures(Forge& forge);
};
