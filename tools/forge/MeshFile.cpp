// Meshes written with the engine's own mesh and material chunks.
#include "MeshFile.h"

#include "Forge.h"
#include "MeshBuilder.h"

#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <memory>

bool MeshFile::write(Forge& forge, const std::string& path, const MeshBuilder& builder, bool clockwise,
                     const std::vector<Material*>& materials)
{
    MaterialMgr* registry = MaterialMgr::getHandle();
    registry->shutdown();
    // Added last first, so the file lists them in their index order.
    for (auto it = materials.rbegin(); it != materials.rend(); ++it)
        registry->add(*it);
    std::unique_ptr<Mesh> mesh(builder.build(clockwise, materials));
    const bool ok = forge.saveFile(path, [&](const std::string& full) { return mesh && mesh->save(full.c_str()); });
    registry->shutdown();
    return ok;
}

Material* MeshFile::colourMaterial(const char* name, const Color& ambient, const Color& diffuse, const Color& specular,
                                   float shininess)
{
    Material* m = new Material(name);
    m->setAmbient(ambient);
    m->setDiffuse(diffuse);
    m->setSpecular(specular);
    m->setShininess(shininess);
    return m;
}
