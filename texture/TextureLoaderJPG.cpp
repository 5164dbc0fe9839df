// JPEG decoding: libjpeg's error exit jumps back here, so the decoder holds no C++ objects.
#include "texture/TextureLoaderJPG.h"

#include "texture/Texture.h"

#include <jpeglib.h>
#include <csetjmp>
#include <cstdio>

namespace {

struct JpegError {
    jpeg_error_mgr manager;
    jmp_buf jump;
};

void jumpBack(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<JpegError*>(info->err)->jump, 1);
}

long fileSize(FILE* file)
{
    if (std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    long size = std::ftell(file);
    std::rewind(file);
    return size;
}

// Every 8x8 block costs at least one Huffman-coded bit.
const long long maxPixelsPerByte = 512;

}  // namespace

static unsigned char* decodeJpeg(FILE* file, int format, int* width, int* height)
{
    long size = fileSize(file);
    if (size <= 0)
        return nullptr;
    jpeg_decompress_struct info;
    JpegError error;
    unsigned char* volatile pixels = nullptr;
    unsigned char* volatile row = nullptr;
    // The standard manager but for its exit: warnings (a file cut off part-way, a damaged scan)
    // are libjpeg's to print, and it makes up what is missing, so the picture still loads.
    info.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = jumpBack;
    if (setjmp(error.jump)) {
        jpeg_destroy_decompress(&info);
        delete[] pixels;
        delete[] row;
        return nullptr;
    }
    jpeg_create_decompress(&info);
    jpeg_stdio_src(&info, file);
    jpeg_read_header(&info, TRUE);
    long long area = static_cast<long long>(info.image_width) * info.image_height;
    if (!TextureLoader::sizeUsable(info.image_width, info.image_height) ||
        (!info.arith_code && area > size * maxPixelsPerByte))
        jumpBack(reinterpret_cast<j_common_ptr>(&info));
    jpeg_start_decompress(&info);
    // Greyscale files are not supported: every pixel must be three bytes.
    if (info.output_components != 3)
        jumpBack(reinterpret_cast<j_common_ptr>(&info));
    int w = static_cast<int>(info.output_width);
    int h = static_cast<int>(info.output_height);
    pixels = TextureLoader::allocPixels(w, h, format);
    if (!pixels)
        jumpBack(reinterpret_cast<j_common_ptr>(&info));
    row = new unsigned char[static_cast<size_t>(w) * 3];
    unsigned char* out = pixels;
    while (info.output_scanline < info.output_height) {
        JSAMPROW line = row;
        jpeg_read_scanlines(&info, &line, 1);
        for (int x = 0; x < w; ++x) {
            const unsigned char* p = row + x * 3;
            unsigned char rgba[4] = {p[0], p[1], p[2], 255};
            out += TextureLoader::storePixel(out, format, rgba, false);
        }
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    delete[] row;
    *width = w;
    *height = h;
    return pixels;
}

TextureLoaderJPG::TextureLoaderJPG() : TextureLoader("jpg") {}

Texture* TextureLoaderJPG::loadTexture(const char* name, int format)
{
    if (!name || Texture::componentsOf(format) == 0)
        return nullptr;
    FILE* file = std::fopen(name, "rb");
    if (!file)
        return nullptr;
    int w = 0, h = 0;
    unsigned char* pixels = decodeJpeg(file, format, &w, &h);
    std::fclose(file);
    if (!pixels)
        return nullptr;
    return adoptPixels(name, w, h, format, pixels);
}

bool TextureLoaderJPG::reloadTexture(const char*, Texture*)
{
    return false;
}

bool TextureLoaderJPG::saveTexture(const char*, Texture*)
{
    return false;
}
