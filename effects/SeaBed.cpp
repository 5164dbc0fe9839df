// The sea bed: loading the floor and what lives on it, moving the camera, the school, the plants and the eye, drawing it all in deepening water.
#include "effects/SeaBed.h"

#include "effects/SceneKit.h"
#include "gl/GLF_checkError.h"
#include "math/Easing.h"
#include "math/MathConstants.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/MeshAnimation.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "scene/Terrain.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using namespace SeaBedLayout;

const char* const SCENE = "SeaBed";
const char* const SUN_LIGHT = "SeaBedSun";
const char* const DEEP_LIGHT = "SeaBedDeep";
const char* const SAND_MATERIAL = "SeaBedSand";
const char* const BUBBLES_NAME = "SeaBedBubbles";
const int PATCH_CELLS = 8;
// Beyond this the sand is deep in fog and drawn at every other grid point.
const float COARSE_DISTANCE = 36.0f;
const int BUBBLES_PER_VENT = 40;
const float FIELD_OF_VIEW = 58.0f;
const float NEAR_CLIP = 0.3f;
const float FAR_CLIP = 85.0f;
// Every picture of the sea bed but the caustics, its own: each start loads them again through the kit.
const TextureFile OWN_PICTURES[] = {SAND, ROCK, KELP, FAN, FISH, IRIS, SHAFT, BUBBLE, SURFACE};
// The sun stands high and a little behind the way down; the shafts slant along it.
const Vector3 SUN(0.3f, 1.0f, 0.45f);
const SceneKit::LightSetup SUN_SETUP = {SUN, Color(0.28f, 0.36f, 0.36f, 1.0f), Color(0.8f, 0.95f, 0.9f, 1.0f),
                                        Color(0.9f, 1.0f, 1.0f, 1.0f)};
// Light thrown back off the sand, green, from low in front of the way on: it picks out the rock face.
const SceneKit::LightSetup DEEP_SETUP = {Vector3(-0.25f, -0.35f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f),
                                         Color(0.16f, 0.3f, 0.26f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f)};
// The caustic net repeats every five units of sand, and drifts with the swell.
const float CAUSTIC_TILE = 5.0f;
const float CAUSTIC_DRIFT_U = 0.021f;
const float CAUSTIC_DRIFT_V = 0.013f;
// How the kelp and the fans lean, and the way the current runs.
const float KELP_HEIGHT = 14.0f;
const float KELP_REACH = 2.2f;
const float FAN_HEIGHT = 2.0f;
const float FAN_REACH = 0.25f;
const Vector3 CURRENT(1.0f, 0.0f, 0.5f);
// The surface seen from below: how far it reaches round the camera and how often its ripples repeat.
const float SURFACE_REACH = 260.0f;
const float SURFACE_TILE = 30.0f;
const float SURFACE_SEEN_FROM = 28.0f;
const int SURFACE_RINGS = 7;
const float SURFACE_RADII[SURFACE_RINGS] = {0.0f, 6.0f, 15.0f, 35.0f, 75.0f, 150.0f, SURFACE_REACH};
const int SURFACE_STEPS = 20;
// How far off a light shaft is still seen through the water.
const float SHAFT_REACH = 60.0f;
// Steps of the backdrop's gradient from the bottom of the screen to the top.
const int BACKDROP_STEPS = 12;
// Just in front of the cleared depth, so it fills only where nothing was drawn.
const float BACKDROP_DEPTH = 0.99999f;
// Darkening starts a little in front of the rock face and is complete this far into the cave.
const float CAVE_DARKENS = 12.0f;
// The cave's own fog, seen from outside: its far end fades to nearly black.
const Color CAVE_DEPTHS(0.01f, 0.035f, 0.05f, 1.0f);

Color mix(const Color& a, const Color& b, float t)
{
    return Color(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0f);
}

