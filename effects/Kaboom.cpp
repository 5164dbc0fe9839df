// The blast. Fire adds light and is drawn without depth writes in any order; smoke darkens what is behind it, so
// its puffs are sorted far to near every frame into arrays sized when the blast is planned.
#include "effects/Kaboom.h"

#include "effects/CityLayout.h"
#include "effects/Dice.h"
#include "effects/SceneKit.h"

#include "scene/Camera.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

using namespace BlowUpLayout;

const int MAIN_PUFFS = 60;
// Fireballs burst down the four streets out of the crossing, two along each, later the further out.
const int STREET_CLUSTERS = 8;
const int STREET_PUFFS = 12;
const float STREET_REACH[2] = {50.0f, 115.0f};
const float BLAST_SPEED = 260.0f;
const int SMOKE_PUFFS = 48;
const int PIECES = 64;
// Smoke left behind a flying piece: puffs at these moments before now, while it is young.
const int TRAIL_PUFFS = 4;
const float TRAIL_STEP = 0.07f;
const float TRAIL_AGE = 2.5f;
const float FIRE_DRAG = 1.5f;
const float SMOKE_DRAG = 0.35f;
const Vector3 WIND(2.5f, 0.0f, 0.8f);
const float RING_HEIGHT = 0.6f;
const int RING_SEGMENTS = 72;
const float CORE_SECONDS = 1.2f;

const uint32_t FIRE_SEED = 0xf12eu;
const uint32_t SMOKE_SEED = 0x5303u;
const uint32_t PIECE_SEED = 0xdeb1u;

// The looks of fire, smoke and shock.
struct Look {
    const char* material;
    TextureFile picture;
    int blend;
};
const Look LOOKS[] = {
    {"BlastFire", FIRE, Material::blendAdd},
    {"BlastSmoke", SMOKE, Material::blendAlpha},
    {"BlastShock", SHOCK, Material::blendAdd},
};
const int LOOK_COUNT = static_cast<int>(sizeof LOOKS / sizeof LOOKS[0]);

// A unit vector from two draws: any direction with y at least `lowest`.
Vector3 direction(int a, uint32_t seed, float lowest)
{
    const float y = Dice::range(a, 1, seed, lowest, 1.0f);
    const float angle = Dice::range(a, 2, seed, 0.0f, 6.2831855f);
    const float flat = std::sqrt(std::max(0.0f, 1.0f - y * y));
    return Vector3(flat * std::cos(angle), y, flat * std::sin(angle));
}

float smoothstep(float a, float b, float x)
{
    const float t = std::min(1.0f, std::max(0.0f, (x - a) / (b - a)));
    return t * t * (3.0f - 2.0f * t);
}

Color mixed(const Color& a, const Color& b, float t)
{
    return Color(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0f);
}

// White-hot, then yellow, orange and red, cooling to nothing over a puff's life.
Color heat(float age)
{
    static const Color steps[5] = {Color(1.0f, 0.98f, 0.9f, 1.0f), Color(1.0f, 0.82f, 0.42f, 1.0f),
                                   Color(1.0f, 0.48f, 0.14f, 1.0f), Color(0.55f, 0.11f, 0.04f, 1.0f),
                                   Color(0.0f, 0.0f, 0.0f, 1.0f)};
    static const float at[5] = {0.0f, 0.1f, 0.35f, 0.7f, 1.0f};
    for (int k = 1; k < 5; ++k)
        if (age <= at[k])
            return mixed(steps[k - 1], steps[k], (age - at[k - 1]) / (at[k] - at[k - 1]));
    return steps[4];
}

void sprite(const Kaboom::Sprite& s, const Vector3& right, const Vector3& up)
{
    const Vector3 r = right * s.size;
    const Vector3 u = up * s.size;
    const Vector3 corners[4] = {s.position - r - u, s.position + r - u, s.position + r + u, s.position - r + u};
    static const float us[4] = {0.0f, 1.0f, 1.0f, 0.0f};
    static const float vs[4] = {1.0f, 1.0f, 0.0f, 0.0f};
    glColor4f(s.colour.r, s.colour.g, s.colour.b, s.colour.a);
    for (int k = 0; k < 4; ++k) {
        glTexCoord2f(us[k], vs[k]);
        glVertex3f(corners[k].x, corners[k].y, corners[k].z);
    }
}

}  // namespace

