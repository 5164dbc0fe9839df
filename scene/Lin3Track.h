// A key-frame track of 3-vectors: tangent set-up, evaluation, drawing and the LIN3 chunk.
#pragma once

#include "math/Vector3.h"
#include "scene/Lin3Key.h"
#include "scene/Track.h"

#include <istream>
#include <ostream>

class Lin3Track : public Track {
public:
    Lin3Track();
    ~Lin3Track() override;

    // Recomputes every key's tangents; call after changing keys, before evaluate.
    void setup();
    // The value at time t in frames. Without the repeat flag, any time outside
    // the keys' span, before the first key included, gives the last key's value.
    Vector3 evaluate(float t) const;
    // Line segments from evaluate(f) to evaluate(f + 1) for every frame f in from..to.
    void draw(long from, long to) const;

    // Adds the chunk's keys to those the track holds and takes the chunk's count as the
    // track's, whatever the list then holds. Keys read before a bad one stay.
    bool load(std::istream& in);
    bool save(std::ostream& out);

private:
    static void setupKey(Lin3Key* prev, Lin3Key* prevAlt, Lin3Key* cur, Lin3Key* nextAlt, Lin3Key* next);
    const Lin3Key* findSpan(float t) const;
};