// A number in [0, 1) for each (a, b, salt), the same on every run: where kelp strands stand.
float scatter(int a, int b, int salt)
{
    uint32_t h = static_cast<uint32_t>(a) * 0x8da6b343u ^ static_cast<uint32_t>(b) * 0xd8163841u ^
                 static_cast<uint32_t>(salt) * 0xcb1ab31fu;
    h ^= h >> 13;
    h *= 0x5bd1e995u;
    h ^= h >> 15;
    return (h & 0xffffffu) / 16777216.0f;
}

float caveDepth(const Vector3& position)
{
    return std::max(0.0f, CLIFF_Z + 3.0f - position.z);
}

// The water looking up towards the light, from its colour straight out.
Color towardsSurface(const Color& water)
{
    return Color(std::min(1.0f, water.r * 1.9f + 0.12f), std::min(1.0f, water.g * 1.7f + 0.12f),
                 std::min(1.0f, water.b * 1.6f + 0.1f), 1.0f);
}

// Far off, where a texel covers less than a pixel, the nearest texel is taken rather than four
// blended: the sand, the rock and the plants fill most of the screen, and in the fog the difference
// does not show.
void sampleNearestFarOff(const Texture* texture)
{
    if (!texture || texture->getGLName() == Texture::noName)
        return;
    glBindTexture(GL_TEXTURE_2D, texture->getGLName());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
}

// Single sheets (leaves, blades, fins) drawn from both sides, each side lit as facing the viewer.
class BothSides {
public:
    BothSides()
    {
        glDisable(GL_CULL_FACE);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    }
    ~BothSides()
    {
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
        glEnable(GL_CULL_FACE);
    }
    BothSides(const BothSides&) = delete;
    BothSides& operator=(const BothSides&) = delete;
};

}  // namespace

SeaBed::SeaBed(short layer, const EffectTimer& timer)
    : Effect(layer, timer), terrain(nullptr), cameraAnimation(nullptr), schoolPath(nullptr), sandMaterial(nullptr),
      caustics(), rockMaterial(nullptr), caveMaterial(nullptr), kelpMaterial(nullptr), fanMaterial(nullptr),
      fishMaterial(nullptr), shaftMaterial(nullptr), surfaceMaterial(nullptr), bubbleMaterial(nullptr),
      kelp(KELP_HEIGHT, KELP_REACH, CURRENT), fans(FAN_HEIGHT, FAN_REACH, CURRENT), bubbles(), vents(),
      water(FLOOR_WATER)
{
}

SeaBed::~SeaBed()
{
    release();
}

Color SeaBed::waterColour(float height, float depth)
{
    const float up = Easing::smoothstep(0.0f, SURFACE_HEIGHT, height);
    return mix(mix(FLOOR_WATER, SURFACE_WATER, up), CAVE_WATER, Easing::smoothstep(0.0f, CAVE_DARKENS, depth));
}

float SeaBed::fogDensity(float height, float depth)
{
    const float up = Easing::smoothstep(0.0f, SURFACE_HEIGHT, height);
    const float open = 0.027f + (0.022f - 0.027f) * up;
    return open + (0.08f - open) * Easing::smoothstep(0.0f, CAVE_DARKENS, depth);
}

int SeaBed::causticFrame(float t)
{
    const int frame = static_cast<int>(std::floor(std::max(t, 0.0f) * CAUSTIC_RATE));
    return frame % CAUSTIC_FRAMES;
}

void SeaBed::initiate()
{
    glFogi(GL_FOG_MODE, GL_EXP2);
    glHint(GL_FOG_HINT, GL_NICEST);
    glEnable(GL_FOG);
    loadCamera();
    loadLights();
    loadFloor();
    loadRocks();
    loadPlants();
    loadSchool();
    loadBubbles();
    loadLight();
    eye.place(EYE_CENTRE, EYE_RADIUS);
    eye.setSchedule(EYE_OPENS, EYE_BLINK_TIMES, EYE_BLINKS);
    eye.load(SCENE);
}

