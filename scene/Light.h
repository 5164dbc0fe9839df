// Common part of the lights: colours, attenuation, position and one OpenGL light unit while initiated.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "scene/object/NamedObject.h"

#include <cstdint>
#include <istream>
#include <ostream>

class Camera;

class Light : public NamedObject {
public:
    ~Light() override;

    // The name and the common 73-byte body; the subclasses put their tag in front.
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;

    // Takes the lowest free unit (unchecked: with none free the unit is GL_LIGHT0 - 1), then uploads.
    virtual void initiate();
    // Switches off and gives the unit back.
    virtual void shutdown();
    // Re-sends what the current model-view matrix must transform; nothing for the base.
    virtual void reorient(const Camera& camera);
    virtual void uploadStates();
    virtual void switchLight(bool on);

    void turnOn();
    void turnOff();
    void toggle();
    bool isOn() const { return on != 0; }

    // Stored only; OpenGL sees them at the next uploadStates().
    void setPosition(const Vector3& p) { position = p; }
    void setAmbient(const Color& c) { ambient = c; }
    void setDiffuse(const Color& c) { diffuse = c; }
    void setSpecular(const Color& c) { specular = c; }
    void setAttenuation(float constant, float linear, float quadratic);

    const Vector3& getPosition() const { return position; }
    const Color& getAmbient() const { return ambient; }
    const Color& getDiffuse() const { return diffuse; }
    const Color& getSpecular() const { return specular; }
    float getConstantAttenuation() const { return attenuation[0]; }
    float getLinearAttenuation() const { return attenuation[1]; }
    float getQuadraticAttenuation() const { return attenuation[2]; }
    // GL_LIGHT0 + n, or -1 without a unit.
    int getUnit() const { return unit; }

    // The process-wide in-use mask of light units.
    static uint32_t getUnitMask() { return unitMask; }
    static int getUnitCount();

protected:
    Light();
    explicit Light(const char* name);

    bool hasUnit() const { return unit != -1; }
    void sendPosition(float w) const;

    uint8_t on;
    float attenuation[3];
    Color ambient;
    Color diffuse;
    Color specular;
    Vector3 position;
    int unit;

private:
    static int allocateUnit();
    static void freeUnit(int n);

    static uint32_t unitMask;
    static int unitCount;
};
