// The underwater tunnel: loading its parts, advancing the paths and glows, drawing in fog.
#include "effects/UnderwaterTunnel.h"

#include "gl/GLF_checkError.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/DirectionalLight.h"
#include "scene/Face.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/ParticleCluster.h"
#include "scene/ParticleInfo.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <iostream>

namespace {

const char* const TUNNEL_FILE = "data/3d/tunnel3.oct";
const char* const SHIP_FILE = "data/3d/ship.msh";
const char* const SHIP_ANIMATION_FILE = "data/3d/ship_tunnel.cam";
const char* const CAMERA_ANIMATION_FILE = "data/3d/camera_tunnel.cam";
const char* const SHIP_MATERIAL = "ShipTunnelMaterial";
const char* const SHIP_TEXTURE = "data/img/ship.png";
const char* const OBJECT_MATERIAL = "TunnelObject";
const char* const OBJECT_TEXTURE = "data/img/refmap.png";
const char* const TUNNEL_MATERIAL = "UWTunnel";
const char* const TUNNEL_TEXTURE = "data/img/test.png";
const char* const TUNNEL_TEXTURE2 = "data/img/water03.png";
const char* const CLUSTER_MATERIAL = "TCL";
const char* const CLUSTER_TEXTURE = "data/img/particle.png";
const char* const CAMERA_NAME = "TunnelCamera";
const char* const LIGHT1_NAME = "TunnelLight1";
const char* const LIGHT2_NAME = "TunnelLight2";
const int RGB_FORMAT = 7;
const int DRAW_MASK = 3;
const int CLUSTER_SIZE = 64;

const char* const OBJECT_FILES[UnderwaterTunnel::OBJECT_COUNT] = {
    "data/3d/leaf.msh", "data/3d/worm.msh", "data/3d/spike.msh", "data/3d/fan2.msh", "data/3d/fanholder2.msh",
};
const Vector3 OBJECT_POSITIONS[UnderwaterTunnel::OBJECT_COUNT] = {
    Vector3(-135.0f, -200.0f, 5.0f), Vector3(-40.0f, -200.0f, 0.0f), Vector3(-187.0f, -201.0f, 11.0f),
    Vector3(248.0f, -246.0f, 57.0f), Vector3(248.0f, -246.0f, 57.0f),
};
// Leaf, worm and spike turn and are drawn four times their size; the fan spins on its axis.
const int SCALED_OBJECTS = 3;
const int FAN = 3;

const Vector3 CLUSTER_POSITIONS[UnderwaterTunnel::CLUSTER_COUNT] = {
    Vector3(4.0f, -195.0f, -1.0f),   Vector3(5.0f, -190.0f, 2.0f),   Vector3(5.0f, -202.0f, -7.0f),
    Vector3(158.0f, -245.0f, 26.0f), Vector3(-136.0f, -198.0f, 0.0f), Vector3(-135.0f, -200.0f, 4.0f),
    Vector3(-215.0f, -201.0f, 15.0f),
};
const Color CLUSTER_COLORS[UnderwaterTunnel::CLUSTER_COUNT] = {
    Color(1.0f, 0.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 0.0f, 1.0f), Color(0.0f, 1.0f, 1.0f, 1.0f),
    Color(1.0f, 1.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f),
    Color(1.0f, 1.0f, 1.0f, 1.0f),
};
// Half the side of the box a glow's particles start on the sphere around.
const float CLUSTER_REACH = 0.5f;

// Uploaded while the scene starts rather than at its first bind: no image is sent in the frame
// loop, and an upload made at a bind on the second unit would land on the first.
Texture* loadTexture(const char* file)
{
    Texture* texture = TextureMgr::getHandle()->loadTexture(file, RGB_FORMAT);
    if (texture && texture->getGLName() == Texture::noName)
        texture->upload();
    return texture;
}

void giveMaterial(Mesh* mesh, Material* material)
{
    FaceArray* faces = mesh->getFaces();
    if (!faces)
        return;
    for (int i = 0; i < faces->getNumFaces(); ++i)
        faces->getFaces()[i].setMaterial(material);
}

// A textured material found by name, or made with these values and registered.
TextureMaterial* textureMaterial(const char* name, const char* file, unsigned long flags, int blendMode)
{
    MaterialMgr* materials = MaterialMgr::getHandle();
    TextureMaterial* existing = dynamic_cast<TextureMaterial*>(materials->find(name));
    if (existing)
        return existing;
    TextureMaterial* material = new TextureMaterial(name);
    material->setTexture(loadTexture(file));
    material->setFlags(flags);
    material->setBlendMode(blendMode);
    materials->add(material);
    return material;
}

void makeLight(const char* name, const Vector3& towards, const Color& diffuse)
{
    LightMgr* lights = LightMgr::getHandle();
    if (lights->find(name))
        return;
    DirectionalLight* light = new DirectionalLight(name);
    light->setPosition(towards);
    light->setAmbient(Color(0.2f, 0.2f, 0.2f, 1.0f));
    light->setDiffuse(diffuse);
    light->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    light->setAttenuation(1.0f, 0.0f, 0.0f);
    lights->add(light);
    light->uploadStates();
    light->turnOn();
}

}

