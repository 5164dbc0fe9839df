// The cockpit's content: the frame written with plain materials (the scene lends them their pictures), the
// dashboard and panel pictures, a glyph atlas for the displays and the planet's ground, clouds and air.
#include "CockpitContent.h"

#include "CockpitArt.h"
#include "CockpitMesh.h"
#include "Forge.h"
#include "GlyphAtlas.h"
#include "MeshFile.h"
#include "TextRaster.h"

#include "effects/CockpitLayout.h"
#include "texture/Material.h"

#include <iostream>

namespace {

using namespace CockpitLayout;

static_assert(GlyphAtlas::cellWidth == FONT_CELL_WIDTH && GlyphAtlas::cellHeight == FONT_CELL_HEIGHT &&
                  GlyphAtlas::columns == FONT_COLUMNS && GlyphAtlas::firstChar == FONT_FIRST &&
                  GlyphAtlas::lastChar == FONT_LAST && GlyphAtlas::size == FONT_SIZE,
              "the displays read the glyph atlas as the forge lays it out");

Material* frameMaterial(FramePart part)
{
    const char* name = FRAME_MATERIALS[part];
    if (part == FRAME_METAL)
        return MeshFile::colourMaterial(name, Color(0.35f, 0.35f, 0.38f, 1.0f), Color(0.75f, 0.75f, 0.8f, 1.0f),
                                        MeshFile::grey(0.35f), 30.0f);
    if (part == FRAME_TRIM)
        return MeshFile::colourMaterial(name, Color(0.12f, 0.12f, 0.13f, 1.0f), Color(0.25f, 0.25f, 0.27f, 1.0f),
                                        MeshFile::grey(0.2f), 20.0f);
    // The instruments light themselves.
    Material* m =
        MeshFile::colourMaterial(name, MeshFile::grey(0.2f), MeshFile::grey(0.4f), MeshFile::grey(0.1f), 10.0f);
    m->setEmission(MeshFile::grey(0.85f));
    return m;
}

}  // namespace

std::vector<ForgedFile> CockpitContent::files() const
{
    return {
        ForgedFile::file(FRAME),
        ForgedFile::picture(PANELS, 256, 256),
        ForgedFile::picture(INSTRUMENTS, CockpitArt::INSTRUMENTS_WIDTH, CockpitArt::INSTRUMENTS_HEIGHT),
        ForgedFile::picture(FONT, GlyphAtlas::size, GlyphAtlas::size),
        ForgedFile::picture(PLANET_SURFACE, CockpitArt::PLANET_WIDTH, CockpitArt::PLANET_HEIGHT),
        ForgedFile::picture(PLANET_CLOUDS, CockpitArt::PLANET_WIDTH, CockpitArt::PLANET_HEIGHT),
        ForgedFile::picture(PLANET_HALO, 256, 256),
    };
}

bool CockpitContent::frame(Forge& forge)
{
    MeshBuilder builder;
    CockpitMesh(builder).build();
    std::vector<Material*> materials;
    for (int part = 0; part < FRAME_PART_COUNT; ++part)
        materials.push_back(frameMaterial(static_cast<FramePart>(part)));
    return MeshFile::write(forge, FRAME, builder, false, materials);
}

bool CockpitContent::font(Forge& forge)
{
    GlyphAtlas atlas;
    if (!atlas.build(TextRaster::fontPath("DejaVuSansMono-Bold.ttf"))) {
        std::cerr << "velmora-forge: cannot use the displays' font\n";
        return false;
    }
    return forge.savePicture(FONT, atlas.image());
}

bool CockpitContent::build(Forge& forge)
{
    bool ok = frame(forge);
    ok = font(forge) && ok;
    const CockpitArt art;
    ok = forge.savePicture(PANELS, art.panels()) && ok;
    ok = forge.savePicture(INSTRUMENTS, art.instruments()) && ok;
    ok = forge.savePicture(PLANET_SURFACE, art.planet()) && ok;
    ok = forge.savePicture(PLANET_CLOUDS, art.clouds()) && ok;
    ok = forge.savePicture(PLANET_HALO, art.halo()) && ok;
    return ok;
}