void SeaBed::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        // Without its path the camera still looks down the way, from above the sand.
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(0.0f, 12.0f, 40.0f), Vector3(0.0f, 4.0f, 0.0f));
        camera->setClipPlanes(NEAR_CLIP, FAR_CLIP);
        camera->setFOV(FIELD_OF_VIEW);
        cameras->add(camera);
    }
    cameras->setActiveCamera(CAMERA_NAME);
    delete cameraAnimation;
    cameraAnimation = SceneKit::loadOrReport<CameraAnimation>(SCENE, CAMERA_PATH);
    if (!cameraAnimation)
        return;
    cameraAnimation->setup();
    cameraAnimation->setCamera(CAMERA_NAME);
    cameraAnimation->update(0.0f);
}

void SeaBed::loadLights()
{
    SceneKit::directionalLight(SUN_LIGHT, SUN_SETUP);
    SceneKit::directionalLight(DEEP_LIGHT, DEEP_SETUP);
}

void SeaBed::loadFloor()
{
    delete terrain;
    terrain = SceneKit::loadOrReport<Terrain>(SCENE, TERRAIN);
    if (terrain) {
        terrain->buildPatches(PATCH_CELLS);
        terrain->setCoarseDistance(COARSE_DISTANCE);
    }
    MaterialMgr* materials = MaterialMgr::getHandle();
    sandMaterial = dynamic_cast<MulTextureMaterial*>(materials->find(SAND_MATERIAL));
    if (!sandMaterial) {
        sandMaterial = new MulTextureMaterial(SAND_MATERIAL);
        sandMaterial->setFlags(Material::textured);
        sandMaterial->setBlendMode(Material::blendNone);
        sandMaterial->setTexBlendMode(0);
        sandMaterial->setAmbient(Color(0.5f, 0.55f, 0.55f, 1.0f));
        sandMaterial->setDiffuse(Color(0.72f, 0.76f, 0.7f, 1.0f));
        sandMaterial->setSpecular(Color(0.0f, 0.0f, 0.0f, 1.0f));
        materials->add(sandMaterial);
    }
    sandMaterial->setTexture(SceneKit::preloadOrReport(SCENE, SAND));
    for (int i = 0; i < CAUSTIC_FRAMES; ++i)
        caustics[i] = SceneKit::preloadOrReport(SCENE, CAUSTICS[i]);
    sampleNearestFarOff(sandMaterial->getTexture());
    for (Texture* frame : caustics)
        sampleNearestFarOff(frame);
}

void SeaBed::loadRocks()
{
    for (int kind = 0; kind < ROCK_KINDS; ++kind)
        rocks[kind].loadOrReport(SCENE, ROCK_MESHES[kind]);
    cliff.loadOrReport(SCENE, CLIFF_MESH);
    cave.loadOrReport(SCENE, CAVE_MESH);
    rockMaterial = SceneKit::materialOrReport(SCENE, "SeaBedRock", ROCK, Material::textured, Material::blendNone);
    rockMaterial->setAmbient(Color(0.45f, 0.5f, 0.5f, 1.0f));
    rockMaterial->setDiffuse(Color(0.8f, 0.82f, 0.78f, 1.0f));
    rockMaterial->setSpecular(Color(0.1f, 0.12f, 0.12f, 1.0f));
    rockMaterial->setShininess(12.0f);
    sampleNearestFarOff(rockMaterial->getTexture());
    // The same rock in the cave, where little of the light from above reaches.
    caveMaterial = SceneKit::wear("SeaBedCave", rockMaterial->getTexture(), Material::textured, Material::blendNone);
    caveMaterial->setAmbient(Color(0.12f, 0.14f, 0.15f, 1.0f));
    caveMaterial->setDiffuse(Color(0.3f, 0.32f, 0.32f, 1.0f));
    caveMaterial->setSpecular(Color(0.0f, 0.0f, 0.0f, 1.0f));
}

