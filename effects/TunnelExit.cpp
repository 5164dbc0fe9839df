// The tunnel exit: loading its parts, the slabs' burst and the light's timing, drawing the tube, the light and its shafts.
#include "effects/TunnelExit.h"

#include "effects/SceneKit.h"
#include "effects/SharedLayout.h"
#include "math/MathConstants.h"

#include "gl/GLF_checkError.h"
#include "gl/OrthoView.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/FaceArray.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/VertexArray.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/TextureMaterial.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using namespace TunnelExitLayout;

const char* const SCENE = "TunnelExit";
const char* const ROCK_MATERIAL = "ExitRock";
const char* const LIGHT_MATERIAL = "ExitLight";
const char* const RAY_MATERIAL = "ExitRay";
const char* const SHIP_MATERIAL = "ShipExitMaterial";
const char* const MOTE_MATERIAL = "ExitMote";
const char* const LIGHT1_NAME = "ExitLight1";
const char* const LIGHT2_NAME = "ExitLight2";
// The exit's own pictures and the ship's, which no later scene draws.
const TextureFile OWN_PICTURES[] = {ROCK, CAUSTICS, LIGHT, RAY, SharedLayout::SHIP_TEXTURE};

// The deep's fog, as in the tunnel, and the white-blue of the water just under the surface.
const Color DEEP(0.1f, 0.15f, 0.2f, 1.0f);
const Color SURFACE(0.8f, 0.91f, 1.0f, 1.0f);
const float DEEP_DENSITY = 0.08f;
const float SURFACE_DENSITY = 0.03f;
const float DOME_RADIUS = 400.0f;
const int DOME_SLICES = 32;
const int DOME_STACKS = 12;
// The dome's middle, down to this elevation: what the mouth shows from inside.
const float CAP_FROM = 50.0f;
const int CAP_STACKS = 4;

// The slabs start trembling this long before the hit and are thrown clear after it.
const float TREMBLE = 1.5f;
const float CREEP = 0.25f;
// How far a slab's middle lies outside the plain radius (its rock is that thick).
const float SLAB_DEPTH = 0.8f;
const float SLAB_REACH = 6.0f;

// The shafts fan out from the light this far (screen heights), this wide (radians, half-width).
const float RAY_LENGTH = 2.2f;
const float RAY_WIDTH_MIN = 0.03f;
const float RAY_WIDTH_MAX = 0.075f;

// Light from the surface above the way out, and a dim teal fill from the deep behind.
const SceneKit::LightSetup SURFACE_LIGHT = {LIGHT_DIRECTION, Color(0.25f, 0.3f, 0.35f, 1.0f),
                                            Color(0.85f, 0.95f, 1.0f, 1.0f), Color(1.0f, 1.0f, 1.0f, 1.0f)};
const SceneKit::LightSetup DEEP_LIGHT = {Vector3(0.0f, -0.3f, -1.0f), Color(0.1f, 0.1f, 0.1f, 1.0f),
                                         Color(0.15f, 0.35f, 0.4f, 1.0f), Color(0.0f, 0.0f, 0.0f, 1.0f)};

float smoothstep(float from, float to, float x)
{
    float t = (x - from) / (to - from);
    t = t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
    return t * t * (3.0f - 2.0f * t);
}

// A fixed number in [0, 1) for a slab and a purpose: every run throws the walls the same way.
float slabNumber(int ring, int sector, uint32_t purpose)
{
    // Unsigned throughout: the products wrap by design.
    uint32_t h =
        static_cast<uint32_t>(ring) * 73856093u ^ static_cast<uint32_t>(sector) * 19349663u ^ purpose * 83492791u;
    h ^= h >> 13;
    h *= 0x5bd1e995u;
    h ^= h >> 15;
    return static_cast<float>(h & 0xffffu) / 65536.0f;
}

Color mix(const Color& a, const Color& b, float t)
{
    return Color(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0f);
}

}  // namespace