Kaboom::Kaboom(const Vector3& centre_)
    : centre(centre_), debris(), flame(nullptr), fume(nullptr), shock(nullptr), tried(0)
{
    planFire();
    planSmoke();
    planPieces();
    const size_t most = smoke.size() + pieces.size() * TRAIL_PUFFS;
    sprites.resize(most);
    order.resize(most);
    depths.resize(most);
}

Kaboom::~Kaboom()
{
    release();
}

void Kaboom::planFire()
{
    // The fireball: puffs flung out and up from the crossing, the biggest at the heart.
    for (int k = 0; k < MAIN_PUFFS; ++k) {
        Puff p;
        p.origin =
            centre + Vector3(Dice::range(k, 3, FIRE_SEED, -5.0f, 5.0f), Dice::range(k, 4, FIRE_SEED, 1.0f, 14.0f),
                             Dice::range(k, 5, FIRE_SEED, -5.0f, 5.0f));
        p.velocity = direction(k, FIRE_SEED, 0.15f) * Dice::range(k, 6, FIRE_SEED, 40.0f, 120.0f);
        p.start = Dice::range(k, 7, FIRE_SEED, 0.0f, 0.25f);
        p.life = Dice::range(k, 8, FIRE_SEED, 2.4f, 4.4f);
        p.size = Dice::range(k, 9, FIRE_SEED, 16.0f, 29.0f);
        p.lift = Dice::range(k, 10, FIRE_SEED, 8.0f, 18.0f);
        fire.push_back(p);
        clusters.push_back(0);
    }
    // The blast runs down the street canyons: fireballs jet along them, the further ones later.
    static const Vector3 streets[4] = {Vector3(1, 0, 0), Vector3(-1, 0, 0), Vector3(0, 0, 1), Vector3(0, 0, -1)};
    for (int c = 0; c < STREET_CLUSTERS; ++c) {
        const Vector3& way = streets[c % 4];
        const float reach = STREET_REACH[c / 4];
        const Vector3 at = centre + way * reach;
        for (int k = 0; k < STREET_PUFFS; ++k) {
            const int n = 1000 + c * 100 + k;
            Puff p;
            p.origin = at + Vector3(Dice::range(n, 3, FIRE_SEED, -3.0f, 3.0f), Dice::range(n, 4, FIRE_SEED, 1.0f, 6.0f),
                                    Dice::range(n, 5, FIRE_SEED, -3.0f, 3.0f));
            const Vector3 spread = direction(n, FIRE_SEED, 0.1f);
            p.velocity = (way * 1.6f + spread) * Dice::range(n, 6, FIRE_SEED, 15.0f, 40.0f);
            p.start = reach / BLAST_SPEED + Dice::range(n, 7, FIRE_SEED, 0.0f, 0.15f);
            p.life = Dice::range(n, 8, FIRE_SEED, 1.4f, 2.8f);
            p.size = Dice::range(n, 9, FIRE_SEED, 6.0f, 12.0f);
            p.lift = Dice::range(n, 10, FIRE_SEED, 3.0f, 7.0f);
            fire.push_back(p);
            clusters.push_back(1 + c);
        }
    }
}

void Kaboom::planSmoke()
{
    // Smoke boils up out of the fireball as it cools, the later puffs shorter lived, all gone by SMOKE_GONE.
    for (int k = 0; k < SMOKE_PUFFS; ++k) {
        Puff p;
        p.origin =
            centre + Vector3(Dice::range(k, 3, SMOKE_SEED, -30.0f, 30.0f), Dice::range(k, 4, SMOKE_SEED, 20.0f, 70.0f),
                             Dice::range(k, 5, SMOKE_SEED, -30.0f, 30.0f));
        p.velocity = Vector3(Dice::range(k, 6, SMOKE_SEED, -6.0f, 6.0f), Dice::range(k, 7, SMOKE_SEED, 18.0f, 40.0f),
                             Dice::range(k, 8, SMOKE_SEED, -6.0f, 6.0f));
        p.start = 0.5f + 4.0f * static_cast<float>(k) / SMOKE_PUFFS;
        p.life = std::min(Dice::range(k, 9, SMOKE_SEED, 4.0f, 6.5f), SMOKE_GONE - p.start);
        p.size = Dice::range(k, 10, SMOKE_SEED, 19.0f, 31.0f);
        p.lift = 0.0f;
        smoke.push_back(p);
    }
}

