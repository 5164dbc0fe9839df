// A TCB key linked into a track's sorted list.
#pragma once

#include "scene/TCB.h"

class Key : public TCB {
public:
    Key();
    // The link is not owned: the track destroys its keys one by one.
    ~Key() override;

    // Copies frame and spline parameters, not the link.
    void setTCB(const TCB& tcb);

    Key* getNextKey() const { return nextKey; }
    void setNextKey(Key* key) { nextKey = key; }

private:
    Key* nextKey;
};