TunnelExit::TunnelExit(short layer, const EffectTimer& timer)
    : Effect(layer, timer), fogColour(DEEP), fogDensity(DEEP_DENSITY), dome(DOME_RADIUS), tunnel(nullptr),
      slab(nullptr), ship(nullptr), shipAnimation(nullptr), cameraAnimation(nullptr), rockMaterial(nullptr),
      lightMaterial(nullptr), rayMaterial(nullptr), moteMaterial(nullptr), motes(), moteCount(0), slabList(0),
      shipList(0), domeList(0), capList(0), slabFrame()
{
    // Columns SIDE, UP and -AXIS: the slab is built running back along its local z, so this is
    // a turn and not a mirror image, and its faces keep their sides.
    const Vector3 columns[3] = {SIDE, UP, -AXIS};
    for (int c = 0; c < 3; ++c) {
        slabFrame[c * 4] = columns[c].x;
        slabFrame[c * 4 + 1] = columns[c].y;
        slabFrame[c * 4 + 2] = columns[c].z;
    }
    slabFrame[15] = 1.0f;
}

TunnelExit::~TunnelExit()
{
    release();
}

float TunnelExit::getTime() const
{
    return timer.getCurrent() - timer.start;
}

Vector3 TunnelExit::slabOutwards(int sector)
{
    const float angle = (static_cast<float>(sector) + 0.5f) * MathConstants::TWO_PI / static_cast<float>(SECTORS);
    return SIDE * std::cos(angle) + UP * std::sin(angle);
}

Vector3 TunnelExit::slabCentre(int ring, int sector)
{
    const float along = (static_cast<float>(ring) + 0.5f) * RING_LENGTH;
    return BREAK + AXIS * along + slabOutwards(sector) * (RADIUS + SLAB_DEPTH);
}

TunnelExit::SlabPose TunnelExit::slabPose(int ring, int sector, float t)
{
    const Vector3 out = slabOutwards(sector);
    SlabPose pose = {Vector3(0.0f, 0.0f, 0.0f), AXIS.cross(out), 0.0f};
    const float hit = static_cast<float>(HIT);
    if (t < hit - TREMBLE)
        return pose;
    const float a = slabNumber(ring, sector, 1);
    const float b = slabNumber(ring, sector, 2);
    const float c = slabNumber(ring, sector, 3);
    // The burst runs forward along the tube, a little ragged.
    const float since = t - hit - (0.025f * static_cast<float>(ring) + 0.04f * a);
    if (since <= 0.0f) {
        // Creeping outwards with the riser; the cracks of light between the slabs widen.
        const float creep = smoothstep(hit - TREMBLE, hit, t);
        const float shake = 0.06f * creep * std::sin(t * 47.0f + MathConstants::TWO_PI * b);
        pose.offset = out * (CREEP * creep + shake);
        pose.angle = 1.5f * creep * std::sin(t * 31.0f + MathConstants::TWO_PI * c);
        return pose;
    }
    // Thrown out against the water's drag, drifting on along the tube and sinking, tumbling.
    const float drag = 1.8f;
    const float outwards = (18.0f + 10.0f * a) * (1.0f - std::exp(-drag * since)) / drag + 2.5f * since;
    const float forwards = (2.0f + 4.0f * b) * since;
    const float sink = 0.4f * since * since;
    pose.offset = out * (CREEP + outwards) + AXIS * forwards - Vector3(0.0f, sink, 0.0f);
    pose.angle = (c < 0.5f ? -1.0f : 1.0f) * (60.0f + 140.0f * c) * since;
    return pose;
}

float TunnelExit::brightness(float t)
{
    const float hit = static_cast<float>(HIT);
    // The water turns white as the walls fly clear, not before.
    return 0.3f * smoothstep(3.0f, hit, t) + 0.7f * smoothstep(hit, hit + 0.9f, t);
}

float TunnelExit::rayStrength(float t)
{
    const float hit = static_cast<float>(HIT);
    if (t >= hit)
        return 0.7f + 0.3f * std::exp(-(t - hit) * 2.5f) +
               0.15f * smoothstep(hit + 1.0f, static_cast<float>(SECONDS), t);
    // Every row of the roll's last two bars is a snare: the light beats with it.
    const float row = static_cast<float>(ROW);
    const float phase = t / row - std::floor(t / row);
    const float beat = 0.35f * std::exp(-8.0f * phase) * smoothstep(2.0f, hit, t);
    return (0.12f + 0.33f * smoothstep(1.0f, hit, t)) * (1.0f + beat);
}

