// PNG decoding: libpng reports errors by jumping back here, so the decoder holds no C++ objects.
#include "texture/TextureLoaderPNG.h"

#include "texture/Texture.h"

#include <png.h>
#include <csetjmp>
#include <cstdio>

namespace {

// Where the decoded pixels go: a fresh buffer (pixels null) or a texture's existing one.
struct PngTarget {
    int format;
    int width;
    int height;
    unsigned char* pixels;
    bool allocated;
};

void quietError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void quietWarning(png_structp, png_const_charp) {}

// Largest decoded-to-compressed ratio a deflate stream allows.
const long long maxDeflateRatio = 1032;

long fileSize(FILE* file)
{
    long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    long size = std::ftell(file);
    std::fseek(file, here, SEEK_SET);
    return size;
}

}  // namespace

// Sets up the target once the header is known; false for sizes or formats it cannot take.
static bool preparePngTarget(PngTarget* target, png_uint_32 w, png_uint_32 h, int bitDepth, int channels, long size)
{
    if (target->pixels)
        return static_cast<long long>(w) == target->width && static_cast<long long>(h) == target->height;
    // Each row holds a filter byte and its packed samples before compression.
    long long raw = (static_cast<long long>(w) * bitDepth * channels + 7) / 8 + 1;
    if (!TextureLoader::sizeUsable(w, h) || size < 0 || raw * h > static_cast<long long>(size) * maxDeflateRatio)
        return false;
    target->width = static_cast<int>(w);
    target->height = static_cast<int>(h);
    return true;
}

static bool decodePng(FILE* file, PngTarget* target)
{
    unsigned char signature[4];
    if (std::fread(signature, 1, 4, file) != 4 || png_sig_cmp(signature, 0, 4) != 0)
        return false;
    long size = fileSize(file);
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, quietError, quietWarning);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    png_bytep volatile row = nullptr;
    if (setjmp(png_jmpbuf(png))) {
        png_free(png, row);
        png_destroy_read_struct(&png, &info, nullptr);
        if (target->allocated) {
            delete[] target->pixels;
            target->pixels = nullptr;
            target->allocated = false;
        }
        return false;
    }
    png_init_io(png, file);
    png_set_sig_bytes(png, 4);
    png_read_info(png, info);
    png_uint_32 w = png_get_image_width(png, info);
    png_uint_32 h = png_get_image_height(png, info);
    int colorType = png_get_color_type(png, info);
    int bitDepth = png_get_bit_depth(png, info);
    int channels = png_get_channels(png, info);
    // Rows are read one at a time, so interlaced files cannot be taken.
    if (png_get_interlace_type(png, info) != PNG_INTERLACE_NONE ||
        !preparePngTarget(target, w, h, bitDepth, channels, size))
        png_longjmp(png, 1);
    if (colorType == PNG_COLOR_TYPE_PALETTE && bitDepth <= 8)
        png_set_palette_to_rgb(png);
    if (colorType == PNG_COLOR_TYPE_GRAY && bitDepth < 8)
        png_set_expand_gray_1_2_4_to_8(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);
    if (bitDepth == 16)
        png_set_strip_16(png);
    if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA)
        png_set_gray_to_rgb(png);
    png_read_update_info(png, info);
    bool hasAlpha = png_get_color_type(png, info) == PNG_COLOR_TYPE_RGB_ALPHA;
    int pixelBytes = hasAlpha ? 4 : 3;
    if (png_get_rowbytes(png, info) != static_cast<size_t>(w) * pixelBytes)
        png_longjmp(png, 1);
    if (!target->pixels) {
        target->pixels = TextureLoader::allocPixels(target->width, target->height, target->format);
        if (!target->pixels)
            png_longjmp(png, 1);
        target->allocated = true;
    }
    row = static_cast<png_bytep>(png_malloc(png, png_get_rowbytes(png, info)));
    unsigned char* out = target->pixels;
    for (png_uint_32 y = 0; y < h; ++y) {
        png_read_row(png, row, nullptr);
        for (png_uint_32 x = 0; x < w; ++x) {
            const unsigned char* p = row + x * pixelBytes;
            unsigned char rgba[4] = {p[0], p[1], p[2], static_cast<unsigned char>(hasAlpha ? p[3] : 255)};
            out += TextureLoader::storePixel(out, target->format, rgba, hasAlpha);
        }
    }
    // Reading to the end checks the trailing chunks' CRCs: a cut-off file fails here.
    png_read_end(png, nullptr);
    png_free(png, row);
    row = nullptr;
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

TextureLoaderPNG::TextureLoaderPNG() : TextureLoader("png") {}

Texture* TextureLoaderPNG::loadTexture(const char* name, int format)
{
    if (!name || Texture::componentsOf(format) == 0)
        return nullptr;
    FILE* file = std::fopen(name, "rb");
    if (!file)
        return nullptr;
    PngTarget target = {format, 0, 0, nullptr, false};
    bool ok = decodePng(file, &target);
    std::fclose(file);
    if (!ok)
        return nullptr;
    return adoptPixels(name, target.width, target.height, format, target.pixels);
}

bool TextureLoaderPNG::reloadTexture(const char* name, Texture* t)
{
    if (!name || !t || !t->getDataPtr() || Texture::componentsOf(t->getFormat()) == 0)
        return false;
    FILE* file = std::fopen(name, "rb");
    if (!file)
        return false;
    PngTarget target = {t->getFormat(), t->getWidth(), t->getHeight(), t->getDataPtr(), false};
    bool ok = decodePng(file, &target);
    std::fclose(file);
    return ok;
}

bool TextureLoaderPNG::saveTexture(const char*, Texture*)
{
    return false;
}
