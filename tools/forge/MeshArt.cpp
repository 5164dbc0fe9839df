// Materials travel in front of each mesh so its faces find them by name when the demo loads it.
// The ship and the birds are drawn with clockwise front faces; the tunnel objects with the default.
#include "MeshArt.h"

#include "BirdMesh.h"
#include "Forge.h"
#include "MeshBuilder.h"
#include "SeaObjectMesh.h"
#include "ShipMesh.h"

#include "math/Color.h"
#include "scene/Mesh.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <memory>

namespace {

Material* colourMaterial(const char* name, Color ambient, Color diffuse, Color specular, float shininess)
{
    Material* m = new Material(name);
    m->setAmbient(ambient);
    m->setDiffuse(diffuse);
    m->setSpecular(specular);
    m->setShininess(shininess);
    return m;
}

Color grey(float v)
{
    return Color(v, v, v, 1.0f);
}

} // namespace

MeshArt::MeshArt()
    : reflectionTexture(new Texture("data/img/refmap.png", 1, 1, 24, 7, new unsigned char[3]{ 0, 0, 0 }))
{
}

MeshArt::~MeshArt()
{
    delete reflectionTexture;
}

bool MeshArt::write(Forge& forge, const std::string& relative, const MeshBuilder& builder, bool clockwise,
    const std::vector<Material*>& materials)
{
    MaterialMgr* registry = MaterialMgr::getHandle();
    registry->shutdown();
    // Added last first, so the file lists them in their index order.
    for (auto it = materials.rbegin(); it != materials.rend(); ++it)
        registry->add(*it);
    std::unique_ptr<Mesh> mesh(builder.build(clockwise, materials));
    const bool ok = forge.saveFile(relative, [&](const std::string& path) { return mesh && mesh->save(path.c_str()); });
    registry->shutdown();
    return ok;
}

bool MeshArt::ship(Forge& forge)
{
    MeshBuilder builder;
    ShipMesh().build(builder);
    std::vector<Material*> materials(ShipMesh::MaterialCount);
    materials[ShipMesh::Hull] = colourMaterial(ShipMesh::materialNames[ShipMesh::Hull], Color(0.22f, 0.13f, 0.07f, 1.0f),
        Color(0.52f, 0.3f, 0.16f, 1.0f), grey(0.25f), 25.0f);
    materials[ShipMesh::Deck] = colourMaterial(ShipMesh::materialNames[ShipMesh::Deck], Color(0.26f, 0.2f, 0.14f, 1.0f),
        Color(0.66f, 0.52f, 0.35f, 1.0f), grey(0.1f), 10.0f);
    materials[ShipMesh::Sail] = colourMaterial(ShipMesh::materialNames[ShipMesh::Sail], Color(0.36f, 0.35f, 0.32f, 1.0f),
        Color(0.93f, 0.9f, 0.8f, 1.0f), grey(0.08f), 5.0f);
    materials[ShipMesh::Mast] = colourMaterial(ShipMesh::materialNames[ShipMesh::Mast], Color(0.14f, 0.09f, 0.05f, 1.0f),
        Color(0.32f, 0.2f, 0.11f, 1.0f), grey(0.15f), 15.0f);
    materials[ShipMesh::Flag] = colourMaterial(ShipMesh::materialNames[ShipMesh::Flag], Color(0.3f, 0.05f, 0.04f, 1.0f),
        Color(0.86f, 0.12f, 0.1f, 1.0f), grey(0.1f), 10.0f);
    materials[ShipMesh::Trim] = colourMaterial(ShipMesh::materialNames[ShipMesh::Trim], Color(0.3f, 0.22f, 0.08f, 1.0f),
        Color(0.86f, 0.64f, 0.2f, 1.0f), Color(0.8f, 0.7f, 0.4f, 1.0f), 40.0f);
    return write(forge, "3d/ship.msh", builder, true, materials);
}

bool MeshArt::bird(Forge& forge, const char* file, bool wingsUp)
{
    MeshBuilder builder;
    BirdMesh(wingsUp).build(builder);
    std::vector<Material*> materials(BirdMesh::MaterialCount);
    materials[BirdMesh::Body] = colourMaterial(BirdMesh::materialNames[BirdMesh::Body], grey(0.35f), Color(0.95f, 0.95f, 0.97f, 1.0f),
        grey(0.3f), 20.0f);
    materials[BirdMesh::WingTip] = colourMaterial(BirdMesh::materialNames[BirdMesh::WingTip], grey(0.1f), Color(0.25f, 0.25f, 0.28f, 1.0f),
        grey(0.2f), 20.0f);
    materials[BirdMesh::Beak] = colourMaterial(BirdMesh::materialNames[BirdMesh::Beak], Color(0.3f, 0.2f, 0.0f, 1.0f),
        Color(0.95f, 0.65f, 0.1f, 1.0f), grey(0.3f), 30.0f);
    return write(forge, std::string("3d/") + file, builder, true, materials);
}

bool MeshArt::seaObject(Forge& forge, const char* file, int kind)
{
    MeshBuilder builder;
    SeaObjectMesh((SeaObjectMesh::Kind)kind).build(builder);
    TextureMaterial* shell = new TextureMaterial(SeaObjectMesh::materialNames[SeaObjectMesh::Shell]);
    shell->setTexture(reflectionTexture);
    shell->setFlags(0x10000043);
    shell->setBlendMode(0);
    shell->setAmbient(grey(1.0f));
    shell->setDiffuse(grey(1.0f));
    return write(forge, std::string("3d/") + file, builder, false, { shell });
}

bool MeshArt::build(Forge& forge)
{
    bool ok = ship(forge);
    ok = bird(forge, "fugl1.msh", true) && ok;
    ok = bird(forge, "fugl2.msh", false) && ok;
    ok = seaObject(forge, "leaf.msh", SeaObjectMesh::Leaf) && ok;
    ok = seaObject(forge, "worm.msh", SeaObjectMesh::Worm) && ok;
    ok = seaObject(forge, "spike.msh", SeaObjectMesh::Spike) && ok;
    ok = seaObject(forge, "fan2.msh", SeaObjectMesh::Fan) && ok;
    ok = seaObject(forge, "fanholder2.msh", SeaObjectMesh::FanHolder) && ok;
    return ok;
}