void SeaBed::loadPlants()
{
    kelpMesh.loadOrReport(SCENE, KELP_MESH);
    fanMesh.loadOrReport(SCENE, FAN_MESH);
    kelpMaterial = SceneKit::materialOrReport(SCENE, "SeaBedKelp", KELP, Material::textured, Material::blendAlphaTest);
    kelpMaterial->setSpecular(Color(0.15f, 0.15f, 0.1f, 1.0f));
    fanMaterial = SceneKit::materialOrReport(SCENE, "SeaBedFan", FAN, Material::textured, Material::blendAlphaTest);
    fanMaterial->setSpecular(Color(0.0f, 0.0f, 0.0f, 1.0f));
    sampleNearestFarOff(kelpMaterial->getTexture());
    sampleNearestFarOff(fanMaterial->getTexture());
    plantKelp();
    plantFans();
}

void SeaBed::plantKelp()
{
    int strands = 0;
    for (const Clump& clump : KELP_CLUMPS)
        strands += clump.count;
    kelp.reserve(strands);
    for (int k = 0; k < CLUMP_COUNT; ++k) {
        const Clump& clump = KELP_CLUMPS[k];
        for (int j = 0; j < clump.count; ++j) {
            const float angle = MathConstants::TWO_PI * scatter(k, j, 1);
            const float reach = clump.spread * std::sqrt(scatter(k, j, 2));
            const float x = clump.x + reach * std::cos(angle);
            const float z = clump.z + reach * std::sin(angle);
            const float ground = terrain ? terrain->heightAt(x, z) : 0.0f;
            kelp.add({Vector3(x, ground - 0.2f, z), 360.0f * scatter(k, j, 3), 0.7f + 0.5f * scatter(k, j, 4),
                      MathConstants::TWO_PI * scatter(k, j, 5)});
        }
    }
    kelp.prepare(kelpMesh);
    kelpBatch.create(kelpMesh, kelp.getCount());
}

void SeaBed::plantFans()
{
    fans.reserve(FAN_COUNT);
    for (int i = 0; i < FAN_COUNT; ++i) {
        const Fan& fan = FANS[i];
        const float ground = terrain ? terrain->heightAt(fan.x, fan.z) : 0.0f;
        fans.add({Vector3(fan.x, ground - 0.1f, fan.z), fan.yaw, fan.scale, 1.3f * i});
    }
    fans.prepare(fanMesh);
    fanBatch.create(fanMesh, fans.getCount());
}

void SeaBed::loadSchool()
{
    fishMesh.loadOrReport(SCENE, FISH_MESH);
    delete schoolPath;
    schoolPath = SceneKit::loadOrReport<MeshAnimation>(SCENE, FISH_PATH);
    school.create(FISH_COUNT, SCHOOL_RADIUS);
    if (schoolPath) {
        schoolPath->setup();
        school.setTrack(schoolPath->getPositionTrack(), schoolPath->getFramesPerSec());
    }
    fishBatch.create(fishMesh, FISH_COUNT);
    fishMaterial = SceneKit::materialOrReport(SCENE, "SeaBedFish", FISH, Material::textured, Material::blendNone);
    fishMaterial->setSpecular(Color(0.8f, 0.9f, 0.9f, 1.0f));
    fishMaterial->setShininess(40.0f);
}

