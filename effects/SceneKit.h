// Helpers two or more scenes use while they load: textures sent to GL at once, materials and lights found or made, files loaded or explained.
#pragma once

#include "math/Color.h"
#include "math/Vector3.h"
#include "texture/TextureFormat.h"

#include <cstddef>
#include <iostream>
#include <string>

class Light;
class Material;
class Mesh;
class Texture;
class TextureMaterial;

class SceneKit {
public:
    // What a directional light is made with.
    struct LightSetup {
        Vector3 direction;
        Color ambient;
        Color diffuse;
        Color specular;
        // Constant, linear and quadratic; a directional light is left at full strength.
        float attenuation[3] = {1.0f, 0.0f, 0.0f};
    };

    // Through the texture cache, with its pixels (read again when they were given back); null when it cannot be read.
    static Texture* loadTexture(const TextureFile& picture);
    // The same, sent to GL now: no picture is uploaded in the frame loop, and an upload made
    // at a bind on the second texture unit would land on the first. GL holds the picture then, and the file:
    // the pixels are given back, read again should it be sent once more.
    static Texture* preloadTexture(const TextureFile& picture);
    // The same, or null after printing the scenes' common message (below) for the picture; silent without a scene.
    static Texture* preloadOrReport(const char* scene, const TextureFile& picture);
    // Preloaded with a mipmap chain made by GL, for pictures seen from far away as well as close up; a picture GL
    // holds so already is left as it is.
    static Texture* preloadMipmapped(const TextureFile& picture);

    // A picture through the cache and sent to GL while other scenes draw: the texture state is left as found.
    static Texture* loadTextureAhead(const TextureFile& picture);

    // Gives back a scene's own pictures when it ends, GL's copy and the pixels: the last scene to draw a picture
    // releases it. The textures stay in the cache, so the materials wearing them stay valid, and an upload
    // reads the pixels again; a later start preloads them before drawing them or compiling them into a list.
    template <size_t N>
    static void releaseTextures(const TextureFile (&pictures)[N])
    {
        for (const TextureFile& picture : pictures)
            releaseTexture(picture);
    }
    static void releaseTexture(const TextureFile& picture);

    // A textured material made with these values and registered (whether or not one of that name exists).
    static TextureMaterial* makeMaterial(const char* name, Texture* texture, int blendMode, unsigned long flags);
    // The registered textured material of that name, or one made from the picture, and either way the picture
    // preloaded (a scene before may have released it).
    static TextureMaterial* findOrMakeMaterial(const char* name, const TextureFile& picture, unsigned long flags,
                                               int blendMode);
    // The same, a missing picture reported for the scene with preloadOrReport.
    static TextureMaterial* findOrMakeMaterial(const char* scene, const char* name, const TextureFile& picture,
                                               unsigned long flags, int blendMode);
    // The registered overlay material of that name, or one made from the picture and registered; null after the
    // scenes' common message when it has no picture (a glow without one would be a bright square).
    static TextureMaterial* overlayOrReport(const char* scene, const char* name, const TextureFile& picture,
                                            int blendMode);
    // The registered textured material of that name, or one made with these values and registered;
    // either way it wears this texture (none: drawn untextured).
    static TextureMaterial* wear(const char* name, Texture* texture, unsigned long flags, int blendMode);
    // The same, wearing the picture preloaded now or reported missing with preloadOrReport: unlike
    // findOrMakeMaterial, a material already registered is dressed again and its picture reported
    // at every start.
    static TextureMaterial* materialOrReport(const char* scene, const char* name, const TextureFile& picture,
                                             unsigned long flags, int blendMode);
    // Every face of the mesh drawn with this material.
    static void giveMaterial(Mesh* mesh, Material* material);

    // The registered light of that name, or a directional one made and registered; either way
    // its states are sent again and it is switched on.
    static Light* directionalLight(const char* name, const LightSetup& setup);

    // A new T loaded from the file, or null after printing the message on the error stream.
    template <typename T>
    static T* loadOrSay(const char* file, const char* message)
    {
        T* object = new T();
        if (object->load(file))
            return object;
        std::cerr << message;
        delete object;
        return nullptr;
    }
    // The same with the scenes' common message: "<scene>: couldn't load '<file>'".
    template <typename T>
    static T* loadOrReport(const char* scene, const char* file)
    {
        return loadOrSay<T>(file, missingMessage(scene, file).c_str());
    }
    static std::string missingMessage(const char* scene, const char* file);
};
