// The sky of the space scenes: a nebula on two domes round the viewer and a field of stars in front of it.
#pragma once

#include <vector>

class Camera;
class Hemisphere;
class Texture;

class SpaceBackdrop {
public:
    static const int STAR_COUNT = 2600;
    // The brightest stars, drawn larger after the rest.
    static const int BRIGHT_STARS = 180;

    // `scene` names the scene in the messages about missing pictures.
    explicit SpaceBackdrop(const char* scene);
    ~SpaceBackdrop();
    SpaceBackdrop(const SpaceBackdrop&) = delete;
    SpaceBackdrop& operator=(const SpaceBackdrop&) = delete;

    // The pictures and the stars; a missing picture leaves its dome black.
    void load();
    void release();
    // Gives back the nebula's pictures, for the last scene under this sky; load reads them again.
    static void releasePictures();
    bool hasNebula() const { return upper && lower; }

    // Around the camera, beyond everything: drawn after the solid things, only where they left the
    // view open (depth is tested, never written).
    void draw(const Camera& camera) const;

    // Where star i lies on the unit sphere (the same sky every run).
    static void starAt(int i, float out[3], float& brightness);

private:
    void makeStars();

    const char* scene;
    Hemisphere* dome;
    Texture* upper;
    Texture* lower;
    std::vector<float> positions;
    std::vector<unsigned char> colours;
};
