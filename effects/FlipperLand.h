// The flipper land: balls bouncing over a heaving Bezier land, flippers throwing them on the beat, bumpers lighting up, a camera swinging round.
#pragma once

#include "effects/BezierAnim.h"
#include "effects/FlipperPlay.h"
#include "math/Vector3.h"
#include "runtime/Effect.h"
#include "scene/Hemisphere.h"

class Camera;
class Material;
class Mesh;
class TextureMaterial;

class FlipperLand : public Effect {
public:
    // The meshes, each drawn from a display list made when the scene starts.
    enum Piece { PADDLE, BUMPER, CAP, BALL, PIECE_COUNT };
    // Squares each land patch is cut into per side.
    static const int GRID = 8;

    FlipperLand(short layer, const EffectTimer& timer);
    ~FlipperLand() override;
    FlipperLand(const FlipperLand&) = delete;
    FlipperLand& operator=(const FlipperLand&) = delete;

    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    // The camera swinging round the play, t seconds into the scene: where it is and looks.
    static Vector3 cameraAt(float t);
    static Vector3 targetAt(float t);
    // Where the paddle of a station (side 0 or 1) is hinged, and the way it points along the ground.
    static void paddlePlace(int station, int side, Vector3& hinge, Vector3& along);

    const BezierAnim& getLand() const { return land; }
    const FlipperPlay& getPlay() const { return play; }
    const Mesh* getPiece(Piece piece) const { return meshes[piece]; }
    const TextureMaterial* getFieldMaterial() const { return fieldMaterial; }

private:
    void loadLand();
    void loadPieces();
    void loadMaterials();
    void loadCamera();
    void drawSky(const Camera& camera);
    void drawBumpers();
    void drawPaddles();
    void drawShadows();
    void drawBalls();
    void drawGlows(const Camera& camera);
    void release();

    BezierAnim land;
    FlipperPlay play;
    Hemisphere sky;
    Mesh* meshes[PIECE_COUNT];
    unsigned int lists[PIECE_COUNT];
    TextureMaterial* fieldMaterial;
    TextureMaterial* skyMaterial;
    TextureMaterial* shineMaterial;
    TextureMaterial* shadowMaterial;
    TextureMaterial* glowMaterial;
    Material* capMaterial;
};
