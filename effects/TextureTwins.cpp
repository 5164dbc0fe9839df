// TextureTwins: colours copied from the file's material, the picture loaded once per file.
#include "effects/TextureTwins.h"

#include "effects/SceneKit.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"

#include <cstring>
#include <iostream>
#include <string>

TextureTwins::TextureTwins(const char* sceneName, const char* const* materialNames,
                           const TextureFile* const* partPictures, int parts, bool withMipmaps)
    : scene(sceneName), names(materialNames), pictures(partPictures), count(parts < MAX_PARTS ? parts : MAX_PARTS),
      mipmapped(withMipmaps), twins()
{
}

void TextureTwins::make()
{
    MaterialMgr* registry = MaterialMgr::getHandle();
    for (int part = 0; part < count; ++part) {
        const std::string name = std::string(scene) + names[part];
        twins[part] = dynamic_cast<TextureMaterial*>(registry->find(name.c_str()));
        if (twins[part]) {
            // Its picture, released when the scene last ended, is made again the way it was first made.
            const Texture* texture = twins[part]->getTexture();
            if (texture && texture->getGLName() == Texture::noName && pictures[part])
                load(*pictures[part]);
            continue;
        }
        const Material* named = registry->find(names[part]);
        if (!named)
            continue;
        // A picture an earlier part loaded (or failed to) is not loaded again.
        const TextureFile* picture = pictures[part];
        int first = 0;
        while (first < part && pictures[first] != picture)
            ++first;
        Texture* texture = nullptr;
        if (first < part) {
            texture = twins[first] ? twins[first]->getTexture() : nullptr;
        } else if (picture) {
            texture = load(*picture);
            if (!texture)
                std::cerr << SceneKit::missingMessage(scene, picture->file);
        }
        TextureMaterial* twin =
            SceneKit::makeMaterial(name.c_str(), texture, named->getBlendMode(), Material::defaultFlags);
        twin->setAmbient(named->getAmbient());
        twin->setDiffuse(named->getDiffuse());
        twin->setSpecular(named->getSpecular());
        twin->setEmission(named->getEmission());
        twin->setShininess(named->getShininess());
        twins[part] = twin;
    }
}

Texture* TextureTwins::load(const TextureFile& picture) const
{
    return mipmapped ? SceneKit::preloadMipmapped(picture) : SceneKit::preloadTexture(picture);
}

void TextureTwins::releasePictures()
{
    for (int part = 0; part < count; ++part)
        if (pictures[part])
            SceneKit::releaseTexture(*pictures[part]);
}

void TextureTwins::forget()
{
    // Registered materials belong to the registry.
    for (TextureMaterial*& twin : twins)
        twin = nullptr;
}

Material* TextureTwins::twinOf(Material* named) const
{
    for (int part = 0; part < count && named && named->getName(); ++part)
        if (twins[part] && std::strcmp(named->getName(), names[part]) == 0)
            return twins[part];
    return named;
}