float TunnelExit::flash(float t)
{
    const float hit = static_cast<float>(HIT);
    if (t < hit)
        return 0.0f;
    return 0.9f * std::exp(-(t - hit) * 6.0f) + 0.3f * smoothstep(hit + 0.6f, static_cast<float>(SECONDS), t);
}

void TunnelExit::initiate()
{
    setupFog();
    loadTunnel();
    loadShip();
    loadCamera();
    loadMaterials();
    compileLists();
    SceneKit::directionalLight(LIGHT1_NAME, SURFACE_LIGHT);
    SceneKit::directionalLight(LIGHT2_NAME, DEEP_LIGHT);
}

void TunnelExit::setupFog()
{
    fogColour = DEEP;
    fogDensity = DEEP_DENSITY;
    glFogi(GL_FOG_MODE, GL_EXP);
    glHint(GL_FOG_HINT, GL_NICEST);
    glEnable(GL_FOG);
}

void TunnelExit::loadTunnel()
{
    delete tunnel;
    tunnel = SceneKit::loadOrReport<Octree>(SCENE, OCTREE);
    if (tunnel && tunnel->isComplete())
        compileLeaves(tunnel->getRoot());
    delete slab;
    slab = SceneKit::loadOrReport<Mesh>(SCENE, SLAB_MESH);
}

void TunnelExit::compileLeaves(const OctreeNode* node)
{
    if (node->hasChildren()) {
        for (int i = 0; i < OctreeNode::NUM_CHILDREN; ++i)
            compileLeaves(node->getChild(i));
        return;
    }
    if (node->getNumFaces() <= 0)
        return;
    // One begin and end for the whole leaf: the octree's own drawing pays them per triangle.
    const VertexArray& vertices = *tunnel->getVertices();
    const FaceArray& faces = *tunnel->getFaces();
    const uint32_t vertexCount = static_cast<uint32_t>(vertices.getNumVertices());
    const Leaf leaf = {node->getCentre(), node->getRadius(), glGenLists(1), 0.0f};
    glNewList(leaf.list, GL_COMPILE);
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < node->getNumFaces(); ++i) {
        const uint32_t index = node->getFaceIndex(i);
        if (index >= static_cast<uint32_t>(faces.getNumFaces()))
            continue;
        const Face& face = faces[static_cast<int>(index)];
        // A damaged file may name vertices that are not there.
        if (face.indices[0] >= vertexCount || face.indices[1] >= vertexCount || face.indices[2] >= vertexCount)
            continue;
        for (int k = 0; k < 3; ++k) {
            const Vertex& v = vertices[static_cast<int>(face.indices[k])];
            glNormal3f(v.normal.x, v.normal.y, v.normal.z);
            glTexCoord2f(v.uv.x, v.uv.y);
            glVertex3f(v.position.x, v.position.y, v.position.z);
        }
    }
    glEnd();
    glEndList();
    leaves.push_back(leaf);
}

void TunnelExit::compileLists()
{
    // What is drawn every frame and never changes is sent to GL once: the slab (thirty-two
    // times a frame), the ship in its material, and the dome.
    if (slab) {
        slabList = glGenLists(1);
        glNewList(slabList, GL_COMPILE);
        slab->draw(Mesh::drawTextured);
        glEndList();
    }
    if (ship) {
        shipList = glGenLists(1);
        glNewList(shipList, GL_COMPILE);
        ship->draw(Mesh::drawShaded);
        glEndList();
    }
    domeList = compileDome(0.0f, DOME_STACKS);
    capList = compileDome(CAP_FROM, CAP_STACKS);
}

