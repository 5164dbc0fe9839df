// The open-sea scene: loading its content, the water's waves, the looping birds and the drawing order.
#include "effects/Islands.h"

#include "effects/IslandsLayout.h"
#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"
#include "math/MathConstants.h"

#include "math/Color.h"
#include "scene/BezierMesh.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/FaceArray.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "scene/VertexArray.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <cmath>
#include <iostream>
#include <string>

namespace {

using namespace IslandsLayout;

const float SKY_RADIUS = 200.0f;
const float VERTEX_PHASE_STEP = 81.48733f;
const float WAVE_HEIGHT = 0.125f;
const float SCROLL_SPEED = 0.0128f;
const float WAVE_SPEED = 45.0f;
// The water reaches the rim of the sky dome; its texture repeats every ten units.
const float WATER_EXTENT = 200.0f;
const float WATER_TEXTURE_REPEAT = 40.0f;
const int MOUNTAIN_GRID = 10;
// No later scene draws these; the sky alone holds fourteen megabytes, pixels and the renderer's copy.
const TextureFile OWN_PICTURES[] = {SAND, WATER, SKY, WINDOW};

const Vector3 BIRD_OFFSETS[Islands::NUM_BIRDS] = {
    Vector3(0.0f, 0.0f, 0.0f),  Vector3(20.0f, -0.5f, 8.0f),   Vector3(-6.0f, 5.0f, 4.0f),
    Vector3(0.0f, 1.0f, 18.0f), Vector3(-18.0f, 0.25f, 18.0f), Vector3(-15.0f, -0.5f, -15.0f),
};

const Color GREY_AMBIENT(0.2f, 0.2f, 0.2f, 1.0f);
const Color GREY_DIFFUSE(0.8f, 0.8f, 0.8f, 1.0f);
const Color WHITE(1.0f, 1.0f, 1.0f, 1.0f);
const SceneKit::LightSetup ISLAND_LIGHT = {Vector3(), GREY_AMBIENT, GREY_DIFFUSE, WHITE, {2.0f, 1.5f, 0.5f}};

SceneKit::LightSetup islandLight(const Vector3& direction)
{
    SceneKit::LightSetup setup = ISLAND_LIGHT;
    setup.direction = direction;
    return setup;
}

Vector3 trackPosition(const MeshAnimation* animation)
{
    const Lin3Track* track = animation->getPositionTrack();
    return track ? track->evaluate(animation->getCurrentFrame()) : Vector3(0.0f, 0.0f, 0.0f);
}

bool sphereVisible(const Camera* camera, const Mesh* mesh, const Vector3& moved)
{
    if (!camera)
        return true;
    const BoundingBox& limits = mesh->getLimits();
    return camera->getFrustum().isSphereInside(limits.getCentre() + moved, limits.getRadius());
}

}  // namespace

Islands::Islands(short layer, const EffectTimer& timer)
    : Effect(layer, timer), skyMaterial(nullptr), windowTexture(nullptr), sky(SKY_RADIUS), ship(nullptr),
      shipAnim(nullptr), cameraAnim(nullptr), birdAnim(nullptr), birdMeshes{nullptr, nullptr},
      birds(nullptr), clusters{}, clusterInfo{}, water(nullptr), waterAngle(0.0f), waterPhase(0.0f), waterScroll(0.0f),
      vertexPhase(0.0f), mountains(nullptr)
{
    loadBezierMeshes();
    loadShip();
    loadBirds();
}

Islands::~Islands()
{
    unloadCluster();
    unloadCameraAnims();
    unloadWaterMesh();
    unloadBirds();
    unloadShip();
    unloadBezierMeshes();
}

