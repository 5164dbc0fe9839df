// TCB: the key record on disk and the spline weights.
#include "scene/TCB.h"

#include "scene/object/Chunk.h"

#include <cmath>

TCB::TCB() : frame(0), flags(0), tension(0.0f), continuity(0.0f), bias(0.0f), easeTo(0.0f), easeFrom(0.0f) {}

TCB::~TCB() {}

bool TCB::load(std::istream& in)
{
    if (!Chunk::readTag(in, "TCB0"))
        return false;
    int16_t rawFlags = 0;
    float reals[5] = {0.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    if (!Chunk::readInt(in, frame) || !Chunk::readShort(in, rawFlags) || !Chunk::readFloats(in, reals, 5))
        return false;
    flags = static_cast<uint16_t>(rawFlags);
    tension = reals[0];
    continuity = reals[1];
    bias = reals[2];
    easeTo = reals[3];
    easeFrom = reals[4];
    return Chunk::good(in);
}

bool TCB::save(std::ostream& out)
{
    const float reals[5] = {tension, continuity, bias, easeTo, easeFrom};
    Chunk::writeTag(out, "TCB0");
    Chunk::writeInt(out, frame);
    Chunk::writeShort(out, static_cast<int16_t>(flags));
    Chunk::writeFloats(out, reals, 5);
    return Chunk::good(out);
}

void TCB::tcb(const TCB* prev, const TCB* prevAlt, const TCB* cur, const TCB* nextAlt, const TCB* next, float& ksm,
              float& ksp, float& kdm, float& kdp)
{
    if (!prevAlt)
        prevAlt = cur;
    if (!nextAlt)
        nextAlt = cur;

    float fp = 1.0f;
    float fn = 1.0f;
    if (prev && next) {
        // Frames come from files: keep the differences out of 32-bit overflow.
        long long before = static_cast<long long>(prevAlt->frame) - prev->frame;
        long long after = static_cast<long long>(next->frame) - nextAlt->frame;
        float dt = static_cast<float>(before + after) * 0.5f;
        // Keys sharing one frame leave no interval to weigh by.
        if (dt != 0.0f) {
            fp = static_cast<float>(before) / dt;
            fn = static_cast<float>(after) / dt;
        }
        float c = std::fabs(cur->continuity);
        fp = fp + c - c * fp;
        fn = fn + c - c * fn;
    }

    float t = cur->tension;
    float c = cur->continuity;
    float b = cur->bias;
    ksm = fp * 0.5f * (1.0f - t) * (1.0f - c) * (1.0f + b);
    ksp = fp * 0.5f * (1.0f - t) * (1.0f + c) * (1.0f - b);
    kdm = fn * 0.5f * (1.0f - t) * (1.0f + c) * (1.0f + b);
    kdp = fn * 0.5f * (1.0f - t) * (1.0f - c) * (1.0f - b);
}