UnderwaterTunnel::UnderwaterTunnel(short layer, const EffectTimer& timer)
    : Effect(layer, timer), colour(0.1f, 0.15f, 0.2f, 1.0f), tunnel(nullptr), ship(nullptr), shipAnimation(nullptr),
      cameraAnimation(nullptr), tunnelMaterial(nullptr), angle(0.0f), objects(), clusters(), emitters()
{
}

UnderwaterTunnel::~UnderwaterTunnel()
{
    release();
}

Vector3 UnderwaterTunnel::objectPosition(int i)
{
    return (i >= 0 && i < OBJECT_COUNT) ? OBJECT_POSITIONS[i] : Vector3(0.0f, 0.0f, 0.0f);
}

Vector3 UnderwaterTunnel::clusterPosition(int i)
{
    return (i >= 0 && i < CLUSTER_COUNT) ? CLUSTER_POSITIONS[i] : Vector3(0.0f, 0.0f, 0.0f);
}

Color UnderwaterTunnel::clusterColor(int i)
{
    return (i >= 0 && i < CLUSTER_COUNT) ? CLUSTER_COLORS[i] : Color();
}

const char* UnderwaterTunnel::objectFile(int i)
{
    return (i >= 0 && i < OBJECT_COUNT) ? OBJECT_FILES[i] : "";
}

void UnderwaterTunnel::initiate()
{
    setupFog();
    loadTunnel();
    loadShip();
    loadObjects();
    loadCamera();
    loadLights();
    loadTunnelMaterial();
    loadCluster();
}

void UnderwaterTunnel::setupFog()
{
    colour = Color(0.1f, 0.15f, 0.2f, 1.0f);
    const float fog[4] = {colour.r, colour.g, colour.b, colour.a};
    glClearColor(colour.r, colour.g, colour.b, colour.a);
    glFogfv(GL_FOG_COLOR, fog);
    glFogi(GL_FOG_MODE, GL_EXP);
    glFogf(GL_FOG_DENSITY, 0.1f);
    glHint(GL_FOG_HINT, GL_NICEST);
    // Not read in the exponential mode; set all the same.
    glFogf(GL_FOG_START, 190.0f);
    glFogf(GL_FOG_END, 200.0f);
    glEnable(GL_FOG);
}

void UnderwaterTunnel::loadTunnel()
{
    delete tunnel;
    tunnel = new Octree();
    if (tunnel->load(TUNNEL_FILE))
        return;
    std::cerr << "Unable to load tunnel data\n";
    delete tunnel;
    tunnel = nullptr;
}

void UnderwaterTunnel::loadShip()
{
    delete ship;
    ship = new Mesh();
    if (!ship->load(SHIP_FILE)) {
        std::cerr << "Unable to load ship\n";
        delete ship;
        ship = nullptr;
    }
    delete shipAnimation;
    shipAnimation = new MeshAnimation();
    if (shipAnimation->load(SHIP_ANIMATION_FILE)) {
        shipAnimation->setup();
        shipAnimation->setMesh(ship);
    } else {
        std::cerr << "Unable to load ship animation\n";
        delete shipAnimation;
        shipAnimation = nullptr;
    }
    TextureMaterial* material = textureMaterial(SHIP_MATERIAL, SHIP_TEXTURE, 0x10000043, 0);
    material->setAmbient(Color(0.2f, 0.2f, 0.2f, 1.0f));
    material->setDiffuse(Color(0.8f, 0.8f, 0.8f, 1.0f));
    material->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    if (ship)
        giveMaterial(ship, material);
}