void SeaBed::loadBubbles()
{
    bubbleMaterial = SceneKit::materialOrReport(SCENE, "SeaBedBubble", BUBBLE, Material::overlay, Material::blendAdd);
    const Color start(0.75f, 0.95f, 1.0f, 1.0f);
    const Color end(0.2f, 0.4f, 0.45f, 0.0f);
    for (int i = 0; i < VENT_COUNT; ++i) {
        const float ground = terrain ? terrain->heightAt(VENTS[i].x, VENTS[i].z) : 0.0f;
        const Vector3 low(VENTS[i].x - 0.3f, ground, VENTS[i].z - 0.3f);
        const Vector3 high(VENTS[i].x + 0.3f, ground + 0.4f, VENTS[i].z + 0.3f);
        delete bubbles[i];
        delete vents[i];
        vents[i] = new PCInfoHelix(PARTICLE_QUAD, 2.5f, 5.5f, Vector3(0.13f, 0.13f, 0.13f), start, end,
                                   BoundingBox(low, high), PCINFO_PLANE_XZ, 2.0f);
        vents[i]->material = bubbleMaterial;
        bubbles[i] = new ParticleCluster(BUBBLES_NAME, BUBBLES_PER_VENT, vents[i], true);
        bubbles[i]->setSpeed(2.4f);
    }
}

void SeaBed::loadLight()
{
    shaftMaterial = SceneKit::materialOrReport(SCENE, "SeaBedShaft", SHAFT, Material::overlay, Material::blendAdd);
    surfaceMaterial =
        SceneKit::materialOrReport(SCENE, "SeaBedSurface", SURFACE, Material::textured, Material::blendNone);
}

void SeaBed::update(float seconds)
{
    updateTimer(seconds);
    if (cameraAnimation)
        cameraAnimation->update(seconds);
    for (ParticleCluster* cluster : bubbles) {
        if (cluster)
            cluster->update(seconds);
    }
    const Camera* camera = CameraMgr::getHandle()->find(CAMERA_NAME);
    if (camera)
        eye.update(getTime(), seconds, camera->getPosition());
}

void SeaBed::setWater(const Camera& camera)
{
    const Vector3& p = camera.getPosition();
    const float ground = terrain ? terrain->heightAt(p.x, p.z) : 0.0f;
    water = waterColour(p.y - ground, caveDepth(p));
    const float fog[4] = {water.r, water.g, water.b, 1.0f};
    glFogfv(GL_FOG_COLOR, fog);
    glFogf(GL_FOG_DENSITY, fogDensity(p.y - ground, caveDepth(p)));
    glClearColor(water.r, water.g, water.b, 1.0f);
}

void SeaBed::drawBackdrop(const Camera& camera) const
{
    // The water behind everything: brighter towards the surface, the fog's colour straight out and
    // below, row by row up the screen by the height each row looks at. It is drawn after the solid
    // things at the far end of the depth range, so only what they leave uncovered is filled.
    const float brightening = 1.0f - Easing::smoothstep(0.0f, CAVE_DARKENS, caveDepth(camera.getPosition()));
    const Color above = towardsSurface(water);
    const float halfHeight = std::tan(0.5f * camera.getFOV() * MathConstants::DEGREES_TO_RADIANS);
    LightMgr::getHandle()->turnLightingOff();
    glDisable(GL_FOG);
    glDepthMask(GL_FALSE);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glBegin(GL_QUAD_STRIP);
    for (int i = 0; i <= BACKDROP_STEPS; ++i) {
        const float y = -1.0f + 2.0f * i / BACKDROP_STEPS;
        Vector3 ray = camera.getN() + camera.getV() * (y * halfHeight);
        ray.normalize();
        const float rise = std::asin(std::clamp(ray.y, -1.0f, 1.0f));
        const Color c = rise > 0.0f ? mix(water, above, brightening * Easing::smoothstep(0.55f, 1.5f, rise)) : water;
        glColor4f(c.r, c.g, c.b, 1.0f);
        glVertex3f(-1.0f, y, BACKDROP_DEPTH);
        glVertex3f(1.0f, y, BACKDROP_DEPTH);
    }
    glEnd();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glDepthMask(GL_TRUE);
    glEnable(GL_FOG);
    LightMgr::getHandle()->turnLightingOn();
}

