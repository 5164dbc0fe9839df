// The school: places spread evenly through an ellipsoid, frames taken from the path, tails bent vertex by vertex.
#include "effects/FishSchool.h"

#include "effects/IndexedMesh.h"
#include "effects/InstanceBatch.h"
#include "effects/SeaBedLayout.h"
#include "math/Easing.h"
#include "math/MathConstants.h"
#include "scene/Frustum.h"
#include "scene/Lin3Track.h"

#include <cmath>

namespace {

const float GOLDEN_ANGLE = 2.3999632f;
// The school is wider than it is tall; along the path the lags spread it out.
const Vector3 SHAPE(1.0f, 0.55f, 0.35f);
// Seconds a kick's extra half stroke and its swerve take.
const float KICK_STROKE = 0.3f;
const float SWERVE_SECONDS = 0.6f;
const float BAR_SECONDS = SeaBedLayout::BAR_ROWS * SeaBedLayout::ROW_SECONDS;
const float SECOND_KICK = 10 * SeaBedLayout::ROW_SECONDS;
// The tail bends behind this point of the body (the mesh's nose is at +0.7, its tail at -0.78).
const float TAIL_ROOT = 0.25f;
const float TAIL_LENGTH = 1.03f;

float fraction(float v)
{
    return v - std::floor(v);
}

}  // namespace

FishSchool::FishSchool() : radius(0.0f), track(nullptr), framesPerSecond(24.0f) {}

void FishSchool::create(int count, float r)
{
    radius = r;
    fish.assign(static_cast<size_t>(count > 0 ? count : 0), Fish());
    const float room = std::fmax(r - DRIFT * 1.1f, 0.0f);
    for (int i = 0; i < count; ++i) {
        // A Fibonacci spiral gives even directions; a second sequence spreads them in depth.
        const float height = 1.0f - 2.0f * (i + 0.5f) / count;
        const float ring = std::sqrt(std::fmax(0.0f, 1.0f - height * height));
        const float angle = GOLDEN_ANGLE * i;
        const float reach = room * std::cbrt(fraction(i * 0.618034f + 0.3f));
        Fish& f = fish[static_cast<size_t>(i)];
        f.offset =
            Vector3(ring * std::cos(angle) * SHAPE.x, height * SHAPE.y, ring * std::sin(angle) * SHAPE.z) * reach;
        f.lag = MAX_LAG * fraction(i * 0.4142136f + 0.15f);
        f.phase = MathConstants::TWO_PI * fraction(i * 0.7548777f);
        f.size = 0.8f + 0.35f * fraction(i * 0.5698403f + 0.2f);
    }
}

void FishSchool::setTrack(const Lin3Track* t, float fps)
{
    track = t;
    framesPerSecond = fps;
}

float FishSchool::sinceKick(float t)
{
    const float inBar = t - BAR_SECONDS * std::floor(t / BAR_SECONDS);
    return inBar >= SECOND_KICK ? inBar - SECOND_KICK : inBar;
}

float FishSchool::kicksBy(float t)
{
    if (t < 0.0f)
        return 0.0f;
    const float bars = std::floor(t / BAR_SECONDS);
    const float inBar = t - BAR_SECONDS * bars;
    return 2.0f * bars + Easing::smoothstep(0.0f, KICK_STROKE, inBar) +
           Easing::smoothstep(SECOND_KICK, SECOND_KICK + KICK_STROKE, inBar);
}

float FishSchool::strokeAt(float t, float phase)
{
    return phase + MathConstants::TWO_PI * (STROKES_PER_SECOND * t + 0.5f * kicksBy(t));
}

Vector3 FishSchool::offsetAt(int i, float t) const
{
    const Fish& f = fish[static_cast<size_t>(i)];
    // Every kick the school swerves, one way and then the other.
    const float kicks = std::floor(kicksBy(t) + 0.5f);
    const float since = sinceKick(t);
    const float swerve = since < SWERVE_SECONDS ? std::sin(MathConstants::PI * since / SWERVE_SECONDS) : 0.0f;
    const float side = (static_cast<int>(kicks) % 2 == 0 ? 1.0f : -1.0f) * swerve;
    const Vector3 drift(0.5f * std::sin(0.7f * t + f.phase) + 0.3f * side, 0.45f * std::sin(0.9f * t + 2.0f * f.phase),
                        0.5f * std::sin(0.5f * t + 3.0f * f.phase));
    return f.offset + drift * DRIFT;
}

bool FishSchool::place(int i, float t, Vector3& position, Vector3& side, Vector3& up, Vector3& forward) const
{
    if (!track)
        return false;
    const Fish& f = fish[static_cast<size_t>(i)];
    const float frame = std::fmax(t - f.lag, 0.0f) * framesPerSecond;
    const Vector3 centre = track->evaluate(frame);
    forward = track->evaluate(frame + 0.25f * framesPerSecond) - centre;
    forward.normalize();
    if (forward.x == 0.0f && forward.z == 0.0f)
        forward.assign(0.0f, 0.0f, 1.0f);
    side = Vector3(0.0f, 1.0f, 0.0f).cross(forward);
    side.normalize();
    up = forward.cross(side);
    const Vector3 o = offsetAt(i, t);
    position = centre + side * o.x + up * o.y + forward * o.z;
    return true;
}

void FishSchool::fill(InstanceBatch& batch, const IndexedMesh& mesh, float t, const Frustum& frustum) const
{
    batch.clear();
    const Vertex* source = mesh.getVertices();
    for (int i = 0; i < getCount(); ++i) {
        Vector3 position;
        Vector3 side;
        Vector3 up;
        Vector3 forward;
        const Fish& f = fish[static_cast<size_t>(i)];
        if (!place(i, t, position, side, up, forward) || !frustum.isSphereInside(position, f.size))
            continue;
        Vertex* out = batch.add();
        if (!out)
            return;
        const float stroke = strokeAt(t, f.phase);
        for (int v = 0; v < mesh.getVertexCount(); ++v) {
            const Vector3 local = source[v].position;
            const float behind = std::fmax(TAIL_ROOT - local.z, 0.0f) / TAIL_LENGTH;
            const float swing = TAIL_SWING * behind * behind * std::sin(stroke - 2.5f * behind);
            const Vector3& n = source[v].normal;
            out[v].position = position + (side * (local.x + swing) + up * local.y + forward * local.z) * f.size;
            out[v].normal = side * n.x + up * n.y + forward * n.z;
            out[v].uv = source[v].uv;
        }
    }
}
