// The sky dome's geometry: rings of quad strips from the horizon up to the zenith.
#include "scene/Hemisphere.h"
#include "math/MathConstants.h"

#include <GL/gl.h>
#include <cmath>

namespace {

}  // namespace

Hemisphere::Hemisphere(float r) : radius(r) {}

Vector3 Hemisphere::point(float azimuthTurns, float elevationDegrees) const
{
    const float az = azimuthTurns * MathConstants::TWO_PI;
    const float el = elevationDegrees * MathConstants::DEGREES_TO_RADIANS;
    return Vector3(radius * std::cos(el) * std::cos(az), radius * std::sin(el), radius * std::cos(el) * std::sin(az));
}

Vector2 Hemisphere::texCoord(float azimuthTurns, float elevationDegrees)
{
    return Vector2(azimuthTurns, 1.0f - elevationDegrees / 90.0f);
}

void Hemisphere::draw(int slices, int stacks) const
{
    if (slices < 3)
        slices = 3;
    if (stacks < 1)
        stacks = 1;
    // The viewer is inside: neither winding may be culled.
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_CULL_FACE);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    for (int stack = 0; stack < stacks; ++stack) {
        const float low = 90.0f * static_cast<float>(stack) / static_cast<float>(stacks);
        const float high = 90.0f * static_cast<float>(stack + 1) / static_cast<float>(stacks);
        glBegin(GL_QUAD_STRIP);
        for (int slice = 0; slice <= slices; ++slice) {
            // The last column repeats the first point with u = 1: no seam in the texture.
            const float turns = static_cast<float>(slice) / static_cast<float>(slices);
            for (float elevation : {high, low}) {
                const Vector3 p = point(turns, elevation);
                const Vector2 uv = texCoord(turns, elevation);
                glNormal3f(-p.x / radius, -p.y / radius, -p.z / radius);
                glTexCoord2f(uv.x, uv.y);
                glVertex3f(p.x, p.y, p.z);
            }
        }
        glEnd();
    }
    glPopAttrib();
}
