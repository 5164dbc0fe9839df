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

Vector3 SwayingPlants::lean(float h, float t, float phase) const
{
    const float up = std::fmin(std::fmax(h / height, 0.0f), 1.0f);
    const float weight = up * std::sqrt(up);
    // Pushed one way by the current and swinging back, with a slower sway across it; scaled so that
    // the two together never reach further than the reach.
    const float sideways = 0.35f;
    const float with = 0.55f + 0.45f * std::sin(0.9f * t + phase - 0.25f * h);
    const float side = sideways * std::sin(0.55f * t + 2.0f * phase - 0.3f * h);
    return (along * with + across * side) * (reach * weight / std::sqrt(1.0f + sideways * sideways));
}

void SwayingPlants::fill(InstanceBatch& batch, const IndexedMesh& mesh, float t, const Frustum& frustum) const
{
    batch.clear();
    const Vertex* source = mesh.getVertices();
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
        for (int v = 0; v < mesh.getVertexCount(); ++v) {
            const Vector3& p = source[v].position;
            const Vector3& n = source[v].normal;
            const Vector3 turned(c * p.x + s * p.z, p.y, -s * p.x + c * p.z);
            out[v].position = plant.base + turned * plant.scale + lean(p.y, t, plant.phase) * plant.scale;
            out[v].normal = Vector3(c * n.x + s * n.z, n.y, -s * n.x + c * n.z);
            out[v].uv = source[v].uv;
        }
    }
}
