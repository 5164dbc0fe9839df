// The open-sea scene: loading its content, the water's waves, the looping birds and the drawing order.
#include "effects/Islands.h"

#include "math/Color.h"
#include "scene/BezierMesh.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/DirectionalLight.h"
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

namespace {

// The absolute art directory.
const char* const ART_DIR = "data/img/";
const float SKY_RADIUS = 200.0f;
const float DEGREES_TO_RADIANS = 0.017453292f;
const float VERTEX_PHASE_STEP = 81.48733f;
const float WAVE_HEIGHT = 0.125f;
const float SCROLL_SPEED = 0.0128f;
const float WAVE_SPEED = 45.0f;
// The water reaches the rim of the sky dome; its texture repeats every ten units.
const float WATER_EXTENT = 200.0f;
const float WATER_TEXTURE_REPEAT = 40.0f;

struct MountainFile {
    const char* file;
    Vector3 offset;
};
const MountainFile MOUNTAINS[] = {
    {"data/3d/mountain1.bez", Vector3(10.0f, -0.15f, 10.0f)},
    {"data/3d/mountain2.bez", Vector3(10.0f, -0.15f, -10.0f)},
    {"data/3d/mountain3.bez", Vector3(-10.0f, -0.15f, -10.0f)},
    {"data/3d/mountain4.bez", Vector3(-10.0f, -0.15f, 10.0f)},
    {"data/3d/mountain6.bez", Vector3(-20.0f, -0.3f, 15.0f)},
    {"data/3d/mountain7.bez", Vector3(60.0f, 0.5f, 0.0f)},
};

const Vector3 BIRD_OFFSETS[Islands::NUM_BIRDS] = {
    Vector3(0.0f, 0.0f, 0.0f),    Vector3(20.0f, -0.5f, 8.0f),   Vector3(-6.0f, 5.0f, 4.0f),
    Vector3(0.0f, 1.0f, 18.0f),   Vector3(-18.0f, 0.25f, 18.0f), Vector3(-15.0f, -0.5f, -15.0f),
};

const Vector3 PLUMES[Islands::NUM_CLUSTERS] = {
    Vector3(-12.5f, 0.93f, 8.0f),
    Vector3(9.0f, 1.5f, 5.0f),
    Vector3(-7.0f, 1.0f, -7.0f),
    Vector3(4.3f, 2.3f, -4.6f),
};

const Color GREY_AMBIENT(0.2f, 0.2f, 0.2f, 1.0f);
const Color GREY_DIFFUSE(0.8f, 0.8f, 0.8f, 1.0f);
const Color WHITE(1.0f, 1.0f, 1.0f, 1.0f);

TextureMaterial* makeMaterial(const char* name, Texture* texture, int blend, unsigned long flags)
{
    TextureMaterial* material = new TextureMaterial(name);
    material->setTexture(texture);
    material->setBlendMode(blend);
    material->setFlags(flags);
    MaterialMgr::getHandle()->add(material);
    return material;
}

Light* findOrMakeLight(const char* name, const Vector3& position)
{
    Light* light = LightMgr::getHandle()->find(name);
    if (!light) {
        light = new DirectionalLight(name);
        light->setPosition(position);
        light->setAmbient(GREY_AMBIENT);
        light->setDiffuse(GREY_DIFFUSE);
        light->setSpecular(WHITE);
        light->setAttenuation(2.0f, 1.5f, 0.5f);
        LightMgr::getHandle()->add(light);
    }
    light->initiate();
    light->turnOn();
    return light;
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
      shipAnim(nullptr), cameraAnim(nullptr), birdAnim(nullptr), birdMeshes{nullptr, nullptr}, birds(nullptr),
      clusters{}, clusterInfo{}, water(nullptr), waterAngle(0.0f), waterPhase(0.0f), waterScroll(0.0f),
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
    Texture* sand = TextureMgr::getHandle()->loadTexture("data/img/sand4.png", 7);
    TextureMaterial* material = new TextureMaterial("Sand4");
    material->setTexture(sand);
    material->setAmbient(GREY_AMBIENT);
    material->setDiffuse(GREY_DIFFUSE);
    material->setSpecular(WHITE);
    material->setBlendMode(0);
    material->setFlags(0x10000013);
    MaterialMgr::getHandle()->add(material);

    for (const MountainFile& entry : MOUNTAINS) {
        BezierMesh* mesh = new BezierMesh();
        if (!mesh->load(entry.file)) {
            std::cerr << "Couldn't load '" << entry.file << "'\n";
            delete mesh;
            continue;
        }
        mesh->setGridSize(10, 10);
        mesh->setMaterial(material);
        mesh->moveMesh(entry.offset);
        mountains = new Mountain{mesh, mountains};
    }
}

void Islands::loadShip()
{
    ship = new Mesh();
    if (!ship->load("data/3d/ship.msh")) {
        std::cerr << "Couldn't 'data/3d/load ship.msh'\n";
        delete ship;
        ship = nullptr;
        return;
    }
    if (!MaterialMgr::getHandle()->find("ShipMaterial")) {
        Texture* texture = TextureMgr::getHandle()->loadTexture("data/img/ship.png", 7);
        if (!texture)
            std::cerr << "Unable to load data/img/ship.png\n";
        TextureMaterial* material = makeMaterial("ShipIslandMaterial", texture, 0, 0x10000043);
        material->setAmbient(GREY_AMBIENT);
        material->setDiffuse(GREY_DIFFUSE);
        material->setSpecular(Color(0.5f, 0.5f, 0.5f, 1.0f));
        FaceArray* faces = ship->getFaces();
        for (int i = 0; faces && i < faces->getNumFaces(); ++i)
            (*faces)[i].setMaterial(material);
    }
    shipAnim = new MeshAnimation();
    if (!shipAnim->load("data/3d/ship_island.cam")) {
        std::cerr << "Failed to load 'data/3d/ship_island.cam'\n";
        delete shipAnim;
        shipAnim = nullptr;
        return;
    }
    shipAnim->setup();
    shipAnim->setFramesPerSec(24.0f);
    shipAnim->setMesh(ship);
}

void Islands::loadBirds()
{
    const char* const files[2] = {"data/3d/fugl1.msh", "data/3d/fugl2.msh"};
    for (int i = 0; i < 2; ++i) {
        birdMeshes[i] = new Mesh();
        if (!birdMeshes[i]->load(files[i])) {
            std::cerr << "Unable to load bird " << i << "\n";
            delete birdMeshes[i];
            birdMeshes[i] = nullptr;
            return;
        }
    }
    birdAnim = new MeshAnimation();
    if (!birdAnim->load("data/3d/bird_island.cam")) {
        // No newline, a backspace instead: the program's own message.
        std::cerr << "Unable to load bird anim\b";
        delete birdAnim;
        birdAnim = nullptr;
        return;
    }
    birdAnim->setup();
    birdAnim->setFramesPerSec(12.0f);
    for (int i = 0; i < NUM_BIRDS; ++i)
        birds = new Bird{i % 2, BIRD_OFFSETS[i], birds};
}

void Islands::initiate()
{
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
    glClearColor(0.05f, 0.1f, 0.2f, 1.0f);
    waterAngle = 0.0f;
    waterPhase = 0.0f;
    waterScroll = 0.0f;

    const std::string art(ART_DIR);
    windowTexture = TextureMgr::getHandle()->loadTexture((art + "window02.png").c_str(), 8);

    skyMaterial = MaterialMgr::getHandle()->find("HemisphereMaterial");
    if (!skyMaterial) {
        Texture* texture = TextureMgr::getHandle()->loadTexture((art + "skymoon2.png").c_str(), 7);
        if (!texture)
            std::cout << "Could not load hemisphere texture\n";
        skyMaterial = makeMaterial("HemisphereMaterial", texture, 0, 0x10000013);
    }

    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find("IslandCamera")) {
        Camera* camera = new Camera("IslandCamera");
        camera->lookAt(Vector3(20.0f, 5.0f, 20.0f), Vector3(-50.0f, 1.0f, -10.0f));
        camera->setClipPlanes(0.1f, 1000.0f);
        camera->setFOV(45.0f);
        cameras->add(camera);
        cameras->setActiveCamera(camera);
    }

