// The street's life. Traffic is a pure function of time: every car rides a slot of its lane at one speed, so it can
// be placed at any moment without stepping, and slots the camera's route would cut through are left empty. Every
// light is added to the picture without writing depth, fogged towards black so it fades with distance.
#include "effects/OneWayStreet.h"

#include "effects/Dice.h"
#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"

#include "scene/Camera.h"
#include "scene/Face.h"
#include "scene/FaceArray.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

using namespace CityLayout;

// A slot is kept clear while the camera crosses within this distance of it along its lane, in the
// seconds either side of passing a crossing.
const double CLEAR_REACH = 12.0;
const double CLEAR_SECONDS = 0.6;

const int PAINTS = 8;
// Night takes the colour out of paint: dark tones, a few bright ones, taxis.
const Color PAINT_COLOURS[PAINTS] = {
    Color(0.42f, 0.42f, 0.45f, 1.0f), Color(0.22f, 0.23f, 0.26f, 1.0f), Color(0.05f, 0.05f, 0.06f, 1.0f),
    Color(0.45f, 0.04f, 0.04f, 1.0f), Color(0.06f, 0.12f, 0.4f, 1.0f),  Color(0.75f, 0.55f, 0.06f, 1.0f),
    Color(0.07f, 0.22f, 0.13f, 1.0f), Color(0.12f, 0.12f, 0.14f, 1.0f),
};
const Color SODIUM(1.0f, 0.6f, 0.26f, 1.0f);
const Color LED(0.7f, 0.82f, 1.0f, 1.0f);
const Color HEADLIGHT(1.0f, 0.93f, 0.78f, 1.0f);
const Color TAIL_LIGHT(1.0f, 0.08f, 0.04f, 1.0f);

const float LAMP_GLOW = 1.1f;
const float HEAD_GLOW = 0.8f;
// The wide, faint bloom round a headlight seen head on.
const float HEAD_BLOOM = 1.8f;
const float TAIL_GLOW = 0.38f;
const float POOL_RADIUS = 5.5f;
const float POOL_HEIGHT = 0.17f;
const float WASH_WIDTH = 5.5f;
const float WASH_HEIGHT = 4.5f;
const float BEAM_NEAR = 2.0f;
const float BEAM_FAR = 17.0f;
// How far each kind of light is drawn: beyond, the fog has all but swallowed it.
const float SIGN_SEEN = 150.0f;
const float POOL_SEEN = 110.0f;
const float WASH_SEEN = 70.0f;
const float BEAM_SEEN = 70.0f;
const float HALO_SEEN = 90.0f;
const float TRAIL_SEEN = 120.0f;
const float SIGN_HALO = 1.8f;
const float REFLECTION_HEIGHT = 0.18f;
const float REFLECTION_DISTANCE = 90.0f;
const float REFLECTION_EYE = 6.0f;

double chance(int a, int b, uint32_t seed)
{
    return Dice::unit(a, b, seed);
}

Vector3 toVector(double x, double y, double z)
{
    return Vector3(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
}

void colour(const Color& c, float k)
{
    glColor4f(c.r * k, c.g * k, c.b * k, 1.0f);
}

// A quad centred on c spanned by two unit vectors, with the picture's rectangle (v from the top) on it.
void quad(const Vector3& c, const Vector3& right, const Vector3& up, float halfWidth, float halfHeight, float u0,
          float v0, float u1, float v1)
{
    const Vector3 r = right * halfWidth;
    const Vector3 h = up * halfHeight;
    const Vector3 corners[4] = {c - r - h, c + r - h, c + r + h, c - r + h};
    const float us[4] = {u0, u1, u1, u0};
    const float vs[4] = {v1, v1, v0, v0};
    for (int k = 0; k < 4; ++k) {
        glTexCoord2f(us[k], vs[k]);
        glVertex3f(corners[k].x, corners[k].y, corners[k].z);
    }
}

// The lights' looks, added to the picture.
struct LightLook {
    const char* material;
    TextureFile picture;
};
const LightLook LIGHT_LOOKS[] = {
    {"CityGlow", SharedLayout::PARTICLE},
    {"CityTrail", TRAIL},
    {"CityPool", POOL},
    {"CityBeam", BEAM},
    {"CityNeon", NEON},
};
const int LIGHT_KINDS = static_cast<int>(sizeof LIGHT_LOOKS / sizeof LIGHT_LOOKS[0]);

Vector3 lampHead(const Lamp& l)
{
    return toVector(l.x + l.towardRoadX * LAMP_REACH, LAMP_HEIGHT - 0.2, l.z + l.towardRoadZ * LAMP_REACH);
}

const Color& lampColour(int k)
{
    return chance(k, 3, 0x1a3bu) < 0.8 ? SODIUM : LED;
}

}  // namespace