void Islands::loadBezierMeshes()
{
    TextureMaterial* material =
        SceneKit::makeMaterial("Sand4", SceneKit::loadTexture(SAND), Material::blendNone, Material::textured);
    material->setAmbient(GREY_AMBIENT);
    material->setDiffuse(GREY_DIFFUSE);
    material->setSpecular(WHITE);

    // A mountain that will not load is left out without a word.
    for (const Mountain& entry : MOUNTAINS) {
        BezierMesh* mesh = SceneKit::loadOrSay<BezierMesh>(entry.file, "");
        if (!mesh)
            continue;
        mesh->setGridSize(MOUNTAIN_GRID, MOUNTAIN_GRID);
        mesh->setMaterial(material);
        mesh->moveMesh(entry.offset);
        mountains = new MountainNode{mesh, mountains};
    }
}

void Islands::loadShip()
{
    ship = SceneKit::loadOrSay<Mesh>(SharedLayout::SHIP_MESH, "Couldn't 'data/3d/load ship.msh'\n");
    // Without the ship its path is still loaded.
    if (ship && !MaterialMgr::getHandle()->find("ShipMaterial")) {
        Texture* texture = SceneKit::loadTexture(SharedLayout::SHIP_TEXTURE);
        if (!texture)
            std::cerr << "Unable to load data/img/ship.png\n";
        TextureMaterial* material =
            SceneKit::makeMaterial("ShipIslandMaterial", texture, Material::blendNone, Material::reflective);
        material->setAmbient(GREY_AMBIENT);
        material->setDiffuse(GREY_DIFFUSE);
        material->setSpecular(Color(0.5f, 0.5f, 0.5f, 1.0f));
        SceneKit::giveMaterial(ship, material);
    }
    shipAnim = SceneKit::loadOrSay<MeshAnimation>(SHIP_PATH, "Failed to load 'data/3d/ship_island.cam'\n");
    if (!shipAnim)
        return;
    shipAnim->setup();
    shipAnim->setFramesPerSec(static_cast<float>(SHIP_FRAMES_PER_SEC));
    shipAnim->setMesh(ship);
}

void Islands::loadBirds()
{
    for (int i = 0; i < 2; ++i) {
        const std::string message = "Unable to load bird " + std::to_string(i) + "\n";
        birdMeshes[i] = SceneKit::loadOrSay<Mesh>(BIRD_MESHES[i], message.c_str());
        if (!birdMeshes[i])
            return;
    }
    // No newline, a backspace instead: the program's own message.
    birdAnim = SceneKit::loadOrSay<MeshAnimation>(BIRD_PATH, "Unable to load bird anim\b");
    if (!birdAnim)
        return;
    birdAnim->setup();
    birdAnim->setFramesPerSec(static_cast<float>(BIRD_FRAMES_PER_SEC));
    for (int i = 0; i < NUM_BIRDS; ++i)
        birds = new Bird{i % 2, BIRD_OFFSETS[i], birds};
}

int Islands::getMountainCount() const
{
    int count = 0;
    for (const MountainNode* m = mountains; m; m = m->next)
        ++count;
    return count;
}

int Islands::getBirdCount() const
{
    int count = 0;
    for (const Bird* bird = birds; bird; bird = bird->next)
        ++count;
    return count;
}

void Islands::initiate()
{
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
    glClearColor(0.05f, 0.1f, 0.2f, 1.0f);
    waterAngle = 0.0f;
    waterPhase = 0.0f;
    waterScroll = 0.0f;

    windowTexture = SceneKit::loadTexture(WINDOW);

    skyMaterial = MaterialMgr::getHandle()->find("HemisphereMaterial");
    if (!skyMaterial) {
        Texture* texture = SceneKit::loadTexture(SKY);
        if (!texture)
            std::cout << "Could not load hemisphere texture\n";
        skyMaterial = SceneKit::makeMaterial("HemisphereMaterial", texture, Material::blendNone, Material::textured);
    }

    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(20.0f, 5.0f, 20.0f), Vector3(-50.0f, 1.0f, -10.0f));
        camera->setClipPlanes(0.1f, 1000.0f);
        camera->setFOV(45.0f);
        cameras->add(camera);
        cameras->setActiveCamera(camera);
    }

    SceneKit::directionalLight("IslandLight1", islandLight(Vector3(0.0f, -1.0f, 1.0f)));
    SceneKit::directionalLight("IslandLight2", islandLight(Vector3(1.0f, 1.0f, 0.0f)));

    createWaterMesh();
    loadCluster();
    loadCameraAnims();
}

