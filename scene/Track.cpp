// Track: the sorted, owning key list.
#include "scene/Track.h"

Track::Track() : flags(0), numKeys(0), firstKey(nullptr) {}

Track::~Track()
{
    clear();
}

void Track::clear()
{
    while (firstKey) {
        Key* next = firstKey->getNextKey();
        delete firstKey;
        firstKey = next;
    }
    numKeys = 0;
}

void Track::insertKey(Key* key, bool loading)
{
    if (!key)
        return;
    if (!loading)
        ++numKeys;

    Key* after = nullptr;
    for (Key* k = firstKey; k && k->getFrame() <= key->getFrame(); k = k->getNextKey())
        after = k;
    if (!after) {
        key->setNextKey(firstKey);
        firstKey = key;
        return;
    }
    key->setNextKey(after->getNextKey());
    after->setNextKey(key);
}

void Track::removeKey(int32_t frame)
{
    Key* previous = nullptr;
    for (Key* k = firstKey; k; previous = k, k = k->getNextKey()) {
        if (k->getFrame() != frame)
            continue;
        if (previous)
            previous->setNextKey(k->getNextKey());
        else
            firstKey = k->getNextKey();
        delete k;
        --numKeys;
        return;
    }
}

Key* Track::findKey(int32_t frame) const
{
    for (Key* k = firstKey; k; k = k->getNextKey()) {
        if (k->getFrame() == frame)
            return k;
    }
    return nullptr;
}

Key* Track::getLastKey() const
{
    Key* last = firstKey;
    while (last && last->getNextKey())
        last = last->getNextKey();
    return last;
}

int32_t Track::getLastFrame() const
{
    Key* last = getLastKey();
    return last ? last->getFrame() : 0;
}