OneWayStreet::Lane OneWayStreet::lane(int index)
{
    const bool alongX = index < 2 * STREETS;
    const int rest = alongX ? index : index - 2 * STREETS;
    const int street = rest / 2;
    const double side = rest % 2 ? 1.0 : -1.0;
    const int direction = alongX ? xStreetDirection(street) : zStreetDirection(street);
    return Lane{alongX, street, street * PITCH + side * LANE_OFFSET, direction};
}

double OneWayStreet::along(int laneIndex, int slot, double t)
{
    const Lane l = lane(laneIndex);
    // The z streets' cars are half a slot behind the x streets': never at a crossing together.
    const double phase = l.alongX ? 0.0 : SLOT * 0.5;
    double u = std::fmod(phase + slot * SLOT + CAR_SPEED * t, LANE_LENGTH);
    if (u < 0.0)
        u += LANE_LENGTH;
    return l.direction > 0 ? LANE_START + u : LANE_START + LANE_LENGTH - u;
}

Vector3 OneWayStreet::carPosition(const Car& car, double t, Vector3* heading)
{
    const Lane l = lane(car.lane);
    const double a = along(car.lane, car.slot, t);
    if (heading)
        *heading = l.alongX ? Vector3(static_cast<float>(l.direction), 0.0f, 0.0f)
                            : Vector3(0.0f, 0.0f, static_cast<float>(l.direction));
    return l.alongX ? toVector(a, 0.0, l.across) : toVector(l.across, 0.0, a);
}

OneWayStreet::OneWayStreet()
    : time(0.0), darkReach(-1.0f), drawnCars(0), drawnLights(0), car(nullptr), paint(nullptr), glow(nullptr),
      trail(nullptr), pool(nullptr), beam(nullptr), neon(nullptr), tried(0)
{
    planTraffic();
    planSigns();
}

OneWayStreet::~OneWayStreet()
{
    release();
}

void OneWayStreet::planTraffic()
{
    for (int l = 0; l < LANES; ++l) {
        const Lane info = lane(l);
        for (int slot = 0; slot < SLOTS; ++slot) {
            if (chance(l, slot, 0xca25u) >= DENSITY)
                continue;
            bool clear = true;
            for (int k = 0; k < ROUTE_NODES && clear; ++k)
                clear = !inTheWay(info, l, slot, k);
            if (clear)
                cars.push_back(Car{l, slot, static_cast<int>(Dice::hash(l, slot, 0x9a17u) % PAINTS)});
        }
    }
}

bool OneWayStreet::inTheWay(const Lane& info, int laneIndex, int slot, int node)
{
    // The camera runs down the middle of its own street, between the lanes; it cuts across the
    // lanes of the street it crosses, and of both streets where it turns.
    const Node& here = ROUTE[node];
    const bool onX = info.alongX;
    if (info.street != (onX ? here.j : here.i))
        return false;
    const Node& before = ROUTE[node > 0 ? node - 1 : node + 1];
    const Node& after = ROUTE[node + 1 < ROUTE_NODES ? node + 1 : node - 1];
    const bool cameraAlongX = before.j == here.j;
    const bool turning = (before.j == here.j) != (after.j == here.j);
    if (!turning && cameraAlongX == onX)
        return false;
    const double crossing = (onX ? here.i : here.j) * PITCH;
    double gap = std::fmod(along(laneIndex, slot, node * BAR) - crossing, LANE_LENGTH);
    if (gap > LANE_LENGTH * 0.5)
        gap -= LANE_LENGTH;
    if (gap < -LANE_LENGTH * 0.5)
        gap += LANE_LENGTH;
    return std::fabs(gap) < CLEAR_REACH + CAR_SPEED * CLEAR_SECONDS;
}