void Kaboom::planPieces()
{
    for (int k = 0; k < PIECES; ++k) {
        Piece p;
        const Vector3 out = direction(k, PIECE_SEED, 0.0f);
        const Vector3 flat = Vector3(out.x, 0.0f, out.z);
        p.origin = centre + flat * Dice::range(k, 3, PIECE_SEED, 4.0f, 20.0f) +
                   Vector3(0.0f, Dice::range(k, 4, PIECE_SEED, 5.0f, 40.0f), 0.0f);
        p.velocity = flat * Dice::range(k, 5, PIECE_SEED, 15.0f, 45.0f) +
                     Vector3(0.0f, Dice::range(k, 6, PIECE_SEED, 12.0f, 32.0f), 0.0f);
        p.axis = direction(k + 500, PIECE_SEED, -1.0f);
        p.spin = Dice::range(k, 7, PIECE_SEED, 90.0f, MAX_SPIN);
        p.scale = Dice::range(k, 8, PIECE_SEED, 1.8f, 5.0f);
        p.kind = Dice::unit(k, 9, PIECE_SEED) < 0.7 ? 0 : 1;
        pieces.push_back(p);
    }
}

float Kaboom::shockRadius(float t)
{
    return t <= 0.0f ? 0.0f : SHOCK_REACH * (1.0f - std::exp(-t / SHOCK_SLOWING));
}

float Kaboom::shockStrength(float t)
{
    return t <= 0.0f ? 0.0f : std::exp(-t / 1.4f) * smoothstep(0.0f, 0.05f, t);
}

float Kaboom::landing(size_t i) const
{
    // When y0 + vy t - g t^2 / 2 reaches the ground.
    const Piece& p = pieces[i];
    const float vy = p.velocity.y;
    return (vy + std::sqrt(vy * vy + 2.0f * GRAVITY * p.origin.y)) / GRAVITY;
}

Vector3 Kaboom::piecePosition(size_t i, float t) const
{
    const Piece& p = pieces[i];
    const float down = landing(i);
    const float flight = std::min(std::max(t, 0.0f), down);
    Vector3 at = p.origin + p.velocity * flight;
    at.y -= 0.5f * GRAVITY * flight * flight;
    // It comes to rest on the ground, not below it.
    at.y = flight < down ? std::max(at.y, 0.0f) : 0.0f;
    return at;
}

float Kaboom::pieceAngle(size_t i, float t) const
{
    const float flight = std::min(std::max(t, 0.0f), landing(i));
    return std::fmod(pieces[i].spin * flight, 360.0f);
}

bool Kaboom::firePuff(size_t i, float t, Sprite& s) const
{
    const Puff& p = fire[i];
    const float age = t - p.start;
    if (age < 0.0f || age > p.life)
        return false;
    const float spread = (1.0f - std::exp(-FIRE_DRAG * age)) / FIRE_DRAG;
    s.position = p.origin + p.velocity * spread + Vector3(0.0f, p.lift * age * age, 0.0f);
    s.size = p.size * (0.3f + 0.7f * (1.0f - std::exp(-4.0f * age))) * (1.0f + 0.25f * age);
    s.colour = heat(age / p.life);
    const float k = 0.75f * smoothstep(0.0f, 0.05f, age);
    s.colour = Color(s.colour.r * k, s.colour.g * k, s.colour.b * k, 1.0f);
    return true;
}

bool Kaboom::smokePuff(size_t i, float t, Sprite& s) const
{
    const Puff& p = smoke[i];
    const float age = t - p.start;
    if (age < 0.0f || age > p.life)
        return false;
    const float rise = (1.0f - std::exp(-SMOKE_DRAG * age)) / SMOKE_DRAG;
    s.position = p.origin + p.velocity * rise + WIND * age;
    s.size = p.size * (0.35f + 0.65f * (1.0f - std::exp(-0.8f * age)));
    // Lit orange from below by the fire while young, a dull brown-grey once it has cooled.
    s.colour = mixed(Color(0.22f, 0.19f, 0.19f, 1.0f), Color(0.5f, 0.17f, 0.07f, 1.0f), std::exp(-age / 2.0f));
    s.colour.a = 0.6f * smoothstep(0.0f, 0.6f, age) * (1.0f - smoothstep(p.life * 0.4f, p.life, age));
    return true;
}

