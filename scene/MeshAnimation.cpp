// MeshAnimation: a mesh's path, its placement along it and the CANI chunk.
#include "scene/MeshAnimation.h"

#include "math/Matrix4.h"
#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/Mesh.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"

#include <GL/gl.h>

namespace {

const char* const tag = "CANI";

}  // namespace

MeshAnimation::MeshAnimation()
    : framesPerSec(24.0f), currentFrame(0.0f), lastFrame(0), mesh(nullptr), positionTrack(nullptr)
{
}

MeshAnimation::~MeshAnimation()
{
    delete positionTrack;
}

void MeshAnimation::addMeshPos(long frame, const Vector3& position)
{
    CameraAnimation::setKey(positionTrack, frame, position);
}

void MeshAnimation::setup()
{
    if (positionTrack)
        positionTrack->setup();
    currentFrame = 0.0f;
    lastFrame = positionTrack ? positionTrack->getLastFrame() : 0;
}

void MeshAnimation::update(float seconds)
{
    currentFrame += seconds * framesPerSec;
}

Matrix4 MeshAnimation::placement() const
{
    Vector3 p(0.0f, 0.0f, 0.0f);
    Vector3 ahead(0.0f, 0.0f, 1.0f);
    if (positionTrack) {
        p = positionTrack->evaluate(currentFrame);
        // Half a frame ahead; without a frame rate there is no ahead, and the mesh faces +z.
        ahead = framesPerSec > 0.0f ? positionTrack->evaluate(currentFrame + 0.5f / framesPerSec) : p;
    }
    Vector3 n = ahead - p;
    n.normalize();
    // Standing still (the end of an open path) gives no direction: keep facing +z.
    if (n.x == 0.0f && n.y == 0.0f && n.z == 0.0f)
        n.assign(0.0f, 0.0f, 1.0f);

    // The camera's basis: up is +y unless the motion is straight up or down.
    Vector3 up(0.0f, 1.0f, 0.0f);
    if (n.x == 0.0f && n.z == 0.0f)
        up.assign(-n.y, 0.0f, 0.0f);
    Vector3 v = up - n * up.dot(n);
    v.normalize();
    Vector3 u = n.cross(v);
    u.normalize();
    v = u.cross(n);
    v.normalize();
    // The camera's U is N x V, a left-handed side; the mesh takes V x N so
    // that the placement turns the mesh without mirroring it.
    Vector3 side = -u;

    return Matrix4(side.x, v.x, n.x, p.x, side.y, v.y, n.y, p.y, side.z, v.z, n.z, p.z, 0.0f, 0.0f, 0.0f, 1.0f);
}

void MeshAnimation::setMatrix() const
{
    Matrix4 m = placement();
    glTranslatef(m[3], m[7], m[11]);
    // GL takes columns: the rotation part, transposed, without the translation.
    float rotation[16] = {m[0], m[4], m[8],  0.0f, m[1], m[5], m[9], 0.0f,
                          m[2], m[6], m[10], 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
    glMultMatrixf(rotation);
}

void MeshAnimation::draw() const
{
    bool lightingWasOn = CameraAnimation::beginPathDisplay();
    if (positionTrack) {
        glColor4f(1.0f, 0.0f, 0.0f, 0.5f);
        positionTrack->draw(0, lastFrame);
    }
    CameraAnimation::endPathDisplay(lightingWasOn);
}

bool MeshAnimation::load(std::istream& in)
{
    if (!Chunk::readTag(in, tag))
        return false;
    float fps = 0.0f;
    std::string name;
    if (!Chunk::readFloat(in, fps) || !CameraAnimation::readName(in, name))
        return false;
    framesPerSec = fps;
    label = name;

    delete positionTrack;
    positionTrack = new Lin3Track();
    if (!positionTrack->load(in)) {
        delete positionTrack;
        positionTrack = nullptr;
        return false;
    }
    positionTrack->setup();
    return Chunk::good(in);
}

bool MeshAnimation::save(std::ostream& out) const
{
    if (!positionTrack)
        return false;
    Chunk::writeTag(out, tag);
    Chunk::writeFloat(out, framesPerSec);
    const char* name = mesh && mesh->getName() ? mesh->getName() : label.c_str();
    CameraAnimation::writeName(out, name);
    if (!positionTrack->save(out))
        return false;
    return Chunk::good(out);
}

bool MeshAnimation::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool MeshAnimation::save(const char* file) const
{
    return ChunkFile::save(*this, file);
}