void UnderwaterTunnel::loadObjects()
{
    TextureMaterial* material = textureMaterial(OBJECT_MATERIAL, OBJECT_TEXTURE, 0x10000043, 0);
    for (int i = 0; i < OBJECT_COUNT; ++i) {
        delete objects[i];
        objects[i] = new Mesh();
        if (objects[i]->load(OBJECT_FILES[i])) {
            giveMaterial(objects[i], material);
            continue;
        }
        std::cerr << "UNABLE TO LOAD " << OBJECT_FILES[i] << "\n";
        delete objects[i];
        objects[i] = nullptr;
    }
}

void UnderwaterTunnel::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(-262.0f, -195.0f, 26.0f), Vector3(-240.0f, -196.0f, 22.0f));
        camera->setClipPlanes(0.1f, 1000.0f);
        camera->setFOV(60.0f);
        cameras->add(camera);
    }
    cameras->setActiveCamera(CAMERA_NAME);

    delete cameraAnimation;
    cameraAnimation = new CameraAnimation();
    if (cameraAnimation->load(CAMERA_ANIMATION_FILE)) {
        cameraAnimation->setup();
        cameraAnimation->setCamera(CAMERA_NAME);
        return;
    }
    std::cerr << "Couldn't load '" << CAMERA_ANIMATION_FILE << "'\n";
    delete cameraAnimation;
    cameraAnimation = nullptr;
}

void UnderwaterTunnel::loadLights()
{
    // Cold light from the surface far above, and a magenta bounce from the glows below.
    makeLight(LIGHT1_NAME, Vector3(0.2f, 1.0f, 0.4f), Color(0.55f, 0.8f, 0.8f, 1.0f));
    makeLight(LIGHT2_NAME, Vector3(-0.3f, -1.0f, -0.2f), Color(0.5f, 0.15f, 0.45f, 1.0f));
}

void UnderwaterTunnel::loadTunnelMaterial()
{
    MaterialMgr* materials = MaterialMgr::getHandle();
    tunnelMaterial = dynamic_cast<MulTextureMaterial*>(materials->find(TUNNEL_MATERIAL));
    if (tunnelMaterial)
        return;
    tunnelMaterial = new MulTextureMaterial(TUNNEL_MATERIAL);
    tunnelMaterial->setTexture(loadTexture(TUNNEL_TEXTURE));
    tunnelMaterial->setTexture2(loadTexture(TUNNEL_TEXTURE2));
    tunnelMaterial->setFlags(0x10000483);
    tunnelMaterial->setBlendMode(0);
    materials->add(tunnelMaterial);
}

void UnderwaterTunnel::loadCluster()
{
    TextureMaterial* material = textureMaterial(CLUSTER_MATERIAL, CLUSTER_TEXTURE, 0x20000013, 6);
    const Vector3 reach(CLUSTER_REACH, CLUSTER_REACH, CLUSTER_REACH);
    for (int i = 0; i < CLUSTER_COUNT; ++i) {
        const Color& start = CLUSTER_COLORS[i];
        // Each glow dies into a darker shade of itself.
        const Color end(start.r * 0.3f, start.g * 0.3f, start.b * 0.3f, 0.0f);
        const BoundingBox region(CLUSTER_POSITIONS[i] - reach, CLUSTER_POSITIONS[i] + reach);
        delete clusters[i];
        delete emitters[i];
        emitters[i] = new PCInfoSphere(PARTICLE_QUAD, 0.5f, 0.9f, Vector3(1.0f, 1.0f, 1.0f), start, end, region);
        emitters[i]->material = material;
        clusters[i] = new ParticleCluster(CLUSTER_MATERIAL, CLUSTER_SIZE, emitters[i], true);
    }
}

void UnderwaterTunnel::update(float seconds)
{
    updateTimer(seconds);
    angle += seconds * TURN * 0.03125f;
    if (angle >= TURN)
        angle -= TURN;
    if (cameraAnimation)
        cameraAnimation->update(seconds);
    for (ParticleCluster* cluster : clusters) {
        if (cluster)
            cluster->update(seconds);
    }
    if (shipAnimation)
        shipAnimation->update(seconds);
}