void SeaBed::drawSurface(const Camera& camera) const
{
    const Vector3& p = camera.getPosition();
    // From deep down the surface is lost in the water overhead.
    if (p.y < SURFACE_SEEN_FROM)
        return;
    const BoundingBox sheet(Vector3(p.x - SURFACE_REACH, SURFACE_HEIGHT, p.z - SURFACE_REACH),
                            Vector3(p.x + SURFACE_REACH, SURFACE_HEIGHT, p.z + SURFACE_REACH));
    if (!camera.getFrustum().isBoxInside(sheet))
        return;
    const float t = getTime();
    LightMgr::getHandle()->turnLightingOff();
    glDisable(GL_CULL_FACE);
    surfaceMaterial->bind();
    glMatrixMode(GL_TEXTURE);
    glPushMatrix();
    glTranslatef(0.012f * t, 0.007f * t, 0.0f);
    glMatrixMode(GL_MODELVIEW);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    // Rings round the point overhead: the fog's distance is worked out at the corners and blended
    // between them, which a few large faces reaching behind the camera would get badly wrong.
    for (int ring = 0; ring + 1 < SURFACE_RINGS; ++ring) {
        glBegin(GL_QUAD_STRIP);
        for (int step = 0; step <= SURFACE_STEPS; ++step) {
            const float angle = MathConstants::TWO_PI * step / SURFACE_STEPS;
            for (int edge = 0; edge < 2; ++edge) {
                const float reach = SURFACE_RADII[ring + edge];
                const float x = p.x + reach * std::cos(angle);
                const float z = p.z + reach * std::sin(angle);
                glTexCoord2f(x / SURFACE_TILE, z / SURFACE_TILE);
                glVertex3f(x, SURFACE_HEIGHT, z);
            }
        }
        glEnd();
    }
    glMatrixMode(GL_TEXTURE);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    surfaceMaterial->unbind();
    glEnable(GL_CULL_FACE);
    LightMgr::getHandle()->turnLightingOn();
}

void SeaBed::drawFloor(Camera& camera)
{
    if (!terrain)
        return;
    const float t = getTime();
    sandMaterial->setTexture2(caustics[causticFrame(t)]);
    // The caustic net on the second unit: its own tile size, drifting.
    glActiveTextureARB(GL_TEXTURE1_ARB);
    glMatrixMode(GL_TEXTURE);
    glPushMatrix();
    glLoadIdentity();
    glTranslatef(CAUSTIC_DRIFT_U * t, CAUSTIC_DRIFT_V * t, 0.0f);
    glScalef(1.0f / (CAUSTIC_TILE * SAND_SCALE), 1.0f / (CAUSTIC_TILE * SAND_SCALE), 1.0f);
    glMatrixMode(GL_MODELVIEW);
    glActiveTextureARB(GL_TEXTURE0_ARB);

    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    sandMaterial->bind();
    terrain->draw(camera);
    sandMaterial->unbind();

    glActiveTextureARB(GL_TEXTURE1_ARB);
    glMatrixMode(GL_TEXTURE);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glActiveTextureARB(GL_TEXTURE0_ARB);
}

void SeaBed::drawRocks(const Camera& camera) const
{
    const Frustum& frustum = camera.getFrustum();
    rockMaterial->bind();
    glEnable(GL_NORMALIZE);
    for (const Rock& rock : ROCKS) {
        const IndexedMesh& mesh = rocks[rock.kind % ROCK_KINDS];
        if (mesh.isEmpty())
            continue;
        const float ground = terrain ? terrain->heightAt(rock.x, rock.z) : 0.0f;
        const Vector3 at(rock.x, ground - 0.15f * rock.scale, rock.z);
        if (!frustum.isSphereInside(at, mesh.getBox().getRadius() * rock.scale * 1.5f))
            continue;
        glPushMatrix();
        glTranslatef(at.x, at.y, at.z);
        glRotatef(rock.yaw, 0.0f, 1.0f, 0.0f);
        glScalef(rock.scale, rock.scale, rock.scale);
        mesh.draw();
        glPopMatrix();
    }
    glDisable(GL_NORMALIZE);
    if (!cliff.isEmpty() && frustum.isBoxInside(cliff.getBox()))
        cliff.draw();
    rockMaterial->unbind();
}

