// The planet ahead: a lit, textured sphere turning slowly under its own turning clouds, with a glowing atmosphere.
#pragma once

#include "math/Vector3.h"
#include "runtime/Effect.h"

#include <vector>

class Camera;
class Texture;

class Planet : public Effect {
public:
    static const int SLICES = 48;
    static const int STACKS = 24;
    // Degrees a second the ground and the clouds turn.
    static constexpr float SPIN = 1.2f;
    static constexpr float CLOUD_SPIN = 1.9f;
    // The axis leans this far from the vertical.
    static constexpr float TILT = 18.0f;

    // `scene` names the owner in the messages about missing pictures.
    Planet(short layer, const EffectTimer& timer, const char* scene = "Planet");
    ~Planet() override;
    Planet(const Planet&) = delete;
    Planet& operator=(const Planet&) = delete;

    // Pictures and the sphere's arrays; the sphere is drawn even without its pictures.
    void initiate() override;
    void shutdown() override;
    void update(float seconds) override;
    // Through the active camera, which the atmosphere always faces; nothing when out of its view.
    void display() override;

    // Gives back the pictures, for the last scene that shows the planet; initiate reads them again.
    static void releasePictures();

    void place(const Vector3& centre, float radius);
    const Vector3& getCentre() const { return centre; }
    float getRadius() const { return radius; }
    float getTurn() const { return turn; }
    bool hasSurface() const { return surface != nullptr; }
    // What the sphere is made of: (SLICES + 1) × (STACKS + 1) points.
    int getVertexCount() const { return static_cast<int>(points.size() / 3); }

    // How far the atmosphere's picture reaches beyond the planet's edge, as a share of its radius.
    static constexpr float HALO_EDGE = 0.8f;

private:
    void makeSphere();
    void drawSphere(Texture* texture, float scale, float spin) const;
    void drawHalo(const Camera& camera) const;

    const char* scene;
    Vector3 centre;
    float radius;
    float turn;
    float cloudTurn;
    Texture* surface;
    Texture* clouds;
    Texture* halo;
    std::vector<float> points;
    std::vector<float> normals;
    std::vector<float> texCoords;
    std::vector<unsigned short> indices;
    // Cosine and sine round the atmosphere's ring.
    std::vector<float> ring;
};
