// The texture cache and the loader registry; the loaders are registered here so a static link keeps them.
#include "texture/TextureMgr.h"

#include "scene/object/Chunk.h"
#include "scene/object/ChunkFile.h"
#include "scene/object/ChunkList.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureLoaderBW.h"
#include "texture/TextureLoaderInternal.h"
#include "texture/TextureLoaderJPG.h"
#include "texture/TextureLoaderPCX.h"
#include "texture/TextureLoaderPNG.h"
#include "texture/TextureLoaderTGA.h"
#include "texture/TextureLoaderTIFF.h"

#include <GL/gl.h>
#include <strings.h>
#include <cstring>

namespace {

// The longest texture name a TMGR entry may carry (the reader's buffer is 512 bytes).
const int maxNameLength = 511;

bool sameList(const char* a, const char* b)
{
    return a && b && strcasecmp(a, b) == 0;
}

// Built before main runs, so the loaders are in place for anything that starts later.
TextureMgr* const builtBeforeMain = TextureMgr::getHandle();

}  // namespace

TextureMgr* TextureMgr::getHandle()
{
    static TextureMgr instance;
    return &instance;
}

TextureMgr::TextureMgr() : textureCount(0), textures(nullptr), loaderCount(0), loaders(nullptr)
{
    (void)builtBeforeMain;
    registerStandardLoaders();
}

TextureMgr::~TextureMgr()
{
    if (textures || loaders)
        shutdown();
}

void TextureMgr::registerStandardLoaders()
{
    TextureLoader* standard[] = {new TextureLoaderInternal(), new TextureLoaderJPG(), new TextureLoaderPCX(),
                                 new TextureLoaderPNG(),      new TextureLoaderTGA(), new TextureLoaderTIFF(),
                                 new TextureLoaderBW()};
    for (TextureLoader* loader : standard)
        if (!registerLoader(loader))
            delete loader;
}

void TextureMgr::initiate()
{
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
}

void TextureMgr::shutdown()
{
    while (textures) {
        TextureNode* node = textures;
        textures = node->next;
        delete node->texture;
        delete node;
    }
    while (loaders) {
        LoaderNode* node = loaders;
        loaders = node->next;
        delete node->loader;
        delete node;
    }
    textureCount = 0;
    loaderCount = 0;
}

Texture* TextureMgr::loadTexture(const char* name, int format)
{
    // The format is not compared: every caller shares the first one loaded.
    Texture* cached = findTexture(name);
    if (cached)
        return cached;
    TextureLoader* loader = findLoader(name);
    if (!loader)
        return nullptr;
    Texture* t = loader->loadTexture(name, format);
    if (!t)
        return nullptr;
    addTexture(t);
    return t;
}

bool TextureMgr::reloadTexture(const char* name, Texture* t)
{
    if (!t)
        return false;
    TextureLoader* loader = findLoader(name);
    if (!loader)
        return false;
    return loader->reloadTexture(name, t);
}

bool TextureMgr::saveTexture(const char* name, Texture* t)
{
    TextureLoader* loader = findLoader(name);
    if (!loader)
        return false;
    return loader->saveTexture(name, t);
}

bool TextureMgr::saveTexture(const char* name)
{
    Texture* t = findTexture(name);
    if (!t)
        return false;
    return saveTexture(name, t);
}

bool TextureMgr::addTexture(Texture* t)
{
    if (!t)
        return false;
    textures = new TextureNode{t, textures};
    ++textureCount;
    return true;
}

bool TextureMgr::removeTexture(const char* name)
{
    for (TextureNode** link = &textures; *link; link = &(*link)->next) {
        if (!(*(*link)->texture == name))
            continue;
        TextureNode* node = *link;
        *link = node->next;
        delete node->texture;
        delete node;
        --textureCount;
        return true;
    }
    return false;
}

Texture* TextureMgr::findTexture(const char* name)
{
    for (TextureNode* node = textures; node; node = node->next)
        if (*node->texture == name)
            return node->texture;
    return nullptr;
}

const Texture* TextureMgr::findTexture(const char* name) const
{
    return const_cast<TextureMgr*>(this)->findTexture(name);
}

bool TextureMgr::registerLoader(TextureLoader* loader)
{
    if (!loader || haveLoader(loader->getExtension()))
        return false;
    loaders = new LoaderNode{loader, loaders};
    ++loaderCount;
    return true;
}

bool TextureMgr::unregisterLoader(const char* extensions)
{
    for (LoaderNode** link = &loaders; *link; link = &(*link)->next) {
        if (!sameList((*link)->loader->getExtension(), extensions))
            continue;
        LoaderNode* node = *link;
        *link = node->next;
        delete node->loader;
        delete node;
        --loaderCount;
        return true;
    }
    return false;
}

bool TextureMgr::haveLoader(const char* extensions) const
{
    for (LoaderNode* node = loaders; node; node = node->next)
        if (sameList(node->loader->getExtension(), extensions))
            return true;
    return false;
}

TextureLoader* TextureMgr::findLoader(const char* fileName) const
{
    for (LoaderNode* node = loaders; node; node = node->next)
        if (node->loader->checkFilename(fileName))
            return node->loader;
    return nullptr;
}

bool TextureMgr::save(std::ostream& out)
{
    Chunk::writeTag(out, "TMGR");
    Chunk::writeInt(out, textureCount);
    for (TextureNode* node = textures; node; node = node->next) {
        Chunk::writeInt(out, node->texture->getFormat());
        if (!node->texture->NamedObject::save(out))
            return false;
    }
    return Chunk::good(out);
}

bool TextureMgr::load(std::istream& in)
{
    int32_t count = 0;
    if (!ChunkList::readHead(in, "TMGR", count))
        return false;
    // Entry by entry: the ones loaded before a cut or a failure stay in the cache.
    char name[maxNameLength + 1];
    for (int32_t i = 0; i < count; ++i) {
        // The name length is read as 32 bits although save writes 16: the two sides differ on purpose.
        int32_t format = 0, length = 0;
        if (!Chunk::readInt(in, format) || !Chunk::readInt(in, length))
            return false;
        if (length < 0 || length > maxNameLength || !Chunk::fits(in, length, 1))
            return false;
        in.read(name, length);
        name[length] = '\0';
        if (!Chunk::good(in))
            return false;
        TextureLoader* loader = findLoader(name);
        if (!loader)
            return false;
        if (findTexture(name))
            continue;
        if (!loadTexture(name, format))
            return false;
    }
    return Chunk::good(in);
}

bool TextureMgr::save(const char* file)
{
    return ChunkFile::save(*this, file);
}

bool TextureMgr::load(const char* file)
{
    return ChunkFile::load(*this, file);
}