void SeaBed::drawCave(const Camera& camera) const
{
    if (cave.isEmpty() || !camera.getFrustum().isBoxInside(cave.getBox()))
        return;
    // Looked into from near the mouth the cave fades to the dark (from far off, lost in the water
    // like the rock round it); once inside, to the dark teal ahead.
    const Vector3& p = camera.getPosition();
    const Color dark = mix(water, CAVE_DEPTHS, Easing::smoothstep(70.0f, 30.0f, p.distance(CAVE_MOUTH)));
    const Color ahead = mix(dark, CAVE_WATER, Easing::smoothstep(0.0f, CAVE_DARKENS, caveDepth(p)));
    const float fog[4] = {ahead.r, ahead.g, ahead.b, 1.0f};
    const float restore[4] = {water.r, water.g, water.b, 1.0f};
    glFogfv(GL_FOG_COLOR, fog);
    caveMaterial->bind();
    cave.draw();
    caveMaterial->unbind();
    glFogfv(GL_FOG_COLOR, restore);
}

void SeaBed::drawPlants(const Camera& camera)
{
    const float t = getTime();
    const BothSides sheets;
    if (!kelpMesh.isEmpty()) {
        kelp.fill(kelpBatch, kelpMesh, t, camera.getFrustum());
        kelpMaterial->bind();
        kelpBatch.draw();
        kelpMaterial->unbind();
    }
    if (!fanMesh.isEmpty()) {
        fans.fill(fanBatch, fanMesh, t, camera.getFrustum());
        fanMaterial->bind();
        fanBatch.draw();
        fanMaterial->unbind();
    }
}

void SeaBed::drawSchool(const Camera& camera)
{
    if (fishMesh.isEmpty())
        return;
    school.fill(fishBatch, fishMesh, getTime(), camera.getFrustum());
    const BothSides fins;
    fishMaterial->bind();
    fishBatch.draw();
    fishMaterial->unbind();
}

void SeaBed::drawShafts(const Camera& camera) const
{
    const float t = getTime();
    const Vector3& eyePoint = camera.getPosition();
    const float outside = 1.0f - Easing::smoothstep(0.0f, CAVE_DARKENS * 0.5f, caveDepth(eyePoint));
    if (outside <= 0.0f)
        return;
    static const float black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    const float fog[4] = {water.r, water.g, water.b, 1.0f};
    LightMgr::getHandle()->turnLightingOff();
    glDisable(GL_CULL_FACE);
    // Added light fogs towards black, or distant shafts would show as bands of fog colour.
    glFogfv(GL_FOG_COLOR, black);
    shaftMaterial->bind();
    glBegin(GL_QUADS);
    for (int i = 0; i < SHAFT_COUNT; ++i) {
        const Shaft& shaft = SHAFTS[i];
        const float ground = terrain ? terrain->heightAt(shaft.x, shaft.z) : 0.0f;
        const Vector3 foot(shaft.x, ground - 1.0f, shaft.z);
        const float rise = SURFACE_HEIGHT - foot.y;
        const Vector3 top = foot + Vector3(SUN.x / SUN.y, 1.0f, SUN.z / SUN.y) * rise;
        Vector3 axis = top - foot;
        axis.normalize();
        // Turned about its own axis to face the camera; faded when the camera swims into it.
        Vector3 across = axis.cross(eyePoint - (foot + top) * 0.5f);
        const float distance = across.length();
        // Further off, the fog has taken it.
        if (distance > SHAFT_REACH)
            continue;
        across.normalize();
        const float near = Easing::smoothstep(2.0f, 9.0f, distance);
        const float glow =
            (0.55f + 0.25f * std::sin(0.7f * t + 1.7f * i) + 0.15f * std::sin(1.9f * t + i)) * near * outside;
        const Vector3 topSide = across * (0.28f * shaft.width);
        const Vector3 footSide = across * (0.42f * shaft.width);
        glColor4f(0.7f * glow, 0.95f * glow, 0.9f * glow, 1.0f);
        glTexCoord2f(0.0f, 0.0f);
        glVertex3f(top.x - topSide.x, top.y - topSide.y, top.z - topSide.z);
        glTexCoord2f(1.0f, 0.0f);
        glVertex3f(top.x + topSide.x, top.y + topSide.y, top.z + topSide.z);
        glTexCoord2f(1.0f, 1.0f);
        glVertex3f(foot.x + footSide.x, foot.y + footSide.y, foot.z + footSide.z);
        glTexCoord2f(0.0f, 1.0f);
        glVertex3f(foot.x - footSide.x, foot.y - footSide.y, foot.z - footSide.z);
    }
    glEnd();
    shaftMaterial->unbind();
    glFogfv(GL_FOG_COLOR, fog);
    glEnable(GL_CULL_FACE);
    LightMgr::getHandle()->turnLightingOn();
}

