// Base of the loaders that turn one kind of image file into a Texture.
#pragma once

class Texture;

class TextureLoader {
public:
    // extensions: comma-separated, without dots, e.g. "ctx,mtx".
    explicit TextureLoader(const char* extensions);
    virtual ~TextureLoader();
    TextureLoader(const TextureLoader&) = delete;
    TextureLoader& operator=(const TextureLoader&) = delete;

    virtual Texture* loadTexture(const char* name, int format) = 0;
    virtual bool reloadTexture(const char* name, Texture* t) = 0;
    virtual bool saveTexture(const char* name, Texture* t) = 0;

    bool checkFilename(const char* name) const;
    bool checkExtension(const char* ext) const;
    const char* getExtension() const { return extensions; }

    // Largest image side and pixel count any loader accepts from a file header: what a real
    // texture may be (8192 x 8192, 16384 x 4096), and no more, so that a header alone cannot
    // ask for an absurd buffer. Where a format tells how much a file can hold, the loaders
    // also refuse headers claiming more pixels than that.
    static constexpr int maxSide = 16384;
    static constexpr long long maxPixels = 1LL << 26;

    // A zero-filled buffer for w x h pixels of the format, or null when the
    // size or the format (1 to 8) is unusable.
    static unsigned char* allocPixels(int w, int h, int format);
    // At least one pixel each way and within the caps.
    static bool sizeUsable(long long w, long long h);
    // Within the caps; an empty side counts. Negative sides never do.
    static bool sizeWithinCaps(long long w, long long h);
    // Writes one pixel of the requested format from R, G, B and, when
    // hasAlpha, A; returns the bytes written.
    static int storePixel(unsigned char* out, int format, const unsigned char rgba[4], bool hasAlpha);

protected:
    // An 8-bit Texture made from decoded pixels, which it then owns; when the
    // texture refuses them both are freed and the result is null.
    static Texture* adoptPixels(const char* name, int w, int h, int format, unsigned char* pixels);

private:
    char* extensions;
};
