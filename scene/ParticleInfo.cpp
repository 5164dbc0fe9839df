// ParticleInfo and its six shapes: seeded, ordered random draws placing and aiming new particles.
#include "scene/ParticleInfo.h"
#include "math/MathConstants.h"

#include "scene/Frustum.h"

#include <cmath>
#include <cstdlib>

namespace {

// 2 to the power -31: rand() to [0, 1).
const float randomScale = 4.656613e-10f;

Vector3 normalized(float x, float y, float z)
{
    Vector3 v(x, y, z);
    v.normalize();
    return v;
}

// Along one axis of the plane's normal, sign drawn: XY moves in z, XZ in y, YZ in x.
Vector3 planeNormalDraw(PCInfoPlane plane)
{
    float s = ParticleInfo::signedRandom();
    if (plane == PCINFO_PLANE_XY)
        return normalized(0.0f, 0.0f, s);
    if (plane == PCINFO_PLANE_XZ)
        return normalized(0.0f, s, 0.0f);
    return normalized(s, 0.0f, 0.0f);
}

// Sine and cosine in double precision of a float angle, kept as floats.
float sinOf(float a)
{
    return static_cast<float>(std::sin(static_cast<double>(a)));
}

float cosOf(float a)
{
    return static_cast<float>(std::cos(static_cast<double>(a)));
}

}  // namespace

ParticleInfo::ParticleInfo(ParticleType type_, float minLifetime_, float maxLifetime_, const Vector3& size_,
                           const Color& startColor_, const Color& endColor_, const BoundingBox& region_)
    : type(type_), minLifetime(minLifetime_), maxLifetime(maxLifetime_), size(size_), startColor(startColor_),
      endColor(endColor_), material(nullptr), region(region_), plane(PCINFO_PLANE_XY), turns(0.0f)
{
}

ParticleInfo::~ParticleInfo() {}

float ParticleInfo::random()
{
    return static_cast<float>(std::rand()) * randomScale;
}

float ParticleInfo::uniform(float a, float b)
{
    return a + random() * (b - a);
}

float ParticleInfo::signedRandom()
{
    float u = random();
    return 2.0f * u - 1.0f;
}

bool ParticleInfo::visible(const Frustum& frustum) const
{
    return frustum.isSphereInside(region.getCentre(), region.getRadius());
}

void ParticleInfo::begin(Particle& particle)
{
    particle.setInfo(this);
    particle.setType(type);
    particle.setSize(size);
    particle.setLifetime(uniform(minLifetime, maxLifetime));
    particle.setColors(startColor, endColor);
}

void ParticleInfo::end(Particle& particle) const
{
    particle.setMaterial(material);
}

void PCInfoPoint::create(Particle& particle)
{
    begin(particle);
    particle.setPosition(region.getCentre());
    float u1 = random();
    float u2 = random();
    float u3 = random();
    particle.setDirection(normalized(2.0f * u3 - 1.0f, u2, 2.0f * u1 - 1.0f));
    end(particle);
}

PCInfoRect::PCInfoRect(ParticleType type_, float minLifetime_, float maxLifetime_, const Vector3& size_,
                       const Color& startColor_, const Color& endColor_, const BoundingBox& region_, PCInfoPlane plane_)
    : ParticleInfo(type_, minLifetime_, maxLifetime_, size_, startColor_, endColor_, region_)
{
    plane = plane_;
}

void PCInfoRect::create(Particle& particle)
{
    begin(particle);
    const Vector3& mn = region.getMin();
    const Vector3& mx = region.getMax();
    if (plane == PCINFO_PLANE_XY) {
        float y = uniform(mn.y, mx.y);
        float x = uniform(mn.x, mx.x);
        particle.setPosition(Vector3(x, y, mn.z));
    } else if (plane == PCINFO_PLANE_XZ) {
        float z = uniform(mn.z, mx.z);
        float x = uniform(mn.x, mx.x);
        particle.setPosition(Vector3(x, mn.y, z));
    } else {
        float z = uniform(mn.z, mx.z);
        float y = uniform(mn.y, mx.y);
        particle.setPosition(Vector3(mn.x, y, z));
    }
    particle.setDirection(planeNormalDraw(plane));
    end(particle);
}

void PCInfoCube::create(Particle& particle)
{
    begin(particle);
    const Vector3& mn = region.getMin();
    const Vector3& mx = region.getMax();
    float z = uniform(mn.z, mx.z);
    float y = uniform(mn.y, mx.y);
    float x = uniform(mn.x, mx.x);
    particle.setPosition(Vector3(x, y, z));
    particle.setDirection(normalized(x, y, z));
    end(particle);
}

