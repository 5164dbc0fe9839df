// A key holding a 3-vector value and the incoming and outgoing tangents at it.
#pragma once

#include "math/Vector3.h"
#include "scene/Key.h"

class Lin3Key : public Key {
public:
    // A TCB record followed by the value.
    static const int RECORD_SIZE = TCB::RECORD_SIZE + 3 * 4;

    Lin3Key();
    // The frame is the ceiling of the given time: 2.1 becomes 3, -2.5 becomes -2.
    Lin3Key(float frame, const Vector3& value);

    // The tangents are not stored: setup() recomputes them.
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;

    const Vector3& getPosition() const { return value; }
    void setPosition(const Vector3& v) { value = v; }
    // Outgoing tangent.
    const Vector3& getDD() const { return dd; }
    void setDD(const Vector3& v) { dd = v; }
    // Incoming tangent.
    const Vector3& getDS() const { return ds; }
    void setDS(const Vector3& v) { ds = v; }

private:
    Vector3 value;
    Vector3 dd;
    Vector3 ds;
};
