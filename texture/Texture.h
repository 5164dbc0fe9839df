// One image in system memory and the OpenGL texture object made from it on first bind.
#pragma once

#include "scene/object/NamedObject.h"

typedef int TexQuality;

class Texture : public NamedObject {
public:
    // The GL name a texture holds while it has no texture object.
    static constexpr unsigned int noName = 0xffffffffu;

    Texture();
    explicit Texture(const char* name);
    // Takes ownership of data when create succeeds.
    Texture(const char* name, int w, int h, int bpp, int format, unsigned char* data);
    ~Texture() override;
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    // Takes ownership of data on success; false when data is null, the texture
    // already holds pixels, or the size or format code is unusable.
    virtual bool create(int w, int h, int bpp, int format, unsigned char* data);
    virtual bool create(const char* name, int w, int h, int bpp, int format, unsigned char* data);
    virtual void reset();
    virtual bool reload();
    virtual bool upload();
    virtual bool reupload();
    virtual bool unload();
    virtual void updateSubTex();

    // Gives back the pixels of a picture loaded from the file it is named after, once GL holds it: an upload, and
    // so a bind that finds the GL object gone, reads them again first.
    void releasePixels();
    // The pixels given back read again from the file, into a buffer of the size the texture keeps; true when the
    // texture holds pixels.
    bool refill();

    bool bind();
    void unbind();
    void bind(unsigned int unit);
    void unbind(unsigned int unit);

    // The GL internal format later uploads store the pixels in, for a texture drawn faster in another layout that
    // samples to the same values (luminance with alpha stored as RGBA); 0, the default, stores `components`.
    void setStorageFormat(int internalFormat) { storageFormat = internalFormat; }
    int getStorageFormat() const { return storageFormat; }

    static void setTexQuality(TexQuality quality);
    static TexQuality getTexQuality();
    unsigned int getOpenGLFormat(int format) const;
    // Bytes per pixel of a format code; 0 outside 1 to 8.
    static int componentsOf(int format);

    int getWidth() const { return width; }
    int getHeight() const { return height; }
    int getBitsPerPixel() const { return bitsPerPixel; }
    int getFormat() const { return format; }
    int getComponents() const { return components; }
    unsigned int getGLName() const { return glName; }
    // Size of the pixel buffer in bytes.
    long long getDataSize() const;
    unsigned char* getDataPtr() { return data; }
    const unsigned char* getDataPtr() const { return data; }

protected:
    bool isLive() const;
    // Gives the texture a GL name if it has none, binds and enables it and sets
    // byte packing, the two filters and repeat wrapping, ready for the images.
    void prepareUpload(int minFilter, int magFilter);
    // Stores the fields without the checks of create.
    void store(int w, int h, int bpp, int format, unsigned char* data);

    int width;
    int height;
    int bitsPerPixel;
    int format;
    int components;
    unsigned char* data;
    unsigned int glName;
    int storageFormat = 0;
    bool pixelsInFile = false;

    static TexQuality texQuality;
};
