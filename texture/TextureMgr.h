// The process-wide texture cache: textures by file name, loaded once through the loader for their extension.
#pragma once

#include <istream>
#include <ostream>

class Texture;
class TextureLoader;

class TextureMgr {
public:
    static TextureMgr* getHandle();
    ~TextureMgr();
    TextureMgr(const TextureMgr&) = delete;
    TextureMgr& operator=(const TextureMgr&) = delete;

    // Needs a current GL context.
    void initiate();
    void shutdown();

    Texture* loadTexture(const char* name, int format);
    bool reloadTexture(const char* name, Texture* t);
    bool saveTexture(const char* name, Texture* t);
    bool saveTexture(const char* name);

    bool addTexture(Texture* t);
    bool removeTexture(const char* name);
    Texture* findTexture(const char* name);
    const Texture* findTexture(const char* name) const;

    bool registerLoader(TextureLoader* loader);
    bool unregisterLoader(const char* extensions);
    bool haveLoader(const char* extensions) const;
    TextureLoader* findLoader(const char* fileName) const;
    // Puts the seven standard loaders back after a shutdown.
    void registerStandardLoaders();

    bool save(std::ostream& out);
    bool load(std::istream& in);
    bool save(const char* file);
    bool load(const char* file);

    int getTextureCount() const { return textureCount; }
    int getLoaderCount() const { return loaderCount; }

private:
    TextureMgr();

    struct TextureNode {
        Texture* texture;
        TextureNode* next;
    };
    struct LoaderNode {
        TextureLoader* loader;
        LoaderNode* next;
    };

    int textureCount;
    TextureNode* textures;
    int loaderCount;
    LoaderNode* loaders;
};
