// The blast: clusters of fireballs bursting from ground zero and down the streets, a shock ring racing out over the
// city, debris flying with gravity and spin, and smoke rising and thinning. Everything is a function of the seconds
// since the blast, so any moment can be drawn without stepping through the ones before it.
#pragma once

#include "effects/BlowUpLayout.h"
#include "math/Color.h"
#include "math/Vector3.h"

#include <vector>

class Camera;
class Mesh;
class TextureMaterial;

class Kaboom {
public:
    static constexpr float GRAVITY = 9.81f;
    // The fastest any piece turns, in degrees a second.
    static constexpr float MAX_SPIN = 540.0f;
    // The shock ring's last reach and how quickly it slows, and how long the last of the smoke lasts.
    static constexpr float SHOCK_REACH = 340.0f;
    static constexpr float SHOCK_SLOWING = 1.2f;
    static constexpr float SMOKE_GONE = 7.8f;

    // A puff of fire or smoke: it leaves its origin at its start, slows as it spreads, grows, and dies.
    struct Puff {
        Vector3 origin;
        Vector3 velocity;
        float start;
        float life;
        float size;
        // How hard it rises (fire and smoke are light).
        float lift;
    };
    // A flying piece of a building.
    struct Piece {
        Vector3 origin;
        Vector3 velocity;
        Vector3 axis;
        float spin;
        float scale;
        int kind;
    };
    // One drawable moment of a puff.
    struct Sprite {
        Vector3 position;
        float size;
        Color colour;
    };

    // Plans the clusters, the pieces and the smoke round the centre; nothing of GL.
    explicit Kaboom(const Vector3& centre);
    ~Kaboom();
    Kaboom(const Kaboom&) = delete;
    Kaboom& operator=(const Kaboom&) = delete;

    // How far the shock ring has come t seconds after the blast (0 before it), and how bright it is.
    static float shockRadius(float t);
    static float shockStrength(float t);

    const Vector3& getCentre() const { return centre; }
    const std::vector<Puff>& getFire() const { return fire; }
    const std::vector<Puff>& getSmoke() const { return smoke; }
    const std::vector<Piece>& getPieces() const { return pieces; }
    // The cluster each fire puff belongs to: 0 is the fireball at the centre.
    int getCluster(size_t puff) const { return clusters[puff]; }

    // When piece i hits the ground, where it is t seconds after the blast, and how far it has turned.
    float landing(size_t i) const;
    Vector3 piecePosition(size_t i, float t) const;
    float pieceAngle(size_t i, float t) const;
    // A puff's look t seconds after the blast; false while it is not yet born or already gone.
    bool firePuff(size_t i, float t, Sprite& sprite) const;
    bool smokePuff(size_t i, float t, Sprite& sprite) const;

    // The debris meshes and the pictures; each missing piece is reported once in the scene's name. loadNext
    // loads one of them ahead of the scene's start, keeping the texture state of the scene drawing meanwhile;
    // false when every one had been tried. load loads what is left.
    bool loadNext(const char* scene);
    bool triedAll() const;
    void load(const char* scene);
    void release();
    // The flying pieces t seconds after the blast, lit; then the rest over everything lit: smoke, and the
    // fire and the shock shining through it.
    void drawPieces(const Camera& camera, float t);
    void draw(const Camera& camera, float t);

private:
    void planFire();
    void planSmoke();
    void planPieces();
    void drawFire(const Camera& camera, float t);
    void drawShock(float t);
    void drawSmoke(const Camera& camera, float t);

    Vector3 centre;
    std::vector<Puff> fire;
    std::vector<int> clusters;
    std::vector<Puff> smoke;
    std::vector<Piece> pieces;
    // Smoke sprites of the moment and the order they are drawn in, far to near; sized once.
    std::vector<Sprite> sprites;
    std::vector<int> order;
    std::vector<float> depths;
    Mesh* debris[BlowUpLayout::DEBRIS_KINDS];
    TextureMaterial* flame;
    TextureMaterial* fume;
    TextureMaterial* shock;
    // Pieces loaded so far: the debris, then the pictures.
    int tried;
};
