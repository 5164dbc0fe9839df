// Extension matching and the pixel conversion shared by the image loaders.
#include "texture/TextureLoader.h"

#include "texture/Texture.h"

#include <strings.h>
#include <cstring>

TextureLoader::TextureLoader(const char* list) : extensions(nullptr)
{
    const char* text = list ? list : "";
    size_t length = std::strlen(text);
    extensions = new char[length + 1];
    std::memcpy(extensions, text, length + 1);
}

TextureLoader::~TextureLoader()
{
    delete[] extensions;
}

bool TextureLoader::checkFilename(const char* name) const
{
    if (!name)
        return false;
    const char* dot = std::strrchr(name, '.');
    if (!dot)
        return false;
    return checkExtension(dot + 1);
}

bool TextureLoader::checkExtension(const char* ext) const
{
    if (!ext)
        return false;
    const char* item = extensions;
    while (*item) {
        const char* end = std::strchr(item, ',');
        if (!end)
            end = item + std::strlen(item);
        // Only the item's length is compared: "tiff" matches "tif".
        if (strncasecmp(ext, item, static_cast<size_t>(end - item)) == 0)
            return true;
        if (!*end)
            return false;
        // Resuming at the comma gives an empty item that matches anything;
        // this makes the one loader with a list the catch-all.
        item = end;
    }
    return false;
}

Texture* TextureLoader::adoptPixels(const char* name, int w, int h, int format, unsigned char* pixels)
{
    Texture* t = new Texture();
    if (!t->create(name, w, h, 8, format, pixels)) {
        delete[] pixels;
        delete t;
        return nullptr;
    }
    return t;
}

bool TextureLoader::sizeUsable(long long w, long long h)
{
    return w >= 1 && h >= 1 && sizeWithinCaps(w, h);
}

bool TextureLoader::sizeWithinCaps(long long w, long long h)
{
    if (w < 0 || h < 0 || w > maxSide || h > maxSide)
        return false;
    return w * h <= maxPixels;
}

unsigned char* TextureLoader::allocPixels(int w, int h, int format)
{
    int components = Texture::componentsOf(format);
    if (components == 0 || !sizeUsable(w, h))
        return nullptr;
    return new unsigned char[static_cast<size_t>(w) * h * components]();
}

int TextureLoader::storePixel(unsigned char* out, int format, const unsigned char rgba[4], bool hasAlpha)
{
    // Luminance takes the blue channel and a missing alpha is replaced by red: both intended.
    unsigned char alphaOrRed = hasAlpha ? rgba[3] : rgba[0];
    switch (format) {
        case 1:
            out[0] = rgba[0];
            return 1;
        case 2:
            out[0] = rgba[1];
            return 1;
        case 3:
            out[0] = rgba[2];
            return 1;
        case 4:
            out[0] = alphaOrRed;
            return 1;
        case 5:
            out[0] = rgba[2];
            return 1;
        case 6:
            out[0] = rgba[2];
            out[1] = alphaOrRed;
            return 2;
        case 7:
            out[0] = rgba[0];
            out[1] = rgba[1];
            out[2] = rgba[2];
            return 3;
        case 8:
            out[0] = rgba[0];
            out[1] = rgba[1];
            out[2] = rgba[2];
            out[3] = hasAlpha ? rgba[3] : 255;
            return 4;
        default:
            return 0;
    }
}