PCInfoCircle::PCInfoCircle(ParticleType type_, float minLifetime_, float maxLifetime_, const Vector3& size_,
                           const Color& startColor_, const Color& endColor_, const BoundingBox& region_,
                           PCInfoPlane plane_)
    : ParticleInfo(type_, minLifetime_, maxLifetime_, size_, startColor_, endColor_, region_)
{
    plane = plane_;
}

void PCInfoCircle::create(Particle& particle)
{
    begin(particle);
    const Vector3& m = region.getCentre();
    const float r = region.getRadius();
    // Two separate draws for sine and cosine fill a square-ish band, not a circle.
    float s = sinOf(MathConstants::TWO_PI * random());
    float k = cosOf(MathConstants::TWO_PI * random());
    Vector3 o;
    if (plane == PCINFO_PLANE_XY)
        o.assign(k * r - s * r, s * r + k * r, 0.0f);
    else if (plane == PCINFO_PLANE_XZ)
        o.assign(k * r + s * r, m.y, k * r - s * r);  // the centre's y counts twice
    else
        o.assign(m.x, k * r - s * r, s * r + k * r);  // the centre's x counts twice
    particle.setPosition(m + o);
    particle.setDirection(planeNormalDraw(plane));
    end(particle);
}

PCInfoHelix::PCInfoHelix(ParticleType type_, float minLifetime_, float maxLifetime_, const Vector3& size_,
                         const Color& startColor_, const Color& endColor_, const BoundingBox& region_,
                         PCInfoPlane plane_, float turns_)
    : ParticleInfo(type_, minLifetime_, maxLifetime_, size_, startColor_, endColor_, region_)
{
    plane = plane_;
    turns = turns_;
}

// The three angle rules differ and all measure the region's z extent; they
// are the shapes the scenes were made with. A zero divisor gives angle 0
// rather than an infinite one.
Vector3 PCInfoHelix::fXY(float t) const
{
    const float r = region.getRadius();
    float extent = std::fabs(region.getMax().z - region.getMin().z);
    float a = 0.0f;
    if (t != 0.0f && extent != 0.0f)
        a = (MathConstants::TWO_PI * turns / extent) / t;
    float c = cosOf(a), s = sinOf(a);
    return Vector3(r * c - r * s, r * s + r * c, t);
}

Vector3 PCInfoHelix::fXZ(float t) const
{
    const float r = region.getRadius();
    float d = std::fabs(region.getMax().z - region.getMin().z - t);
    float a = 0.0f;
    if (d != 0.0f && turns != 0.0f)
        a = d / turns * MathConstants::TWO_PI;
    float c = cosOf(a), s = sinOf(a);
    return Vector3(r * c + r * s, t, r * c - r * s);
}

Vector3 PCInfoHelix::fYZ(float t) const
{
    const float r = region.getRadius();
    float extent = region.getMax().z - region.getMin().z;
    float a = 0.0f;
    if (t != 0.0f && extent != 0.0f)
        a = (MathConstants::TWO_PI * turns / extent) / t;
    float c = cosOf(a), s = sinOf(a);
    return Vector3(t, r * c - r * s, r * s + r * c);
}

void PCInfoHelix::create(Particle& particle)
{
    begin(particle);
    particle.setDirection(Vector3());
    const Vector3& m = region.getCentre();
    const Vector3& mn = region.getMin();
    const Vector3& mx = region.getMax();
    if (plane == PCINFO_PLANE_XY) {
        float t = uniform(mn.z, mx.z);
        particle.setPosition(Vector3(m.x, m.y, 0.0f) + fXY(t));
        particle.setDirection(Vector3(0.0f, 0.0f, 1.0f));
    } else if (plane == PCINFO_PLANE_XZ) {
        float t = uniform(mn.y, mx.y);
        particle.setPosition(Vector3(m.x, 0.0f, m.z) + fXZ(t));
        particle.setDirection(Vector3(0.0f, 1.0f, 0.0f));
    } else {
        float t = uniform(mn.x, mx.x);
        particle.setPosition(Vector3(0.0f, m.y, m.z) + fYZ(t));
        particle.setDirection(Vector3(1.0f, 0.0f, 0.0f));
    }
    end(particle);
}

void PCInfoSphere::create(Particle& particle)
{
    begin(particle);
    float u1 = random();
    float u2 = random();
    float u3 = random();
    Vector3 d = normalized(2.0f * u3 - 1.0f, 2.0f * u2 - 1.0f, 2.0f * u1 - 1.0f);
    particle.setPosition(region.getCentre() + d * region.getRadius());
    // Signs only, not normalised; a zero component moves along +1.
    particle.setDirection(Vector3(d.x < 0.0f ? -1.0f : 1.0f, d.y < 0.0f ? -1.0f : 1.0f, d.z < 0.0f ? -1.0f : 1.0f));
    end(particle);
}