unsigned int TunnelExit::compileDome(float fromElevation, int stacks) const
{
    // The hemisphere's quads from the elevation up, as plain triangles: the driver never frees
    // all of a list that holds quad strips. The caller turns culling off.
    const unsigned int list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glBegin(GL_TRIANGLES);
    for (int stack = 0; stack < stacks; ++stack) {
        const float low = fromElevation + (90.0f - fromElevation) * static_cast<float>(stack) / stacks;
        const float high = fromElevation + (90.0f - fromElevation) * static_cast<float>(stack + 1) / stacks;
        for (int slice = 0; slice < DOME_SLICES; ++slice) {
            const float left = static_cast<float>(slice) / static_cast<float>(DOME_SLICES);
            const float right = static_cast<float>(slice + 1) / static_cast<float>(DOME_SLICES);
            const float corners[6][2] = {{left, low}, {right, low},  {right, high},
                                         {left, low}, {right, high}, {left, high}};
            for (const auto& c : corners) {
                const Vector3 p = dome.point(c[0], c[1]);
                const Vector2 uv = Hemisphere::texCoord(c[0], c[1]);
                glTexCoord2f(uv.x, uv.y);
                glVertex3f(p.x, p.y, p.z);
            }
        }
    }
    glEnd();
    glEndList();
    return list;
}

void TunnelExit::loadShip()
{
    delete ship;
    ship = SceneKit::loadOrReport<Mesh>(SCENE, SharedLayout::SHIP_MESH);
    delete shipAnimation;
    shipAnimation = SceneKit::loadOrReport<MeshAnimation>(SCENE, SHIP_PATH);
    if (shipAnimation) {
        shipAnimation->setup();
        shipAnimation->setMesh(ship);
    }
    TextureMaterial* material = SceneKit::findOrMakeMaterial(SCENE, SHIP_MATERIAL, SharedLayout::SHIP_TEXTURE,
                                                             Material::reflective, Material::blendNone);
    material->setAmbient(Color(0.3f, 0.3f, 0.3f, 1.0f));
    material->setDiffuse(Color(0.8f, 0.8f, 0.8f, 1.0f));
    material->setSpecular(Color(1.0f, 1.0f, 1.0f, 1.0f));
    SceneKit::giveMaterial(ship, material);
}

void TunnelExit::loadCamera()
{
    CameraMgr* cameras = CameraMgr::getHandle();
    if (!cameras->find(CAMERA_NAME)) {
        Camera* camera = new Camera(CAMERA_NAME);
        camera->lookAt(Vector3(0.0f, 1.2f, -2.0f), Vector3(0.0f, 1.2f, 14.0f));
        camera->setClipPlanes(0.1f, 1000.0f);
        camera->setFOV(60.0f);
        cameras->add(camera);
    }
    cameras->setActiveCamera(CAMERA_NAME);
    delete cameraAnimation;
    cameraAnimation = SceneKit::loadOrReport<CameraAnimation>(SCENE, CAMERA_PATH);
    if (!cameraAnimation)
        return;
    cameraAnimation->setup();
    cameraAnimation->setCamera(CAMERA_NAME);
    scatterMotes();
}

void TunnelExit::scatterMotes()
{
    // Beside the camera's own path, so they pass close by, and a little beyond its end.
    const Lin3Track* path = cameraAnimation->getPositionTrack();
    const float last = static_cast<float>(cameraAnimation->getLastFrame());
    moteCount = path ? static_cast<int>(MOTE_COUNT) : 0;
    for (int i = 0; i < moteCount; ++i) {
        const float along = last * (static_cast<float>(i) + slabNumber(i, 0, 4)) / static_cast<float>(MOTE_COUNT);
        const float angle = MathConstants::TWO_PI * slabNumber(i, 1, 5);
        const float reach = 1.2f + 5.5f * slabNumber(i, 2, 6);
        const Vector3 aside = SIDE * std::cos(angle) + UP * std::sin(angle);
        motes[i] = path->evaluate(along) + aside * reach + AXIS * (8.0f * slabNumber(i, 3, 7));
    }
}