void Islands::loadCluster()
{
    unloadCluster();
    TextureMaterial* material = SceneKit::makeMaterial("ICL", SceneKit::loadTexture(SharedLayout::PARTICLE),
                                                       Material::blendGlow, Material::overlay);
    for (int i = 0; i < NUM_CLUSTERS; ++i) {
        const Vector3 corner(2.0f, 2.0f, 2.0f);
        const BoundingBox region(PLUMES[i] - corner, PLUMES[i] + corner);
        clusterInfo[i] = new PCInfoPoint(PARTICLE_QUAD, 1.0f, 2.0f, Vector3(0.2f, 0.2f, 1.0f),
                                         Color(1.0f, 0.3f, 0.1f, 1.0f), Color(0.1f, 0.1f, 0.1f, 0.1f), region);
        clusterInfo[i]->material = material;
        clusters[i] = new ParticleCluster("ICL", 64, clusterInfo[i], true);
        clusters[i]->setSpeed(1.0f);
    }
}

void Islands::loadCameraAnims()
{
    unloadCameraAnims();
    cameraAnim = SceneKit::loadOrSay<CameraAnimation>(CAMERA_PATH, "Couldn't load 'data/3d/camera_islands.cam'\n");
    if (cameraAnim)
        cameraAnim->setup();
}

void Islands::createWaterMesh()
{
    unloadWaterMesh();
    Material* material = MaterialMgr::getHandle()->find("WaterMaterial");
    if (!material) {
        material = SceneKit::makeMaterial("WaterMaterial", SceneKit::loadTexture(WATER), Material::blendAlpha,
                                          Material::overlay);
        material->setAmbient(Color(0.3f, 0.3f, 0.3f, 1.0f));
        material->setDiffuse(Color(0.7f, 0.7f, 0.7f, 1.0f));
        material->setSpecular(WHITE);
    }
    VertexArray* vertices = new VertexArray();
    vertices->create(WATER_SIZE * WATER_SIZE);
    const float step = 2.0f * WATER_EXTENT / static_cast<float>(WATER_SIZE - 1);
    const float uvStep = WATER_TEXTURE_REPEAT / static_cast<float>(WATER_SIZE - 1);
    for (int i = 0; i < WATER_SIZE; ++i) {
        for (int j = 0; j < WATER_SIZE; ++j) {
            const Vector3 position(-WATER_EXTENT + step * static_cast<float>(j), 0.0f,
                                   -WATER_EXTENT + step * static_cast<float>(i));
            vertices->addVertex(position, Vector2(uvStep * static_cast<float>(j), uvStep * static_cast<float>(i)),
                                Vector3(0.0f, 1.0f, 0.0f));
        }
    }
    FaceArray* faces = new FaceArray();
    faces->create(2 * (WATER_SIZE - 1) * (WATER_SIZE - 1));
    for (int i = 0; i + 1 < WATER_SIZE; ++i) {
        for (int j = 0; j + 1 < WATER_SIZE; ++j) {
            const uint32_t a = static_cast<uint32_t>(i * WATER_SIZE + j);
            const uint32_t b = a + 1;
            const uint32_t c = a + WATER_SIZE;
            const uint32_t d = c + 1;
            // Counter-clockwise seen from above (x right, z towards the viewer).
            const uint32_t triangles[2][3] = {{a, c, b}, {b, c, d}};
            for (const auto& triangle : triangles) {
                Face face;
                face.create(3);
                for (int k = 0; k < 3; ++k)
                    face.indices[k] = triangle[k];
                face.setMaterial(material);
                faces->addFace(face);
            }
        }
    }
    water = new Mesh();
    water->setName("Water");
    water->create(vertices, faces);
    calcFaceNormals(vertices, faces);
    calcBounds(vertices);
}