void OneWayStreet::planSigns()
{
    // Each block side on a street carries none, one or two signs; a side's wall runs from `start` along
    // `along` at the block's edge, facing `out`.
    for (int bx = FIRST_BLOCK; bx <= LAST_BLOCK; ++bx) {
        for (int bz = FIRST_BLOCK; bz <= LAST_BLOCK; ++bz) {
            const double x0 = bx * PITCH + BLOCK_EDGE;
            const double z0 = bz * PITCH + BLOCK_EDGE;
            const double x1 = (bx + 1) * PITCH - BLOCK_EDGE;
            const double z1 = (bz + 1) * PITCH - BLOCK_EDGE;
            const struct {
                int street;
                Vector3 start;
                Vector3 along;
                Vector3 out;
            } sides[4] = {
                {bz + 1, toVector(x0, 0.0, z1), Vector3(1, 0, 0), Vector3(0, 0, 1)},
                {bx + 1, toVector(x1, 0.0, z0), Vector3(0, 0, 1), Vector3(1, 0, 0)},
                {bz, toVector(x0, 0.0, z0), Vector3(1, 0, 0), Vector3(0, 0, -1)},
                {bx, toVector(x0, 0.0, z0), Vector3(0, 0, 1), Vector3(-1, 0, 0)},
            };
            const float length = static_cast<float>(x1 - x0);
            for (int s = 0; s < 4; ++s) {
                if (sides[s].street < 0 || sides[s].street >= STREETS)
                    continue;
                // A number of its own for every block side, to draw its chances with.
                const int block = ((bx - FIRST_BLOCK) * BLOCKS + bz - FIRST_BLOCK) * 4 + s;
                const double r = chance(block, 0, 0x5161u);
                const int count = r < 0.25 ? 0 : r < 0.7 ? 1 : 2;
                for (int n = 0; n < count; ++n) {
                    Sign sign{};
                    sign.blade = chance(block, n + 1, 0x5162u) < 0.55;
                    // The two signs of a side keep to its two halves.
                    const float at =
                        length * (0.5f * n + 0.08f + 0.34f * static_cast<float>(chance(block, n + 1, 0x5163u)));
                    sign.out = sides[s].out;
                    sign.along = sides[s].along;
                    sign.brightness = 0.8f + 0.2f * static_cast<float>(chance(block, n + 1, 0x5164u));
                    const double b = chance(block, n + 1, 0x5165u);
                    sign.behaviour = b < 0.15 ? FAILING : b < 0.55 ? PULSING : STEADY;
                    const Vector3 foot = sides[s].start + sides[s].along * at;
                    if (sign.blade) {
                        sign.picture = static_cast<int>(Dice::hash(block, n, 0x5166u) % BLADE_SIGNS);
                        sign.width = 1.4f;
                        sign.height = 4.2f;
                        const float bottom = 4.9f + 2.5f * static_cast<float>(chance(block, n + 1, 0x5167u));
                        sign.centre = foot + sign.out * (0.2f + sign.width * 0.5f) +
                                      Vector3(0.0f, bottom + sign.height * 0.5f, 0.0f);
                    } else {
                        sign.picture = static_cast<int>(Dice::hash(block, n, 0x5168u) % BANNER_SIGNS);
                        sign.width = 5.6f;
                        sign.height = 0.7f;
                        sign.centre =
                            foot + sign.out * 0.06f + Vector3(0.0f, static_cast<float>(SHOP_HEIGHT) + 0.35f, 0.0f);
                    }
                    signs.push_back(sign);
                }
            }
        }
    }
}

bool OneWayStreet::triedAll() const
{
    return tried > LIGHT_KINDS;
}

bool OneWayStreet::loadNext(const char* scene)
{
    if (triedAll())
        return false;
    const int piece = tried++;
    if (piece > 0) {
        TextureMaterial** const materials[] = {&glow, &trail, &pool, &beam, &neon};
        static_assert(sizeof materials / sizeof materials[0] == LIGHT_KINDS, "a material for every look");
        const LightLook& look = LIGHT_LOOKS[piece - 1];
        SceneKit::loadTextureAhead(look.picture);
        *materials[piece - 1] = SceneKit::overlayOrReport(scene, look.material, look.picture, Material::blendAdd);
        return true;
    }
    car = SceneKit::loadOrReport<Mesh>(scene, CAR_MESH);
    FaceArray* faces = car ? car->getFaces() : nullptr;
    for (int i = 0; faces && i < faces->getNumFaces(); ++i) {
        Material* m = (*faces)[i].material;
        if (m && m->getName() && std::strcmp(m->getName(), CAR_PAINT) == 0)
            paint = m;
    }
    return true;
}