void TunnelExit::loadMaterials()
{
    // Sent to GL at every start: a later start finds the material with the pictures the last end released, and
    // the caustics, on the second texture unit, must not go to GL at a bind.
    Texture* rock = SceneKit::preloadOrReport(SCENE, ROCK);
    Texture* caustics = SceneKit::preloadOrReport(SCENE, CAUSTICS);
    MaterialMgr* materials = MaterialMgr::getHandle();
    rockMaterial = dynamic_cast<MulTextureMaterial*>(materials->find(ROCK_MATERIAL));
    if (!rockMaterial) {
        rockMaterial = new MulTextureMaterial(ROCK_MATERIAL);
        rockMaterial->setTexture(rock);
        rockMaterial->setTexture2(caustics);
        // The caustics are mapped from the view, so they swim over the rock as the camera moves.
        rockMaterial->setFlags(Material::defaultFlags | Material::sphereMap2);
        rockMaterial->setBlendMode(Material::blendNone);
        materials->add(rockMaterial);
    }
    lightMaterial = SceneKit::findOrMakeMaterial(SCENE, LIGHT_MATERIAL, LIGHT, Material::textured, Material::blendNone);
    rayMaterial = SceneKit::findOrMakeMaterial(SCENE, RAY_MATERIAL, RAY, Material::overlay, Material::blendAdd);
    moteMaterial = SceneKit::findOrMakeMaterial(SCENE, MOTE_MATERIAL, SharedLayout::PARTICLE, Material::overlay,
                                                Material::blendGlow);
}

void TunnelExit::update(float seconds)
{
    updateTimer(seconds);
    if (cameraAnimation)
        cameraAnimation->update(seconds);
    if (shipAnimation)
        shipAnimation->update(seconds);
    const float t = getTime();
    const float light = brightness(t);
    fogColour = mix(DEEP, SURFACE, light);
    fogDensity = DEEP_DENSITY + (SURFACE_DENSITY - DEEP_DENSITY) *
                                    smoothstep(static_cast<float>(HIT), static_cast<float>(HIT) + 0.8f, t);
}

void TunnelExit::drawLight(const Camera& camera)
{
    // The dome stands round the camera, too far to reach: its middle turned up to the light.
    const float tilt = std::atan2(LIGHT_DIRECTION.z, LIGHT_DIRECTION.y) / MathConstants::DEGREES_TO_RADIANS;
    const Vector3& eye = camera.getPosition();
    glDisable(GL_FOG);
    glDepthMask(GL_FALSE);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glPushMatrix();
    glTranslatef(eye.x, eye.y, eye.z);
    glRotatef(tilt, 1.0f, 0.0f, 0.0f);
    if (lightMaterial)
        lightMaterial->bind();
    // The rim's row must not be blended with the middle's across the picture's edge.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    // Until the walls start to crack, only the mouth lets the light in. Seen from inside.
    glDisable(GL_CULL_FACE);
    glCallList(getTime() < static_cast<float>(HIT) - TREMBLE ? capList : domeList);
    glEnable(GL_CULL_FACE);
    if (lightMaterial)
        lightMaterial->unbind();
    glPopMatrix();
    glDepthMask(GL_TRUE);
    glEnable(GL_FOG);
}

void TunnelExit::drawTunnel(const Camera& camera)
{
    // Nearest first, so the depth test turns away the hidden rock before it is textured.
    const Vector3& eye = camera.getPosition();
    for (Leaf& leaf : leaves)
        leaf.distance = (leaf.centre - eye).length();
    std::sort(leaves.begin(), leaves.end(), [](const Leaf& a, const Leaf& b) { return a.distance < b.distance; });
    const Frustum& frustum = camera.getFrustum();
    for (const Leaf& leaf : leaves)
        if (frustum.isSphereInside(leaf.centre, leaf.radius))
            glCallList(leaf.list);
    drawSlabs(camera);
}

