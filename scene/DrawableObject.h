// Base of drawable named objects: their limits and a frustum visibility test.
#pragma once

#include "scene/BoundingBox.h"
#include "scene/object/NamedObject.h"

class Camera;

class DrawableObject : public NamedObject {
public:
    DrawableObject() {}
    explicit DrawableObject(const char* name) : NamedObject(name) {}

    void setLimits(const BoundingBox& box) { limits = box; }
    const BoundingBox& getLimits() const { return limits; }

    // The camera frustum's conservative box test on the limits.
    bool isVisible(const Camera& camera) const;

protected:
    BoundingBox limits;
};
