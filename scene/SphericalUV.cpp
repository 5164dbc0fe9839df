// Longitude over a full turn in u; the elevation also over a full turn in v,
// so v only spans -0.25..0.25: the textures are painted for that.
#include "scene/SphericalUV.h"
#include "math/MathConstants.h"

#include "scene/Mesh.h"

#include <cmath>

namespace {

const double fullTurn = static_cast<double>(MathConstants::TWO_PI);
const double wrapLimit = static_cast<double>(0.999999f);

float wrapped(double value)
{
    if (std::fmod(value, 1.0) > wrapLimit)
        value += 1.0;
    return static_cast<float>(value);
}

}  // namespace

void SphericalUV::mapMesh(Mesh* mesh, int)
{
    if (!mesh || !mesh->getVertices())
        return;
    VertexArray& vertices = *mesh->getVertices();
    const Vector3 centre = mesh->getLimits().getCentre();
    for (int i = 0; i < vertices.getNumVertices(); ++i) {
        Vector3 d = vertices[i].position - centre;
        double u = std::atan2(static_cast<double>(d.x), static_cast<double>(d.z)) / fullTurn;
        double flat = std::sqrt(static_cast<double>(d.x) * d.x + static_cast<double>(d.z) * d.z);
        double v = std::atan2(static_cast<double>(d.y), flat) / fullTurn;
        vertices[i].uv.assign(wrapped(u), wrapped(v));
    }
}
