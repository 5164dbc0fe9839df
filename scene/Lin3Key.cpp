// Lin3Key: construction from a time and the key record with its value.
#include "scene/Lin3Key.h"

#include "scene/object/Chunk.h"

#include <climits>
#include <cmath>

namespace {

int32_t ceilingFrame(float time)
{
    double up = std::ceil(static_cast<double>(time));
    if (!(up > static_cast<double>(INT32_MIN)))
        return up < 0.0 ? INT32_MIN : 0;  // NaN lands on frame 0
    if (up > static_cast<double>(INT32_MAX))
        return INT32_MAX;
    return static_cast<int32_t>(up);
}

}  // namespace

Lin3Key::Lin3Key() {}

Lin3Key::Lin3Key(float time, const Vector3& v) : value(v)
{
    frame = ceilingFrame(time);
}

bool Lin3Key::load(std::istream& in)
{
    if (!TCB::load(in))
        return false;
    float xyz[3] = {0.0f, 0.0f, 0.0f};
    if (!Chunk::readFloats(in, xyz, 3))
        return false;
    value.assign(xyz[0], xyz[1], xyz[2]);
    return Chunk::good(in);
}

bool Lin3Key::save(std::ostream& out)
{
    if (!TCB::save(out))
        return false;
    Chunk::writeFloats(out, &value.x, 3);
    return Chunk::good(out);
}