void OneWayStreet::load(const char* scene)
{
    while (loadNext(scene)) {
    }
}

void OneWayStreet::releasePictures()
{
    SceneKit::releaseTextures({TRAIL, POOL, BEAM, NEON});
}

void OneWayStreet::release()
{
    delete car;
    car = nullptr;
    // The car's materials belong to the registry, as do the lights'.
    paint = nullptr;
    glow = nullptr;
    trail = nullptr;
    pool = nullptr;
    beam = nullptr;
    neon = nullptr;
    tried = 0;
}

void OneWayStreet::update(double t, const Vector3& cameraTravel)
{
    time = t;
    travel = cameraTravel;
}

void OneWayStreet::setDarkness(const Vector3& centre, float reach)
{
    darkCentre = centre;
    darkReach = reach;
}

bool OneWayStreet::lit(const Vector3& p) const
{
    if (darkReach < 0.0f)
        return true;
    const Vector3 d = p - darkCentre;
    return d.x * d.x + d.z * d.z > darkReach * darkReach;
}

float OneWayStreet::pulse() const
{
    const double beat = std::fmod(time, BEAT) / BEAT;
    return static_cast<float>(std::exp(-5.0 * beat));
}

float OneWayStreet::signLevel(size_t k) const
{
    const Sign& s = signs[k];
    // Every sign flares on the crash that opens each four bars.
    const float flare = 1.0f + 0.5f * static_cast<float>(std::exp(-3.0 * std::fmod(time, 4.0 * BAR)));
    if (s.behaviour == PULSING)
        return s.brightness * flare * (0.65f + 0.35f * pulse());
    const int sixteenth = static_cast<int>(time * 8.0);
    if (s.behaviour == FAILING && chance(sixteenth, static_cast<int>(k), 0xf1c4u) < 0.3)
        return s.brightness * 0.12f;
    return s.brightness * flare;
}

Color OneWayStreet::signColour(const Sign& s)
{
    const float* c = s.blade ? BLADE_COLOURS[s.picture] : BANNER_COLOURS[s.picture];
    return Color(c[0], c[1], c[2], 1.0f);
}

bool OneWayStreet::seen(const Frustum& frustum, const Vector3& eye, const Vector3& p, float reach, float distance) const
{
    const Vector3 d = p - eye;
    return lit(p) && d.dot(d) < distance * distance && frustum.isSphereInside(p, reach);
}

void OneWayStreet::drawCars(const Camera& camera)
{
    drawnCars = 0;
    if (!car || !car->preLoad(Mesh::drawShaded))
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    for (const Car& c : cars) {
        Vector3 heading;
        const Vector3 p = carPosition(c, time, &heading);
        const Vector3 d = p - eye;
        if (d.x * d.x + d.z * d.z > BODY_DISTANCE * BODY_DISTANCE || !frustum.isSphereInside(p, 3.0f))
            continue;
        if (paint) {
            const Color& body = PAINT_COLOURS[c.paint];
            paint->setDiffuse(body);
            paint->setAmbient(Color(body.r * 0.6f, body.g * 0.6f, body.b * 0.6f, 1.0f));
        }
        glPushMatrix();
        glTranslatef(p.x, p.y, p.z);
        // The mesh's nose is +z.
        glRotatef(std::atan2(heading.x, heading.z) * 57.29578f, 0.0f, 1.0f, 0.0f);
        car->drawLoaded();
        glPopMatrix();
        ++drawnCars;
    }
    car->postUnload(Mesh::drawShaded);
}

void OneWayStreet::drawLights(const Camera& camera)
{
    drawnLights = 0;
    // Lights add: fogged towards black they fade with distance instead of turning the fog's colour.
    GLfloat fog[4];
    glGetFloatv(GL_FOG_COLOR, fog);
    const GLfloat black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    glFogfv(GL_FOG_COLOR, black);
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    drawGround(camera);
    drawNeon(camera);
    drawGlows(camera);
    drawTrails(camera);
    lights->turnLightingOn();
    glFogfv(GL_FOG_COLOR, fog);
}

