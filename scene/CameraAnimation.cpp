// CameraAnimation: key editing, playback, path display and the CANI chunk.
#include "scene/CameraAnimation.h"

#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"
#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"

#include <GL/gl.h>
#include <cstring>

namespace {

// What freshly added keys carry; the flags are stored and saved, nothing reads them.
const uint16_t newKeyFlags = 31;
const float newKeyTension = 0.1f;
const float newKeyContinuity = 0.1f;
const float newKeyEase = 32.0f;

const char* const tag = "CANI";

int lastFrameOf(const Lin3Track* a, const Lin3Track* b)
{
    if (a && b)
        return a->getLastFrame() > b->getLastFrame() ? a->getLastFrame() : b->getLastFrame();
    if (a)
        return a->getLastFrame();
    if (b)
        return b->getLastFrame();
    return 0;
}

}  // namespace

CameraAnimation::CameraAnimation()
    : framesPerSec(24.0f), currentFrame(0.0f), lastFrame(0), camera(nullptr), positionTrack(nullptr),
      targetTrack(nullptr)
{
}

CameraAnimation::~CameraAnimation()
{
    destroyTracks();
}

void CameraAnimation::destroyTracks()
{
    delete positionTrack;
    delete targetTrack;
    positionTrack = nullptr;
    targetTrack = nullptr;
}

void CameraAnimation::setKey(Lin3Track*& track, long frame, const Vector3& value)
{
    if (!track) {
        track = new Lin3Track();
        track->setFlags(Track::CLOSED);
    }
    Key* existing = track->findKey(static_cast<int32_t>(frame));
    if (existing) {
        static_cast<Lin3Key*>(existing)->setPosition(value);
    } else {
        Lin3Key* key = new Lin3Key();
        key->setFrame(static_cast<int32_t>(frame));
        key->setPosition(value);
        key->setFlags(newKeyFlags);
        key->setTension(newKeyTension);
        key->setContinuity(newKeyContinuity);
        key->setBias(0.0f);
        key->setEaseTo(newKeyEase);
        key->setEaseFrom(newKeyEase);
        track->insertKey(key);
    }
    track->setup();
}

void CameraAnimation::addCameraPos(long frame, const Vector3& position)
{
    setKey(positionTrack, frame, position);
}

void CameraAnimation::addTargetPos(long frame, const Vector3& target)
{
    setKey(targetTrack, frame, target);
}

void CameraAnimation::setup()
{
    if (positionTrack)
        positionTrack->setup();
    if (targetTrack)
        targetTrack->setup();
    currentFrame = 0.0f;
    lastFrame = lastFrameOf(positionTrack, targetTrack);
}

void CameraAnimation::update(float seconds)
{
    currentFrame += seconds * framesPerSec;
    if (!camera)
        return;
    if (positionTrack)
        camera->setPosition(positionTrack->evaluate(currentFrame));
    if (targetTrack)
        camera->setDirection(targetTrack->evaluate(currentFrame));
}

void CameraAnimation::setCamera(const char* name)
{
    camera = name ? CameraMgr::getHandle()->find(name) : nullptr;
}

bool CameraAnimation::beginPathDisplay()
{
    LightMgr* lights = LightMgr::getHandle();
    bool lightingWasOn = lights->isLightingOn();
    if (lightingWasOn)
        lights->turnLightingOff();
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthFunc(GL_LEQUAL);
    glLineWidth(3.0f);
    return lightingWasOn;
}

void CameraAnimation::endPathDisplay(bool lightingWasOn)
{
    // Colour material is left on: the scenes that inspect paths draw
    // coloured geometry next and rely on it.
    glLineWidth(1.0f);
    glDepthFunc(GL_LESS);
    glDisable(GL_BLEND);
    if (lightingWasOn)
        LightMgr::getHandle()->turnLightingOn();
}

void CameraAnimation::draw() const
{
    bool lightingWasOn = beginPathDisplay();
    if (positionTrack) {
        glColor4f(1.0f, 0.0f, 0.0f, 0.5f);
        positionTrack->draw(0, lastFrame);
    }
    if (targetTrack) {
        glColor4f(1.0f, 1.0f, 0.0f, 0.5f);
        targetTrack->draw(0, lastFrame);
    }
    endPathDisplay(lightingWasOn);
}

bool CameraAnimation::readName(std::istream& in, std::string& name)
{
    int16_t raw = 0;
    if (!Chunk::readShort(in, raw))
        return false;
    long long length = static_cast<uint16_t>(raw);
    if (!Chunk::fits(in, length, 1))
        return false;
    name.assign(static_cast<size_t>(length), '\0');
    if (length > 0)
        in.read(&name[0], length);
    return Chunk::good(in);
}

void CameraAnimation::writeName(std::ostream& out, const char* name)
{
    size_t length = name ? std::strlen(name) : 0;
    // The length field holds 16 bits; a longer name is cut there.
    if (length > 0xffff)
        length = 0xffff;
    Chunk::writeShort(out, static_cast<int16_t>(static_cast<uint16_t>(length)));
    if (length > 0)
        out.write(name, static_cast<std::streamsize>(length));
}

bool CameraAnimation::load(std::istream& in)
{
    if (!Chunk::readTag(in, tag))
        return false;
    float fps = 0.0f;
    std::string name;
    if (!Chunk::readFloat(in, fps) || !readName(in, name))
        return false;
    framesPerSec = fps;
    camera = name.empty() ? nullptr : CameraMgr::getHandle()->find(name.c_str());

    destroyTracks();
    positionTrack = new Lin3Track();
    targetTrack = new Lin3Track();
    if (!positionTrack->load(in) || !targetTrack->load(in)) {
        destroyTracks();
        return false;
    }
    // Tangents are never stored; a loaded path is ready to evaluate.
    positionTrack->setup();
    targetTrack->setup();
    return Chunk::good(in);
}

bool CameraAnimation::save(std::ostream& out) const
{
    // Both tracks are part of the layout: an animation without them has nothing to write.
    if (!positionTrack || !targetTrack)
        return false;
    Chunk::writeTag(out, tag);
    Chunk::writeFloat(out, framesPerSec);
    writeName(out, camera ? camera->getName() : nullptr);
    if (!positionTrack->save(out) || !targetTrack->save(out))
        return false;
    return Chunk::good(out);
}

bool CameraAnimation::load(const char* file)
{
    return ChunkFile::load(*this, file);
}

bool CameraAnimation::save(const char* file) const
{
    return ChunkFile::save(*this, file);
}