bool Kaboom::triedAll() const
{
    return tried == DEBRIS_KINDS + LOOK_COUNT;
}

bool Kaboom::loadNext(const char* scene)
{
    if (triedAll())
        return false;
    const int piece = tried++;
    if (piece < DEBRIS_KINDS) {
        debris[piece] = SceneKit::loadOrReport<Mesh>(scene, DEBRIS_MESHES[piece]);
        return true;
    }
    const int k = piece - DEBRIS_KINDS;
    TextureMaterial** const materials[] = {&flame, &fume, &shock};
    static_assert(sizeof materials / sizeof materials[0] == LOOK_COUNT, "a material for every look");
    SceneKit::loadTextureAhead(LOOKS[k].picture);
    *materials[k] = SceneKit::overlayOrReport(scene, LOOKS[k].material, LOOKS[k].picture, LOOKS[k].blend);
    return true;
}

void Kaboom::load(const char* scene)
{
    while (loadNext(scene)) {
    }
}

void Kaboom::release()
{
    for (Mesh*& mesh : debris) {
        delete mesh;
        mesh = nullptr;
    }
    // The materials belong to the registry.
    flame = nullptr;
    fume = nullptr;
    shock = nullptr;
    tried = 0;
}

void Kaboom::draw(const Camera& camera, float t)
{
    if (t <= 0.0f)
        return;
    GLfloat fog[4];
    glGetFloatv(GL_FOG_COLOR, fog);
    static const GLfloat black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    // Smoke first, so the fire inside it shines through instead of being dulled by it.
    drawSmoke(camera, t);
    glFogfv(GL_FOG_COLOR, black);
    drawFire(camera, t);
    drawShock(t);
    glFogfv(GL_FOG_COLOR, fog);
    lights->turnLightingOn();
}

void Kaboom::drawPieces(const Camera& camera, float t)
{
    if (t <= 0.0f)
        return;
    const Frustum& frustum = camera.getFrustum();
    // The pieces are scaled: their normals must be made unit length again for the lights.
    glEnable(GL_NORMALIZE);
    for (int kind = 0; kind < DEBRIS_KINDS; ++kind) {
        if (!debris[kind] || !debris[kind]->preLoad(Mesh::drawShaded))
            continue;
        for (size_t i = 0; i < pieces.size(); ++i) {
            const Piece& p = pieces[i];
            const Vector3 at = piecePosition(i, t);
            if (p.kind != kind || !frustum.isSphereInside(at, 4.0f * p.scale))
                continue;
            glPushMatrix();
            glTranslatef(at.x, at.y, at.z);
            glRotatef(pieceAngle(i, t), p.axis.x, p.axis.y, p.axis.z);
            glScalef(p.scale, p.scale, p.scale);
            debris[kind]->drawLoaded();
            glPopMatrix();
        }
        debris[kind]->postUnload(Mesh::drawShaded);
    }
    glDisable(GL_NORMALIZE);
}

void Kaboom::drawFire(const Camera& camera, float t)
{
    if (!flame)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 right = camera.getU();
    const Vector3 up = camera.getV();
    flame->bind();
    glBegin(GL_QUADS);
    Sprite s;
    // The first moment: a white-hot ball over the crossing, higher than the towers round it.
    if (t < CORE_SECONDS) {
        const float fade = 1.0f - t / CORE_SECONDS;
        s.position = centre + Vector3(0.0f, 40.0f + 60.0f * t, 0.0f);
        s.size = 70.0f + 90.0f * std::sqrt(t);
        s.colour = Color(fade, 0.92f * fade, 0.7f * fade * fade, 1.0f);
        sprite(s, right, up);
    }
    for (size_t i = 0; i < fire.size(); ++i)
        if (firePuff(i, t, s) && frustum.isSphereInside(s.position, s.size))
            sprite(s, right, up);
    // Burning pieces glow as they fly and for a while where they land.
    for (size_t i = 0; i < pieces.size(); ++i) {
        const float glow = std::exp(-t / 2.2f);
        s.position = piecePosition(i, t);
        s.size = 1.1f * pieces[i].scale;
        s.colour = Color(1.0f * glow, 0.45f * glow, 0.12f * glow, 1.0f);
        if (glow > 0.02f && frustum.isSphereInside(s.position, s.size))
            sprite(s, right, up);
    }
    glEnd();
    flame->unbind();
}

