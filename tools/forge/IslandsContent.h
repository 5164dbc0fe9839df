// The islands scene's generated content: the six mountain .bez files and the camera, ship and bird paths.
#pragma once

class BezierMesh;
class Forge;

class IslandsContent {
public:
    // Writes data/3d/mountain{1,2,3,4,6,7}.bez, camera_islands.cam,
    // ship_island.cam and bird_island.cam; false if any failed.
    bool build(Forge& forge);

    // The ship's course: a wide arc round the islands, one key per second at 24 frames a second.
    static const int shipFramesPerSec = 24;
    static const int birdFramesPerSec = 12;
    // The scene lasts 33 seconds.
    static const int sceneSeconds = 33;

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
};
