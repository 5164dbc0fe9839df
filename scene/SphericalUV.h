// Texture coordinates from each vertex's direction seen from the centre of the mesh.
#pragma once

#include "scene/UVMapper.h"

class SphericalUV : public UVMapper {
public:
    // flags is accepted for the interface and not used.
    void mapMesh(Mesh* mesh, int flags) override;
};
