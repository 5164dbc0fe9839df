// A key's frame and its Kochanek-Bartels spline parameters (tension, continuity, bias).
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>

class TCB {
public:
    // Tag, frame, flags and five reals.
    static const int RECORD_SIZE = 4 + 4 + 2 + 5 * 4;

    TCB();
    virtual ~TCB();

    // The "TCB0" record.
    virtual bool load(std::istream& in);
    virtual bool save(std::ostream& out);

    int32_t getFrame() const { return frame; }
    void setFrame(int32_t f) { frame = f; }
    uint16_t getFlags() const { return flags; }
    void setFlags(uint16_t f) { flags = f; }
    float getTension() const { return tension; }
    void setTension(float t) { tension = t; }
    float getContinuity() const { return continuity; }
    void setContinuity(float c) { continuity = c; }
    float getBias() const { return bias; }
    void setBias(float b) { bias = b; }
    // Stored and saved only; nothing evaluates them.
    float getEaseTo() const { return easeTo; }
    void setEaseTo(float e) { easeTo = e; }
    float getEaseFrom() const { return easeFrom; }
    void setEaseFrom(float e) { easeFrom = e; }

    // Hermite tangent weights of cur from its neighbours, with cur's own parameters.
    // prevAlt and nextAlt stand in for cur when null; they let a closed track
    // measure intervals across its seam.
    static void tcb(const TCB* prev, const TCB* prevAlt, const TCB* cur, const TCB* nextAlt, const TCB* next,
                    float& ksm, float& ksp, float& kdm, float& kdp);

protected:
    int32_t frame;
    uint16_t flags;
    float tension;
    float continuity;
    float bias;
    float easeTo;
    float easeFrom;
};
