// Moves a mesh along a position track and turns it to face its direction of motion; a CANI chunk.
#pragma once

#include "math/Vector3.h"

#include <istream>
#include <ostream>
#include <string>

class Lin3Track;
class Matrix4;
class Mesh;

class MeshAnimation {
public:
    MeshAnimation();
    ~MeshAnimation();
    MeshAnimation(const MeshAnimation&) = delete;
    MeshAnimation& operator=(const MeshAnimation&) = delete;

    // As CameraAnimation::addCameraPos.
    void addMeshPos(long frame, const Vector3& position);

    void setup();
    // Only advances the frame: the placement is taken at setMatrix().
    void update(float seconds);
    void setFrame(long frame) { currentFrame = static_cast<float>(frame); }
    void setFramesPerSec(float fps) { framesPerSec = fps; }
    float getFramesPerSec() const { return framesPerSec; }
    float getCurrentFrame() const { return currentFrame; }
    long getLastFrame() const { return lastFrame; }

    void setMesh(Mesh* m) { mesh = m; }
    Mesh* getMesh() const { return mesh; }
    Lin3Track* getPositionTrack() const { return positionTrack; }

    // The name stored in the file: the moved mesh's name, a label for the
    // content tools. Kept from the last load and written back when the mesh
    // has no name of its own.
    const std::string& getLabel() const { return label; }
    void setLabel(const char* text) { label = text ? text : ""; }

    // The placement for the current frame: translation to the path point,
    // then a rotation taking the mesh's +z to the direction of motion, +y to
    // the up vector and +x to the side (a proper rotation, never a mirror).
    Matrix4 placement() const;
    // Multiplies the current GL matrix by placement().
    void setMatrix() const;

    void draw() const;

    bool load(std::istream& in);
    bool save(std::ostream& out) const;
    bool load(const char* file);
    bool save(const char* file) const;

private:
    float framesPerSec;
    float currentFrame;
    int lastFrame;
    Mesh* mesh;
    Lin3Track* positionTrack;
    std::string label;
};