void Kaboom::drawShock(float t)
{
    const float strength = shockStrength(t);
    if (!shock || strength < 0.01f)
        return;
    // A flat ring racing over the ground, and a low wall of light standing on its edge.
    const float radius = shockRadius(t);
    const float width = 8.0f + 26.0f * (1.0f - std::exp(-t));
    const float inner = std::max(0.0f, radius - width);
    const float outer = radius + width * 0.15f;
    const float wall = 10.0f + 60.0f * (1.0f - std::exp(-t / 0.6f));
    glDisable(GL_CULL_FACE);
    shock->bind();
    glColor4f(1.0f * strength, 0.72f * strength, 0.45f * strength, 1.0f);
    glBegin(GL_QUAD_STRIP);
    for (int k = 0; k <= RING_SEGMENTS; ++k) {
        const float a = 6.2831855f * static_cast<float>(k) / RING_SEGMENTS;
        const float c = std::cos(a);
        const float sn = std::sin(a);
        glTexCoord2f(0.0f, 0.5f);
        glVertex3f(centre.x + inner * c, RING_HEIGHT, centre.z + inner * sn);
        glTexCoord2f(1.0f, 0.5f);
        glVertex3f(centre.x + outer * c, RING_HEIGHT, centre.z + outer * sn);
    }
    glEnd();
    glColor4f(0.85f * strength, 0.6f * strength, 0.4f * strength, 1.0f);
    glBegin(GL_QUAD_STRIP);
    for (int k = 0; k <= RING_SEGMENTS; ++k) {
        const float a = 6.2831855f * static_cast<float>(k) / RING_SEGMENTS;
        const float x = centre.x + radius * std::cos(a);
        const float z = centre.z + radius * std::sin(a);
        // Brightest at its foot, where the picture's ring front lies.
        glTexCoord2f(0.86f, 0.5f);
        glVertex3f(x, 0.0f, z);
        glTexCoord2f(0.0f, 0.5f);
        glVertex3f(x, wall, z);
    }
    glEnd();
    shock->unbind();
    glEnable(GL_CULL_FACE);
}

void Kaboom::drawSmoke(const Camera& camera, float t)
{
    if (!fume)
        return;
    const Frustum& frustum = camera.getFrustum();
    const Vector3 eye = camera.getPosition();
    size_t count = 0;
    Sprite s;
    for (size_t i = 0; i < smoke.size(); ++i)
        if (smokePuff(i, t, s) && frustum.isSphereInside(s.position, s.size))
            sprites[count++] = s;
    // Flying pieces trail smoke while they are young.
    for (size_t i = 0; i < pieces.size() && t < TRAIL_AGE; ++i) {
        if (t > landing(i))
            continue;
        for (int k = 1; k <= TRAIL_PUFFS; ++k) {
            s.position = piecePosition(i, t - TRAIL_STEP * k);
            s.size = (0.8f + 0.6f * k) * pieces[i].scale;
            const float fade = (1.0f - static_cast<float>(k) / (TRAIL_PUFFS + 1)) * (1.0f - t / TRAIL_AGE);
            s.colour = Color(0.12f, 0.1f, 0.09f, 0.45f * fade);
            if (frustum.isSphereInside(s.position, s.size))
                sprites[count++] = s;
        }
    }
    for (size_t i = 0; i < count; ++i) {
        const Vector3 d = sprites[i].position - eye;
        depths[i] = d.dot(d);
        order[i] = static_cast<int>(i);
    }
    std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count),
              [this](int a, int b) { return depths[static_cast<size_t>(a)] > depths[static_cast<size_t>(b)]; });
    const Vector3 right = camera.getU();
    const Vector3 up = camera.getV();
    fume->bind();
    glBegin(GL_QUADS);
    for (size_t i = 0; i < count; ++i)
        sprite(sprites[static_cast<size_t>(order[i])], right, up);
    glEnd();
    fume->unbind();
}
