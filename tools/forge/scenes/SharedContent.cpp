// The ship mesh with its materials, the pictures several scenes share and the console's.
#include "SharedContent.h"

#include "ConsoleArt.h"
#include "Forge.h"
#include "MeshBuilder.h"
#include "MeshFile.h"
#include "SharedArt.h"
#include "ShipMesh.h"

#include "effects/SharedLayout.h"
#include "text/Console.h"

std::vector<ForgedFile> SharedContent::files() const
{
    return {
        ForgedFile::file(SharedLayout::SHIP_MESH),
        ForgedFile::picture(SharedLayout::SHIP_TEXTURE, 256, 256),
        ForgedFile::picture(SharedLayout::PARTICLE, 128, 128),
        ForgedFile::picture(Console::FONT_TEXTURE, 256, 256),
        ForgedFile::picture(Console::BACKGROUND_TEXTURE, 256, 256),
    };
}

bool SharedContent::shipMesh(Forge& forge)
{
    MeshBuilder builder;
    ShipMesh().build(builder);
    std::vector<Material*> materials(ShipMesh::MaterialCount);
    const auto colours = [&](int part, Color ambient, Color diffuse, Color specular, float shininess) {
        materials[part] =
            MeshFile::colourMaterial(ShipMesh::materialNames[part], ambient, diffuse, specular, shininess);
    };
    colours(ShipMesh::Hull, Color(0.22f, 0.13f, 0.07f, 1.0f), Color(0.52f, 0.3f, 0.16f, 1.0f), MeshFile::grey(0.25f),
            25.0f);
    colours(ShipMesh::Deck, Color(0.26f, 0.2f, 0.14f, 1.0f), Color(0.66f, 0.52f, 0.35f, 1.0f), MeshFile::grey(0.1f),
            10.0f);
    colours(ShipMesh::Sail, Color(0.36f, 0.35f, 0.32f, 1.0f), Color(0.93f, 0.9f, 0.8f, 1.0f), MeshFile::grey(0.08f),
            5.0f);
    colours(ShipMesh::Mast, Color(0.14f, 0.09f, 0.05f, 1.0f), Color(0.32f, 0.2f, 0.11f, 1.0f), MeshFile::grey(0.15f),
            15.0f);
    colours(ShipMesh::Flag, Color(0.3f, 0.05f, 0.04f, 1.0f), Color(0.86f, 0.12f, 0.1f, 1.0f), MeshFile::grey(0.1f),
            10.0f);
    colours(ShipMesh::Trim, Color(0.3f, 0.22f, 0.08f, 1.0f), Color(0.86f, 0.64f, 0.2f, 1.0f),
            Color(0.8f, 0.7f, 0.4f, 1.0f), 40.0f);
    // The ship is drawn with clockwise front faces.
    return MeshFile::write(forge, SharedLayout::SHIP_MESH, builder, true, materials);
}

bool SharedContent::build(Forge& forge)
{
    bool ok = shipMesh(forge);
    const SharedArt art;
    ok = forge.savePicture(SharedLayout::SHIP_TEXTURE, art.ship()) && ok;
    ok = forge.savePicture(SharedLayout::PARTICLE, art.particle()) && ok;
    ok = ConsoleArt().build(forge) && ok;
    return ok;
}
