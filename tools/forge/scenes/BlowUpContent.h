// The blow-up's content: the camera's rise over the city, the debris meshes, and the fire, smoke and shock pictures.
#pragma once

#include "ContentUnit.h"
#include "Image.h"
#include "MeshBuilder.h"

#include "effects/BlowUpLayout.h"

#include <vector>

class Forge;

class BlowUpContent : public ContentUnit {
public:
    static constexpr double FRAMES_PER_SECOND = 24.0;
    static const int KEY_STEP = 4;

    const char* name() const override { return "blowup"; }
    std::vector<ForgedFile> files() const override;
    bool build(Forge& forge) override;

    // Where the camera is and looks t seconds into the scene: it rises from the street the race ended
    // in until the crash, looking down it at ground zero, then drifts back and up with the smoke.
    static Vec3 cameraAt(double t);
    static Vec3 targetAt(double t);

    // A lump of wall, about two metres across, or a girder five metres long, centred on the origin.
    static void debris(MeshBuilder& mesh, int kind);

    static Image fire();
    static Image smoke();
    static Image shock();
};
