// The spacecraft fly-by: the hull through its batches, the sky, the far planet, exhausts and lights in time with the song.
#include "effects/SpaceCraft.h"

#include "effects/OwnLights.h"
#include "effects/SceneKit.h"
#include "gl/GLF_checkError.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/Frustum.h"
#include "scene/LightMgr.h"
#include "scene/Octree.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

using namespace SpaceCraftLayout;

const char* const SCENE = "SpaceCraft";
const char* const SUN_LIGHT = "SpaceCraftSun";
const char* const FILL_LIGHT = "SpaceCraftFill";
const char* const OWN_LIGHTS[] = {SUN_LIGHT, FILL_LIGHT, nullptr};
const char* const EXHAUST_MATERIAL = "SpaceCraftExhaust";
const float NEAR_CLIP = 0.5f;
const float FAR_CLIP = 9000.0f;
const float FIELD_OF_VIEW = 52.0f;
const float ROW_SECONDS = 0.125f;
const int ROWS_PER_BAR = 16;
const int ROWS_PER_BEAT = 4;

// Starlight, white and hard from high on the left; a faint blue fill from the planet below.
const SceneKit::LightSetup SUN = {SUN_DIRECTION, Color(0.08f, 0.08f, 0.09f, 1.0f), Color(1.0f, 0.97f, 0.92f, 1.0f),
                                  Color(1.0f, 1.0f, 1.0f, 1.0f)};
const SceneKit::LightSetup FILL = {Vector3(0.5f, -0.45f, -0.3f), Color(0.0f, 0.0f, 0.0f, 1.0f),
                                   Color(0.16f, 0.21f, 0.34f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f)};

// GL's own ambient light, which the baked light adds like GL would.
const float GLOBAL_AMBIENT = 0.2f;
const int NOZZLE_PARTICLES = 16;
const int SPARK_PARTICLES = 20;
// Sparks start this far behind a mouth and stream about twice as far again.
const float SPARK_LEAD = 6.0f;
const float SPARK_REACH = 36.0f;

}  // namespace

SpaceCraft::SpaceCraft(short layer, const EffectTimer& timer)
    : Effect(layer, timer), hull(nullptr), cameraAnimation(nullptr), backdrop(SCENE), planet(layer, timer, SCENE),
      twins(SCENE, HULL_MATERIALS, HULL_PICTURES, HULL_PART_COUNT, true), glow(nullptr), clusters(), emitters()
{
}

SpaceCraft::~SpaceCraft()
{
    delete hull;
    delete cameraAnimation;
    for (int i = 0; i < CLUSTER_COUNT; ++i) {
        delete clusters[i];
        delete emitters[i];
    }
}

float SpaceCraft::blink(Blink kind, float sceneSeconds)
{
    const float local = sceneSeconds - MUSIC_START;
    if (kind == BLINK_STEADY)
        return 0.85f + 0.15f * std::sin(local * 2.0f);
    if (local < 0.0f)
        return 0.0f;
    if (kind == BLINK_BEAT) {
        const float beat = ROWS_PER_BEAT * ROW_SECONDS;
        return 0.12f + 0.88f * std::exp(-std::fmod(local, beat) * 9.0f);
    }
    // Strobes: two quick flashes at the top of every bar.
    const float inBar = std::fmod(local, ROWS_PER_BAR * ROW_SECONDS);
    return (inBar < 0.06f || (inBar > 0.22f && inBar < 0.28f)) ? 1.0f : 0.0f;
}

Color SpaceCraft::starlight(const Vector3& normal, const Material* material)
{
    static const Material plain;
    const Material& m = material ? *material : plain;
    Color light(GLOBAL_AMBIENT + SUN.ambient.r + FILL.ambient.r, GLOBAL_AMBIENT + SUN.ambient.g + FILL.ambient.g,
                GLOBAL_AMBIENT + SUN.ambient.b + FILL.ambient.b, 1.0f);
    Color result(m.getEmission().r + m.getAmbient().r * light.r, m.getEmission().g + m.getAmbient().g * light.g,
                 m.getEmission().b + m.getAmbient().b * light.b, m.getDiffuse().a);
    for (const SceneKit::LightSetup* setup : {&SUN, &FILL}) {
        Vector3 towards = setup->direction;
        towards.normalize();
        const float k = std::max(0.0f, normal.dot(towards));
        result.r += m.getDiffuse().r * setup->diffuse.r * k;
        result.g += m.getDiffuse().g * setup->diffuse.g * k;
        result.b += m.getDiffuse().b * setup->diffuse.b * k;
    }
    return result;
}