void OneWayStreet::drawGround(const Camera& camera)
{
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    const Vector3 up(0.0f, 1.0f, 0.0f);
    if (pool) {
        pool->bind();
        glBegin(GL_QUADS);
        for (int k = 0; k < LAMP_COUNT; ++k) {
            const Lamp l = lamp(k);
            const Vector3 head = lampHead(l);
            const Vector3 ground(head.x, POOL_HEIGHT, head.z);
            if (!seen(frustum, eye, ground, POOL_RADIUS + 3.0f, POOL_SEEN))
                continue;
            const Color& c = lampColour(k);
            // A pool on the ground below, and a wash up the facade behind the pole.
            colour(c, 0.3f);
            quad(ground, Vector3(1, 0, 0), Vector3(0, 0, -1), POOL_RADIUS, POOL_RADIUS, 0.0f, 0.0f, 1.0f, 1.0f);
            const Vector3 toward = toVector(l.towardRoadX, 0.0, l.towardRoadZ);
            const Vector3 wall =
                toVector(l.x, WASH_HEIGHT * 0.8, l.z) - toward * static_cast<float>(BLOCK_EDGE - LAMP_SIDE - 0.03);
            ++drawnLights;
            if ((wall - eye).length() > WASH_SEEN)
                continue;
            colour(c, 0.16f);
            quad(wall, up.cross(toward), up, WASH_WIDTH, WASH_HEIGHT, 0.0f, 0.0f, 1.0f, 1.0f);
            ++drawnLights;
        }
        glEnd();
        pool->unbind();
    }
    if (!beam)
        return;
    beam->bind();
    glBegin(GL_QUADS);
    for (const Car& c : cars) {
        Vector3 heading;
        const Vector3 p = carPosition(c, time, &heading);
        const Vector3 centre = p + heading * (0.5f * (BEAM_NEAR + BEAM_FAR)) + Vector3(0.0f, 0.05f, 0.0f);
        if (!lit(p) || (p - eye).length() > BEAM_SEEN || !frustum.isSphereInside(centre, BEAM_FAR))
            continue;
        // The picture has the car at its bottom edge and the light spreading up it.
        const Vector3 side = up.cross(heading) * -1.0f;
        colour(HEADLIGHT, 0.35f);
        quad(centre, side, heading, 3.5f, 0.5f * (BEAM_FAR - BEAM_NEAR), 0.0f, 0.0f, 1.0f, 1.0f);
        ++drawnLights;
    }
    glEnd();
    beam->unbind();
}

void OneWayStreet::drawNeon(const Camera& camera)
{
    if (!neon)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    const Vector3 up(0.0f, 1.0f, 0.0f);
    neon->bind();
    glBegin(GL_QUADS);
    for (size_t k = 0; k < signs.size(); ++k) {
        const Sign& s = signs[k];
        if (!lit(s.centre) || (s.centre - eye).length() > SIGN_SEEN || !frustum.isSphereInside(s.centre, s.height))
            continue;
        colour(Color(1.0f, 1.0f, 1.0f, 1.0f), signLevel(k));
        float u0, v0, u1, v1;
        if (s.blade) {
            u0 = static_cast<float>(s.picture * BLADE_WIDTH) / NEON_SIZE;
            u1 = u0 + static_cast<float>(BLADE_WIDTH) / NEON_SIZE;
            v0 = 0.0f;
            v1 = static_cast<float>(BLADE_HEIGHT) / NEON_SIZE;
        } else {
            u0 = static_cast<float>(s.picture % 2 * BANNER_WIDTH) / NEON_SIZE;
            u1 = u0 + static_cast<float>(BANNER_WIDTH) / NEON_SIZE;
            v0 = static_cast<float>(BLADE_HEIGHT + s.picture / 2 * BANNER_HEIGHT) / NEON_SIZE;
            v1 = v0 + static_cast<float>(BANNER_HEIGHT) / NEON_SIZE;
        }
        // Each face reads the right way round from its own side: its right is the facing way crossed with up.
        const float hw = s.width * 0.5f;
        const float hh = s.height * 0.5f;
        if (s.blade) {
            quad(s.centre + s.along * 0.03f, (s.along * -1.0f).cross(up), up, hw, hh, u0, v0, u1, v1);
            quad(s.centre - s.along * 0.03f, s.along.cross(up), up, hw, hh, u0, v0, u1, v1);
        } else {
            quad(s.centre, (s.out * -1.0f).cross(up), up, hw, hh, u0, v0, u1, v1);
        }
        ++drawnLights;
    }
    glEnd();
    neon->unbind();
}

