// A list of keys kept sorted by frame; the track owns its keys.
#pragma once

#include "scene/Key.h"

#include <cstdint>

class Track {
public:
    enum {
        REPEAT = 1,  // time wraps at the last key
        CLOSED = 2   // first and last key are smoothed across the seam
    };

    Track();
    virtual ~Track();
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    uint16_t getFlags() const { return flags; }
    void setFlags(uint16_t f) { flags = f; }
    int32_t getNumKeys() const { return numKeys; }
    Key* getFirstKey() const { return firstKey; }

    // Takes ownership. Goes after the last key whose frame is not larger, so
    // a key at an existing frame sits behind the old one; nothing is replaced.
    // The count is left alone while loading, which sets it itself.
    void insertKey(Key* key, bool loading = false);
    // Destroys the first key at that frame, if any.
    void removeKey(int32_t frame);
    Key* findKey(int32_t frame) const;
    // 0 for an empty track.
    int32_t getLastFrame() const;

    Key* getLastKey() const;
    // Destroys every key.
    void clear();

protected:
    uint16_t flags;
    int32_t numKeys;
    Key* firstKey;
};
