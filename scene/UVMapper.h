// Interface of the texture-coordinate generators that work on whole meshes.
#pragma once

class Mesh;

class UVMapper {
public:
    virtual ~UVMapper() {}
    virtual void mapMesh(Mesh* mesh, int flags) = 0;
};