void OneWayStreet::drawGlows(const Camera& camera)
{
    if (!glow)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    const Vector3 right = camera.getU();
    const Vector3 up = camera.getV();
    // Close to the eye a glow would fill the screen: it fades out there instead.
    const auto near = [&](const Vector3& p) {
        const float d = (p - eye).length();
        return d < 1.5f ? 0.0f : d > 4.0f ? 1.0f : (d - 1.5f) / 2.5f;
    };
    glow->bind();
    glBegin(GL_QUADS);
    for (int k = 0; k < LAMP_COUNT; ++k) {
        const Vector3 head = lampHead(lamp(k));
        if (!lit(head) || (head - eye).length() > LIGHT_DISTANCE || !frustum.isSphereInside(head, LAMP_GLOW))
            continue;
        colour(lampColour(k), 0.9f * near(head));
        quad(head, right, up, LAMP_GLOW, LAMP_GLOW, 0.0f, 0.0f, 1.0f, 1.0f);
        ++drawnLights;
    }
    for (const Car& c : cars) {
        Vector3 heading;
        const Vector3 p = carPosition(c, time, &heading);
        if (!seen(frustum, eye, p, 3.0f, LIGHT_DISTANCE))
            continue;
        const Vector3 side = Vector3(0.0f, 1.0f, 0.0f).cross(heading) * static_cast<float>(LIGHT_SPREAD);
        const Vector3 lift(0.0f, static_cast<float>(LIGHT_HEIGHT), 0.0f);
        // Just off the body, so it does not hide half of each glow.
        const Vector3 front = heading * static_cast<float>(CAR_LENGTH * 0.5 + 0.2);
        for (int s = -1; s <= 1; s += 2) {
            const Vector3 headlight = p + front + side * static_cast<float>(s) + lift;
            const Vector3 tail = p - front + side * static_cast<float>(s) + lift;
            colour(HEADLIGHT, near(headlight));
            quad(headlight, right, up, HEAD_GLOW, HEAD_GLOW, 0.0f, 0.0f, 1.0f, 1.0f);
            // Brighter the more it points at the eye.
            const Vector3 look = eye - headlight;
            const float facing = std::max(0.0f, heading.dot(look) / (look.length() + 1e-3f));
            if (facing > 0.3f && look.length() < HALO_SEEN) {
                colour(HEADLIGHT, 0.22f * facing * facing * near(headlight));
                quad(headlight, right, up, HEAD_BLOOM, HEAD_BLOOM, 0.0f, 0.0f, 1.0f, 1.0f);
            }
            colour(TAIL_LIGHT, near(tail));
            quad(tail, right, up, TAIL_GLOW, TAIL_GLOW, 0.0f, 0.0f, 1.0f, 1.0f);
        }
        drawnLights += 4;
    }
    // The air round every neon sign glows in its colour.
    for (size_t k = 0; k < signs.size(); ++k) {
        const Sign& s = signs[k];
        if (!seen(frustum, eye, s.centre, SIGN_HALO, HALO_SEEN))
            continue;
        colour(signColour(s), 0.3f * signLevel(k) * near(s.centre));
        quad(s.centre + s.out * 0.5f, right, up, SIGN_HALO, SIGN_HALO, 0.0f, 0.0f, 1.0f, 1.0f);
        ++drawnLights;
    }
    glEnd();
    glow->unbind();
}

