// Visibility of a drawable against the camera's frustum.
#include "scene/DrawableObject.h"

#include "scene/Camera.h"

bool DrawableObject::isVisible(const Camera& camera) const
{
    return camera.getFrustum().isBoxInside(limits);
}