float Islands::waterFunc(float angle, int i, int j)
{
    const float u = static_cast<float>(i) / 20.0f - 0.5f;
    const float v = static_cast<float>(j) / 20.0f - 0.5f;
    const float w = u == 0.0f ? 0.0f : std::atan2(u, v);
    return std::cos(w) * std::cos(angle + vertexPhase) * WAVE_HEIGHT;
}

void Islands::updateWaterMesh(float dt)
{
    waterScroll += dt * SCROLL_SPEED;
    waterPhase += dt;
    waterAngle += dt * WAVE_SPEED;
    if (waterAngle >= 360.0f)
        waterAngle -= 360.0f;
    if (!water)
        return;
    VertexArray* vertices = water->getVertices();
    const float radians = waterAngle * MathConstants::DEGREES_TO_RADIANS;
    for (int i = 0; i < WATER_SIZE; ++i) {
        for (int j = 0; j < WATER_SIZE; ++j) {
            const int k = WATER_SIZE * i + j;
            vertexPhase = waterPhase + static_cast<float>(k) * VERTEX_PHASE_STEP;
            (*vertices)[k].position.y = waterFunc(radians, i, j);
        }
    }
    calcFaceNormals(vertices, water->getFaces());
}

void Islands::calcFaceNormals(VertexArray* vertices, FaceArray* faces)
{
    if (!vertices || !faces)
        return;
    for (int f = 0; f < faces->getNumFaces(); ++f) {
        Face& face = (*faces)[f];
        const Vector3& p0 = (*vertices)[static_cast<int>(face.indices[0])].position;
        const Vector3& p1 = (*vertices)[static_cast<int>(face.indices[1])].position;
        const Vector3& p2 = (*vertices)[static_cast<int>(face.indices[2])].position;
        Vector3 n = (p1 - p0).cross(p2 - p0);
        if (n.length() > 0.0f)
            n.normalize();
        face.normal = n;
    }
}

void Islands::calcBounds(VertexArray* vertices)
{
    if (!vertices || vertices->getNumVertices() == 0 || !water)
        return;
    Vector3 low = (*vertices)[0].position;
    Vector3 high = low;
    for (int k = 1; k < vertices->getNumVertices(); ++k) {
        const Vector3& p = (*vertices)[k].position;
        low = Vector3(std::fmin(low.x, p.x), std::fmin(low.y, p.y), std::fmin(low.z, p.z));
        high = Vector3(std::fmax(high.x, p.x), std::fmax(high.y, p.y), std::fmax(high.z, p.z));
    }
    // The waves move the surface by up to their height either way.
    low.y -= WAVE_HEIGHT;
    high.y += WAVE_HEIGHT;
    water->setLimits(BoundingBox(low, high));
}

void Islands::updateBirds(float dt)
{
    if (!birdAnim)
        return;
    birdAnim->update(dt);
    if (birdAnim->getCurrentFrame() >= static_cast<float>(birdAnim->getLastFrame())) {
        birdAnim->setFrame(0);
        birdAnim->update(0.0f);
    }
}

void Islands::update(float dt)
{
    updateTimer(dt);
    updateWaterMesh(dt);
    if (shipAnim)
        shipAnim->update(dt);
    if (cameraAnim)
        cameraAnim->update(dt);
    updateBirds(dt);
    for (ParticleCluster* cluster : clusters)
        if (cluster)
            cluster->update(dt);
}

void Islands::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();

    glPushMatrix();
    glTranslatef(0.0f, -1.0f, 0.0f);
    if (skyMaterial)
        skyMaterial->bind();
    sky.draw(20, 20);
    if (skyMaterial)
        skyMaterial->unbind();
    glPopMatrix();
    lights->turnLightingOn();

    drawIslands(camera);
    drawBirds(camera);
    drawShip(camera);
    drawWater();
    drawCluster(camera);
}

