// Lin3Track: Kochanek-Bartels tangents, Hermite evaluation and persistence.
#include "scene/Lin3Track.h"

#include "scene/Cubic.h"
#include "scene/object/Chunk.h"

#include <GL/gl.h>
#include <cmath>

namespace {

Lin3Key* lin3(Key* key)
{
    return static_cast<Lin3Key*>(key);
}

const Lin3Key* lin3(const Key* key)
{
    return static_cast<const Lin3Key*>(key);
}

}  // namespace

Lin3Track::Lin3Track() {}

Lin3Track::~Lin3Track() {}

void Lin3Track::setupKey(Lin3Key* prev, Lin3Key* prevAlt, Lin3Key* cur, Lin3Key* nextAlt, Lin3Key* next)
{
    if (!prev && !next) {
        cur->setDS(Vector3());
        cur->setDD(Vector3());
        return;
    }
    if (!next) {
        Vector3 d = cur->getPosition() - prev->getPosition();
        cur->setDS(d);
        cur->setDD(d);
        return;
    }
    if (!prev) {
        Vector3 d = next->getPosition() - cur->getPosition();
        cur->setDS(d);
        cur->setDD(d);
        return;
    }
    float ksm, ksp, kdm, kdp;
    TCB::tcb(prev, prevAlt, cur, nextAlt, next, ksm, ksp, kdm, kdp);
    Vector3 np = cur->getPosition() - prev->getPosition();
    Vector3 nn = next->getPosition() - cur->getPosition();
    cur->setDS(np * ksm + nn * ksp);
    cur->setDD(np * kdm + nn * kdp);
}

void Lin3Track::setup()
{
    Lin3Key* first = lin3(firstKey);
    if (!first)
        return;
    Lin3Key* second = lin3(first->getNextKey());
    if (!second) {
        setupKey(nullptr, nullptr, first, nullptr, nullptr);
        return;
    }

    Lin3Key* penultimate = first;
    Lin3Key* last = second;
    while (last->getNextKey()) {
        penultimate = last;
        last = lin3(last->getNextKey());
    }
    bool closed = (flags & CLOSED) != 0;

    // In a closed track the last key is the first one's moment of the next
    // loop: the first key looks back over penultimate..last, the last key
    // forward over first..second.
    if (closed)
        setupKey(penultimate, last, first, nullptr, second);
    else
        setupKey(nullptr, nullptr, first, nullptr, second);

    Lin3Key* previous = first;
    for (Lin3Key* k = second; k != last; k = lin3(k->getNextKey())) {
        setupKey(previous, nullptr, k, nullptr, lin3(k->getNextKey()));
        previous = k;
    }

    if (closed)
        setupKey(penultimate, nullptr, last, first, second);
    else
        setupKey(penultimate, nullptr, last, nullptr, nullptr);
}

const Lin3Key* Lin3Track::findSpan(float t) const
{
    for (const Key* k = firstKey; k && k->getNextKey(); k = k->getNextKey()) {
        if (static_cast<float>(k->getFrame()) <= t && t < static_cast<float>(k->getNextKey()->getFrame()))
            return lin3(k);
    }
    return nullptr;
}

Vector3 Lin3Track::evaluate(float t) const
{
    if (!firstKey)
        return Vector3();
    const Lin3Key* last = lin3(getLastKey());
    if (last == firstKey)
        return last->getPosition();

    const Lin3Key* k = findSpan(t);
    if (!k) {
        if (!(flags & REPEAT))
            return last->getPosition();
        // A last frame of 0 has no period to wrap by.
        if (last->getFrame() != 0)
            t = std::fmod(t, static_cast<float>(last->getFrame()));
        k = findSpan(t);
        if (!k)
            k = last;
    }

    const Lin3Key* n = k->getNextKey() ? lin3(k->getNextKey()) : lin3(firstKey);
    long long span =
        n->getFrame() >= k->getFrame() ? static_cast<long long>(n->getFrame()) - k->getFrame() : n->getFrame();
    if (span == 0)
        span = 1;
    float u = (t - static_cast<float>(k->getFrame())) / static_cast<float>(span);
    return cubic(k->getPosition(), k->getDD(), n->getDS(), n->getPosition(), u);
}

void Lin3Track::draw(long from, long to) const
{
    glBegin(GL_LINES);
    for (long f = from; f <= to; ++f) {
        Vector3 a = evaluate(static_cast<float>(f));
        Vector3 b = evaluate(static_cast<float>(f + 1));
        glVertex3f(a.x, a.y, a.z);
        glVertex3f(b.x, b.y, b.z);
    }
    glEnd();
}

bool Lin3Track::load(std::istream& in)
{
    if (!Chunk::readTag(in, "LIN3"))
        return false;
    int16_t rawFlags = 0;
    int32_t count = 0;
    if (!Chunk::readShort(in, rawFlags) || !Chunk::readInt(in, count))
        return false;
    flags = static_cast<uint16_t>(rawFlags);
    // The keys join any the track already holds, uncounted: the count read stands as it is.
    numKeys = count;
    for (int32_t i = 0; i < count; ++i) {
        // Checked key by key, so a count past the end builds no more keys than the file holds.
        if (!Chunk::fits(in, 1, Lin3Key::RECORD_SIZE))
            return false;
        Lin3Key* key = new Lin3Key();
        if (!key->load(in)) {
            delete key;
            return false;
        }
        insertKey(key, true);
    }
    return Chunk::good(in);
}

bool Lin3Track::save(std::ostream& out)
{
    int32_t count = 0;
    for (Key* k = firstKey; k; k = k->getNextKey())
        ++count;
    Chunk::writeTag(out, "LIN3");
    Chunk::writeShort(out, static_cast<int16_t>(flags));
    Chunk::writeInt(out, count);
    for (Key* k = firstKey; k; k = k->getNextKey()) {
        if (!k->save(out))
            return false;
    }
    return Chunk::good(out);
}