float SpaceCraft::throb(float sceneSeconds)
{
    const float local = sceneSeconds - MUSIC_START;
    if (local < 0.0f)
        return 0.2f;
    // The section's kick drum: rows 0, 8 and 10 of every bar.
    const float row = std::fmod(local / ROW_SECONDS, static_cast<float>(ROWS_PER_BAR));
    const float kick = row >= 10.0f ? 10.0f : row >= 8.0f ? 8.0f : 0.0f;
    return 0.2f + 0.8f * std::exp(-(row - kick) * ROW_SECONDS * 5.0f);
}

void SpaceCraft::initiate()
{
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    backdrop.load();
    planet.initiate();
    planet.place(PLANET_CENTRE, PLANET_RADIUS);
    loadHull();
    loadCamera();
    loadLights();
    loadExhausts();
}

void SpaceCraft::loadHull()
{
    delete hull;
    hull = SceneKit::loadOrReport<Octree>(SCENE, OCTREE);
    if (!hull)
        return;
    // The file's materials hold the colours; each gets a textured twin of its own here.
    twins.make();
    batch.build(*hull, [this](Material* named) { return twins.twinOf(named); });
    // The star and the fill never move against the hull: its light is worked out once.
    batch.bake(&SpaceCraft::starlight);
    batch.compile();
}

void SpaceCraft::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    Camera* camera = cameras->find(CAMERA_NAME);
    if (!camera) {
        camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(30.0f, 31.0f, 205.0f), Vector3(0.0f, 25.0f, 60.0f));
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
    // A start later than the scene's own (a still from the middle) finds the camera in place.
    cameraAnimation->update(timer.getCurrent() - timer.getStart());
}

void SpaceCraft::loadLights()
{
    SceneKit::directionalLight(SUN_LIGHT, SUN);
    SceneKit::directionalLight(FILL_LIGHT, FILL);
}

void SpaceCraft::loadExhausts()
{
    glow = SceneKit::preloadOrReport(SCENE, GLOW);
    TextureMaterial* material = dynamic_cast<TextureMaterial*>(MaterialMgr::getHandle()->find(EXHAUST_MATERIAL));
    if (!material)
        material = SceneKit::makeMaterial(EXHAUST_MATERIAL, glow, Material::blendGlow, Material::overlay);
    for (int i = 0; i < CLUSTER_COUNT; ++i) {
        delete clusters[i];
        delete emitters[i];
        const bool spark = i >= ENGINE_COUNT;
        const Engine& engine = ENGINES[spark ? i - ENGINE_COUNT : i];
        if (spark) {
            // A helix of sparks spun off behind a main engine, streaming away. The helix turns
            // round the z axis near z = 0, so it is made there and drawn moved to the engine.
            BoundingBox region;
            region.create(Vector3(0.0f, 0.0f, 0.0f), engine.radius * 0.5f);
            emitters[i] =
                new PCInfoHelix(PARTICLE_QUAD, 1.2f, 2.4f, Vector3(0.5f, 0.5f, 0.5f), Color(0.85f, 0.95f, 1.0f, 1.0f),
                                Color(0.2f, 0.3f, 1.0f, 0.0f), region, PCINFO_PLANE_XY, 3.0f);
        } else {
            // The plume at the mouth: a band round the nozzle's axis, burning out blue.
            const float reach = engine.radius * 0.26f;
            const Vector3 corner(reach, reach, reach);
            const BoundingBox region(engine.mouth - corner, engine.mouth + corner);
            emitters[i] = new PCInfoCircle(
                PARTICLE_QUAD, 0.5f, 1.1f, Vector3(engine.radius * 0.55f, engine.radius * 0.55f, 1.0f),
                Color(0.55f, 0.75f, 1.0f, 0.9f), Color(0.1f, 0.1f, 0.6f, 0.0f), region, PCINFO_PLANE_XY);
        }
        emitters[i]->material = material;
        clusters[i] =
            new ParticleCluster(EXHAUST_MATERIAL, spark ? SPARK_PARTICLES : NOZZLE_PARTICLES, emitters[i], true);
        clusters[i]->setSpeed(spark ? 30.0f : 22.0f);
    }
}

void SpaceCraft::update(float seconds)
{
    updateTimer(seconds);
    planet.update(seconds);
    if (cameraAnimation)
        cameraAnimation->update(seconds);
    for (ParticleCluster* cluster : clusters)
        if (cluster)
            cluster->update(seconds);
}