void Islands::drawIslands(Camera* camera)
{
    glEnable(GL_NORMALIZE);
    glEnable(GL_AUTO_NORMAL);
    for (MountainNode* m = mountains; m; m = m->next)
        m->mesh->draw(camera);
    glDisable(GL_NORMALIZE);
    glDisable(GL_AUTO_NORMAL);
}

void Islands::drawBirds(Camera* camera)
{
    if (!birds || !birdAnim)
        return;
    const Vector3 position = trackPosition(birdAnim);
    glFrontFace(GL_CW);
    for (Bird* bird = birds; bird; bird = bird->next) {
        const Mesh* mesh = birdMeshes[bird->mesh];
        if (!mesh || !sphereVisible(camera, mesh, bird->offset + position))
            continue;
        glPushMatrix();
        glTranslatef(bird->offset.x, bird->offset.y, bird->offset.z);
        birdAnim->setMatrix();
        glRotatef(-90.0f, 0.0f, 1.0f, 0.0f);
        mesh->draw(Mesh::drawShaded);
        glPopMatrix();
    }
    glFrontFace(GL_CCW);
}

void Islands::drawShip(Camera* camera)
{
    if (!ship || !shipAnim)
        return;
    if (!sphereVisible(camera, ship, trackPosition(shipAnim)))
        return;
    glPushMatrix();
    shipAnim->setMatrix();
    glFrontFace(GL_CW);
    ship->draw(Mesh::drawShaded);
    glFrontFace(GL_CCW);
    glPopMatrix();
}

void Islands::drawWater()
{
    if (!water)
        return;
    glDisable(GL_CULL_FACE);
    glMatrixMode(GL_TEXTURE);
    glPushMatrix();
    glLoadIdentity();
    const float s = std::sin(waterScroll);
    glTranslatef(s, s * s, 0.0f);
    glMatrixMode(GL_MODELVIEW);
    water->draw(Mesh::drawTextured);
    glMatrixMode(GL_TEXTURE);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glEnable(GL_CULL_FACE);
}

void Islands::drawCluster(Camera* camera)
{
    LightMgr::getHandle()->turnLightingOff();
    for (ParticleCluster* cluster : clusters) {
        if (!cluster)
            continue;
        glPushMatrix();
        if (!camera || cluster->visible(camera->getFrustum()))
            cluster->draw();
        glPopMatrix();
    }
    LightMgr::getHandle()->turnLightingOn();
}

void Islands::shutdown()
{
    unloadCluster();
    unloadCameraAnims();
    unloadWaterMesh();
    SceneKit::releaseTextures(OWN_PICTURES);
}

void Islands::unloadBezierMeshes()
{
    while (mountains) {
        MountainNode* next = mountains->next;
        delete mountains->mesh;
        delete mountains;
        mountains = next;
    }
}

void Islands::unloadShip()
{
    delete shipAnim;
    shipAnim = nullptr;
    delete ship;
    ship = nullptr;
}

void Islands::unloadBirds()
{
    while (birds) {
        Bird* next = birds->next;
        delete birds;
        birds = next;
    }
    delete birdAnim;
    birdAnim = nullptr;
    for (Mesh*& mesh : birdMeshes) {
        delete mesh;
        mesh = nullptr;
    }
}

void Islands::unloadCluster()
{
    for (int i = 0; i < NUM_CLUSTERS; ++i) {
        delete clusters[i];
        clusters[i] = nullptr;
        delete clusterInfo[i];
        clusterInfo[i] = nullptr;
    }
}

void Islands::unloadCameraAnims()
{
    delete cameraAnim;
    cameraAnim = nullptr;
}

void Islands::unloadWaterMesh()
{
    delete water;
    water = nullptr;
}
