// TIFF decoding through TIFFReadRGBAImage, with libtiff's messages silenced while it runs.
#include "texture/TextureLoaderTIFF.h"

#include "texture/Texture.h"

#include <sys/stat.h>
#include <tiffio.h>

namespace {

// Even a bilevel strip squeezed by the best codec libtiff has stays under this many pixels a
// byte; a header claiming more would only make libtiff fill a huge raster from nothing.
const long long maxPixelsPerByte = 4096;

long long fileSize(const char* name)
{
    struct stat info;
    return stat(name, &info) == 0 ? static_cast<long long>(info.st_size) : 0;
}

// libtiff prints its complaints through process-wide handlers; a loader stays silent.
class QuietTiff {
public:
    QuietTiff() : error(TIFFSetErrorHandler(nullptr)), warning(TIFFSetWarningHandler(nullptr)) {}
    ~QuietTiff()
    {
        TIFFSetErrorHandler(error);
        TIFFSetWarningHandler(warning);
    }

private:
    TIFFErrorHandler error;
    TIFFErrorHandler warning;
};

// Decodes into pixels (allocated when null) in the given format; w and h
// must match when the buffer is given.
bool decodeTiff(const char* name, int format, int& w, int& h, unsigned char*& pixels)
{
    QuietTiff quiet;
    // libtiff sizes its strip and tile buffers from the file's tags: no single
    // one may outgrow the raster of the largest image we accept.
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(TextureLoader::maxPixels) * 4);
    TIFF* tif = TIFFOpenExt(name, "r", options);
    TIFFOpenOptionsFree(options);
    if (!tif)
        return false;
    uint32_t width = 0, height = 0;
    TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &height);
    bool given = pixels != nullptr;
    if (!TextureLoader::sizeUsable(width, height) ||
        static_cast<long long>(width) * height > fileSize(name) * maxPixelsPerByte ||
        (given && (static_cast<int>(width) != w || static_cast<int>(height) != h))) {
        TIFFClose(tif);
        return false;
    }
    uint32_t* raster = new uint32_t[static_cast<size_t>(width) * height];
    if (!TIFFReadRGBAImage(tif, width, height, raster, 0)) {
        delete[] raster;
        TIFFClose(tif);
        return false;
    }
    TIFFClose(tif);
    unsigned char* out = given ? pixels : TextureLoader::allocPixels(width, height, format);
    if (!out) {
        delete[] raster;
        return false;
    }
    unsigned char* p = out;
    size_t count = static_cast<size_t>(width) * height;
    for (size_t i = 0; i < count; ++i) {
        uint32_t v = raster[i];
        unsigned char rgba[4] = {static_cast<unsigned char>(TIFFGetR(v)), static_cast<unsigned char>(TIFFGetG(v)),
                                 static_cast<unsigned char>(TIFFGetB(v)), static_cast<unsigned char>(TIFFGetA(v))};
        p += TextureLoader::storePixel(p, format, rgba, true);
    }
    delete[] raster;
    w = static_cast<int>(width);
    h = static_cast<int>(height);
    pixels = out;
    return true;
}

}  // namespace

TextureLoaderTIFF::TextureLoaderTIFF() : TextureLoader("tif") {}

Texture* TextureLoaderTIFF::loadTexture(const char* name, int format)
{
    if (!name || Texture::componentsOf(format) == 0)
        return nullptr;
    int w = 0, h = 0;
    unsigned char* pixels = nullptr;
    if (!decodeTiff(name, format, w, h, pixels))
        return nullptr;
    return adoptPixels(name, w, h, format, pixels);
}

bool TextureLoaderTIFF::reloadTexture(const char* name, Texture* t)
{
    if (!name || !t || !t->getDataPtr() || Texture::componentsOf(t->getFormat()) == 0)
        return false;
    int w = t->getWidth(), h = t->getHeight();
    unsigned char* pixels = t->getDataPtr();
    return decodeTiff(name, t->getFormat(), w, h, pixels);
}

bool TextureLoaderTIFF::saveTexture(const char*, Texture*)
{
    return false;
}
