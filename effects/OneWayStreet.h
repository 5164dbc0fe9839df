// The city's street life: traffic on the one-way lanes with head and tail lights, street lamps with the light they
// throw, neon signs on the facades, and the trails every light leaves at speed.
#pragma once

#include "effects/CityLayout.h"
#include "math/Color.h"
#include "math/Vector3.h"

#include <vector>

class Camera;
class Frustum;
class Mesh;
class Material;
class TextureMaterial;

class OneWayStreet {
public:
    // Two lanes to a street, both one way: the x streets' lanes first, then the z streets'.
    static constexpr int LANES = 4 * CityLayout::STREETS;
    // The share of slots that carry a car.
    static constexpr double DENSITY = 0.62;
    // How long a light's trail lasts on screen, in seconds.
    static constexpr float TRAIL_SECONDS = 0.2f;
    // Cars are drawn as bodies this near, as lights alone up to the fog's end.
    static constexpr float BODY_DISTANCE = 110.0f;
    static constexpr float LIGHT_DISTANCE = 230.0f;

    struct Lane {
        bool alongX;
        int street;
        // The lane's line across the street, and which way along it the traffic goes (+1 or -1).
        double across;
        int direction;
    };
    struct Car {
        int lane;
        int slot;
        int paint;
    };
    // A neon sign on a facade: a blade standing out from the wall, or a banner flat on it.
    struct Sign {
        bool blade;
        int picture;
        Vector3 centre;
        // Out of the wall towards the street, and along the wall.
        Vector3 out;
        Vector3 along;
        float width;
        float height;
        float brightness;
        // 0 steady, 1 pulsing with the beat, 2 a failing tube.
        int behaviour;
    };
    enum { STEADY, PULSING, FAILING };

    static Lane lane(int index);
    // Distance along the lane's street at which a car of that lane and slot is, t seconds into the city.
    static double along(int lane, int slot, double t);
    // The car's centre on the road t seconds into the city, and the unit way it faces.
    static Vector3 carPosition(const Car& car, double t, Vector3* heading = nullptr);

    // Plans the traffic and the signs; nothing of GL.
    OneWayStreet();
    ~OneWayStreet();
    OneWayStreet(const OneWayStreet&) = delete;
    OneWayStreet& operator=(const OneWayStreet&) = delete;

    const std::vector<Car>& getCars() const { return cars; }
    const std::vector<Sign>& getSigns() const { return signs; }

    // The car and the lights' looks; each missing piece is reported once in the scene's name. loadNext loads
    // one of them ahead of the scene's start, keeping the texture state of the scene drawing meanwhile; false
    // when every one had been tried. load loads what is left.
    bool loadNext(const char* scene);
    bool triedAll() const;
    void load(const char* scene);
    void release();
    // Gives back the lights' own pictures (the glow's is shared), for the last scene in the city; load reads
    // them again.
    static void releasePictures();

    // The street's clock (seconds into the city) and how far the camera moved over the last trail time.
    void update(double time, const Vector3& cameraTravel);
    // Lamps, signs and car lights go out inside this distance from a point (the blast's shock): a
    // negative reach leaves them all lit.
    void setDarkness(const Vector3& centre, float reach);
    void drawCars(const Camera& camera);
    // The lights over the block: pools and washes, beams, neon, glows and trails, added to the picture.
    void drawLights(const Camera& camera);

    // The glow of the lamps and car lights, or null without its picture.
    TextureMaterial* getGlow() const { return glow; }
    int getDrawnCars() const { return drawnCars; }
    int getDrawnLights() const { return drawnLights; }

private:
    void planTraffic();
    // Whether the slot's car would be near the crossing of route node `node` as the camera passes it.
    static bool inTheWay(const Lane& info, int laneIndex, int slot, int node);
    void planSigns();
    bool lit(const Vector3& p) const;
    // Lit, nearer than `distance` and in the frustum with that reach round it.
    bool seen(const Frustum& frustum, const Vector3& eye, const Vector3& p, float reach, float distance) const;
    // How bright sign k burns now.
    float signLevel(size_t k) const;
    static Color signColour(const Sign& sign);
    // The beat's pulse now: 1 on the kick, fading before the next.
    float pulse() const;
    void drawGround(const Camera& camera);
    void drawNeon(const Camera& camera);
    void drawGlows(const Camera& camera);
    void drawTrails(const Camera& camera);
    // Inside the trails' begin and end: the lights' streaks on the wet road.
    void drawReflections(const Camera& camera);

    std::vector<Car> cars;
    std::vector<Sign> signs;
    double time;
    Vector3 travel;
    Vector3 darkCentre;
    float darkReach;
    int drawnCars;
    int drawnLights;
    Mesh* car;
    Material* paint;
    TextureMaterial* glow;
    TextureMaterial* trail;
    TextureMaterial* pool;
    TextureMaterial* beam;
    TextureMaterial* neon;
    // Pieces loaded so far: the car, then the lights' pictures.
    int tried;
};
