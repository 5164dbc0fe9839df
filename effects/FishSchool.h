// A school of fish on one path: each fish keeps its own place round the path, lags along it and beats its tail, quicker on the song's kicks.
#pragma once

#include "math/Vector3.h"

#include <vector>

class Frustum;
class IndexedMesh;
class InstanceBatch;
class Lin3Track;

class FishSchool {
public:
    struct Fish {
        // Across (x), above (y) and ahead (z) of the path, in its own frame.
        Vector3 offset;
        // Seconds behind the path's point for the scene time.
        float lag;
        // Where the fish is in its tail's stroke, in radians.
        float phase;
        float size;
    };

    // How far each fish drifts about its place, at most; the places keep that far inside the radius.
    static constexpr float DRIFT = 0.7f;
    static constexpr float MAX_LAG = 0.8f;
    // Tail strokes a second between kicks; each kick of the song adds half a stroke.
    static constexpr float STROKES_PER_SECOND = 2.6f;
    // How far the tail tip swings to each side, in mesh units.
    static constexpr float TAIL_SWING = 0.24f;

    FishSchool();

    // Spreads count fish within radius of the path, the same way every time.
    void create(int count, float radius);
    // The path the school's middle follows, in frames at the given rate; not owned.
    void setTrack(const Lin3Track* track, float framesPerSecond);

    int getCount() const { return static_cast<int>(fish.size()); }
    float getRadius() const { return radius; }
    const Fish& getFish(int i) const { return fish[static_cast<size_t>(i)]; }

    // Fish i's offset from the path at scene time t: its place, a slow drift and a swerve on each
    // kick, one way then the other. Always within the radius.
    Vector3 offsetAt(int i, float t) const;
    // Seconds since the last kick (the kick falls on rows 0 and 10 of each 16-row bar).
    static float sinceKick(float t);
    // Kicks heard by time t, the one under way counted by how far its stroke has come.
    static float kicksBy(float t);
    // The tail stroke's angle at time t for a fish starting at phase.
    static float strokeAt(float t, float phase);

    // Fish i's place at time t and the frame it swims in (side, up, forward); false without a track.
    bool place(int i, float t, Vector3& position, Vector3& side, Vector3& up, Vector3& forward) const;
    // Fills the batch with the fish the frustum may see, bent by their strokes.
    void fill(InstanceBatch& batch, const IndexedMesh& mesh, float t, const Frustum& frustum) const;

private:
    std::vector<Fish> fish;
    float radius;
    const Lin3Track* track;
    float framesPerSecond;
};
