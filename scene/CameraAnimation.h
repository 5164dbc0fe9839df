// Flies a registered camera along a position track and a look-at track, stored as a CANI chunk.
#pragma once

#include "math/Vector3.h"

#include <istream>
#include <ostream>
#include <string>

class Camera;
class Lin3Track;

class CameraAnimation {
public:
    CameraAnimation();
    ~CameraAnimation();
    CameraAnimation(const CameraAnimation&) = delete;
    CameraAnimation& operator=(const CameraAnimation&) = delete;

    // A key at exactly that frame gets the new value; otherwise a new key is
    // inserted. A missing track is created closed. The track is set up again.
    void addCameraPos(long frame, const Vector3& position);
    void addTargetPos(long frame, const Vector3& target);

    // Sets up both tracks, rewinds to frame 0 and takes the later of their last frames.
    void setup();
    // Advances by seconds x frames per second and moves the camera; the caller applies it.
    void update(float seconds);
    void setFrame(long frame) { currentFrame = static_cast<float>(frame); }
    void setFramesPerSec(float fps) { framesPerSec = fps; }
    float getFramesPerSec() const { return framesPerSec; }
    float getCurrentFrame() const { return currentFrame; }
    long getLastFrame() const { return lastFrame; }

    // The camera registered under that name, or none.
    void setCamera(const char* name);
    Camera* getCamera() const { return camera; }

    Lin3Track* getPositionTrack() const { return positionTrack; }
    Lin3Track* getTargetTrack() const { return targetTrack; }

    // The two paths as translucent lines, for inspection.
    void draw() const;

    // CANI: frames per second, the camera's name, the position and target LIN3 chunks.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;
    bool load(const char* file);
    bool save(const char* file) const;

    // Shared with MeshAnimation, which keeps the same key rules and layout.
    // Replaces the value of the key at frame, or inserts a new key; creates
    // the track closed when missing, then sets it up.
    static void setKey(Lin3Track*& track, long frame, const Vector3& value);
    // The u16 length and the bytes of a CANI name; false past the end.
    static bool readName(std::istream& in, std::string& name);
    static void writeName(std::ostream& out, const char* name);
    // Path display state around drawing tracks: returns whether lighting was on.
    static bool beginPathDisplay();
    static void endPathDisplay(bool lightingWasOn);

private:
    void destroyTracks();

    float framesPerSec;
    float currentFrame;
    int lastFrame;
    Camera* camera;
    Lin3Track* positionTrack;
    Lin3Track* targetTrack;
};
