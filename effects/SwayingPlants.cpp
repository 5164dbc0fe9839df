// Swaying plants: each copy turned and scaled on its base, every vertex leaning by its height.
#include "effects/SwayingPlants.h"

#include "effects/IndexedMesh.h"
#include "effects/InstanceBatch.h"
#include "math/MathConstants.h"
#include "scene/Frustum.h"

#include <cmath>

SwayingPlants::SwayingPlants(float h, float r, const Vector3& current) : room(0), height(h), reach(r), along(current)
{
    along.y = 0.0f;
    along.normalize();
    across = Vector3(-along.z, 0.0f, along.x);
}

void SwayingPlants::reserve(int count)
{
    room = static_cast<size_t>(count > 0 ? count : 0);
    plants.clear();
    plants.reserve(room);
}

bool SwayingPlants::add(const Plant& plant)
{
    if (plants.size() >= room)
        return false;
    plants.push_back(plant);
    return true;
}

namespace {

// How far across the current a plant sways, beside the 0.55 +- 0.45 it leans with it; the two
// together are scaled so that they never reach further than the reach.
const float SIDEWAYS = 0.35f;
const float WITH_WAVE = 0.25f;
const float SIDE_WAVE = 0.3f;

}  // namespace

float SwayingPlants::weight(float h) const
{
    const float up = std::fmin(std::fmax(h / height, 0.0f), 1.0f);
    return up * std::sqrt(up) * reach / std::sqrt(1.0f + SIDEWAYS * SIDEWAYS);
}

Vector3 SwayingPlants::lean(float h, float t, float phase) const
{
    // Pushed one way by the current and swinging back, with a slower sway across it, a wave
    // running up the stem.
    const float with = 0.55f + 0.45f * std::sin(0.9f * t + phase - WITH_WAVE * h);
    const float side = SIDEWAYS * std::sin(0.55f * t + 2.0f * phase - SIDE_WAVE * h);
    return (along * with + across * side) * weight(h);
}

void SwayingPlants::prepare(const IndexedMesh& mesh)
{
    bends.clear();
    bends.reserve(static_cast<size_t>(mesh.getVertexCount()));
    for (int v = 0; v < mesh.getVertexCount(); ++v) {
        const float h = mesh.getVertices()[v].position.y;
        bends.push_back({weight(h), std::cos(WITH_WAVE * h), std::sin(WITH_WAVE * h), std::cos(SIDE_WAVE * h),
                         std::sin(SIDE_WAVE * h)});
    }
}

void SwayingPlants::fill(InstanceBatch& batch, const IndexedMesh& mesh, float t, const Frustum& frustum) const
{
    batch.clear();
    const Vertex* source = mesh.getVertices();
    const bool prepared = bends.size() == static_cast<size_t>(mesh.getVertexCount());
    for (const Plant& plant : plants) {
        const float half = 0.5f * height * plant.scale;
        if (!frustum.isSphereInside(plant.base + Vector3(0.0f, half, 0.0f), half + reach))
            continue;
        Vertex* out = batch.add();
        if (!out)
            return;
        const float yaw = plant.yaw * MathConstants::DEGREES_TO_RADIANS;
        const float c = std::cos(yaw);
        const float s = std::sin(yaw);
        // The waves' time terms once a plant; each vertex adds its height by the sum of angles.
        const float withAngle = 0.9f * t + plant.phase;
        const float sideAngle = 0.55f * t + 2.0f * plant.phase;
        const float withSin = std::sin(withAngle);
        const float withCos = std::cos(withAngle);
        const float sideSin = std::sin(sideAngle);
        const float sideCos = std::cos(sideAngle);
        for (int v = 0; v < mesh.getVertexCount(); ++v) {
            const Vector3& p = source[v].position;
            const Vector3& n = source[v].normal;
            Vector3 bent;
            if (prepared) {
                const Bend& b = bends[static_cast<size_t>(v)];
                const float with = 0.55f + 0.45f * (withSin * b.withCos - withCos * b.withSin);
                const float side = SIDEWAYS * (sideSin * b.sideCos - sideCos * b.sideSin);
                bent = (along * with + across * side) * b.weight;
            } else {
                bent = lean(p.y, t, plant.phase);
            }
            const Vector3 turned(c * p.x + s * p.z, p.y, -s * p.x + c * p.z);
            out[v].position = plant.base + (turned + bent) * plant.scale;
            out[v].normal = Vector3(c * n.x + s * n.z, n.y, -s * n.x + c * n.z);
            out[v].uv = source[v].uv;
        }
    }
}
