// libpng writer with fixed settings and no time or text chunks, so output bytes never vary.
#include "PngWriter.h"

#include "Image.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>

namespace {

void onWarning(png_structp, png_const_charp) {}

// Runs the libpng calls; kept apart so that no C++ object lives across the setjmp.
bool encode(FILE* file, const uint8_t* bytes, int width, int height, int channels)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, onWarning);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_compression_level(png, 6);
    const int type = channels == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(png, info, (png_uint_32)width, (png_uint_32)height, 8, type, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    const size_t stride = (size_t)width * channels;
    for (int y = 0; y < height; ++y)
        png_write_row(png, bytes + stride * y);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

}  // namespace

bool PngWriter::write(const std::string& path, const std::vector<uint8_t>& bytes, int width, int height, int channels)
{
    if (width <= 0 || height <= 0 || (channels != 3 && channels != 4))
        return false;
    if (bytes.size() != (size_t)width * height * channels)
        return false;
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool encoded = encode(file, bytes.data(), width, height, channels);
    const bool closed = std::fclose(file) == 0;
    if (!encoded || !closed) {
        std::remove(path.c_str());
        return false;
    }
    return true;
}

bool PngWriter::write(const std::string& path, const Image& image, int channels)
{
    return write(path, image.toBytes(channels), image.width(), image.height(), channels);
}