void TunnelExit::drawSlabs(const Camera& camera)
{
    if (!slabList)
        return;
    const float t = getTime();
    const Frustum& frustum = camera.getFrustum();
    const float degreesPerSector = 360.0f / static_cast<float>(SECTORS);
    glMatrixMode(GL_TEXTURE);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    for (int ring = 0; ring < RINGS; ++ring) {
        for (int sector = 0; sector < SECTORS; ++sector) {
            const SlabPose pose = slabPose(ring, sector, t);
            const Vector3 centre = slabCentre(ring, sector);
            const Vector3 moved = centre + pose.offset;
            if (!frustum.isSphereInside(moved, SLAB_REACH))
                continue;
            // The rock's texture runs on across the slabs as it runs round the tube.
            glMatrixMode(GL_TEXTURE);
            glLoadIdentity();
            glTranslatef(U_REPEAT * static_cast<float>(sector) / static_cast<float>(SECTORS),
                         RING_LENGTH * static_cast<float>(ring) / V_LENGTH, 0.0f);
            glMatrixMode(GL_MODELVIEW);
            glPushMatrix();
            glTranslatef(moved.x, moved.y, moved.z);
            glRotatef(pose.angle, pose.axis.x, pose.axis.y, pose.axis.z);
            const Vector3 base = BREAK + AXIS * (RING_LENGTH * static_cast<float>(ring)) - centre;
            glTranslatef(base.x, base.y, base.z);
            glMultMatrixf(slabFrame);
            glRotatef(degreesPerSector * static_cast<float>(sector), 0.0f, 0.0f, 1.0f);
            glCallList(slabList);
            glPopMatrix();
        }
    }
    glMatrixMode(GL_TEXTURE);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

void TunnelExit::drawShip()
{
    if (!shipList || !shipAnimation)
        return;
    glPushMatrix();
    shipAnimation->setMatrix();
    glFrontFace(GL_CW);
    glCallList(shipList);
    glFrontFace(GL_CCW);
    glPopMatrix();
}

void TunnelExit::drawMotes(const Camera& camera)
{
    if (!moteMaterial || moteCount == 0)
        return;
    // Specks add light: faded towards black, not towards the fog's colour.
    static const float black[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    glFogfv(GL_FOG_COLOR, black);
    const float light = brightness(getTime());
    const Vector3& right = camera.getU();
    const Vector3& up = camera.getV();
    const Frustum& frustum = camera.getFrustum();
    moteMaterial->bind();
    glBegin(GL_QUADS);
    for (int i = 0; i < moteCount; ++i) {
        const float size = 0.14f + 0.16f * slabNumber(i, 4, 8);
        if (!frustum.isSphereInside(motes[i], size))
            continue;
        const float glow = 0.5f + 0.5f * light;
        glColor4f(glow * (0.55f + 0.45f * light), glow, glow, 0.9f);
        const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        for (const auto& c : corners) {
            const Vector3 q = motes[i] + right * (c[0] * size) + up * (c[1] * size);
            glTexCoord2f(0.5f + 0.5f * c[0], 0.5f + 0.5f * c[1]);
            glVertex3f(q.x, q.y, q.z);
        }
    }
    glEnd();
    moteMaterial->unbind();
    const float fog[4] = {fogColour.r, fogColour.g, fogColour.b, 1.0f};
    glFogfv(GL_FOG_COLOR, fog);
}

void TunnelExit::drawRays(const Camera& camera)
{
    const float strength = rayStrength(getTime());
    const Vector3& n = camera.getN();
    const float ahead = LIGHT_DIRECTION.dot(n);
    if (!rayMaterial || ahead <= 0.05f || strength <= 0.0f)
        return;
    // Where the light sits on the screen, in screen heights from the lower left corner.
    const CameraMgr* cameras = CameraMgr::getHandle();
    const float aspect = cameras->getHeight() > 0
                             ? static_cast<float>(cameras->getWidth()) / static_cast<float>(cameras->getHeight())
                             : 4.0f / 3.0f;
    const float halfView = std::tan(camera.getFOV() * 0.5f * MathConstants::DEGREES_TO_RADIANS);
    const float x = 0.5f * aspect + 0.5f * LIGHT_DIRECTION.dot(camera.getU()) / (ahead * halfView);
    const float y = 0.5f + 0.5f * LIGHT_DIRECTION.dot(camera.getV()) / (ahead * halfView);
    // Fading as the light leaves the middle of the view.
    const float facing = smoothstep(0.05f, 0.6f, ahead);
    const float t = getTime();

    glDisable(GL_FOG);
    glDisable(GL_CULL_FACE);
    OrthoView::push(aspect, 1.0);
    rayMaterial->bind();
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < RAY_COUNT; ++i) {
        const float k = static_cast<float>(i);
        // Each shaft turns slowly and breathes on its own phase.
        const float angle = k * MathConstants::TWO_PI / RAY_COUNT + 0.08f * t + 0.25f * std::sin(k * 2.3f + 0.4f * t);
        const float width =
            RAY_WIDTH_MIN + (RAY_WIDTH_MAX - RAY_WIDTH_MIN) * (0.5f + 0.5f * std::sin(k * 1.7f + 0.9f * t));
        const float glow = strength * facing * (0.55f + 0.45f * std::sin(k * 3.1f + 1.3f * t));
        glColor4f(glow, glow, glow, 1.0f);
        glTexCoord2f(0.5f, 0.0f);
        glVertex2f(x, y);
        glTexCoord2f(0.0f, 1.0f);
        glVertex2f(x + RAY_LENGTH * std::cos(angle - width), y + RAY_LENGTH * std::sin(angle - width));
        glTexCoord2f(1.0f, 1.0f);
        glVertex2f(x + RAY_LENGTH * std::cos(angle + width), y + RAY_LENGTH * std::sin(angle + width));
    }
    glEnd();
    rayMaterial->unbind();
    OrthoView::pop();
    glEnable(GL_CULL_FACE);
    glEnable(GL_FOG);
}

void TunnelExit::drawFlash()
{
    const float white = flash(getTime());
    if (white <= 0.004f)
        return;
    // One full-screen layer, added: the hit floods the picture with the surface's light.
    glDisable(GL_FOG);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    OrthoView::push(1.0, 1.0);
    glColor4f(SURFACE.r * white, SURFACE.g * white, SURFACE.b * white, 1.0f);
    glBegin(GL_QUADS);
    glVertex2f(0.0f, 0.0f);
    glVertex2f(1.0f, 0.0f);
    glVertex2f(1.0f, 1.0f);
    glVertex2f(0.0f, 1.0f);
    glEnd();
    OrthoView::pop();
    glDisable(GL_BLEND);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_FOG);
}

