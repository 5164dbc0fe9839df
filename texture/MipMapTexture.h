// A texture that builds its mipmap chain in software and uploads every level.
#pragma once

#include "texture/Texture.h"

class MipMapTexture : public Texture {
public:
    MipMapTexture();
    explicit MipMapTexture(const char* name);
    MipMapTexture(const char* name, int w, int h, int bpp, int format, unsigned char* data);
    ~MipMapTexture() override;

    bool create(int w, int h, int bpp, int format, unsigned char* data) override;
    bool create(const char* name, int w, int h, int bpp, int format, unsigned char* data) override;
    void reset() override;
    bool upload() override;
    bool reupload() override;
    void updateSubTex() override;

    bool createMipMaps();
    bool uploadMipMaps();

    // Levels run until both sides are at most 1 after a halving; the first halving always happens.
    static int countLevels(int w, int h);
    int getLevelCount() const { return levelCount; }
    int getLevelWidth(int level) const { return width >> level; }
    int getLevelHeight(int level) const { return height >> level; }
    const unsigned char* getLevel(int level) const;

private:
    void freeLevels();
    bool scaleLevel(int level);

    int levelCount;
    unsigned char** levels;
};