void UnderwaterTunnel::drawTunnel(Camera* camera)
{
    if (camera) {
        glActiveTextureARB(GL_TEXTURE0_ARB);
        const Vector3& u = camera->getU();
        const Vector3& n = camera->getN();
        const float s[4] = {u.x, u.y, u.z, 1.0f};
        const float t[4] = {n.x, n.y, n.z, 1.0f};
        glTexGenfv(GL_S, GL_EYE_PLANE, s);
        glTexGenfv(GL_T, GL_EYE_PLANE, t);
        glMatrixMode(GL_TEXTURE);
        glPushMatrix();
        glScalef(0.01f, 0.01f, 0.01f);
        glMatrixMode(GL_MODELVIEW);
    }

    LightMgr* lights = LightMgr::getHandle();
    // The walls are unlit: the texture alone shades them, whatever colour was left current.
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    if (tunnelMaterial)
        tunnelMaterial->bind();
    lights->turnLightingOff();
    if (tunnel && camera)
        tunnel->render(*camera, OCTREE_RENDER_BACK_TO_FRONT);
    else if (!tunnel)
        std::cerr << "Unable to DRAW tunnel\n";
    lights->turnLightingOn();
    if (tunnelMaterial)
        tunnelMaterial->unbind();

    if (camera) {
        const float s[4] = {1.0f, 0.0f, 0.0f, 0.0f};
        const float t[4] = {0.0f, 1.0f, 0.0f, 0.0f};
        glActiveTextureARB(GL_TEXTURE0_ARB);
        glTexGenfv(GL_S, GL_EYE_PLANE, s);
        glTexGenfv(GL_T, GL_EYE_PLANE, t);
        glMatrixMode(GL_TEXTURE);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
    }
}

void UnderwaterTunnel::drawShip()
{
    if (!ship || !shipAnimation)
        return;
    glPushMatrix();
    shipAnimation->setMatrix();
    glFrontFace(GL_CW);
    ship->draw(DRAW_MASK);
    glFrontFace(GL_CCW);
    glPopMatrix();
}

void UnderwaterTunnel::drawObjects(Camera* camera)
{
    if (!camera)
        return;
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    const float time = timer.getCurrent();
    const Frustum& frustum = camera->getFrustum();
    for (int i = 0; i < OBJECT_COUNT; ++i) {
        if (!objects[i])
            continue;
        BoundingBox box = objects[i]->getLimits() + OBJECT_POSITIONS[i];
        box.makeCube();
        if (!frustum.isSphereInside(box.getCentre(), box.getRadius()))
            continue;
        glPushMatrix();
        glTranslatef(OBJECT_POSITIONS[i].x, OBJECT_POSITIONS[i].y, OBJECT_POSITIONS[i].z);
        if (i < SCALED_OBJECTS) {
            glRotatef(time * 45.0f, 0.0f, 1.0f, 0.0f);
            glScalef(4.0f, 4.0f, 4.0f);
        } else if (i == FAN) {
            glRotatef(time * 180.0f, 1.0f, 0.0f, 0.0f);
        }
        objects[i]->draw(DRAW_MASK);
        glPopMatrix();
    }
    lights->turnLightingOn();
}

void UnderwaterTunnel::drawCluster(Camera* camera)
{
    if (!camera)
        return;
    // Glows add light: fogging them towards the fog colour would add that colour over every
    // quad, so they fade towards black instead, and are not shaded by the scene's lights.
    static const float black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    const float fog[4] = {colour.r, colour.g, colour.b, colour.a};
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    glFogfv(GL_FOG_COLOR, black);
    const Frustum& frustum = camera->getFrustum();
    for (ParticleCluster* cluster : clusters) {
        if (cluster && cluster->visible(frustum))
            cluster->draw();
    }
    glFogfv(GL_FOG_COLOR, fog);
    lights->turnLightingOn();
}

void UnderwaterTunnel::display()
{
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    drawTunnel(camera);
    drawShip();
    drawObjects(camera);
    drawCluster(camera);
    GLF_checkError("UnderwaterTunnel:display()");
}

void UnderwaterTunnel::release()
{
    delete tunnel;
    tunnel = nullptr;
    delete ship;
    ship = nullptr;
    delete shipAnimation;
    shipAnimation = nullptr;
    delete cameraAnimation;
    cameraAnimation = nullptr;
    for (int i = 0; i < OBJECT_COUNT; ++i) {
        delete objects[i];
        objects[i] = nullptr;
    }
    for (int i = 0; i < CLUSTER_COUNT; ++i) {
        delete clusters[i];
        clusters[i] = nullptr;
        delete emitters[i];
        emitters[i] = nullptr;
    }
    // Registered materials belong to the registry.
    tunnelMaterial = nullptr;
}

void UnderwaterTunnel::shutdown()
{
    release();
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    // The lights go with the scene, giving their units back.
    LightMgr::getHandle()->remove(LIGHT1_NAME);
    LightMgr::getHandle()->remove(LIGHT2_NAME);
}
