// Textured twins of the plain materials a content file names: the file keeps the colours, the scene lends pictures.
#pragma once

#include "texture/TextureFormat.h"

class Material;
class Texture;
class TextureMaterial;

class TextureTwins {
public:
    enum { MAX_PARTS = 8 };

    // Material `names[i]` of the file is drawn with `pictures[i]` (null: no picture); the twins are
    // registered as "<scene><name>". At most MAX_PARTS parts are kept.
    TextureTwins(const char* scene, const char* const* names, const TextureFile* const* pictures, int count,
                 bool mipmapped);

    // Finds or makes the twin of every part whose material the registry holds; a missing picture
    // is reported once, however many parts it serves.
    void make();
    void forget();
    // Gives back the parts' pictures when the scene ends; make reads them again.
    void releasePictures();

    // The twin of a material by its name, or the material itself when it has none.
    Material* twinOf(Material* named) const;
    TextureMaterial* get(int part) const { return twins[part]; }

private:
    Texture* load(const TextureFile& picture) const;

    const char* scene;
    const char* const* names;
    const TextureFile* const* pictures;
    int count;
    bool mipmapped;
    TextureMaterial* twins[MAX_PARTS];
};
