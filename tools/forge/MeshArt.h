// The demo's meshes, written with the engine's own mesh and material chunks.
#pragma once

#include <string>
#include <vector>

class Forge;
class Material;
class MeshBuilder;
class Texture;

class MeshArt {
public:
    MeshArt();
    ~MeshArt();
    MeshArt(const MeshArt&) = delete;
    MeshArt& operator=(const MeshArt&) = delete;

    // Writes data/3d/ship.msh, fugl1.msh, fugl2.msh, leaf.msh, worm.msh, spike.msh,
    // fan2.msh and fanholder2.msh; false if any failed.
    bool build(Forge& forge);

private:
    bool ship(Forge& forge);
    bool bird(Forge& forge, const char* file, bool wingsUp);
    bool seaObject(Forge& forge, const char* file, int kind);
    // Registers the materials, writes the MMGR and MESH chunks, and clears the registry again.
    bool write(Forge& forge, const std::string& relative, const MeshBuilder& builder, bool clockwise,
        const std::vector<Material*>& materials);

    // Stand-in for the reflection map the tunnel objects name; only its name and format are written.
    Texture* reflectionTexture;
};