    findOrMakeLight("IslandLight1", Vector3(0.0f, -1.0f, 1.0f));
    findOrMakeLight("IslandLight2", Vector3(1.0f, 1.0f, 0.0f));

    createWaterMesh();
    loadCluster();
    loadCameraAnims();
}

void Islands::loadCluster()
{
    unloadCluster();
    Texture* texture = TextureMgr::getHandle()->loadTexture("data/img/particle.png", 7);
    TextureMaterial* material = makeMaterial("ICL", texture, 6, 0x20000013);
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
    cameraAnim = new CameraAnimation();
    if (!cameraAnim->load("data/3d/camera_islands.cam")) {
        std::cerr << "Couldn't load 'data/3d/camera_islands.cam'\n";
        delete cameraAnim;
        cameraAnim = nullptr;
        return;
    }
    cameraAnim->setup();
}

void Islands::createWaterMesh()
{
    unloadWaterMesh();
    Material* material = MaterialMgr::getHandle()->find("WaterMaterial");
    if (!material) {
        Texture* texture = TextureMgr::getHandle()->loadTexture("data/img/water.png", 7);
        material = makeMaterial("WaterMaterial", texture, 2, 0x20000013);
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
    const float radians = waterAngle * DEGREES_TO_RADIANS;
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
    for (Mountain* m = mountains; m; m = m->next)
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
        mesh->draw(3);
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
    ship->draw(3);
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
    water->draw(7);
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
}

void Islands::unloadBezierMeshes()
{
    while (mountains) {
        Mountain* next = mountains->next;
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
