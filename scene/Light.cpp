// Light units, the common GL states and the common light body.
#include "scene/Light.h"

#include "scene/object/Chunk.h"

#include <GL/gl.h>

uint32_t Light::unitMask = 0;
int Light::unitCount = 0;

namespace {
// The mask has one bit per unit.
const int maskBits = 32;
}  // namespace

Light::Light()
    : on(0), attenuation{0.0f, 0.0f, 0.0f}, ambient(0.2f, 0.2f, 0.2f, 1.0f), diffuse(0.8f, 0.8f, 0.8f, 1.0f),
      specular(1.0f, 1.0f, 1.0f, 1.0f), position(0.0f, 0.0f, 1.0f), unit(-1)
{
    getUnitCount();
}

Light::Light(const char* name) : Light()
{
    setName(name);
}

Light::~Light()
{
    if (hasUnit())
        Light::shutdown();
}

int Light::getUnitCount()
{
    // Asked once; a query made before any GL context exists answers nothing and is repeated.
    if (unitCount <= 0) {
        GLint offered = 0;
        glGetIntegerv(GL_MAX_LIGHTS, &offered);
        unitCount = offered > maskBits ? maskBits : offered;
    }
    return unitCount;
}

int Light::allocateUnit()
{
    int count = getUnitCount();
    for (int n = 0; n < count; ++n) {
        if (!(unitMask & (1u << n))) {
            unitMask |= 1u << n;
            return n;
        }
    }
    return -1;
}

void Light::freeUnit(int n)
{
    if (n >= 0 && n < maskBits)
        unitMask &= ~(1u << n);
}

void Light::initiate()
{
    if (!hasUnit())
        unit = GL_LIGHT0 + allocateUnit();
    uploadStates();
}

void Light::shutdown()
{
    if (!hasUnit())
        return;
    turnOff();
    freeUnit(unit - GL_LIGHT0);
    unit = -1;
}

void Light::reorient(const Camera&) {}

void Light::uploadStates()
{
    GLenum light = static_cast<GLenum>(unit);
    glLightf(light, GL_CONSTANT_ATTENUATION, attenuation[0]);
    glLightf(light, GL_LINEAR_ATTENUATION, attenuation[1]);
    glLightf(light, GL_QUADRATIC_ATTENUATION, attenuation[2]);
    glLightfv(light, GL_AMBIENT, &ambient.r);
    glLightfv(light, GL_DIFFUSE, &diffuse.r);
    glLightfv(light, GL_SPECULAR, &specular.r);
}

void Light::switchLight(bool enable)
{
    if (enable)
        glEnable(static_cast<GLenum>(unit));
    else
        glDisable(static_cast<GLenum>(unit));
}

void Light::sendPosition(float w) const
{
    const float values[4] = {position.x, position.y, position.z, w};
    glLightfv(static_cast<GLenum>(unit), GL_POSITION, values);
}

void Light::turnOn()
{
    if (on)
        return;
    switchLight(true);
    on = 1;
}

void Light::turnOff()
{
    if (!on)
        return;
    switchLight(false);
    on = 0;
}

void Light::toggle()
{
    switchLight(!on);
    on = on ? 0 : 1;
}

void Light::setAttenuation(float constant, float linear, float quadratic)
{
    attenuation[0] = constant;
    attenuation[1] = linear;
    attenuation[2] = quadratic;
}

namespace {

bool readColor(std::istream& in, Color& colour)
{
    float values[4];
    if (!Chunk::readFloats(in, values, 4))
        return false;
    // Field by field: a stored colour comes back exactly as it was written.
    colour.r = values[0];
    colour.g = values[1];
    colour.b = values[2];
    colour.a = values[3];
    return true;
}

void writeColor(std::ostream& out, const Color& colour)
{
    const float values[4] = {colour.r, colour.g, colour.b, colour.a};
    Chunk::writeFloats(out, values, 4);
}

}  // namespace

bool Light::load(std::istream& in)
{
    if (!NamedObject::load(in))
        return false;
    uint8_t newOn = 0;
    float values[3];
    if (!Chunk::readByte(in, newOn) || !Chunk::readFloats(in, values, 3))
        return false;
    Color colours[3];
    for (Color& colour : colours)
        if (!readColor(in, colour))
            return false;
    float place[3];
    if (!Chunk::readFloats(in, place, 3))
        return false;
    on = newOn;
    setAttenuation(values[0], values[1], values[2]);
    ambient = colours[0];
    diffuse = colours[1];
    specular = colours[2];
    position.assign(place[0], place[1], place[2]);
    return Chunk::good(in);
}

bool Light::save(std::ostream& out)
{
    if (!NamedObject::save(out))
        return false;
    Chunk::writeByte(out, on);
    Chunk::writeFloats(out, attenuation, 3);
    writeColor(out, ambient);
    writeColor(out, diffuse);
    writeColor(out, specular);
    const float place[3] = {position.x, position.y, position.z};
    Chunk::writeFloats(out, place, 3);
    return Chunk::good(out);
}
