// The underwater tunnel: loading its parts, advancing the paths and glows, drawing in fog.
#include "effects/UnderwaterTunnel.h"

#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"
#include "effects/TunnelLayout.h"

#include "gl/GLF_checkError.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
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

#include <GL/gl.h>
#include <GL/glext.h>
#include <iostream>
#include <string>

namespace {

using namespace TunnelLayout;

const char* const SHIP_MATERIAL = "ShipTunnelMaterial";
const char* const OBJECT_MATERIAL = "TunnelObject";
const char* const TUNNEL_MATERIAL = "UWTunnel";
const char* const CLUSTER_MATERIAL = "TCL";
const char* const LIGHT1_NAME = "TunnelLight1";
const char* const LIGHT2_NAME = "TunnelLight2";
const int CLUSTER_SIZE = 64;
// Half the side of the box a glow's particles start on the sphere around.
const float CLUSTER_REACH = 0.5f;

// Cold light from the surface far above, and a magenta bounce from the glows below.
const SceneKit::LightSetup SURFACE_LIGHT = {Vector3(0.2f, 1.0f, 0.4f), Color(0.2f, 0.2f, 0.2f, 1.0f),
                                            Color(0.55f, 0.8f, 0.8f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f)};
// The files, loaded one at a time by preload or initiate: the pictures, sent to GL while whatever runs before the
// tunnel draws, then these, then the objects.
const TextureFile PICTURES[] = {ROCK, CAUSTICS, REFLECTION, SharedLayout::SHIP_TEXTURE, SharedLayout::PARTICLE};
const int PICTURE_COUNT = static_cast<int>(sizeof PICTURES / sizeof PICTURES[0]);
enum FilePiece { TUNNEL_PIECE, SHIP_PIECE, SHIP_PATH_PIECE, CAMERA_PATH_PIECE, FILE_PIECES };
const int PIECE_COUNT = PICTURE_COUNT + FILE_PIECES + UnderwaterTunnel::OBJECT_COUNT;

const SceneKit::LightSetup GLOW_LIGHT = {Vector3(-0.3f, -1.0f, -0.2f), Color(0.2f, 0.2f, 0.2f, 1.0f),
                                         Color(0.5f, 0.15f, 0.45f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f)};

}  // namespace

UnderwaterTunnel::UnderwaterTunnel(short layer, const EffectTimer& timer)
    : Effect(layer, timer), colour(0.1f, 0.15f, 0.2f, 1.0f), tunnel(nullptr), ship(nullptr), shipAnimation(nullptr),
      cameraAnimation(nullptr), tunnelMaterial(nullptr), angle(0.0f), objects(), clusters(), emitters(), piecesLoaded(0)
{
}

UnderwaterTunnel::~UnderwaterTunnel()
{
    release();
}

void UnderwaterTunnel::initiate()
{
    setupFog();
    while (loadNextPiece()) {
    }
    setupShip();
    setupObjects();
    loadCamera();
    loadLights();
    loadTunnelMaterial();
    loadCluster();
}