void SeaBed::drawBubbles(const Camera& camera)
{
    static const float black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    const float fog[4] = {water.r, water.g, water.b, 1.0f};
    LightMgr::getHandle()->turnLightingOff();
    glFogfv(GL_FOG_COLOR, black);
    for (int i = 0; i < VENT_COUNT; ++i) {
        // The column the bubbles rise through, not just the vent they leave.
        const Vector3 middle = VENTS[i] + Vector3(0.0f, 8.0f, 0.0f);
        if (bubbles[i] && camera.getFrustum().isSphereInside(middle, 9.0f))
            bubbles[i]->draw();
    }
    glFogfv(GL_FOG_COLOR, fog);
    LightMgr::getHandle()->turnLightingOn();
}

void SeaBed::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (!camera)
        return;
    setWater(*camera);
    // Nearer things first, so the sand and the water behind them fail the depth test before
    // they are shaded: the rock face hides the bank behind it, the plants and rocks the sand.
    drawRocks(*camera);
    drawCave(*camera);
    Vector3 sun = SUN;
    sun.normalize();
    eye.draw(*camera, sun);
    drawSchool(*camera);
    drawPlants(*camera);
    drawSurface(*camera);
    drawFloor(*camera);
    drawBackdrop(*camera);
    drawShafts(*camera);
    drawBubbles(*camera);
    GLF_checkError("SeaBed::display()");
}

void SeaBed::release()
{
    delete terrain;
    terrain = nullptr;
    delete cameraAnimation;
    cameraAnimation = nullptr;
    delete schoolPath;
    schoolPath = nullptr;
    school.setTrack(nullptr, 24.0f);
    for (int i = 0; i < VENT_COUNT; ++i) {
        delete bubbles[i];
        bubbles[i] = nullptr;
        delete vents[i];
        vents[i] = nullptr;
    }
    for (IndexedMesh& rock : rocks)
        rock.clear();
    cliff.clear();
    cave.clear();
    kelpMesh.clear();
    fanMesh.clear();
    fishMesh.clear();
    kelpBatch.release();
    fanBatch.release();
    fishBatch.release();
    eye.release();
    // Registered materials and cached textures belong to their registries.
    sandMaterial = nullptr;
    std::fill(caustics, caustics + CAUSTIC_FRAMES, nullptr);
}

void SeaBed::shutdown()
{
    release();
    SceneKit::releaseTextures(OWN_PICTURES);
    SceneKit::releaseTextures(CAUSTICS);
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    LightMgr::getHandle()->remove(SUN_LIGHT);
    LightMgr::getHandle()->remove(DEEP_LIGHT);
}
