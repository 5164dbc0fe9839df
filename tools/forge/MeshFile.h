// Writes a built mesh as a .msh file with its materials in front, so its faces find them by name when the demo loads it.
#pragma once

#include "math/Color.h"

#include <string>
#include <vector>

class Forge;
class Material;
class MeshBuilder;

class MeshFile {
public:
    // Registers the materials (the file lists them in index order), writes the MMGR and MESH
    // chunks and empties the registry again. The meshes drawn with clockwise front faces say so.
    static bool write(Forge& forge, const std::string& path, const MeshBuilder& builder, bool clockwise,
                      const std::vector<Material*>& materials);
    // An untextured material with these colours.
    static Material* colourMaterial(const char* name, const Color& ambient, const Color& diffuse, const Color& specular,
                                    float shininess);
    static Color grey(float v) { return Color(v, v, v, 1.0f); }
};