void OneWayStreet::drawReflections(const Camera& camera)
{
    // The road is wet: each light near the camera lies on it as a streak running from below the light
    // towards the eye.
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    // Seen from high up the road no longer mirrors the lights.
    const float low = 1.0f - std::min(1.0f, std::max(0.0f, (eye.y - REFLECTION_EYE) / REFLECTION_EYE));
    if (low <= 0.0f)
        return;
    const auto reflect = [&](const Vector3& light, const Color& c, float width, float k) {
        const Vector3 base(light.x, REFLECTION_HEIGHT, light.z);
        Vector3 toward(eye.x - base.x, 0.0f, eye.z - base.z);
        const float distance = toward.length();
        if (distance < 1.0f)
            return;
        toward = toward * (1.0f / distance);
        const float length = std::min(light.y * 1.8f, distance * 0.8f);
        const Vector3 side(-toward.z * width, 0.0f, toward.x * width);
        const Vector3 end = base + toward * length;
        colour(c, k * low);
        glTexCoord2f(0.0f, 1.0f);
        glVertex3f(base.x - side.x, base.y, base.z - side.z);
        glTexCoord2f(1.0f, 1.0f);
        glVertex3f(end.x - side.x, end.y, end.z - side.z);
        glTexCoord2f(1.0f, 0.0f);
        glVertex3f(end.x + side.x, end.y, end.z + side.z);
        glTexCoord2f(0.0f, 0.0f);
        glVertex3f(base.x + side.x, base.y, base.z + side.z);
        ++drawnLights;
    };
    for (int k = 0; k < LAMP_COUNT; ++k) {
        const Vector3 head = lampHead(lamp(k));
        if (seen(frustum, eye, Vector3(head.x, 0.0f, head.z), head.y * 2.0f, REFLECTION_DISTANCE))
            reflect(head, lampColour(k), 0.5f, 0.4f);
    }
    for (size_t k = 0; k < signs.size(); ++k) {
        const Sign& s = signs[k];
        if (s.blade &&
            seen(frustum, eye, Vector3(s.centre.x, 0.0f, s.centre.z), s.centre.y * 2.0f, REFLECTION_DISTANCE))
            reflect(s.centre, signColour(s), 0.6f, 0.55f * signLevel(k));
    }
}

void OneWayStreet::drawTrails(const Camera& camera)
{
    if (!trail)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    // Where a light was a moment ago, seen from where the camera was then: a streak from its head back there.
    const auto streak = [&](const Vector3& head, const Vector3& was, const Color& c, float width, float k) {
        const Vector3 tail = was + travel;
        const Vector3 axis = tail - head;
        if (axis.length() < 0.4f)
            return;
        Vector3 side = axis.cross(eye - head);
        const float length = side.length();
        if (length < 1e-4f)
            return;
        side = side * (width / length);
        colour(c, k);
        glTexCoord2f(0.0f, 1.0f);
        glVertex3f(head.x - side.x, head.y - side.y, head.z - side.z);
        glTexCoord2f(1.0f, 1.0f);
        glVertex3f(tail.x - side.x, tail.y - side.y, tail.z - side.z);
        glTexCoord2f(1.0f, 0.0f);
        glVertex3f(tail.x + side.x, tail.y + side.y, tail.z + side.z);
        glTexCoord2f(0.0f, 0.0f);
        glVertex3f(head.x + side.x, head.y + side.y, head.z + side.z);
        ++drawnLights;
    };
    glDisable(GL_CULL_FACE);
    trail->bind();
    glBegin(GL_QUADS);
    drawReflections(camera);
    for (int k = 0; k < LAMP_COUNT; ++k) {
        const Vector3 head = lampHead(lamp(k));
        if (!seen(frustum, eye, head, travel.length() + 1.0f, TRAIL_SEEN))
            continue;
        streak(head, head, lampColour(k), 0.35f, 0.8f);
    }
    const double before = time - TRAIL_SECONDS;
    for (const Car& c : cars) {
        Vector3 heading;
        Vector3 wasHeading;
        const Vector3 p = carPosition(c, time, &heading);
        if (!seen(frustum, eye, p, 6.0f + travel.length(), TRAIL_SEEN))
            continue;
        const Vector3 q = carPosition(c, before, &wasHeading);
        // A car that came round the end of its lane has no trail this moment.
        if ((p - q).length() > 10.0f)
            continue;
        const Vector3 side = Vector3(0.0f, 1.0f, 0.0f).cross(heading) * static_cast<float>(LIGHT_SPREAD);
        const Vector3 lift(0.0f, static_cast<float>(LIGHT_HEIGHT), 0.0f);
        const Vector3 front = heading * static_cast<float>(CAR_LENGTH * 0.5);
        for (int s = -1; s <= 1; s += 2) {
            const Vector3 offset = side * static_cast<float>(s) + lift;
            streak(p + front + offset, q + front + offset, HEADLIGHT, 0.22f, 0.7f);
            streak(p - front + offset, q - front + offset, TAIL_LIGHT, 0.18f, 0.9f);
        }
    }
    glEnd();
    trail->unbind();
    glEnable(GL_CULL_FACE);
}