void SpaceCraft::drawHull(Camera& camera)
{
    if (!hull)
        return;
    batch.cull(camera.getFrustum());
    batch.sortFrom(camera.getPosition());
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    batch.draw();
    glPopClientAttrib();
}

void SpaceCraft::drawCard(const Camera& camera, const Vector3& where, float size, float r, float g, float b) const
{
    const Vector3 u = camera.getU() * size;
    const Vector3 v = camera.getV() * size;
    glColor4f(r, g, b, 1.0f);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(where.x - u.x - v.x, where.y - u.y - v.y, where.z - u.z - v.z);
    glTexCoord2f(1.0f, 0.0f);
    glVertex3f(where.x + u.x - v.x, where.y + u.y - v.y, where.z + u.z - v.z);
    glTexCoord2f(1.0f, 1.0f);
    glVertex3f(where.x + u.x + v.x, where.y + u.y + v.y, where.z + u.z + v.z);
    glTexCoord2f(0.0f, 1.0f);
    glVertex3f(where.x - u.x + v.x, where.y - u.y + v.y, where.z - u.z + v.z);
}

void SpaceCraft::drawGlows(const Camera& camera) const
{
    if (!glow)
        return;
    const float now = timer.getCurrent();
    const float pulse = throb(now);
    glPushAttrib(GL_ENABLE_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glow->bind();
    glBegin(GL_QUADS);
    // A bloom over each engine's mouth that swells with the kick drum.
    for (int i = 0; i < ENGINE_COUNT; ++i) {
        const Engine& e = ENGINES[i];
        const float k = 0.45f + 0.35f * pulse;
        drawCard(camera, e.mouth + Vector3(0.0f, 0.0f, 1.5f), e.radius * (1.9f + 0.5f * pulse), 0.35f * k, 0.55f * k,
                 1.0f * k);
    }
    for (const NavLight& light : NAV_LIGHTS) {
        const float b = blink(light.blink, now);
        if (b <= 0.0f)
            continue;
        drawCard(camera, light.position, light.size * (0.6f + 0.8f * b), light.colour.r * b, light.colour.g * b,
                 light.colour.b * b);
        drawCard(camera, light.position, light.size * 0.25f, b, b, b);
    }
    glEnd();
    glow->unbind();
    glPopAttrib();
}

void SpaceCraft::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    if (!camera)
        return;
    drawHull(*camera);
    backdrop.draw(*camera);
    {
        // Lights an earlier scene left on would light the planet from nowhere.
        const OwnLights only(OWN_LIGHTS);
        planet.display();
    }
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    const Frustum& frustum = camera->getFrustum();
    for (int i = 0; i < ENGINE_COUNT; ++i)
        if (clusters[i] && clusters[i]->visible(frustum))
            clusters[i]->draw();
    for (int i = ENGINE_COUNT; i < CLUSTER_COUNT; ++i) {
        const Vector3 mouth = ENGINES[i - ENGINE_COUNT].mouth + Vector3(0.0f, 0.0f, SPARK_LEAD);
        if (!clusters[i] || !frustum.isSphereInside(mouth + Vector3(0.0f, 0.0f, SPARK_REACH), SPARK_REACH * 1.5f))
            continue;
        glPushMatrix();
        glTranslatef(mouth.x, mouth.y, mouth.z);
        clusters[i]->draw();
        glPopMatrix();
    }
    drawGlows(*camera);
    lights->turnLightingOn();
    GLF_checkError("SpaceCraft:display()");
}

void SpaceCraft::release()
{
    batch.release();
    delete hull;
    hull = nullptr;
    delete cameraAnimation;
    cameraAnimation = nullptr;
    for (int i = 0; i < CLUSTER_COUNT; ++i) {
        delete clusters[i];
        clusters[i] = nullptr;
        delete emitters[i];
        emitters[i] = nullptr;
    }
    // Registered materials belong to the registry, pictures to the texture cache.
    twins.forget();
    glow = nullptr;
}

void SpaceCraft::shutdown()
{
    // The hull's and the exhausts' pictures are its own; the sky and the planet are the cockpit's next.
    twins.releasePictures();
    SceneKit::releaseTexture(GLOW);
    release();
    backdrop.release();
    planet.shutdown();
    LightMgr::getHandle()->remove(SUN_LIGHT);
    LightMgr::getHandle()->remove(FILL_LIGHT);
}