void TunnelExit::display()
{
    const float fog[4] = {fogColour.r, fogColour.g, fogColour.b, 1.0f};
    glFogfv(GL_FOG_COLOR, fog);
    glFogf(GL_FOG_DENSITY, fogDensity);
    glClearColor(fogColour.r, fogColour.g, fogColour.b, 1.0f);
    Camera* camera = CameraMgr::getHandle()->getActiveCamera();
    LightMgr* lights = LightMgr::getHandle();
    if (camera) {
        // The ship first: the rock it hides is never textured.
        lights->turnLightingOn();
        drawShip();
        lights->turnLightingOff();
        // The rock is unlit: its pictures carry their own light and shade.
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        if (rockMaterial)
            rockMaterial->bind();
        drawTunnel(*camera);
        if (rockMaterial)
            rockMaterial->unbind();
        // After the walls, so the depth test spares the light every pixel the rock covers.
        drawLight(*camera);
        drawMotes(*camera);
        drawRays(*camera);
        lights->turnLightingOn();
    }
    lights->turnLightingOff();
    drawFlash();
    lights->turnLightingOn();
    GLF_checkError("TunnelExit:display()");
}

void TunnelExit::release()
{
    delete tunnel;
    tunnel = nullptr;
    delete slab;
    slab = nullptr;
    delete ship;
    ship = nullptr;
    delete shipAnimation;
    shipAnimation = nullptr;
    delete cameraAnimation;
    cameraAnimation = nullptr;
    // Registered materials belong to the registry.
    rockMaterial = nullptr;
    lightMaterial = nullptr;
    rayMaterial = nullptr;
    moteMaterial = nullptr;
    moteCount = 0;
}

void TunnelExit::shutdown()
{
    for (unsigned int* list : {&slabList, &shipList, &domeList, &capList}) {
        if (*list)
            glDeleteLists(*list, 1);
        *list = 0;
    }
    for (const Leaf& leaf : leaves)
        glDeleteLists(leaf.list, 1);
    leaves.clear();
    release();
    SceneKit::releaseTextures(OWN_PICTURES);
    glDisable(GL_FOG);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    LightMgr::getHandle()->remove(LIGHT1_NAME);
    LightMgr::getHandle()->remove(LIGHT2_NAME);
}