bool UnderwaterTunnel::preload()
{
    return loadNextPiece() && piecesLoaded < PIECE_COUNT;
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

bool UnderwaterTunnel::loadNextPiece()
{
    if (piecesLoaded >= PIECE_COUNT)
        return false;
    loadPiece(piecesLoaded++);
    return true;
}

void UnderwaterTunnel::loadPiece(int piece)
{
    if (piece < PICTURE_COUNT) {
        SceneKit::loadTextureAhead(PICTURES[piece]);
        return;
    }
    const int object = piece - PICTURE_COUNT - FILE_PIECES;
    if (object >= 0) {
        const std::string message = std::string("UNABLE TO LOAD ") + OBJECT_FILES[object] + "\n";
        objects[object] = SceneKit::loadOrSay<Mesh>(OBJECT_FILES[object], message.c_str());
        return;
    }
    switch (piece - PICTURE_COUNT) {
        case TUNNEL_PIECE:
            tunnel = SceneKit::loadOrSay<Octree>(OCTREE, "Unable to load tunnel data\n");
            break;
        case SHIP_PIECE:
            ship = SceneKit::loadOrSay<Mesh>(SharedLayout::SHIP_MESH, "Unable to load ship\n");
            break;
        case SHIP_PATH_PIECE:
            shipAnimation = SceneKit::loadOrSay<MeshAnimation>(SHIP_PATH, "Unable to load ship animation\n");
            break;
        // Without its path the camera stays where it was put.
        default:
            cameraAnimation = SceneKit::loadOrSay<CameraAnimation>(CAMERA_PATH, "");
            break;
    }
}

void UnderwaterTunnel::setupShip()
{
    if (shipAnimation) {
        shipAnimation->setup();
        shipAnimation->setMesh(ship);
    }
    TextureMaterial* material = SceneKit::findOrMakeMaterial(SHIP_MATERIAL, SharedLayout::SHIP_TEXTURE,
                                                             Material::reflective, Material::blendNone);
    material->setAmbient(Color(0.2f, 0.2f, 0.2f, 1.0f));
    material->setDiffuse(Color(0.8f, 0.8f, 0.8f, 1.0f));
    material->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    SceneKit::giveMaterial(ship, material);
}

void UnderwaterTunnel::setupObjects()
{
    TextureMaterial* material =
        SceneKit::findOrMakeMaterial(OBJECT_MATERIAL, REFLECTION, Material::reflective, Material::blendNone);
    for (Mesh* object : objects)
        SceneKit::giveMaterial(object, material);
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
    if (!cameraAnimation)
        return;
    cameraAnimation->setup();
    cameraAnimation->setCamera(CAMERA_NAME);
}

void UnderwaterTunnel::loadLights()
{
    SceneKit::directionalLight(LIGHT1_NAME, SURFACE_LIGHT);
    SceneKit::directionalLight(LIGHT2_NAME, GLOW_LIGHT);
}

void UnderwaterTunnel::loadTunnelMaterial()
{
    MaterialMgr* materials = MaterialMgr::getHandle();
    tunnelMaterial = dynamic_cast<MulTextureMaterial*>(materials->find(TUNNEL_MATERIAL));
    if (tunnelMaterial)
        return;
    tunnelMaterial = new MulTextureMaterial(TUNNEL_MATERIAL);
    tunnelMaterial->setTexture(SceneKit::preloadTexture(ROCK));
    tunnelMaterial->setTexture2(SceneKit::preloadTexture(CAUSTICS));
    tunnelMaterial->setFlags(Material::defaultFlags | Material::objectLinear | Material::sphereMap2);
    tunnelMaterial->setBlendMode(Material::blendNone);
    materials->add(tunnelMaterial);
}

void UnderwaterTunnel::loadCluster()
{
    TextureMaterial* material =
        SceneKit::findOrMakeMaterial(CLUSTER_MATERIAL, SharedLayout::PARTICLE, Material::overlay, Material::blendGlow);
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

    // The walls are unlit: the texture shades them in the colour left current.
    LightMgr* lights = LightMgr::getHandle();
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
    ship->draw(Mesh::drawShaded);
    glFrontFace(GL_CCW);
    glPopMatrix();
}

void UnderwaterTunnel::drawObjects(Camera* camera)
{
    if (!camera)
        return;
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
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
        objects[i]->draw(Mesh::drawShaded);
        glPopMatrix();
    }
    lights->turnLightingOn();
}

void UnderwaterTunnel::drawCluster(Camera* camera)
{
    if (!camera)
        return;
    const Frustum& frustum = camera->getFrustum();
    for (ParticleCluster* cluster : clusters) {
        if (cluster && cluster->visible(frustum))
            cluster->draw();
    }
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
    piecesLoaded = 0;
}

void UnderwaterTunnel::shutdown()
{
    release();
    // Its own pictures, which each start loads again; the ship's and the glow's are drawn by the scenes after it.
    SceneKit::releaseTextures({ROCK, CAUSTICS, REFLECTION});
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    // The lights go with the scene, giving their units back.
    LightMgr::getHandle()->remove(LIGHT1_NAME);
    LightMgr::getHandle()->remove(LIGHT2_NAME);
}
