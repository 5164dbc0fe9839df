// Helpers two or more scenes use while they load.
#include "effects/SceneKit.h"

#include "gl/TextureStateKeeper.h"
#include "scene/DirectionalLight.h"
#include "scene/FaceArray.h"
#include "scene/LightMgr.h"
#include "scene/Mesh.h"
#include "texture/MaterialMgr.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <GL/glext.h>

namespace {

// Through the cache as it is: an upload reads pixels given back again itself.
Texture* cached(const TextureFile& picture)
{
    return TextureMgr::getHandle()->loadTexture(picture.file, picture.format);
}

// Whether GL holds the picture with the levels preloadMipmapped makes, bound to find out.
bool holdsLevels(const Texture& texture)
{
    if (texture.getGLName() == Texture::noName || !glIsTexture(texture.getGLName()))
        return false;
    glBindTexture(GL_TEXTURE_2D, texture.getGLName());
    GLint generated = GL_FALSE;
    GLint minFilter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, &generated);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &minFilter);
    return generated == GL_TRUE && minFilter == GL_LINEAR_MIPMAP_NEAREST;
}

}  // namespace

Texture* SceneKit::loadTexture(const TextureFile& picture)
{
    Texture* texture = cached(picture);
    if (texture)
        texture->refill();
    return texture;
}

Texture* SceneKit::preloadTexture(const TextureFile& picture)
{
    Texture* texture = cached(picture);
    if (!texture)
        return nullptr;
    if (texture->getGLName() == Texture::noName)
        texture->upload();
    texture->releasePixels();
    return texture;
}

Texture* SceneKit::preloadOrReport(const char* scene, const TextureFile& picture)
{
    Texture* texture = preloadTexture(picture);
    if (!texture && scene)
        std::cerr << missingMessage(scene, picture.file);
    return texture;
}

Texture* SceneKit::preloadMipmapped(const TextureFile& picture)
{
    Texture* texture = cached(picture);
    if (!texture)
        return nullptr;
    // A scene before made them (the planet is the spacecraft's and the cockpit's): not sent, nor read, again.
    if (holdsLevels(*texture)) {
        texture->unbind();
        return texture;
    }
    texture->upload();
    // Sending the picture again with generation on fills the smaller levels.
    texture->bind();
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    texture->updateSubTex();
    glBindTexture(GL_TEXTURE_2D, texture->getGLName());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
    texture->unbind();
    texture->releasePixels();
    return texture;
}

Texture* SceneKit::loadTextureAhead(const TextureFile& picture)
{
    TextureStateKeeper kept;
    return preloadTexture(picture);
}

void SceneKit::releaseTexture(const TextureFile& picture)
{
    Texture* texture = TextureMgr::getHandle()->findTexture(picture.file);
    if (!texture)
        return;
    texture->unload();
    texture->releasePixels();
}

TextureMaterial* SceneKit::makeMaterial(const char* name, Texture* texture, int blendMode, unsigned long flags)
{
    TextureMaterial* material = new TextureMaterial(name);
    material->setTexture(texture);
    material->setBlendMode(blendMode);
    material->setFlags(flags);
    MaterialMgr::getHandle()->add(material);
    return material;
}

TextureMaterial* SceneKit::findOrMakeMaterial(const char* name, const TextureFile& picture, unsigned long flags,
                                              int blendMode)
{
    return findOrMakeMaterial(nullptr, name, picture, flags, blendMode);
}

TextureMaterial* SceneKit::findOrMakeMaterial(const char* scene, const char* name, const TextureFile& picture,
                                              unsigned long flags, int blendMode)
{
    TextureMaterial* existing = dynamic_cast<TextureMaterial*>(MaterialMgr::getHandle()->find(name));
    if (!existing)
        return makeMaterial(name, preloadOrReport(scene, picture), blendMode, flags);
    preloadTexture(picture);
    return existing;
}

TextureMaterial* SceneKit::overlayOrReport(const char* scene, const char* name, const TextureFile& picture,
                                           int blendMode)
{
    TextureMaterial* material = findOrMakeMaterial(name, picture, Material::overlay, blendMode);
    if (material->getTexture())
        return material;
    std::cerr << missingMessage(scene, picture.file);
    return nullptr;
}

TextureMaterial* SceneKit::materialOrReport(const char* scene, const char* name, const TextureFile& picture,
                                            unsigned long flags, int blendMode)
{
    return wear(name, preloadOrReport(scene, picture), flags, blendMode);
}

TextureMaterial* SceneKit::wear(const char* name, Texture* texture, unsigned long flags, int blendMode)
{
    TextureMaterial* existing = dynamic_cast<TextureMaterial*>(MaterialMgr::getHandle()->find(name));
    if (!existing)
        return makeMaterial(name, texture, blendMode, flags);
    existing->setTexture(texture);
    return existing;
}

void SceneKit::giveMaterial(Mesh* mesh, Material* material)
{
    FaceArray* faces = mesh ? mesh->getFaces() : nullptr;
    if (!faces)
        return;
    for (int i = 0; i < faces->getNumFaces(); ++i)
        (*faces)[i].setMaterial(material);
}

Light* SceneKit::directionalLight(const char* name, const LightSetup& setup)
{
    LightMgr* lights = LightMgr::getHandle();
    Light* light = lights->find(name);
    if (!light) {
        light = new DirectionalLight(name);
        light->setPosition(setup.direction);
        light->setAmbient(setup.ambient);
        light->setDiffuse(setup.diffuse);
        light->setSpecular(setup.specular);
        light->setAttenuation(setup.attenuation[0], setup.attenuation[1], setup.attenuation[2]);
        lights->add(light);
    }
    light->initiate();
    light->turnOn();
    return light;
}

std::string SceneKit::missingMessage(const char* scene, const char* file)
{
    return std::string(scene) + ": couldn't load '" + file + "'\n";
}
